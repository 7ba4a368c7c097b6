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

#include <QtWidgets/QAbstractItemView>
#include <QtWidgets/QScrollBar>

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
    // Until a form names it after its label, a box is known by the hint it shows.
    setAccessibleName(placeholder);
    setText(m_value.get());
    m_original = text();
    // textEdited, not textChanged: our own setText must never write back.
    connect(this, &QLineEdit::textEdited, this, [this](const QString &t) {
        QString stored = t;
        if (!m_check || m_check(t, &stored).first)
            m_value.set(stored);
    });
    connect(this, &QLineEdit::editingFinished, this, [this] {
        if (!m_check)
            return;
        QString stored;
        const auto [ok, message] = m_check(text(), &stored);
        if (ok)
            return;
        const QString kept = m_original;
        if (m_value.get() != kept)
            m_value.set(kept);
        setText(kept);
        Q_EMIT refused(message + u" Kept "_s + (kept.isEmpty() ? u"blank"_s : kept) + u'.');
    });
    FieldLook::apply(this, false, m_mono);
    connect(&FWUI::shared(), &FWUI::changed, this, [this] { FieldLook::apply(this, false, m_mono); });
}

void ThemedTextField::focusInEvent(QFocusEvent *e)
{
    m_original = m_value.get();
    QLineEdit::focusInEvent(e);
}

void ThemedTextField::refresh()
{
    const QString stored = m_value.get();
    if (hasFocus())
        return;
    m_original = stored;
    if (text() != stored)
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
