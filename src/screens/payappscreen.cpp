#include "payappscreen.h"

#include "payappdetail.h"
#include "soveditor.h"

#include "calc/datefmt.h"
#include "calc/money.h"
#include "catalog/moduledef.h"
#include "documents/payhtml.h"
#include "look/buttons.h"
#include "look/chrome.h"
#include "look/fwui.h"
#include "look/statuspill.h"
#include "shell/nav.h"
#include "shell/printbutton.h"
#include "shell/printcenter.h"
#include "shell/totalsbox.h"
#include "store/db.h"
#include "workflows/payappflow.h"

#include <QtGui/QKeyEvent>
#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QLabel>

#include <algorithm>
#include <functional>

using namespace Qt::StringLiterals;

// One application in the list: number, status, period and the payment due; a click selects it.
class PayAppRow : public QWidget
{
public:
    PayAppRow(std::function<void()> onClick, QWidget *parent)
        : QWidget(parent)
        , m_onClick(std::move(onClick))
        , m_number(new QLabel(this))
        , m_pill(new StatusPill(QString(), this))
        , m_period(new QLabel(this))
        , m_due(new QLabel(this))
    {
        auto *h = new QHBoxLayout(this);
        h->addWidget(m_number);
        h->addWidget(m_pill);
        h->addWidget(m_period);
        h->addStretch(1);
        h->addWidget(m_due);
        setCursor(Qt::PointingHandCursor);
        restyle();
        connect(&FWUI::shared(), &FWUI::changed, this, [this] { restyle(); });
    }
    void show(const Rec &app, qint64 due, bool on)
    {
        m_number->setText(u"Pay App #"_s + app.f.value(u"number"));
        m_pill->setText(app.f.value(u"status"));
        m_period->setText(u"Period to "_s + DateFmt::show(app.f.value(u"periodTo")));
        m_due->setText(u"Due "_s + Money::fmt(due));
        if (on != m_on) {
            m_on = on;
            update();
        }
    }
    bool on() const { return m_on; }

protected:
    void mousePressEvent(QMouseEvent *e) override
    {
        if (e->button() == Qt::LeftButton)
            m_onClick();
    }
    void paintEvent(QPaintEvent *) override
    {
        if (!m_on)
            return;
        const FWUI &ui = FWUI::shared();
        QPainter p(this);
        p.setRenderHint(QPainter::Antialiasing);
        QColor fill = ui.theme().accent;
        fill.setAlphaF(0.18);
        p.setPen(Qt::NoPen);
        p.setBrush(fill);
        p.drawRoundedRect(QRectF(rect()), ui.s(8), ui.s(8));
    }

private:
    void restyle()
    {
        const FWUI &ui = FWUI::shared();
        layout()->setContentsMargins(ui.px(10), ui.px(6), ui.px(10), ui.px(6));
        layout()->setSpacing(ui.px(12));
        m_number->setFont(ui.font(13, QFont::DemiBold));
        m_period->setFont(ui.font(12));
        m_due->setFont(TotalsBox::monoFont(12.5, QFont::DemiBold));
    }
    std::function<void()> m_onClick;
    QLabel *m_number;
    StatusPill *m_pill;
    QLabel *m_period;
    QLabel *m_due;
    bool m_on = false;
};

// The list of applications is one Tab stop: the arrows, Home/End and Page Up/Down move the
// selection, as in any list, so earlier applications are in reach without a mouse.
class PayAppList : public FWPanel
{
public:
    explicit PayAppList(std::function<void(int key)> onKey, QWidget *parent)
        : FWPanel(parent)
        , m_onKey(std::move(onKey))
    {
        setFocusPolicy(Qt::StrongFocus);
        setAccessibleName(u"Pay applications"_s);
    }

protected:
    void keyPressEvent(QKeyEvent *e) override
    {
        switch (e->key()) {
        case Qt::Key_Up:
        case Qt::Key_Down:
        case Qt::Key_Home:
        case Qt::Key_End:
        case Qt::Key_PageUp:
        case Qt::Key_PageDown: m_onKey(e->key()); return;
        default: FWPanel::keyPressEvent(e);
        }
    }

private:
    std::function<void(int)> m_onKey;
};

