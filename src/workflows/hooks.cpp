#include "hooks.h"

#include "calc/payapp.h"
#include "store/db.h"

using namespace Qt::StringLiterals;

namespace {

// The waiver covers a pay application: its amount and date always follow
// the application, while state and customer may have been typed by hand.
void waiverPayApp(const DB &db, Rec &waiver)
{
    const std::optional<Rec> app = db.get(waiver.f.value(u"payApp"));
    if (!app)
        return;
    const PayAppData data = payAppData(db, *app);
    waiver.f.insert(u"amount"_s, QString::number(data.calc.g702.l8));
    const Rec *project = db.find(waiver.project);
    if (!project)
        return;
    waiver.f.insert(u"through"_s, app->f.value(u"periodTo"));
    if (waiver.f.value(u"state").isEmpty())
        waiver.f.insert(u"state"_s, project->f.value(u"state"));
    if (waiver.f.value(u"customer").isEmpty())
        waiver.f.insert(u"customer"_s, db.label(project->f.value(u"client")));
}

// A rate the user entered stays; an empty or zero rate takes the worker's.
void timecardWorker(const DB &db, Rec &card)
{
    const Rec *worker = db.find(card.f.value(u"worker"));
    if (!worker)
        return;
    if (!card.f.value(u"rate").isEmpty() && card.i(u"rate") != 0)
        return;
    card.f.insert(u"rate"_s, worker->f.value(u"rate"));
}

} // namespace

namespace Hooks {

void didChange(const DB &db, Rec &record, const QString &key)
{
    if (record.kind == u"waiver" && key == u"payApp")
        waiverPayApp(db, record);
    else if (record.kind == u"timecard" && key == u"worker")
        timecardWorker(db, record);
}

} // namespace Hooks
