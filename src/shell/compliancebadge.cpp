#include "compliancebadge.h"

#include "calc/datefmt.h"
#include "look/chrome.h"
#include "look/fwui.h"
#include "notice.h"

#include <QtGui/QPainter>

using namespace Qt::StringLiterals;

namespace {
constexpr int kWarnDays = 30;
}

Calc::Compliance complianceOf(const Rec &rec)
{
    const QString expires = rec.f.value(u"expires"_s).left(10);
    return Calc::complianceStatus(DateFmt::parseIso(expires), DateFmt::today(), kWarnDays);
}

ComplianceBadge::ComplianceBadge(const Rec &rec, QWidget *parent)
    : QWidget(parent)
{
    setRecord(rec);
    Chrome::followLook(this);
}

void ComplianceBadge::setRecord(const Rec &rec)
{
    const Calc::Compliance c = complianceOf(rec);
    m_text = textOf(c);
    m_color = colorOf(c);
    updateGeometry();
    update();
}

QString ComplianceBadge::textOf(const Calc::Compliance &c)
{
    if (c.status == u"expired"_s)
        return u"Expired"_s;
    if (c.status == u"expiring"_s)
        return QString::number(c.days) + u"d left"_s;
    if (c.status == u"missing"_s)
        return u"No date"_s;
    return u"OK"_s;
}

QColor ComplianceBadge::colorOf(const Calc::Compliance &c)
{
    if (c.status == u"expired"_s)
        return Notice::red();
    if (c.status == u"expiring"_s)
        return Notice::orange();
    if (c.status == u"missing"_s)
        return FWUI::shared().theme().dim;
    return QColor(0x3c, 0xb3, 0x71);
}

QSize ComplianceBadge::sizeHint() const
{
    const FWUI &ui = FWUI::shared();
    const QFontMetrics fm(ui.font(10.5, QFont::Bold));
    return {fm.horizontalAdvance(m_text) + ui.px(18), ui.px(20)};
}

void ComplianceBadge::paintEvent(QPaintEvent *)
{
    const FWUI &ui = FWUI::shared();
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    const QSize hint = sizeHint();
    const QRectF r(0.5, (height() - hint.height()) / 2.0 + 0.5, hint.width() - 1, hint.height() - 1);
    QColor fill = m_color;
    fill.setAlphaF(0.2);
    p.setBrush(fill);
    p.setPen(QPen(m_color, 1));
    p.drawRoundedRect(r, r.height() / 2, r.height() / 2);
    p.setFont(ui.font(10.5, QFont::Bold));
    p.setPen(m_color);
    p.drawText(r, Qt::AlignCenter, m_text);
}
