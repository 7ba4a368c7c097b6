#include "sample.h"

#include "samplekit.h"

#include "calc/datefmt.h"
#include "calc/money.h"
#include "workflows/estimates.h"

using namespace Qt::StringLiterals;
using Sample::c;
using Sample::d;

namespace SampleKit {

void Maker::company()
{
    Rec co = db.createCompany(u"Grand Valley Builders (Sample)"_s, u"Dana Whitfield"_s, u"CO"_s);
    co.f.insert(u"address"_s, u"2500 North Ave, Grand Junction, CO 81501"_s);
    co.f.insert(u"phone"_s, u"(970) 555-0142"_s);
    co.f.insert(u"email"_s, u"office@grandvalleybuilders.example"_s);
    db.save(co);
    if (std::optional<Rec> owner = db.user()) {
        owner->f.insert(u"email"_s, u"dana@grandvalleybuilders.example"_s);
        db.save(*owner);
        user[u"owner"_s] = owner->id;
    }
    const struct
    {
        const char16_t *key, *name, *role, *rate;
    } team[] = {
        {u"pm", u"Marcus Lind", u"Project Manager", u"5800"},
        {u"books", u"Jen Okafor", u"Accounting", u"4200"},
        {u"lead", u"Rosa Tafoya", u"Field", u"4400"},
        {u"hand", u"Eli Brandt", u"Field", u"3600"},
    };
    for (const auto &t : team)
        user[QString::fromUtf16(t.key)] =
            add(u"user"_s, {}, {},
                {{u"name"_s, QString::fromUtf16(t.name)},
                 {u"role"_s, QString::fromUtf16(t.role)},
                 {u"rate"_s, QString::fromUtf16(t.rate)},
                 {u"email"_s, QString::fromUtf16(t.name).split(u' ').first().toLower() +
                                  u"@grandvalleybuilders.example"_s}})
                .id;

    const struct
    {
        const char16_t *key, *name, *company, *type, *trade, *phone, *address;
    } people[] = {
        {u"hoa", u"Monument Ridge HOA", u"Monument Ridge HOA", u"Client / Owner", u"", u"(970) 555-0110",
         u"100 Ridge Dr, Grand Junction, CO 81507"},
        {u"home", u"Tom & Alicia Reyes", u"", u"Client / Owner", u"", u"(970) 555-0187",
         u"18 Mesa Top Rd, Glade Park, CO 81523"},
        {u"mesa", u"Luis Ortega", u"Mesa Electric LLC", u"Subcontractor", u"Electrical", u"(970) 555-0133",
         u"455 Pitkin Ave, Grand Junction, CO 81501"},
        {u"plumb", u"Bookcliff Plumbing", u"Bookcliff Plumbing", u"Subcontractor", u"Plumbing",
         u"(970) 555-0164", u"2210 Hwy 6 & 50, Grand Junction, CO 81505"},
        {u"concrete", u"Redlands Concrete", u"Redlands Concrete", u"Subcontractor", u"Concrete",
         u"(970) 555-0171", u"30 Redlands Pkwy, Grand Junction, CO 81507"},
        {u"lumber", u"Valley Lumber & Supply", u"Valley Lumber & Supply", u"Vendor / Supplier", u"Lumber",
         u"(970) 555-0120", u"1402 S 5th St, Grand Junction, CO 81501"},
        {u"haul", u"Colorado River Hauling", u"Colorado River Hauling", u"Vendor / Supplier", u"Trucking",
         u"(970) 555-0158", u"789 River Rd, Fruita, CO 81521"},
        {u"arch", u"Studio 81 Architects", u"Studio 81 Architects", u"Architect", u"", u"(970) 555-0105",
         u"612 Main St, Grand Junction, CO 81501"},
        {u"county", u"Mesa County Public Works", u"Mesa County", u"Engineer", u"Roads", u"(970) 555-0199",
         u"971 Coffman Rd, Whitewater, CO 81527"},
        {u"inspector", u"Karen Voss", u"City of Grand Junction", u"Inspector", u"Building", u"(970) 555-0116",
         u"250 N 5th St, Grand Junction, CO 81501"},
    };
    for (const auto &p : people)
        contact[QString::fromUtf16(p.key)] =
            add(u"contact"_s, {}, {},
                {{u"name"_s, QString::fromUtf16(p.name)},
                 {u"company"_s, QString::fromUtf16(p.company)},
                 {u"type"_s, QString::fromUtf16(p.type)},
                 {u"trade"_s, QString::fromUtf16(p.trade)},
                 {u"phone"_s, QString::fromUtf16(p.phone)},
                 {u"address"_s, QString::fromUtf16(p.address)},
                 {u"email"_s, u"info@"_s + QString::fromUtf16(p.key) + u".example"_s}})
                .id;

    equip[u"ex"_s] = add(u"equipment"_s, {}, {},
                         {{u"name"_s, u"CAT 320 Excavator"_s},
                          {u"unitNo"_s, u"EX-01"_s},
                          {u"type"_s, u"Excavator"_s},
                          {u"rate"_s, c(95)},
                          {u"meter"_s, u"4210"_s},
                          {u"service"_s, d(9)}})
                         .id;
    equip[u"roller"_s] = add(u"equipment"_s, {}, {},
                             {{u"name"_s, u"Hamm HD+ 120 Roller"_s},
                              {u"unitNo"_s, u"RL-02"_s},
                              {u"type"_s, u"Roller"_s},
                              {u"rate"_s, c(70)},
                              {u"meter"_s, u"1875"_s},
                              {u"service"_s, d(75)}})
                             .id;
}

void Maker::highway()
{
    const Rec p = add(u"project"_s, {}, {},
                      {{u"name"_s, u"Hwy 50 Overlay, MP 32–36"_s},
                       {u"number"_s, u"GV-102"_s},
                       {u"type"_s, u"Heavy Civil"_s},
                       {u"status"_s, u"Active"_s},
                       {u"client"_s, contact[u"county"_s]},
                       {u"address"_s, u"US-50, Mesa County, CO"_s},
                       {u"state"_s, u"CO"_s},
                       {u"contract"_s, c(1126940)},
                       {u"retainage"_s, u"5"_s},
                       {u"start"_s, d(-21)},
                       {u"end"_s, d(40)}});
    const struct
    {
        const char16_t *item, *description, *unit, *qty;
        double price;
    } items[] = {
        {u"202-00220", u"Removal of asphalt mat (planing)", u"SY", u"48000", 3.15},
        {u"403-34721", u"Hot mix asphalt (Grading SX)(75)(PG 64-22)", u"TON", u"9600", 98.50},
        {u"627-00011", u"Pavement marking paint", u"GAL", u"820", 42.00},
    };
    QStringList ids;
    for (const auto &i : items)
        ids.append(add(u"unit_item"_s, p.id, {},
                       {{u"item"_s, QString::fromUtf16(i.item)},
                        {u"description"_s, QString::fromUtf16(i.description)},
                        {u"unit"_s, QString::fromUtf16(i.unit)},
                        {u"bidQty"_s, QString::fromUtf16(i.qty)},
                        {u"unitPrice"_s, c(i.price)}})
                       .id);
    add(u"qty_log"_s, p.id, {},
        {{u"date"_s, d(-1)},
         {u"item"_s, ids.at(1)},
         {u"qty"_s, u"1450.0"_s},
         {u"station"_s, u"STA 332+00 to 344+00"_s},
         {u"crew"_s, u"Paving crew A"_s}});
    add(u"ticket"_s, p.id, {},
        {{u"ticketType"_s, u"Material"_s},
         {u"number"_s, u"T-50811"_s},
         {u"date"_s, d(-1)},
         {u"vendor"_s, contact[u"haul"_s]},
         {u"material"_s, u"HMA SX(75) PG 64-22"_s},
         {u"qty"_s, u"24.6"_s},
         {u"unit"_s, u"TON"_s},
         {u"truck"_s, u"CRH-12"_s},
         {u"unitCost"_s, c(62)},
         {u"item"_s, ids.at(1)}});
    add(u"ticket"_s, p.id, {},
        {{u"ticketType"_s, u"Truck"_s},
         {u"number"_s, u"H-2207"_s},
         {u"date"_s, d(-1)},
         {u"vendor"_s, contact[u"haul"_s]},
         {u"material"_s, u"Millings haul-off"_s},
         {u"qty"_s, u"9.5"_s},
         {u"unit"_s, u"HR"_s},
         {u"truck"_s, u"CRH-07"_s},
         {u"unitCost"_s, c(115)}});
    add(u"equip_log"_s, p.id, {},
        {{u"date"_s, d(-1)},
         {u"equipment"_s, equip[u"roller"_s]},
         {u"hours"_s, u"8.5"_s},
         {u"operator"_s, user[u"hand"_s]},
         {u"costCode"_s, code(u"34-000"_s)}});
    add(u"daily_log"_s, p.id, {},
        {{u"date"_s, d(-1)},
         {u"weather"_s, u"Clear"_s},
         {u"temp"_s, u"78"_s},
         {u"crew"_s, u"14"_s},
         {u"work"_s, u"Paved NB lane STA 332–344. Mat temps 290–305°F. Density tests passing."_s},
         {u"delays"_s, u"None."_s}});
}

void Maker::residence()
{
    const Rec p = add(u"project"_s, {}, {},
                      {{u"name"_s, u"Glade Park Residence"_s},
                       {u"number"_s, u"GV-103"_s},
                       {u"type"_s, u"Residential"_s},
                       {u"status"_s, u"Pre-construction"_s},
                       {u"client"_s, contact[u"home"_s]},
                       {u"address"_s, u"18 Mesa Top Rd, Glade Park, CO"_s},
                       {u"state"_s, u"CO"_s},
                       {u"retainage"_s, u"0"_s},
                       {u"start"_s, d(45)},
                       {u"end"_s, d(300)}});
    const Rec inv = add(u"invoice"_s, p.id, {},
                        {{u"number"_s, u"1001"_s},
                         {u"date"_s, d(-8)},
                         {u"due"_s, d(22)},
                         {u"client"_s, contact[u"home"_s]},
                         {u"status"_s, u"Sent"_s},
                         {u"tax"_s, u"0"_s},
                         {u"ret"_s, u"0"_s},
                         {u"notes"_s, u"Thank you for choosing Grand Valley Builders."_s}});
    add(u"inv_line"_s, p.id, inv.id,
        {{u"description"_s, u"Design-build preconstruction services"_s},
         {u"qty"_s, u"1.0"_s},
         {u"unitPrice"_s, c(6500)},
         {u"sort"_s, u"1"_s}});
    add(u"inv_line"_s, p.id, inv.id,
        {{u"description"_s, u"Site survey & soils report (pass-through)"_s},
         {u"qty"_s, u"1.0"_s},
         {u"unitPrice"_s, c(2850)},
         {u"sort"_s, u"2"_s}});

    // The assembly is company-wide; the residence's first estimate is priced with it.
    const Rec slab =
        add(u"assembly"_s, {}, {},
            {{u"name"_s, u"4\" slab on grade"_s},
             {u"unit"_s, u"SF"_s},
             {u"notes"_s, u"Per square foot, 4000 psi, on 4\" base with 10 mil vapor barrier."_s}});
    const struct
    {
        const char16_t *description, *qtyPer, *unit;
        double cost;
    } lines[] = {
        {u"Concrete 4000 psi", u"0.0135", u"CY", 165},
        {u"Vapor barrier & base", u"1.0", u"SF", 0.85},
        {u"Place & finish labor", u"1.0", u"SF", 2.10},
    };
    int sort = 0;
    for (const auto &l : lines)
        add(u"asm_line"_s, {}, slab.id,
            {{u"description"_s, QString::fromUtf16(l.description)},
             {u"costCode"_s, code(u"03-000"_s)},
             {u"qtyPer"_s, QString::fromUtf16(l.qtyPer)},
             {u"unit"_s, QString::fromUtf16(l.unit)},
             {u"unitCost"_s, c(l.cost)},
             {u"sort"_s, QString::number(++sort)}});
    const Rec est = add(u"estimate"_s, p.id, {},
                        {{u"number"_s, u"1"_s},
                         {u"title"_s, u"Glade Park — preliminary"_s},
                         {u"status"_s, u"Draft"_s},
                         {u"date"_s, d(-3)},
                         {u"markup"_s, u"15"_s},
                         {u"tax"_s, u"0"_s},
                         {u"terms"_s, u"Preliminary pricing for budgeting only."_s}});
    addAssembly(db, slab, est, 1800);
}

void Maker::companyWide()
{
    const struct
    {
        const char16_t *who, *type, *number, *carrier;
        int expires;
    } certs[] = {
        {u"mesa", u"General liability COI", u"GL-448120", u"Front Range Mutual", -5},
        {u"plumb", u"Workers' comp COI", u"WC-77315", u"Pinnacol", 12},
        {u"concrete", u"General liability COI", u"GL-90211", u"Western Casualty", 200},
        {u"mesa", u"Contractor license", u"EC-10482", u"State of Colorado", 400},
    };
    for (const auto &k : certs)
        add(u"compliance"_s, {}, {},
            {{u"contact"_s, contact[QString::fromUtf16(k.who)]},
             {u"docType"_s, QString::fromUtf16(k.type)},
             {u"number"_s, QString::fromUtf16(k.number)},
             {u"carrier"_s, QString::fromUtf16(k.carrier)},
             {u"expires"_s, d(k.expires)}});
    add(u"lead"_s, {}, {},
        {{u"name"_s, u"Fruita brewery tenant finish"_s},
         {u"value"_s, c(420000)},
         {u"stage"_s, u"Site visit"_s},
         {u"follow"_s, d(4)},
         {u"source"_s, u"Referral"_s}});
    add(u"lead"_s, {}, {},
        {{u"name"_s, u"Palisade winery tasting room"_s},
         {u"value"_s, c(780000)},
         {u"stage"_s, u"Proposal sent"_s},
         {u"follow"_s, d(10)},
         {u"source"_s, u"Website"_s}});
}

} // namespace SampleKit

namespace Sample {

QString c(double dollars)
{
    return QString::number(Money::fromDouble(dollars * 100));
}

QString d(int days)
{
    return DateFmt::iso(DateFmt::today().addDays(days));
}

Rec create(DB &db, const SampleFiles &files)
{
    SampleKit::Maker m{db, files, {}, {}, {}};
    m.company();
    m.clubhouse();
    m.highway();
    m.residence();
    m.companyWide();
    return db.company().value_or(Rec());
}

} // namespace Sample
