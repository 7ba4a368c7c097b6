#pragma once
#include "fieldeditors.h"

#include "calc/fieldinput.h"

#include <optional>

class QLabel;

// A box for an amount, a number or a percentage. The stored value follows the
// typing; a money entry that can't be read leaves the record at its last good
// amount and says so under the box until it is fixed.
class NumberField : public QWidget, public Refreshable
{
    Q_OBJECT
public:
    NumberField(const TextBinding &value, bool money, const QString &placeholder, QWidget *parent = nullptr);
    // Takes the stored value when it changed elsewhere and the box is not being typed in.
    void refresh() override;

    // The box the user types in.
    QLineEdit *box() const { return m_box; }
    // The message under the box, or nothing.
    std::optional<QString> error() const { return m_error; }
    // What the box shows when the user is not typing: cents as 1,234.56, others as stored.
    QString display() const;
    // What the field allows of a number read from typing (FieldInput::limited for
    // its definition); a number it refuses is said under the box and not stored.
    using Limit = std::function<FieldInput::Typed(const FieldInput::Typed &)>;
    void setLimit(Limit limit) { m_limit = std::move(limit); }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void edited(const QString &text);
    void setError(const std::optional<QString> &error);
    void restyle();

    TextBinding m_value;
    bool m_money;
    QLineEdit *m_box;
    QWidget *m_errorRow;
    QLabel *m_errorIcon;
    QLabel *m_errorText;
    std::optional<QString> m_error;
    QString m_original; // the value when the box took focus: what a bad entry keeps
    Limit m_limit;
};
