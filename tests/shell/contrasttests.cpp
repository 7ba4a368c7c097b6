// Contrast in every finish: the measure itself, every pairing the program paints, what the
// widgets actually put on screen, the light finish and the desktop's preference.
#include "testmain.h"

#include "catalog/modules.h"
#include "look/applook.h"
#include "look/buttons.h"
#include "look/contrast.h"
#include "look/desktopscheme.h"
#include "look/fwui.h"
#include "look/statuspill.h"
#include "look/tones.h"
#include "shell/modulerail.h"

#include <QtCore/QSettings>
#include <QtDBus/QDBusVariant>
#include <QtGui/QImage>
#include <QtWidgets/QAbstractItemView>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDialog>
#include <QtWidgets/QMenu>

using namespace Qt::StringLiterals;

namespace {

// The colour of the pixel, opaque.
QColor at(const QImage &img, int x, int y)
{
    return QColor(img.pixel(x, y));
}

// The pixel of `area` that stands out most from `back`: the ink of text drawn there.
QColor inkIn(const QImage &img, const QRect &area, const QColor &back)
{
    QColor best = back;
    double most = 1;
    for (int y = area.top(); y <= area.bottom(); ++y)
        for (int x = area.left(); x <= area.right(); ++x) {
            const double r = Contrast::ratio(at(img, x, y), back);
            if (r > most) {
                most = r;
                best = at(img, x, y);
            }
        }
    return best;
}

} // namespace

class ContrastTests : public QObject
{
    Q_OBJECT

    static void addFinishRows()
    {
        QTest::addColumn<QString>("finish");
        for (const FWTheme &t : FWTheme::all())
            QTest::newRow(qPrintable(t.id)) << t.id;
    }

private Q_SLOTS:
    void cleanup()
    {
        FWUI::shared().setTheme(FWTheme::all().first().id);
        FWUI::shared().setZoom(1.0);
    }

    void ratio_data()
    {
        QTest::addColumn<QColor>("a");
        QTest::addColumn<QColor>("b");
        QTest::addColumn<double>("expected");
        QTest::newRow("black on white") << QColor(Qt::black) << QColor(Qt::white) << 21.0;
        QTest::newRow("the same colour") << QColor(0x4C, 0xBD, 0xFF) << QColor(0x4C, 0xBD, 0xFF) << 1.0;
        QTest::newRow("grey 77 just fails on white") << QColor(0x77, 0x77, 0x77) << QColor(Qt::white) << 4.48;
        QTest::newRow("grey 76 just passes on white")
            << QColor(0x76, 0x76, 0x76) << QColor(Qt::white) << 4.54;
        QTest::newRow("either way round") << QColor(Qt::white) << QColor(0x76, 0x76, 0x76) << 4.54;
        QTest::newRow("white on pure green") << QColor(Qt::white) << QColor(0, 0xFF, 0) << 1.37;
    }
    void ratio()
    {
        QFETCH(QColor, a);
        QFETCH(QColor, b);
        QFETCH(double, expected);
        QVERIFY2(std::abs(Contrast::ratio(a, b) - expected) < 0.01,
                 qPrintable(QString::number(Contrast::ratio(a, b))));
    }

    void reaching_data()
    {
        QTest::addColumn<QColor>("colour");
        QTest::addColumn<QColor>("against");
        QTest::addColumn<double>("minimum");
        QTest::addColumn<bool>("unchanged");
        QTest::newRow("already enough") << QColor(Qt::white) << QColor(0x16, 0x1D, 0x28) << 4.5 << true;
        QTest::newRow("red on a dark panel lightens")
            << QColor(0xFF, 0x3B, 0x30) << QColor(0x4C, 0x13, 0x1A) << 4.5 << false;
        QTest::newRow("orange on white darkens")
            << QColor(0xFF, 0x95, 0x00) << QColor(Qt::white) << 4.5 << false;
        QTest::newRow("mid grey on mid grey")
            << QColor(0x80, 0x80, 0x80) << QColor(0x77, 0x77, 0x77) << 3.0 << false;
    }
    void reaching()
    {
        QFETCH(QColor, colour);
        QFETCH(QColor, against);
        QFETCH(double, minimum);
        QFETCH(bool, unchanged);
        const QColor got = Contrast::reaching(colour, against, minimum);
        QVERIFY2(Contrast::ratio(got, against) >= minimum, qPrintable(got.name()));
        QCOMPARE(got == colour.toRgb(), unchanged);
        if (!unchanged) {
            // The least change: one step less would not be enough.
            const QColor before = Contrast::reaching(colour, against, Contrast::ratio(got, against) - 0.3);
            QVERIFY(Contrast::ratio(before, against) < Contrast::ratio(got, against));
        }
    }

