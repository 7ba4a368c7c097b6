#include "waiverpanel.h"

#include "notice.h"

#include "calc/rules.h"
#include "documents/pdfout.h"
#include "look/chrome.h"
#include "look/fwui.h"
#include "store/db.h"

#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QLabel>

using namespace Qt::StringLiterals;

WaiverPanel::WaiverPanel(DB &db, const QString &waiverId, QWidget *parent)
    : QWidget(parent)
    , m_db(db)
    , m_id(waiverId)
    , m_notice(new Notice({}, Notice::Tone::Error, u"exclamationmark.triangle.fill"_s, this))
    , m_caption(new FWCaption(u"Waiver wording"_s, this))
    , m_preview(new QLabel(this))
{
    auto *col = new QVBoxLayout(this);
    col->setContentsMargins(0, 0, 0, 0);
    col->addWidget(m_notice);
    col->addWidget(m_caption);
    auto *well = new FWWell(this);
    auto *inWell = new QVBoxLayout(well);
    inWell->addWidget(m_preview);
    col->addWidget(well);
    m_preview->setObjectName(u"preview"_s);
    m_preview->setWordWrap(true);
    m_preview->setTextFormat(Qt::RichText);
    m_preview->setTextInteractionFlags(Qt::TextSelectableByMouse);
    restyle();
    connect(&FWUI::shared(), &FWUI::changed, this, &WaiverPanel::restyle);
    refresh();
}

QString WaiverPanel::warning() const
{
    return m_notice->isHidden() ? QString() : m_notice->text();
}

void WaiverPanel::refresh()
{
    const std::optional<Rec> w = m_db.get(m_id);
    setVisible(w.has_value());
    if (!w)
        return;
    const QString warning = Calc::statutoryWarning(w->f.value(u"state"_s));
    m_notice->setText(warning);
    m_notice->setHidden(warning.isEmpty());
    const QString html = PDFOut::waiverHTML(m_db, *w);
    if (html != m_html) {
        m_html = html;
        m_preview->setText(html);
    }
}

void WaiverPanel::restyle()
{
    const FWUI &ui = FWUI::shared();
    layout()->setSpacing(ui.px(8));
    m_preview->parentWidget()->layout()->setContentsMargins(ui.px(14), ui.px(6), ui.px(14), ui.px(10));
    m_preview->setFont(ui.font(12));
    QPalette p = m_preview->palette();
    p.setColor(QPalette::WindowText, ui.theme().text);
    m_preview->setPalette(p);
}
