#include "datekeys.h"

#include <QtCore/QCoreApplication>
#include <QtGui/QKeyEvent>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QDateEdit>
#include <QtWidgets/QLineEdit>

namespace DateKeys {

namespace {

class Keys : public QObject
{
public:
    Keys(QAbstractButton *set, QDateEdit *picker, QAbstractButton *clear)
        : QObject(picker)
        , m_set(set)
        , m_picker(picker)
        , m_clear(clear)
    {}

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() != QEvent::KeyPress)
            return false;
        auto *key = static_cast<QKeyEvent *>(event);
        if (watched == m_set && !key->text().isEmpty() && key->text().at(0).isDigit()) {
            // The button makes the date and hands the keyboard to the picker; the digit follows.
            m_set->click();
            m_picker->setFocus(Qt::OtherFocusReason);
            if (QLineEdit *line = m_picker->findChild<QLineEdit *>())
                line->selectAll();
            QKeyEvent again(QEvent::KeyPress, key->key(), key->modifiers(), key->text());
            QCoreApplication::sendEvent(m_picker, &again);
            return true;
        }
        if (watched == m_picker && (key->key() == Qt::Key_Delete || key->key() == Qt::Key_Backspace)) {
            const QLineEdit *line = m_picker->findChild<QLineEdit *>();
            if (line && !line->text().isEmpty() && line->selectedText() == line->text()) {
                m_clear->click();
                return true;
            }
        }
        return false;
    }

private:
    QAbstractButton *m_set;
    QDateEdit *m_picker;
    QAbstractButton *m_clear;
};

} // namespace

void attach(QAbstractButton *set, QDateEdit *picker, QAbstractButton *clear)
{
    auto *keys = new Keys(set, picker, clear);
    set->installEventFilter(keys);
    picker->installEventFilter(keys);
    clear->setFocusPolicy(Qt::NoFocus);
}

} // namespace DateKeys