    void everyPairInEveryFinish_data()
    {
        QTest::addColumn<QString>("finish");
        QTest::addColumn<int>("pair");
        for (const FWTheme &t : FWTheme::all()) {
            const QList<FWTones::Pair> pairs = FWTones::of(t).pairs(t);
            for (int i = 0; i < pairs.size(); ++i)
                QTest::addRow("%s: %s", qPrintable(t.id), qPrintable(pairs.at(i).name)) << t.id << i;
        }
    }
    void everyPairInEveryFinish()
    {
        QFETCH(QString, finish);
        QFETCH(int, pair);
        const FWTheme &t = FWTheme::byId(finish);
        const FWTones::Pair p = FWTones::of(t).pairs(t).at(pair);
        const double r = Contrast::ratio(p.fore, p.back);
        QVERIFY2(
            r >= p.minimum,
            qPrintable(
                u"%1 on %2: %3 < %4"_s.arg(p.fore.name(), p.back.name()).arg(r, 0, 'f', 2).arg(p.minimum)));
    }

    void pairsCoverWhatTheIssueNamed()
    {
        // Each kind of pairing is measured in every finish, not just some of them.
        const FWTheme &t = FWTheme::all().first();
        QStringList names;
        for (const FWTones::Pair &p : FWTones::of(t).pairs(t))
            names << p.name;
        for (const char *kind :
             {"body text", "secondary text and labels", "placeholder", "status pill green", "status pill red",
              "status pill orange", "status pill neutral", "error", "warning", "variance under budget",
              "variance over budget", "selected rail item and button text", "prominent button", "focus ring",
              "control edge", "selected row", "rail item"})
            QVERIFY2(!names.filter(QLatin1StringView(kind)).isEmpty(), kind);
    }

    void oneFinishIsLight()
    {
        int light = 0;
        for (const FWTheme &t : FWTheme::all())
            if (Contrast::luminance(t.base) > 0.5)
                ++light;
        QCOMPARE(light, 1);
        QCOMPARE(FWTheme::all().first().id, u"gunmetal-blue"_s);
    }

    void paintedPill_data()
    {
        QTest::addColumn<QString>("finish");
        QTest::addColumn<QString>("word");
        for (const FWTheme &t : FWTheme::all())
            for (const char *word : {"Paid", "Submitted", "Rejected", "Active"})
                QTest::addRow("%s %s", qPrintable(t.id), word) << t.id << QString::fromLatin1(word);
    }
    void paintedPill()
    {
        // What the pill puts on screen, measured from its pixels over a panel of the finish.
        QFETCH(QString, finish);
        QFETCH(QString, word);
        FWUI::shared().setTheme(finish);
        StatusPill pill(word);
        pill.resize(pill.sizeHint());
        QImage img(pill.size(), QImage::Format_RGB32);
        img.fill(FWUI::shared().theme().panel);
        pill.render(&img, {}, {}, QWidget::DrawChildren);
        const QColor fill = at(img, img.width() / 2, 2);
        const QColor ink = inkIn(img, img.rect().adjusted(4, 3, -4, -3), fill);
        QVERIFY2(Contrast::ratio(ink, fill) >= Contrast::kText,
                 qPrintable(u"%1 on %2: %3"_s.arg(ink.name(), fill.name()).arg(Contrast::ratio(ink, fill))));
    }

    void paintedSelectedRailItem_data() { addFinishRows(); }
    void paintedSelectedRailItem()
    {
        // The words over the whole height of the lit entry's gradient, from its pixels.
        QFETCH(QString, finish);
        FWUI::shared().setTheme(finish);
        const ModuleDef &m = Modules::all().first();
        RailButton b(m);
        b.setOn(true);
        b.resize(FWUI::shared().px(200), b.sizeHint().height());
        QImage img(b.size(), QImage::Format_RGB32);
        img.fill(FWTones::current().railStrip);
        b.render(&img, {}, {}, QWidget::DrawChildren);
        const QColor text = FWUI::shared().theme().text;
        const int x = b.width() - FWUI::shared().px(14);
        for (int y = 3; y < b.height() - 3; ++y)
            QVERIFY2(Contrast::ratio(at(img, x, y), text) >= Contrast::kText,
                     qPrintable(u"row %1: %2 under %3"_s.arg(y).arg(at(img, x, y).name(), text.name())));
    }

