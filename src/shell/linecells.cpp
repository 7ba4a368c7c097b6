#include "linecells.h"

#include "fieldeditors.h"

#include "calc/datefmt.h"
#include "calc/fmt.h"
#include "calc/money.h"
#include "catalog/modules.h"
#include "look/fwui.h"
#include "look/segment.h"
#include "store/db.h"

#include <cmath>

#include <QtCore/QEvent>
#include <QtWidgets/QAbstractItemView>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QLineEdit>

using namespace Qt::StringLiterals;

namespace {

QLineEdit *lineEdit(QWidget *cell, const QString &placeholder)
{
    auto *box = new QLineEdit(cell);
    box->setPlaceholderText(placeholder);
    auto *layout = new QVBoxLayout(cell);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(box);
    return box;
}

// A cell of one text box that shows the stored text unless the user is typing in it.
class BoxCell : public LineCell
{
public:
    BoxCell(DB &db, const QString &lineId, const FD &fd, const QString &placeholder, QWidget *parent)
        : LineCell(db, lineId, fd, parent)
        , m_box(lineEdit(this, placeholder))
    {}
    void refresh(const Rec &line) override
    {
        const QString stored = line.f.value(m_fd.key);
        if (!m_box->hasFocus() && m_box->text() != stored)
            m_box->setText(stored);
    }
    void restyle() override { m_box->setFont(FWUI::shared().font(12.5)); }

protected:
    QLineEdit *m_box;
};

// Plain text, times and dates: the box is the value.
class TextCell : public BoxCell
{
public:
    TextCell(DB &db, const QString &lineId, const FD &fd, QWidget *parent)
        : BoxCell(db, lineId, fd, fd.type.kind == FT::date ? u"yyyy-mm-dd"_s : fd.label, parent)
    {
        connect(m_box, &QLineEdit::textEdited, this, [this](const QString &text) { m_value.set(text); });
        restyle();
    }
};

// Numbers and percentages: commas and "%" dropped, stored cleaned as typed.
class NumberCell : public BoxCell
{
public:
    NumberCell(DB &db, const QString &lineId, const FD &fd, QWidget *parent)
        : BoxCell(db, lineId, fd, u"0"_s, parent)
    {
        m_box->setAlignment(Qt::AlignRight);
        connect(m_box, &QLineEdit::textEdited, this, [this](const QString &text) {
            QString clean = text;
            clean.remove(u',').remove(u'%');
            clean = clean.trimmed();
            if (clean.isEmpty()) {
                m_value.set(QString());
                return;
            }
            bool ok = false;
            const double n = clean.toDouble(&ok);
            if (ok && std::isfinite(n))
                m_value.set(Fmt::num(n));
        });
        restyle();
    }
};

// Money: stored in cents as typed; a refused entry keeps the last good amount
// and says so under the row.
class MoneyCell : public LineCell
{
public:
    MoneyCell(DB &db, const QString &lineId, const FD &fd, QWidget *parent)
        : LineCell(db, lineId, fd, parent)
        , m_box(lineEdit(this, u"0.00"_s))
        , m_original(m_value.get())
    {
        m_box->setAlignment(Qt::AlignRight);
        m_box->installEventFilter(this);
        connect(m_box, &QLineEdit::textEdited, this, &MoneyCell::typed);
        connect(m_box, &QLineEdit::returnPressed, this, [this] {
            if (!m_error.isEmpty())
                m_box->setText(display());
        });
        restyle();
    }
    void refresh(const Rec &) override
    {
        if (!m_box->hasFocus() && m_box->text() != display())
            m_box->setText(display());
    }
    QString error() const override { return m_error; }
    void restyle() override
    {
        m_box->setFont(FWUI::shared().font(12.5));
        showError();
    }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (watched == m_box && event->type() == QEvent::FocusIn) {
            m_original = m_value.get();
        } else if (watched == m_box && event->type() == QEvent::FocusOut) {
            // With an error the message stays up; the box shows what was kept.
            if (m_error.isEmpty())
                m_original = m_value.get();
            m_box->setText(display());
        }
        return LineCell::eventFilter(watched, event);
    }

private:
    QString display() const
    {
        const QString value = m_value.get();
        if (value.isEmpty())
            return {};
        return Money::fmt(RecText::parseInt(value).value_or(0), false);
    }

