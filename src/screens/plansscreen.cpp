#include "plansscreen.h"

#include "markupview.h"

#include "calc/datefmt.h"
#include "catalog/moduledef.h"
#include "documents/pdfmarks.h"
#include "documents/pdfwrite.h"
#include "look/alert.h"
#include "look/buttons.h"
#include "look/chrome.h"
#include "look/fwui.h"
#include "look/icons.h"
#include "shell/emptystate.h"
#include "shell/fieldeditors.h"
#include "shell/nav.h"
#include "shell/pickproject.h"
#include "shell/printcenter.h"
#include "shell/screentitle.h"
#include "store/db.h"
#include "workflows/binding.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QScrollBar>

using namespace Qt::StringLiterals;

namespace {

// One line of the sheet list: symbol, number and title, and the dim line under them.
QWidget *sheetRow(const Rec &sheet)
{
    const FWUI &ui = FWUI::shared();
    const FWTheme &theme = ui.theme();
    const bool old = sheet.f.value(u"status") == u"Superseded";
    auto *w = new QWidget;
    auto *row = new QHBoxLayout(w);
    row->setContentsMargins(ui.px(8), ui.px(5), ui.px(8), ui.px(5));
    row->setSpacing(ui.px(8));
    auto *icon = new QLabel(w);
    icon->setPixmap(Icons::pixmap(old ? u"clock.arrow.circlepath"_s : u"doc.richtext.fill"_s,
                                  old ? theme.dim : theme.accent, ui.px(18)));
    row->addWidget(icon, 0, Qt::AlignTop);
    auto *texts = new QVBoxLayout;
    texts->setSpacing(ui.px(1));
    auto *main = new QLabel(QString(sheet.f.value(u"number") + u"  "_s + sheet.f.value(u"title")), w);
    main->setTextFormat(Qt::PlainText);
    main->setFont(ui.font(12.5, QFont::DemiBold));
    main->setStyleSheet(u"color: %1;"_s.arg((old ? theme.dim : theme.text).name()));
    auto *dim = new QLabel(QString(u"Rev "_s + sheet.f.value(u"version") + u" · "_s +
                                   sheet.f.value(u"discipline") + u" · "_s + sheet.f.value(u"date")),
                           w);
    dim->setTextFormat(Qt::PlainText);
    dim->setFont(ui.font(10.5));
    QColor dimColor = theme.dim;
    if (old)
        dimColor.setAlphaF(0.7f);
    dim->setStyleSheet(u"color: %1;"_s.arg(dimColor.name(QColor::HexArgb)));
    texts->addWidget(main);
    texts->addWidget(dim);
    row->addLayout(texts, 1);
    return w;
}

} // namespace

PlansScreen::ChooseFiles &PlansScreen::chooseFilesHook()
{
    static ChooseFiles hook;
    return hook;
}

PlansScreen::Confirm &PlansScreen::confirmDeleteHook()
{
    static Confirm hook;
    return hook;
}

PlansScreen::Report &PlansScreen::reportHook()
{
    static Report hook;
    return hook;
}

const QList<std::pair<QString, QColor>> &PlansScreen::colors()
{
    static const QList<std::pair<QString, QColor>> list{{u"Red"_s, QColor(255, 59, 48)},
                                                        {u"Blue"_s, QColor(0, 122, 255)},
                                                        {u"Green"_s, QColor(40, 180, 80)},
                                                        {u"Orange"_s, QColor(255, 149, 0)}};
    return list;
}

PlansScreen::PlansScreen(const ScreenContext &ctx, QWidget *parent)
    : ShellScreen(parent)
    , m_db(ctx.db)
    , m_nav(ctx.nav)
    , m_m(ctx.module)
    , m_box(new QVBoxLayout(this))
{
    connect(&FWUI::shared(), &FWUI::changed, this, [this] {
        if (m_view) {
            m_view->setParent(nullptr); // out of the widgets the rebuild deletes
            m_kept.reset(m_view);
            m_keptID = m_shownID;
            m_view = nullptr;
        }
        m_key.clear();
        rebuild();
        m_kept.reset(); // not shown again: another sheet or no project
    });
    rebuild();
}

