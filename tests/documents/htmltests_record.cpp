// The record documents: escaping, titles, module extras, waivers and proposals.
#include "docshop.h"
#include "documents/pdfout.h"
#include "testmain.h"

#include "calc/datefmt.h"

#include "workflows/changeorders.h"

#include <QtGui/QImage>

using namespace Qt::StringLiterals;
using DocShop::Shop;

namespace {
const QString kNasty = u"R&D <b>x</b> > y"_s;
const QString kEscaped = u"R&amp;D &lt;b&gt;x&lt;/b&gt; &gt; y"_s;
} // namespace

class RecordHtmlTests : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { DateFmt::setToday(DocShop::kToday); }
    void cleanupTestCase() { DateFmt::setToday(QDate()); }

    void logoMark()
    {
        Shop s;
        const QString plain = PDFOut::header(s.db, u"T"_s, std::nullopt);
        QVERIFY(plain.startsWith(u"<table width='100%'><tr><td><b style='font-size:15pt'>Acme</b>"_s));
        QVERIFY(plain.endsWith(u"<span style='font-size:9pt'> <br></span></td></tr></table><hr>"_s));
        Rec company = *s.db.company();
        company.f.insert(u"logo"_s, u"logo.png"_s);
        s.db.save(company);
        // A named logo that is not there, or not a picture, leaves no mark behind.
        QCOMPARE(PDFOut::header(s.db, u"T"_s, std::nullopt), plain);
        QImage image(4, 2, QImage::Format_RGB32);
        image.fill(Qt::red);
        QVERIFY(image.save(s.db.fileURL(u"logo.png"_s)));
        QVERIFY(PDFOut::header(s.db, u"T"_s, s.project)
                    .startsWith(u"<table width='100%'><tr><td width=90 valign=top>TLLOGOMARK</td><td>"_s));
    }

    // Whatever a record holds prints literally, wherever it reaches the document.
    void escaping_data()
    {
        QTest::addColumn<QString>("module");
        QTest::addColumn<QString>("key");
        QTest::addColumn<bool>("onLine");
        for (const ModuleDef &def : Modules::all()) {
            if (def.kind.isEmpty() || def.id == u"documents")
                continue;
            for (const FD &fd : def.fields)
                if (fd.type.kind == FT::text || fd.type.kind == FT::longText) {
                    QTest::addRow("%s.%s", qPrintable(def.id), qPrintable(fd.key))
                        << def.id << fd.key << false;
                    break;
                }
            for (const FD &fd : def.lineFields)
                if (fd.type.kind == FT::text) {
                    QTest::addRow("%s line %s", qPrintable(def.id), qPrintable(fd.key))
                        << def.id << fd.key << true;
                    break;
                }
        }
        QTest::newRow("photo caption") << u"punch"_s << u"caption"_s << true;
        QTest::newRow("waiver customer") << u"waivers"_s << u"customer"_s << false;
        QTest::newRow("waiver claimant") << u"waivers"_s << u"claimant"_s << false;
    }
    void escaping()
    {
        QFETCH(QString, module);
        QFETCH(QString, key);
        QFETCH(bool, onLine);
        Shop s(kNasty);
        const ModuleDef &def = Shop::module(module);
        const Rec rec = s.db.add(def.kind, s.project.id, {}, onLine ? Fields{} : Fields{{key, kNasty}});
        if (onLine)
            s.db.add(key == u"caption" ? u"photo"_s : *def.lineKind, s.project.id, rec.id,
                     {{key, kNasty}, {u"file"_s, u"o'hare roof.jpg"_s}});
        const QString html = PDFOut::recordHTML(s.db, def, rec);
        QVERIFY(!html.contains(u"<b>x"_s));
        if (key == u"caption")
            QVERIFY(html.contains(u"o%27hare%20roof.jpg' width=300><br><i>"_s + kEscaped + u"</i>"_s));
        // The company name in the letterhead, and the value itself.
        QVERIFY2(html.count(kEscaped) >= 2, qPrintable(html));
    }

    void titles_data()
    {
        QTest::addColumn<QString>("module");
        QTest::addColumn<Fields>("fields");
        QTest::addColumn<QString>("heading");
        QTest::addColumn<QString>("jobTitle");
        QTest::newRow("plural cut") << u"dailylogs"_s << Fields{{u"date"_s, u"2026-11-02"_s}}
                                    << u"Daily Log"_s << u"Daily Logs 2026-11-02"_s;
        QTest::newRow("no final s") << u"punch"_s << Fields{{u"title"_s, u"Door"_s}} << u"Punch List"_s
                                    << u"Punch List Door"_s;
        QTest::newRow("blind cut") << u"expenses"_s << Fields{} << u"Costs &amp; Bill"_s
                                   << u"Costs & Bills "_s;
        QTest::newRow("numbered") << u"cos"_s << Fields{{u"number"_s, u"3"_s}, {u"title"_s, u"Footing"_s}}
                                  << u"Change Order #3"_s << u"Change Orders 3"_s;
    }
    void titles()
    {
        QFETCH(QString, module);
        QFETCH(Fields, fields);
        QFETCH(QString, heading);
        QFETCH(QString, jobTitle);
        Shop s;
        const ModuleDef &def = Shop::module(module);
        const Rec rec = s.db.add(def.kind, s.project.id, {}, fields);
        QVERIFY(PDFOut::recordHTML(s.db, def, rec)
                    .contains(u"<b style='font-size:17pt'>"_s + heading + u"</b>"_s));
        QCOMPARE(PDFOut::recordTitle(def, rec), jobTitle);
    }

    void moduleExtras()
    {
        Shop s;
        const Rec inv = s.db.add(u"invoice"_s, s.project.id, {}, {{u"ret"_s, u"10"_s}, {u"tax"_s, u"0"_s}});
        s.db.add(u"inv_line"_s, s.project.id, inv.id, {{u"qty"_s, u"2"_s}, {u"unitPrice"_s, u"5000"_s}});
        const QString invoice = PDFOut::recordHTML(s.db, Shop::module(u"invoices"_s), inv);
        QVERIFY(invoice.contains(u"<td align=left>Retainage withheld</td><td align=right>-$10.00</td>"_s));
        QVERIFY(invoice.contains(u"<td align=left>Amount due</td><td align=right>$90.00</td>"_s));
        QVERIFY(invoice.contains(u"<h3>Line items</h3>"_s));

        const Rec po = s.db.add(u"po"_s, s.project.id, {}, {});
        const QString order = PDFOut::recordHTML(s.db, Shop::module(u"pos"_s), po);
        QVERIFY(order.contains(u"<p><b>PO total: $0.00</b></p>"_s));
        // A module with lines but none written has no lines heading.
        QVERIFY(!order.contains(u"Line items"_s));

        Rec co = s.db.add(u"co"_s, s.project.id, {}, {{u"kind"_s, u"owner"_s}, {u"markup"_s, u"10"_s}});
        s.db.add(u"co_line"_s, s.project.id, co.id, {{u"amount"_s, u"10000"_s}});
        setCOStatus(s.db, co, u"approved"_s);
        const QString change = PDFOut::recordHTML(s.db, Shop::module(u"cos"_s), *s.db.get(co.id));
        QVERIFY(change.contains(u"<td align=left>Total</td><td align=right>$110.00</td>"_s));
        QVERIFY(change.contains(u"Approved by owner: ____________________"_s));
    }

    void waiverText_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("heading");
        QTest::addColumn<QString>("opening");
        QTest::addColumn<bool>("notice");
        QTest::addColumn<bool>("retainage");
        QTest::addColumn<bool>("through");
        const QString received = u"Upon the undersigned having received payment in the sum of $1,234.50"_s;
        const QString receipt = u"Upon receipt by the undersigned of a payment in the sum of $1,234.50"_s;
        QTest::newRow("cond progress")
            << u"conditional_progress"_s << u"Conditional Waiver and Release on Progress Payment"_s << receipt
            << false << true << true;
        QTest::newRow("uncond progress")
            << u"unconditional_progress"_s << u"Unconditional Waiver and Release on Progress Payment"_s
            << received << true << true << true;
        QTest::newRow("cond final") << u"conditional_final"_s
                                    << u"Conditional Waiver and Release on Final Payment"_s << receipt
                                    << false << false << false;
        QTest::newRow("uncond final")
            << u"unconditional_final"_s << u"Unconditional Waiver and Release on Final Payment"_s << received
            << true << false << false;
        QTest::newRow("unknown kind") << u"other"_s << QString() << received << true << true << true;
    }
    void waiverText()
    {
        QFETCH(QString, kind);
        QFETCH(QString, heading);
        QFETCH(QString, opening);
        QFETCH(bool, notice);
        QFETCH(bool, retainage);
        QFETCH(bool, through);
        Shop s;
        const Rec w = s.db.add(u"waiver"_s, s.project.id, {},
                               {{u"kind"_s, kind},
                                {u"amount"_s, u"123450"_s},
                                {u"customer"_s, u"Owner LLC"_s},
                                {u"through"_s, u"2026-10-31"_s},
                                {u"state"_s, u"az"_s}});
        const QString html = PDFOut::waiverHTML(s.db, w);
        QVERIFY(html.startsWith(u"<h2>"_s + heading + u"</h2><p>"_s + opening + u" from Owner LLC, "_s));
        QVERIFY(html.contains(
            u"the undersigned waives and releases any mechanic's lien, stop payment notice, and "
            u"payment bond rights it has on the job of Tower, located at 1 Main St"_s));
        QCOMPARE(
            html.contains(
                u" NOTICE: This document waives rights unconditionally and states that you have been "
                u"paid. It is enforceable against you if you sign it, even if you have not been paid."_s),
            notice);
        QCOMPARE(html.contains(
                     u" This release does not cover retainage, pending change orders, extras, or disputed "
                     u"claims.</p>"_s),
                 retainage);
        QCOMPARE(
            html.contains(u", to the extent of labor, services, equipment and material furnished through Oct "
                          u"31, 2026 only."_s),
            through);
        QCOMPARE(html.contains(u", for all labor, services, equipment and material furnished to the job."_s),
                 !through);
        QVERIFY(html.endsWith(
            u"<p style='color:#b00'><b>Note:</b> AZ requires a statutory lien-waiver form.</p>"_s));
    }

    void proposal_data()
    {
        QTest::addColumn<QString>("unitCost");
        QTest::addColumn<QString>("amount");
        QTest::addColumn<QString>("subtotal");
        // 3 × $33.33 = $99.99, times 1.15 = $114.9885, rounded once more.
        QTest::newRow("markup spread") << u"3333"_s << u"$114.99"_s << u"$114.99"_s;
        QTest::newRow("zero subtotal") << u"0"_s << u"$0.00"_s << u"$0.00"_s;
    }
    void proposal()
    {
        QFETCH(QString, unitCost);
        QFETCH(QString, amount);
        QFETCH(QString, subtotal);
        Shop s;
        const Rec est = s.db.add(u"estimate"_s, s.project.id, {},
                                 {{u"number"_s, u"12"_s},
                                  {u"title"_s, u"Slab & walls"_s},
                                  {u"markup"_s, u"15"_s},
                                  {u"tax"_s, u"0"_s}});
        s.db.add(u"est_line"_s, s.project.id, est.id,
                 {{u"description"_s, u"Pour"_s},
                  {u"qty"_s, u"3"_s},
                  {u"unit"_s, u"CY"_s},
                  {u"unitCost"_s, unitCost}});
        const QString html = PDFOut::proposalHTML(s.db, est);
        QVERIFY(html.contains(u"Proposal #12</b>"_s));
        QVERIFY(html.contains(u"<br>To: Owner LLC</p><h2>Slab &amp; walls</h2>"_s));
        QVERIFY(html.contains(u"<td align=left>Pour</td><td align=right>3</td><td align=left>CY</td><td "
                              u"align=right>"_s +
                              amount + u"</td>"_s));
        QVERIFY(html.contains(u"<td align=left>Subtotal</td><td align=right>"_s + subtotal + u"</td>"_s));
        QVERIFY(html.contains(u"<h3>Terms</h3><p></p><p><br>Accepted by: "_s));
    }
};

TRESTLE_TEST(RecordHtmlTests);
#include "htmltests_record.moc"
