// Pictures on the printed page, measured on the PDF a user gets: the logo,
// photos and pictures in rich-text bodies at their stated size in points, and
// a letterhead whose logo and title keep clear of each other.
#include "calc/datefmt.h"
#include "docshop.h"
#include "documents/docxwriter.h"
#include "documents/pdfout.h"
#include "documents/pdfpages.h"
#include "documents/pdfwrite.h"
#include "documents/printlogo.h"
#include "testmain.h"

#include <QtCore/QTemporaryDir>
#include <QtCore/QUrl>
#include <QtGui/QImage>
#include <QtGui/QTextCursor>
#include <QtGui/QTextDocument>

#include <cmath>

using namespace Qt::StringLiterals;
using namespace DocShop;

namespace {

constexpr double kDpi = 144; // two device pixels per point

bool isRed(QRgb p)
{
    return qRed(p) > 200 && qGreen(p) < 70 && qBlue(p) < 70;
}

bool isInk(QRgb p)
{
    return qRed(p) < 110 && qGreen(p) < 110 && qBlue(p) < 110;
}

// The rectangle, in points, that the red pixels of page `index` cover.
QRectF redBox(const QString &pdf, int index = 0)
{
    const QImage page = PdfPages(pdf).render(index, kDpi).convertToFormat(QImage::Format_RGB32);
    int left = page.width(), top = page.height(), right = -1, bottom = -1;
    for (int y = 0; y < page.height(); ++y) {
        const auto *row = reinterpret_cast<const QRgb *>(page.constScanLine(y));
        for (int x = 0; x < page.width(); ++x)
            if (isRed(row[x])) {
                left = std::min(left, x);
                right = std::max(right, x);
                top = std::min(top, y);
                bottom = std::max(bottom, y);
            }
    }
    if (right < 0)
        return {};
    const double k = 72 / kDpi;
    return QRectF(left * k, top * k, (right - left + 1) * k, (bottom - top + 1) * k);
}

QString redPicture(const QTemporaryDir &dir, const QString &name, QSize pixels)
{
    QImage image(pixels, QImage::Format_RGB32);
    image.fill(QColor(230, 0, 0));
    const QString path = dir.filePath(name);
    image.save(path);
    return path;
}

void keep(const QString &path, const QString &name)
{
    if (const QString folder = qEnvironmentVariable("TRESTLE_KEEP_PDF"); !folder.isEmpty()) {
        QFile::remove(folder + u'/' + name);
        QFile::copy(path, folder + u'/' + name);
    }
}

} // namespace

class PictureTests : public QObject
{
    Q_OBJECT
    QTemporaryDir dir;

private Q_SLOTS:
    void init() { DateFmt::setToday(kToday); }

    void logoPrintsAtItsSize_data()
    {
        QTest::addColumn<QSize>("pixels");
        QTest::addColumn<QSizeF>("points");
        QTest::newRow("wide: 170 wide, height in proportion") << QSize(400, 100) << QSizeF(170, 42.5);
        QTest::newRow("square: 54 high") << QSize(300, 300) << QSizeF(54, 54);
        QTest::newRow("tall: 54 high") << QSize(100, 200) << QSizeF(27, 54);
        QTest::newRow("very wide") << QSize(2400, 150) << QSizeF(170, 10.625);
    }
    void logoPrintsAtItsSize()
    {
        QFETCH(QSize, pixels);
        QFETCH(QSizeF, points);
        Shop s(u"Harbor & Sons Construction Company"_s);
        QVERIFY(PrintLogo::install(s.db, redPicture(dir, u"logo.png"_s, pixels)));
        const QString pdf = dir.filePath(u"letterhead.pdf"_s);
        QVERIFY(PDFOut::saveHTML(
            s.db, PDFOut::header(s.db, u"Job Cost Report — Budget vs Actual"_s, s.project), pdf));
        keep(pdf, u"letterhead-%1x%2.pdf"_s.arg(pixels.width()).arg(pixels.height()));
        const QRectF box = redBox(pdf);
        QVERIFY2(std::abs(box.width() - points.width()) <= 1, qPrintable(QString::number(box.width())));
        QVERIFY2(std::abs(box.height() - points.height()) <= 1, qPrintable(QString::number(box.height())));

        // Nothing is written over the logo, and the company name starts to its right.
        const QImage page = PdfPages(pdf).render(0, kDpi).convertToFormat(QImage::Format_RGB32);
        const int x1 = int(box.right() * kDpi / 72), y0 = int(box.top() * kDpi / 72),
                  y1 = int(box.bottom() * kDpi / 72);
        int firstInk = -1;
        for (int y = y0; y < y1 && y < page.height(); ++y)
            for (int x = 0; x < page.width(); ++x)
                if (isInk(page.pixel(x, y)) && (firstInk < 0 || x < firstInk))
                    firstInk = x;
        QVERIFY(firstInk >= 0); // the name stands beside the logo
        QVERIFY2(firstInk > x1, qPrintable(QString::number(firstInk - x1)));

        // The title stays whole on one line beside the letterhead.
        const QStringList lines = PdfPages(pdf).text(0).split(u'\n');
        QVERIFY2(
            std::any_of(lines.begin(), lines.end(),
                        [](const QString &l) { return l.contains(u"Job Cost Report — Budget vs Actual"_s); }),
            qPrintable(lines.join(u" | "_s)));
    }