PlansScreen::~PlansScreen() = default;

void PlansScreen::registerScreen()
{
    ModuleArea::registerScreen(u"plans"_s, [](const ScreenContext &ctx) { return new PlansScreen(ctx); });
}

std::pair<QString, QString> PlansScreen::sheetName(const QString &fileName, qsizetype existing, qsizetype n)
{
    const QString name = QFileInfo(fileName).completeBaseName();
    const qsizetype blank = name.indexOf(u' ');
    if (blank > 0) {
        const QString first = name.left(blank);
        if (std::any_of(first.begin(), first.end(), [](QChar c) { return c.isDigit(); }))
            return {first, name.mid(blank + 1)};
    }
    return {u"S-%1"_s.arg(qlonglong(existing + n), 2, 10, QChar(u'0')), name};
}

QList<Rec> PlansScreen::sheetsInOrder(const DB &db, const QString &project)
{
    QList<Rec> sheets = db.list(u"plan_sheet"_s, RecFilter{.project = project});
    std::stable_sort(sheets.begin(), sheets.end(), [](const Rec &a, const Rec &b) {
        const QString &na = a.f.value(u"number"), &nb = b.f.value(u"number");
        if (na != nb)
            return na < nb;
        return a.i(u"version") > b.i(u"version");
    });
    return sheets;
}

PrintJob PlansScreen::sheetJob(const DB &db, const QString &sheetID)
{
    return PrintJob{u"Plan sheet"_s, [db = &db, sheetID]() -> std::optional<PrintSource> {
                        const std::optional<Rec> sheet = db->get(sheetID);
                        return sheet ? PDFOut::sheetSource(*db, *sheet) : std::nullopt;
                    }};
}

QStringList PlansScreen::addSheets(const Rec &project, const QStringList &paths)
{
    const qsizetype existing = m_db.count(u"plan_sheet"_s, RecFilter{.project = project.id});
    QStringList problems;
    QString last;
    for (qsizetype i = 0; i < paths.size(); ++i) {
        const QString &path = paths[i];
        if (const std::optional<QString> problem = PdfMarkup::problem(path)) {
            problems.append(*problem);
            continue;
        }
        const std::optional<QString> stored = m_db.importFile(path);
        if (!stored) {
            problems.append(
                u"“%1” could not be copied into the company's files."_s.arg(QFileInfo(path).fileName()));
            continue;
        }
        const auto [number, title] = sheetName(QFileInfo(path).fileName(), existing, i + 1);
        last = m_db.add(u"plan_sheet"_s, project.id, QString(),
                        {{u"number"_s, number},
                         {u"title"_s, title},
                         {u"version"_s, u"1"_s},
                         {u"status"_s, u"Current"_s},
                         {u"discipline"_s, u"General"_s},
                         {u"date"_s, DateFmt::iso(DateFmt::today())},
                         {u"file"_s, *stored}})
                   .id;
    }
    if (!last.isEmpty())
        m_nav.setSelected(m_m.id, last);
    refresh();
    return problems;
}

std::optional<QString> PlansScreen::newVersion(const Rec &sheet, const QString &path)
{
    if (const std::optional<QString> problem = PdfMarkup::problem(path))
        return problem;
    const std::optional<QString> stored = m_db.importFile(path);
    if (!stored)
        return u"“%1” could not be copied into the company's files."_s.arg(QFileInfo(path).fileName());
    const QString number = sheet.f.value(u"number");
    qint64 highest = 0;
    QList<Rec> superseded;
    for (Rec r : m_db.list(u"plan_sheet"_s, RecFilter{.project = sheet.project})) {
        if (r.f.value(u"number") != number)
            continue;
        highest = std::max(highest, r.i(u"version"));
        // The older revisions keep their files and marks; only their status changes.
        if (r.f.value(u"status") != u"Superseded") {
            r.f.insert(u"status"_s, u"Superseded"_s);
            superseded.append(r);
        }
    }
    if (!superseded.isEmpty())
        m_db.saveAll(superseded);
    const Rec made = m_db.add(u"plan_sheet"_s, sheet.project, QString(),
                              {{u"number"_s, number},
                               {u"title"_s, sheet.f.value(u"title")},
                               {u"discipline"_s, sheet.f.value(u"discipline")},
                               {u"version"_s, QString::number(highest + 1)},
                               {u"status"_s, u"Current"_s},
                               {u"date"_s, DateFmt::iso(DateFmt::today())},
                               {u"file"_s, *stored}},
                              sheet.company);
    m_nav.setSelected(m_m.id, made.id);
    refresh();
    return std::nullopt;
}

