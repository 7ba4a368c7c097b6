#include "ganttbench.h"

#include "benchutil.h"

#include "calc/datefmt.h"
#include "calc/schedule.h"
#include "documents/pdfmarks.h"
#include "screens/gantt.h"
#include "screens/markupview.h"
#include "store/db.h"

#include <QtCore/QRandomGenerator>
#include <QtCore/QTemporaryDir>
#include <QtGui/QImage>
#include <QtGui/QPainter>
#include <QtGui/QPdfWriter>

using namespace Qt::StringLiterals;

namespace {

constexpr double kGanttTargetMs = 16;
constexpr double kPlanTargetMs = 150;
const QSize kView(1600, 1000);

QString target(double ms, double limit)
{
    return u"target < %1 ms%2"_s.arg(limit).arg(ms < limit ? QString() : u"  OVER"_s);
}

// 500 tasks in ten chains of fifty, each after the one before in its chain.
void schedule(DB &db, Rec &project)
{
    db.createCompany(u"Bench Builders"_s, u"Bench Owner"_s, u"CO"_s);
    project = db.add(u"project"_s, {}, {}, {{u"name"_s, u"Tower"_s}, {u"start"_s, u"2026-01-05"_s}});
    QRandomGenerator rng(7);
    QList<Rec> tasks;
    for (int chain = 0; chain < 10; ++chain) {
        QString prev;
        for (int i = 0; i < 50; ++i) {
            Rec t;
            t.id = newID();
            t.kind = u"task"_s;
            t.company = db.companyID();
            t.project = project.id;
            t.f = {{u"name"_s, u"Task %1.%2"_s.arg(chain + 1).arg(i + 1)},
                   {u"duration"_s, QString::number(rng.bounded(1, 8))},
                   {u"progress"_s, QString::number(rng.bounded(0, 101))},
                   {u"sort"_s, QString::number(chain * 50 + i + 1)},
                   {u"preds"_s, prev}};
            prev = t.id;
            tasks.append(t);
        }
    }
    db.saveAll(tasks);
}

// An ARCH D sheet (36 × 24 in) dense with lines, hatching and room labels.
QString bigSheet(const QTemporaryDir &dir)
{
    const QString path = dir.filePath(u"A-501 Details.pdf"_s);
    QPdfWriter writer(path);
    writer.setPageSize(QPageSize(QSizeF(36, 24), QPageSize::Inch));
    writer.setPageMargins({});
    writer.setResolution(72);
    QPainter p(&writer);
    QRandomGenerator rng(11);
    p.setPen(QPen(Qt::black, 0.5));
    for (int i = 0; i < 20000; ++i) {
        const QPointF a(rng.bounded(2592.0), rng.bounded(1728.0));
        p.drawLine(a, a + QPointF((rng.bounded(160.0) - 80), (rng.bounded(160.0) - 80)));
    }
    QFont f(u"DejaVu Sans"_s);
    f.setPointSizeF(7);
    p.setFont(f);
    for (int i = 0; i < 1500; ++i)
        p.drawText(QPointF(rng.bounded(2500.0), (10 + rng.bounded(1710.0))), u"ROOM %1"_s.arg(i));
    return path;
}

} // namespace

void runGanttBench(int runs, QTextStream &out)
{
    DateFmt::setToday(QDate(2026, 3, 2));
    DB db;
    Rec project;
    schedule(db, project);
    const QList<Rec> tasks = db.list(u"task"_s, RecFilter{.project = project.id});
    QHash<QString, DateSpan> dates;
    GanttCanvas canvas;
    Bench::figure(out, runs, u"gantt: dates and layout, 500 tasks"_s, QString(), [&] {
        dates = scheduleDates(db, project.id);
        canvas.setSchedule(tasks, dates, GanttRange::of(dates, project.f.value(u"start"), DateFmt::today()));
    });
    canvas.resize(canvas.sizeHint());
    QImage image(kView, QImage::Format_ARGB32_Premultiplied);
    const auto paint = [&](const QPoint &at) {
        image.fill(Qt::transparent);
        canvas.render(&image, QPoint(), QRegion(QRect(at, kView)));
    };
    const Bench::Stats top = Bench::measure(runs, [&] { paint({0, 0}); });
    Bench::print(out, u"gantt: paint a 1600×1000 view, 500 tasks"_s, top, target(top.median, kGanttTargetMs));
    const QPoint middle(canvas.width() / 3, canvas.height() / 2);
    const Bench::Stats mid = Bench::measure(runs, [&] { paint(middle); });
    Bench::print(out, u"gantt: paint the middle of the chart"_s, mid,
                 u"canvas %1×%2, "_s.arg(canvas.width()).arg(canvas.height()) +
                     target(mid.median, kGanttTargetMs));
    DateFmt::setToday(QDate());

    QTemporaryDir dir;
    const QString sheet = bigSheet(dir);
    MarkupView view(sheet);
    view.resize(kView);
    view.setZoom(2);
    // A fresh zoom each run empties the view's cache, so every run draws the page anew.
    const Bench::Stats plan = Bench::measure(runs, [&] {
        view.setZoom(1.999 + 0.001 * (view.renders() % 2));
        view.grab();
    });
    Bench::print(out, u"plan: ARCH D page at 200 % in a 1600×1000 view"_s, plan,
                 u"%1 px/pt, "_s.arg(view.scale(), 0, 'f', 2) + target(plan.median, kPlanTargetMs));
    PdfMarkup pdf(sheet);
    const double scale = view.scale();
    const QSizeF size = pdf.pageSize(0) * scale;
    Bench::figure(out, std::max(1, runs / 2), u"plan: whole ARCH D page at that scale"_s,
                  u"%1×%2 px, for comparison"_s.arg(qRound(size.width())).arg(qRound(size.height())),
                  [&] { pdf.render(0, scale, QRect(QPoint(), size.toSize())); });
}
