#include "testmain.h"

#include "interchange/importread.h"

#include <zip.h>

using namespace Qt::StringLiterals;

namespace {

// A minimal workbook as spreadsheet programs write one: the sheet found through
// the workbook's relationships, shared strings, an inline string and a date style.
bool writeWorkbook(const QString &path)
{
    const QList<std::pair<const char *, QByteArray>> parts{
        {"xl/workbook.xml",
         R"(<?xml version="1.0"?><workbook xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main" xmlns:r="http://schemas.openxmlformats.org/officeDocument/2006/relationships"><sheets><sheet name="Clients" sheetId="1" r:id="rId7"/></sheets></workbook>)"},
        {"xl/_rels/workbook.xml.rels",
         R"(<?xml version="1.0"?><Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships"><Relationship Id="rId7" Type="worksheet" Target="worksheets/data.xml"/></Relationships>)"},
        {"xl/sharedStrings.xml",
         R"(<?xml version="1.0"?><sst xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main"><si><t>Name</t></si><si><t>Since</t></si><si><r><t>Acme </t></r><r><t>Builders</t></r><rPh><t>X</t></rPh></si><si><t>Balance</t></si></sst>)"},
        {"xl/styles.xml",
         R"(<?xml version="1.0"?><styleSheet xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main"><numFmts><numFmt numFmtId="165" formatCode="[$-409]mmmm d, yyyy"/></numFmts><cellXfs count="3"><xf numFmtId="0"/><xf numFmtId="14"/><xf numFmtId="165"/></cellXfs></styleSheet>)"},
        {"xl/worksheets/data.xml",
         R"(<?xml version="1.0"?><worksheet xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main"><sheetData>)"
         R"(<row r="1"><c r="A1" t="s"><v>0</v></c><c r="B1" t="s"><v>1</v></c><c r="C1" t="s"><v>3</v></c></row>)"
         R"(<row r="2"><c r="A2" t="s"><v>2</v></c><c r="B2" s="1"><v>46027</v></c><c r="C2"><v>1234.5</v></c></row>)"
         R"(<row r="4"><c r="A4" t="inlineStr"><is><t>Bay &amp; Sons</t></is></c><c r="C4" s="2"><v>46028.75</v></c></row>)"
         R"(</sheetData></worksheet>)"},
    };
    int error = 0;
    zip_t *zip = zip_open(QFile::encodeName(path).constData(), ZIP_CREATE | ZIP_TRUNCATE, &error);
    if (!zip)
        return false;
    for (const auto &[name, bytes] : parts) {
        zip_source_t *src = zip_source_buffer(zip, bytes.constData(), zip_uint64_t(bytes.size()), 0);
        if (!src || zip_file_add(zip, name, src, ZIP_FL_OVERWRITE) < 0)
            return false;
    }
    return zip_close(zip) == 0;
}

} // namespace

