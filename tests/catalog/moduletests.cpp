// The module table facts that the screens, workflows and documents rely on.
#include "testmain.h"

#include "catalog/modules.h"

#include <QtCore/QSet>

using namespace Qt::StringLiterals;

namespace {
bool uniqueKeys(const QList<FD> &fields)
{
    QSet<QString> keys;
    for (const FD &fd : fields)
        keys.insert(fd.key);
    return keys.size() == fields.size();
}
} // namespace

class ModuleTests : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void tableShape()
    {
        const auto &all = Modules::all();
        QCOMPARE(all.size(), 37);
        QSet<QString> ids, kinds;
        int runs = 0;
        for (qsizetype k = 0; k < all.size(); ++k) {
            const ModuleDef &m = all[k];
            QVERIFY2(!ids.contains(m.id), qPrintable(m.id));
            ids.insert(m.id);
            // One module per record kind, or a kind's records would show in two lists.
            QVERIFY2(m.kind.isEmpty() || !kinds.contains(m.kind), qPrintable(m.kind));
            kinds.insert(m.kind);
            QCOMPARE(Modules::get(m.id), &m);
            runs += k == 0 || m.group != all[k - 1].group;
        }
        // The rail shows groups in order of first appearance, so each group must be one run.
        const QStringList groups = {u"Command"_s,
                                    u"Core"_s,
                                    u"Sales & Money"_s,
                                    u"Field"_s,
                                    u"Project Management"_s,
                                    u"Bidding, Civil & Reports"_s};
        QCOMPARE(Modules::groups(), groups);
        QCOMPARE(runs, groups.size());
        QCOMPARE(all.first().id, u"hub"_s); // the module area's fallback
        for (const QString &id : {u""_s, u"nope"_s, u"Hub"_s})
            QVERIFY(!Modules::get(id));

        QStringList numbered;
        for (const ModuleDef &m : all)
            if (m.numbered)
                numbered.append(m.id);
        QCOMPARE(numbered, (QStringList{u"estimates"_s, u"cos"_s, u"pos"_s, u"invoices"_s, u"rfis"_s,
                                        u"submittals"_s}));
    }

    // Every key the list or a new record uses must be a field the editor knows.
    void columnsAndDefaultsAreFields()
    {
        int withLines = 0;
        for (const ModuleDef &m : Modules::all()) {
            QVERIFY2(uniqueKeys(m.fields) && uniqueKeys(m.lineFields), qPrintable(m.id));
            QCOMPARE(m.lineKind.has_value(), !m.lineFields.isEmpty());
            withLines += m.lineKind.has_value();
            for (const QString &c : m.columns) {
                // A numbered module lists the number that numbering assigns; it is not edited.
                const bool allowed = m.field(c) || (m.numbered && c == u"number");
                QVERIFY2(allowed, qPrintable(m.id + u": column "_s + c));
            }
            for (const auto &[key, value] : m.defaults) {
                const FD *fd = m.field(key);
                QVERIFY2(fd, qPrintable(m.id + u": default "_s + key));
                if (fd->type.kind == FT::choice)
                    QVERIFY2(fd->type.options.contains(value), qPrintable(m.id + u": "_s + value));
            }
            // Without fields only a special screen can show the module.
            QVERIFY2(!m.fields.isEmpty() || m.screen, qPrintable(m.id));
        }
        QCOMPARE(withLines, 6);
    }

    // Modules shown by their own screen: four with no kind, four whose screen knows the fields.
    void specialScreens()
    {
        for (const char *name :
             {"hub", "jobcost", "qb", "reports", "budget", "payapps", "schedule", "plans"}) {
            const QString id = QString::fromLatin1(name);
            const ModuleDef *m = Modules::get(id);
            QVERIFY2(m && m->fields.isEmpty() && m->columns.isEmpty(), name);
            QCOMPARE(m->screen, std::optional<QString>(id));
            const bool hasKind = id == u"budget" || id == u"payapps" || id == u"schedule" || id == u"plans";
            QCOMPARE(!m->kind.isEmpty(), hasKind);
        }
    }

    void lineKinds_data()
    {
        QTest::addColumn<QString>("id");
        QTest::addColumn<QString>("lineKind");
        QTest::addColumn<QString>("moneyKey"); // the line's amount the totals read
        const char *rows[][3] = {
            {"estimates", "est_line", "unitCost"}, {"assemblies", "asm_line", "unitCost"},
            {"cos", "co_line", "amount"},          {"pos", "po_line", "unitCost"},
            {"invoices", "inv_line", "unitPrice"}, {"bids", "bid", "base"}};
        for (const auto &r : rows)
            QTest::newRow(r[0]) << QString::fromLatin1(r[0]) << QString::fromLatin1(r[1])
                                << QString::fromLatin1(r[2]);
    }
    void lineKinds()
    {
        QFETCH(QString, id);
        QFETCH(QString, lineKind);
        QFETCH(QString, moneyKey);
        const ModuleDef *m = Modules::get(id);
        QVERIFY(m);
        QCOMPARE(m->lineKind, std::optional<QString>(lineKind));
        const FD *line = m->lineField(moneyKey);
        QVERIFY(line);
        QCOMPARE(line->type, FT::of(FT::money));
        // Line fields belong to the lines editor, never to the header's editor.
        QVERIFY(!m->field(moneyKey));
    }

    // What `trestle set` may change in a record: its module's fields or its owner's line fields.
    void fieldsOfKind_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("module"); // whose fields; empty when none
        QTest::addColumn<bool>("lines");
        QTest::newRow("record kind") << u"co"_s << u"cos"_s << false;
        QTest::newRow("line kind") << u"co_line"_s << u"cos"_s << true;
        QTest::newRow("bids are lines") << u"bid"_s << u"bids"_s << true;
        QTest::newRow("own screen, no fields") << u"budget_line"_s << QString() << false;
        QTest::newRow("made by a workflow") << u"sov_line"_s << QString() << false;
        QTest::newRow("company") << u"company"_s << QString() << false;
        QTest::newRow("empty kind") << QString() << QString() << false;
    }
    void fieldsOfKind()
    {
        QFETCH(QString, kind);
        QFETCH(QString, module);
        QFETCH(bool, lines);
        const QList<FD> *fields = Modules::fieldsOf(kind);
        if (module.isEmpty()) {
            QVERIFY(!fields);
            return;
        }
        const ModuleDef *m = Modules::get(module);
        QVERIFY(m);
        QCOMPARE(fields, lines ? &m->lineFields : &m->fields);
        QCOMPARE(Modules::ofKind(kind), lines ? nullptr : m);
        // A line kind that were also a module's kind would have two sets of fields.
        for (const ModuleDef &other : Modules::all())
            QVERIFY2(!other.lineKind || !Modules::ofKind(*other.lineKind),
                     qPrintable(other.lineKind.value_or(QString())));
    }

    void referenceTargets()
    {
        const QSet<QString> refKinds = {u"contact"_s, u"cost_code"_s, u"user"_s, u"equipment"_s};
        QSet<QString> refIn, madeKinds;
        for (const ModuleDef &m : Modules::all()) {
            madeKinds.insert(m.kind);
            for (const QList<FD> *list : {&m.fields, &m.lineFields})
                for (const FD &fd : *list) {
                    if (fd.type.kind == FT::ref)
                        QVERIFY2(refKinds.contains(fd.type.target), qPrintable(m.id + u"."_s + fd.key));
                    if (fd.type.kind == FT::refIn)
                        refIn.insert(fd.type.target);
                    if (fd.type.kind == FT::choice)
                        QVERIFY2(!fd.type.options.isEmpty(), qPrintable(fd.key));
                }
        }
        QCOMPARE(refIn, (QSet<QString>{u"pay_app"_s, u"invoice"_s, u"unit_item"_s}));
        // Every referenced kind has a module that makes its records.
        QVERIFY(madeKinds.contains(refKinds + refIn));
    }

    void waiverKindsAndSeverity()
    {
        const ModuleDef *waivers = Modules::get(u"waivers");
        QStringList keys;
        for (const auto &[key, label] : Modules::waiverKinds())
            keys.append(key);
        QCOMPARE(keys, (QStringList{u"conditional_progress"_s, u"unconditional_progress"_s,
                                    u"conditional_final"_s, u"unconditional_final"_s}));
        QCOMPARE(waivers->field(u"kind")->type, FT::makeChoice(keys));
        QCOMPARE(waivers->defaults.value(u"kind"), keys.first());

        const ModuleDef *safety = Modules::get(u"safety");
        const QString dash(QChar(0x2014));
        QCOMPARE(safety->field(u"severity")->type.options.first(), dash);
        QCOMPARE(safety->defaults.value(u"severity"), dash);
    }

    // Workflows compare stored choice texts, so their case is data.
    void statusCase()
    {
        for (const ModuleDef &m : Modules::all()) {
            const FD *status = m.field(u"status");
            const bool lower = m.kind == u"co" || m.kind == u"waiver";
            for (const QString &o : status ? status->type.options : QStringList())
                QVERIFY2(o.at(0).isLower() == lower, qPrintable(m.id + u": "_s + o));
        }
    }

    void ftEquality()
    {
        const FT ab = FT::makeChoice({u"a"_s, u"b"_s});
        QVERIFY(ab == FT::makeChoice({u"a"_s, u"b"_s}) && !(ab == FT::makeChoice({u"b"_s, u"a"_s})));
        QVERIFY(!(FT::makeRef(u"contact"_s) == FT::makeRef(u"user"_s)));
        QVERIFY(!(FT::makeRef(u"invoice"_s) == FT::makeRefIn(u"invoice"_s)));
        QVERIFY(FT::of(FT::money) == FT::of(FT::money) && !(FT::of(FT::text) == FT::of(FT::longText)));
    }
};

TRESTLE_TEST(ModuleTests);
#include "moduletests.moc"
