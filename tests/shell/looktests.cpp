// The look: zoom steps and their ends, the stored finish, status colours, icons.
#include "testmain.h"

#include "catalog/modules.h"
#include "look/fwui.h"
#include "look/icons.h"
#include "look/statuspill.h"

#include <QtCore/QSettings>
#include <QtTest/QSignalSpy>

using namespace Qt::StringLiterals;

class LookTests : public QObject
{
    Q_OBJECT

    static void store(const QString &key, const QVariant &value)
    {
        QSettings s(u"Fenwright"_s, u"Trestle"_s);
        s.setValue(key, value);
        s.sync();
    }

private Q_SLOTS:
    void zoomSteps_data()
    {
        QTest::addColumn<double>("start");
        QTest::addColumn<bool>("in");
        QTest::addColumn<double>("expected");
        QTest::newRow("in at the top stays") << 2.0 << true << 2.0;
        QTest::newRow("out at the bottom stays") << 0.85 << false << 0.85;
        QTest::newRow("in from 100%") << 1.0 << true << 1.1;
        QTest::newRow("out from 100%") << 1.0 << false << 0.9;
        QTest::newRow("a stored 1.0999999 does not stick") << 1.0999999 << true << 1.25;
        QTest::newRow("out from just above a step") << 1.1000001 << false << 1.0;
    }
    void zoomSteps()
    {
        QFETCH(double, start);
        QFETCH(bool, in);
        QFETCH(double, expected);
        FWUI ui;
        ui.setZoom(start);
        in ? ui.zoomIn() : ui.zoomOut();
        QCOMPARE(ui.zoom(), expected);
        // The new zoom is stored at once and read back by the next start.
        QCOMPARE(FWUI().zoom(), expected);
    }

    void storedLook_data()
    {
        QTest::addColumn<QVariant>("theme");
        QTest::addColumn<QVariant>("zoom");
        QTest::addColumn<QString>("expectedTheme");
        QTest::addColumn<double>("expectedZoom");
        QTest::newRow("unknown finish and zero zoom")
            << QVariant(u"chartreuse"_s) << QVariant(0.0) << u"gunmetal-blue"_s << 1.0;
        QTest::newRow("nothing stored") << QVariant() << QVariant() << u"gunmetal-blue"_s << 1.0;
        QTest::newRow("known finish, zoom above the range")
            << QVariant(u"rose-gold"_s) << QVariant(3.5) << u"rose-gold"_s << 2.0;
        QTest::newRow("zoom below the range")
            << QVariant(u"black-chrome"_s) << QVariant(0.5) << u"black-chrome"_s << 0.85;
    }
    void storedLook()
    {
        QFETCH(QVariant, theme);
        QFETCH(QVariant, zoom);
        QFETCH(QString, expectedTheme);
        QFETCH(double, expectedZoom);
        store(u"fenwright.ui.theme"_s, theme);
        store(u"fenwright.ui.zoom"_s, zoom);
        FWUI ui;
        QCOMPARE(ui.theme().id, expectedTheme);
        QCOMPARE(ui.zoom(), expectedZoom);
    }

    void themeChangeIsStoredAndSignalledOnce()
    {
        FWUI ui;
        ui.setTheme(u"gunmetal-blue"_s);
        QSignalSpy spy(&ui, &FWUI::changed);
        ui.setTheme(u"graphite-gray"_s);
        ui.setTheme(u"graphite-gray"_s);
        QCOMPARE(spy.count(), 1);
        QCOMPARE(FWUI().theme().name, u"Graphite Gray"_s);
        QCOMPARE(FWUI().theme().accent, QColor(0xFF, 0xB2, 0x38));
    }

    void statusTone_data()
    {
        QTest::addColumn<QString>("word");
        QTest::addColumn<int>("tone");
        QTest::newRow("approved") << u"Approved"_s << int(StatusPill::Green);
        QTest::newRow("two words") << u"Approved as Noted"_s << int(StatusPill::Green);
        QTest::newRow("whole text only") << u"Not approved"_s << int(StatusPill::Neutral);
        QTest::newRow("ampersand") << u"Revise & Resubmit"_s << int(StatusPill::Red);
        QTest::newRow("orange") << u"submitted"_s << int(StatusPill::Orange);
        QTest::newRow("unknown") << u"Active"_s << int(StatusPill::Neutral);
        QTest::newRow("empty") << QString() << int(StatusPill::Neutral);
    }
    void statusTone()
    {
        QFETCH(QString, word);
        QFETCH(int, tone);
        QCOMPARE(int(StatusPill::tone(word)), tone);
    }

    void statusShown_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<QString>("shown");
        QTest::newRow("only the first letter") << u"turned over"_s << u"Turned over"_s;
        QTest::newRow("underscores untouched") << u"in_progress"_s << u"In_progress"_s;
        QTest::newRow("capitals kept") << u"In Review"_s << u"In Review"_s;
        QTest::newRow("all capitals") << u"PAID"_s << u"PAID"_s;
        QTest::newRow("capital later only") << u"not Approved"_s << u"Not Approved"_s;
        QTest::newRow("digit first") << u"2nd notice"_s << u"2nd notice"_s;
        QTest::newRow("empty") << QString() << QString();
    }
    void statusShown()
    {
        QFETCH(QString, stored);
        QFETCH(QString, shown);
        QCOMPARE(StatusPill::shown(stored), shown);
    }

    void everyModuleSymbolHasAnIcon()
    {
        QStringList missing;
        for (const ModuleDef &m : Modules::all())
            if (!Icons::has(m.symbol))
                missing.append(m.symbol);
        for (const char *s :
             {"building.columns", "building.columns.fill", "lock.fill", "person.crop.circle.fill", "plus",
              "printer.fill", "exclamationmark.triangle.fill", "checkmark.seal.fill"})
            if (!Icons::has(QString::fromLatin1(s)))
                missing.append(QString::fromLatin1(s));
        QVERIFY2(missing.isEmpty(), qPrintable(missing.join(u", ")));
        // Recoloured to the finish: the opaque pixels carry the colour asked for.
        const QImage img = Icons::pixmap(u"lock.fill"_s, QColor(255, 0, 0), 32).toImage();
        bool red = false;
        for (int y = 0; y < img.height() && !red; ++y)
            for (int x = 0; x < img.width() && !red; ++x)
                red = qAlpha(img.pixel(x, y)) == 255 && qRed(img.pixel(x, y)) == 255 &&
                      qGreen(img.pixel(x, y)) == 0;
        QVERIFY(red);
    }
};

TRESTLE_TEST(LookTests);
#include "looktests.moc"
