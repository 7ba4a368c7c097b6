// The modules of the Field, Project Management and Bidding groups, in table order.
#include "modulerows.h"

using namespace Qt::StringLiterals;

namespace ModuleRows {

void addField(QList<ModuleDef> &out)
{
    {
        ModuleDef m = make(u"dailylogs"_s, u"Daily Logs"_s, u"sun.max.fill"_s, u"Field"_s, u"daily_log"_s,
                           u"PS", std::nullopt, std::nullopt, u"Weather, crew, work, delays and photos."_s);
        m.columns = {u"date"_s, u"weather"_s, u"crew"_s, u"work"_s};
        m.defaults = {{u"weather"_s, u"Clear"_s}};
        m.fields = {
            {u"date"_s, u"Date"_s, FT::of(FT::date)},
            {u"weather"_s, u"Weather"_s,
             FT::makeChoice({u"Clear"_s, u"Partly cloudy"_s, u"Overcast"_s, u"Rain"_s, u"Snow"_s, u"Wind"_s,
                             u"Extreme heat"_s})},
            {u"temp"_s, u"Temp °F"_s, FT::of(FT::number)},
            {u"crew"_s, u"Crew on site"_s, FT::of(FT::number)},
            {u"equipment"_s, u"Equipment on site"_s, FT::of(FT::text)},
            {u"work"_s, u"Work performed"_s, FT::of(FT::longText)},
            {u"delays"_s, u"Delays / issues"_s, FT::of(FT::longText)},
            {u"visitors"_s, u"Visitors / inspections"_s, FT::of(FT::longText)},
            {u"safety"_s, u"Safety notes"_s, FT::of(FT::longText)},
        };
        out.append(std::move(m));
    }
    {
        ModuleDef m =
            make(u"timecards"_s, u"Timecards"_s, u"clock.fill"_s, u"Field"_s, u"timecard"_s, u"P",
                 std::nullopt, std::nullopt, u"Hours by worker and cost code (labor feeds job costing)."_s);
        m.columns = {u"date"_s, u"worker"_s, u"in"_s, u"out"_s};
        m.defaults = {{u"in"_s, u"07:00"_s}, {u"out"_s, u"15:30"_s}, {u"break"_s, u"30"_s}};
        m.fields = {
            {u"date"_s, u"Date"_s, FT::of(FT::date)},
            {u"worker"_s, u"Worker"_s, FT::makeRef(u"user"_s)},
            {u"in"_s, u"Clock in (HH:MM)"_s, FT::of(FT::time)},
            {u"out"_s, u"Clock out (HH:MM)"_s, FT::of(FT::time)},
            {u"break"_s, u"Unpaid break (min)"_s, FT::of(FT::number)},
            {u"costCode"_s, u"Cost code"_s, FT::makeRef(u"cost_code"_s)},
            {u"rate"_s, u"Cost per hour"_s, FT::of(FT::money)},
            {u"location"_s, u"Clock-in location"_s, FT::of(FT::text)},
            {u"notes"_s, u"Notes"_s, FT::of(FT::longText)},
        };
        out.append(std::move(m));
    }
    {
        ModuleDef m = make(u"punch"_s, u"Punch List"_s, u"checklist"_s, u"Field"_s, u"punch"_s, u"PS",
                           std::nullopt, std::nullopt, u"Items to finish, with photos."_s);
        m.columns = {u"title"_s, u"location"_s, u"assignee"_s, u"status"_s};
        m.defaults = {{u"status"_s, u"Open"_s}};
        m.fields = {
            {u"title"_s, u"Item"_s, FT::of(FT::text)},
            {u"location"_s, u"Location / room"_s, FT::of(FT::text)},
            {u"assignee"_s, u"Assigned to"_s, FT::makeRef(u"contact"_s)},
            {u"due"_s, u"Due"_s, FT::of(FT::date)},
            {u"status"_s, u"Status"_s, FT::makeChoice({u"Open"_s, u"Ready for review"_s, u"Closed"_s})},
            {u"notes"_s, u"Notes"_s, FT::of(FT::longText)},
        };
        out.append(std::move(m));
    }
    {
        ModuleDef m = make(u"safety"_s, u"Safety"_s, u"cross.case.fill"_s, u"Field"_s, u"safety"_s, u"PS",
                           std::nullopt, std::nullopt, u"Toolbox talks, inspections, incidents."_s);
        m.columns = {u"date"_s, u"type"_s, u"topic"_s, u"severity"_s};
        m.defaults = {{u"type"_s, u"Toolbox talk"_s}, {u"severity"_s, u"—"_s}};
        m.fields = {
            {u"date"_s, u"Date"_s, FT::of(FT::date)},
            {u"type"_s, u"Type"_s,
             FT::makeChoice({u"Toolbox talk"_s, u"Inspection"_s, u"Incident"_s, u"Near miss"_s})},
            {u"topic"_s, u"Topic"_s, FT::of(FT::text)},
            {u"attendees"_s, u"Attendees"_s, FT::of(FT::longText)},
            {u"severity"_s, u"Severity"_s,
             FT::makeChoice({u"—"_s, u"First aid"_s, u"Recordable"_s, u"Lost time"_s})},
            {u"actions"_s, u"Corrective actions"_s, FT::of(FT::longText)},
        };
        out.append(std::move(m));
    }
    {
        ModuleDef m =
            make(u"equipment"_s, u"Equipment"_s, u"wrench.and.screwdriver.fill"_s, u"Field"_s, u"equipment"_s,
                 u"", std::nullopt, std::nullopt, u"Fleet, rates and maintenance."_s);
        m.columns = {u"unitNo"_s, u"name"_s, u"type"_s, u"service"_s};
        m.fields = {
            {u"name"_s, u"Name"_s, FT::of(FT::text)},
            {u"unitNo"_s, u"Unit #"_s, FT::of(FT::text)},
            {u"type"_s, u"Type"_s, FT::of(FT::text)},
            {u"rate"_s, u"Cost per hour"_s, FT::of(FT::money)},
            {u"meter"_s, u"Hour meter"_s, FT::of(FT::number)},
            {u"service"_s, u"Next service due"_s, FT::of(FT::date)},
            {u"notes"_s, u"Maintenance notes"_s, FT::of(FT::longText)},
        };
        out.append(std::move(m));
    }
    {
        ModuleDef m = make(u"equiplogs"_s, u"Equipment Hours"_s, u"gauge.open.with.lines.needle.33percent"_s,
                           u"Field"_s, u"equip_log"_s, u"P", std::nullopt, std::nullopt,
                           u"Hours by machine (feeds job costing)."_s);
        m.columns = {u"date"_s, u"equipment"_s, u"hours"_s, u"operator"_s};
        m.fields = {
            {u"date"_s, u"Date"_s, FT::of(FT::date)},
            {u"equipment"_s, u"Equipment"_s, FT::makeRef(u"equipment"_s)},
            {u"hours"_s, u"Hours"_s, FT::of(FT::number)},
            {u"operator"_s, u"Operator"_s, FT::makeRef(u"user"_s)},
            {u"costCode"_s, u"Cost code"_s, FT::makeRef(u"cost_code"_s)},
            {u"notes"_s, u"Notes"_s, FT::of(FT::text)},
        };
        out.append(std::move(m));
    }
    {
        ModuleDef m = make(u"schedule"_s, u"Schedule (Gantt)"_s, u"calendar.day.timeline.left"_s,
                           u"Project Management"_s, u"task"_s, u"PS", u"schedule"_s, std::nullopt,
                           u"Tasks, durations and finish-to-start dependencies."_s);
        out.append(std::move(m));
    }
    {
        ModuleDef m =
            make(u"rfis"_s, u"RFIs"_s, u"questionmark.bubble.fill"_s, u"Project Management"_s, u"rfi"_s,
                 u"PNS", std::nullopt, std::nullopt, u"Questions to the design team, tracked to answer."_s);
        m.columns = {u"number"_s, u"subject"_s, u"due"_s, u"status"_s};
        m.defaults = {{u"status"_s, u"Open"_s}};
        m.fields = {
            {u"subject"_s, u"Subject"_s, FT::of(FT::text)},
            {u"to"_s, u"To"_s, FT::makeRef(u"contact"_s)},
            {u"due"_s, u"Response due"_s, FT::of(FT::date)},
            {u"status"_s, u"Status"_s, FT::makeChoice({u"Open"_s, u"Answered"_s, u"Closed"_s})},
            {u"question"_s, u"Question"_s, FT::of(FT::longText)},
            {u"answer"_s, u"Answer"_s, FT::of(FT::longText)},
            {u"costImpact"_s, u"Cost impact?"_s, FT::of(FT::boolean)},
            {u"schedImpact"_s, u"Schedule impact?"_s, FT::of(FT::boolean)},
        };
        out.append(std::move(m));
    }
    {
        ModuleDef m = make(u"submittals"_s, u"Submittals"_s, u"tray.full.fill"_s, u"Project Management"_s,
                           u"submittal"_s, u"PNS", std::nullopt, std::nullopt,
                           u"Shop drawings, product data, samples."_s);
        m.columns = {u"number"_s, u"spec"_s, u"title"_s, u"status"_s};
        m.defaults = {{u"status"_s, u"Pending"_s}};
        m.fields = {
            {u"title"_s, u"Title"_s, FT::of(FT::text)},
            {u"spec"_s, u"Spec section"_s, FT::of(FT::text)},
            {u"sub"_s, u"From"_s, FT::makeRef(u"contact"_s)},
            {u"due"_s, u"Due"_s, FT::of(FT::date)},
            {u"status"_s, u"Status"_s,
             FT::makeChoice({u"Pending"_s, u"Submitted"_s, u"Approved"_s, u"Approved as noted"_s,
                             u"Revise & resubmit"_s, u"Rejected"_s})},
            {u"notes"_s, u"Notes"_s, FT::of(FT::longText)},
        };
        out.append(std::move(m));
    }
    {
        ModuleDef m =
            make(u"plans"_s, u"Plan Sheets"_s, u"map.fill"_s, u"Project Management"_s, u"plan_sheet"_s, u"PS",
                 u"plans"_s, std::nullopt, u"PDF drawings with versions and markups."_s);
        out.append(std::move(m));
    }
    {
        ModuleDef m =
            make(u"meetings"_s, u"Meeting Minutes"_s, u"person.2.wave.2.fill"_s, u"Project Management"_s,
                 u"meeting"_s, u"PS", std::nullopt, std::nullopt, u"Agenda, discussion and action items."_s);
        m.columns = {u"date"_s, u"title"_s, u"next"_s};
        m.fields = {
            {u"date"_s, u"Date"_s, FT::of(FT::date)},
            {u"title"_s, u"Meeting"_s, FT::of(FT::text)},
            {u"attendees"_s, u"Attendees"_s, FT::of(FT::longText)},
            {u"notes"_s, u"Discussion"_s, FT::of(FT::longText)},
            {u"actions"_s, u"Action items (who / what / when)"_s, FT::of(FT::longText)},
            {u"next"_s, u"Next meeting"_s, FT::of(FT::date)},
        };
        out.append(std::move(m));
    }
    {
        ModuleDef m = make(u"closeout"_s, u"Closeout & Warranty"_s, u"checkmark.seal.fill"_s,
                           u"Project Management"_s, u"warranty"_s, u"P", std::nullopt, std::nullopt,
                           u"Turnover documents and warranty tracking."_s);
        m.columns = {u"item"_s, u"type"_s, u"expires"_s, u"status"_s};
        m.defaults = {{u"status"_s, u"Needed"_s}};
        m.fields = {
            {u"item"_s, u"Item / system"_s, FT::of(FT::text)},
            {u"type"_s, u"Type"_s,
             FT::makeChoice({u"O&M manual"_s, u"As-built"_s, u"Warranty"_s, u"Attic stock"_s, u"Training"_s,
                             u"Warranty claim"_s})},
            {u"from"_s, u"From"_s, FT::makeRef(u"contact"_s)},
            {u"expires"_s, u"Warranty expires"_s, FT::of(FT::date)},
            {u"status"_s, u"Status"_s, FT::makeChoice({u"Needed"_s, u"Received"_s, u"Turned over"_s})},
            {u"notes"_s, u"Notes"_s, FT::of(FT::longText)},
        };
        out.append(std::move(m));
    }
    {
        ModuleDef m = make(u"bids"_s, u"Bid Packages"_s, u"envelope.badge.fill"_s,
                           u"Bidding, Civil & Reports"_s, u"bid_package"_s, u"PM", std::nullopt, u"bid"_s,
                           u"Invite subs, record bids, level and compare."_s);
        m.columns = {u"title"_s, u"trade"_s, u"due"_s, u"status"_s};
        m.defaults = {{u"status"_s, u"Open"_s}};
        m.fields = {
            {u"title"_s, u"Package"_s, FT::of(FT::text)},
            {u"trade"_s, u"Trade"_s, FT::of(FT::text)},
            {u"due"_s, u"Bids due"_s, FT::of(FT::date)},
            {u"status"_s, u"Status"_s,
             FT::makeChoice({u"Open"_s, u"Leveling"_s, u"Awarded"_s, u"Cancelled"_s})},
            {u"scope"_s, u"Scope / inclusions"_s, FT::of(FT::longText)},
        };
        m.lineFields = {
            {u"bidder"_s, u"Bidder"_s, FT::makeRef(u"contact"_s)},
            {u"base"_s, u"Base bid"_s, FT::of(FT::money)},
            {u"plugs"_s, u"Plugs for exclusions"_s, FT::of(FT::money)},
            {u"notes"_s, u"Exclusions / notes"_s, FT::of(FT::text)},
        };
        out.append(std::move(m));
    }
    {
        ModuleDef m = make(u"compliance"_s, u"Sub Compliance"_s, u"shield.lefthalf.filled"_s,
                           u"Bidding, Civil & Reports"_s, u"compliance"_s, u"S", std::nullopt, std::nullopt,
                           u"Insurance certificates and licenses with expiry alerts."_s);
        m.columns = {u"contact"_s, u"docType"_s, u"expires"_s};
        m.defaults = {{u"docType"_s, u"General liability COI"_s}};
        m.fields = {
            {u"contact"_s, u"Subcontractor"_s, FT::makeRef(u"contact"_s)},
            {u"docType"_s, u"Document"_s,
             FT::makeChoice({u"General liability COI"_s, u"Auto COI"_s, u"Workers' comp COI"_s,
                             u"Umbrella COI"_s, u"Contractor license"_s, u"Business license"_s, u"W-9"_s,
                             u"Bond"_s})},
            {u"number"_s, u"Policy / license #"_s, FT::of(FT::text)},
            {u"carrier"_s, u"Carrier / issuer"_s, FT::of(FT::text)},
            {u"expires"_s, u"Expires"_s, FT::of(FT::date)},
            {u"notes"_s, u"Notes"_s, FT::of(FT::longText)},
        };
        out.append(std::move(m));
    }
    {
        ModuleDef m = make(u"unititems"_s, u"Unit-Price Items"_s, u"ruler.fill"_s,
                           u"Bidding, Civil & Reports"_s, u"unit_item"_s, u"PM", std::nullopt, std::nullopt,
                           u"Heavy-civil bid items with quantities installed."_s);
        m.columns = {u"item"_s, u"description"_s, u"unit"_s, u"bidQty"_s};
        m.fields = {
            {u"item"_s, u"Bid item #"_s, FT::of(FT::text)},
            {u"description"_s, u"Description"_s, FT::of(FT::text)},
            {u"unit"_s, u"Unit (TON, CY, LF, SY, EA)"_s, FT::of(FT::text)},
            {u"bidQty"_s, u"Bid quantity"_s, FT::of(FT::number)},
            {u"unitPrice"_s, u"Unit price"_s, FT::of(FT::money)},
        };
        out.append(std::move(m));
    }
    {
        ModuleDef m =
            make(u"qtylogs"_s, u"Quantities Installed"_s, u"chart.bar.fill"_s, u"Bidding, Civil & Reports"_s,
                 u"qty_log"_s, u"P", std::nullopt, std::nullopt, u"Daily production (tons, CY, LF …)."_s);
        m.columns = {u"date"_s, u"item"_s, u"qty"_s, u"station"_s};
        m.fields = {
            {u"date"_s, u"Date"_s, FT::of(FT::date)},
            {u"item"_s, u"Bid item"_s, FT::makeRefIn(u"unit_item"_s)},
            {u"qty"_s, u"Quantity"_s, FT::of(FT::number)},
            {u"station"_s, u"Station / location"_s, FT::of(FT::text)},
            {u"crew"_s, u"Crew / foreman"_s, FT::of(FT::text)},
            {u"notes"_s, u"Notes"_s, FT::of(FT::text)},
        };
        out.append(std::move(m));
    }
    {
        ModuleDef m = make(u"tickets"_s, u"Truck & Material Tickets"_s, u"truck.box.fill"_s,
                           u"Bidding, Civil & Reports"_s, u"ticket"_s, u"P", std::nullopt, std::nullopt,
                           u"Haul and delivery tickets."_s);
        m.columns = {u"date"_s, u"ticketType"_s, u"number"_s, u"material"_s, u"qty"_s};
        m.defaults = {{u"ticketType"_s, u"Material"_s}, {u"unit"_s, u"TON"_s}};
        m.fields = {
            {u"ticketType"_s, u"Type"_s, FT::makeChoice({u"Truck"_s, u"Material"_s})},
            {u"number"_s, u"Ticket #"_s, FT::of(FT::text)},
            {u"date"_s, u"Date"_s, FT::of(FT::date)},
            {u"vendor"_s, u"Vendor / hauler"_s, FT::makeRef(u"contact"_s)},
            {u"material"_s, u"Material"_s, FT::of(FT::text)},
            {u"qty"_s, u"Quantity"_s, FT::of(FT::number)},
            {u"unit"_s, u"Unit"_s, FT::of(FT::text)},
            {u"truck"_s, u"Truck #"_s, FT::of(FT::text)},
            {u"unitCost"_s, u"Unit cost"_s, FT::of(FT::money)},
            {u"item"_s, u"Bid item"_s, FT::makeRefIn(u"unit_item"_s)},
        };
        out.append(std::move(m));
    }
    {
        ModuleDef m =
            make(u"reports"_s, u"Reports"_s, u"chart.pie.fill"_s, u"Bidding, Civil & Reports"_s, u""_s, u"M",
                 u"reports"_s, std::nullopt, u"Company dashboards and printable reports."_s);
        out.append(std::move(m));
    }
}

} // namespace ModuleRows
