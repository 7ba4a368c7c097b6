#pragma once
#include "shell/modulearea.h"

#include <functional>

class DB;
class Nav;
class FWChromeButton;
class LookLabel;

// Tells what the QuickBooks export writes and writes it into a chosen folder.
class QBExportScreen : public ShellScreen
{
    Q_OBJECT
public:
    explicit QBExportScreen(const ScreenContext &ctx, QWidget *parent = nullptr);
    void refresh() override;

    // Asks for the folder to export into; empty when cancelled.
    using ChooseFolder = std::function<QString(QWidget *)>;
    // The folder chooser of export(); empty means the native dialog. Tests put their own here.
    static ChooseFolder &chooseFolderHook();
    // Shows a written folder to the user; empty means the file manager. Tests put their own here.
    static std::function<void(const QString &)> &revealHook();

    // The files written, in order: name and description.
    static const QList<std::pair<QString, QString>> &files();
    // "Scope: <project or all projects> — change it with the Project menu above".
    static QString scopeLine(const DB &db, const Nav &nav);

    // Asks for a folder and writes the six files into "QuickBooks export <today>" inside it.
    void exportFiles();
    // The text of the last result, empty at first.
    QString status() const { return m_status; }
    QString scope() const;

private:
    void margins();
    DB &m_db;
    Nav &m_nav;
    const ModuleDef &m_m;
    QVBoxLayout *m_box;
    LookLabel *m_scope;
    LookLabel *m_statusLabel;
    FWChromeButton *m_export;
    QString m_status;
};
