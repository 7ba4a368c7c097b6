// Printed reports as laid out on paper: amounts stay whole, choices read as on screen.
#include "calc/datefmt.h"
#include "docshop.h"
#include "documents/pageddocument.h"
#include "documents/pdfout.h"
#include "documents/reportshtml.h"
#include "testmain.h"

#include <QtGui/QTextBlock>
#include <QtGui/QTextDocument>
#include <QtGui/QTextLayout>
#include <QtGui/QTextTable>

using namespace Qt::StringLiterals;
using namespace DocShop;

namespace {

// Every amount cell of every table that was laid out over more than one line.
QStringList splitAmounts(const QString &html)
{
    PagedDocument paged(DB(), PrintSource::fromHtml(html), u"t"_s);
    QStringList split;
    for (QTextBlock b = paged.document()->begin(); b.isValid(); b = b.next()) {
        const QString text = b.text();
        if (text.startsWith(u'$') || text.startsWith(u"-$"_s))
            if (b.layout() && b.layout()->lineCount() > 1)
                split.append(text);
    }
    return split;
}

} // namespace

class PrintFitTests : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { DateFmt::setToday(kToday); }

    void crowdedTableKeepsAmountsWhole_data()
    {
        QTest::addColumn<int>("columns");
        QTest::addColumn<double>("pt"); // 0 for the body size
        QTest::newRow("five at body size") << 5 << 0.0;
        QTest::newRow("nine at 8pt") << 9 << 8.0;
        QTest::newRow("ten at 6.5pt") << 10 << 6.5;
    }
    void crowdedTableKeepsAmountsWhole()
    {
        QFETCH(int, columns);
        QFETCH(double, pt);
        // A long name next to many amounts: the name must give way, not the amounts.
        QStringList heads{u"Project"_s}, row{u"Monument Ridge Clubhouse and Community Center"_s};
        QSet<int> right;
        for (int k = 1; k < columns; ++k) {
            heads.append(u"Amount "_s + QString::number(k));
            row.append(u"$1,126,940.00"_s);
            right.insert(k);
        }
        QCOMPARE(
            splitAmounts(PDFOut::table(heads, {row, row}, right, pt > 0 ? std::optional(pt) : std::nullopt)),
            QStringList());
    }

    void wipAmountsFitThePage()
    {
        Shop s;
        for (int k = 0; k < 3; ++k)
            s.db.add(u"project"_s, {}, {},
                     {{u"name"_s, u"Hwy 50 Overlay, MP 32–36 and frontage roads"_s},
                      {u"number"_s, u"GV-10"_s + QString::number(k)},
                      {u"contract"_s, u"112694000"_s},
                      {u"status"_s, u"Active"_s}});
        const QString html = PrintReports::wipHTML(s.db);
        QVERIFY(html.contains(u"<td align=right style='font-size:8.0pt'>$1,126,940.00</td>"_s));
        QCOMPARE(splitAmounts(html), QStringList());
    }

    void projectReportShowsChoiceLabels_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("status");
        QTest::addColumn<QString>("cells");
        QTest::newRow("owner approved")
            << u"owner"_s << u"approved"_s << u"<td align=left>Owner</td><td align=left>Approved</td>"_s;
        QTest::newRow("sub pending") << u"sub"_s << u"pending"_s
                                     << u"<td align=left>Sub</td><td align=left>Pending</td>"_s;
    }
    void projectReportShowsChoiceLabels()
    {
        QFETCH(QString, kind);
        QFETCH(QString, status);
        QFETCH(QString, cells);
        Shop s;
        s.db.add(u"co"_s, s.project.id, {},
                 {{u"title"_s, u"Patio"_s}, {u"kind"_s, kind}, {u"status"_s, status}});
        const QString html = PrintReports::projectReport(s.db, s.project);
        QVERIFY2(html.contains(u"<td align=left>Patio</td>"_s + cells), qPrintable(html));
    }
};

TRESTLE_TEST(PrintFitTests);
#include "printfittests.moc"