void PlansScreen::refresh()
{
    rebuild();
}

void PlansScreen::rebuild()
{
    const FWUI &ui = FWUI::shared();
    m_box->setContentsMargins(ui.px(24), ui.px(18), ui.px(24), ui.px(18));
    const std::optional<Rec> project = m_nav.project(m_db);
    const QString key = project ? project->id : u"pick|"_s + QString::number(m_db.count(u"project"_s));
    if (key != m_key) {
        m_key = key;
        delete m_body;
        m_list = nullptr;
        m_view = nullptr;
        m_notice = nullptr;
        m_title = nullptr;
        m_discipline = nullptr;
        m_printable = nullptr;
        m_viewerBody = nullptr;
        m_listKey.clear();
        m_shownID.clear();
        if (!project) {
            m_body = new PickProject(m_db, m_nav, m_m, this);
            m_box->addWidget(m_body, 1);
            return;
        }
        m_body = new QWidget(this);
        auto *col = new QVBoxLayout(m_body);
        col->setContentsMargins(0, 0, 0, 0);
        col->setSpacing(ui.px(12));
        col->addWidget(new ScreenTitle(m_m, project->f.value(u"name"), nullptr, m_body));
        auto *split = new QHBoxLayout;
        split->setSpacing(ui.px(14));
        col->addLayout(split, 1);

        auto *left = new FWPanel(m_body);
        left->setFixedWidth(ui.px(350));
        auto *leftBox = new QVBoxLayout(left);
        leftBox->setContentsMargins(ui.px(12), ui.px(12), ui.px(12), ui.px(12));
        leftBox->setSpacing(ui.px(8));
        auto *buttons = new QHBoxLayout;
        auto *add = new FWChromeButton(u"Add Sheets (PDF)…"_s, u"plus"_s, left);
        add->setProminent(true);
        connect(add, &QAbstractButton::clicked, this, &PlansScreen::chooseAndAdd);
        m_newVersion = new FWChromeButton(u"New Version…"_s, u"arrow.triangle.2.circlepath"_s, left);
        connect(m_newVersion, &QAbstractButton::clicked, this, &PlansScreen::chooseAndRevise);
        buttons->addWidget(add);
        buttons->addWidget(m_newVersion);
        buttons->addStretch(1);
        leftBox->addLayout(buttons);
        m_caption = new FWCaption(QString(), left);
        leftBox->addWidget(m_caption);
        m_list = new QListWidget(left);
        m_list->setAccessibleName(u"Sheets"_s);
        m_list->setFrameShape(QFrame::NoFrame);
        m_list->setSelectionMode(QAbstractItemView::SingleSelection);
        m_list->setStyleSheet(
            u"QListWidget { background: transparent; } QListWidget::item:selected { background: %1; "
            u"border-radius: 6px; }"_s.arg(ui.theme().raised.name()));
        FieldLook::thinScrollBar(m_list->verticalScrollBar());
        connect(m_list, &QListWidget::currentItemChanged, this, [this](QListWidgetItem *item) {
            if (!item)
                return;
            m_nav.setSelected(m_m.id, item->data(Qt::UserRole).toString());
            refresh();
        });
        leftBox->addWidget(m_list, 1);
        m_empty =
            new QLabel(u"No plan sheets yet. Click Add Sheets (PDF)… — each PDF becomes a sheet; multi-page "
                       u"sets work too."_s,
                       left);
        m_empty->setWordWrap(true);
        m_empty->setStyleSheet(u"color: %1;"_s.arg(ui.theme().dim.name()));
        m_empty->setFont(ui.font(12));
        leftBox->addWidget(m_empty);
        leftBox->addStretch(0);
        split->addWidget(left);

        m_viewerBox = new QWidget(m_body);
        m_viewerLayout = new QVBoxLayout(m_viewerBox);
        m_viewerLayout->setContentsMargins(0, 0, 0, 0);
        split->addWidget(m_viewerBox, 1);
        m_box->addWidget(m_body, 1);
    }
    if (!project)
        return;

    const QList<Rec> sheets = sheetsInOrder(m_db, project->id);
    fillList(sheets);
    const QString selected = m_nav.selected(m_m.id);
    std::optional<Rec> sheet;
    for (const Rec &s : sheets)
        if (s.id == selected)
            sheet = s;
    m_newVersion->setVisible(sheet.has_value());
    showSheet(sheet);
}