    void paintedButtons_data()
    {
        QTest::addColumn<QString>("finish");
        QTest::addColumn<bool>("prominent");
        for (const FWTheme &t : FWTheme::all()) {
            QTest::addRow("%s plain", qPrintable(t.id)) << t.id << false;
            QTest::addRow("%s prominent", qPrintable(t.id)) << t.id << true;
        }
    }
    void paintedButtons()
    {
        QFETCH(QString, finish);
        QFETCH(bool, prominent);
        FWUI::shared().setTheme(finish);
        FWChromeButton b(u"MMMMMMMM"_s);
        b.setProminent(prominent);
        b.resize(b.sizeHint());
        QImage img(b.size(), QImage::Format_RGB32);
        img.fill(FWUI::shared().theme().panel);
        b.render(&img, {}, {}, QWidget::DrawChildren);
        // Over the text's band, every background pixel left of the text against the ink.
        const QRect words = img.rect().adjusted(b.width() / 3, 4, -b.width() / 3, -4);
        const QColor ink = inkIn(img, words, at(img, b.width() / 2, 3));
        for (int y = 4; y < b.height() - 4; ++y) {
            const QColor back = at(img, FWUI::shared().px(6), y);
            QVERIFY2(Contrast::ratio(ink, back) >= Contrast::kText,
                     qPrintable(u"row %1: %2 on %3"_s.arg(y).arg(ink.name(), back.name())));
        }
    }

    void dialogsMenusAndListsTakeTheFinish_data() { addFinishRows(); }
    void dialogsMenusAndListsTakeTheFinish()
    {
        // Separate windows (a dialog, a menu, a choice box's drop-down list) get no palette from
        // the main window; they must still show the finish, not the platform's light grey.
        QFETCH(QString, finish);
        AppLook::follow();
        FWUI::shared().setTheme(finish);
        const FWTheme &t = FWUI::shared().theme();
        QDialog dialog;
        QMenu menu;
        QComboBox box;
        box.addItems({u"Draft"_s, u"Paid"_s});
        QWidget *list = box.view();
        QCOMPARE(dialog.palette().color(QPalette::Window), t.base);
        QCOMPARE(dialog.palette().color(QPalette::WindowText), t.text);
        QCOMPARE(menu.palette().color(QPalette::Window), t.base);
        QCOMPARE(list->palette().color(QPalette::Base), t.well);
        QCOMPARE(list->palette().color(QPalette::Text), t.text);
        QCOMPARE(list->palette().color(QPalette::HighlightedText), FWTones::current().onAccent);
        QCOMPARE(QFontInfo(menu.font()).pixelSize(), FWUI::shared().px(13));
    }

    void desktopPreference_data()
    {
        QTest::addColumn<QVariant>("stored");
        QTest::addColumn<bool>("light");
        QTest::addColumn<QString>("expected");
        QTest::newRow("nothing picked, light desktop") << QVariant() << true << u"brushed-aluminum"_s;
        QTest::newRow("nothing picked, dark desktop") << QVariant() << false << u"gunmetal-blue"_s;
        QTest::newRow("picked dark, light desktop") << QVariant(u"rose-gold"_s) << true << u"rose-gold"_s;
        QTest::newRow("picked light, dark desktop")
            << QVariant(u"brushed-aluminum"_s) << false << u"brushed-aluminum"_s;
    }
    void desktopPreference()
    {
        QFETCH(QVariant, stored);
        QFETCH(bool, light);
        QFETCH(QString, expected);
        {
            QSettings s(u"Fenwright"_s, u"Trestle"_s);
            if (stored.isValid())
                s.setValue(u"fenwright.ui.theme"_s, stored);
            else
                s.remove(u"fenwright.ui.theme"_s);
        }
        FWUI ui;
        QCOMPARE(ui.followsDesktop(), !stored.isValid());
        ui.setDesktopPrefersLight(light);
        QCOMPARE(ui.theme().id, expected);
        // Once the user picks a finish, the desktop no longer moves it.
        ui.setTheme(u"black-chrome"_s);
        ui.setDesktopPrefersLight(!light);
        QCOMPARE(ui.theme().id, u"black-chrome"_s);
    }

    void portalValue_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<int>("expected"); // -1 says nothing, 0 dark, 1 light
        QTest::newRow("dark") << QVariant(1u) << 0;
        QTest::newRow("light") << QVariant(2u) << 1;
        QTest::newRow("no preference") << QVariant(0u) << -1;
        QTest::newRow("unknown number") << QVariant(7u) << -1;
        QTest::newRow("wrapped twice, as older portals send it")
            << QVariant::fromValue(QDBusVariant(QVariant::fromValue(QDBusVariant(QVariant(2u))))) << 1;
        QTest::newRow("a text") << QVariant(u"2"_s) << -1;
        QTest::newRow("nothing") << QVariant() << -1;
    }
    void portalValue()
    {
        QFETCH(QVariant, value);
        QFETCH(int, expected);
        const std::optional<bool> light = DesktopScheme::prefersLight(value);
        QCOMPARE(light ? int(*light) : -1, expected);
    }
};

TRESTLE_TEST(ContrastTests);
#include "contrasttests.moc"
