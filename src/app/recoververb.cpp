// Loads a file of changes that a window could not write back into the store.
#include "store/db.h"
#include "store/recovery.h"
#include "verbs.h"

using namespace Qt::StringLiterals;

namespace {

int recover(const QStringList &args, QTextStream &out, QTextStream &err)
{
    if (args.size() != 1 || args.first().startsWith(u"--"_s)) {
        err << "usage: trestle recover " << Verbs::find(u"recover"_s)->usage << '\n';
        return 2;
    }
    QString error;
    const auto result = Recovery::apply(DB::shared(), args.first(), &error);
    if (!result) {
        err << "trestle: " << error << '\n';
        return 1;
    }
    out << Recovery::summary(*result) << '\n';
    return 0;
}

const Verbs::Register regRecover({u"recover"_s, u"<file.json>"_s,
                                  u"Load the changes a window could not save and kept in a file"_s, &recover,
                                  true});

} // namespace
