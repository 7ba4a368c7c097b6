// The benchmark: builds (or reuses) the reference company and prints one line
// per figure, so two builds can be compared side by side.
#include "calcbench.h"
#ifdef TRESTLE_DOCBENCH
#include "docbench.h"
#include "wipbench.h"
#include <QtGui/QGuiApplication>
#endif
#include "flowbench.h"
#include "generator.h"
#include "importbench.h"
#include "interbench.h"
#include "serverbench.h"

#include "store/db.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFileInfo>
#include <QtCore/QProcess>
#include <QtCore/QTextStream>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

constexpr double kLoadTargetMs = 1500;
constexpr qint64 kBytesPerRecordTarget = 1024;

QTextStream &out()
{
    static QTextStream stream(stdout);
    return stream;
}

// Resident and peak resident memory of this process in kB, as the kernel counts them.
struct Memory
{
    qint64 rss = -1;
    qint64 peak = -1;
};

Memory memoryNow()
{
    Memory m;
    // Plain stdio: reading the figure must not itself allocate much.
    if (std::FILE *f = std::fopen("/proc/self/status", "r")) {
        char line[256];
        while (std::fgets(line, sizeof line, f)) {
            if (std::strncmp(line, "VmRSS:", 6) == 0)
                m.rss = std::atoll(line + 6);
            else if (std::strncmp(line, "VmHWM:", 6) == 0)
                m.peak = std::atoll(line + 6);
        }
        std::fclose(f);
    }
    return m;
}

struct Stats
{
    double median = 0;
    double min = 0;
    double max = 0;
};

// Runs `once` (which returns the milliseconds it timed) `runs` times.
template<class Fn> Stats measure(int runs, Fn &&once)
{
    std::vector<double> ms;
    for (int k = 0; k < runs; ++k)
        ms.push_back(once());
    std::sort(ms.begin(), ms.end());
    const size_t n = ms.size();
    return {n % 2 ? ms[n / 2] : (ms[n / 2 - 1] + ms[n / 2]) / 2, ms.front(), ms.back()};
}

template<class Fn> double timed(Fn &&fn)
{
    QElapsedTimer t;
    t.start();
    fn();
    return double(t.nsecsElapsed()) / 1e6;
}

QString ms(double v)
{
    return QString::number(v, 'f', v >= 100 ? 0 : v >= 10 ? 1 : v >= 1 ? 2 : 3);
}

QString mb(qint64 kB)
{
    return QString::number(double(kB) / 1024.0, 'f', 1);
}

void figure(const QString &name, const Stats &s, const QString &note = {})
{
    out() << name << ": " << ms(s.median) << " ms (" << ms(s.min) << u'–' << ms(s.max) << ')';
    if (!note.isEmpty())
        out() << "  " << note;
    out() << Qt::endl;
}

// What a fresh copy of this program reports after loading the store (or,
// without a path, after only starting), so nothing this process did counts.
struct ChildReport
{
    Memory memory;
    double loadMs = 0;
};

ChildReport runChild(const std::optional<QString> &path)
{
    QProcess p;
    const QStringList args =
        path ? QStringList{u"--measure-rss"_s, *path} : QStringList{u"--measure-baseline"_s};
    p.start(QCoreApplication::applicationFilePath(), args);
    p.waitForFinished(-1);
    const QStringList words = QString::fromLatin1(p.readAllStandardOutput()).split(u' ', Qt::SkipEmptyParts);
    ChildReport r;
    if (words.size() >= 3) {
        r.memory = {words.at(0).toLongLong(), words.at(1).toLongLong()};
        r.loadMs = words.at(2).toDouble();
    } else {
        QTextStream(stderr) << "trestle-bench: the measuring child failed: "
                            << QString::fromLocal8Bit(p.readAllStandardError()) << '\n';
    }
    return r;
}

int reportChild(const std::optional<QString> &path)
{
    std::unique_ptr<DB> db;
    const double t = path ? timed([&] { db = std::make_unique<DB>(*path); }) : 0;
    const Memory m = memoryNow();
    std::printf("%lld %lld %.3f\n", static_cast<long long>(m.rss), static_cast<long long>(m.peak), t);
    std::fflush(stdout);
    // Freeing the store is not part of any figure.
    std::_Exit(0);
}

