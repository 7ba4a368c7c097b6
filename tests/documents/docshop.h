#pragma once
// A private store with one company, a client and one project for the document tests.
#include "catalog/modules.h"
#include "store/db.h"

#include <QtCore/QDate>

namespace DocShop {

using namespace Qt::StringLiterals;

inline const QDate kToday(2026, 11, 15);

struct Shop
{
    DB db;
    Rec client;
    Rec project;

    explicit Shop(const QString &company = u"Acme"_s)
    {
        db.createCompany(company, u"Ann"_s, u"CA"_s);
        client = db.add(u"contact"_s, {}, {}, {{u"name"_s, u"Owner LLC"_s}});
        project = db.add(u"project"_s, {}, {},
                         {{u"name"_s, u"Tower"_s},
                          {u"number"_s, u"J-7"_s},
                          {u"client"_s, client.id},
                          {u"address"_s, u"1 Main St"_s},
                          {u"contract"_s, u"1000000"_s},
                          {u"retainage"_s, u"10"_s},
                          {u"status"_s, u"Active"_s}});
    }

    static const ModuleDef &module(const QString &id) { return *Modules::get(id); }
};

} // namespace DocShop
