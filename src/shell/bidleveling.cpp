#include "bidleveling.h"

#include "calc/money.h"
#include "look/buttons.h"
#include "look/chrome.h"
#include "look/fwui.h"
#include "look/icons.h"
#include "store/db.h"
#include "totalsbox.h"
#include "workflows/bids.h"

#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QLabel>

using namespace Qt::StringLiterals;

BidLevelingPanel::BidLevelingPanel(DB &db, const QString &packageId, QWidget *parent)
    : QWidget(parent)
    , m_db(db)
    , m_id(packageId)
    , m_rows(new FWWell(this))
    , m_grid(new QGridLayout(m_rows))
    , m_spread(new QLabel(this))
{
    auto *col = new QVBoxLayout(this);
    col->setContentsMargins(0, 0, 0, 0);
    col->addWidget(new FWCaption(QString::fromUtf16(BidText::kCaption), this));
    col->addWidget(m_rows);
    col->addWidget(m_spread);
    m_spread->setObjectName(u"spread"_s);
    m_grid->setColumnStretch(1, 1);
    connect(&FWUI::shared(), &FWUI::changed, this, [this] {
        m_shown.clear();
        rebuild();
    });
    refresh();
}

QString BidLevelingPanel::spreadText() const
{
    return m_spread->text();
}

void BidLevelingPanel::refresh()
{
    rebuild();
}

void BidLevelingPanel::rebuild()
{
    const std::optional<Rec> package = m_db.get(m_id);
    setVisible(package.has_value());
    if (!package)
        return;
    const BidLeveling leveled = levelPackage(m_db, *package);
    QStringList shown;
    for (const RankedBid &r : leveled.ranked)
        shown << r.bid.id + u'|' + m_db.label(r.bid.f.value(u"bidder"_s)) + u'|' +
                     QString::number(r.leveled) + u'|' + r.bid.f.value(u"status"_s);
    m_spread->setText(QString::fromUtf16(BidText::kSpread) + Money::fmt(leveled.spread));
    restyle();
    if (shown == m_shown && m_grid->count() > 0)
        return;
    m_shown = shown;

    while (QLayoutItem *item = m_grid->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    const FWUI &ui = FWUI::shared();
    const FWTheme &t = ui.theme();
    m_rows->setVisible(!leveled.ranked.isEmpty());
    for (int i = 0; i < leveled.ranked.size(); ++i) {
        const RankedBid &r = leveled.ranked[i];
        auto *rank = new QLabel(QString::number(i + 1), m_rows);
        rank->setFont(TotalsBox::monoFont(12, QFont::Bold));
        auto *bidder = new QLabel(m_db.label(r.bid.f.value(u"bidder"_s)), m_rows);
        bidder->setFont(ui.font(12.5, i == 0 ? QFont::DemiBold : QFont::Normal));
        auto *amount = new QLabel(Money::fmt(r.leveled), m_rows);
        amount->setFont(TotalsBox::monoFont(12.5));
        amount->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        m_grid->addWidget(rank, i, 0);
        m_grid->addWidget(bidder, i, 1);
        m_grid->addWidget(amount, i, 2);
        if (r.bid.f.value(u"status"_s) == u"awarded"_s) {
            auto *mark = new QLabel(m_rows);
            mark->setObjectName(u"awarded"_s);
            mark->setPixmap(Icons::pixmap(u"checkmark.seal.fill"_s, t.accent, ui.px(18)));
            mark->setToolTip(u"Awarded"_s);
            mark->setAlignment(Qt::AlignCenter);
            m_grid->addWidget(mark, i, 3);
        } else {
            auto *button = new FWChromeButton(u"Award"_s, {}, m_rows);
            button->setObjectName(u"award:"_s + r.bid.id);
            const QString bidId = r.bid.id;
            connect(button, &QAbstractButton::clicked, this, [this, bidId] { award(m_db, m_db.get(bidId)); });
            m_grid->addWidget(button, i, 3);
        }
    }
}

void BidLevelingPanel::restyle()
{
    const FWUI &ui = FWUI::shared();
    layout()->setSpacing(ui.px(8));
    m_grid->setContentsMargins(ui.px(14), ui.px(8), ui.px(14), ui.px(8));
    m_grid->setHorizontalSpacing(ui.px(14));
    m_grid->setVerticalSpacing(ui.px(6));
    m_spread->setFont(ui.font(12, QFont::Medium));
    QPalette p = m_spread->palette();
    p.setColor(QPalette::WindowText, ui.theme().dim);
    m_spread->setPalette(p);
}
