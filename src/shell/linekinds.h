#pragma once
// What the cells of a lines grid need to know of a field: shared by the model and its delegate.
#include "catalog/moduledef.h"

#include <QtCore/QString>

namespace LineKinds {

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
    case FT::money: return QStringLiteral("0.00");
    case FT::number:
    case FT::percent: return QStringLiteral("0");
    case FT::date: return QStringLiteral("yyyy-mm-dd");
    default: return fd.label;
    }
}

} // namespace LineKinds
