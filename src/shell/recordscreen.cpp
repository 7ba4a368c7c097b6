#include "recordscreen.h"

#include "emptystate.h"
#include "fieldeditors.h"
#include "focuscycle.h"
#include "nav.h"
#include "printbutton.h"
#include "printcenter.h"
#include "recordeditor.h"
#include "recordscreenmodel.h"
#include "recordscreenview.h"
#include "screentitle.h"

#include "calc/datefmt.h"
#include "documents/printreports.h"
#include "documents/printsource.h"
#include "look/buttons.h"
#include "look/chrome.h"
#include "look/fwui.h"
#include "store/db.h"
#include "workflows/numbering.h"

#include <QtCore/QPointer>
#include <QtCore/QRegularExpression>
#include <QtCore/QTimer>
#include <QtGui/QKeyEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QStackedLayout>

using namespace Qt::StringLiterals;

RecordScreen::RecordScreen(const ScreenContext &ctx, QWidget *parent)
    : ShellScreen(parent)
    , m_db(ctx.db)
    , m_nav(ctx.nav)
    , m_m(ctx.module)
{
    auto *trailing = new QWidget(this);
    auto *tools = new QHBoxLayout(trailing);
    tools->setContentsMargins(0, 0, 0, 0);
    m_searchBox = new ThemedTextField({[this] { return m_search; },
                                       [this](const QString &v) {
                                           m_search = v;
                                           m_model->setSearch(m_search);
                                           showRows();
                                       }},
                                      u"Search "_s + m_m.title.toLower(), false, trailing);
    tools->addWidget(m_searchBox);
    m_new = new FWChromeButton(u"New"_s, u"plus"_s, trailing);
    m_new->setToolTip(u"New (Ctrl+N)"_s);
    connect(m_new, &QAbstractButton::clicked, this, &RecordScreen::newRecord);
    tools->addWidget(m_new);
    const QString logTitle = m_m.title + u" Log"_s;
    auto *print = new PrintButton(listJob(), false, false, trailing);
    print->setToolTip(u"Print the "_s + m_m.title + u" log shown in this list"_s);
    tools->addWidget(print);
    m_title = new ScreenTitle(m_m, m_m.blurb, trailing, this);

    auto *col = new QVBoxLayout(this);
    col->addWidget(m_title);
    m_split = new QHBoxLayout;
    col->addLayout(m_split, 1);

    auto *well = new FWWell(this);
    m_stack = new QStackedLayout(well);
    m_model = new RecordListModel(m_db, m_m, this);
    auto *view = new RecordListView(well);
    m_list = view;
    m_list->setAccessibleName(m_m.title);
    m_list->setModel(m_model);
    m_stack->addWidget(m_list);
    m_emptyHolder = new QWidget(well);
    new QVBoxLayout(m_emptyHolder);
    m_stack->addWidget(m_emptyHolder);
    m_split->addWidget(well, 1);

    connect(m_model, &QAbstractItemModel::modelReset, view, &RecordListView::fitColumns);
    // Clicks and arrow keys choose the record; our own re-selection after a reset does not.
    connect(m_list->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this](const QModelIndex &current) {
                if (m_syncing || !current.isValid())
                    return;
                m_nav.setSelected(m_m.id, current.data(RecordListModel::IdRole).toString());
            });

    m_printable = new Printable(this, 1, listJob());
    qApp->installEventFilter(this);
    restyle();
    connect(&FWUI::shared(), &FWUI::changed, this, &RecordScreen::restyle);
    refresh();
    view->fitColumns();
}

RecordScreen::~RecordScreen()
{
    qApp->removeEventFilter(this);
}

void RecordScreen::registerGeneric()
{
    ModuleArea::registerScreen(QString(), [](const ScreenContext &ctx) { return new RecordScreen(ctx); });
}

std::optional<QString> RecordScreen::scopedProject() const
{
    if (!m_m.perProject || m_nav.projectID().isEmpty())
        return std::nullopt;
    return m_nav.projectID();
}

int RecordScreen::editorWidth(const ModuleDef &m)
{
    if (m.lineKind)
        return 780;
    return m.id == u"documents" ? 720 : 440;
}

