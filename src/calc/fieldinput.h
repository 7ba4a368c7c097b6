#pragma once
#include "catalog/moduledef.h"
#include "store/rec.h"

#include <optional>

class DB;

// What a person types into a field, read into the text a record stores, and
// the options a choice or reference field offers. The record editor, the
// lines grid and `trestle set` all read typing through here, so a value
// means the same wherever it was typed.
namespace FieldInput {
// (stored value, label) pairs in the order they are offered.
using Options = QList<std::pair<QString, QString>>;

// The result of reading typed text: the stored text, or why it was refused.
struct Typed
{
    QString stored;
    QString error; // a sentence for the person who typed it; empty when accepted
    bool ok() const { return error.isEmpty(); }
};

// The options of a choice, ref or refIn field (empty for other types). A
// choice reads by its label; a reference starts with "—" for none and lists
// the target records of `company` (the current one when absent), a refIn
// only those of `project` when one is given.
Options options(const DB &db, const FD &fd, const QString &project,
                const std::optional<QString> &company = std::nullopt);
// How a refIn target names itself: "#n item description", "#n title", or its label.
QString refInLabel(const DB &db, const Rec &target);

// A typed amount: whole cents, the empty text for an empty box.
Typed money(QStringView typed);
// A typed number or percentage: grouping commas, a percent sign and blanks
// around are dropped; empty clears; anything but a finite number is refused.
Typed number(QStringView typed);
// A typed day: "2026-11-15", as the editor shows it, "Nov 15, 2026", or month
// first as US spreadsheets write it, "1/5/2026" or "01/05/26"; empty clears.
Typed date(QStringView typed);
// A typed switch: yes/no, true/false, on/off or 1/0, stored as "1" or "0".
Typed boolean(QStringView typed);
// A typed pick among `options`: a stored value exactly, else a value or label
// whatever its case. A label shared by several options is refused as unclear.
Typed pick(const Options &options, const QString &typed);

// What the field's own meaning allows of an accepted reading: shares
// (retainage, progress, tax) from 0 to 100 %, no negative percentage, a US
// state by its two letters. Anything else passes as read.
Typed limited(const FD &fd, const Typed &read);

// `typed` read as field `fd` takes it; choices and references among the
// options above, for a record of `project` in `company`. Free text is kept as typed.
Typed read(const DB &db, const FD &fd, const QString &typed, const QString &project,
           const std::optional<QString> &company = std::nullopt);
} // namespace FieldInput
