#include "fieldeditors.h"

#include "datekeys.h"

#include "calc/datefmt.h"
#include "look/buttons.h"
#include "look/fwui.h"

#include <QtCore/QLocale>
#include <QtGui/QFontMetrics>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QDateEdit>
#include <QtWidgets/QStackedLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

// --- ThemedDate ---

namespace {
const QString kDateFormat = u"MMM d, yyyy"_s;
// The picker's drop-down arrow and the gap before the clear button, in points before zoom.
constexpr qreal kDateArrow = 20, kDateGap = 4;
} // namespace

ThemedDate::ThemedDate(const TextBinding &value, QWidget *parent)
    : QWidget(parent)
    , m_value(value)
    , m_stack(new QStackedLayout(this))
    , m_set(new FWChromeButton(u"Set date"_s, QString(), this))
    , m_pickerRow(new QWidget(this))
    , m_picker(new QDateEdit(m_pickerRow))
    , m_clear(new FWChromeButton(QString(), u"xmark.circle.fill"_s, m_pickerRow))
{
    m_stack->setContentsMargins(0, 0, 0, 0);
    auto *setRow = new QWidget(this);
    auto *setBox = new QHBoxLayout(setRow);
    setBox->setContentsMargins(0, 0, 0, 0);
    setBox->addWidget(m_set);
    setBox->addStretch(1);
    auto *row = new QHBoxLayout(m_pickerRow);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(m_picker);
    row->addWidget(m_clear);
    row->addStretch(1);
    m_stack->addWidget(setRow);
    m_stack->addWidget(m_pickerRow);
    m_picker->setDisplayFormat(kDateFormat);
    m_picker->setCalendarPopup(true);
    m_clear->setCompact(true);
    m_clear->setToolTip(u"Clear date"_s);
    DateKeys::attach(m_set, m_picker, m_clear);

    connect(m_set, &QAbstractButton::clicked, this, [this] {
        m_value.set(DateFmt::iso(m_suggested.isValid() ? m_suggested : DateFmt::today()));
        refresh();
        m_picker->setFocus();
    });
    connect(m_clear, &QAbstractButton::clicked, this, [this] {
        m_value.set(QString());
        refresh();
    });
    connect(m_picker, &QDateEdit::dateChanged, this, [this](QDate d) {
        if (!m_updating && d.isValid())
            m_value.set(DateFmt::iso(d));
    });
    auto restyle = [this, row] {
        FieldLook::apply(m_picker);
        m_picker->setMinimumWidth(pickerWidth());
        row->setSpacing(FWUI::shared().px(kDateGap));
    };
    restyle();
    connect(&FWUI::shared(), &FWUI::changed, this, restyle);
    refresh();
}

void ThemedDate::setLabel(const QString &label)
{
    setAccessibleName(label);
    m_picker->setAccessibleName(label);
    m_set->setAccessibleName(label + u": Set date"_s);
    m_clear->setAccessibleName(u"Clear "_s + label);
}

void ThemedDate::setSuggestion(const QDate &date, const QString &why)
{
    m_suggested = date;
    m_set->setText(date.isValid() ? QLocale().toString(date, kDateFormat) : u"Set date"_s);
    m_set->setSymbol(date.isValid() ? u"link"_s : QString());
    m_set->setToolTip(date.isValid() ? why : QString());
}

int ThemedDate::pickerWidth()
{
    const FWUI &ui = FWUI::shared();
    const QFontMetrics fm(ui.font(12.5));
    // Month names differ in width and digits may too, so the widest month on a two-digit day counts.
    int text = 0;
    for (int month = 1; month <= 12; ++month)
        text = std::max(text, fm.horizontalAdvance(QLocale().toString(QDate(2000, month, 28), kDateFormat)));
    // The field's padding on both sides, its border, the line edit's own margins and the arrow.
    return text + ui.px(8) * 2 + 2 + ui.px(6) + ui.px(kDateArrow);
}

int ThemedDate::fullWidth()
{
    const FWUI &ui = FWUI::shared();
    // The clear button is compact with a symbol only: its padding and the symbol.
    return pickerWidth() + ui.px(kDateGap) + ui.px(8) * 2 + ui.px(14);
}

void ThemedDate::refresh()
{
    const QString stored = m_value.get();
    const std::optional<QDate> d = DateFmt::parseIso(stored.left(10));
    const bool empty = stored.isEmpty();
    m_stack->setCurrentIndex(empty ? 0 : 1);
    if (empty || m_picker->hasFocus())
        return;
    // An unreadable stored text shows today's date but is never written back unless changed.
    const QDate shown = d.value_or(DateFmt::today());
    if (m_picker->date() != shown) {
        m_updating = true;
        m_picker->setDate(shown);
        m_updating = false;
    }
}
