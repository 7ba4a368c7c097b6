#pragma once
#include "modulearea.h"

#include "catalog/moduledef.h"

#include <optional>

class EmptyState;
class FWChromeButton;
class Printable;
struct PrintJob;
class QHBoxLayout;
class QStackedLayout;
class QTreeView;
class RecordEditor;
class RecordListModel;
class ScreenTitle;
class ThemedTextField;

// The screen most modules are: a searchable list of the module's records, a
// New button, and the editor of the selected record beside the list. Built
// once per module; refresh() updates it in place.
class RecordScreen : public ShellScreen
{
    Q_OBJECT
public:
    explicit RecordScreen(const ScreenContext &ctx, QWidget *parent = nullptr);
    ~RecordScreen() override;
    // Registers the screen as the generic one of the module area.
    static void registerGeneric();

    void refresh() override;
    // Creates, saves and selects a new record, or asks for a project first.
    void newRecord();

    // Nav's project when the module works per project and one is chosen.
    std::optional<QString> scopedProject() const;
    // The editor column's width in points before zoom, when the screen has room for it.
    static int editorWidth(const ModuleDef &m);
    // The editor column's width in pixels at the current zoom on a screen whose list and
    // editor share `available` pixels: its own width, narrowed down to a least one so
    // that the list keeps room to read.
    static int editorFit(const ModuleDef &m, int available);
    // The first-name rule: "New " and the title in lower case less one trailing "s".
    static QString newName(const ModuleDef &m);

    // Parts, for tests.
    RecordListModel *model() const { return m_model; }
    QTreeView *list() const { return m_list; }
    ThemedTextField *searchBox() const { return m_searchBox; }
    RecordEditor *editor() const { return m_editor; }
    EmptyState *emptyState() const { return m_empty; }
    // Whether the list (rather than the empty state) is showing.
    bool listShown() const;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void resizeEvent(QResizeEvent *e) override;

private:
    // The list or the empty state, for the rows the model holds now.
    void showRows();
    void syncSelection();
    void syncEditor();
    void restyle();
    // Gives the editor its width for the room the screen has now.
    void fitEditor();
    // The list's print job: the log of the rows shown.
    PrintJob listJob();

    DB &m_db;
    Nav &m_nav;
    const ModuleDef &m_m;
    QString m_search;
    ScreenTitle *m_title;
    ThemedTextField *m_searchBox;
    FWChromeButton *m_new;
    QStackedLayout *m_stack;
    QTreeView *m_list;
    RecordListModel *m_model;
    EmptyState *m_empty = nullptr;
    QString m_emptyKey;
    QWidget *m_emptyHolder;
    QHBoxLayout *m_split;
    RecordEditor *m_editor = nullptr;
    Printable *m_printable;
    bool m_syncing = false;
    int m_editorRow = -1; // the row of the record in the editor, for choosing the next after a delete
    QString m_focusNew;   // a record just made, whose first field takes the focus
};
