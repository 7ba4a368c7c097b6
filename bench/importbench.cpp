// Figures of the import: the preview and the write of a company's lists.
#include "importbench.h"

#include "benchutil.h"

#include "interchange/csv.h"
#include "interchange/importwrite.h"
#include "store/db.h"

#include <QtCore/QTemporaryDir>

using namespace Qt::StringLiterals;

namespace {

constexpr int kContacts = 10000;
constexpr int kCodes = 1000;

// The two lists as a spreadsheet would hold them, quoted cells and all.
QList<Import::Table> lists()
{
    QList<QStringList> contacts{{u"Name"_s, u"Company"_s, u"Type"_s, u"Phone"_s, u"Email"_s, u"Address"_s}};
    for (int k = 0; k < kContacts; ++k)
        contacts.append({u"Contact "_s + QString::number(k), u"Firm "_s + QString::number(k / 3),
                         k % 2 ? u"Subcontractor"_s : u"Vendor / Supplier"_s,
                         u"(503) 555-"_s + QString::number(1000 + k % 9000),
                         u"c"_s + QString::number(k) + u"@example.com"_s,
                         QString::number(k) + u" Main St, Portland, OR"_s});
    QList<QStringList> codes{{u"Code"_s, u"Name"_s}};
    for (int k = 0; k < kCodes; ++k)
        codes.append({u"%1-%2"_s.arg(10 + k / 100).arg(k % 100 * 10, 3, 10, QChar(u'0')),
                      u"Work item "_s + QString::number(k)});
    return {Import::csv(u"contacts.csv"_s, CSV::text(contacts)),
            Import::csv(u"cost codes.csv"_s, CSV::text(codes))};
}

} // namespace

void runImportBench(int runs, QTextStream &out)
{
    const QList<Import::Table> tables = lists();
    const QString note = u"[%1 contacts, %2 cost codes]"_s.arg(kContacts).arg(kCodes);
    Bench::figure(out, runs, u"import preview"_s, note + u"  target < 1000 ms"_s, [&] {
        DB db;
        db.createCompany(u"Bench"_s, u"Owner"_s, u"OR"_s);
        const Import::Plan plan = Import::plan(db, Import::sheets(tables));
        if (plan.anyBad())
            qFatal("import bench: the generated lists have bad rows");
    });
    // Each run writes into a fresh store file, with the snapshot the import takes first.
    std::vector<double> writes;
    double again = 0;
    for (int k = 0; k < std::max(runs, 1); ++k) {
        QTemporaryDir dir;
        DB db(dir.filePath(u"trestle.sqlite"_s));
        db.createCompany(u"Bench"_s, u"Owner"_s, u"OR"_s);
        const Import::Plan plan = Import::plan(db, Import::sheets(tables));
        QElapsedTimer t;
        t.start();
        const Import::Outcome o = Import::write(db, plan, false);
        writes.push_back(double(t.nsecsElapsed()) / 1e6);
        if (!o.ok)
            qFatal("import bench: the write failed: %s", qPrintable(o.error));
        t.restart();
        const Import::Plan second = Import::plan(db, Import::sheets(tables));
        again = std::max(again, double(t.nsecsElapsed()) / 1e6);
        for (const auto &[kind, count] : second.counts())
            if (count.fresh != 0)
                qFatal("import bench: a second import would add records");
    }
    std::sort(writes.begin(), writes.end());
    Bench::print(out, u"import write"_s, {writes[writes.size() / 2], writes.front(), writes.back()},
                 note + u"  target < 2000 ms"_s);
    out << "import preview of the same files again: " << Bench::ms(again) << " ms (slowest run)" << Qt::endl;
}
