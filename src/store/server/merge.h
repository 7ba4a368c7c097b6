#pragma once
#include "store/rec.h"

#include <optional>

// Field-by-field merge of a record changed on this seat and on the server.
namespace Merge {

// A field both sides changed to different values: this seat's value stands
// (its save reaches the server later) and the other side's value is replaced.
struct Clash
{
    QString key; // a key of Rec::f, or "project" / "parent"
    QString replaced;
    QString kept;
    bool operator==(const Clash &) const = default;
};

struct Result
{
    Rec rec;
    QList<Clash> clashes;
};

// `base` is the record as this seat last saw it on the server (none when the
// seat made it), `mine` this seat's record now, `theirs` the server's record
// now. A field only one side changed takes that side's value; the same change
// on both sides is no clash.
Result threeWay(const std::optional<Rec> &base, const Rec &mine, const Rec &theirs);

} // namespace Merge
