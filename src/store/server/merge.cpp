#include "merge.h"

#include <QtCore/QSet>

using namespace Qt::StringLiterals;

namespace Merge {

namespace {
std::optional<QString> fieldOf(const Rec &r, const QString &key)
{
    if (!r.f.contains(key))
        return std::nullopt;
    return r.f.value(key);
}

// Picks one value of a field; records a clash when both sides changed it apart.
template<class Set>
void pick(const QString &key, const std::optional<QString> &base, const std::optional<QString> &mine,
          const std::optional<QString> &theirs, Set &&set, QList<Clash> &clashes)
{
    if (mine == theirs || theirs == base) {
        set(mine);
    } else if (mine == base) {
        set(theirs);
    } else {
        set(mine);
        clashes.append({key, theirs.value_or(QString()), mine.value_or(QString())});
    }
}
} // namespace

Result threeWay(const std::optional<Rec> &base, const Rec &mine, const Rec &theirs)
{
    Result out;
    out.rec = mine;
    out.rec.updated = std::max(mine.updated, theirs.updated);
    auto column = [&](const QString &key, QString Rec::*member) {
        const std::optional<QString> b = base ? std::optional<QString>((*base).*member) : std::nullopt;
        pick(
            key, b, mine.*member, theirs.*member,
            [&](const std::optional<QString> &v) { out.rec.*member = v.value_or(QString()); }, out.clashes);
    };
    column(u"project"_s, &Rec::project);
    column(u"parent"_s, &Rec::parent);

    QStringList keys = mine.f.keys() + theirs.f.keys();
    if (base)
        keys += base->f.keys();
    QSet<QString> seen;
    for (const QString &key : std::as_const(keys)) {
        if (seen.contains(key))
            continue;
        seen.insert(key);
        pick(
            key, base ? fieldOf(*base, key) : std::nullopt, fieldOf(mine, key), fieldOf(theirs, key),
            [&](const std::optional<QString> &v) {
                if (v)
                    out.rec.f.insert(key, *v);
                else
                    out.rec.f.remove(key);
            },
            out.clashes);
    }
    return out;
}

} // namespace Merge
