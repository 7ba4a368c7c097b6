#include "verbs.h"

#include <algorithm>

namespace Verbs {

namespace {
QList<Verb> &registry()
{
    static QList<Verb> verbs;
    return verbs;
}
} // namespace

Register::Register(Verb verb)
{
    registry().append(std::move(verb));
}

QList<Verb> all()
{
    QList<Verb> out = registry();
    std::sort(out.begin(), out.end(), [](const Verb &a, const Verb &b) { return a.name < b.name; });
    return out;
}

const Verb *find(const QString &name)
{
    for (const Verb &v : registry())
        if (v.name == name)
            return &v;
    return nullptr;
}

} // namespace Verbs
