// `trestle get` prints a record as the store holds it; `trestle set` changes
// its fields as the record editor would, reading each value the same way and
// running the same change hooks.
#include "calc/fieldinput.h"
#include "calc/fmt.h"
#include "catalog/modules.h"
#include "store/db.h"
#include "verbs.h"
#include "workflows/binding.h"

using namespace Qt::StringLiterals;

namespace {

// A field's value as one short line for the report of what changed.
QString shown(const DB &db, const Rec &rec, const FD &fd)
{
    if (rec.f.value(fd.key).isEmpty())
        return u"blank"_s;
    QString text = Fmt::value(db, rec, fd).simplified();
    if (text.size() > 60)
        text = text.left(59) + u'…';
    return text;
}

const FD *fieldIn(const QList<FD> &fields, const QString &key)
{
    for (const FD &fd : fields)
        if (fd.key == key)
            return &fd;
    return nullptr;
}

QString keysOf(const QList<FD> &fields)
{
    QStringList keys;
    for (const FD &fd : fields)
        keys.append(fd.key);
    return keys.join(u", "_s);
}

int get(const QStringList &args, QTextStream &out, QTextStream &err)
{
    if (args.size() != 1 || args.first().startsWith(u"--"_s)) {
        err << "usage: trestle get " << Verbs::find(u"get"_s)->usage << '\n';
        return 2;
    }
    const std::optional<Rec> rec = DB::shared().get(args.first());
    if (!rec) {
        err << "trestle: no record " << args.first() << '\n';
        return 1;
    }
    out << RecJSON::encode(*rec) << '\n';
    return 0;
}

int set(const QStringList &args, QTextStream &out, QTextStream &err)
{
    // field=value pairs in the order given; a value may itself hold '='.
    QList<std::pair<QString, QString>> pairs;
    QStringList keys;
    for (const QString &arg : args.mid(1)) {
        const qsizetype eq = arg.indexOf(u'=');
        const QString key = arg.left(eq);
        if (eq <= 0 || keys.contains(key)) {
            err << "usage: trestle set " << Verbs::find(u"set"_s)->usage
                << (eq > 0 ? u" (each field once)"_s : QString()) << '\n';
            return 2;
        }
        keys.append(key);
        pairs.append({key, arg.mid(eq + 1)});
    }
    if (pairs.isEmpty() || args.first().startsWith(u"--"_s)) {
        err << "usage: trestle set " << Verbs::find(u"set"_s)->usage << '\n';
        return 2;
    }
    DB &db = DB::shared();
    const QString id = args.first();
    const std::optional<Rec> before = db.get(id);
    if (!before) {
        err << "trestle: no record " << id << '\n';
        return 1;
    }
    const QList<FD> *fields = Modules::fieldsOf(before->kind);
    if (!fields) {
        const ModuleDef *m = Modules::ofKind(before->kind);
        err << "trestle: records of kind " << before->kind
            << (m && m->screen ? QString(u" are changed on the "_s + m->title + u" screen only"_s)
                               : u" have no fields to set"_s)
            << '\n';
        return 1;
    }
    // Every value is read before any is stored, so one bad value changes nothing.
    QList<std::pair<const FD *, QString>> changes;
    for (const auto &[key, typed] : pairs) {
        const FD *fd = fieldIn(*fields, key);
        if (!fd) {
            err << "trestle: records of kind " << before->kind << " have no field \"" << key
                << "\" (fields: " << keysOf(*fields) << ")\n";
            return 1;
        }
        const FieldInput::Typed read = FieldInput::read(db, *fd, typed, before->project, before->company);
        if (!read.ok()) {
            err << "trestle: " << key << " \"" << typed << "\": " << read.error << '\n';
            return 1;
        }
        changes.append({fd, read.stored});
    }
    for (const auto &[fd, stored] : changes)
        recBinding(db, id, fd->key).set(stored);

    const Rec after = db.get(id).value_or(*before);
    QStringList said;
    for (const auto &[fd, stored] : changes) {
        const QString was = shown(db, *before, *fd);
        const QString now = shown(db, after, *fd);
        const bool same = before->f.value(fd->key) == after.f.value(fd->key);
        said.append(fd->key + u' ' +
                    (same ? QString(now + u" (unchanged)"_s) : QString(was + u" → "_s + now)));
    }
    out << "set " << id << ": " << said.join(u"; "_s) << '\n';
    return 0;
}

const Verbs::Register regGet({u"get"_s, u"<record-id>"_s, u"Print a record as JSON, as the store holds it"_s,
                              &get});
const Verbs::Register regSet({u"set"_s, u"<record-id> <field>=<value>..."_s,
                              u"Change fields of a record as its editor would"_s, &set, true});

} // namespace