PayAppScreen::PayAppScreen(const ScreenContext &ctx, QWidget *parent)
    : ProjectScreen(ctx,
                    u" · schedule of values, retainage on work and stored materials, previous certificates"_s,
                    new QWidget, parent)
    , m_sovButton(new FWChromeButton(u"Schedule of Values"_s, u"list.number"_s, trailing()))
    , m_new(new FWChromeButton(u"New Pay App"_s, u"plus"_s, trailing()))
    , m_print(new PrintButton(printJob(ctx.db, {}), false, false, trailing()))
    , m_empty(new QLabel(QString::fromUtf16(PayAppText::kNoPayApps), this))
    , m_list(new PayAppList([this](int key) { step(key); }, this))
    , m_listRows(new QVBoxLayout(m_list))
    , m_detailBox(new QVBoxLayout)
{
    auto *tools = new QHBoxLayout(trailing());
    tools->setContentsMargins(0, 0, 0, 0);
    tools->addWidget(m_sovButton);
    tools->addWidget(m_new);
    tools->addWidget(m_print);
    m_sovButton->setObjectName(u"sov"_s);
    m_new->setObjectName(u"new"_s);
    m_new->setProminent(true);
    connect(m_sovButton, &QAbstractButton::clicked, this, &PayAppScreen::toggleSOV);
    connect(m_new, &QAbstractButton::clicked, this, &PayAppScreen::newApp);

    m_empty->setWordWrap(true);
    m_empty->setAlignment(Qt::AlignCenter);
    m_empty->setObjectName(u"empty"_s);
    body()->addWidget(m_empty);
    body()->addWidget(m_list);
    m_detailBox->setContentsMargins(0, 0, 0, 0);
    body()->addLayout(m_detailBox);
    body()->addStretch(1);

    m_printable = new Printable(this, 2, printJob(m_db, {}));
    auto restyle = [this] {
        const FWUI &ui = FWUI::shared();
        m_listRows->setContentsMargins(ui.px(8), ui.px(8), ui.px(8), ui.px(8));
        m_listRows->setSpacing(ui.px(2));
        m_empty->setFont(ui.font(13));
        m_empty->setContentsMargins(0, ui.px(24), 0, ui.px(24));
        QPalette p = m_empty->palette();
        p.setColor(QPalette::WindowText, ui.theme().dim);
        m_empty->setPalette(p);
    };
    restyle();
    connect(&FWUI::shared(), &FWUI::changed, this, restyle);
    refresh();
}

void PayAppScreen::registerScreen()
{
    ModuleArea::registerScreen(u"payapps"_s, [](const ScreenContext &ctx) { return new PayAppScreen(ctx); });
}

QList<Rec> PayAppScreen::apps(const DB &db, const QString &projectId)
{
    QList<Rec> list = db.list(u"pay_app"_s, {.project = projectId});
    std::stable_sort(list.begin(), list.end(),
                     [](const Rec &a, const Rec &b) { return a.i(u"number") < b.i(u"number"); });
    return list;
}

std::optional<Rec> PayAppScreen::selected(const QList<Rec> &apps, const QString &selectedId)
{
    for (const Rec &app : apps)
        if (!selectedId.isEmpty() && app.id == selectedId)
            return app;
    if (apps.isEmpty())
        return std::nullopt;
    return apps.last();
}

PrintJob PayAppScreen::printJob(DB &db, const QString &payAppId)
{
    const std::optional<Rec> app = db.get(payAppId);
    const QString title =
        app ? u"Pay App "_s + app->f.value(u"number") + u" — G702 / G703"_s : u"Pay App — G702 / G703"_s;
    return PrintJob{title, [db = &db, payAppId]() -> std::optional<PrintSource> {
                        const std::optional<Rec> app = db->get(payAppId);
                        if (!app)
                            return std::nullopt;
                        return PrintSource::fromHtml(PrintReports::payHTML(*db, *app));
                    }};
}

