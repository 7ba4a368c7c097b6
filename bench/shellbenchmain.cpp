// The window's benchmark: its own executable, since the store's benchmark links no widgets.
#include "explainbench.h"
#include "ganttbench.h"
#include "generator.h"
#include "hubbench.h"
#include "paybench.h"
#include "shellbench.h"

#include "screens/screens.h"

#include "store/db.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QDir>
#include <QtWidgets/QApplication>

using namespace Qt::StringLiterals;

int main(int argc, char *argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(u"Measures the window on a generated reference company."_s);
    parser.addHelpOption();
    const QCommandLineOption folderOpt(u"folder"_s, u"Where the reference store lives."_s, u"DIR"_s,
                                       QDir(QDir::tempPath()).filePath(u"trestle-bench-data"_s));
    const QCommandLineOption reuseOpt(u"reuse"_s, u"Reuse the reference store when it is there."_s);
    const QCommandLineOption runsOpt(u"runs"_s, u"Runs per figure."_s, u"N"_s, u"5"_s);
    const QCommandLineOption onlyOpt(
        u"only"_s, u"Measure one part only: shell, pay, hub, gantt or explain."_s, u"PART"_s);
    parser.addOptions({folderOpt, reuseOpt, runsOpt, onlyOpt});
    parser.process(app);
    const QString folder = QDir(parser.value(folderOpt)).absolutePath();
    QDir().mkpath(folder);
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(QDir(folder).filePath(u"config"_s)));
    qputenv("XDG_DATA_HOME", QFile::encodeName(QDir(folder).filePath(u"data"_s)));
    const int runs = std::max(1, parser.value(runsOpt).toInt());
    const QString path = QDir(folder).filePath(u"trestle.sqlite"_s);
    QTextStream out(stdout);
    if (!parser.isSet(reuseOpt) || !QFileInfo::exists(path)) {
        for (const QString &f : QStringList{path, path + u"-wal"_s, path + u"-shm"_s})
            QFile::remove(f);
        DB db(path);
        BenchData::generate(db);
        out << "generate: " << db.size() << " records" << Qt::endl;
    }
    Screens::registerAll();
    const QString only = parser.value(onlyOpt);
    auto want = [&only](const QString &part) { return only.isEmpty() || only == part; };
    if (want(u"shell"_s))
        runShellBench(path, runs, out);
    if (want(u"pay"_s))
        runPayBench(path, runs, out);
    if (want(u"hub"_s))
        runHubBench(path, runs, out);
    if (want(u"gantt"_s))
        runGanttBench(runs, out);
    if (want(u"explain"_s))
        runExplainBench(path, runs, out);
    return 0;
}
