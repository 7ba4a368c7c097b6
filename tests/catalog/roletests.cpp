// Which modules each role may open.
#include "testmain.h"

#include "catalog/modules.h"
#include "catalog/roles.h"

using namespace Qt::StringLiterals;

namespace {
QStringList allBut(const QStringList &left)
{
    QStringList ids;
    for (const ModuleDef &m : Modules::all())
        if (!left.contains(m.id))
            ids.append(m.id);
    return ids;
}
} // namespace

class RoleTests : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void mayOpen_data()
    {
        QTest::addColumn<QString>("role");
        QTest::addColumn<QStringList>("open");
        QTest::newRow("Owner") << u"Owner"_s << allBut({});
        for (const QString &r :
             {u"Project Manager"_s, u"Accounting"_s, QString(), u"Superintendent"_s, u"owner"_s})
            QTest::newRow(qPrintable(u"full: '"_s + r + u"'"_s)) << r << allBut({u"team"_s});
        // clang-format off
        // Field sees no money, and the owner-only team module stays closed.
        QTest::newRow("Field") << u"Field"_s << QStringList{
            u"hub"_s, u"projects"_s, u"contacts"_s, u"documents"_s, u"dailylogs"_s, u"timecards"_s,
            u"punch"_s, u"safety"_s, u"equipment"_s, u"equiplogs"_s, u"schedule"_s, u"rfis"_s,
            u"submittals"_s, u"plans"_s, u"meetings"_s, u"closeout"_s, u"compliance"_s, u"qtylogs"_s,
            u"tickets"_s};
        // A subcontractor sees pay apps and waivers although they show money.
        QTest::newRow("Subcontractor") << u"Subcontractor"_s << QStringList{
            u"hub"_s, u"projects"_s, u"documents"_s, u"payapps"_s, u"waivers"_s, u"dailylogs"_s,
            u"punch"_s, u"safety"_s, u"schedule"_s, u"rfis"_s, u"submittals"_s, u"plans"_s, u"meetings"_s,
            u"compliance"_s};
        // clang-format on
    }
    void mayOpen()
    {
        QFETCH(QString, role);
        QFETCH(QStringList, open);
        QStringList got;
        for (const ModuleDef &m : Modules::all())
            if (Roles::mayOpen(role, m))
                got.append(m.id);
        QCOMPARE(got, open);
    }

    void rolesAreTeamChoices()
    {
        const FD *role = Modules::get(u"team")->field(u"role");
        QVERIFY(role);
        QCOMPARE(role->type.options, Roles::all());
        QVERIFY(Modules::get(u"team")->ownerOnly);
    }

    void refusal()
    {
        QCOMPARE(Roles::refusal(u"Field"_s, *Modules::get(u"estimates")),
                 u"Estimates is not available to the Field role. Ask the owner to change your role in "
                 u"Team & Roles."_s);
        QCOMPARE(
            Roles::refusal(u"Subcontractor"_s, *Modules::get(u"team")),
            u"Team & Roles is not available to the Subcontractor role. Ask the owner to change your role "
            u"in Team & Roles."_s);
    }
};

TRESTLE_TEST(RoleTests);
#include "roletests.moc"
