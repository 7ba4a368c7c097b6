#pragma once
// Internal to the sample company: the ids it hands from one step to the next.
#include "sample.h"

#include "store/db.h"

#include <QtCore/QHash>

namespace SampleKit {

struct Maker
{
    DB &db;
    const SampleFiles &files;
    QHash<QString, QString> contact; // short key -> contact id
    QHash<QString, QString> user;    // short key -> user id
    QHash<QString, QString> equip;   // short key -> equipment id

    // The id of the company's cost code `code`.
    QString code(const QString &code) const { return db.code(code); }
    // Adds a record of the current company.
    Rec add(const QString &kind, const QString &project, const QString &parent, const Fields &f)
    {
        return db.add(kind, project, parent, f);
    }

    void company();
    void clubhouse();
    void clubhouseField(const Rec &project);
    void highway();
    void residence();
    void companyWide();
};

} // namespace SampleKit
