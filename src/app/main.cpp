// The program's entry: a headless verb when one is named, otherwise the window.
#include "verbs.h"

#include "screens/screens.h"
#include "shell/tlapp.h"
#include "store/db.h"
#include "store/folderlock.h"
#include "store/server/serverlink.h"
#include "store/server/serversync.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QCoreApplication>
#include <QtGui/QGuiApplication>

#include <cstdio>
#include <cstdlib>

using namespace Qt::StringLiterals;

int main(int argc, char *argv[])
{
    // No verb: the window. Later layers register their screens and help pages before this.
    if (TLApp::wantsWindow(argc, argv)) {
        Screens::registerAll();
        return TLApp::run(argc, argv);
    }
    // A verb (or --help) lays out and draws documents with no display.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    QCoreApplication::setOrganizationName(u"Fenwright"_s);
    QCoreApplication::setApplicationName(u"Trestle"_s);
    QCoreApplication::setApplicationVersion(QStringLiteral(TRESTLE_VERSION));

    QCommandLineParser parser;
    QString description = u"Trestle runs a construction company's back office.\n\nVerbs:"_s;
    for (const Verbs::Verb &v : Verbs::all())
        description += u"\n  "_s + QString(v.name + u' ' + v.usage).leftJustified(40) + u' ' + v.summary;
    parser.setApplicationDescription(description);
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument(u"verb"_s, u"A verb to run without a window; none opens the window."_s,
                                 u"[verb [arguments...]]"_s);
    // Options after the verb belong to the verb.
    parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    parser.process(app);

    QTextStream out(stdout);
    QTextStream err(stderr);
    QStringList args = parser.positionalArguments();
    if (args.isEmpty()) {
        err << "trestle: the window is not built yet; run a verb (see trestle --help)\n";
        return 2;
    }
    const QString name = args.takeFirst();
    const Verbs::Verb *verb = Verbs::find(name);
    if (!verb) {
        err << "trestle: unknown verb \"" << name << "\" (see trestle --help)\n";
        return 2;
    }
    // A verb that writes never runs beside a window, and no window starts beside it.
    FolderLock::Hold hold;
    if (verb->writes) {
        QString holder, problem;
        if (!hold.take(DB::appFolder(), &holder, &problem)) {
            if (!holder.isEmpty())
                err << "trestle: Trestle is open on " << DB::appFolder() << " in " << holder
                    << "; close its window, then run " << name << " again\n";
            else
                err << "trestle: " << problem << '\n';
            return 1;
        }
    }
    // A store that did not open is never read as if it were empty, nor written.
    DB::openedHook() = [&err](DB &db) {
        if (db.isOpen())
            return;
        err << "trestle: " << db.openProblem() << '\n';
        err.flush();
        std::exit(1);
    };
    // On a company server a verb reads what the server has now, and what it changed is sent before it ends.
    ServerLink::setHeadless(true);
    // What a verb reports is printed only once its changes are known to be on disk.
    QString report;
    QTextStream held(&report);
    const int code = verb->run(args, held, err);
    held.flush();
    if (DB *db = DB::sharedIfOpened(); db && db->unsavedCount() > 0 && !db->retryUnsaved()) {
        err << "trestle: could not save to " << db->path() << ": " << db->unsavedCause() << " ("
            << db->unsavedCount() << (db->unsavedCount() == 1 ? " change" : " changes") << " not written)\n";
        return 1;
    }
    // A change the server refused is undone here too; the verb did not do what it said.
    if (ServerSync *sync = ServerLink::sync()) {
        if (sync->waiting() > 0)
            sync->flush(15000);
        bool refused = false;
        for (const SeatNotice &n : sync->notices())
            if (n.kind == SeatNotice::Refused) {
                err << "trestle: the company server refused the change to " << n.recId << ": " << n.message
                    << '\n';
                refused = true;
            }
        if (refused)
            return 1;
    }
    if (ServerSync *sync = ServerLink::sync(); sync && sync->waiting() > 0) {
        const qsizetype n = sync->waiting();
        held << "Working offline — " << n << (n == 1 ? " change" : " changes")
             << " will be sent when the company server is back\n";
        held.flush();
    }
    out << report;
    return code;
}
