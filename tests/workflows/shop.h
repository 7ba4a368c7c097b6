#pragma once
// A private store with one company (owner "Ann"), a client and one project,
// shared by the workflow tests.
#include "store/db.h"

#include <QtCore/QDate>

namespace TestShop {

using namespace Qt::StringLiterals;

inline const QDate kToday(2026, 11, 15);

struct Shop
{
    DB db;
    Rec client;
    Rec project;

    Shop()
    {
        db.createCompany(u"Acme"_s, u"Ann"_s, u"CA"_s);
        client = db.add(u"contact"_s, {}, {}, {{u"name"_s, u"Owner LLC"_s}});
        project = db.add(u"project"_s, {}, {},
                         {{u"name"_s, u"Tower"_s},
                          {u"client"_s, client.id},
                          {u"state"_s, u"NV"_s},
                          {u"contract"_s, u"1000000"_s},
                          {u"retainage"_s, u"10"_s}});
    }

    Rec reload(const Rec &r) const { return db.get(r.id).value_or(Rec()); }
    QString field(const Rec &r, const QString &key) const { return reload(r).f.value(key); }

    // A change order with one line of `amount` cents.
    Rec co(int number, const QString &kind, qint64 amount = 10000, const QString &markup = u"10"_s)
    {
        const Rec co = db.add(u"co"_s, project.id, {},
                              {{u"number"_s, QString::number(number)},
                               {u"title"_s, u"Extra footing"_s},
                               {u"kind"_s, kind},
                               {u"status"_s, u"pending"_s},
                               {u"markup"_s, markup}});
        db.add(u"co_line"_s, project.id, co.id, {{u"amount"_s, QString::number(amount)}});
        return co;
    }

    // The schedule-of-values lines made for the change order `coId`.
    QList<Rec> coLines(const QString &coId) const
    {
        QList<Rec> out;
        for (const Rec &r : db.list(u"sov_line"_s, {.project = project.id}))
            if (r.f.value(u"co") == coId)
                out.append(r);
        return out;
    }

    Rec sov(qint64 scheduled, int sort)
    {
        return db.add(u"sov_line"_s, project.id, {},
                      {{u"scheduled"_s, QString::number(scheduled)}, {u"sort"_s, QString::number(sort)}});
    }

    Rec payApp(int number, const QString &retWork = u"10"_s, const QString &status = u"draft"_s)
    {
        return db.add(u"pay_app"_s, project.id, {},
                      {{u"number"_s, QString::number(number)},
                       {u"status"_s, status},
                       {u"retWork"_s, retWork},
                       {u"retMat"_s, retWork},
                       {u"periodTo"_s, u"2026-10-31"_s}});
    }
};

} // namespace TestShop
