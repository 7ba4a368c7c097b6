#pragma once
#include "interchange/importwrite.h"

#include <QtWidgets/QDialog>

class DB;
class QCheckBox;
class QLabel;
class QMimeData;
class QTabWidget;
class QTreeWidget;
class FWChromeButton;

// The preview of an import: what each file holds (new, updated, unchanged
// and bad rows, each bad one with its reason in place), the list each file
// goes into and the field each column fills, with a choice for every one.
// Nothing is written until Import is pressed; with a bad row Import waits
// until the person chooses to bring in the good rows alone.
class ImportDialog : public QDialog
{
    Q_OBJECT
public:
    // Reads `path` (a file or a folder) for the current company of `db`.
    ImportDialog(DB &db, const QString &path, QWidget *parent = nullptr);
    // Why the files could not be read; empty when they were.
    QString readError() const { return m_readError; }
    const Import::Plan &plan() const { return m_plan; }
    // Makes column `column` of sheet `sheet` fill `key` (empty: left out) and reads the rows again.
    void setColumn(int sheet, int column, const QString &key);
    // Makes sheet `sheet` go into list `kind` and reads the rows again.
    void setKind(int sheet, const QString &kind);
    // Writes the import; false (the reason shown) when it wrote nothing.
    bool importNow();

    // What the last import in this window wrote, for Edit ▸ Undo Import.
    static Import::Undo &lastImport();
    // Chooses a file (or, with `folder`, a folder) and shows the preview over `parent`.
    static void chooseAndRun(QWidget *parent, DB &db, bool folder);
    // Shows the preview of `path` over `parent`; an unreadable file gets an alert instead.
    static void run(QWidget *parent, DB &db, const QString &path);
    // Saves the open-jobs template where the person chooses.
    static void saveTemplate(QWidget *parent);
    // The one local file or folder a drag carries that an import reads; empty otherwise.
    static QString droppedPath(const QMimeData *mime);
    // Takes the last import back, or says why it cannot.
    static void undoLast(QWidget *parent, DB &db);

private:
    void replan();
    void fillSheet(int index);
    DB &m_db;
    QString m_path;
    QString m_readError;
    QList<Import::Sheet> m_sheets;
    Import::Plan m_plan;
    QLabel *m_summary = nullptr;
    QTabWidget *m_tabs = nullptr;
    QCheckBox *m_skipBad = nullptr;
    FWChromeButton *m_import = nullptr;
};
