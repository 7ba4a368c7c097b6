#pragma once
// What the import tests share.
#include "interchange/importplan.h"

#include <QtCore/QString>

using namespace Qt::StringLiterals;

namespace ImportTest {

// The plan of files given as (name, text), read as the import reads them.
inline Import::Plan planOf(const DB &db, const QList<std::pair<QString, QString>> &files)
{
    QList<Import::Table> tables;
    for (const auto &[name, text] : files) {
        if (name.endsWith(u".iif"_s))
            tables += Import::iif(name, text);
        else
            tables.append(Import::csv(name, text));
    }
    return Import::plan(db, Import::sheets(tables));
}

} // namespace ImportTest