void PayAppScreen::newApp()
{
    const std::optional<Rec> p = m_nav.project(m_db);
    if (!p)
        return;
    const Rec app = newPayApp(m_db, *p);
    m_nav.setSelected(m_m.id, app.id);
}

void PayAppScreen::toggleSOV()
{
    m_showSOV = !m_showSOV;
    refresh();
}

void PayAppScreen::select(const QString &payAppId)
{
    m_nav.setSelected(m_m.id, payAppId);
}

void PayAppScreen::step(int key)
{
    if (m_order.isEmpty())
        return;
    const qsizetype last = m_order.size() - 1;
    qsizetype at = last;
    for (qsizetype i = 0; i <= last; ++i)
        if (m_rows.value(m_order.at(i))->on())
            at = i;
    const qsizetype page = 5;
    switch (key) {
    case Qt::Key_Up: at = std::max<qsizetype>(0, at - 1); break;
    case Qt::Key_Down: at = std::min(last, at + 1); break;
    case Qt::Key_Home: at = 0; break;
    case Qt::Key_End: at = last; break;
    case Qt::Key_PageUp: at = std::max<qsizetype>(0, at - page); break;
    case Qt::Key_PageDown: at = std::min(last, at + page); break;
    default: return;
    }
    select(m_order.at(at));
}

void PayAppScreen::refresh()
{
    m_sovButton->setText(m_showSOV ? u"Hide Schedule of Values"_s : u"Schedule of Values"_s);
    const std::optional<Rec> p = syncProject();
    m_new->setEnabled(p.has_value());
    if (!p) {
        m_print->setEnabled(false);
        return;
    }

    if (m_showSOV) {
        if (!m_sov) {
            m_sov = new SOVEditor(m_db, p->id, this);
            body()->insertWidget(0, m_sov);
        }
        m_sov->setProject(p->id);
        m_sov->refresh();
        m_sov->show();
    } else if (m_sov) {
        m_sov->hide();
    }

    const QList<Rec> list = apps(m_db, p->id);
    const std::optional<Rec> current = selected(list, m_nav.selected(m_m.id));
    m_empty->setVisible(list.isEmpty());
    m_list->setVisible(!list.isEmpty());

    QStringList order;
    for (const Rec &app : list)
        order.append(app.id);
    for (auto it = m_rows.begin(); it != m_rows.end();) {
        if (order.contains(it.key())) {
            ++it;
            continue;
        }
        delete it.value();
        it = m_rows.erase(it);
    }
    // Every row's payment due from one walk of the chain.
    const QHash<QString, PayAppData> figures =
        list.isEmpty() ? QHash<QString, PayAppData>() : payAppDataOfProject(m_db, list.first().project);
    for (const Rec &app : list) {
        PayAppRow *row = m_rows.value(app.id);
        if (!row) {
            row = new PayAppRow([this, id = app.id] { select(id); }, m_list);
            m_rows.insert(app.id, row);
        }
        row->show(app, figures.value(app.id).calc.g702.l8, current && current->id == app.id);
    }
    if (order != m_order) {
        for (const QString &id : order)
            m_listRows->removeWidget(m_rows.value(id));
        for (const QString &id : order)
            m_listRows->addWidget(m_rows.value(id));
        m_order = order;
    }

    // The detail is built for one application and updated in place while it stays selected.
    const QString shownId = current ? current->id : QString();
    if (m_detail && m_detail->payAppId() != shownId) {
        delete m_detail;
        m_detail = nullptr;
    }
    if (!m_detail && current) {
        m_detail = new PayAppDetail(m_db, m_nav, current->id, this);
        m_detailBox->addWidget(m_detail);
    } else if (m_detail) {
        m_detail->refresh();
    }
    if (shownId != m_printedId) {
        m_printedId = shownId;
        const PrintJob job = printJob(m_db, shownId);
        m_printable->setJob(job);
        m_print->setJob(job);
    }
    m_print->setEnabled(current.has_value());
}
