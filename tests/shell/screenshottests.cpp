// The hidden screenshot command line: what it asks for, what it refuses, and
// how a record is named by id or by number.
#include "testmain.h"

#include "catalog/modules.h"
#include "shell/tlapp.h"
#include "store/db.h"

using namespace Qt::StringLiterals;

class ScreenshotTests : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void parse_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("module");
        QTest::addColumn<QString>("record");
        QTest::addColumn<QString>("finish");
        QTest::addColumn<double>("zoom"); // 0: none asked
        QTest::addColumn<QString>("errorStarts");
        QTest::newRow("file alone") << QStringList{u"shot.png"_s} << u"shot.png"_s << QString() << QString()
                                    << QString() << 0.0 << QString();
        QTest::newRow("module and record number")
            << QStringList{u"a.png"_s, u"estimates"_s, u"3"_s} << u"a.png"_s << u"estimates"_s << u"3"_s
            << QString() << 0.0 << QString();
        QTest::newRow("finish by name, zoom with a percent sign")
            << QStringList{u"--finish"_s, u"rose gold"_s, u"a.png"_s, u"waivers"_s, u"--zoom"_s, u"150%"_s}
            << u"a.png"_s << u"waivers"_s << QString() << u"rose-gold"_s << 1.5 << QString();
        QTest::newRow("finish by id")
            << QStringList{u"a.png"_s, u"--finish"_s, u"Black-Chrome"_s} << u"a.png"_s << QString()
            << QString() << u"black-chrome"_s << 0.0 << QString();
        QTest::newRow("unknown finish")
            << QStringList{u"a.png"_s, u"--finish"_s, u"teal"_s} << QString() << QString() << QString()
            << QString() << 0.0 << u"Unknown finish \"teal\"; one of: gunmetal-blue"_s;
        QTest::newRow("zoom not a number")
            << QStringList{u"a.png"_s, u"--zoom"_s, u"big"_s} << QString() << QString() << QString()
            << QString() << 0.0 << u"The zoom is a percentage"_s;
        QTest::newRow("zoom without value") << QStringList{u"a.png"_s, u"--zoom"_s} << QString() << QString()
                                            << QString() << QString() << 0.0 << u"--zoom needs a value."_s;
        QTest::newRow("size too small") << QStringList{u"a.png"_s, u"--size"_s, u"100x900"_s} << QString()
                                        << QString() << QString() << QString() << 0.0 << u"The size is"_s;
        QTest::newRow("unknown module") << QStringList{u"a.png"_s, u"nosuch"_s} << u"a.png"_s << u"nosuch"_s
                                        << QString() << QString() << 0.0 << u"Unknown module \"nosuch\"."_s;
        QTest::newRow("no file") << QStringList{} << QString() << QString() << QString() << QString() << 0.0
                                 << u"Usage: --screenshot FILE"_s;
        QTest::newRow("too many") << QStringList{u"a.png"_s, u"estimates"_s, u"1"_s, u"2"_s} << QString()
                                  << QString() << QString() << QString() << 0.0 << u"Too many arguments"_s;
    }
    void parse()
    {
        QFETCH(QStringList, args);
        QFETCH(QString, file);
        QFETCH(QString, module);
        QFETCH(QString, record);
        QFETCH(QString, finish);
        QFETCH(double, zoom);
        QFETCH(QString, errorStarts);
        const TLApp::ScreenshotRequest r =
            TLApp::parseScreenshot(QStringList{u"trestle"_s, u"--screenshot"_s} + args);
        QVERIFY2(errorStarts.isEmpty() ? r.error.isEmpty() : r.error.startsWith(errorStarts),
                 qPrintable(r.error));
        if (!errorStarts.isEmpty())
            return;
        QCOMPARE(r.file, file);
        QCOMPARE(r.module, module);
        QCOMPARE(r.record, record);
        QCOMPARE(r.finish, finish);
        QCOMPARE(r.zoom.value_or(0), zoom);
        if (args.contains(u"--size"_s))
            QCOMPARE(r.size, QSize(1400, 1800));
        else
            QVERIFY(!r.size.isValid());
    }

    void findRecord()
    {
        DB db;
        db.createCompany(u"Acme"_s, u"Olive Owner"_s, u"CO"_s);
        const Rec p = db.add(u"project"_s, {}, {}, {{u"name"_s, u"Job"_s}});
        const Rec one = db.add(u"estimate"_s, p.id, {}, {{u"number"_s, u"1"_s}});
        const Rec two = db.add(u"estimate"_s, p.id, {}, {{u"number"_s, u"2"_s}});
        const Rec waiver = db.add(u"waiver"_s, p.id, {}, {{u"number"_s, u"2"_s}});
        const ModuleDef &estimates = *Modules::get(u"estimates");
        QCOMPARE(TLApp::findRecord(db, estimates, u"2"_s), two.id);
        QCOMPARE(TLApp::findRecord(db, estimates, one.id), one.id);
        // An id of another kind is not a record of the module.
        QCOMPARE(TLApp::findRecord(db, estimates, waiver.id), QString());
        QCOMPARE(TLApp::findRecord(db, estimates, u"9"_s), QString());
        QCOMPARE(TLApp::findRecord(db, estimates, QString()), QString());
    }
};

TRESTLE_TEST(ScreenshotTests);
#include "screenshottests.moc"
