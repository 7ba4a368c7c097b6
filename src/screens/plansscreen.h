#pragma once
#include "shell/modulearea.h"
#include "store/rec.h"

#include <QtGui/QColor>

#include <functional>
#include <memory>
#include <optional>

class FWChromeButton;
class FWSegment;
class MarkupView;
class Notice;
class Printable;
class PrintButton;
class ThemedChoice;
class ThemedTextField;
class QLabel;
class QListWidget;
class QVBoxLayout;
struct PrintJob;

// The module "plans": the project's drawing sheets with their revisions, and
// the chosen sheet shown for marking up.
class PlansScreen : public ShellScreen
{
    Q_OBJECT
public:
    explicit PlansScreen(const ScreenContext &ctx, QWidget *parent = nullptr);
    ~PlansScreen() override;
    void refresh() override;

    // Registers the screen with the module area.
    static void registerScreen();

    // The number and title a sheet takes from its file name: "A-101 Floor Plan.pdf"
    // gives A-101 and Floor Plan; otherwise "S-" and the count, titled by the whole name.
    static std::pair<QString, QString> sheetName(const QString &fileName, qsizetype existing, qsizetype n);
    // Adds each of `paths` as a sheet of `project`; the reasons files were refused, one per file.
    QStringList addSheets(const Rec &project, const QStringList &paths);
    // Makes the file at `path` the next revision of `sheet`; the reason it was refused, if it was.
    std::optional<QString> newVersion(const Rec &sheet, const QString &path);
    // The project's sheets as listed: by number, then newest revision first.
    static QList<Rec> sheetsInOrder(const DB &db, const QString &project);
    // The print job of a sheet: its PDF as it stands, under its number and title.
    static PrintJob sheetJob(const DB &db, const QString &sheetID);

    // The colours of marks, by name.
    static const QList<std::pair<QString, QColor>> &colors();

    // Chooses files to add (several) or one file for a new revision; empty when cancelled.
    using ChooseFiles = std::function<QStringList(QWidget *parent, bool several)>;
    static ChooseFiles &chooseFilesHook();
    // Asks before deleting; true to delete.
    using Confirm = std::function<bool(QWidget *parent)>;
    static Confirm &confirmDeleteHook();
    // Shows why files were refused.
    using Report = std::function<void(QWidget *parent, const QString &title, const QString &text)>;
    static Report &reportHook();

    // Parts, for tests and the look.
    QListWidget *list() const { return m_list; }
    MarkupView *viewer() const { return m_view; }
    Notice *notice() const { return m_notice; }
    QLabel *caption() const { return m_caption; }
    QLabel *emptyText() const { return m_empty; }
    QString tool() const { return m_tool; }
    QString colorName() const { return m_colorName; }
    void setTool(const QString &tool);
    void setColorName(const QString &name);
    void undo();
    void deleteSheet();

private:
    void rebuild();
    void fillList(const QList<Rec> &sheets);
    void showSheet(const std::optional<Rec> &sheet);
    void chooseAndAdd();
    void chooseAndRevise();
    void openInViewer();

    DB &m_db;
    Nav &m_nav;
    const ModuleDef &m_m;
    QVBoxLayout *m_box;
    QWidget *m_body = nullptr;
    QString m_key;
    QString m_listKey;
    QString m_shownID;

    // Chosen while the screen lives.
    QString m_tool = QStringLiteral("pan");
    QString m_colorName = QStringLiteral("Red");

    QListWidget *m_list = nullptr;
    QLabel *m_caption = nullptr;
    QLabel *m_empty = nullptr;
    FWChromeButton *m_newVersion = nullptr;
    QWidget *m_viewerBox = nullptr;
    QVBoxLayout *m_viewerLayout = nullptr;
    QWidget *m_viewerBody = nullptr;
    Notice *m_notice = nullptr;
    FWSegment *m_tools = nullptr;
    FWChromeButton *m_color = nullptr;
    ThemedTextField *m_title = nullptr;
    ThemedChoice *m_discipline = nullptr;
    MarkupView *m_view = nullptr;
    // The open sheet's view, kept through a theme or zoom change so that its
    // undo list and position survive the rebuild; taken back by showSheet().
    std::unique_ptr<MarkupView> m_kept;
    QString m_keptID;
    Printable *m_printable = nullptr;
};
