// Companies, users, the current selection and the look-ups that turn ids into text.
#include "db.h"
#include "settings.h"

using namespace Qt::StringLiterals;

namespace {

struct DefaultCode
{
    const char16_t *code;
    const char16_t *name;
};

constexpr DefaultCode kDefaultCodes[] = {
    {u"01-000", u"General Requirements"},
    {u"01-500", u"Temporary Facilities"},
    {u"02-000", u"Existing Conditions / Demolition"},
    {u"03-000", u"Concrete"},
    {u"04-000", u"Masonry"},
    {u"05-000", u"Metals"},
    {u"06-000", u"Wood, Plastics & Composites"},
    {u"07-000", u"Thermal & Moisture Protection"},
    {u"08-000", u"Openings (Doors & Windows)"},
    {u"09-000", u"Finishes"},
    {u"10-000", u"Specialties"},
    {u"11-000", u"Equipment"},
    {u"12-000", u"Furnishings"},
    {u"21-000", u"Fire Suppression"},
    {u"22-000", u"Plumbing"},
    {u"23-000", u"HVAC"},
    {u"26-000", u"Electrical"},
    {u"27-000", u"Communications"},
    {u"31-000", u"Earthwork"},
    {u"32-000", u"Exterior Improvements / Paving"},
    {u"33-000", u"Utilities"},
    {u"34-000", u"Transportation / Roadway"},
};

Rec fresh(const QString &kind, const QString &company, Fields f)
{
    Rec r;
    r.id = newID();
    r.kind = kind;
    r.company = company;
    r.created = nowSeconds();
    r.updated = nowSeconds();
    r.f = std::move(f);
    return r;
}

} // namespace

void DB::setCompanyID(const QString &id)
{
    m_companyID = id;
    if (!m_inMemory)
        Settings::setText(u"tl.company"_s, id);
    Q_EMIT selectionChanged();
}

void DB::setUserID(const QString &id)
{
    m_userID = id;
    if (!m_inMemory)
        Settings::setText(u"tl.user"_s, id);
    Q_EMIT selectionChanged();
}

void DB::repairSelection()
{
    if (!company()) {
        const QList<Rec> companies = list(u"company"_s);
        setCompanyID(companies.isEmpty() ? QString() : companies.first().id);
    }
    if (!user()) {
        const QList<Rec> users = list(u"user"_s);
        setUserID(users.isEmpty() ? QString() : users.first().id);
    }
}

std::optional<Rec> DB::company() const
{
    const Rec *r = find(m_companyID);
    if (r && r->kind == u"company")
        return *r;
    return std::nullopt;
}

std::optional<Rec> DB::user() const
{
    const Rec *r = find(m_userID);
    if (r && r->kind == u"user" && r->company == m_companyID)
        return *r;
    return std::nullopt;
}

QString DB::role() const
{
    // On a company server the server says, whatever the copy holds.
    if (m_serverRole)
        return *m_serverRole;
    const Rec *r = find(m_userID);
    if (r && r->kind == u"user" && r->company == m_companyID)
        return r->f.value(u"role");
    return u"Owner"_s;
}

void DB::setServerRole(const std::optional<QString> &role)
{
    if (role == m_serverRole)
        return;
    m_serverRole = role;
    Q_EMIT selectionChanged();
}

Rec DB::createCompany(const QString &name, const QString &owner, const QString &state)
{
    Rec company = fresh(u"company"_s, QString(), {{u"name"_s, name}, {u"state"_s, state}});
    company.company = company.id;
    save(company);
    QList<Rec> batch;
    for (const DefaultCode &c : kDefaultCodes)
        batch.append(
            fresh(u"cost_code"_s, company.id,
                  {{u"code"_s, QString::fromUtf16(c.code)}, {u"name"_s, QString::fromUtf16(c.name)}}));
    const Rec user = fresh(u"user"_s, company.id, {{u"name"_s, owner}, {u"role"_s, u"Owner"_s}});
    batch.append(user);
    saveAll(batch);
    setCompanyID(company.id);
    setUserID(user.id);
    return company;
}

QString DB::label(const QString &id) const
{
    const Rec *r = find(id);
    if (!r)
        return QString();
    if (r->kind == u"cost_code")
        return r->f.value(u"code") + u' ' + r->f.value(u"name");
    for (const auto key : {u"name", u"title", u"number"}) {
        const QString v = r->f.value(QStringView(key));
        if (!v.isEmpty())
            return v;
    }
    return QString();
}

QString DB::code(const QString &code) const
{
    for (const Rec &r : list(u"cost_code"_s))
        if (r.f.value(u"code") == code)
            return r.id;
    return QString();
}

QList<Rec> DB::costCodes() const
{
    QList<Rec> codes = list(u"cost_code"_s);
    std::stable_sort(codes.begin(), codes.end(),
                     [](const Rec &a, const Rec &b) { return a.f.value(u"code") < b.f.value(u"code"); });
    return codes;
}
