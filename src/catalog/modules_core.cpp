// The modules of the Command and Core groups, in table order.
#include "modulerows.h"

using namespace Qt::StringLiterals;

namespace ModuleRows {

void addCore(QList<ModuleDef> &out)
{
    {
        ModuleDef m =
            make(u"hub"_s, u"Command Hub"_s, u"gauge.with.dots.needle.67percent"_s, u"Command"_s, u""_s, u"S",
                 u"hub"_s, std::nullopt, u"Every job at a glance: money, field, alerts."_s);
        out.append(std::move(m));
    }
    {
        ModuleDef m = make(u"projects"_s, u"Projects"_s, u"building.2.fill"_s, u"Core"_s, u"project"_s, u"S",
                           std::nullopt, std::nullopt, u"Residential, commercial and heavy civil jobs."_s);
        m.columns = {u"number"_s, u"name"_s, u"type"_s, u"status"_s, u"contract"_s};
        m.defaults = {{u"type"_s, u"Commercial"_s}, {u"status"_s, u"Active"_s}, {u"retainage"_s, u"10"_s}};
        m.fields = {
            {u"name"_s, u"Project name"_s, FT::of(FT::text)},
            {u"number"_s, u"Job number"_s, FT::of(FT::text)},
            {u"type"_s, u"Type"_s, FT::makeChoice({u"Residential"_s, u"Commercial"_s, u"Heavy Civil"_s})},
            {u"status"_s, u"Status"_s,
             FT::makeChoice({u"Bidding"_s, u"Pre-construction"_s, u"Active"_s, u"On hold"_s, u"Closeout"_s,
                             u"Complete"_s})},
            {u"client"_s, u"Client / owner"_s, FT::makeRef(u"contact"_s)},
            {u"address"_s, u"Job address"_s, FT::of(FT::text)},
            {u"state"_s, u"State (2 letters)"_s, FT::of(FT::text)},
            {u"contract"_s, u"Original contract"_s, FT::of(FT::money)},
            {u"retainage"_s, u"Retainage %"_s, FT::of(FT::percent)},
            {u"start"_s, u"Start date"_s, FT::of(FT::date)},
            {u"end"_s, u"Finish date"_s, FT::of(FT::date)},
            {u"notes"_s, u"Notes"_s, FT::of(FT::longText)},
        };
        out.append(std::move(m));
    }
    {
        ModuleDef m =
            make(u"contacts"_s, u"Contacts"_s, u"person.crop.rectangle.stack.fill"_s, u"Core"_s, u"contact"_s,
                 u"", std::nullopt, std::nullopt, u"Clients, subs, vendors, architects, inspectors."_s);
        m.columns = {u"name"_s, u"company"_s, u"type"_s, u"trade"_s, u"phone"_s};
        m.defaults = {{u"type"_s, u"Subcontractor"_s}};
        m.fields = {
            {u"name"_s, u"Name"_s, FT::of(FT::text)},
            {u"company"_s, u"Company"_s, FT::of(FT::text)},
            {u"type"_s, u"Type"_s,
             FT::makeChoice({u"Client / Owner"_s, u"Subcontractor"_s, u"Vendor / Supplier"_s, u"Architect"_s,
                             u"Engineer"_s, u"Inspector"_s, u"Other"_s})},
            {u"trade"_s, u"Trade"_s, FT::of(FT::text)},
            {u"phone"_s, u"Phone"_s, FT::of(FT::text)},
            {u"email"_s, u"Email"_s, FT::of(FT::text)},
            {u"address"_s, u"Address"_s, FT::of(FT::text)},
            {u"notes"_s, u"Notes"_s, FT::of(FT::longText)},
        };
        out.append(std::move(m));
    }
    {
        ModuleDef m = make(u"team"_s, u"Team & Roles"_s, u"person.3.fill"_s, u"Core"_s, u"user"_s, u"O",
                           std::nullopt, std::nullopt, u"Users and what each role may open."_s);
        m.columns = {u"name"_s, u"role"_s, u"email"_s, u"rate"_s};
        m.defaults = {{u"role"_s, u"Field"_s}};
        m.fields = {
            {u"name"_s, u"Name"_s, FT::of(FT::text)},
            {u"email"_s, u"Email"_s, FT::of(FT::text)},
            {u"role"_s, u"Role"_s,
             FT::makeChoice(
                 {u"Owner"_s, u"Project Manager"_s, u"Accounting"_s, u"Field"_s, u"Subcontractor"_s})},
            {u"rate"_s, u"Labor cost per hour"_s, FT::of(FT::money)},
            {u"phone"_s, u"Phone"_s, FT::of(FT::text)},
            // A subcontractor's own firm: on a company server its login sees only that firm's work.
            {u"firm"_s, u"Subcontractor firm"_s, FT::makeRef(u"contact"_s)},
        };
        out.append(std::move(m));
    }
    {
        ModuleDef m =
            make(u"costcodes"_s, u"Cost Codes"_s, u"number.square.fill"_s, u"Core"_s, u"cost_code"_s, u"M",
                 std::nullopt, std::nullopt, u"CSI-style codes used by budgets and costs."_s);
        m.columns = {u"code"_s, u"name"_s};
        m.fields = {
            {u"code"_s, u"Code"_s, FT::of(FT::text)},
            {u"name"_s, u"Name"_s, FT::of(FT::text)},
        };
        out.append(std::move(m));
    }
    {
        ModuleDef m = make(u"documents"_s, u"Documents"_s, u"doc.richtext.fill"_s, u"Core"_s, u"document"_s,
                           u"PS", std::nullopt, std::nullopt,
                           u"Rich-text editor with templates, PDF export, and stored files."_s);
        m.columns = {u"title"_s, u"category"_s};
        m.defaults = {{u"category"_s, u"Letter"_s}};
        m.fields = {
            {u"title"_s, u"Title"_s, FT::of(FT::text)},
            {u"category"_s, u"Category"_s,
             FT::makeChoice(
                 {u"Letter"_s, u"Contract"_s, u"Scope"_s, u"Notice"_s, u"Form"_s, u"Report"_s, u"Other"_s})},
            {u"notes"_s, u"Notes"_s, FT::of(FT::longText)},
        };
        out.append(std::move(m));
    }
}

} // namespace ModuleRows
