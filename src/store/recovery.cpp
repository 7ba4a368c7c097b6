#include "recovery.h"

#include "db.h"
#include "recjson.h"

#include <QtCore/QDateTime>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QSet>

using namespace Qt::StringLiterals;

namespace Recovery {

std::optional<Result> apply(DB &db, const QString &file, QString *error)
{
    const QString name = QFileInfo(file).fileName();
    auto refuse = [&](const QString &why) -> std::optional<Result> {
        if (error)
            *error = why;
        return std::nullopt;
    };
    auto damaged = [&](const QString &what) { return refuse(name + u" is damaged: "_s + what); };
    if (!db.isOpen())
        return refuse(db.openProblem());
    QFile in(file);
    if (!in.open(QIODevice::ReadOnly))
        return refuse(u"Cannot read "_s + file + u": "_s + in.errorString());
    QJsonParseError parsed;
    const QJsonDocument doc = QJsonDocument::fromJson(in.readAll(), &parsed);
    // A file cut short cannot tell whether it was one: say both.
    if (parsed.error != QJsonParseError::NoError)
        return refuse(name + u" is not a file of unsaved changes, or it is cut short ("_s +
                      parsed.errorString() + u" at byte "_s + QString::number(parsed.offset) + u")"_s);
    const QJsonObject top = doc.object();
    const QJsonValue marker = top.value(u"trestleUnsaved");
    if (!doc.isObject() || !marker.isDouble())
        return refuse(name + u" is not a file of unsaved changes"_s);
    if (marker.toDouble() != 1)
        return refuse(name + u" was saved by another version of Trestle"_s);

    for (const auto *key : {"store", "savedAt", "cause"})
        if (!top.value(QLatin1StringView(key)).isString())
            return damaged(u"\""_s + QLatin1StringView(key) + u"\" is missing or not a text"_s);
    const QDateTime savedAt = QDateTime::fromString(top.value(u"savedAt").toString(), Qt::ISODate);
    if (!savedAt.isValid())
        return damaged(u"\"savedAt\" is not a date"_s);
    if (!top.value(u"records").isArray() || !top.value(u"removed").isArray())
        return damaged(u"\"records\" or \"removed\" is missing or not a list"_s);

    QList<Rec> recs;
    QSet<QString> ids;
    QSet<QString> companies; // the companies the file itself brings
    const QJsonArray records = top.value(u"records").toArray();
    for (qsizetype k = 0; k < records.size(); ++k) {
        const QJsonValue v = records.at(k);
        const std::optional<Rec> rec =
            v.isObject() ? RecJSON::decode(QJsonDocument(v.toObject()).toJson(QJsonDocument::Compact))
                         : std::nullopt;
        if (!rec || rec->id.isEmpty() || rec->kind.isEmpty())
            return damaged(u"record %1 is not a valid record"_s.arg(k + 1));
        if (ids.contains(rec->id))
            return damaged(u"record %1 appears twice"_s.arg(rec->id));
        ids.insert(rec->id);
        if (rec->kind == u"company")
            companies.insert(rec->id);
        recs.append(*rec);
    }
    QStringList removed;
    for (const QJsonValue &v : top.value(u"removed").toArray()) {
        if (!v.isString() || v.toString().isEmpty())
            return damaged(u"a removed id is not a text"_s);
        if (ids.contains(v.toString()))
            return damaged(u"record %1 is both kept and removed"_s.arg(v.toString()));
        removed.append(v.toString());
    }
    for (const Rec &rec : std::as_const(recs)) {
        const Rec *company = rec.company.isEmpty() ? nullptr : db.find(rec.company);
        if (!rec.company.isEmpty() && !companies.contains(rec.company) &&
            !(company && company->kind == u"company"))
            return refuse(name + u" holds changes of a company this data folder does not hold"_s);
    }

    Result result;
    QList<Rec> toWrite;
    for (const Rec &rec : std::as_const(recs)) {
        const Rec *now = db.find(rec.id);
        if (now && now->updated > rec.updated)
            ++result.skipped;
        else
            toWrite.append(rec);
    }
    // The file's date has whole seconds: a change within that second came before it.
    const double savedSeconds = double(savedAt.toSecsSinceEpoch()) + 1;
    QStringList toRemove;
    for (const QString &id : std::as_const(removed)) {
        const Rec *now = db.find(id);
        if (!now)
            ++result.gone;
        else if (now->updated >= savedSeconds)
            ++result.skipped;
        else
            toRemove.append(id);
    }
    result.applied = toWrite.size();
    result.removed = toRemove.size();
    if (!toWrite.isEmpty() || !toRemove.isEmpty())
        db.saveAndRemove(toWrite, toRemove);
    return result;
}

QString summary(const Result &result)
{
    QString line = QString::number(result.applied) + (result.applied == 1 ? u" record"_s : u" records"_s) +
                   u" written, "_s + QString::number(result.removed) + u" removed, "_s +
                   QString::number(result.skipped) + u" skipped (newer here)"_s;
    if (result.gone > 0)
        line += u", "_s + QString::number(result.gone) + u" removed already"_s;
    return line;
}

} // namespace Recovery
