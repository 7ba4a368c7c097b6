#include "fieldeditors.h"

#include "datekeys.h"

#include "numberfield.h"

#include "calc/datefmt.h"
#include "calc/fieldinput.h"
#include "look/buttons.h"
#include "look/fwui.h"
#include "look/icons.h"
#include "look/segment.h"
#include "look/tones.h"
#include "store/db.h"
#include "workflows/binding.h"

#include <QtCore/QLocale>
#include <QtGui/QFontMetrics>
#include <QtWidgets/QAbstractItemView>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QDateEdit>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QStackedLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

TextBinding TextBinding::of(const RecBinding &binding)
{
    return {[binding] { return binding.get(); }, [binding](const QString &v) { binding.set(v); }};
}

TextBinding TextBinding::local(QString *text)
{
    return {[text] { return *text; }, [text](const QString &v) { *text = v; }};
}

namespace FieldLook {

void apply(QWidget *w, bool error, bool mono)
{
    const FWUI &ui = FWUI::shared();
    const FWTheme &t = ui.theme();
    QFont font = ui.font(12.5);
    if (mono) {
        font.setFamily(u"monospace"_s);
        font.setStyleHint(QFont::Monospace);
    }
    w->setFont(font);
    const FWTones &tones = FWTones::current();
    const QString border =
        error ? u"%1px solid "_s.arg(ui.s(1.5)) + tones.error.name() : u"1px solid "_s + tones.edge.name();
    // The selector names the Qt class itself, so the style reaches neither the
    // subclass's children nor a viewport's scroll bars.
    const QMetaObject *meta = w->metaObject();
    while (meta->superClass() && !QByteArrayView(meta->className()).startsWith("Q"))
        meta = meta->superClass();
    const QString cls = QString::fromLatin1(meta->className());
    w->setStyleSheet(cls + u" { background: "_s + t.well.name() + u"; color: "_s + t.text.name() +
                     u"; border: "_s + border + u"; border-radius: "_s + QString::number(ui.px(9)) +
                     u"px; padding: "_s + QString::number(ui.px(4)) + u"px "_s + QString::number(ui.px(8)) +
                     u"px; selection-background-color: "_s + tones.selection.name() +
                     u"; selection-color: "_s + tones.onAccent.name() + u"; }"_s);
}

void thinScrollBar(QWidget *bar)
{
    const FWUI &ui = FWUI::shared();
    QColor handle = ui.theme().metalMid;
    handle.setAlphaF(0.5);
    bar->setStyleSheet(
        QString(u"QScrollBar:vertical { width: %1px; background: transparent; margin: 0; }"
                u"QScrollBar::handle:vertical { background: %2; border-radius: %3px; min-height: 24px; }"
                u"QScrollBar:horizontal { height: %1px; background: transparent; margin: 0; }"
                u"QScrollBar::handle:horizontal { background: %2; border-radius: %3px; min-width: 24px; }"
                u"QScrollBar::add-line, QScrollBar::sub-line { height: 0; width: 0; }"
                u"QScrollBar::add-page, QScrollBar::sub-page { background: transparent; }"_s)
            .arg(ui.px(6))
            .arg(handle.name(QColor::HexArgb))
            .arg(ui.px(3)));
}

void thinScrollBars(QAbstractScrollArea *area)
{
    auto restyle = [area] {
        thinScrollBar(area->horizontalScrollBar());
        thinScrollBar(area->verticalScrollBar());
    };
    restyle();
    QObject::connect(&FWUI::shared(), &FWUI::changed, area, restyle);
}

} // namespace FieldLook

// --- ThemedTextField ---

ThemedTextField::ThemedTextField(const TextBinding &value, const QString &placeholder, bool mono,
                                 QWidget *parent)
    : QLineEdit(parent)
    , m_value(value)
    , m_mono(mono)
{
    setPlaceholderText(placeholder);
    setText(m_value.get());
    // textEdited, not textChanged: our own setText must never write back.
    connect(this, &QLineEdit::textEdited, this, [this](const QString &t) { m_value.set(t); });
    FieldLook::apply(this, false, m_mono);
    connect(&FWUI::shared(), &FWUI::changed, this, [this] { FieldLook::apply(this, false, m_mono); });
}

void ThemedTextField::refresh()
{
    const QString stored = m_value.get();
    if (!hasFocus() && text() != stored)
        setText(stored);
}

// --- ThemedLongText ---

ThemedLongText::ThemedLongText(const TextBinding &value, qreal height, QWidget *parent)
    : QPlainTextEdit(parent)
    , m_value(value)
    , m_height(height)
{
    setTabChangesFocus(true);
    m_updating = true;
    setPlainText(m_value.get());
    m_updating = false;
    connect(this, &QPlainTextEdit::textChanged, this, [this] {
        if (!m_updating)
            m_value.set(toPlainText());
    });
    auto restyle = [this] {
        FieldLook::apply(this);
        setFixedHeight(FWUI::shared().px(m_height));
    };
    restyle();
    connect(&FWUI::shared(), &FWUI::changed, this, restyle);
}

