// One job of the reference company: estimate, budget, schedule of values,
// schedule, then every working day in the field and every month's pay app.
#include "gencompany.h"

#include <cmath>

using namespace Qt::StringLiterals;
using namespace BenchText;

namespace BenchData {

double Job::at(const QDate &day) const
{
    const qint64 length = qMax(qint64(1), start.daysTo(end));
    return qBound(0.0, double(start.daysTo(day)) / double(length), 1.0);
}

QDate Generator::dayIn(const Job &job, double a, double b)
{
    const qint64 length = job.start.daysTo(job.end);
    const QDate day = job.start.addDays(qint64(std::llround(double(length) * m_dice.real(a, b))));
    return day > m_today ? QDate() : day;
}

const Scope &Generator::anyScope(const Job &job)
{
    return job.scopes.at(m_dice.in(0, int(job.scopes.size()) - 1));
}

QList<const Worker *> Generator::pickCrew(const Job &job, int n)
{
    QList<const Worker *> pool;
    for (const Worker &w : job.crew)
        pool.append(&w);
    n = qMin(n, int(pool.size()));
    for (int k = 0; k < n; ++k)
        pool.swapItemsAt(k, m_dice.in(k, int(pool.size()) - 1));
    pool.resize(n);
    return pool;
}

void Generator::makeProject(int index, const QDate &start)
{
    Job job;
    const int roll = m_dice.in(0, 99);
    job.type = roll < 30 ? Residential : roll < 80 ? Commercial : HeavyCivil;
    const int length = job.type == Residential  ? m_dice.in(120, 360)
                       : job.type == Commercial ? m_dice.in(300, 780)
                                                : m_dice.in(180, 540);
    job.start = start;
    job.end = start.addDays(length);
    job.last = qMin(job.end, m_today);
    job.client = m_dice.pick(m_clients);
    job.architect = m_dice.pick(m_designers);
    job.pm = m_dice.pick(m_managers);
    QList<Worker> field = m_field;
    const int crew = qMin(int(field.size()), job.type == Residential ? m_dice.in(4, 6) : m_dice.in(9, 13));
    for (int k = 0; k < crew; ++k) {
        field.swapItemsAt(k, m_dice.in(k, int(field.size()) - 1));
        job.crew.append(field.at(k));
    }
    job.name = m_dice.pick(streets()) + u' ' + m_dice.pick(buildingNames(job.type));

    for (const Division &d : divisions()) {
        const bool always = QStringView(d.code) == u"01-000";
        if (!(d.jobTypes & job.type) || (!always && m_dice.chance(0.2)))
            continue;
        Scope s;
        s.div = &d;
        s.codeID = m_codeID.value(QString::fromUtf16(d.code));
        job.scopes.append(s);
    }
    // Trades follow one another through the job; general conditions run throughout.
    const qsizetype n = job.scopes.size();
    for (qsizetype k = 0; k < n; ++k) {
        Scope &s = job.scopes[k];
        if (QStringView(s.div->code) == u"01-000")
            continue;
        s.from = qBound(0.0, double(k) / double(n) * 0.75 - 0.05 + m_dice.real(-0.05, 0.05), 0.9);
        s.to = qMin(1.0, s.from + m_dice.real(0.15, 0.4));
    }

    const QString number = u"%1-%2"_s.arg(start.year()).arg(index + 1, 3, 10, QChar(u'0'));
    // Priced before the project is written: its contract is the accepted estimate.
    const Estimate estimate = priceEstimates(job);

    qint64 contract = 0;
    for (Scope &s : job.scopes) {
        s.scheduled = s.budget * 115 / 100; // the estimate's markup
        contract += s.scheduled;
    }
    const QString status = job.end.addDays(60) < m_today ? u"Complete"_s
                           : job.end < m_today           ? u"Closeout"_s
                                                         : u"Active"_s;
    const QString type = job.type == Residential  ? u"Residential"_s
                         : job.type == Commercial ? u"Commercial"_s
                                                  : u"Heavy Civil"_s;
    Fields f{{u"name"_s, job.name},     {u"number"_s, number},
             {u"type"_s, type},         {u"status"_s, status},
             {u"client"_s, job.client}, {u"address"_s, address()},
             {u"state"_s, m_state},     {u"contract"_s, QString::number(contract)},
             {u"retainage"_s, u"10"_s}, {u"start"_s, iso(job.start)},
             {u"end"_s, iso(job.end)}};
    if (m_dice.chance(0.5))
        f.insert(u"notes"_s, u"Owner's representative: "_s + m_contactName.value(job.client) +
                                 u". Gate code 4411. Deliveries before 9:00 only."_s);
    job.id = m_db.add(u"project"_s, {}, {}, f).id;

    // The project records of the estimate and the money plan.
    writeEstimates(job, estimate);
    int sort = 0;
    for (Scope &s : job.scopes) {
        sort += 10;
        m_batch.add(u"budget_line"_s, job.id, {},
                    {{u"costCode"_s, s.codeID}, {u"original"_s, QString::number(s.budget)}});
        s.sovID = m_batch.add(u"sov_line"_s, job.id, {},
                              {{u"description"_s, m_codeName.value(s.codeID)},
                               {u"costCode"_s, s.codeID},
                               {u"scheduled"_s, QString::number(s.scheduled)},
                               {u"sort"_s, QString::number(sort)}});
    }
    tasks(job);

    int payApps = 0;
    int meetings = 0;
    for (QDate day = job.start; day <= job.last; day = day.addDays(1)) {
        const int dow = day.dayOfWeek();
        if (dow <= 5 || (dow == 6 && m_dice.chance(0.05)))
            fieldDay(job, day);
        if (dow == 2 && m_dice.chance(0.85))
            meeting(job, day, ++meetings);
        if (day.day() == day.daysInMonth() || day == job.last)
            payApp(job, day, ++payApps);
    }
    changeOrders(job);
    purchaseOrders(job);
    rfis(job);
    submittals(job);
    punchList(job);
    invoices(job);
}

Estimate Generator::priceEstimates(Job &job)
{
    const double scale = job.type == Residential ? 0.25 : job.type == Commercial ? 1.0 : 1.4;
    Estimate e;
    for (qsizetype s = 0; s < job.scopes.size(); ++s) {
        const int items = m_dice.in(1, 3);
        for (int k = 0; k < items; ++k) {
            const Item &item = job.scopes.at(s).div->items[size_t(k)];
            e.lines.append({s, &item, m_dice.cents(item.costLo, item.costHi), {}});
        }
    }
    const int revisions = m_dice.in(1, 3);
    QDate date = job.start.addDays(-m_dice.in(30, 90));
    for (int r = 0; r < revisions; ++r) {
        e.dates.append(date);
        date = date.addDays(m_dice.in(7, 20));
    }
    for (Estimate::Line &l : e.lines) {
        const bool lumpSum = l.item->qtyLo == l.item->qtyHi;
        double qty =
            lumpSum ? l.item->qtyLo : qMax(l.item->qtyLo, m_dice.real(l.item->qtyLo, l.item->qtyHi) * scale);
        for (int r = 0; r < revisions; ++r) {
            // Each revision trims or adds a little as the scope is talked through.
            if (r > 0 && !lumpSum)
                qty *= m_dice.real(0.9, 1.08);
            l.qty.append(qtyText(qty));
        }
        // The accepted revision is the budget.
        job.scopes[l.scope].budget += std::llround(l.qty.last().toDouble() * double(l.unitCost));
    }
    return e;
}

void Generator::writeEstimates(const Job &job, const Estimate &e)
{
    const qsizetype revisions = e.dates.size();
    for (qsizetype r = 0; r < revisions; ++r) {
        const bool accepted = r == revisions - 1;
        const QString est = m_batch.add(
            u"estimate"_s, job.id, {},
            {{u"number"_s, QString::number(r + 1)},
             {u"title"_s, job.name + (r > 0 ? u" (rev. %1)"_s.arg(r) : QString())},
             {u"status"_s, accepted ? u"Accepted"_s : u"Declined"_s},
             {u"date"_s, iso(e.dates.at(r))},
             {u"markup"_s, u"15"_s},
             {u"tax"_s, u"0"_s},
             {u"terms"_s,
              u"Price valid 30 days. Excludes permits, testing and unforeseen conditions unless noted."_s}});
        int sort = 0;
        for (const Estimate::Line &l : e.lines)
            m_batch.add(u"est_line"_s, job.id, est,
                        {{u"description"_s, QString::fromUtf16(l.item->name)},
                         {u"costCode"_s, job.scopes.at(l.scope).codeID},
                         {u"qty"_s, l.qty.at(r)},
                         {u"unit"_s, QString::fromUtf16(l.item->unit)},
                         {u"unitCost"_s, QString::number(l.unitCost)},
                         {u"sort"_s, QString::number(sort += 10)}});
    }
}

void Generator::tasks(const Job &job)
{
    const QStringList &names = phases(job.type);
    const double now = job.at(m_today);
    const int count = int(names.size());
    QString previous;
    QString beforePrevious;
    int sort = 0;
    for (int k = 0; k < count; ++k) {
        // Bigger jobs schedule each phase by area.
        const int areas = job.type == Residential ? 1 : m_dice.in(1, 3);
        for (int a = 0; a < areas; ++a) {
            const double from = (double(k) + double(a) / areas) / count;
            const double to = (double(k) + double(a + 1) / areas) / count;
            const double done = qBound(0.0, (now - from) / (to - from), 1.0);
            QString preds = previous;
            if (!beforePrevious.isEmpty() && m_dice.chance(0.15))
                preds += u',' + beforePrevious;
            const QString name = areas == 1 ? names.at(k) : names.at(k) + u" — Area "_s + QChar(u'A' + a);
            const int duration =
                qMax(1, int(std::lround(double(job.start.daysTo(job.end)) * (to - from) * 5 / 7)));
            Fields f{{u"name"_s, name},
                     {u"duration"_s, QString::number(duration)},
                     {u"preds"_s, preds},
                     {u"progress"_s, QString::number(std::lround(done * 100))},
                     {u"sort"_s, QString::number(sort += 10)}};
            // The first task pins the schedule to the job's start; the rest follow their predecessors.
            if (previous.isEmpty())
                f.insert(u"start"_s, iso(job.start));
            const QString id = m_batch.add(u"task"_s, job.id, {}, std::move(f));
            beforePrevious = previous;
            previous = id;
        }
    }
}

void Generator::fieldDay(const Job &job, const QDate &day)
{
    const double t = job.at(day);
    QList<const Scope *> active;
    for (const Scope &s : job.scopes)
        if (s.from <= t && t <= s.to)
            active.append(&s);
    if (active.isEmpty())
        active.append(&job.scopes.first());
    const QString date = iso(day);

    const int people = job.type == Residential  ? m_dice.in(2, 5)
                       : job.type == Commercial ? m_dice.in(5, 11)
                                                : m_dice.in(6, 12);
    const QList<const Worker *> crew = pickCrew(job, people);
    const int shift = m_dice.in(0, 9);
    const QString in = shift < 2 ? u"06:30"_s : u"07:00"_s;
    const QString out = shift < 2 ? u"15:00"_s : shift == 9 ? u"17:30"_s : u"15:30"_s;
    for (const Worker *w : crew) {
        Fields f{{u"date"_s, date},   {u"worker"_s, w->id},  {u"in"_s, in},
                 {u"out"_s, out},     {u"break"_s, u"30"_s}, {u"costCode"_s, m_dice.pick(active)->codeID},
                 {u"rate"_s, w->rate}};
        if (m_dice.chance(0.03))
            f.insert(u"notes"_s, u"Overtime approved by "_s + job.pm.name + u'.');
        m_batch.add(u"timecard"_s, job.id, {}, std::move(f));
    }

    const int machines = job.type == Residential  ? (m_dice.chance(0.3) ? 1 : 0)
                         : job.type == Commercial ? m_dice.in(0, 2)
                                                  : m_dice.in(2, 5);
    QStringList onSite;
    for (int k = 0; k < machines && !crew.isEmpty(); ++k) {
        const Machine &m = m_dice.pick(m_fleet);
        onSite.append(m.name);
        m_batch.add(u"equip_log"_s, job.id, {},
                    {{u"date"_s, date},
                     {u"equipment"_s, m.id},
                     {u"hours"_s, qtyText(m_dice.real(2, 9))},
                     {u"operator"_s, m_dice.pick(crew)->id},
                     {u"costCode"_s, m_dice.pick(active)->codeID}});
    }

    const int bills = job.type == Residential  ? m_dice.in(0, 2)
                      : job.type == Commercial ? m_dice.in(1, 3)
                                               : m_dice.in(1, 4);
    for (int k = 0; k < bills; ++k) {
        const Scope &s = *m_dice.pick(active);
        const bool sub = m_dice.chance(0.2);
        const bool rental = !sub && m_dice.chance(0.08);
        const qint64 amount =
            qBound(qint64(2500), qint64(double(s.budget) * m_dice.real(0.001, 0.02)), qint64(6000000));
        Fields f{{u"date"_s, date},
                 {u"vendor"_s, sub ? m_dice.pick(m_subs) : m_dice.pick(m_vendors)},
                 {u"costCode"_s, s.codeID},
                 {u"amount"_s, QString::number(amount)},
                 {u"type"_s, sub      ? u"Subcontract"_s
                             : rental ? u"Equipment rental"_s
                                      : u"Material"_s},
                 {u"ref"_s, u"INV-%1"_s.arg(m_dice.in(10000, 99999))}};
        if (m_dice.chance(0.3))
            f.insert(u"memo"_s,
                     QString::fromUtf16(s.div->items[0].name) + u" for "_s + m_dice.pick(locations()));
        m_batch.add(u"expense"_s, job.id, {}, std::move(f));
    }

    if (!m_dice.chance(0.93))
        return;
    static const QStringList winter = {u"Clear"_s, u"Overcast"_s, u"Rain"_s, u"Snow"_s, u"Wind"_s};
    static const QStringList summer = {u"Clear"_s, u"Partly cloudy"_s, u"Clear"_s, u"Extreme heat"_s};
    static const QStringList between = {u"Clear"_s, u"Partly cloudy"_s, u"Overcast"_s, u"Rain"_s, u"Wind"_s};
    const int month = day.month();
    const bool cold = month == 12 || month <= 2;
    const bool hot = month >= 6 && month <= 8;
    QString work;
    const int sentences = m_dice.in(2, 4);
    for (int k = 0; k < sentences; ++k)
        work += (k ? u" "_s : QString()) + fill(m_dice.pick(workSentences()), m_dice.pick(locations()));
    Fields f{{u"date"_s, date},
             {u"weather"_s, m_dice.pick(cold  ? winter
                                        : hot ? summer
                                              : between)},
             {u"temp"_s, QString::number(cold  ? m_dice.in(25, 55)
                                         : hot ? m_dice.in(72, 104)
                                               : m_dice.in(45, 80))},
             {u"crew"_s, QString::number(crew.size() + m_dice.in(0, 8))},
             {u"work"_s, work},
             {u"delays"_s, m_dice.chance(0.65)
                               ? u"None."_s
                               : fill(m_dice.pick(delaySentences()), m_dice.pick(locations()))}};
    if (!onSite.isEmpty())
        f.insert(u"equipment"_s, onSite.join(u", "_s));
    if (m_dice.chance(0.2))
        f.insert(u"visitors"_s, fill(m_dice.pick(visitorSentences()), m_dice.pick(locations())));
    if (m_dice.chance(0.3))
        f.insert(u"safety"_s,
                 u"Toolbox talk on "_s + m_dice.pick(safetyTopics()) + u"; all crew attended."_s);
    m_batch.add(u"daily_log"_s, job.id, {}, std::move(f));
}

void Generator::meeting(const Job &job, const QDate &day, int n)
{
    const bool oac = n % 4 != 0;
    QStringList attendees = {job.pm.name, job.crew.first().name, m_contactName.value(job.architect)};
    if (oac)
        attendees.append(m_contactName.value(job.client));
    QString notes;
    const int points = m_dice.in(2, 4);
    for (int k = 0; k < points; ++k)
        notes += (k ? u"\n"_s : QString()) + fill(m_dice.pick(meetingNotes()), m_dice.pick(locations()));
    QStringList actions;
    const int items = m_dice.in(1, 3);
    for (int k = 0; k < items; ++k)
        actions.append(m_dice.pick(attendees) + u" — "_s + m_dice.pick(actionItems()) + u" — by "_s +
                       iso(day.addDays(m_dice.in(3, 14))));
    m_batch.add(u"meeting"_s, job.id, {},
                {{u"date"_s, iso(day)},
                 {u"title"_s, oac ? u"OAC meeting #%1"_s.arg(n) : u"Subcontractor coordination"_s},
                 {u"attendees"_s, attendees.join(u", "_s)},
                 {u"notes"_s, notes},
                 {u"actions"_s, actions.join(u'\n')},
                 {u"next"_s, iso(day.addDays(7))}});
}

void Generator::payApp(Job &job, const QDate &periodTo, int n)
{
    const double t = job.at(periodTo);
    const qint64 age = periodTo.daysTo(m_today);
    // Pay application statuses are the lower-case keys the program stores.
    const QString status = age > 45   ? u"paid"_s
                           : age > 20 ? u"approved"_s
                           : age > 3  ? u"submitted"_s
                                      : u"draft"_s;
    const QString app = m_batch.add(u"pay_app"_s, job.id, {},
                                    {{u"number"_s, QString::number(n)},
                                     {u"periodTo"_s, iso(periodTo)},
                                     {u"status"_s, status},
                                     {u"retWork"_s, u"10"_s},
                                     {u"retMat"_s, u"0"_s}});
    qint64 total = 0;
    for (Scope &s : job.scopes) {
        const double done = qBound(0.0, (t - s.from) / qMax(0.01, s.to - s.from), 1.0);
        const qint64 toDate = std::llround(double(s.scheduled) * done);
        const qint64 thisPeriod = toDate - s.billed;
        s.billed = toDate;
        // Now and then material is bought ahead and billed as stored.
        const qint64 stored = done > 0 && done < 1 && m_dice.chance(0.04) ? s.scheduled / 20 : 0;
        total += thisPeriod + stored;
        m_batch.add(u"pay_line"_s, job.id, app,
                    {{u"sov"_s, s.sovID},
                     {u"thisPeriod"_s, QString::number(thisPeriod)},
                     {u"stored"_s, QString::number(stored)}});
    }
    const qint64 net = total - total / 10;
    if (status == u"paid") {
        m_batch.add(u"payment"_s, job.id, {},
                    {{u"date"_s, iso(periodTo.addDays(m_dice.in(20, 45)))},
                     {u"direction"_s, u"Received"_s},
                     {u"party"_s, job.client},
                     {u"payApp"_s, app},
                     {u"amount"_s, QString::number(net)},
                     {u"method"_s, m_dice.chance(0.6) ? u"Check"_s : u"ACH"_s},
                     {u"ref"_s, QString::number(m_dice.in(1000, 99999))}});
    }
    // Subcontractors are paid out of each month's draw.
    const int paidOut = status == u"paid" ? m_dice.in(1, 3) : 0;
    for (int k = 0; k < paidOut; ++k)
        m_batch.add(u"payment"_s, job.id, {},
                    {{u"date"_s, iso(periodTo.addDays(m_dice.in(25, 50)))},
                     {u"direction"_s, u"Paid out"_s},
                     {u"party"_s, m_dice.pick(m_subs)},
                     {u"amount"_s, QString::number(net * m_dice.in(5, 25) / 100)},
                     {u"method"_s, u"Check"_s},
                     {u"ref"_s, QString::number(m_dice.in(1000, 99999))}});
    if (status != u"draft")
        waivers(job, app, periodTo, net, status);
}

} // namespace BenchData