int RecordScreen::editorFit(const ModuleDef &m, int available)
{
    const FWUI &ui = FWUI::shared();
    // The list keeps enough for a name and an amount; an editor with lines keeps enough for them.
    const int listLeast = ui.px(300);
    const int editorLeast = ui.px(m.lineKind ? 560 : 380);
    return std::min(ui.px(editorWidth(m)), std::max(editorLeast, available - listLeast));
}

void RecordScreen::fitEditor()
{
    if (!m_editor)
        return;
    const QMargins margins = layout()->contentsMargins();
    const int available = width() - margins.left() - margins.right() - m_split->spacing();
    m_editor->setFixedWidth(editorFit(m_m, available));
}

void RecordScreen::resizeEvent(QResizeEvent *e)
{
    ShellScreen::resizeEvent(e);
    fitEditor();
}

QString RecordScreen::newName(const ModuleDef &m)
{
    return u"New "_s + m.title.toLower().remove(QRegularExpression(u"s$"_s));
}

bool RecordScreen::listShown() const
{
    return m_stack->currentWidget() == m_list;
}

void RecordScreen::restyle()
{
    const FWUI &ui = FWUI::shared();
    layout()->setContentsMargins(ui.px(24), ui.px(18), ui.px(24), ui.px(18));
    layout()->setSpacing(ui.px(14));
    m_split->setSpacing(ui.px(12));
    m_searchBox->setFixedWidth(ui.px(200));
    m_stack->setContentsMargins(ui.px(6), ui.px(6), ui.px(6), ui.px(6));
    fitEditor();
}

void RecordScreen::refresh()
{
    const std::optional<QString> project = scopedProject();
    m_title->setSubtitle(project ? m_db.label(*project) + u" · "_s + m_m.blurb : m_m.blurb);
    m_searchBox->refresh();
    m_model->reload(scopedProject(), m_search);
    showRows();
    syncEditor();
}

void RecordScreen::showRows()
{
    if (m_model->rowCount() == 0) {
        const QString lower = m_m.title.toLower();
        const bool noProject = m_m.perProject && m_db.count(u"project"_s) == 0;
        const QString text = noProject ? u"Create a project first, then add "_s + lower + u'.'
                                       : u"Click New to add the first one."_s;
        if (text != m_emptyKey || !m_empty) {
            m_emptyKey = text;
            delete m_empty;
            m_empty = new EmptyState(m_m.symbol, u"No "_s + lower + u" yet"_s, text, m_emptyHolder);
            // The empty list offers the step it needs; New makes the project first when there is none.
            m_empty->addAction(noProject ? u"New Project…"_s : u"New"_s, [this] { newRecord(); });
            m_emptyHolder->layout()->addWidget(m_empty);
        }
        m_stack->setCurrentWidget(m_emptyHolder);
    } else {
        m_stack->setCurrentWidget(m_list);
    }
    syncSelection();
}

void RecordScreen::syncSelection()
{
    const int row = m_model->rowOf(m_nav.selected(m_m.id));
    QItemSelectionModel *sel = m_list->selectionModel();
    const QModelIndex index = row < 0 ? QModelIndex() : m_model->index(row, 0);
    if (sel->currentIndex().row() == row && (row < 0 || sel->isRowSelected(row, {})))
        return;
    m_syncing = true;
    if (row < 0)
        sel->clear();
    else
        sel->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    m_syncing = false;
}

void RecordScreen::syncEditor()
{
    // After a delete the next row is chosen and the list takes the keyboard, rather than
    // the focus falling on the empty space where the editor was.
    if (m_editor && !m_db.find(m_editor->recordId()) && m_model->rowCount() > 0) {
        const int next = std::clamp(m_editorRow, 0, m_model->rowCount() - 1);
        const bool hadFocus = m_editor->isAncestorOf(QApplication::focusWidget());
        m_nav.setSelected(m_m.id, m_model->rowRecord(next).id);
        syncSelection(); // before the list takes the focus, which would make its first row current
        if (hadFocus)
            QTimer::singleShot(0, m_list, [list = QPointer<QTreeView>(m_list)] {
                if (list)
                    list->setFocus(Qt::OtherFocusReason);
            });
    }
    const QString id = m_nav.selected(m_m.id);
    const bool exists = !id.isEmpty() && m_db.find(id);
    if (exists)
        m_editorRow = m_model->rowOf(id);
    if (m_editor && (!exists || m_editor->recordId() != id)) {
        // A focused editor being replaced would hand focus to a random widget.
        m_editor->hide();
        m_editor->deleteLater();
        m_editor = nullptr;
    }
    if (!exists)
        return;
    if (m_editor) {
        m_editor->refresh();
        return;
    }
    m_editor = new RecordEditor(m_db, m_nav, m_m, id, this);
    fitEditor();
    m_split->addWidget(m_editor);
    if (m_focusNew == id) {
        // A new record is filled in from its first field; the editor shows on the next turn.
        m_focusNew.clear();
        QTimer::singleShot(0, m_editor, [editor = m_editor] {
            if (QWidget *first = FocusCycle::firstField(editor))
                first->setFocus(Qt::OtherFocusReason);
        });
    }
}