void ThemedLongText::refresh()
{
    const QString stored = m_value.get();
    if (hasFocus() || toPlainText() == stored)
        return;
    m_updating = true;
    setPlainText(stored);
    m_updating = false;
}

// --- ThemedChoice ---

ThemedChoice::ThemedChoice(const TextBinding &value, const Options &options, QWidget *parent)
    : QComboBox(parent)
    , m_value(value)
{
    setPlaceholderText(u"Choose…"_s);
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(8);
    setOptions(options);
    // activated comes only from the user; setCurrentIndex below never writes.
    connect(this, &QComboBox::activated, this, [this](int i) {
        if (i >= 0 && i < m_options.size())
            m_value.set(m_options.at(i).first);
    });
    auto restyle = [this] {
        // A closed choice reads as a well like the text boxes beside it.
        const FWTheme &t = FWUI::shared().theme();
        setFont(FWUI::shared().font(12.5));
        QPalette p = palette();
        p.setColor(QPalette::Button, t.well);
        p.setColor(QPalette::ButtonText, t.text);
        p.setColor(QPalette::Base, t.panel);
        p.setColor(QPalette::Text, t.text);
        setPalette(p);
        setMinimumHeight(fontMetrics().height() + FWUI::shared().px(10));
    };
    restyle();
    connect(&FWUI::shared(), &FWUI::changed, this, restyle);
}

void ThemedChoice::setOptions(const Options &options)
{
    if (options != m_options || count() != options.size()) {
        m_options = options;
        QSignalBlocker block(this);
        clear();
        for (const auto &[value, label] : m_options)
            addItem(label.isEmpty() ? u"—"_s : label);
    }
    refresh();
}

QString ThemedChoice::shownLabel() const
{
    const QString v = m_value.get();
    for (const auto &[value, label] : m_options)
        if (value == v)
            return label;
    return u"Choose…"_s;
}

void ThemedChoice::refresh()
{
    if (view() && view()->isVisible())
        return;
    const QString v = m_value.get();
    int index = -1;
    for (int i = 0; i < m_options.size(); ++i)
        if (m_options.at(i).first == v) {
            index = i;
            break;
        }
    if (index != currentIndex()) {
        QSignalBlocker block(this);
        setCurrentIndex(index);
    }
}

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

// --- FieldEditor ---

FieldEditor::FieldEditor(DB &db, const FD &fd, const TextBinding &value, const QString &project, bool compact,
                         QWidget *parent)
    : QWidget(parent)
    , m_db(db)
    , m_fd(fd)
    , m_value(value)
    , m_project(project)
{
    auto *box = new QHBoxLayout(this);
    box->setContentsMargins(0, 0, 0, 0);
    switch (fd.type.kind) {
    case FT::choice:
    case FT::ref:
    case FT::refIn: {
        auto *c = new ThemedChoice(value, FieldInput::options(db, fd, project), this);
        m_control = c;
        m_refreshable = c;
        break;
    }
    case FT::text:
    case FT::time: {
        auto *t = new ThemedTextField(value, compact && fd.type.kind == FT::text ? fd.label : QString(),
                                      false, this);
        m_control = t;
        m_refreshable = t;
        break;
    }
    case FT::longText: {
        auto *t = new ThemedLongText(value, 70, this);
        m_control = t;
        m_refreshable = t;
        break;
    }
    case FT::money:
    case FT::number:
    case FT::percent: {
        const bool money = fd.type.kind == FT::money;
        auto *n = new NumberField(value, money, money ? u"0.00"_s : u"0"_s, this);
        m_control = n;
        m_refreshable = n;
        break;
    }
    case FT::date: {
        auto *d = new ThemedDate(value, this);
        m_control = d;
        m_refreshable = d;
        break;
    }
    case FT::boolean: {
        m_switch = new FWSwitch(this);
        m_switch->setChecked(value.get() == u"1");
        connect(m_switch, &QAbstractButton::clicked, this,
                [this](bool on) { m_value.set(on ? u"1"_s : u"0"_s); });
        m_control = m_switch;
        break;
    }
    }
    box->addWidget(m_control, m_switch ? 0 : 1);
    if (m_switch)
        box->addStretch(1);
}

void FieldEditor::setProject(const QString &project)
{
    m_project = project;
}

void FieldEditor::refresh()
{
    if (m_switch) {
        const bool on = m_value.get() == u"1";
        if (m_switch->isChecked() != on) {
            QSignalBlocker block(m_switch);
            m_switch->setChecked(on);
        }
        return;
    }
    const FT::Case k = m_fd.type.kind;
    if (k == FT::ref || k == FT::refIn) {
        static_cast<ThemedChoice *>(m_control)->setOptions(FieldInput::options(m_db, m_fd, m_project));
        return;
    }
    if (m_refreshable)
        m_refreshable->refresh();
}
