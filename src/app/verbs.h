#pragma once
#include <QtCore/QStringList>
#include <QtCore/QTextStream>

// The headless command-line verbs. Each prints its result on `out`, a failure
// as one line on `err`, and returns the process exit code (0 done, 1 failed,
// 2 wrong usage).
namespace Verbs {
struct Verb
{
    const char *name;
    const char *summary;
    int (*run)(const QStringList &args, QTextStream &out, QTextStream &err);
};
// Every verb, in the order --help lists them.
const QList<Verb> &all();
const Verb *find(const QString &name);

// `trestle info`: the data folder, then each company with its records per kind.
int info(const QStringList &args, QTextStream &out, QTextStream &err);
} // namespace Verbs
