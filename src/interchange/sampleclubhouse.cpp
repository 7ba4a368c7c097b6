// The sample's main job, Monument Ridge Clubhouse, from estimate to its second
// pay application, with the paperwork and field records around it.
#include "samplekit.h"

#include "calc/money.h"

#include "workflows/bids.h"
#include "workflows/changeorders.h"
#include "workflows/estimates.h"
#include "workflows/payappflow.h"

using namespace Qt::StringLiterals;
using Sample::c;
using Sample::d;

namespace SampleKit {

namespace {

// Bills the listed share of each schedule line (by its sort order) on the application.
void bill(DB &db, Rec app, const QString &periodTo, const QString &status, const QList<double> &shares,
          qint64 stored = 0)
{
    const QList<Rec> sov = db.list(u"sov_line"_s, {.project = app.project});
    for (qsizetype k = 0; k < sov.size() && k < shares.size(); ++k) {
        const qint64 amount = Money::fromDouble(double(sov.at(k).i(u"scheduled")) * shares.at(k));
        setPayLine(db, app, sov.at(k).id, amount, k == 3 ? std::optional<qint64>(stored) : std::nullopt);
    }
    app = db.get(app.id).value_or(app);
    app.f.insert(u"periodTo"_s, periodTo);
    app.f.insert(u"status"_s, status);
    db.save(app);
}

} // namespace

void Maker::clubhouse()
{
    const Rec p = add(u"project"_s, {}, {},
                      {{u"name"_s, u"Monument Ridge Clubhouse"_s},
                       {u"number"_s, u"GV-101"_s},
                       {u"type"_s, u"Commercial"_s},
                       {u"status"_s, u"Active"_s},
                       {u"client"_s, contact[u"hoa"_s]},
                       {u"address"_s, u"100 Ridge Dr, Grand Junction, CO"_s},
                       {u"state"_s, u"CO"_s},
                       {u"retainage"_s, u"10"_s},
                       {u"start"_s, d(-120)},
                       {u"end"_s, d(150)},
                       {u"notes"_s, u"Owner's representative: HOA board president. Gate code 2500."_s}});

    const Rec est =
        add(u"estimate"_s, p.id, {},
            {{u"number"_s, u"1"_s},
             {u"title"_s, u"Clubhouse — base bid"_s},
             {u"status"_s, u"Accepted"_s},
             {u"date"_s, d(-150)},
             {u"markup"_s, u"12"_s},
             {u"tax"_s, u"0"_s},
             {u"terms"_s, u"Price valid 30 days. Excludes permits, utility fees and rock excavation."_s}});
    const struct
    {
        const char16_t *description, *code, *qty, *unit;
        double cost;
    } lines[] = {
        {u"Mobilization & general conditions", u"01-000", u"1.0", u"LS", 48000},
        {u"Site grading & excavation", u"31-000", u"1.0", u"LS", 36500},
        {u"Footings & slab on grade", u"03-000", u"6200.0", u"SF", 9.75},
        {u"Framing lumber & labor", u"06-000", u"6200.0", u"SF", 14.50},
        {u"Roofing", u"07-000", u"62.0", u"SQ", 640},
        {u"Windows & doors", u"08-000", u"1.0", u"LS", 52000},
        {u"Plumbing", u"22-000", u"1.0", u"LS", 68000},
        {u"HVAC", u"23-000", u"1.0", u"LS", 74000},
        {u"Electrical", u"26-000", u"1.0", u"LS", 81000},
        {u"Interior finishes", u"09-000", u"6200.0", u"SF", 11.25},
    };
    int sort = 0;
    for (const auto &l : lines)
        add(u"est_line"_s, p.id, est.id,
            {{u"description"_s, QString::fromUtf16(l.description)},
             {u"costCode"_s, code(QString::fromUtf16(l.code))},
             {u"qty"_s, QString::fromUtf16(l.qty)},
             {u"unit"_s, QString::fromUtf16(l.unit)},
             {u"unitCost"_s, c(l.cost)},
             {u"sort"_s, QString::number(++sort)}});
    useEstimateAsBudget(db, est);

    // Change orders: two approved (they reach contract, budget and billing), one pending.
    const struct
    {
        const char16_t *title, *reason, *status;
        int days, age;
        QList<std::tuple<const char16_t *, const char16_t *, double>> lines;
    } orders[] = {
        {u"Add covered patio",
         u"Owner request at OAC #4.",
         u"approved",
         6,
         40,
         {{u"Patio slab & footings", u"03-000", 8400}, {u"Timber framing & roofing", u"06-000", 14250}}},
        {u"Upgrade lighting package",
         u"Owner asked for dimmable LED fixtures throughout.",
         u"pending",
         0,
         9,
         {{u"LED fixture upgrade", u"26-000", 9800}}},
        {u"Rock excavation (unforeseen)",
         u"Rock encountered at north footings below 4 ft.",
         u"approved",
         3,
         70,
         {{u"Rock excavation & haul-off", u"31-000", 6200}}},
    };
    int number = 0;
    for (const auto &o : orders) {
        const Rec co = add(u"co"_s, p.id, {},
                           {{u"number"_s, QString::number(++number)},
                            {u"title"_s, QString::fromUtf16(o.title)},
                            {u"kind"_s, u"owner"_s},
                            {u"status"_s, u"pending"_s},
                            {u"date"_s, d(-o.age)},
                            {u"markup"_s, u"10"_s},
                            {u"days"_s, QString::number(o.days)},
                            {u"reason"_s, QString::fromUtf16(o.reason)}});
        int line = 0;
        for (const auto &[description, cc, amount] : o.lines)
            add(u"co_line"_s, p.id, co.id,
                {{u"description"_s, QString::fromUtf16(description)},
                 {u"costCode"_s, code(QString::fromUtf16(cc))},
                 {u"amount"_s, c(amount)},
                 {u"sort"_s, QString::number(++line)}});
        if (QStringView(o.status) != u"pending")
            setCOStatus(db, db.get(co.id).value_or(co), QString::fromUtf16(o.status));
    }

    // Two applications: the first paid (so the second shows earlier certificates), the second submitted.
    const Rec app1 = newPayApp(db, p);
    bill(db, app1, d(-45), u"paid"_s, {0.35, 1.0, 0.9, 0.4, 0, 0, 0.1, 0.05, 0.1, 0, 0, 1.0}, 1200000);
    const qint64 net1 = payAppData(db, db.get(app1.id).value_or(app1)).calc.g702.l8;
    makeWaiver(db, db.get(app1.id).value_or(app1), net1, false);
    add(u"payment"_s, p.id, {},
        {{u"date"_s, d(-20)},
         {u"direction"_s, u"Received"_s},
         {u"party"_s, contact[u"hoa"_s]},
         {u"payApp"_s, app1.id},
         {u"amount"_s, QString::number(net1)},
         {u"method"_s, u"Check"_s},
         {u"ref"_s, u"4471"_s}});
    const Rec app2 = newPayApp(db, p);
    bill(db, app2, d(-14), u"submitted"_s, {0.15, 0, 0.1, 0.45, 0.4, 0.2, 0.25, 0.2, 0.25, 0.05, 0.5, 0});

    // Bidding: plumbing awarded (which issues its purchase order), landscape still open for leveling.
    const Rec plumbing = add(u"bid_package"_s, p.id, {},
                             {{u"title"_s, u"Plumbing rough & finish"_s},
                              {u"trade"_s, u"Plumbing"_s},
                              {u"due"_s, d(-130)},
                              {u"status"_s, u"Leveling"_s},
                              {u"scope"_s, u"Complete plumbing per P-1 to P-4, fixtures by owner."_s}});
    const Rec won = add(u"bid"_s, p.id, plumbing.id,
                        {{u"bidder"_s, contact[u"plumb"_s]}, {u"base"_s, c(61800)}, {u"plugs"_s, c(0)}});
    add(u"bid"_s, p.id, plumbing.id,
        {{u"bidder"_s, contact[u"mesa"_s]},
         {u"base"_s, c(59900)},
         {u"plugs"_s, c(4500)},
         {u"notes"_s, u"Excludes gas piping"_s}});
    award(db, db.get(won.id));

    const Rec landscape = add(u"bid_package"_s, p.id, {},
                              {{u"title"_s, u"Landscape & irrigation"_s},
                               {u"trade"_s, u"Landscaping"_s},
                               {u"due"_s, d(5)},
                               {u"status"_s, u"Open"_s},
                               {u"scope"_s, u"All planting, irrigation and topsoil per L-1 to L-3."_s}});
    const struct
    {
        const char16_t *name, *notes;
        double base, plugs;
    } bids[] = {
        {u"Desert Bloom Landscapes", u"Excludes topsoil import", 48600, 6200},
        {u"Grand Mesa Gardens", u"Complete per scope", 53900, 0},
        {u"Riverbend Irrigation & Landscape", u"Excludes drip zones at patio", 45200, 3800},
    };
    for (const auto &b : bids) {
        const QString bidder = add(u"contact"_s, {}, {},
                                   {{u"name"_s, QString::fromUtf16(b.name)},
                                    {u"company"_s, QString::fromUtf16(b.name)},
                                    {u"type"_s, u"Subcontractor"_s},
                                    {u"trade"_s, u"Landscaping"_s}})
                                   .id;
        add(u"bid"_s, p.id, landscape.id,
            {{u"bidder"_s, bidder},
             {u"base"_s, c(b.base)},
             {u"plugs"_s, c(b.plugs)},
             {u"notes"_s, QString::fromUtf16(b.notes)}});
    }

    clubhouseField(p);

    Fields sheet{
        {u"number"_s, u"A-101"_s}, {u"title"_s, u"Floor Plan"_s}, {u"discipline"_s, u"Architectural"_s},
        {u"version"_s, u"1"_s},    {u"status"_s, u"Current"_s},   {u"date"_s, d(0)}};
    if (files.planPDF)
        if (const std::optional<QString> file = files.planPDF(db))
            sheet.insert(u"file"_s, *file);
    add(u"plan_sheet"_s, p.id, {}, sheet);

    const Rec doc = add(u"document"_s, p.id, {},
                        {{u"title"_s, u"Notice to Proceed — Mesa Electric"_s}, {u"category"_s, u"Notice"_s}});
    if (files.documentBody)
        files.documentBody(db, doc);

    add(u"warranty"_s, p.id, {},
        {{u"item"_s, u"Roofing system"_s},
         {u"type"_s, u"Warranty"_s},
         {u"expires"_s, d(3800)},
         {u"status"_s, u"Needed"_s},
         {u"notes"_s, u"20-year manufacturer warranty, 2-year workmanship."_s}});
}

} // namespace SampleKit
