#include "fieldinput.h"

#include "catalog/modules.h"
#include "datefmt.h"
#include "fmt.h"
#include "money.h"
#include "store/db.h"

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace FieldInput {

namespace {

Typed accepted(QString stored)
{
    return {std::move(stored), QString()};
}

Typed refused(QString error)
{
    return {QString(), std::move(error)};
}

// Up to a dozen labels are worth listing in a message; beyond that only the count helps.
QString choicesText(const Options &options)
{
    QStringList labels;
    for (const auto &[value, label] : options)
        if (!value.isEmpty())
            labels.append(label);
    if (labels.size() > 12)
        return u"Not among the "_s + QString::number(labels.size()) + u" choices."_s;
    if (labels.isEmpty())
        return u"There is nothing to choose from."_s;
    return u"Not one of the choices: "_s + labels.join(u", "_s) + u'.';
}

// The option `typed` names: a stored value exactly, else a value or label in
// any case; nothing when none does, or when several do (`unclear` then).
std::optional<QString> match(const Options &options, const QString &typed, bool *unclear)
{
    for (const auto &[value, label] : options)
        if (value == typed)
            return value;
    const QString text = typed.trimmed();
    std::optional<QString> found;
    for (const auto &[value, label] : options) {
        if (value.compare(text, Qt::CaseInsensitive) != 0 && label.compare(text, Qt::CaseInsensitive) != 0)
            continue;
        if (found && *found != value) {
            *unclear = true;
            return std::nullopt;
        }
        found = value;
    }
    return found;
}

// Month first, as US spreadsheets write a day: 1/5/2026, 01/05/26. A two-digit
// year is read the way spreadsheets read it: 00–29 in this century, the rest in the last.
std::optional<QDate> usDate(const QString &text)
{
    const QStringList parts = text.split(u'/');
    if (parts.size() != 3)
        return std::nullopt;
    int n[3] = {0, 0, 0};
    for (int k = 0; k < 3; ++k) {
        const QString &part = parts.at(k);
        const qsizetype most = k == 2 ? 4 : 2;
        if (part.isEmpty() || part.size() > most ||
            !std::all_of(part.begin(), part.end(), [](QChar c) { return c >= u'0' && c <= u'9'; }))
            return std::nullopt;
        n[k] = part.toInt();
    }
    int year = n[2];
    if (parts.at(2).size() == 2)
        year += year < 30 ? 2000 : 1900;
    else if (parts.at(2).size() != 4)
        return std::nullopt;
    const QDate day(year, n[0], n[1]);
    if (!day.isValid())
        return std::nullopt;
    return day;
}

QString unclearText(const QString &typed)
{
    return u"More than one choice is named \u201C"_s + typed.trimmed() + u"\u201D; give its id."_s;
}

} // namespace

Options options(const DB &db, const FD &fd, const QString &project, const std::optional<QString> &company)
{
    Options out;
    switch (fd.type.kind) {
    case FT::choice:
        for (const QString &v : fd.type.options) {
            // A waiver's kind reads by its long name; other kinds as they stand.
            QString label = fd.key == u"kind" ? v : capitalizedIfLower(v);
            if (fd.key == u"kind")
                for (const auto &[key, name] : Modules::waiverKinds())
                    if (key == v)
                        label = name;
            out.append({v, label});
        }
        break;
    case FT::ref:
        out.append({QString(), u"—"_s});
        db.visit(fd.type.target, {.company = company}, [&](const Rec &r) {
            out.append({r.id, db.label(r.id)});
        });
        break;
    case FT::refIn: {
        out.append({QString(), u"—"_s});
        RecFilter filter{.company = company};
        if (!project.isEmpty())
            filter.project = project;
        db.visit(fd.type.target, filter, [&](const Rec &r) { out.append({r.id, refInLabel(db, r)}); });
        break;
    }
    default: break;
    }
    return out;
}

QString refInLabel(const DB &db, const Rec &target)
{
    const QString number = target.f.value(u"number");
    if (number.isEmpty())
        return db.label(target.id);
    const QString item = target.f.value(u"item");
    return u"#"_s + number + u' ' +
           (item.isEmpty() ? target.f.value(u"title") : item + u' ' + target.f.value(u"description"));
}

Typed money(QStringView typed)
{
    if (typed.trimmed().isEmpty())
        return accepted(QString());
    const MoneyParse parsed = Money::parseChecked(typed);
    if (!parsed.ok())
        return refused(Money::message(*parsed.error));
    return accepted(QString::number(parsed.cents));
}

Typed number(QStringView typed)
{
    QString clean = typed.toString();
    clean.remove(u',').remove(u'%');
    clean = clean.trimmed();
    if (clean.isEmpty())
        return accepted(QString());
    // strtod also reads "inf" and "nan", and overflows to infinity; none is a quantity.
    const std::optional<double> n = RecText::parseDouble(clean);
    if (!n || !std::isfinite(*n))
        return refused(u"Not a number."_s);
    return accepted(Fmt::num(*n));
}

Typed date(QStringView typed)
{
    const QString text = typed.trimmed().toString();
    if (text.isEmpty())
        return accepted(QString());
    std::optional<QDate> day = DateFmt::parseIso(text);
    if (!day) {
        // Month names in English whatever the user's locale: the form DateFmt::nice writes.
        const QDate shown = QDate::fromString(text.simplified(), u"MMM d, yyyy");
        if (shown.isValid())
            day = shown;
    }
    if (!day)
        day = usDate(text);
    if (!day)
        return refused(u"Not a date. Use a form like 2026-11-15 or Nov 15, 2026."_s);
    return accepted(DateFmt::iso(*day));
}

Typed boolean(QStringView typed)
{
    const QString text = typed.trimmed().toString().toLower();
    for (const auto yes : {u"1", u"yes", u"true", u"on"})
        if (text == yes)
            return accepted(u"1"_s);
    for (const auto no : {u"0", u"no", u"false", u"off"})
        if (text == no)
            return accepted(u"0"_s);
    return refused(u"Not yes or no."_s);
}

Typed pick(const Options &options, const QString &typed)
{
    bool unclear = false;
    if (const std::optional<QString> value = match(options, typed, &unclear))
        return accepted(*value);
    return refused(unclear ? unclearText(typed) : choicesText(options));
}

Typed limited(const FD &fd, const Typed &read)
{
    if (!read.ok() || read.stored.isEmpty())
        return read;
    // Shares of a whole: what is kept back, done or taxed.
    static const QStringList shares{u"retainage"_s, u"retWork"_s,  u"retMat"_s,
                                    u"ret"_s,       u"progress"_s, u"tax"_s};
    if (fd.type.kind == FT::number || fd.type.kind == FT::percent) {
        const double n = RecText::parseDouble(read.stored).value_or(0);
        if (shares.contains(fd.key) && (n < 0 || n > 100))
            return refused(u"Must be from 0 to 100 %."_s);
        if (fd.type.kind == FT::percent && n < 0)
            return refused(u"Can't be below 0 %."_s);
        return read;
    }
    if (fd.type.kind == FT::text && fd.key == u"state") {
        static const QStringList states =
            QStringLiteral("AL AK AZ AR CA CO CT DE DC FL GA HI ID IL IN IA KS KY LA ME MD MA MI "
                           "MN MS MO MT NE NV NH NJ NM NY NC ND OH OK OR PA RI SC SD TN TX UT VT "
                           "VA WA WV WI WY AS GU MP PR VI")
                .split(u' ');
        const QString code = read.stored.trimmed().toUpper();
        if (code.isEmpty())
            return accepted(QString());
        if (!states.contains(code))
            return refused(u"Not a US state. Use its two letters, such as CO."_s);
        return accepted(code);
    }
    return read;
}

Typed read(const DB &db, const FD &fd, const QString &typed, const QString &project,
           const std::optional<QString> &company)
{
    switch (fd.type.kind) {
    case FT::money: return money(typed);
    case FT::number:
    case FT::percent: return limited(fd, number(typed));
    case FT::date: return date(typed);
    case FT::boolean: return boolean(typed);
    case FT::choice: return pick(options(db, fd, project, company), typed);
    case FT::ref:
    case FT::refIn: {
        // "None" as the list's own "—" and as an empty text.
        if (typed.trimmed().isEmpty())
            return accepted(QString());
        const QString text = typed.trimmed();
        bool unclear = false;
        if (const std::optional<QString> value = match(options(db, fd, project, company), typed, &unclear))
            return accepted(*value);
        if (unclear)
            return refused(unclearText(typed));
        // A cost code by its code alone, as it is printed on every line.
        QString id;
        if (fd.type.target == u"cost_code")
            db.visit(fd.type.target, {.company = company}, [&](const Rec &r) {
                if (id.isEmpty() && r.f.value(u"code") == text)
                    id = r.id;
            });
        if (!id.isEmpty())
            return accepted(id);
        QString noun = fd.type.target;
        noun.replace(u'_', u' ');
        return refused(u"No "_s + noun + u" named \u201C"_s + text + u"\u201D"_s +
                       (fd.type.kind == FT::refIn && !project.isEmpty() ? u" in this project."_s : u"."_s));
    }
    case FT::text: return limited(fd, accepted(typed));
    case FT::longText:
    case FT::time: return accepted(typed);
    }
    return accepted(typed);
}

} // namespace FieldInput