void removeStore(const QString &folder)
{
    for (const auto name : {u"trestle.sqlite", u"trestle.sqlite-wal", u"trestle.sqlite-shm"})
        QFile::remove(QDir(folder).filePath(QString::fromUtf16(name)));
    QDir(QDir(folder).filePath(u"files"_s)).removeRecursively();
    // The remembered company belongs to the store that is gone.
    QDir(QDir(folder).filePath(u"config"_s)).removeRecursively();
}

// The project with the most records of `kind`, and how many it has.
std::pair<QString, qsizetype> busiest(const DB &db, const QString &kind, const QString &parentKind,
                                      bool byParent)
{
    std::pair<QString, qsizetype> best;
    for (const Rec &r : db.list(parentKind)) {
        const qsizetype n = byParent ? db.count(kind, {.parent = r.id}) : db.count(kind, {.project = r.id});
        if (n > best.second)
            best = {r.id, n};
    }
    return best;
}

void runFigures(const QString &path, int runs)
{
    qsizetype records = 0;
    const Stats load = measure(runs, [&] {
        std::unique_ptr<DB> db;
        const double t = timed([&] { db = std::make_unique<DB>(path); });
        records = db->size();
        return t;
    });
    out() << "records: " << records << Qt::endl;
    figure(u"open+load+repair"_s, load, u"target < %1 ms"_s.arg(kLoadTargetMs));
    // A program starting up loads into a fresh heap, which costs page faults
    // that a reload in a warm process does not pay.
    QList<ChildReport> fresh;
    const Stats freshLoad = measure(runs, [&] {
        fresh.append(runChild(path));
        return fresh.last().loadMs;
    });
    figure(u"open+load+repair in a fresh process"_s, freshLoad, u"target < %1 ms"_s.arg(kLoadTargetMs));
    figure(u"close"_s, measure(runs, [&] {
               auto db = std::make_unique<DB>(path);
               return timed([&] { db.reset(); });
           }));

    DB db(path);
    const auto [project, cards] = busiest(db, u"timecard"_s, u"project"_s, false);
    figure(u"list kind in project"_s,
           measure(runs, [&] { return timed([&] { (void)db.list(u"timecard"_s, {.project = project}); }); }),
           u"[%1 timecards of project %2]"_s.arg(cards).arg(db.find(project)->f.value(u"number")));

    const auto [estimate, lines] = busiest(db, u"est_line"_s, u"estimate"_s, true);
    figure(u"list by parent"_s,
           measure(runs, [&] { return timed([&] { (void)db.list(u"est_line"_s, {.parent = estimate}); }); }),
           u"[%1 lines of one estimate]"_s.arg(lines));

    figure(u"list company-wide kind"_s,
           measure(runs, [&] { return timed([&] { (void)db.list(u"contact"_s); }); }),
           u"[%1 contacts]"_s.arg(db.count(u"contact"_s)));

    const QList<Rec> cardList = db.list(u"timecard"_s, {.project = project});
    const Rec one = cardList.first();
    figure(u"save one record"_s, measure(runs, [&] { return timed([&] { db.save(one); }); }));

    // Saving the same records again keeps the reference store the same size run after run.
    const QList<Rec> thousand = cardList.mid(0, 1000);
    figure(u"saveAll 1000 records"_s, measure(runs, [&] { return timed([&] { db.saveAll(thousand); }); }),
           u"[%1 records]"_s.arg(thousand.size()));

    const Memory base = runChild(std::nullopt).memory;
    std::sort(fresh.begin(), fresh.end(),
              [](const ChildReport &a, const ChildReport &b) { return a.memory.rss < b.memory.rss; });
    const ChildReport loaded = fresh.at(fresh.size() / 2);
    out() << "resident memory before load: " << mb(base.rss) << " MB" << Qt::endl;
    out() << "resident memory after load: " << mb(loaded.memory.rss) << " MB" << Qt::endl;
    out() << "peak resident memory during load: " << mb(loaded.memory.peak) << " MB" << Qt::endl;
    const qint64 perRecord = records ? (loaded.memory.rss - base.rss) * 1024 / records : 0;
    out() << "bytes per record: " << perRecord << "  target < " << kBytesPerRecordTarget << Qt::endl;

    runCalcBench(db, runs, out());
    runFlowBench(db, runs, out());
    runInterchangeBench(db, path, runs, out());
    runImportBench(runs, out());
#ifdef TRESTLE_DOCBENCH
    runDocBench(db, runs, out());
    runWipBench(db, runs, out());
#endif
}

} // namespace

