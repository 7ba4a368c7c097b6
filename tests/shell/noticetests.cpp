// A notice on screen wears its tone in the finish of the moment: a finish
// change repaints its symbol and panel in the new finish's error or warning colour.
#include "testmain.h"

#include "look/fwui.h"
#include "look/tones.h"
#include "shell/notice.h"

#include <QtGui/QImage>
#include <QtGui/QPixmap>
#include <QtWidgets/QLabel>

using namespace Qt::StringLiterals;

namespace {

// The colour of the symbol's solid pixels: its edges blend into the panel.
QColor symbolColour(const Notice &notice)
{
    for (const QLabel *label : notice.findChildren<QLabel *>()) {
        const QImage img = label->pixmap().toImage().convertToFormat(QImage::Format_ARGB32);
        for (int y = 0; y < img.height(); ++y)
            for (int x = 0; x < img.width(); ++x)
                if (qAlpha(img.pixel(x, y)) == 255)
                    return QColor(img.pixel(x, y));
    }
    return {};
}

} // namespace

class NoticeTests : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { FWUI::shared().setTheme(FWTheme::all().first().id); }

    void followsTheFinish_data()
    {
        QTest::addColumn<QString>("finish");
        QTest::addColumn<bool>("error");
        // Only finishes whose colour differs from the first's can show a stale notice.
        const FWTones first = FWTones::of(FWTheme::all().first());
        for (const FWTheme &t : FWTheme::all().mid(1)) {
            const FWTones tones = FWTones::of(t);
            if (tones.error != first.error)
                QTest::newRow(qPrintable(t.id + u" error"_s)) << t.id << true;
            if (tones.warning != first.warning)
                QTest::newRow(qPrintable(t.id + u" warning"_s)) << t.id << false;
        }
    }
    void followsTheFinish()
    {
        QFETCH(QString, finish);
        QFETCH(bool, error);
        FWUI::shared().setTheme(FWTheme::all().first().id);
        const QColor before = error ? FWTones::current().error : FWTones::current().warning;
        Notice notice(u"Not saved"_s, error ? Notice::Tone::Error : Notice::Tone::Warning,
                      u"exclamationmark.triangle.fill"_s);
        QCOMPARE(symbolColour(notice).rgb(), before.rgb());

        FWUI::shared().setTheme(finish);
        const QColor after = error ? FWTones::current().error : FWTones::current().warning;
        QCOMPARE(symbolColour(notice).rgb(), after.rgb());
    }
};

TRESTLE_TEST(NoticeTests);
#include "noticetests.moc"
