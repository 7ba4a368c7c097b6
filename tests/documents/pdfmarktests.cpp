// Marks on a plan sheet: each kind written into the file is found again on a
// fresh read, undo takes away exactly the last one, the file stays readable
// and small, and damaged or locked files are refused before they are taken in.
#include "documents/pdfmarks.h"
#include "documents/pdfpages.h"
#include "testmain.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>
#include <QtGui/QPainter>
#include <QtGui/QPdfWriter>

using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(PdfMarkup::Kind)

namespace {

// A two-page sheet set on Tabloid landscape (1224 × 792 points) with a few lines of drawing.
QString makeSheet(const QTemporaryDir &dir, const QString &name = u"sheet.pdf"_s)
{
    const QString path = dir.filePath(name);
    QPdfWriter writer(path);
    writer.setPageSize(QPageSize(QSizeF(17, 11), QPageSize::Inch));
    writer.setPageMargins({});
    writer.setResolution(72);
    QPainter p(&writer);
    for (int page = 0; page < 2; ++page) {
        if (page)
            writer.newPage();
        p.drawRect(36, 36, 1152, 720);
        p.drawText(60, 80, u"SHEET %1"_s.arg(page + 1));
    }
    p.end();
    return path;
}

// One mark of `kind` on page `page`, as the screen makes it.
int addMark(PdfMarkup &pdf, PdfMarkup::Kind kind, int page, const QColor &color)
{
    switch (kind) {
    case PdfMarkup::Kind::Ink: return pdf.addInk(page, {{100, 100}, {150, 130}, {220, 120}}, color);
    case PdfMarkup::Kind::Box: return pdf.addBox(page, QRectF(QPointF(300, 200), QPointF(200, 100)), color);
    case PdfMarkup::Kind::Highlight: return pdf.addHighlight(page, QRectF(400, 300, 120, 40), color);
    case PdfMarkup::Kind::Note: return pdf.addNote(page, {500, 400}, u"Check door swing"_s, color);
    case PdfMarkup::Kind::Other: break;
    }
    return -1;
}

// A PDF whose objects sit at the offsets its cross-reference table gives.
QByteArray assemble(const QList<QByteArray> &objects, const QByteArray &trailerExtra)
{
    QByteArray out = "%PDF-1.4\n";
    QList<qsizetype> offsets;
    for (qsizetype i = 0; i < objects.size(); ++i) {
        offsets.append(out.size());
        out += QByteArray::number(i + 1) + " 0 obj\n" + objects[i] + "\nendobj\n";
    }
    const qsizetype xref = out.size();
    out += "xref\n0 " + QByteArray::number(objects.size() + 1) + "\n0000000000 65535 f \n";
    for (qsizetype o : offsets)
        out += QByteArray::number(o).rightJustified(10, '0') + " 00000 n \n";
    out += "trailer\n<< /Size " + QByteArray::number(objects.size() + 1) + " /Root 1 0 R " + trailerExtra +
           " >>\nstartxref\n" + QByteArray::number(xref) + "\n%%EOF\n";
    return out;
}

// A one-page PDF locked with a user password nobody here knows.
QByteArray lockedPdf()
{
    const QByteArray key32 = QByteArray(32, '\x5a').toHex();
    const QByteArray other32 = QByteArray(32, '\x3c').toHex();
    return assemble(
        {"<< /Type /Catalog /Pages 2 0 R >>", "<< /Type /Pages /Kids [3 0 R] /Count 1 >>",
         "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 612 792] >>",
         "<< /Filter /Standard /V 1 /R 2 /O <" + key32 + "> /U <" + other32 + "> /P -4 >>"},
        "/Encrypt 4 0 R /ID [<0123456789abcdef0123456789abcdef> <0123456789abcdef0123456789abcdef>]");
}

} // namespace