void PlansScreen::fillList(const QList<Rec> &sheets)
{
    // What each row shows; a row is made again only when its own text changed.
    QStringList ids, keys;
    qsizetype current = 0;
    for (const Rec &s : sheets) {
        ids.append(s.id);
        keys.append(s.f.value(u"number") + u'|' + s.f.value(u"title") + u'|' + s.f.value(u"version") + u'|' +
                    s.f.value(u"status") + u'|' + s.f.value(u"discipline") + u'|' + s.f.value(u"date"));
        current += s.f.value(u"status") != u"Superseded";
    }
    m_caption->setText(QString::number(current) + u" current · "_s + QString::number(sheets.size()) +
                       (sheets.size() == 1 ? u" sheet"_s : u" sheets"_s));
    m_list->setVisible(!sheets.isEmpty());
    m_empty->setVisible(sheets.isEmpty());
    const QSignalBlocker quiet(m_list);
    const auto setRow = [this](QListWidgetItem *item, const Rec &s, const QString &key) {
        item->setData(Qt::UserRole, s.id);
        item->setData(Qt::UserRole + 1, key);
        QWidget *row = sheetRow(s);
        item->setSizeHint(row->sizeHint());
        m_list->setItemWidget(item, row);
    };
    if (ids.join(u',') != m_listKey) {
        m_listKey = ids.join(u',');
        m_list->clear();
        for (qsizetype i = 0; i < sheets.size(); ++i)
            setRow(new QListWidgetItem(m_list), sheets[i], keys[i]);
    } else {
        for (int i = 0; i < m_list->count(); ++i)
            if (m_list->item(i)->data(Qt::UserRole + 1).toString() != keys[i])
                setRow(m_list->item(i), sheets[i], keys[i]);
    }
    const QString selected = m_nav.selected(m_m.id);
    m_list->setCurrentRow(int(ids.indexOf(selected)));
}

void PlansScreen::chooseAndAdd()
{
    const std::optional<Rec> project = m_nav.project(m_db);
    if (!project)
        return;
    const ChooseFiles &hook = chooseFilesHook();
    const QStringList paths = hook ? hook(this, true)
                                   : QFileDialog::getOpenFileNames(this, u"Add Sheets"_s, QDir::homePath(),
                                                                   u"PDF files (*.pdf *.PDF)"_s);
    if (paths.isEmpty())
        return;
    const QStringList problems = addSheets(*project, paths);
    if (problems.isEmpty())
        return;
    const QString title =
        problems.size() == paths.size() ? u"No sheets were added"_s : u"Some files were not added"_s;
    if (const Report &report = reportHook())
        report(this, title, problems.join(u'\n'));
    else
        FWAlert::show(this, title, problems.join(u'\n'));
}

void PlansScreen::chooseAndRevise()
{
    const std::optional<Rec> sheet = m_db.get(m_shownID);
    if (!sheet)
        return;
    const ChooseFiles &hook = chooseFilesHook();
    const QStringList paths =
        hook ? hook(this, false)
             : QStringList{QFileDialog::getOpenFileName(this, u"New Version"_s, QDir::homePath(),
                                                        u"PDF files (*.pdf *.PDF)"_s)};
    if (paths.isEmpty() || paths.first().isEmpty())
        return;
    if (const std::optional<QString> problem = newVersion(*sheet, paths.first())) {
        if (const Report &report = reportHook())
            report(this, u"The new version was not added"_s, *problem);
        else
            FWAlert::show(this, u"The new version was not added"_s, *problem);
    }
}
