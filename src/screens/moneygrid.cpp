#include "moneygrid.h"

#include "budgetscreen.h"
#include "jobcostscreen.h"
#include "kpitile.h"
#include "look/tones.h"
#include "payappscreen.h"

#include "calc/money.h"
#include "catalog/moduledef.h"
#include "look/chrome.h"
#include "look/fwui.h"
#include "shell/fieldeditors.h"
#include "shell/nav.h"
#include "shell/pickproject.h"
#include "shell/printbutton.h"
#include "shell/printcenter.h"
#include "shell/screentitle.h"
#include "shell/totalsbox.h"
#include "store/db.h"

#include <QtGui/QPainter>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QStackedLayout>

using namespace Qt::StringLiterals;

namespace {

// The narrowest the free column gets before the grid scrolls sideways.
constexpr int kFreeMin = 170;

// A row of a grid with a hairline under it.
class GridRow : public QWidget
{
public:
    using QWidget::QWidget;

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter p(this);
        QColor line = FWUI::shared().theme().dim;
        line.setAlphaF(0.25);
        p.setPen(QPen(line, 1));
        p.drawLine(QPointF(0, height() - 0.5), QPointF(width(), height() - 0.5));
    }
};

// Text of a grid cell: cut with an ellipsis when its column is too narrow,
// the whole text then in the tooltip.
class GridText : public QLabel
{
public:
    using QLabel::QLabel;

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter p(this);
        p.setFont(font());
        p.setPen(palette().color(QPalette::WindowText));
        const QRect box = contentsRect();
        const QString shown = fontMetrics().elidedText(text(), Qt::ElideRight, box.width());
        setToolTip(shown == text() ? QString() : text());
        p.drawText(box, int(alignment()), shown);
    }
};

} // namespace

MoneyCell::MoneyCell(QWidget *parent)
    : QLabel(parent)
{
    setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    setTextInteractionFlags(Qt::TextSelectableByMouse);
    restyle();
    connect(&FWUI::shared(), &FWUI::changed, this, &MoneyCell::restyle);
}

QColor MoneyCell::red()
{
    return FWTones::current().bad;
}

QColor MoneyCell::green()
{
    return FWTones::current().good;
}

void MoneyCell::set(qint64 cents, bool bold, const QColor &tint)
{
    if (m_shown && cents == m_value && bold == m_bold && tint == m_tint)
        return;
    const bool restyleNeeded = !m_shown || bold != m_bold || tint != m_tint;
    m_shown = true;
    m_value = cents;
    m_bold = bold;
    m_tint = tint;
    setText(Money::fmt(cents));
    if (restyleNeeded)
        restyle();
}

void MoneyCell::setPoints(qreal points)
{
    m_points = points;
    restyle();
}

void MoneyCell::restyle()
{
    setFont(TotalsBox::monoFont(m_points, m_bold ? QFont::Bold : QFont::Normal));
    QPalette p = palette();
    p.setColor(QPalette::WindowText, m_tint.isValid() ? m_tint : FWUI::shared().theme().text);
    setPalette(p);
}