class PdfMarkTests : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eachKindIsFoundAfterReload_data()
    {
        QTest::addColumn<PdfMarkup::Kind>("kind");
        QTest::addColumn<QColor>("color");
        QTest::addColumn<QRectF>("rect");
        QTest::newRow("ink, grown by its stroke")
            << PdfMarkup::Kind::Ink << QColor(Qt::red) << QRectF(97, 97, 126, 36);
        QTest::newRow("box drawn from its far corner")
            << PdfMarkup::Kind::Box << QColor(Qt::blue) << QRectF(200, 100, 100, 100);
        QTest::newRow("highlight") << PdfMarkup::Kind::Highlight << QColor(Qt::green)
                                   << QRectF(400, 300, 120, 40);
        QTest::newRow("note: 8 per character plus 16")
            << PdfMarkup::Kind::Note << QColor(255, 128, 0) << QRectF(500, 400, 8 * 16 + 16, 24);
    }
    void eachKindIsFoundAfterReload()
    {
        QFETCH(PdfMarkup::Kind, kind);
        QFETCH(QColor, color);
        QFETCH(QRectF, rect);
        QTemporaryDir dir;
        const QString path = makeSheet(dir);
        {
            PdfMarkup pdf(path);
            QVERIFY(pdf.isValid());
            QVERIFY(addMark(pdf, kind, 1, color) > 0);
            QVERIFY(pdf.save());
        }
        const PdfMarkup again(path);
        QCOMPARE(again.pageCount(), 2);
        QVERIFY(again.marks(0).isEmpty());
        const QList<PdfMarkup::Mark> marks = again.marks(1);
        QCOMPARE(marks.size(), 1);
        const PdfMarkup::Mark &m = marks.first();
        QCOMPARE(m.kind, kind);
        QCOMPARE(m.color.rgb(), color.rgb());
        QVERIFY2(
            std::abs(m.rect.x() - rect.x()) < 0.5 && std::abs(m.rect.y() - rect.y()) < 0.5 &&
                std::abs(m.rect.width() - rect.width()) < 0.5 &&
                std::abs(m.rect.height() - rect.height()) < 0.5,
            qPrintable(
                u"%1,%2 %3×%4"_s.arg(m.rect.x()).arg(m.rect.y()).arg(m.rect.width()).arg(m.rect.height())));
        if (kind == PdfMarkup::Kind::Note)
            QCOMPARE(m.text, u"Check door swing"_s);
        // The drawing is still there under the marks.
        QVERIFY(PdfPages(path).text(1).contains(u"SHEET 2"_s));
    }

    // A note is drawn once before it is written, so it carries its own look
    // (other readers would show an empty box), in the standard Helvetica.
    void aNoteCarriesItsAppearance()
    {
        QTemporaryDir dir;
        const QString path = makeSheet(dir);
        {
            PdfMarkup pdf(path);
            addMark(pdf, PdfMarkup::Kind::Note, 0, Qt::red);
            QVERIFY(pdf.save());
        }
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray bytes = file.readAll();
        QVERIFY(bytes.contains("/FreeText"));
        QVERIFY(bytes.contains("/AP"));
        QVERIFY(bytes.contains("/Helvetica"));
    }

    void undoTakesAwayExactlyTheLast()
    {
        QTemporaryDir dir;
        const QString path = makeSheet(dir);
        PdfMarkup pdf(path);
        const int ink = addMark(pdf, PdfMarkup::Kind::Ink, 0, Qt::red);
        const int box = addMark(pdf, PdfMarkup::Kind::Box, 0, Qt::blue);
        const int note = addMark(pdf, PdfMarkup::Kind::Note, 1, Qt::green);
        QVERIFY(ink > 0 && box > ink && note > box);
        QVERIFY(pdf.save());
        QVERIFY(pdf.remove(note));
        QVERIFY(!pdf.remove(note));
        QVERIFY(pdf.save());
        {
            const PdfMarkup reread(path);
            QCOMPARE(reread.marks(0).size(), 2);
            QVERIFY(reread.marks(1).isEmpty());
        }
        QVERIFY(pdf.remove(box));
        QVERIFY(pdf.save());
        const PdfMarkup reread(path);
        const QList<PdfMarkup::Mark> left = reread.marks(0);
        QCOMPARE(left.size(), 1);
        QCOMPARE(left.first().kind, PdfMarkup::Kind::Ink);
        QVERIFY(PdfMarkup::problem(path) == std::nullopt);
        QCOMPARE(PdfPages(path).pageCount(), 2);
    }

    // Marks found in the file when it was opened are not this session's to undo.
    void marksOfAnEarlierSessionStay()
    {
        QTemporaryDir dir;
        const QString path = makeSheet(dir);
        int handle = 0;
        {
            PdfMarkup pdf(path);
            handle = addMark(pdf, PdfMarkup::Kind::Box, 0, Qt::red);
            QVERIFY(pdf.save());
        }
        PdfMarkup later(path);
        QVERIFY(!later.remove(handle));
        QCOMPARE(later.marks(0).size(), 1);
    }

    void emptyMarksAreNotMade()
    {
        QTemporaryDir dir;
        PdfMarkup pdf(makeSheet(dir));
        QCOMPARE(pdf.addNote(0, {10, 10}, u"   "_s, Qt::red), -1);
        QCOMPARE(pdf.addBox(0, QRectF(10, 10, 0, 40), Qt::red), -1);
        QCOMPARE(pdf.addInk(0, {{1, 1}}, Qt::red), -1);
        QCOMPARE(pdf.addBox(5, QRectF(10, 10, 40, 40), Qt::red), -1);
        QVERIFY(pdf.marks(0).isEmpty());
    }

    // The note's font is the standard one, named, not a system font copied in.
    void aNoteAddsBytesNotMegabytes()
    {
        QTemporaryDir dir;
        const QString path = makeSheet(dir);
        const qint64 before = QFileInfo(path).size();
        PdfMarkup pdf(path);
        addMark(pdf, PdfMarkup::Kind::Note, 0, Qt::red);
        QVERIFY(pdf.save());
        const qint64 growth = QFileInfo(path).size() - before;
        QVERIFY2(growth < 100 * 1024, qPrintable(QString::number(growth)));
    }

    void aFailedWriteLeavesTheFileAlone()
    {
        QTemporaryDir dir;
        const QString path = makeSheet(dir);
        PdfMarkup pdf(path);
        addMark(pdf, PdfMarkup::Kind::Box, 0, Qt::red);
        QVERIFY(!pdf.saveAs(dir.filePath(u"no-such-folder/sheet.pdf"_s)));
        QVERIFY(PdfMarkup(path).marks(0).isEmpty());
        QCOMPARE(pdf.marks(0).size(), 1);
    }

    void badFilesAreRefused_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("words");
        QTest::newRow("cut in half") << QByteArray() << u"not a whole PDF"_s;
        QTest::newRow("not a PDF") << QByteArray("PK\x03\x04 this is a zip\n%%EOF\n") << u"not a whole PDF"_s;
        QTest::newRow("empty") << QByteArray("") << u"not a whole PDF"_s;
        QTest::newRow("locked by a password") << lockedPdf() << u"password"_s;
        QTest::newRow("header and tail around garbage")
            << QByteArray("%PDF-1.4\ngarbage garbage\n%%EOF\n") << u"damaged"_s;
    }
    void badFilesAreRefused()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, words);
        QTemporaryDir dir;
        const QString path = dir.filePath(u"bad.pdf"_s);
        if (bytes.isEmpty() && QString::fromLatin1(QTest::currentDataTag()) == u"cut in half") {
            QFile whole(makeSheet(dir, u"whole.pdf"_s));
            QVERIFY(whole.open(QIODevice::ReadOnly));
            bytes = whole.readAll().left(whole.size() / 2);
        }
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        file.close();
        const std::optional<QString> problem = PdfMarkup::problem(path);
        QVERIFY(problem);
        QVERIFY2(problem->contains(words), qPrintable(*problem));
        QVERIFY(problem->contains(u"bad.pdf"_s));
        PdfMarkup pdf(path);
        QVERIFY(!pdf.isValid());
        QCOMPARE(pdf.addBox(0, QRectF(1, 1, 5, 5), Qt::red), -1);
    }

    void aGoodSheetIsAccepted()
    {
        QTemporaryDir dir;
        QCOMPARE(PdfMarkup::problem(makeSheet(dir)), std::nullopt);
        QVERIFY(PdfMarkup::problem(dir.filePath(u"missing.pdf"_s))->contains(u"could not be read"_s));
    }

    // On a page turned a quarter in its file, a mark lands where it was drawn on the page as shown.
    void marksOnATurnedPageLandWhereDrawn()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(u"turned.pdf"_s);
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(assemble({"<< /Type /Catalog /Pages 2 0 R >>", "<< /Type /Pages /Kids [3 0 R] /Count 1 >>",
                             "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 612 792] /Rotate 90 >>"},
                            QByteArray()));
        file.close();
        {
            PdfMarkup pdf(path);
            QCOMPARE(pdf.pageSize(0).toSize(), QSize(792, 612));
            QVERIFY(pdf.addHighlight(0, QRectF(100, 100, 200, 100), Qt::green) > 0);
            QVERIFY(pdf.save());
        }
        const PdfMarkup again(path);
        const QImage page = again.render(0, 1.0, QRect(0, 0, 792, 612));
        QCOMPARE(page.size(), QSize(792, 612));
        const QColor inside = page.pixelColor(200, 150), outside = page.pixelColor(600, 450);
        QVERIFY2(inside.green() > inside.red() + 40, qPrintable(inside.name()));
        QCOMPARE(outside, QColor(Qt::white));
        const QRectF rect = again.marks(0).value(0).rect;
        QVERIFY2(
            std::abs(rect.x() - 100) < 0.5 && std::abs(rect.y() - 100) < 0.5 &&
                std::abs(rect.width() - 200) < 0.5,
            qPrintable(u"%1,%2 %3×%4"_s.arg(rect.x()).arg(rect.y()).arg(rect.width()).arg(rect.height())));
    }

    // A part of a page comes out at the size asked, so the view can draw only what shows.
    void rendersThePartAsked()
    {
        QTemporaryDir dir;
        const PdfMarkup pdf(makeSheet(dir));
        QCOMPARE(pdf.pageSize(0).toSize(), QSize(1224, 792));
        const QImage part = pdf.render(0, 2.0, QRect(100, 50, 300, 200));
        QCOMPARE(part.size(), QSize(300, 200));
        QVERIFY(pdf.render(0, 2.0, QRect()).isNull());
        QVERIFY(pdf.render(3, 1.0, QRect(0, 0, 10, 10)).isNull());
    }
};

TRESTLE_TEST(PdfMarkTests);
#include "pdfmarktests.moc"
