#pragma once
#include <QtCore/QString>

#include <optional>

// Why a typed amount was refused.
enum class ParseError { invalid, tooLarge };

// The result of reading a typed amount: cents, or the reason it was refused.
struct MoneyParse
{
    qint64 cents = 0;
    std::optional<ParseError> error;
    bool ok() const { return !error; }
};

// Money is a signed 64-bit count of cents everywhere.
namespace Money {
// The largest magnitude a money box accepts, in cents ($999,999,999.99).
inline constexpr qint64 kMaxTyped = 99999999999;

// "-$1,234.56" style text; without `symbol` no dollar sign.
QString fmt(qint64 cents, bool symbol = true);
// Reads what a bookkeeper types, in exact decimal, halves up.
MoneyParse parseChecked(QStringView text);
// The message a money box shows for a refused amount.
QString message(ParseError error);

// Checked arithmetic: an overflow of the 64-bit range stops the program.
qint64 add(qint64 a, qint64 b);
qint64 sub(qint64 a, qint64 b);
// Cents from a double: nearest whole number, halves away from zero (C round);
// not finite or out of range stops the program.
qint64 fromDouble(double cents);
} // namespace Money
