#pragma once
// What the lines model and its delegate share: how a field reads in a cell,
// the box a number is typed in, and the well a cell is drawn in.
#include "fieldeditors.h"
#include "linecells.h"

#include "calc/fieldinput.h"
#include "calc/money.h"
#include "look/fwui.h"
#include "store/rec.h"

#include <QtCore/QPersistentModelIndex>
#include <QtGui/QFocusEvent>
#include <QtGui/QKeyEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QLineEdit>

namespace LineCells {
using namespace Qt::StringLiterals;

inline const QColor kRed(0xFF, 0x3B, 0x30);
inline const QColor kRemoveRed(0xe5, 0x48, 0x4d);

inline bool isChoice(const FD &fd)
{
    return fd.type.kind == FT::choice || fd.type.kind == FT::ref || fd.type.kind == FT::refIn;
}

inline bool isNumeric(const FD &fd)
{
    return fd.type.kind == FT::money || fd.type.kind == FT::number || fd.type.kind == FT::percent;
}

inline QString placeholderOf(const FD &fd)
{
    switch (fd.type.kind) {
    case FT::money: return u"0.00"_s;
    case FT::number:
    case FT::percent: return u"0"_s;
    case FT::date: return u"yyyy-mm-dd"_s;
    default: return fd.label;
    }
}

// The box of a number or money cell while it is typed in: the stored value
// follows the typing; a refused amount keeps the last good one and says so.
class LineNumberBox : public QLineEdit
{
public:
    LineNumberBox(LinesModel *model, const QModelIndex &index, QWidget *parent)
        : QLineEdit(parent)
        , m_model(model)
        , m_index(index)
        , m_money(model->fieldAt(index.column())->type.kind == FT::money)
        , m_original(model->stored(index))
    {
        setPlaceholderText(placeholderOf(*model->fieldAt(index.column())));
        setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        // textEdited fires for the user's typing only, so showing display() never writes.
        connect(this, &QLineEdit::textEdited, this, &LineNumberBox::typed);
        connect(this, &QLineEdit::returnPressed, this, [this] {
            if (m_money && hasError())
                setText(m_model->display(m_index));
        });
        restyle();
        connect(&FWUI::shared(), &FWUI::changed, this, &LineNumberBox::restyle);
    }

protected:
    void focusInEvent(QFocusEvent *e) override
    {
        if (m_money)
            m_original = m_model->stored(m_index);
        QLineEdit::focusInEvent(e);
    }
    void focusOutEvent(QFocusEvent *e) override
    {
        if (m_money && m_index.isValid()) {
            // With an error the message stays up; the box shows the amount kept.
            if (!hasError())
                m_original = m_model->stored(m_index);
            setText(m_model->display(m_index));
        }
        QLineEdit::focusOutEvent(e);
    }

private:
    bool hasError() const { return !m_model->error(m_index).isEmpty(); }

    void restyle() { FieldLook::apply(this, hasError()); }

    void typed(const QString &text)
    {
        if (!m_index.isValid())
            return;
        const QString stored = m_model->stored(m_index);
        const FieldInput::Typed read = m_money ? FieldInput::money(text) : FieldInput::number(text);
        // A number half typed keeps the last one read, without a message.
        if (!m_money) {
            if (read.ok() && read.stored != stored)
                m_model->write(m_index, read.stored);
            return;
        }
        if (read.ok()) {
            setError({});
            if (read.stored != stored)
                m_model->write(m_index, read.stored);
            return;
        }
        if (stored != m_original)
            m_model->write(m_index, m_original);
        const QString kept =
            m_original.isEmpty() ? u"blank"_s : Money::fmt(RecText::parseInt(m_original).value_or(0), true);
        setError(read.error + u" Kept "_s + kept + u'.');
    }

    void setError(const QString &error)
    {
        if (error == m_model->error(m_index))
            return;
        m_model->setError(m_index, error);
        restyle();
    }

    LinesModel *m_model;
    QPersistentModelIndex m_index;
    bool m_money;
    QString m_original; // the value when the box took focus: what a bad entry keeps
};

// A rounded well like the themed boxes, red-edged on an error.
inline void paintWell(QPainter *p, const QRectF &r, bool error, bool focused)
{
    const FWUI &ui = FWUI::shared();
    const FWTheme &t = ui.theme();
    const qreal border = error ? ui.s(1.5) : 1.0;
    const QRectF box = r.adjusted(border / 2, border / 2, -border / 2, -border / 2);
    p->setPen(QPen(error ? kRed : focused ? t.accent : t.deep, border));
    p->setBrush(t.well);
    p->drawRoundedRect(box, ui.px(9), ui.px(9));
}

} // namespace LineCells
