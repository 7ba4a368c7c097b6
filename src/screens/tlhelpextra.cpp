// The hand-written part of the generated module pages: what a screen does
// beyond its fields.
#include "tlhelp.h"

#include "workflows/estimates.h"
#include "workflows/payappflow.h"

using namespace Qt::StringLiterals;

namespace TLHelp {

namespace {

using B = HelpBlock;

QHash<QString, QList<HelpBlock>> build()
{
    QHash<QString, QList<HelpBlock>> x;
    x.insert(
        u"hub"_s,
        {
            B::makeText(
                u"The hub is the first screen: every active job with its contract, what has been "
                u"billed and paid, cost against budget, and what happened in the field lately. Choose "
                u"a project in the top bar to see that one job alone."_s),
            B::makeControl(u"Alerts"_s, u"Expired and expiring certificates, overdue RFIs, pending change "
                                        u"orders, equipment due for service, late submittals and bids coming "
                                        u"due. Click an alert to open its screen."_s),
            B::makeTip(u"Nothing on the hub is typed in: it is worked out from the records each time it is "
                       u"shown, so it is right the moment a record changes."_s),
        });
    x.insert(
        u"documents"_s,
        {
            B::makeText(
                u"Letters, scopes of work, subcontracts and notices, written in the app and kept with "
                u"the project. There is no Save button: the text is kept as you type."_s),
            B::makeSteps({
                u"Click New, then choose Template: Business letter, Scope of work, Subcontract agreement, "
                u"Notice to proceed, Change order request, RFI or Transmittal."_s,
                u"The template fills in today's date, your company, the project, its address and the "
                u"owner."_s,
                u"Fill in the blanks and write the rest. Use the toolbar for bold, headings, bullets, "
                u"alignment and red text; paste pictures straight in."_s,
            }),
            B::makeText(u"Choosing a template for a document that already has text first asks \"Replace this "
                        u"document's text with the template?\"."_s),
            B::makeControl(u"Export PDF"_s, u"Saves the document as a PDF, named after its title."_s),
            B::makeControl(u"Export Word (.docx)"_s, u"Saves a Word file that Word and LibreOffice open, "
                                                     u"for a client or lawyer who wants to edit it."_s),
            B::makeText(u"Attach File… stores any file (contract, permit, photo) with the document. Once a "
                        u"file is attached, Open shows it in its own program and Replace File… swaps it."_s),
            B::makeTip(u"Templates are starting points, not legal advice: have contracts reviewed by an "
                       u"attorney licensed in your state."_s),
        });
    x.insert(
        u"estimates"_s,
        {
            B::makeText(
                u"Build the estimate from line items: each has a cost code, a quantity, a unit and a "
                u"unit cost. Markup and tax apply to the whole estimate; the totals box shows subtotal, "
                u"markup, tax and the proposal total."_s),
            B::makeText(QString::fromUtf16(EstimateText::kTotalsExplained)),
            B::makeControl(u"Add assembly"_s, u"Adds every line of a saved assembly, scaled by the quantity "
                                              u"you type (for example 1,200 square feet of slab)."_s),
            B::makeControl(u"Proposal PDF"_s, u"Saves the client proposal for this estimate."_s),
            B::makeControl(u"Use as Project Budget"_s,
                           u"Replaces the project budget with the estimate's costs by cost code, sets the "
                           u"contract to the estimate total and builds the schedule of values."_s),
        });
    x.insert(
        u"budget"_s,
        {
            B::makeText(u"The project's budget by cost code, with the contract: original amount, approved "
                        u"and pending change orders, and the revised contract."_s),
            B::makeText(u"Owner change orders change the budget by their cost lines (markup is revenue, not "
                        u"cost)."_s),
            B::makeTip(u"The quickest way to a budget is an estimate's Use as Project Budget button."_s),
        });
    x.insert(
        u"cos"_s,
        {
            B::makeText(
                u"Change orders come in two kinds. Approving an owner change order revises the "
                u"contract, adds its cost lines to the budget and adds a billable line to the "
                u"schedule of values. Approved sub change orders change the cost budget of their cost "
                u"codes."_s),
            B::makeBullets({
                u"Only approved change orders add schedule days."_s,
                u"The schedule-of-values line of an owner change order is named after it, \"CO-1\" and so "
                u"on. Moving it out of Approved removes that line again."_s,
                u"Pending change orders show on the contract summary as pending, and change nothing yet."_s,
            }),
        });
    x.insert(
        u"payapps"_s,
        {
            B::makeText(u"Progress billing on the AIA G702/G703 pattern. The schedule of values is the "
                        u"breakdown of the contract that every application bills against; it comes from "
                        u"an estimate or is typed in with Schedule of Values."_s),
            B::makeSteps({
                u"Choose the project, then click New Pay App. It carries over the retainage percentages "
                u"of the last application."_s,
                u"For each line, enter the work completed this period and any materials stored."_s,
                u"Check the G702 summary beside it: work to date, retainage, less previous certificates, "
                u"the current payment due."_s,
                u"Print it, and set the status as it moves: submitted, approved, paid."_s,
            }),
            B::makeControl(u"Fill This Period to 100%"_s,
                           u"Bills every line's remaining balance this period (final application)"_s),
            B::makeText(u"Approved and Paid applications are locked so certified numbers can't change by "
                        u"accident. Set one back to Draft to change amounts."_s),
            B::makeControl(u"Conditional Lien Waiver"_s, u"Makes a conditional progress waiver for this "
                                                         u"application's payment due."_s),
            B::makeControl(u"Unconditional (after paid)"_s,
                           u"Makes the waiver for once you are paid: an unconditional final waiver when "
                           u"the whole contract is billed, otherwise a conditional progress waiver (change "
                           u"its kind in the waiver if you need another)."_s),
            B::makeText(QString::fromUtf16(PayAppText::kRetainageExplained)),
            B::makeTip(u"Setting retainage to 0 on the final application releases all retainage held."_s),
        });
    x.insert(
        u"waivers"_s,
        {
            B::makeText(u"Lien waivers you give and receive, in the four usual kinds: conditional or "
                        u"unconditional, on a progress or a final payment. Use conditional waivers until the "
                        u"money has cleared the bank."_s),
            B::makeText(
                u"Some states prescribe the exact wording. When the State field names one of them "
                u"(AZ, CA, FL, GA, MI, MS, MO, NV, TX, UT, WY) the editor warns you: use the official "
                u"state form there, as this generic form may not be valid."_s),
            B::makeText(QString::fromUtf16(PayAppText::kWaiverPayAppFills)),
        });
    x.insert(
        u"jobcost"_s,
        {
            B::makeText(u"Budget against what is committed and spent, cost code by cost code."_s),
            B::makeText(
                u"Budget = revised budget. Committed = issued, received or closed purchase orders. "
                u"Actual = Costs & Bills + timecard labor (hours × cost per hour) + equipment hours × "
                u"the machine's hourly rate. Variance = budget − the larger of committed and "
                u"actual."_s),
            B::makeTip(u"A negative variance in red is a cost code that has run over: catch it before the "
                       u"next pay application."_s),
        });
    x.insert(
        u"qb"_s,
        {
            B::makeText(u"Writes IIF files for QuickBooks Desktop and CSV files for QuickBooks Online. Only "
                        u"Sent/Paid invoices and Submitted/Approved/Paid pay applications are exported. Each "
                        u"transaction balances: AR = income + tax − retainage."_s),
            B::makeControl(u"Export to Folder…"_s,
                           u"Writes invoices-and-pay-apps.iif, bills.iif, customers.csv, "
                           u"vendors.csv, payments.csv and job-cost.csv into the folder "
                           u"you choose, and shows it."_s),
        });
    x.insert(
        u"schedule"_s,
        {
            B::makeText(u"Tasks in a grid beside a bar chart. Give each task a duration in days and pick the "
                        u"tasks it must wait for; the dates are worked out for you, so changing one task "
                        u"moves every task behind it."_s),
            B::makeBullets({
                u"A fixed start means \"not earlier than\": a late predecessor can still push the task "
                u"later."_s,
                u"Lag adds days after the predecessors finish; a negative lag overlaps them."_s,
                u"Weekends are shaded and a line marks today."_s,
            }),
            B::makeControl(u"Add Task"_s, u"Adds a task at the end of the schedule."_s),
        });
    x.insert(
        u"plans"_s,
        {
            B::makeText(u"The drawing register: each sheet is a PDF, filed by number and revision."_s),
            B::makeControl(u"Add Sheets (PDF)…"_s, u"Imports one or more PDF sheets into the project."_s),
            B::makeControl(u"New Version…"_s, u"Files a revision of the selected sheet. The old one stays, "
                                              u"marked Superseded, with its markups."_s),
            B::makeControl(u"Markup tools"_s,
                           u"Pen, Box, Highlight and Note draw on the sheet in the colour "
                           u"you pick; Undo takes back the last mark. Marks are saved into "
                           u"the sheet's PDF at once, so any PDF reader shows them."_s),
        });
    x.insert(
        u"bids"_s,
        {
            B::makeText(u"Add each bidder's base bid and a plug for anything they excluded, so bids compare "
                        u"apples to apples. Leveling ranks low to high and shows the spread. Award marks the "
                        u"bid and creates an issued purchase order for that sub."_s),
        });
    x.insert(
        u"compliance"_s,
        {
            B::makeText(
                u"Insurance certificates, licenses, W-9s and bonds of your subcontractors, with their expiry "
                u"dates. An item turns orange 30 days before it expires and red once it has; both "
                u"show as alerts on the hub."_s),
            B::makeTip(u"Don't let a sub on site or pay them until a current certificate is on file."_s),
        });
    x.insert(u"unititems"_s,
             {
                 B::makeText(
                     u"Heavy-civil bid items paid by the unit: tons, cubic yards, linear feet. Log daily "
                     u"production under Quantities Installed; each item shows its bid amount, what has been "
                     u"earned to date, and a warning when installed quantities pass the bid quantity."_s),
             });
    x.insert(
        u"dailylogs"_s,
        {
            B::makeText(u"One log per day on site: weather, crew, work done, delays and visitors. Add photos "
                        u"below the fields; they print with the log."_s),
            B::makeTip(u"Write delays down the day they happen: a daily log is the record you will need for "
                       u"a claim for extra time."_s),
        });
    x.insert(
        u"timecards"_s,
        {
            B::makeText(u"Enter clock in/out as HH:MM (24-hour). Overnight shifts wrap past midnight. The "
                        u"unpaid break is subtracted. Hours × cost per hour feed job costing."_s),
        });
    x.insert(
        u"reports"_s,
        {
            B::makeText(u"Work-in-progress across every project: revised contract, billed, percent billed, "
                        u"retainage held, payments received, cost to date and projected margin. Export as "
                        u"PDF or CSV, or print a full report for one project."_s),
            B::makeHeading(u"WIP Schedule"_s),
            B::makeText(
                u"Switch to WIP Schedule at the top for the schedule your surety, bank and accountant ask "
                u"for: percentage of completion by the cost-to-cost method, with over and under billing "
                u"job by job. Projects still Bidding are left out; Complete ones form Completed "
                u"contracts, all others Contracts in progress. Each section has its totals, and the "
                u"chart shows each job's over billing above the line and under billing below it. Save "
                u"it as PDF or CSV, or print it."_s),
            B::makeControl(u"Contract"_s, u"C: the revised contract, the original plus approved owner change "
                                          u"orders."_s),
            B::makeControl(u"Estimated cost"_s,
                           u"T: the larger of the revised budget and the cost to date, since cost past the "
                           u"budget is the estimate; for a completed contract T = cost to date."_s),
            B::makeControl(u"Est. gross profit"_s,
                           u"EGP = C − T: what the job is expected to make, or lose."_s),
            B::makeControl(u"Cost to date"_s, u"CTD: actual job cost, bills plus labour plus equipment."_s),
            B::makeControl(u"Cost to complete"_s, u"T − CTD: what is still to be spent."_s),
            B::makeControl(u"% complete"_s, u"P = CTD ÷ T, held between 0% and 100%; 0% when T is zero or "
                                            u"less; 100% for a completed contract."_s),
            B::makeControl(u"Earned revenue"_s, u"E = C × P, exactly to the cent (C × CTD ÷ T, halves "
                                                u"rounded away from zero)."_s),
            B::makeControl(u"Gross profit to date"_s,
                           u"E − CTD while the job shows a profit; the whole loss EGP as soon as EGP is "
                           u"negative."_s),
            B::makeControl(u"Loss provision"_s,
                           u"(E − CTD) − EGP when EGP is negative, otherwise 0: the part "
                           u"of a foreseen loss that cost has not shown yet."_s),
            B::makeControl(u"Billed to date"_s,
                           u"B: line 4 of the latest pay application plus the subtotals of invoices that "
                           u"are not Void, gross of retainage, without tax."_s),
            B::makeControl(u"Over billings"_s, u"B − E when positive, otherwise 0: billed ahead of the work, "
                                               u"a liability."_s),
            B::makeControl(u"Under billings"_s, u"E − B when positive, otherwise 0: work done but not yet "
                                                u"billed, an asset. Never netted against other jobs."_s),
            B::makeControl(u"Backlog"_s, u"C − E: contract revenue still to be earned."_s),
            B::makeTip(u"The % complete of a total row is its cost to date ÷ its estimated cost. The CSV has "
                       u"one row per job, without totals, and plain numbers a spreadsheet reads."_s),
        });
    return x;
}

} // namespace

const QHash<QString, QList<HelpBlock>> &extra()
{
    static const QHash<QString, QList<HelpBlock>> map = build();
    return map;
}

} // namespace TLHelp
