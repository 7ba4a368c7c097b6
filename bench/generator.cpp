// The reference company: contacts, team and fleet once, then each project
// from its estimate through its field days, billing and closeout.
#include "generator.h"

#include "gencompany.h"
#include "wordlists.h"

#include "calc/datefmt.h"
#include "store/db.h"

#include <cmath>

using namespace Qt::StringLiterals;
using namespace BenchText;

namespace BenchData {

Batch::Batch(DB &db)
    : m_db(db)
{}

Batch::~Batch()
{
    flush();
}

QString Batch::add(const QString &kind, const QString &project, const QString &parent, Fields f)
{
    Rec r;
    r.id = newID();
    r.kind = kind;
    r.company = m_db.companyID();
    r.project = project;
    r.parent = parent;
    r.created = nowSeconds();
    r.updated = r.created;
    r.f = std::move(f);
    const QString id = r.id;
    m_recs.append(std::move(r));
    if (m_recs.size() >= kSize)
        flush();
    return id;
}

void Batch::flush()
{
    if (m_recs.isEmpty())
        return;
    m_db.saveAll(m_recs);
    m_recs.clear();
}

int Dice::in(int lo, int hi)
{
    return rng.bounded(lo, hi + 1);
}

qint64 Dice::cents(qint64 lo, qint64 hi)
{
    return rng.bounded(lo, hi + 1);
}

double Dice::real(double lo, double hi)
{
    return lo + rng.generateDouble() * (hi - lo);
}

bool Dice::chance(double p)
{
    return rng.generateDouble() < p;
}

QString qtyText(double q)
{
    // Small counts in halves, large ones whole, as an estimator types them.
    const double v = q < 50 ? std::round(q * 2) / 2 : std::round(q);
    return QString::number(v, 'f', v == std::floor(v) ? 0 : 1);
}

QString iso(const QDate &d)
{
    return DateFmt::iso(d);
}

QString fill(const QString &sentence, const QString &place)
{
    return sentence.contains(u"%1") ? sentence.arg(place) : sentence;
}

Generator::Generator(DB &db, quint32 seed)
    : m_db(db)
    , m_batch(db)
    , m_dice{QRandomGenerator(seed)}
    , m_today(DateFmt::today())
{}

QString Generator::personName()
{
    return m_dice.pick(firstNames()) + u' ' + m_dice.pick(lastNames());
}

QString Generator::phone()
{
    return u"(%1) 555-%2"_s.arg(m_dice.in(200, 989)).arg(m_dice.in(100, 9999), 4, 10, QChar(u'0'));
}

QString Generator::address()
{
    return u"%1 %2 %3, %4, %5 %6"_s.arg(m_dice.in(10, 9800))
        .arg(m_dice.pick(streets()), m_dice.chance(0.5) ? u"Ave"_s : u"St"_s, m_dice.pick(cities()), m_state)
        .arg(m_dice.in(90001, 96199));
}

QString Generator::contact(const QString &type, const QString &name, const QString &company,
                           const QString &trade)
{
    QString domain = company.toLower();
    domain.removeIf([](QChar c) { return !c.isLetterOrNumber(); });
    QString who = name.toLower();
    who.replace(u' ', u'.');
    Fields f{{u"name"_s, name},
             {u"company"_s, company},
             {u"type"_s, type},
             {u"phone"_s, phone()},
             {u"email"_s, who + u'@' + domain.left(20) + u".com"_s},
             {u"address"_s, address()}};
    if (!trade.isEmpty())
        f.insert(u"trade"_s, trade);
    if (m_dice.chance(0.2))
        f.insert(u"notes"_s, u"Prefers email. Office closes at 3:30 on Fridays."_s);
    const QString id = m_batch.add(u"contact"_s, {}, {}, std::move(f));
    m_contactName.insert(id, name);
    m_contactCompany.insert(id, company);
    return id;
}

void Generator::makeCompany()
{
    m_state = u"CA"_s;
    m_ownerName = personName();
    m_companyName = u"Bellmont Construction Co."_s;
    m_db.createCompany(m_companyName, m_ownerName, m_state);
    for (const Rec &code : m_db.costCodes()) {
        m_codeID.insert(code.f.value(u"code"), code.id);
        m_codeName.insert(code.id, code.f.value(u"name"));
    }

    for (int k = 0; k < 45; ++k) {
        const QString name = personName();
        const QString org = k % 3 == 0   ? u"City of "_s + m_dice.pick(cities())
                            : k % 3 == 1 ? m_dice.pick(lastNames()) + u" Properties LLC"_s
                                         : name;
        m_clients.append(contact(u"Client / Owner"_s, name, org, {}));
    }
    for (int k = 0; k < 130; ++k) {
        const QString trade = m_dice.pick(trades());
        const QString org = m_dice.pick(lastNames()) + u' ' + trade + u" Inc."_s;
        const QString id = contact(u"Subcontractor"_s, personName(), org, trade);
        m_subs.append(id);
        // Certificates and licences the office chases every year.
        const int docs = m_dice.in(1, 3);
        for (int d = 0; d < docs; ++d)
            m_batch.add(u"compliance"_s, {}, {},
                        {{u"contact"_s, id},
                         {u"docType"_s, d == 0   ? u"General liability COI"_s
                                        : d == 1 ? u"Workers' comp COI"_s
                                                 : u"Contractor license"_s},
                         {u"number"_s, u"POL-%1"_s.arg(m_dice.in(100000, 999999))},
                         {u"carrier"_s, m_dice.pick(lastNames()) + u" Mutual"_s},
                         {u"expires"_s, iso(m_today.addDays(m_dice.in(-60, 365)))}});
    }
    for (int k = 0; k < 100; ++k) {
        const QString org = m_dice.pick(cities()) + u' ' + m_dice.pick(supplierNames());
        m_vendors.append(contact(u"Vendor / Supplier"_s, personName(), org, {}));
    }
    for (int k = 0; k < 25; ++k) {
        const bool architect = k < 15;
        const QString org = m_dice.pick(lastNames()) + (architect ? u" Architects"_s : u" Engineering"_s);
        m_designers.append(contact(architect ? u"Architect"_s : u"Engineer"_s, personName(), org, {}));
    }
    for (int k = 0; k < 10; ++k)
        contact(u"Inspector"_s, personName(), u"County Building Department"_s, {});

    for (int k = 0; k < 24; ++k) {
        const QString role = k < 3 ? u"Project Manager"_s : k < 5 ? u"Accounting"_s : u"Field"_s;
        const qint64 rate = k < 3   ? m_dice.cents(5500, 7500)
                            : k < 5 ? m_dice.cents(3500, 4500)
                                    : m_dice.cents(2800, 5200);
        const QString name = personName();
        const QString id = m_batch.add(u"user"_s, {}, {},
                                       {{u"name"_s, name},
                                        {u"email"_s, name.toLower().replace(u' ', u'.') + u"@bellmont.com"_s},
                                        {u"role"_s, role},
                                        {u"rate"_s, QString::number(rate)},
                                        {u"phone"_s, phone()}});
        const Worker w{id, name, QString::number(rate)};
        if (k < 3)
            m_managers.append(w);
        else if (k >= 5)
            m_field.append(w);
    }

    for (int k = 0; k < 40; ++k) {
        const QString type = m_dice.pick(equipmentTypes());
        const QString unitNo = u"EQ-%1"_s.arg(101 + k);
        const QString id = m_batch.add(u"equipment"_s, {}, {},
                                       {{u"name"_s, type + u" #"_s + QString::number(k % 5 + 1)},
                                        {u"unitNo"_s, unitNo},
                                        {u"type"_s, type},
                                        {u"rate"_s, QString::number(m_dice.cents(1500, 18500))},
                                        {u"meter"_s, QString::number(m_dice.in(40, 9800))},
                                        {u"service"_s, iso(m_today.addDays(m_dice.in(-20, 120)))}});
        m_fleet.append({id, type + u" ("_s + unitNo + u')'});
    }

    for (int k = 0; k < 80; ++k) {
        static const QStringList stages = {u"New"_s,           u"Contacted"_s, u"Site visit"_s,
                                           u"Proposal sent"_s, u"Won"_s,       u"Lost"_s};
        m_batch.add(u"lead"_s, {}, {},
                    {{u"name"_s, m_dice.pick(streets()) + u' ' + m_dice.pick(buildingNames(Commercial))},
                     {u"contact"_s, m_dice.pick(m_clients)},
                     {u"value"_s, QString::number(m_dice.cents(2000000, 400000000))},
                     {u"stage"_s, m_dice.pick(stages)},
                     {u"follow"_s, iso(m_today.addDays(m_dice.in(-30, 60)))},
                     {u"source"_s, m_dice.chance(0.5) ? u"Referral"_s : u"Public bid list"_s}});
    }
}

void Generator::run(int projects, int years)
{
    makeCompany();
    const QDate first = m_today.addYears(-years);
    // Starts spread evenly, the last one a few months ago so it is mid-job today.
    const qint64 span = first.daysTo(m_today) - 120;
    for (int k = 0; k < projects; ++k) {
        const qint64 offset = span * k / qMax(1, projects - 1) + m_dice.in(-20, 20);
        makeProject(k, first.addDays(qBound(qint64(0), offset, span)));
    }
    m_batch.flush();
}

void generate(DB &db, int projects, int years, quint32 seed)
{
    Generator gen(db, seed);
    gen.run(projects, years);
}

} // namespace BenchData
