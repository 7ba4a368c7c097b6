// Open jobs: a project with its contract, its schedule of values and what was
// billed on it before, brought in as an opening application marked paid, so
// the next application's previous work and retainage carry on from it.
#include "calc/datefmt.h"
#include "calc/money.h"
#include "calc/payapp.h"
#include "catalog/modules.h"
#include "importrows.h"
#include "store/db.h"

#include <cmath>

using namespace Qt::StringLiterals;

namespace Import {

namespace {

struct JobLine
{
    int line = 0;
    QString item, description;
    qint64 scheduled = 0, billed = 0;
};

struct Job
{
    int line = 0; // the job's own row; 0 while only its lines were seen
    Fields f;     // number, name, client (id), contract, retainagePct, lastApp, through
    qint64 contract = 0, billed = 0, retainage = 0;
    QList<JobLine> lines;
    QStringList problems;
};

qint64 retainageAt(double pct, const QList<JobLine> &lines)
{
    qint64 sum = 0;
    for (const JobLine &l : lines)
        sum = Money::add(sum, Money::fromDouble(pct * double(l.billed) / 100));
    return sum;
}

// The one percentage the opening application holds so that its retainage,
// rounded per line as every application's is, comes to `held` exactly; the
// job's own percentage when it does. Nothing when no percentage does.
std::optional<double> retainagePct(qint64 held, const QList<JobLine> &lines, std::optional<double> own)
{
    qint64 billed = 0;
    for (const JobLine &l : lines) {
        if (l.billed < 0)
            return std::nullopt;
        billed = Money::add(billed, l.billed);
    }
    if (held == 0)
        return 0.0;
    if (billed == 0)
        return std::nullopt;
    if (own && retainageAt(*own, lines) == held)
        return own;
    const double plain = double(held) * 100 / double(billed);
    if (retainageAt(plain, lines) == held)
        return plain;
    // The sum only grows with the percentage: find the least one reaching `held`.
    double lo = 0, hi = 100;
    for (int k = 0; k < 200 && hi - lo > 1e-12; ++k) {
        const double mid = (lo + hi) / 2;
        (retainageAt(mid, lines) >= held ? hi : lo) = mid;
    }
    if (retainageAt(hi, lines) == held)
        return hi;
    return std::nullopt;
}

QString money(qint64 cents)
{
    return u"$"_s + QString::number(double(cents) / 100, 'f', 2);
}

} // namespace

void planOpenJobs(const DB &db, Names &names, qsizetype index, const Sheet &sheet, QList<PlanRow> &out)
{
    QList<Job> jobs;
    QHash<QString, qsizetype> byNumber;
    const QString file = sheet.table.file;
    for (const Table::Row &row : sheet.table.rows) {
        const Fields raw = collect(sheet, row);
        if (raw.isEmpty())
            continue;
        const QString key =
            normal(raw.value(u"number").isEmpty() ? raw.value(u"name") : raw.value(u"number"));
        auto it = byNumber.constFind(key);
        if (it == byNumber.cend()) {
            it = byNumber.insert(key, jobs.size());
            jobs.append(Job());
        }
        Job &job = jobs[*it];
        QStringList problems;
        const auto amount = [&](const char16_t *k, const QString &label, qint64 *to) {
            const QString text = raw.value(QStringView(k));
            if (text.isEmpty())
                return;
            const FieldInput::Typed t = FieldInput::money(text);
            if (t.ok())
                *to = t.stored.toLongLong();
            else
                problems.append(label + u": "_s + t.error);
        };
        if (!raw.value(u"item").isEmpty() || !raw.value(u"scheduled").isEmpty()) {
            JobLine l;
            l.line = row.line;
            l.item = raw.value(u"item");
            l.description = raw.value(u"description");
            amount(u"scheduled", u"Scheduled value"_s, &l.scheduled);
            amount(u"lineBilled", u"Line billed to date"_s, &l.billed);
            job.lines.append(l);
        } else {
            if (job.line != 0)
                problems.append(u"Job number: the job is on line "_s + QString::number(job.line) +
                                u" already."_s);
            job.line = row.line;
            for (const auto k : {u"number", u"name"})
                job.f.insert(QString::fromUtf16(k), raw.value(QStringView(k)));
            amount(u"contract", u"Contract amount"_s, &job.contract);
            amount(u"billed", u"Billed to date"_s, &job.billed);
            amount(u"retainage", u"Retainage held"_s, &job.retainage);
            if (!raw.value(u"client").isEmpty()) {
                const QString id = names.find(ListKind::contact, {normal(raw.value(u"client"))});
                if (id.isEmpty())
                    problems.append(u"Client: no contact named \u201C"_s + raw.value(u"client") +
                                    u"\u201D."_s);
                job.f.insert(u"client"_s, id);
            }
            for (const auto &[k, label] :
                 {std::pair{u"retainagePct", u"Retainage %"}, {u"lastApp", u"Last pay app #"}})
                if (!raw.value(QStringView(k)).isEmpty()) {
                    const FieldInput::Typed t = FieldInput::number(raw.value(QStringView(k)));
                    // A percentage past 100 or an application number past any real count is a slip.
                    const bool pct = QStringView(k) == u"retainagePct";
                    const double v = t.ok() ? t.stored.toDouble() : 0;
                    if (!t.ok())
                        problems.append(QString::fromUtf16(label) + u": "_s + t.error);
                    else if (v < 0 || v > (pct ? 100 : 9999) || (!pct && v != std::floor(v)))
                        problems.append(
                            QString::fromUtf16(label) +
                            (pct ? u": not between 0 and 100."_s : u": not a whole number up to 9999."_s));
                    else
                        job.f.insert(QString::fromUtf16(k), t.stored);
                }
            if (!raw.value(u"through").isEmpty()) {
                const FieldInput::Typed t = FieldInput::date(raw.value(u"through"));
                if (t.ok())
                    job.f.insert(u"through"_s, t.stored);
                else
                    problems.append(u"Billed through: "_s + t.error);
            }
        }
        for (const QString &p : std::as_const(problems))
            job.problems.append(file + u':' + QString::number(row.line) + u": "_s + p);
    }

    for (Job &job : jobs) {
        PlanRow plan;
        plan.sheet = index;
        plan.kind = ListKind::openJob;
        plan.line = job.line != 0 ? job.line : (job.lines.isEmpty() ? 0 : job.lines.first().line);
        plan.title = QString(job.f.value(u"number") + u' ' + job.f.value(u"name")).trimmed();
        const QString where = file + u':' + QString::number(plan.line) + u": "_s;
        if (job.line == 0)
            job.problems.append(where + u"Job number: lines of a job with no row of its own."_s);
        else if (job.f.value(u"name").isEmpty() && job.f.value(u"number").isEmpty())
            job.problems.append(where + u"Project name: empty; every job needs a name or a number."_s);
        if (job.lines.isEmpty() && job.problems.isEmpty())
            job.lines.append({job.line, u"1"_s, u"Contract"_s, job.contract, job.billed});
        if (job.problems.isEmpty()) {
            qint64 scheduled = 0, billed = 0;
            for (const JobLine &l : std::as_const(job.lines)) {
                scheduled = Money::add(scheduled, l.scheduled);
                billed = Money::add(billed, l.billed);
            }
            if (scheduled != job.contract)
                job.problems.append(where + u"Contract amount: the schedule of values adds up to "_s +
                                    money(scheduled) + u", not "_s + money(job.contract) + u'.');
            else if (billed != job.billed)
                job.problems.append(where + u"Billed to date: the lines add up to "_s + money(billed) +
                                    u", not "_s + money(job.billed) + u'.');
            else if (job.retainage > job.billed)
                job.problems.append(where + u"Retainage held: more than billed to date."_s);
        }
        std::optional<double> own;
        if (job.f.contains(u"retainagePct"))
            own = job.f.value(u"retainagePct").toDouble();
        std::optional<double> pct;
        if (job.problems.isEmpty()) {
            pct = retainagePct(job.retainage, job.lines, own);
            if (!pct)
                job.problems.append(
                    where + u"Retainage held: no one percentage of the lines' billed amounts comes to "_s +
                    money(job.retainage) + u" to the cent; check it against the last application."_s);
        }
        const QStringList keys = keysOf(ListKind::project, job.f);
        const QString existing = job.problems.isEmpty() ? names.find(ListKind::project, keys) : QString();
        const Rec *stored = existing.isEmpty() ? nullptr : db.find(existing);
        if (stored && (db.count(u"pay_app"_s, {.project = stored->id}) > 0 ||
                       db.count(u"sov_line"_s, {.project = stored->id}) > 0)) {
            // Already brought in, or billed in Trestle since: its figures are no longer the file's to set.
            bool same = false;
            for (const Rec &app : db.list(u"pay_app"_s, {.project = stored->id}))
                if (app.f.value(u"opening") == u"1" && stored->i(u"contract") == job.contract) {
                    const Calc::G702 g = payAppData(db, app).calc.g702;
                    same = g.l4 == job.billed && g.l5 == job.retainage;
                }
            if (!same)
                job.problems.append(
                    where + u"Job number: \u201C"_s + plan.title +
                    u"\u201D has a schedule of values or pay applications in Trestle already; change "
                    u"them there."_s);
            else {
                plan.state = RowState::Unchanged;
                out.append(plan);
                continue;
            }
        }
        if (!job.problems.isEmpty()) {
            plan.state = RowState::Bad;
            plan.error = job.problems.join(u"; "_s);
            out.append(plan);
            continue;
        }

        Rec project = stored ? *stored : freshRec(db, u"project"_s, Modules::ofKind(u"project"));
        for (const auto k : {u"number", u"name", u"client"})
            if (!job.f.value(QStringView(k)).isEmpty())
                project.f.insert(QString::fromUtf16(k), job.f.value(QStringView(k)));
        project.f.insert(u"contract"_s, QString::number(job.contract));
        if (own)
            project.f.insert(u"retainage"_s, job.f.value(u"retainagePct"));
        if (stored)
            plan.replaced.append(*stored);
        plan.state = stored ? RowState::Updated : RowState::New;
        plan.saves.append(project);

        Rec app = freshRec(db, u"pay_app"_s, nullptr);
        app.project = project.id;
        const QString through = job.f.value(u"through");
        app.f = {{u"number"_s, QString::number(qint64(job.f.value(u"lastApp").toDouble()))},
                 {u"status"_s, u"paid"_s},
                 {u"periodTo"_s, through.isEmpty() ? DateFmt::iso(DateFmt::today()) : through},
                 {u"retWork"_s, QString::number(*pct, 'g', 17)},
                 {u"retMat"_s, u"0"_s},
                 {u"opening"_s, u"1"_s},
                 {u"notes"_s, u"Billed before Trestle"_s}};
        plan.saves.append(app);
        int n = 0;
        for (const JobLine &l : std::as_const(job.lines)) {
            ++n;
            Rec sov = freshRec(db, u"sov_line"_s, nullptr);
            sov.project = project.id;
            sov.f = {{u"item"_s, l.item.isEmpty() ? QString::number(n) : l.item},
                     {u"description"_s, l.description},
                     {u"scheduled"_s, QString::number(l.scheduled)},
                     {u"sort"_s, QString::number(n)}};
            Rec line = freshRec(db, u"pay_line"_s, nullptr);
            line.project = project.id;
            line.parent = app.id;
            line.f = {
                {u"sov"_s, sov.id}, {u"thisPeriod"_s, QString::number(l.billed)}, {u"stored"_s, u"0"_s}};
            plan.saves.append(sov);
            plan.saves.append(line);
        }
        out.append(plan);
    }
}

} // namespace Import