    void typed(const QString &text)
    {
        const MoneyParse parsed = Money::parseChecked(text);
        if (parsed.ok()) {
            setError({});
            m_value.set(text.trimmed().isEmpty() ? QString() : QString::number(parsed.cents));
            return;
        }
        if (m_value.get() != m_original)
            m_value.set(m_original);
        const QString kept =
            m_original.isEmpty() ? u"blank"_s : Money::fmt(RecText::parseInt(m_original).value_or(0));
        setError(Money::message(*parsed.error) + u" Kept "_s + kept + u'.');
    }

    void setError(const QString &error)
    {
        if (error == m_error)
            return;
        m_error = error;
        showError();
        Q_EMIT errorChanged();
    }

    void showError()
    {
        const FWUI &ui = FWUI::shared();
        m_box->setStyleSheet(
            m_error.isEmpty()
                ? QString()
                : u"QLineEdit { border: %1px solid #e5484d; border-radius: %2px; }"_s.arg(ui.s(1.5)).arg(
                      ui.px(9)));
    }

    QLineEdit *m_box;
    QString m_original;
    QString m_error;
};

// Choices and references: a menu of labels over stored values. A stored value
// that is not among the options shows "Choose…" and stays until a pick.
class ChoiceCell : public LineCell
{
public:
    ChoiceCell(DB &db, const QString &lineId, const FD &fd, const QString &project, QWidget *parent)
        : LineCell(db, lineId, fd, parent)
        , m_project(project)
        , m_box(new QComboBox(this))
    {
        auto *layout = new QVBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(m_box);
        m_box->setPlaceholderText(u"Choose…"_s);
        m_box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        m_box->setMinimumContentsLength(4);
        connect(m_box, &QComboBox::activated, this,
                [this](int index) { m_value.set(m_box->itemData(index).toString()); });
        restyle();
    }
    void refresh(const Rec &line) override
    {
        if (m_box->view()->isVisible())
            return;
        const auto options = choiceOptions(m_db, m_fd, m_project);
        if (options != m_options) {
            m_options = options;
            m_box->clear();
            for (const auto &[value, label] : options)
                m_box->addItem(label.isEmpty() ? u"—"_s : label, value);
        }
        const int index = m_box->findData(line.f.value(m_fd.key));
        if (index != m_box->currentIndex())
            m_box->setCurrentIndex(index);
    }
    void restyle() override { m_box->setFont(FWUI::shared().font(12.5)); }

private:
    QString m_project;
    QComboBox *m_box;
    QList<std::pair<QString, QString>> m_options;
};

// A yes/no field: "1" when on, "0" when off.
class BoolCell : public LineCell
{
public:
    BoolCell(DB &db, const QString &lineId, const FD &fd, QWidget *parent)
        : LineCell(db, lineId, fd, parent)
        , m_switch(new FWSwitch(this))
    {
        auto *layout = new QHBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(m_switch);
        layout->addStretch(1);
        m_switch->setCheckable(true);
        connect(m_switch, &QAbstractButton::clicked, this,
                [this](bool on) { m_value.set(on ? u"1"_s : u"0"_s); });
    }
    void refresh(const Rec &line) override
    {
        const bool on = line.f.value(m_fd.key) == u"1"_s;
        if (m_switch->isChecked() != on)
            m_switch->setChecked(on);
    }

private:
    FWSwitch *m_switch;
};

} // namespace

LineCell::LineCell(DB &db, const QString &lineId, const FD &fd, QWidget *parent)
    : QWidget(parent)
    , m_db(db)
    , m_value(db, lineId, fd.key)
    , m_fd(fd)
{
    setObjectName(fd.key);
}

LineCell *LineCell::make(DB &db, const QString &lineId, const FD &fd, const QString &project, QWidget *parent)
{
    switch (fd.type.kind) {
    case FT::choice:
    case FT::ref:
    case FT::refIn: return new ChoiceCell(db, lineId, fd, project, parent);
    case FT::money: return new MoneyCell(db, lineId, fd, parent);
    case FT::number:
    case FT::percent: return new NumberCell(db, lineId, fd, parent);
    case FT::boolean: return new BoolCell(db, lineId, fd, parent);
    case FT::text:
    case FT::longText:
    case FT::date:
    case FT::time: break;
    }
    return new TextCell(db, lineId, fd, parent);
}

QList<std::pair<QString, QString>> choiceOptions(const DB &db, const FD &fd, const QString &project)
{
    // A grid cell offers exactly what the record editor's choice offers.
    return FieldEditor::optionsFor(db, fd, project);
}