class ImportReadTests : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void decode_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("text");
        QTest::newRow("UTF-8") << QByteArray("Caf\xC3\xA9") << u"Café"_s;
        QTest::newRow("UTF-8 with a byte-order mark") << QByteArray("\xEF\xBB\xBFName") << u"Name"_s;
        QTest::newRow("UTF-16, as Excel saves Unicode Text")
            << QByteArray("\xFF\xFEN\0a\0m\0\xE9\0\t\0", 12) << u"Namé\t"_s;
        QTest::newRow("Windows-1252") << QByteArray("Caf\xE9 \x93"
                                                    "Ace\x94 \x96 \x80")
                                      << u"Café “Ace” – €"_s;
    }
    void decode()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, text);
        QCOMPARE(Import::decode(bytes), text);
    }

    void csv_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("header");
        QTest::addColumn<QList<QStringList>>("rows");
        QTest::addColumn<QList<int>>("lines");
        QTest::newRow("comma, CRLF") << u"Name,Phone\r\nAce,555-0100\r\nBee,\r\n"_s
                                     << QStringList{u"Name"_s, u"Phone"_s}
                                     << QList<QStringList>{{u"Ace"_s, u"555-0100"_s}, {u"Bee"_s}}
                                     << QList<int>{2, 3};
        QTest::newRow("semicolon, as a decimal-comma spreadsheet saves")
            << u"Name;Balance\nAce;1.234,50\n"_s << QStringList{u"Name"_s, u"Balance"_s}
            << QList<QStringList>{{u"Ace"_s, u"1.234,50"_s}} << QList<int>{2};
        QTest::newRow("tab") << u"Name\tCity\nAce, Inc.\tDenver\n"_s << QStringList{u"Name"_s, u"City"_s}
                             << QList<QStringList>{{u"Ace, Inc."_s, u"Denver"_s}} << QList<int>{2};
        QTest::newRow("quoted comma, quote and line break keep their line numbers")
            << u"Name,Notes\r\n\"Smith, J\",\"said \"\"hi\"\"\r\non site\"\r\nLast,x\r\n"_s
            << QStringList{u"Name"_s, u"Notes"_s}
            << QList<QStringList>{{u"Smith, J"_s, u"said \"hi\"\non site"_s}, {u"Last"_s, u"x"_s}}
            << QList<int>{2, 4};
        QTest::newRow("blank lines and trailing separators")
            << u"Name,Phone,,\n\nAce,1,,\n"_s << QStringList{u"Name"_s, u"Phone"_s}
            << QList<QStringList>{{u"Ace"_s, u"1"_s}} << QList<int>{3};
        QTest::newRow("no final line end") << u"Code\n01-100"_s << QStringList{u"Code"_s}
                                           << QList<QStringList>{{u"01-100"_s}} << QList<int>{2};
    }
    void csv()
    {
        QFETCH(QString, text);
        QFETCH(QStringList, header);
        QFETCH(QList<QStringList>, rows);
        QFETCH(QList<int>, lines);
        const Import::Table t = Import::csv(u"f.csv"_s, text);
        QCOMPARE(t.header, header);
        QCOMPARE(t.rows.size(), rows.size());
        for (qsizetype k = 0; k < rows.size(); ++k) {
            QCOMPARE(t.rows.at(k).cells, rows.at(k));
            QCOMPARE(t.rows.at(k).line, lines.at(k));
        }
    }

    // A list export as QuickBooks writes it: a header block, sections in any
    // column order with extra columns, trailing tabs, quoted cells, CRLF.
    void iif()
    {
        const QString text =
            u"!HDR\tPROD\tVER\tREL\tIIFVER\tDATE\tTIME\r\n"
            u"HDR\tQuickBooks\tVersion 1\tRelease R1\t1\t2026-11-01\t1700000000\r\n"
            u"!ACCNT\tNAME\tACCNTTYPE\r\n"
            u"ACCNT\tChecking\tBANK\r\n"
            u"!CUST\tNAME\tBADDR1\tPHONE1\tEMAIL\tNOTE\tTAXID\t\t\r\n"
            u"CUST\t\"Ruiz, Ana\"\t12 Elm St\t555-010-0101\tana@example.com\t\"a \"\"good\"\" one\"\t\t\t\r\n"
            u"ENDGRP\r\n"
            u"!VEND\tVTYPE\tNAME\r\n"
            u"VEND\tSubcontractors\tBolt Electric\r\n"_s;
        const QList<Import::Table> tables = Import::iif(u"lists.iif"_s, text);
        QCOMPARE(tables.size(), 3);
        QCOMPARE(tables.at(0).section, u"ACCNT"_s);
        QCOMPARE(tables.at(0).rows.size(), 1);
        const Import::Table &cust = tables.at(1);
        QCOMPARE(cust.section, u"CUST"_s);
        QCOMPARE(cust.header.mid(0, 6),
                 (QStringList{u"NAME"_s, u"BADDR1"_s, u"PHONE1"_s, u"EMAIL"_s, u"NOTE"_s, u"TAXID"_s}));
        QCOMPARE(cust.rows.size(), 1);
        QCOMPARE(cust.rows.first().line, 6);
        QCOMPARE(cust.rows.first().cells, (QStringList{u"Ruiz, Ana"_s, u"12 Elm St"_s, u"555-010-0101"_s,
                                                       u"ana@example.com"_s, u"a \"good\" one"_s}));
        QCOMPARE(tables.at(2).header, (QStringList{u"VTYPE"_s, u"NAME"_s}));
        QCOMPARE(tables.at(2).rows.first().cells, (QStringList{u"Subcontractors"_s, u"Bolt Electric"_s}));
    }

    void xlsx()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(u"clients.xlsx"_s);
        QVERIFY(writeWorkbook(path));
        const Import::Source s = Import::read(path);
        QVERIFY2(s.error.isEmpty(), qPrintable(s.error));
        QCOMPARE(s.tables.size(), 1);
        const Import::Table &t = s.tables.first();
        QCOMPARE(t.file, u"clients.xlsx"_s);
        QCOMPARE(t.header, (QStringList{u"Name"_s, u"Since"_s, u"Balance"_s}));
        QCOMPARE(t.rows.size(), 2);
        QCOMPARE(t.rows.at(0).cells, (QStringList{u"Acme Builders"_s, u"2026-01-05"_s, u"1234.5"_s}));
        QCOMPARE(t.rows.at(1).line, 4);
        QCOMPARE(t.rows.at(1).cells, (QStringList{u"Bay & Sons"_s, QString(), u"2026-01-06"_s}));
    }

    void unreadable_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("not a zip") << u"list.xlsx"_s << QByteArray("Name,Phone\n");
        QTest::newRow("missing") << QString() << QByteArray();
    }
    void unreadable()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, bytes);
        QTemporaryDir dir;
        const QString path = dir.filePath(name.isEmpty() ? u"none.csv"_s : name);
        if (!name.isEmpty()) {
            QFile f(path);
            QVERIFY(f.open(QIODevice::WriteOnly));
            f.write(bytes);
        }
        const Import::Source s = Import::read(path);
        QVERIFY(!s.error.isEmpty());
        QVERIFY(s.tables.isEmpty());
    }
};

TRESTLE_TEST(ImportReadTests);
#include "importreadtests.moc"
