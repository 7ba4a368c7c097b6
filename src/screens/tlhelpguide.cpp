// The hand-written pages of the guide: what no single module shows.
#include "tlhelp.h"

#include "catalog/modules.h"
#include "catalog/roles.h"

using namespace Qt::StringLiterals;

namespace TLHelp {

namespace {

using B = HelpBlock;

HelpPage quickstart()
{
    return {
        u"quickstart"_s,
        u"Quick Start"_s,
        u"bolt.fill"_s,
        {
            B::makeText(u"Trestle runs a small construction company's back office on this one computer: "
                        u"estimates, contracts and change orders, progress billing with retainage, invoices "
                        u"and lien waivers, job cost, field logs, timecards, scheduling, plan sheets, bids "
                        u"and subcontractor compliance. Nothing goes over the internet, and there is no "
                        u"Save button: every change is written the moment you make it."_s),
            B::makeTip(u"The first time you open the app it loads a sample company (Grand Valley Builders) "
                       u"so you can explore."_s),
            B::makeHeading(u"Finding your way"_s),
            B::makeBullets({
                u"The bar at the top chooses the company, the project and the user. The project you "
                u"choose there is what every per-project screen shows."_s,
                u"The rail on the left lists the screens, grouped; it shows only those your role may open."_s,
                u"Most screens are a list of records with the chosen record's editor beside it. The search "
                u"box above narrows the list; New makes a record at once, and you fill it in place."_s,
            }),
            B::makeHeading(u"Start a job"_s),
            B::makeSteps({
                u"File ▸ New Project… (Ctrl+N): give the project a name, its type and the original contract. "
                u"Fill in its address and client afterwards under Projects."_s,
                u"Add the client and your subcontractors under Contacts."_s,
                u"Write an Estimate: add line items with cost codes, quantities and unit costs, then set "
                u"markup and tax. Proposal PDF prints the proposal for the client."_s,
                u"When the client signs, click Use as Project Budget on the estimate. It replaces the "
                u"project "
                u"budget with the estimate's costs by cost code, sets the contract to the estimate total "
                u"and builds the schedule of values."_s,
                u"Plan the work under Schedule, and issue purchase orders and subcontracts to commit "
                u"costs."_s,
            }),
            B::makeHeading(u"Run it and bill it"_s),
            B::makeSteps({
                u"In the field, keep Daily Logs, Timecards and the Punch List; photos attach to logs, punch "
                u"items and safety records."_s,
                u"When the scope changes, write a Change Order. Approving an owner change order revises "
                u"the contract and adds a line to the schedule of values."_s,
                u"Each month open Pay Apps, click New Pay App, enter this period's work for every "
                u"line and print the G702/G703. Retainage is held as you set it."_s,
                u"Record what comes in and goes out under Payments, and trade lien waivers under Lien "
                u"Waivers."_s,
                u"Watch Budget, Job Cost and the Command Hub: every figure is worked out again from the "
                u"records each time you look, so it is never out of date."_s,
            }),
            B::makeTip(u"Each screen has its own page in this guide, with every field explained. Search "
                       u"for a word you see on screen to find it."_s),
        }};
}

HelpPage keys()
{
    QList<HelpBlock> blocks{
        B::makeText(u"The menus show every shortcut beside its item. In the text of a document and in the "
                    u"fields, the usual editing keys work: Ctrl+C, Ctrl+X and Ctrl+V to copy, cut and paste, "
                    u"and Ctrl+Z to undo typing."_s),
        B::makeHeading(u"File"_s),
        B::makeKey(u"Ctrl+N"_s, u"New Project…; on a screen that lists records, a new record of that "
                                u"screen (a new estimate on Estimates, for example)"_s),
        B::makeKey(u"Ctrl+B"_s, u"Back Up Everything… (in the text of a document it makes bold instead)"_s),
        B::makeKey(u"Ctrl+Shift+P"_s, u"Page Setup… (paper and orientation, kept until you quit)"_s),
        B::makeKey(u"Ctrl+P"_s,
                   u"Print… what the screen in front shows; the print dialog also saves as PDF"_s),
        B::makeKey(u"Ctrl+Q"_s, u"Quit. Nothing needs saving: every change is already written."_s),
        B::makeHeading(u"Go"_s),
    };
    int position = 0;
    for (const ModuleDef &m : Modules::all()) {
        if (++position > 9)
            break;
        blocks << B::makeKey(u"Ctrl+"_s + QString::number(position), m.title);
    }
    blocks << B::makeText(
        u"The other screens are in the Go menu and the rail. A shortcut to a screen your role "
        u"may not open shows why instead."_s);
    blocks << B::makeHeading(u"View"_s) << B::makeKey(u"Ctrl+="_s, u"Zoom In"_s)
           << B::makeKey(u"Ctrl+−"_s, u"Zoom Out"_s) << B::makeKey(u"Ctrl+0"_s, u"Actual Size (100%)"_s);
    blocks << B::makeHeading(u"In a document"_s) << B::makeKey(u"Ctrl+B"_s, u"Bold on or off"_s)
           << B::makeKey(u"Ctrl+I"_s, u"Italic on or off"_s)
           << B::makeKey(u"Ctrl+U"_s, u"Underline on or off"_s);
    blocks << B::makeHeading(u"Help"_s) << B::makeKey(u"F1"_s, u"Opens this guide."_s);
    return {u"keys"_s, u"Keyboard Shortcuts"_s, u"keyboard"_s, blocks};
}

HelpPage companies()
{
    QStringList subs;
    for (const ModuleDef &m : Modules::all())
        if (Roles::mayOpen(u"Subcontractor"_s, m))
            subs << m.title;
    return {
        u"companies"_s,
        u"Companies, Users & Roles"_s,
        u"building.columns.fill"_s,
        {
            B::makeText(u"Each company is a separate set of books: its own projects, contacts, cost codes, "
                        u"documents and files. Every list shows the current company only, so two businesses "
                        u"run from one computer never mix."_s),
            B::makeControl(u"Company"_s, u"The first menu of the top bar switches between companies. "
                                         u"File ▸ New Company… starts a new one with a standard set of "
                                         u"cost codes and you as its owner."_s),
            B::makeControl(u"Project"_s, u"Chooses the project that per-project screens show, or all "
                                         u"projects."_s),
            B::makeControl(u"User"_s, u"Chooses who is at the keyboard. The user's role decides which "
                                      u"screens open."_s),
            B::makeHeading(u"Roles"_s),
            B::makeText(u"Add people and set their roles under Team & Roles, which only the owner can open. "
                        u"A company with no users is open to everything."_s),
            B::makeControl(u"Owner"_s, u"Every screen."_s),
            B::makeControl(u"Project Manager, Accounting"_s, u"Every screen but Team & Roles."_s),
            B::makeControl(u"Field"_s, u"Every screen that shows no money: logs, timecards, punch, safety, "
                                       u"schedule, plans and the like."_s),
            B::makeControl(u"Subcontractor"_s, u"Only these screens: "_s + subs.join(u", "_s) + u'.'),
            B::makeText(
                u"The rail leaves out what a role may not open. Reaching such a screen another way "
                u"(a shortcut or a link on the hub) shows \"Not available for your role\" instead."_s),
            B::makeTip(u"Roles keep people out of screens, not records: a subcontractor who may open Pay "
                       u"Apps sees all pay applications of the project. Use separate companies for books "
                       u"that must stay apart."_s),
        }};
}

HelpPage printing()
{
    return {
        u"printing"_s,
        u"Printing"_s,
        u"printer.fill"_s,
        {
            B::makeText(u"Every record, list and report can be printed or saved as a PDF. File ▸ Print… "
                        u"(Ctrl+P) prints what the screen in front shows; it is greyed out on a screen with "
                        u"nothing to print. Print buttons on the screens do the same for their own piece: a "
                        u"record, a list as it is filtered, a G702/G703, a report."_s),
            B::makeBullets({
                u"A record prints as a document: the company header, its fields, its line items with totals, "
                u"and its photos."_s,
                u"A list prints as a log of the rows that the search and the project filter leave."_s,
                u"Documents print from their own text, exactly as written in the editor."_s,
                u"Plan sheets print from their PDF, markups included."_s,
            }),
            B::makeHeading(u"How printouts look"_s),
            B::makeText(u"Printouts are black on white whatever finish the screen wears, on US Letter unless "
                        u"Page Setup says otherwise. Each page carries a footer with the page number as "
                        u"\"Page 2 of 5\"."_s),
            B::makeTip(
                u"Table rows are never cut in half — a row that doesn't fit moves to the next page."_s),
            B::makeControl(u"Page Setup…"_s, u"Paper size and orientation for this session (Ctrl+Shift+P). "
                                             u"It goes back to the default when you quit."_s),
            B::makeControl(u"Set Company Logo for Printouts…"_s,
                           u"In the File menu: the logo goes at the top of every document of the current "
                           u"company. PNG, JPEG, TIFF, PDF, SVG, GIF and BMP files can be used."_s),
            B::makeHeading(u"Saving a PDF"_s),
            B::makeText(
                u"The PDF button of a record saves its document straight to a PDF file. From the print "
                u"dialog, choose to print to a file as PDF. A saved PDF and a printout of the same "
                u"thing have the same pages."_s),
        }};
}

HelpPage backup()
{
    return {
        u"backup"_s,
        u"Backup, Restore & Export"_s,
        u"externaldrive.fill"_s,
        {
            B::makeText(u"Everything Trestle knows is in one folder on this computer: the database file "
                        u"\"trestle.sqlite\" and the stored files beside it (photos, documents, plan sheets, "
                        u"attachments, logos), in ~/.local/share/Fenwright/Trestle."_s),
            B::makeControl(u"Back Up Everything… (Ctrl+B)"_s,
                           u"Saves one .zip with every company, record, photo, document and plan sheet."_s),
            B::makeControl(u"Restore From Backup…"_s,
                           u"Replaces all the data on this computer with a backup, for every company at "
                           u"once, and closes the program; open it again to carry on. The data it replaced "
                           u"is kept beside the data folder, in a folder named \"Trestle (before restore "
                           u"…)\"."_s),
            B::makeControl(u"Export Company as CSV Folder…"_s,
                           u"One spreadsheet per record type for the current company."_s),
            B::makeText(u"The CSV files open in any spreadsheet. They go into a new folder named after the "
                        u"company and today's date, inside the folder you choose."_s),
            B::makeTip(u"Back up to a USB drive or another computer at the end of each week. A backup on the "
                       u"same disk is lost with the disk."_s),
            B::makeText(
                u"For QuickBooks, use the QuickBooks Export screen: it writes IIF files for QuickBooks "
                u"Desktop and CSV files for QuickBooks Online."_s),
        }};
}

HelpPage safety()
{
    return {
        u"safety"_s,
        u"Keeping Your Data Safe"_s,
        u"clock.arrow.circlepath"_s,
        {
            B::makeHeading(u"Saving"_s),
            B::makeText(u"There is no Save button: every change is written to the data file the moment you "
                        u"make it. When the disk is full, the folder is read-only, the file is locked by "
                        u"another program or the disk reports an error, the change is kept in the window and "
                        u"a red banner at the top says why and how many changes wait. Trestle keeps trying "
                        u"every few seconds and on your next change; the banner goes away once they are "
                        u"written."_s),
            B::makeControl(u"Try Again"_s,
                           u"In the banner: writes the waiting changes now, for example right "
                           u"after you freed some disk space."_s),
            B::makeText(
                u"Closing the window while changes wait asks first: try again, or save them to a file "
                u"somewhere else (another disk or a USB drive) so that nothing is lost."_s),
            B::makeText(
                u"Once the disk has room again, File \u25B8 Load Unsaved Changes\u2026 writes that file "
                u"back. A record you changed again since then keeps its newer version; Trestle says "
                u"how many records it wrote, removed and skipped."_s),
            B::makeHeading(u"One window at a time"_s),
            B::makeText(u"Trestle runs in one window per computer account. Starting it again brings the open "
                        u"window to the front. While it is open, command-line jobs that change the data "
                        u"(loading the sample, restoring) wait until it is closed; backups and exports keep "
                        u"working beside it."_s),
            B::makeHeading(u"Snapshots"_s),
            B::makeText(
                u"Once a day, when Trestle starts, it keeps a copy of all the data in the folder "
                u"\"Trestle Snapshots\" beside the data folder. The newest 14 daily snapshots and one "
                u"per month for a year are kept; older ones are removed. File \u25B8 Restore From "
                u"Snapshot\u2026 brings one back, for example after a project was deleted by "
                u"mistake."_s),
            B::makeHeading(u"Backups"_s),
            B::makeText(
                u"Snapshots live on the same disk as the data. Back Up Everything\u2026 (Ctrl+B) saves "
                u"one .zip you can keep on another disk; see Backup, Restore & Export."_s),
            B::makeHeading(u"When the data file is damaged"_s),
            B::makeText(u"If the data file cannot be read (a disk fault, a copy cut short), Trestle does not "
                        u"touch it and does not start over. It opens on a recovery screen that says what is "
                        u"wrong and offers the ways back: restore the newest good snapshot, restore from a "
                        u"backup .zip, open the data folder, or quit. A restore keeps the damaged data aside "
                        u"in a folder named \"Trestle (before restore \u2026)\"."_s),
            B::makeTip(
                u"A snapshot guards against mistakes and a damaged file; only a backup on another disk "
                u"guards against losing the computer."_s),
        }};
}

} // namespace

QList<HelpPage> guidePages()
{
    return {quickstart(), keys(), companies(), printing(), backup(), importPage(), safety()};
}

} // namespace TLHelp
