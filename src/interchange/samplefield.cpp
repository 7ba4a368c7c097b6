// The clubhouse's purchases, costs, field records, paperwork and schedule.
#include "samplekit.h"

using namespace Qt::StringLiterals;
using Sample::c;
using Sample::d;

namespace SampleKit {

void Maker::clubhouseField(const Rec &project)
{
    const QString p = project.id;
    const Rec po = add(u"po"_s, p, {},
                       {{u"number"_s, u"2"_s},
                        {u"vendor"_s, contact[u"lumber"_s]},
                        {u"status"_s, u"Issued"_s},
                        {u"date"_s, d(-100)},
                        {u"costCode"_s, code(u"06-000"_s)},
                        {u"deliver"_s, d(-90)}});
    add(u"po_line"_s, p, po.id,
        {{u"description"_s, u"Framing lumber package"_s},
         {u"costCode"_s, code(u"06-000"_s)},
         {u"qty"_s, u"1.0"_s},
         {u"unit"_s, u"LS"_s},
         {u"unitCost"_s, c(38500)},
         {u"sort"_s, u"1"_s}});
    add(u"po_line"_s, p, po.id,
        {{u"description"_s, u"Engineered trusses"_s},
         {u"costCode"_s, code(u"06-000"_s)},
         {u"qty"_s, u"28.0"_s},
         {u"unit"_s, u"EA"_s},
         {u"unitCost"_s, c(672.5)},
         {u"sort"_s, u"2"_s}});

    const struct
    {
        const char16_t *memo, *vendor, *code, *type, *ref;
        double amount;
        int age;
    } costs[] = {
        {u"Framing lumber package", u"lumber", u"06-000", u"Material", u"VL-20931", 36240.55, 95},
        {u"Engineered trusses", u"lumber", u"06-000", u"Material", u"VL-21107", 18830, 80},
        {u"Footings and slab", u"concrete", u"03-000", u"Subcontract", u"RC-1184", 41200, 70},
        {u"Dumpster swap", u"haul", u"", u"Material", u"CRH-3310", 685, 12},
    };
    for (const auto &x : costs)
        add(u"expense"_s, p, {},
            {{u"date"_s, d(-x.age)},
             {u"vendor"_s, contact[QString::fromUtf16(x.vendor)]},
             {u"costCode"_s, QStringView(x.code).isEmpty() ? QString() : code(QString::fromUtf16(x.code))},
             {u"amount"_s, c(x.amount)},
             {u"type"_s, QString::fromUtf16(x.type)},
             {u"ref"_s, QString::fromUtf16(x.ref)},
             {u"memo"_s, QString::fromUtf16(x.memo)}});

    for (int day = -10; day <= -6; ++day)
        for (const QString &who : {u"lead"_s, u"hand"_s})
            add(u"timecard"_s, p, {},
                {{u"date"_s, d(day)},
                 {u"worker"_s, user[who]},
                 {u"in"_s, u"07:00"_s},
                 {u"out"_s, u"15:30"_s},
                 {u"break"_s, u"30"_s},
                 {u"costCode"_s, code(u"06-000"_s)},
                 {u"rate"_s, who == u"lead" ? u"4400"_s : u"3600"_s}});
    add(u"equip_log"_s, p, {},
        {{u"date"_s, d(-100)},
         {u"equipment"_s, equip[u"ex"_s]},
         {u"hours"_s, u"6.5"_s},
         {u"operator"_s, user[u"hand"_s]},
         {u"costCode"_s, code(u"31-000"_s)},
         {u"notes"_s, u"Footing excavation, north wing"_s}});

    add(u"daily_log"_s, p, {},
        {{u"date"_s, d(-2)},
         {u"weather"_s, u"Clear"_s},
         {u"temp"_s, u"64"_s},
         {u"crew"_s, u"9"_s},
         {u"equipment"_s, u"Telehandler"_s},
         {u"work"_s, u"Roof sheathing complete on east wing. Window rough openings verified."_s},
         {u"delays"_s, u"None."_s}});
    add(u"punch"_s, p, {},
        {{u"title"_s, u"Touch-up paint at lobby corner"_s},
         {u"location"_s, u"Lobby"_s},
         {u"due"_s, d(10)},
         {u"status"_s, u"Open"_s}});
    add(u"punch"_s, p, {},
        {{u"title"_s, u"Missing cover plate"_s},
         {u"location"_s, u"Kitchen"_s},
         {u"assignee"_s, contact[u"mesa"_s]},
         {u"due"_s, d(10)},
         {u"status"_s, u"Open"_s}});
    add(u"safety"_s, p, {},
        {{u"date"_s, d(-7)},
         {u"type"_s, u"Toolbox talk"_s},
         {u"topic"_s, u"Ladder safety and three points of contact"_s},
         {u"attendees"_s, u"Rosa Tafoya, Eli Brandt, framing crew"_s},
         {u"severity"_s, u"—"_s}});
    add(u"safety"_s, p, {},
        {{u"date"_s, d(-16)},
         {u"type"_s, u"Incident"_s},
         {u"topic"_s, u"Cut to left hand while trimming sheathing"_s},
         {u"severity"_s, u"First aid"_s},
         {u"actions"_s, u"Cleaned and bandaged on site. Reviewed blade guards with the crew."_s}});

    add(u"rfi"_s, p, {},
        {{u"number"_s, u"1"_s},
         {u"subject"_s, u"Beam size at great room"_s},
         {u"to"_s, contact[u"arch"_s]},
         {u"due"_s, d(-3)},
         {u"status"_s, u"Open"_s},
         {u"question"_s, u"S-201 shows a 5-1/8 x 18 glulam; A-301 shows 5-1/8 x 21. Which governs?"_s},
         {u"costImpact"_s, u"false"_s},
         {u"schedImpact"_s, u"true"_s}});
    add(u"rfi"_s, p, {},
        {{u"number"_s, u"2"_s},
         {u"subject"_s, u"Broom or exposed aggregate?"_s},
         {u"to"_s, contact[u"arch"_s]},
         {u"due"_s, d(-20)},
         {u"status"_s, u"Answered"_s},
         {u"question"_s, u"Patio slab finish is not called out. Broom or exposed aggregate?"_s},
         {u"answer"_s, u"Broom finish, perpendicular to the slope."_s},
         {u"costImpact"_s, u"false"_s},
         {u"schedImpact"_s, u"false"_s}});
    add(u"submittal"_s, p, {},
        {{u"number"_s, u"1"_s},
         {u"title"_s, u"Aluminum windows"_s},
         {u"spec"_s, u"08 51 13"_s},
         {u"sub"_s, contact[u"lumber"_s]},
         {u"due"_s, d(-30)},
         {u"status"_s, u"Approved"_s}});
    add(u"submittal"_s, p, {},
        {{u"number"_s, u"2"_s},
         {u"title"_s, u"Interior lighting"_s},
         {u"spec"_s, u"26 51 00"_s},
         {u"sub"_s, contact[u"mesa"_s]},
         {u"due"_s, d(-2)},
         {u"status"_s, u"Submitted"_s}});
    add(u"meeting"_s, p, {},
        {{u"date"_s, d(-6)},
         {u"title"_s, u"OAC meeting #4"_s},
         {u"attendees"_s, u"Marcus Lind, Rosa Tafoya, Studio 81 Architects, Monument Ridge HOA"_s},
         {u"notes"_s, u"Schedule on track. Patio CO approved. Lighting upgrade pricing presented."_s},
         {u"actions"_s, u"Studio 81 — answer RFI #1 — by "_s + d(1)},
         {u"next"_s, d(1)}});

    // The schedule: each task follows the ones it names.
    const struct
    {
        const char16_t *key, *name;
        int duration, progress;
        const char16_t *preds;
    } tasks[] = {
        {u"mob", u"Mobilize & layout", 5, 100, u""},
        {u"ftg", u"Excavation & footings", 15, 100, u"mob"},
        {u"slab", u"Slab on grade", 8, 100, u"ftg"},
        {u"frame", u"Framing", 30, 85, u"slab"},
        {u"roof", u"Roofing", 12, 40, u"frame"},
        {u"mep", u"MEP rough-in", 25, 30, u"frame"},
        {u"win", u"Windows & doors", 10, 20, u"roof"},
        {u"patio", u"Covered patio", 10, 0, u"slab"},
        {u"fin", u"Drywall & finishes", 35, 0, u"mep,win"},
        {u"punch", u"Punch & closeout", 10, 0, u"fin,patio"},
    };
    QHash<QString, QString> ids;
    int sort = 0;
    for (const auto &t : tasks) {
        QStringList preds;
        for (const QString &k : QString::fromUtf16(t.preds).split(u',', Qt::SkipEmptyParts))
            preds.append(ids.value(k));
        Fields f{{u"name"_s, QString::fromUtf16(t.name)},
                 {u"duration"_s, QString::number(t.duration)},
                 {u"preds"_s, preds.join(u',')},
                 {u"progress"_s, QString::number(t.progress)},
                 {u"sort"_s, QString::number(++sort)}};
        if (preds.isEmpty())
            f.insert(u"start"_s, d(-120));
        ids[QString::fromUtf16(t.key)] = add(u"task"_s, p, {}, f).id;
    }
}

} // namespace SampleKit