void RecordScreen::newRecord()
{
    QString project = scopedProject().value_or(QString());
    if (m_m.perProject && project.isEmpty()) {
        const QList<Rec> projects = m_db.list(u"project"_s);
        if (projects.isEmpty()) {
            m_nav.setNewProject(true);
            return;
        }
        project = projects.first().id;
    }
    const QString today = DateFmt::iso(DateFmt::today());
    Fields f = m_m.defaults;
    for (const FD &fd : m_m.fields)
        if (fd.type.kind == FT::date && fd.key == u"date" && !f.contains(u"date"))
            f.insert(u"date"_s, today);
    if (m_m.numbered)
        f.insert(u"number"_s, QString::number(nextNumber(m_db, m_m.kind, project)));
    if (m_m.kind == u"waiver") {
        if (const std::optional<Rec> company = m_db.company()) {
            f.insert(u"claimant"_s, company->f.value(u"name"));
            f.insert(u"through"_s, today);
            if (const std::optional<Rec> p = m_db.get(project)) {
                f.insert(u"state"_s, p->f.value(u"state"));
                f.insert(u"customer"_s, m_db.label(p->f.value(u"client")));
            }
        }
    } else if (m_m.kind == u"timecard") {
        if (const std::optional<Rec> user = m_db.user()) {
            f.insert(u"worker"_s, user->id);
            f.insert(u"rate"_s, user->f.value(u"rate"));
        }
    } else if (m_m.kind == u"project") {
        f.insert(u"number"_s,
                 QString::asprintf("%03lld", static_cast<long long>(m_db.count(u"project"_s) + 1)));
        f.insert(u"start"_s, today);
    }
    const QString key = m_m.fields.isEmpty() ? u"name"_s : m_m.fields.first().key;
    if (!f.contains(key) && !m_m.fields.isEmpty() && m_m.fields.first().type.kind == FT::text)
        f.insert(key, newName(m_m));

    Rec rec;
    rec.id = newID();
    rec.kind = m_m.kind;
    rec.company = m_db.companyID();
    rec.project = m_m.perProject ? project : QString();
    rec.created = nowSeconds();
    rec.updated = rec.created;
    rec.f = f;
    if (m_m.kind == u"company")
        rec.company = rec.id;
    m_focusNew = rec.id;
    m_db.save(rec);
    m_nav.setSelected(m_m.id, rec.id);
}

PrintJob RecordScreen::listJob()
{
    // The log is made when printing, of the rows the list shows then.
    return PrintJob{m_m.title + u" Log"_s, [this]() -> std::optional<PrintSource> {
                        return PrintSource::fromHtml(
                            PrintReports::listHTML(m_db, m_m, m_model->rows(), scopedProject()));
                    }};
}

bool RecordScreen::eventFilter(QObject *watched, QEvent *event)
{
    // Ctrl+N is also the File menu's New Project; on a record screen New wins,
    // so the key is claimed before the menu's shortcut sees it.
    const QEvent::Type type = event->type();
    if ((type == QEvent::ShortcutOverride || type == QEvent::KeyPress) && isVisible() &&
        window()->isActiveWindow()) {
        auto *key = static_cast<QKeyEvent *>(event);
        if (key->keyCombination() == QKeyCombination(Qt::ControlModifier, Qt::Key_N)) {
            if (type == QEvent::ShortcutOverride) {
                event->accept();
                return true;
            }
            newRecord();
            return true;
        }
    }
    return ShellScreen::eventFilter(watched, event);
}
