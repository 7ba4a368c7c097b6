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

// An ARCH D sheet (36 × 24 in) drawn like a dense floor plan: 2,400 rooms
// with double walls and doors, hatched areas, dimension strings and labels.
QString bigSheet(const QTemporaryDir &dir)
{
    const QString path = dir.filePath(u"A-501 Details.pdf"_s);
    QPdfWriter writer(path);
    writer.setPageSize(QPageSize(QSizeF(36, 24), QPageSize::Inch));
    writer.setPageMargins({});
    writer.setResolution(72);
    QPainter p(&writer);
    QRandomGenerator rng(11);
    QFont f(u"DejaVu Sans"_s);
    f.setPointSizeF(5);
    p.setFont(f);
    const qreal w = 40, h = 40, x0 = 72, y0 = 72;
    for (int i = 0; i < 60; ++i) {
        for (int j = 0; j < 40; ++j) {
            const QRectF room(x0 + i * w, y0 + j * h, w, h);
            p.setPen(QPen(Qt::black, 1.2));
            p.drawRect(room);
            p.setPen(QPen(Qt::black, 0.4));
            p.drawRect(room.adjusted(2, 2, -2, -2));
            p.drawArc(QRectF(room.left() + 4, room.top() + 4, 12, 12), 0, 90 * 16);
            p.drawText(room.adjusted(4, 18, 0, 0), u"R%1-%2"_s.arg(i).arg(j));
            if (rng.bounded(6) == 0)
                for (int k = 1; k < 10; ++k)
                    p.drawLine(QPointF(room.left() + k * 4, room.bottom() - 2),
                               QPointF(room.left() + 2, room.bottom() - k * 4));
        }
        p.setPen(QPen(Qt::black, 0.3));
        p.drawLine(QPointF(x0 + i * w, y0 - 30), QPointF(x0 + i * w + w, y0 - 30));
        p.drawText(QPointF(x0 + i * w + 12, y0 - 33), u"3'-4\""_s);
    }
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
    view.setAttribute(Qt::WA_DontShowOnScreen);
    view.show();
    const double fitted = view.scale();
    // A fresh zoom each run empties the view's cache, so every run draws anew.
    const auto drawAt = [&](double zoom) {
        return Bench::measure(runs, [&] {
            view.setZoom(zoom * (1 + 0.0005 * (view.renders() % 2)));
            view.grab();
        });
    };
    const Bench::Stats fit = drawAt(1);
    Bench::print(out, u"plan: ARCH D sheet fitted to a 1600×1000 view"_s, fit,
                 u"%1 px/pt, the whole sheet at once"_s.arg(view.scale(), 0, 'f', 2));
    // 200 %: two pixels for each point of the sheet.
    const Bench::Stats zoomed = drawAt(2 / fitted);
    Bench::print(out, u"plan: ARCH D sheet at 200 % in a 1600×1000 view"_s, zoomed,
                 u"%1 px/pt, "_s.arg(view.scale(), 0, 'f', 2) + target(zoomed.median, kPlanTargetMs));
}
