// The window's benchmark: its own executable, since the store's benchmark links no widgets.
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
    parser.addOptions({folderOpt, reuseOpt, runsOpt});
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
    runShellBench(path, runs, out);
    runPayBench(path, runs, out);
    runHubBench(path, runs, out);
    runGanttBench(runs, out);
    return 0;
}
