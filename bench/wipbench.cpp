#include "wipbench.h"

#include "benchutil.h"

#include "documents/wipschedulehtml.h"
#include "store/db.h"
#include "workflows/wipschedule.h"

#include <QtCore/QTemporaryDir>

using namespace Qt::StringLiterals;

namespace {
// The figures are a job-cost walk per project, the same as the Reports screen pays after a save.
constexpr double kFiguresTargetMs = 200, kPdfTargetMs = 300;
} // namespace

void runWipBench(const DB &db, int runs, QTextStream &out)
{
    const WipSchedule s = WipSchedule::of(db);
    const qsizetype jobs = s.inProgress.lines.size() + s.completed.lines.size();
    Bench::figure(out, runs, u"WIP schedule figures"_s,
                  u"[%1 jobs of %2 projects]  target < %3 ms"_s.arg(jobs)
                      .arg(db.count(u"project"_s))
                      .arg(kFiguresTargetMs),
                  [&] { (void)WipSchedule::of(db); });
    QTemporaryDir dir;
    const QString path = dir.filePath(u"wip-schedule.pdf"_s);
    Bench::figure(out, runs, u"WIP schedule to PDF"_s,
                  u"[%1 jobs]  target < %2 ms"_s.arg(jobs).arg(kPdfTargetMs),
                  [&] { PDFOut::wipSchedule(db, path); });
}
