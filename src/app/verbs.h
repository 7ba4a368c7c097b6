#pragma once
#include <QtCore/QStringList>
#include <QtCore/QTextStream>

// The headless command-line verbs. Each prints its result on `out`, a failure
// as one line on `err`, and returns the process exit code (0 done, 1 failed,
// 2 wrong usage). A verb file registers its verbs with a static Verbs::Register.
namespace Verbs {
using Run = int (*)(const QStringList &args, QTextStream &out, QTextStream &err);
struct Verb
{
    QString name;
    QString usage;   // the arguments, for --help
    QString summary; // one line for --help
    Run run;
    // Writes the data folder: refused while a window holds it, and run holding its lock.
    bool writes = false;
};
// Every verb, sorted by name.
QList<Verb> all();
const Verb *find(const QString &name);

struct Register
{
    explicit Register(Verb verb);
};
} // namespace Verbs
