// The printed WIP schedule read back from the PDF a user gets: landscape,
// about twenty-five jobs a page, every job's row whole on one page.
#include "docshop.h"
#include "documents/wipschedulehtml.h"
#include "pdfcheck.h"
#include "testmain.h"

#include "calc/datefmt.h"
#include "calc/money.h"
#include "workflows/wipschedule.h"

#include <QtGui/QImage>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

// A company of `jobs` projects with eight-digit contracts, some with long names;
// every fourth is complete, one bids and stays off the schedule.
void company(DB &db, int jobs)
{
    db.createCompany(u"Acme Builders"_s, u"Ann"_s, u"CA"_s);
    db.add(u"project"_s, {}, {},
           {{u"number"_s, u"BID-0"_s}, {u"name"_s, u"Still bidding"_s}, {u"status"_s, u"Bidding"_s}});
    for (int i = 0; i < jobs; ++i) {
        const qint64 contract = 1234567800 + i * 1013;
        const Rec p = db.add(u"project"_s, {}, {},
                             {{u"number"_s, u"J-"_s + QString::number(100 + i)},
                              {u"name"_s, u"Riverside Clinic "_s + QString::number(i) +
                                              (i % 10 == 5 ? u" — Medical Office Building and Parking "
                                                             u"Structure Renovation, Phase Two"_s
                                                           : QString())},
                              {u"status"_s, i % 4 == 3 ? u"Complete"_s : u"Active"_s},
                              {u"contract"_s, QString::number(contract)}});
        db.add(u"budget_line"_s, p.id, {}, {{u"original"_s, QString::number(contract - 150000000)}});
        db.add(u"expense"_s, p.id, {}, {{u"amount"_s, QString::number(contract / 3 + i)}});
        const Rec inv = db.add(u"invoice"_s, p.id, {}, {{u"status"_s, u"Sent"_s}});
        db.add(u"inv_line"_s, p.id, inv.id,
               {{u"qty"_s, u"1"_s}, {u"unitPrice"_s, QString::number(contract / (i % 2 ? 2 : 5))}});
    }
}

} // namespace

class WipScheduleDocTests : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { DateFmt::setToday(DocShop::kToday); }
    void cleanupTestCase() { DateFmt::setToday(QDate()); }

    void pages_data()
    {
        QTest::addColumn<int>("jobs");
        QTest::addColumn<int>("maxPages");
        QTest::newRow("none") << 0 << 1;
        QTest::newRow("one") << 1 << 1;
        QTest::newRow("twenty-four") << 24 << 1;
        QTest::newRow("fifty") << 50 << 2;
        QTest::newRow("seventy-five") << 75 << 3;
    }

    void pages()
    {
        QFETCH(int, jobs);
        QFETCH(int, maxPages);
        DB db;
        company(db, jobs);
        QTemporaryDir dir;
        const QString path = dir.filePath(u"wip-%1.pdf"_s.arg(jobs));
        QVERIFY(PDFOut::wipSchedule(db, path));
        if (const QString keep = qEnvironmentVariable("TRESTLE_KEEP_PDF"); !keep.isEmpty()) {
            QFile::remove(keep + u"/wip-%1.pdf"_s.arg(jobs));
            QFile::copy(path, keep + u"/wip-%1.pdf"_s.arg(jobs));
        }
        const PdfPages pdf(path);
        QVERIFY(pdf.isValid());
        QVERIFY2(pdf.pageCount() <= maxPages, qPrintable(QString::number(pdf.pageCount())));
        for (int i = 0; i < pdf.pageCount(); ++i) {
            QCOMPARE(pdf.pageSize(i).toSize(), QSize(792, 612)); // Letter, turned sideways
            // Nothing runs into the right margin: the table fits the page's width.
            const QImage page = pdf.render(i, 72).convertToFormat(QImage::Format_RGB32);
            for (int y = 0; y < page.height(); ++y)
                for (int x = page.width() - 40; x < page.width(); ++x)
                    QVERIFY2(QColor(page.pixel(x, y)).lightness() > 250,
                             qPrintable(u"ink at %1,%2 of page %3"_s.arg(x).arg(y).arg(i + 1)));
        }

        const QList<QStringList> words = PdfCheck::pageWords(path);
        const QString first = words.value(0).join(u' ');
        QVERIFY(first.contains(u"WIP Schedule"_s));
        QVERIFY(first.contains(u"As of Nov 15, 2026"_s));
        QVERIFY(first.contains(u"Cost-to-cost method"_s));
        QVERIFY(first.contains(u"Contracts in progress"_s));
        const QString all = [&] {
            QStringList pages;
            for (const QStringList &w : words)
                pages << w.join(u' ');
            return pages.join(u' ');
        }();
        QVERIFY(!all.contains(u"BID-0"_s));
        QVERIFY(!all.contains(u"Still bidding"_s));
        QVERIFY(all.contains(u"Completed contracts"_s));
        QVERIFY(words.last().join(u' ').contains(u"Total all contracts"_s));

        // Each job on exactly one page, and its row whole there: the number,
        // the contract and the earned revenue side by side.
        const WipSchedule s = WipSchedule::of(db);
        QCOMPARE(s.inProgress.lines.size() + s.completed.lines.size(), jobs);
        for (const WipLine &l : s.inProgress.lines + s.completed.lines) {
            int on = -1;
            for (int i = 0; i < words.size(); ++i)
                if (words.at(i).contains(l.number)) {
                    QVERIFY2(on < 0, qPrintable(l.number + u" on two pages"_s));
                    on = i;
                }
            QVERIFY2(on >= 0, qPrintable(l.number));
            for (qint64 figure : {l.contract, l.earned, l.overBilled + l.underBilled})
                QVERIFY2(words.at(on).contains(Money::fmt(figure, false)),
                         qPrintable(l.number + u": "_s + Money::fmt(figure, false)));
        }
        // Every page that holds jobs is headed: each word of every column's
        // head stands once above the page's first job.
        QStringList headWords;
        for (const QString &head : PrintReports::wipScheduleHeads().mid(1))
            headWords += head.split(u' ');
        headWords[0] = u"Job"_s;
        int headed = 0;
        for (int i = 0; i < words.size(); ++i) {
            QStringList w; // "profit" comes back from the PDF with its "fi" ligature
            for (const QString &word : words.at(i))
                w << word.normalized(QString::NormalizationForm_KC);
            const auto firstJob =
                std::find_if(w.cbegin(), w.cend(), [](const QString &x) { return x.startsWith(u"J-"_s); });
            if (firstJob == w.cend())
                continue;
            ++headed;
            for (const QString &head : headWords) {
                QVERIFY2(w.indexOf(head) >= 0 && w.indexOf(head) < firstJob - w.cbegin(),
                         qPrintable(u"page %1: %2"_s.arg(i + 1).arg(head)));
            }
            QCOMPARE(w.count(u"Backlog"_s), 1);
        }
        QVERIFY2(jobs < 50 || headed >= 2, "the jobs run on to a second page");
        // The grand total's earned revenue is printed.
        QVERIFY(all.contains(Money::fmt(s.total.earned, false)));
    }
};

TRESTLE_TEST(WipScheduleDocTests);

#include "wipscheduletests.moc"