    void titlesStayWhole_data()
    {
        QTest::addColumn<QString>("title");
        QTest::addColumn<bool>("logo");
        QTest::newRow("job cost, no logo") << u"Job Cost Report — Budget vs Actual"_s << false;
        QTest::newRow("job cost, logo") << u"Job Cost Report — Budget vs Actual"_s << true;
        QTest::newRow("pay application, logo") << u"Application for Payment #12"_s << true;
        QTest::newRow("work in progress, logo") << u"Work in Progress Report"_s << true;
    }
    void titlesStayWhole()
    {
        QFETCH(QString, title);
        QFETCH(bool, logo);
        Shop s(u"Grand Valley Builders & Restoration (Sample)"_s);
        if (logo)
            QVERIFY(PrintLogo::install(s.db, redPicture(dir, u"wide.png"_s, QSize(800, 200))));
        const QString pdf = dir.filePath(u"title.pdf"_s);
        QVERIFY(PDFOut::saveHTML(s.db, PDFOut::header(s.db, title, s.project) + u"<p>Body</p>"_s, pdf));
        const QStringList lines = PdfPages(pdf).text(0).split(u'\n');
        const bool whole =
            std::any_of(lines.begin(), lines.end(), [&](const QString &l) { return l.contains(title); });
        QVERIFY2(whole, qPrintable(lines.join(u" | "_s)));
        // The job lines under the title are still there.
        QVERIFY(PdfPages(pdf).text(0).contains(u"J-7 Tower"_s));
    }

    // Photos and pictures in documents: a stated size is points; with none, 96-dpi pixels.
    void picturesPrintAtTheirStatedSize_data()
    {
        QTest::addColumn<QString>("html"); // %1 is the picture's URL
        QTest::addColumn<QSize>("pixels");
        QTest::addColumn<QSizeF>("points");
        QTest::newRow("photo width=300")
            << u"<p><img src='%1' width=300><br><i>Slab</i></p>"_s << QSize(600, 400) << QSizeF(300, 200);
        QTest::newRow("width and height")
            << u"<p><img src='%1' width=144 height=36></p>"_s << QSize(50, 50) << QSizeF(144, 36);
        QTest::newRow("no size: 96-dpi pixels")
            << u"<p><img src='%1'></p>"_s << QSize(192, 96) << QSizeF(144, 72);
        QTest::newRow("wider than the text is fitted")
            << u"<p><img src='%1' width=800></p>"_s << QSize(80, 40) << QSizeF(528, 264);
    }
    void picturesPrintAtTheirStatedSize()
    {
        QFETCH(QString, html);
        QFETCH(QSize, pixels);
        QFETCH(QSizeF, points);
        DB db;
        const QString url = QUrl::fromLocalFile(redPicture(dir, u"photo.png"_s, pixels)).toString();
        const QString pdf = dir.filePath(u"photo.pdf"_s);
        QVERIFY(PDFOut::saveHTML(db, html.arg(url), pdf));
        const QRectF box = redBox(pdf);
        QVERIFY2(std::abs(box.width() - points.width()) <= 1, qPrintable(QString::number(box.width())));
        QVERIFY2(std::abs(box.height() - points.height()) <= 1, qPrintable(QString::number(box.height())));
    }

    // A rich-text body's picture prints in the PDF at the size the Word file gives it.
    void bodyPictureAgreesWithWord()
    {
        DB db;
        QTextDocument body;
        body.addResource(QTextDocument::ImageResource, QUrl(u"body-picture"_s),
                         QImage(redPicture(dir, u"body.png"_s, QSize(300, 150))));
        QTextCursor cursor(&body);
        cursor.insertText(u"Before the picture"_s);
        cursor.insertBlock();
        QTextImageFormat picture;
        picture.setName(u"body-picture"_s);
        picture.setWidth(216);
        picture.setHeight(108);
        cursor.insertImage(picture);
        const QString pdf = dir.filePath(u"body.pdf"_s);
        QVERIFY(PDFOut::save(db, body, pdf));
        const QRectF box = redBox(pdf);
        QVERIFY2(std::abs(box.width() - 216) <= 1, qPrintable(QString::number(box.width())));
        QVERIFY2(std::abs(box.height() - 108) <= 1, qPrintable(QString::number(box.height())));
        // Word gets the same 216 by 108 points (EMU: 12,700 a point).
        const QByteArray xml = DocxWriter::parts(body).value(u"word/document.xml"_s);
        QVERIFY(xml.contains("cx=\"2743200\" cy=\"1371600\""));
    }
};

TRESTLE_TEST(PictureTests);
#include "picturetests.moc"
