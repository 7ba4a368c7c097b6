// `trestle explain`: what a figure is made of, one tab-separated line per
// record and a last line with the total, so that a script can add it up.
#include "store/db.h"
#include "verbs.h"
#include "workflows/breakdown.h"

using namespace Qt::StringLiterals;

namespace {

const char *const kUsage =
    "usage: trestle explain <what> [--project <number>] [--code <cost code>] [record-id], or --list\n";

// Takes "--name value" out of `args`; false when the option is there without a value.
bool take(QStringList &args, const QString &name, std::optional<QString> &value)
{
    const qsizetype i = args.indexOf(name);
    if (i < 0)
        return true;
    if (i + 1 >= args.size())
        return false;
    value = args.at(i + 1);
    args.remove(i, 2);
    return true;
}

int explain(const QStringList &given, QTextStream &out, QTextStream &err)
{
    QStringList args = given;
    if (args == QStringList{u"--list"_s}) {
        for (const Explain::Figure &f : Explain::figures())
            out << f.name << '\n';
        return 0;
    }
    std::optional<QString> number, code;
    if (!take(args, u"--project"_s, number) || !take(args, u"--code"_s, code) || args.isEmpty() ||
        args.size() > 2 || args.first().startsWith(u'-')) {
        err << kUsage;
        return 2;
    }
    const Explain::Figure *figure = Explain::figure(args.first());
    if (!figure) {
        err << "trestle: no figure is called " << args.first() << "; trestle explain --list names them\n";
        return 1;
    }
    const DB &db = DB::shared();
    FigureRef ref{figure->name, {}, args.value(1)};
    if (number) {
        for (const Rec &p : db.list(u"project"_s))
            if (p.f.value(u"number") == *number)
                ref.project = p.id;
        if (ref.project.isEmpty()) {
            err << "trestle: no project numbered " << *number << '\n';
            return 1;
        }
    } else if (figure->needsProject) {
        err << "trestle: " << figure->name << " needs --project <number>\n";
        return 1;
    }
    if (code) {
        if (figure->subject != u"cost_code") {
            err << "trestle: " << figure->name << " is not kept by cost code\n";
            return 1;
        }
        if (!ref.subject.isEmpty()) {
            err << kUsage;
            return 2;
        }
        ref.subject = db.code(*code);
        if (ref.subject.isEmpty()) {
            err << "trestle: no cost code " << *code << '\n';
            return 1;
        }
    }
    QString error;
    const std::optional<Breakdown> b = Explain::explain(db, ref, &error);
    if (!b) {
        err << "trestle: " << error << '\n';
        return 1;
    }
    for (const QString &line : Explain::lines(*b))
        out << line << '\n';
    return 0;
}

const Verbs::Register reg({u"explain"_s, u"<what> [--project <n>] [--code <c>] [record-id]"_s,
                           u"Print the records a figure is made of and its total; --list names the figures"_s,
                           &explain});

} // namespace
