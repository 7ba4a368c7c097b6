#include "moduledef.h"

bool FT::operator==(const FT &other) const
{
    if (kind != other.kind)
        return false;
    switch (kind) {
    case choice: return options == other.options;
    case ref:
    case refIn: return target == other.target;
    default: return true;
    }
}

namespace {
const FD *findIn(const QList<FD> &list, QStringView key)
{
    for (const FD &fd : list)
        if (fd.key == key)
            return &fd;
    return nullptr;
}
} // namespace

const FD *ModuleDef::field(QStringView key) const
{
    return findIn(fields, key);
}

const FD *ModuleDef::lineField(QStringView key) const
{
    return findIn(lineFields, key);
}
