// The guide's page on bringing a company in: QuickBooks lists, spreadsheets,
// the CSV export brought back, and open jobs with what was billed on them.
#include "tlhelp.h"

using namespace Qt::StringLiterals;

namespace TLHelp {

HelpPage importPage()
{
    using B = HelpBlock;
    return {
        u"importing"_s,
        u"Importing Lists & Open Jobs"_s,
        u"tray.full.fill"_s,
        {
            B::makeText(
                u"Start with the names you already have. File ▸ Import… reads your clients, "
                u"subcontractors, vendors, employees, cost codes, equipment and projects from QuickBooks "
                u"list files, spreadsheets and CSV files, shows what it found, and writes nothing until "
                u"you press Import. You can also drag a file or a folder onto the window."_s),
            B::makeHeading(u"From QuickBooks Desktop"_s),
            B::makeSteps({
                u"In QuickBooks, choose File ▸ Utilities ▸ Export ▸ Lists to IIF Files, tick the Customer, "
                u"Vendor, Employee, Other Names and Item lists, and save the .iif file."_s,
                u"In Trestle, choose File ▸ Import… and open that file."_s,
                u"Check the preview: customers become clients (a \u201CCustomer:Job\u201D becomes a project "
                u"of that client), vendors become subcontractors or vendors by their vendor type or 1099 "
                u"flag, employees become team members, and items whose name starts with a code such as "
                u"\u201C09-250\u201D become cost codes. Accounts, transactions and other lists are counted "
                u"and left out."_s,
                u"Press Import."_s,
            }),
            B::makeHeading(u"From a spreadsheet"_s),
            B::makeText(
                u"Save the sheet as CSV (comma, semicolon or tab separated) or keep it as .xlsx; the "
                u"first row must name the columns. The file's name says which list it fills "
                u"(\u201Cclients.csv\u201D, \u201Csubcontractors.csv\u201D, \u201Ccost codes.csv\u201D"
                u"...); change it in the preview under Import as. Each column is matched to a field by "
                u"its name, whatever its case and spacing, and you can choose another field or leave "
                u"the column out."_s),
            B::makeBullets({
                u"Amounts may carry a dollar sign and thousands separators: $1,234.56."_s,
                u"Dates may be written 1/5/2026, 01/05/26 or 2026-01-05 (month first)."_s,
                u"Choices, such as a contact's type, must be one of the choices the field offers."_s,
            }),
            B::makeHeading(u"Bad rows"_s),
            B::makeText(
                u"Every row is checked as the record editor checks typing. A bad row is shown with its "
                u"line and the column at fault, and by default nothing of the file is written. Fix the "
                u"file and import it again, or tick \u201CImport the good rows\u201D: the bad ones are "
                u"saved beside your file as \u201C<name> - rows to fix.csv\u201D."_s),
            B::makeHeading(u"Importing again"_s),
            B::makeText(u"Import the same list as often as you like. A row that matches a record (by its id, "
                        u"its cost-code number, or its name within its list) updates it, and only new names "
                        u"are added, never a second copy. A folder saved with File ▸ Export Company as CSV "
                        u"Folder… and edited in a spreadsheet comes back the same way (File ▸ Import ▸ CSV "
                        u"Export Folder…): rows keep their id, rows without one are added."_s),
            B::makeHeading(u"Open jobs"_s),
            B::makeText(
                u"A job that is half billed comes in with what was billed on it before, so its next "
                u"pay application carries on exactly: previous applications, retainage and all. "
                u"File ▸ Import ▸ Save Open-Jobs Template… saves the form to fill in: one row per job "
                u"with its contract amount, billed to date and retainage held, and, if you bill by a "
                u"schedule of values, one row per line below it (its item, description, scheduled value "
                u"and billed to date). Trestle makes the project, its schedule of values and an opening "
                u"application marked Paid."_s),
            B::makeHeading(u"Taking it back"_s),
            B::makeText(
                u"A snapshot is taken before every import. Edit ▸ Undo Import takes the last import back "
                u"as a whole, as long as nothing it wrote has changed since."_s),
            B::makeTip(u"From a terminal: trestle import <file or folder> [--new-company <name>] [--dry-run] "
                       u"[--skip-bad-rows]. --dry-run prints what would happen and writes nothing."_s),
        }};
}

} // namespace TLHelp