MoneyGrid::MoneyGrid(const GridHead &head, QWidget *parent)
    : QWidget(parent)
    , m_head(head)
    , m_rows(new QVBoxLayout(this))
    , m_header(new GridRow(this))
{
    m_rows->setContentsMargins(0, 0, 0, 0);
    m_rows->setSpacing(0);
    Cells titles;
    for (const GridCol &c : head) {
        auto *t = new FWCaption(c.title, m_header);
        t->setAlignment((c.right ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
        titles.append(t);
    }
    place(m_header, titles);
    m_rows->addWidget(m_header);
    restyle();
    connect(&FWUI::shared(), &FWUI::changed, this, &MoneyGrid::restyle);
}

QLabel *MoneyGrid::text(QWidget *row, bool bold)
{
    auto *l = new GridText(row);
    l->setTextFormat(Qt::PlainText);
    l->setFont(FWUI::shared().font(12.5, bold ? QFont::Bold : QFont::Normal));
    connect(&FWUI::shared(), &FWUI::changed, l,
            [l, bold] { l->setFont(FWUI::shared().font(12.5, bold ? QFont::Bold : QFont::Normal)); });
    return l;
}

void MoneyGrid::place(QWidget *row, const Cells &cells)
{
    auto *h = new QHBoxLayout(row);
    h->setContentsMargins(0, 0, 0, 0);
    for (qsizetype i = 0; i < cells.size(); ++i) {
        const bool free = i >= m_head.size() || m_head.at(i).width == 0;
        h->addWidget(cells.at(i), free ? 1 : 0);
    }
}

void MoneyGrid::sync(const QStringList &keys, const Maker &make)
{
    if (keys == m_order)
        return;
    for (auto it = m_rowWidgets.begin(); it != m_rowWidgets.end();) {
        if (keys.contains(it.key())) {
            ++it;
            continue;
        }
        m_cells.remove(it.key());
        delete it.value();
        it = m_rowWidgets.erase(it);
    }
    for (const QString &key : keys) {
        if (m_rowWidgets.contains(key))
            continue;
        auto *row = new GridRow(this);
        const Cells cells = make(key, row);
        place(row, cells);
        m_rowWidgets.insert(key, row);
        m_cells.insert(key, cells);
    }
    // Rows move by re-insertion; their widgets, and a box's focus, stay alive.
    for (const QString &key : keys)
        m_rows->removeWidget(m_rowWidgets.value(key));
    for (const QString &key : keys)
        m_rows->addWidget(m_rowWidgets.value(key));
    m_order = keys;
    restyle();
    nameInputs();
}

QString MoneyGrid::rowName(const QString &key) const
{
    QStringList words;
    const Cells cells = m_cells.value(key);
    for (qsizetype i = 0; i < cells.size() && i < m_head.size() && !m_head.at(i).right; ++i)
        if (auto *label = qobject_cast<QLabel *>(cells.at(i)); label && !label->text().isEmpty())
            words << label->text();
    return words.join(u' ');
}

void MoneyGrid::nameInputs()
{
    for (const QString &key : std::as_const(m_order)) {
        const Cells cells = m_cells.value(key);
        const QString row = rowName(key);
        for (qsizetype i = 0; i < cells.size() && i < m_head.size(); ++i) {
            if (qobject_cast<QLabel *>(cells.at(i)))
                continue;
            const QString name = row.isEmpty() ? m_head.at(i).title : m_head.at(i).title + u", "_s + row;
            cells.at(i)->setAccessibleName(name);
            for (QWidget *input : cells.at(i)->findChildren<QLineEdit *>())
                input->setAccessibleName(name);
        }
    }
}

void MoneyGrid::restyle()
{
    const FWUI &ui = FWUI::shared();
    auto size = [&](QWidget *row, const Cells &cells) {
        if (auto *h = qobject_cast<QHBoxLayout *>(row->layout())) {
            h->setSpacing(ui.px(10));
            h->setContentsMargins(ui.px(6), ui.px(4), ui.px(6), ui.px(4));
        }
        for (qsizetype i = 0; i < cells.size() && i < m_head.size(); ++i) {
            QWidget *cell = cells.at(i);
            const int w = m_head.at(i).width;
            QSizePolicy policy = cell->sizePolicy();
            if (w > 0) {
                // A box layout gives an ignored-size item no room of its own, so fixed columns say so.
                cell->setFixedWidth(ui.px(w));
                policy.setHorizontalPolicy(QSizePolicy::Fixed);
            } else {
                cell->setMinimumWidth(ui.px(kFreeMin));
                // Long text in the free column is cut rather than widening the grid.
                if (qobject_cast<QLabel *>(cell))
                    policy.setHorizontalPolicy(QSizePolicy::Ignored);
            }
            cell->setSizePolicy(policy);
        }
    };
    size(m_header, m_header->findChildren<QWidget *>(Qt::FindDirectChildrenOnly));
    for (auto it = m_cells.cbegin(); it != m_cells.cend(); ++it)
        size(m_rowWidgets.value(it.key()), it.value());
}

ProjectScreen::ProjectScreen(const ScreenContext &ctx, const QString &tail, QWidget *trailing,
                             QWidget *parent)
    : ShellScreen(parent)
    , m_db(ctx.db)
    , m_nav(ctx.nav)
    , m_m(ctx.module)
    , m_tail(tail)
    , m_trailing(trailing)
{
    auto *col = new QVBoxLayout(this);
    m_title = new ScreenTitle(m_m, {}, trailing, this);
    for (QLabel *l : m_title->findChildren<QLabel *>(Qt::FindDirectChildrenOnly))
        if (l->objectName().isEmpty() && l->pixmap().isNull())
            m_subtitle = l;
    col->addWidget(m_title);
    m_stack = new QStackedLayout;
    col->addLayout(m_stack, 1);

    m_scroll = new QScrollArea(this);
    m_scroll->setWidgetResizable(true);
    m_scroll->setFrameShape(QFrame::NoFrame);
    m_scroll->viewport()->setAutoFillBackground(false);
    FieldLook::thinScrollBars(m_scroll);
    auto *page = new QWidget;
    m_body = new QVBoxLayout(page);
    m_body->setContentsMargins(0, 0, 0, 0);
    m_scroll->setWidget(page);
    // The screen's background shows through; setWidget turned the page's own fill on.
    page->setAutoFillBackground(false);
    m_stack->addWidget(m_scroll);

    m_pickHolder = new QWidget(this);
    new QVBoxLayout(m_pickHolder);
    m_stack->addWidget(m_pickHolder);
    restyle();
    connect(&FWUI::shared(), &FWUI::changed, this, &ProjectScreen::restyle);
}

bool ProjectScreen::bodyShown() const
{
    return m_stack->currentWidget() == m_scroll;
}

QList<KPITile *> ProjectScreen::addTiles(const QList<std::pair<QString, QString>> &titlesAndSymbols)
{
    auto *row = new QHBoxLayout;
    QList<KPITile *> tiles;
    for (const auto &[title, symbol] : titlesAndSymbols) {
        auto *tile = new KPITile(title, symbol, this);
        row->addWidget(tile);
        tiles.append(tile);
    }
    m_body->addLayout(row);
    return tiles;
}

std::optional<Rec> ProjectScreen::syncProject(Printable *printable, PrintJob (*make)(DB &, const QString &))
{
    std::optional<Rec> p = syncProject();
    // The job's title carries the project's name, so a rename makes the job again too.
    if (const QString key = p ? p->id + u'\x1f' + p->f.value(u"name") : QString(); p && key != m_jobProject) {
        m_jobProject = key;
        const PrintJob job = make(m_db, p->id);
        printable->setJob(job);
        if (auto *print = findChild<PrintButton *>())
            print->setJob(job);
    }
    return p;
}

std::optional<Rec> ProjectScreen::syncProject()
{
    const std::optional<Rec> project = m_nav.project(m_db);
    // Printing and the screen's own actions need a project.
    if (m_trailing)
        m_trailing->setVisible(project.has_value());
    if (project) {
        m_title->setSubtitle(project->f.value(u"name") + m_tail);
        if (m_picker) {
            delete m_picker;
            m_picker = nullptr;
            m_pickKey.clear();
        }
        m_stack->setCurrentWidget(m_scroll);
        return project;
    }
    m_title->setSubtitle(m_m.blurb);
    // The picker names every project; it is rebuilt only when they change.
    QString key;
    for (const Rec &p : m_db.list(u"project"_s))
        key += p.id + p.f.value(u"number") + p.f.value(u"name") + u'\n';
    if (!m_picker || key != m_pickKey) {
        delete m_picker;
        m_picker = new PickProject(m_db, m_nav, m_m, m_pickHolder);
        m_pickHolder->layout()->addWidget(m_picker);
        m_pickKey = key;
    }
    m_stack->setCurrentWidget(m_pickHolder);
    return std::nullopt;
}

void ProjectScreen::restyle()
{
    const FWUI &ui = FWUI::shared();
    layout()->setContentsMargins(ui.px(24), ui.px(18), ui.px(24), ui.px(18));
    layout()->setSpacing(ui.px(14));
    m_body->setSpacing(ui.px(14));
    // At large zooms the project's name and the explanation wrap rather than widen the window.
    if (m_subtitle)
        m_subtitle->setWordWrap(ui.zoom() > 1.25);
}

void registerMoneyScreens()
{
    BudgetScreen::registerScreen();
    JobCostScreen::registerScreen();
    PayAppScreen::registerScreen();
}
