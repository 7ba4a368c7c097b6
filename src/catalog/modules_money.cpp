// The modules of the Sales & Money group, in table order.
#include "modulerows.h"

using namespace Qt::StringLiterals;

namespace ModuleRows {

void addMoney(QList<ModuleDef> &out)
{
    {
        ModuleDef m = make(u"leads"_s, u"Leads (CRM)"_s, u"person.crop.circle.badge.plus"_s,
                           u"Sales & Money"_s, u"lead"_s, u"M", std::nullopt, std::nullopt,
                           u"Opportunities before they become projects."_s);
        m.columns = {u"name"_s, u"stage"_s, u"value"_s, u"follow"_s};
        m.defaults = {{u"stage"_s, u"New"_s}};
        m.fields = {
            {u"name"_s, u"Opportunity"_s, FT::of(FT::text)},
            {u"contact"_s, u"Contact"_s, FT::makeRef(u"contact"_s)},
            {u"value"_s, u"Est. value"_s, FT::of(FT::money)},
            {u"stage"_s, u"Stage"_s,
             FT::makeChoice(
                 {u"New"_s, u"Contacted"_s, u"Site visit"_s, u"Proposal sent"_s, u"Won"_s, u"Lost"_s})},
            {u"follow"_s, u"Follow up"_s, FT::of(FT::date)},
            {u"source"_s, u"Source"_s, FT::of(FT::text)},
            {u"notes"_s, u"Notes"_s, FT::of(FT::longText)},
        };
        out.append(std::move(m));
    }
    {
        ModuleDef m =
            make(u"estimates"_s, u"Estimates"_s, u"function"_s, u"Sales & Money"_s, u"estimate"_s, u"PNM",
                 std::nullopt, u"est_line"_s, u"Line items, assemblies, markup, tax and a proposal PDF."_s);
        m.columns = {u"number"_s, u"title"_s, u"status"_s, u"date"_s};
        m.defaults = {
            {u"status"_s, u"Draft"_s},
            {u"markup"_s, u"15"_s},
            {u"tax"_s, u"0"_s},
            {u"terms"_s,
             u"Price valid 30 days. Excludes permits, testing and unforeseen conditions unless noted."_s}};
        m.fields = {
            {u"title"_s, u"Title"_s, FT::of(FT::text)},
            {u"status"_s, u"Status"_s, FT::makeChoice({u"Draft"_s, u"Sent"_s, u"Accepted"_s, u"Declined"_s})},
            {u"date"_s, u"Date"_s, FT::of(FT::date)},
            {u"markup"_s, u"Markup %"_s, FT::of(FT::percent)},
            {u"tax"_s, u"Tax %"_s, FT::of(FT::percent)},
            {u"terms"_s, u"Proposal terms / exclusions"_s, FT::of(FT::longText)},
        };
        m.lineFields = {
            {u"description"_s, u"Description"_s, FT::of(FT::text)},
            {u"costCode"_s, u"Cost code"_s, FT::makeRef(u"cost_code"_s)},
            {u"qty"_s, u"Qty"_s, FT::of(FT::number)},
            {u"unit"_s, u"Unit"_s, FT::of(FT::text)},
            {u"unitCost"_s, u"Unit cost"_s, FT::of(FT::money)},
        };
        out.append(std::move(m));
    }
    {
        ModuleDef m = make(u"assemblies"_s, u"Assemblies"_s, u"square.stack.3d.up.fill"_s, u"Sales & Money"_s,
                           u"assembly"_s, u"M", std::nullopt, u"asm_line"_s,
                           u"Reusable cost recipes (e.g. 4\" slab per SF) for fast estimating."_s);
        m.columns = {u"name"_s, u"unit"_s};
        m.fields = {
            {u"name"_s, u"Assembly name"_s, FT::of(FT::text)},
            {u"unit"_s, u"Per unit of (SF, LF, EA …)"_s, FT::of(FT::text)},
            {u"notes"_s, u"Notes"_s, FT::of(FT::longText)},
        };
        m.lineFields = {
            {u"description"_s, u"Item"_s, FT::of(FT::text)},
            {u"costCode"_s, u"Cost code"_s, FT::makeRef(u"cost_code"_s)},
            {u"qtyPer"_s, u"Qty per unit"_s, FT::of(FT::number)},
            {u"unit"_s, u"Unit"_s, FT::of(FT::text)},
            {u"unitCost"_s, u"Unit cost"_s, FT::of(FT::money)},
        };
        out.append(std::move(m));
    }
    {
        ModuleDef m = make(u"budget"_s, u"Budget"_s, u"chart.bar.doc.horizontal.fill"_s, u"Sales & Money"_s,
                           u"budget_line"_s, u"PM", u"budget"_s, std::nullopt,
                           u"Original, approved changes, revised, pending exposure, projected."_s);
        out.append(std::move(m));
    }
    {
        ModuleDef m = make(u"cos"_s, u"Change Orders"_s, u"arrow.triangle.branch"_s, u"Sales & Money"_s,
                           u"co"_s, u"PNM", std::nullopt, u"co_line"_s,
                           u"Owner and sub change orders; approval updates contract, budget and SOV."_s);
        m.columns = {u"number"_s, u"title"_s, u"kind"_s, u"status"_s};
        m.defaults = {{u"kind"_s, u"owner"_s},
                      {u"status"_s, u"pending"_s},
                      {u"markup"_s, u"10"_s},
                      {u"days"_s, u"0"_s}};
        m.fields = {
            {u"title"_s, u"Title"_s, FT::of(FT::text)},
            {u"kind"_s, u"Type"_s, FT::makeChoice({u"owner"_s, u"sub"_s})},
            {u"status"_s, u"Status"_s,
             FT::makeChoice({u"pending"_s, u"approved"_s, u"rejected"_s, u"void"_s})},
            {u"sub"_s, u"Subcontractor (sub COs)"_s, FT::makeRef(u"contact"_s)},
            {u"date"_s, u"Date"_s, FT::of(FT::date)},
            {u"markup"_s, u"Markup %"_s, FT::of(FT::percent)},
            {u"days"_s, u"Schedule days added"_s, FT::of(FT::number)},
            {u"reason"_s, u"Reason / description"_s, FT::of(FT::longText)},
        };
        m.lineFields = {
            {u"description"_s, u"Description"_s, FT::of(FT::text)},
            {u"costCode"_s, u"Cost code"_s, FT::makeRef(u"cost_code"_s)},
            {u"amount"_s, u"Amount (negative = credit)"_s, FT::of(FT::money)},
        };
        out.append(std::move(m));
    }
    {
        ModuleDef m = make(u"pos"_s, u"Purchase Orders"_s, u"cart.fill"_s, u"Sales & Money"_s, u"po"_s,
                           u"PNM", std::nullopt, u"po_line"_s,
                           u"Commitments to vendors; issued POs count as committed cost."_s);
        m.columns = {u"number"_s, u"vendor"_s, u"status"_s, u"date"_s};
        m.defaults = {{u"status"_s, u"Draft"_s}};
        m.fields = {
            {u"vendor"_s, u"Vendor / sub"_s, FT::makeRef(u"contact"_s)},
            {u"status"_s, u"Status"_s,
             FT::makeChoice({u"Draft"_s, u"Issued"_s, u"Received"_s, u"Closed"_s, u"Void"_s})},
            {u"date"_s, u"Date"_s, FT::of(FT::date)},
            {u"costCode"_s, u"Default cost code"_s, FT::makeRef(u"cost_code"_s)},
            {u"deliver"_s, u"Deliver by"_s, FT::of(FT::date)},
            {u"notes"_s, u"Notes"_s, FT::of(FT::longText)},
        };
        m.lineFields = {
            {u"description"_s, u"Item"_s, FT::of(FT::text)},
            {u"costCode"_s, u"Cost code"_s, FT::makeRef(u"cost_code"_s)},
            {u"qty"_s, u"Qty"_s, FT::of(FT::number)},
            {u"unit"_s, u"Unit"_s, FT::of(FT::text)},
            {u"unitCost"_s, u"Unit cost"_s, FT::of(FT::money)},
        };
        out.append(std::move(m));
    }
    {
        ModuleDef m =
            make(u"expenses"_s, u"Costs & Bills"_s, u"creditcard.fill"_s, u"Sales & Money"_s, u"expense"_s,
                 u"PM", std::nullopt, std::nullopt, u"Actual costs for job costing."_s);
        m.columns = {u"date"_s, u"vendor"_s, u"costCode"_s, u"amount"_s};
        m.defaults = {{u"type"_s, u"Material"_s}};
        m.fields = {
            {u"date"_s, u"Date"_s, FT::of(FT::date)},
            {u"vendor"_s, u"Vendor"_s, FT::makeRef(u"contact"_s)},
            {u"costCode"_s, u"Cost code"_s, FT::makeRef(u"cost_code"_s)},
            {u"amount"_s, u"Amount"_s, FT::of(FT::money)},
            {u"type"_s, u"Type"_s,
             FT::makeChoice(
                 {u"Material"_s, u"Subcontract"_s, u"Equipment rental"_s, u"Labor"_s, u"Other"_s})},
            {u"ref"_s, u"Bill / receipt #"_s, FT::of(FT::text)},
            {u"memo"_s, u"Memo"_s, FT::of(FT::longText)},
        };
        out.append(std::move(m));
    }
    {
        ModuleDef m =
            make(u"jobcost"_s, u"Job Costing"_s, u"chart.line.uptrend.xyaxis"_s, u"Sales & Money"_s, u""_s,
                 u"PM", u"jobcost"_s, std::nullopt, u"Budget vs committed vs actual by cost code."_s);
        out.append(std::move(m));
    }
    {
        ModuleDef m = make(u"payapps"_s, u"Pay Apps (AIA)"_s, u"doc.text.magnifyingglass"_s,
                           u"Sales & Money"_s, u"pay_app"_s, u"PMS", u"payapps"_s, std::nullopt,
                           u"G702/G703-style progress billing with retainage."_s);
        out.append(std::move(m));
    }
    {
        ModuleDef m =
            make(u"invoices"_s, u"Invoices"_s, u"doc.plaintext.fill"_s, u"Sales & Money"_s, u"invoice"_s,
                 u"PNM", std::nullopt, u"inv_line"_s, u"Time & material and small-job invoices."_s);
        m.columns = {u"number"_s, u"date"_s, u"client"_s, u"status"_s};
        m.defaults = {{u"status"_s, u"Draft"_s}, {u"tax"_s, u"0"_s}, {u"ret"_s, u"0"_s}};
        m.fields = {
            {u"date"_s, u"Date"_s, FT::of(FT::date)},
            {u"due"_s, u"Due"_s, FT::of(FT::date)},
            {u"client"_s, u"Bill to"_s, FT::makeRef(u"contact"_s)},
            {u"status"_s, u"Status"_s, FT::makeChoice({u"Draft"_s, u"Sent"_s, u"Paid"_s, u"Void"_s})},
            {u"tax"_s, u"Tax %"_s, FT::of(FT::percent)},
            {u"ret"_s, u"Retainage %"_s, FT::of(FT::percent)},
            {u"notes"_s, u"Notes"_s, FT::of(FT::longText)},
        };
        m.lineFields = {
            {u"description"_s, u"Description"_s, FT::of(FT::text)},
            {u"qty"_s, u"Qty"_s, FT::of(FT::number)},
            {u"unitPrice"_s, u"Unit price"_s, FT::of(FT::money)},
        };
        out.append(std::move(m));
    }
    {
        ModuleDef m = make(u"waivers"_s, u"Lien Waivers"_s, u"signature"_s, u"Sales & Money"_s, u"waiver"_s,
                           u"PMS", std::nullopt, std::nullopt,
                           u"Conditional / unconditional, progress / final, with state-form warning."_s);
        m.columns = {u"kind"_s, u"claimant"_s, u"amount"_s, u"status"_s};
        m.defaults = {{u"kind"_s, u"conditional_progress"_s}, {u"status"_s, u"draft"_s}};
        m.fields = {
            {u"kind"_s, u"Type"_s, FT::makeChoice(waiverKindKeys())},
            {u"payApp"_s, u"Pay app"_s, FT::makeRefIn(u"pay_app"_s)},
            {u"amount"_s, u"Amount"_s, FT::of(FT::money)},
            {u"claimant"_s, u"Claimant (gives the waiver)"_s, FT::of(FT::text)},
            {u"customer"_s, u"Customer (pays)"_s, FT::of(FT::text)},
            {u"through"_s, u"Work through"_s, FT::of(FT::date)},
            {u"state"_s, u"State (2 letters)"_s, FT::of(FT::text)},
            {u"status"_s, u"Status"_s, FT::makeChoice({u"draft"_s, u"sent"_s, u"signed"_s, u"received"_s})},
            {u"signedBy"_s, u"Signed by"_s, FT::of(FT::text)},
        };
        out.append(std::move(m));
    }
    {
        ModuleDef m = make(u"payments"_s, u"Payments"_s, u"dollarsign.circle.fill"_s, u"Sales & Money"_s,
                           u"payment"_s, u"PM", std::nullopt, std::nullopt, u"Money in and out."_s);
        m.columns = {u"date"_s, u"direction"_s, u"party"_s, u"amount"_s};
        m.defaults = {{u"direction"_s, u"Received"_s}, {u"method"_s, u"Check"_s}};
        m.fields = {
            {u"date"_s, u"Date"_s, FT::of(FT::date)},
            {u"direction"_s, u"Direction"_s, FT::makeChoice({u"Received"_s, u"Paid out"_s})},
            {u"party"_s, u"From / to"_s, FT::makeRef(u"contact"_s)},
            {u"invoice"_s, u"Invoice"_s, FT::makeRefIn(u"invoice"_s)},
            {u"payApp"_s, u"Pay app"_s, FT::makeRefIn(u"pay_app"_s)},
            {u"amount"_s, u"Amount"_s, FT::of(FT::money)},
            {u"method"_s, u"Method"_s,
             FT::makeChoice({u"Check"_s, u"ACH"_s, u"Wire"_s, u"Card"_s, u"Cash"_s})},
            {u"ref"_s, u"Check / ref #"_s, FT::of(FT::text)},
        };
        out.append(std::move(m));
    }
    {
        ModuleDef m =
            make(u"qb"_s, u"QuickBooks Export"_s, u"square.and.arrow.up.on.square.fill"_s, u"Sales & Money"_s,
                 u""_s, u"M", u"qb"_s, std::nullopt, u"CSV and IIF files QuickBooks can import."_s);
        out.append(std::move(m));
    }
}

} // namespace ModuleRows