int main(int argc, char *argv[])
{
#ifdef TRESTLE_DOCBENCH
    qputenv("QT_QPA_PLATFORM", "offscreen"); // documents are laid out with no display
    QGuiApplication app(argc, argv);
#else
    QCoreApplication app(argc, argv);
#endif
    QCommandLineParser parser;
    parser.setApplicationDescription(u"Measures the record store on a generated reference company."_s);
    parser.addHelpOption();
    const QCommandLineOption folderOpt(u"folder"_s, u"Where the reference store lives."_s, u"DIR"_s,
                                       QDir(QDir::tempPath()).filePath(u"trestle-bench-data"_s));
    const QCommandLineOption reuseOpt(u"reuse"_s, u"Reuse the reference store when it is there."_s);
    const QCommandLineOption runsOpt(u"runs"_s, u"Runs per figure."_s, u"N"_s, u"5"_s);
    QCommandLineOption rssOpt(u"measure-rss"_s, u"Load the store and print memory."_s, u"PATH"_s);
    QCommandLineOption baseOpt(u"measure-baseline"_s, u"Print memory without a store."_s);
    const QCommandLineOption serverOpt(
        u"server"_s, u"Also measure a company server: an administrator's key=value connection string."_s,
        u"CONNINFO"_s);
    const QCommandLineOption seatsOpt(u"seats"_s, u"Seats saving at once on the server."_s, u"N"_s, u"25"_s);
    const QCommandLineOption secondsOpt(u"seconds"_s, u"How long the seats save."_s, u"S"_s, u"60"_s);
    const QCommandLineOption serverOnlyOpt(u"server-only"_s, u"Measure only the company server."_s);
    const QCommandLineOption importOnlyOpt(
        u"import-only"_s, u"Measure only the import of lists (no reference store needed)."_s);
    rssOpt.setFlags(QCommandLineOption::HiddenFromHelp);
    baseOpt.setFlags(QCommandLineOption::HiddenFromHelp);
    parser.addOptions({folderOpt, reuseOpt, runsOpt, rssOpt, baseOpt, serverOpt, seatsOpt, secondsOpt,
                       serverOnlyOpt, importOnlyOpt});
    parser.process(app);

    const QString folder =
        QDir(parser.isSet(rssOpt) ? QFileInfo(parser.value(rssOpt)).absolutePath() : parser.value(folderOpt))
            .absolutePath();
    QDir().mkpath(folder);
    // The store remembers its company in the user defaults; keep those, and
    // the data folder, out of the user's own.
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(QDir(folder).filePath(u"config"_s)));
    qputenv("XDG_DATA_HOME", QFile::encodeName(QDir(folder).filePath(u"data"_s)));

    if (parser.isSet(baseOpt))
        return reportChild(std::nullopt);
    if (parser.isSet(rssOpt))
        return reportChild(parser.value(rssOpt));

    bool ok = false;
    const int runs = parser.value(runsOpt).toInt(&ok);
    if (!ok || runs < 1) {
        QTextStream(stderr) << "trestle-bench: --runs needs a whole number of at least 1\n";
        return 2;
    }

    if (parser.isSet(importOnlyOpt)) {
        runImportBench(runs, out());
        return 0;
    }
    const QString path = QDir(folder).filePath(u"trestle.sqlite"_s);
    if (!parser.isSet(reuseOpt) || !QFileInfo::exists(path)) {
        removeStore(folder);
        qsizetype made = 0;
        const double t = timed([&] {
            DB db(path);
            BenchData::generate(db);
            made = db.size();
        });
        out() << "generate: " << ms(t) << " ms  [" << made << " records]" << Qt::endl;
    }
    out() << "store: " << path << "  [" << mb(QFileInfo(path).size() / 1024) << " MB]" << Qt::endl;
    if (!parser.isSet(serverOnlyOpt))
        runFigures(path, runs);
    if (parser.isSet(serverOpt))
        return runServerBench(path, parser.value(serverOpt), parser.value(seatsOpt).toInt(),
                              parser.value(secondsOpt).toInt(), out());
    return 0;
}
