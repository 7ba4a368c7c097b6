// Body files, templates, the logo and the Word writer.
#include "calc/datefmt.h"
#include "documents/docstore.h"
#include "documents/doctemplates.h"
#include "documents/docxwriter.h"
#include "documents/printlogo.h"
#include "store/db.h"
#include "testmain.h"

#include <QtCore/QXmlStreamReader>
#include <QtGui/QTextBlock>
#include <QtGui/QTextCursor>
#include <QtGui/QTextDocument>
#include <QtGui/QTextList>
#include <QtGui/QTextTable>

#include <zip.h>

using namespace Qt::StringLiterals;

namespace {
// A document with one instance of each property a body file must keep.
std::unique_ptr<QTextDocument> sample()
{
    auto doc = std::make_unique<QTextDocument>();
    QTextCursor c(doc.get());
    const auto put = [&](const QString &text, auto &&change) {
        QTextCharFormat f;
        change(f);
        c.insertText(text, f);
        c.insertText(u" "_s, QTextCharFormat());
    };
    put(u"boldword"_s, [](QTextCharFormat &f) { f.setFontWeight(QFont::Bold); });
    put(u"italicword"_s, [](QTextCharFormat &f) { f.setFontItalic(true); });
    put(u"underword"_s, [](QTextCharFormat &f) { f.setFontUnderline(true); });
    put(u"redword"_s, [](QTextCharFormat &f) { f.setForeground(QColor(200, 0, 0)); });
    put(u"monoword"_s, [](QTextCharFormat &f) {
        f.setFontFamilies({u"DejaVu Sans Mono"_s});
        f.setFontPointSize(17);
    });
    QTextBlockFormat centred;
    centred.setAlignment(Qt::AlignHCenter);
    c.insertBlock(centred);
    c.insertText(u"centredline"_s);
    c.insertBlock(QTextBlockFormat());
    c.createList(QTextListFormat::ListDisc);
    c.insertText(u"bulletitem"_s);
    c.insertBlock(QTextBlockFormat());
    QTextTable *t = c.insertTable(2, 2);
    t->cellAt(1, 1).firstCursorPosition().insertText(u"cellword"_s);
    c.movePosition(QTextCursor::End);
    QImage pic(40, 20, QImage::Format_RGB32);
    pic.fill(Qt::blue);
    doc->addResource(QTextDocument::ImageResource, QUrl(u"pic"_s), pic);
    QTextImageFormat img;
    img.setName(u"pic"_s);
    c.insertImage(img);
    return doc;
}

QTextCharFormat formatOf(const QTextDocument &doc, const QString &word)
{
    QTextCursor found = doc.find(word);
    QTextCursor inside(found.block());
    inside.setPosition(found.selectionStart() + 1);
    return inside.charFormat();
}

bool wellFormed(const QByteArray &xml)
{
    QXmlStreamReader r(xml);
    while (!r.atEnd())
        r.readNext();
    return !r.hasError();
}

// The entries of a zip held in memory.
QMap<QString, QByteArray> unzip(const QByteArray &bytes)
{
    QMap<QString, QByteArray> out;
    zip_error_t error;
    zip_error_init(&error);
    zip_source_t *src = zip_source_buffer_create(bytes.constData(), zip_uint64_t(bytes.size()), 0, &error);
    zip_t *z = src ? zip_open_from_source(src, ZIP_RDONLY, &error) : nullptr;
    if (!z)
        return out;
    for (zip_int64_t i = 0; i < zip_get_num_entries(z, 0); ++i) {
        zip_stat_t st;
        zip_stat_index(z, zip_uint64_t(i), 0, &st);
        QByteArray data(qsizetype(st.size), '\0');
        zip_file_t *f = zip_fopen_index(z, zip_uint64_t(i), 0);
        zip_fread(f, data.data(), st.size);
        zip_fclose(f);
        out[QString::fromUtf8(st.name)] = data;
    }
    zip_close(z);
    return out;
}
} // namespace

class BodyTests : public QObject
{
    Q_OBJECT
    QTemporaryDir dir;

private Q_SLOTS:
    void bodyKeepsEachProperty_data()
    {
        QTest::addColumn<QString>("property");
        for (const char *p :
             {"bold", "italic", "underline", "colour", "font", "alignment", "list", "table", "picture"})
            QTest::newRow(p) << QString::fromLatin1(p);
    }
    void bodyKeepsEachProperty()
    {
        QFETCH(QString, property);
        const QString path = dir.filePath(u"doc-1.html"_s);
        QVERIFY(DocStore::write(path, *sample()));
        const auto back = DocStore::read(path);
        if (property == u"bold")
            QCOMPARE(formatOf(*back, u"boldword"_s).fontWeight(), int(QFont::Bold));
        else if (property == u"italic")
            QVERIFY(formatOf(*back, u"italicword"_s).fontItalic());
        else if (property == u"underline")
            QVERIFY(formatOf(*back, u"underword"_s).fontUnderline());
        else if (property == u"colour")
            QCOMPARE(formatOf(*back, u"redword"_s).foreground().color(), QColor(200, 0, 0));
        else if (property == u"font") {
            QCOMPARE(formatOf(*back, u"monoword"_s).fontFamilies().toStringList().value(0),
                     u"DejaVu Sans Mono"_s);
            QCOMPARE(formatOf(*back, u"monoword"_s).fontPointSize(), 17.0);
        } else if (property == u"alignment")
            QVERIFY(back->find(u"centredline"_s).blockFormat().alignment() & Qt::AlignHCenter);
        else if (property == u"list")
            QVERIFY(back->find(u"bulletitem"_s).block().textList());
        else if (property == u"table")
            QVERIFY(back->find(u"cellword"_s).currentTable());
        else if (property == u"picture") {
            bool found = false;
            for (QTextBlock b = back->begin(); b.isValid(); b = b.next())
                for (auto it = b.begin(); !it.atEnd(); ++it)
                    if (it.fragment().charFormat().isImageFormat()) {
                        const QVariant res =
                            back->resource(QTextDocument::ImageResource,
                                           QUrl(it.fragment().charFormat().toImageFormat().name()));
                        found = res.value<QImage>().size() == QSize(40, 20);
                    }
            QVERIFY(found);
        }
    }

    void damagedBodyReadsEmpty()
    {
        const QString path = dir.filePath(u"bad.html"_s);
        QFile f(path);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("<html><img src=\"data:image/png;base64,!!!notbase64\"><table><tr><td>\xff\xfe");
        f.close();
        QVERIFY(DocStore::read(path)); // no crash, some document
        QVERIFY(DocStore::read(dir.filePath(u"missing.html"_s))->isEmpty());
    }

    void templatesFillAndTitle()
    {
        DB db;
        db.createCompany(u"Smith & <Sons>"_s, u"Ann"_s, u"CA"_s);
        DateFmt::setToday(QDate(2026, 11, 15));
        const QString filled = DocTemplates::fill(db, DocTemplates::find(u"letter"_s)->body, std::nullopt);
        QVERIFY(filled.contains(u"Smith &amp; &lt;Sons&gt;"_s));
        QVERIFY(filled.contains(u"<p>__________<br>__________</p>"_s));
        QVERIFY(filled.contains(u"Nov 15, 2026"_s));
        QCOMPARE(DocTemplates::fill(db, u"{{unknown}}"_s, std::nullopt), u"{{unknown}}"_s);
        QCOMPARE(DocTemplates::all().size(), 8);

        Rec untitled = db.add(u"document"_s, {}, {}, {{u"title"_s, u""_s}});
        Rec titled = db.add(u"document"_s, {}, {}, {{u"title"_s, u"Keep me"_s}});
        DocStore::applyTemplate(db, untitled, u"transmittal"_s);
        DocStore::applyTemplate(db, titled, u"transmittal"_s);
        QCOMPARE(db.get(untitled.id)->f.value(u"title"), u"Transmittal"_s);
        QCOMPARE(db.get(titled.id)->f.value(u"title"), u"Keep me"_s);
        const auto body = DocStore::read(DocStore::bodyPath(db, untitled));
        QVERIFY(body->find(u"Copies"_s).currentTable()); // a real table, not text
        DateFmt::setToday(QDate());
    }

    void logoInstallsAndAttaches()
    {
        DB db;
        db.createCompany(u"Acme"_s, u"Ann"_s, u"CA"_s);
        const QString png = dir.filePath(u"mark.png"_s);
        QImage wide(400, 100, QImage::Format_RGB32);
        wide.fill(Qt::darkGreen);
        QVERIFY(wide.save(png));
        const QString junk = dir.filePath(u"junk.png"_s);
        QFile f(junk);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("not a picture");
        f.close();
        QVERIFY(!PrintLogo::install(db, junk));
        QVERIFY(PrintLogo::install(db, png));
        const QString stem = db.companyID() + u"-logo"_s;
        QCOMPARE(db.company()->f.value(u"logo"), stem + u".png"_s);
        QCOMPARE(QImage(QDir(PrintLogo::dir(db)).filePath(stem + u".png"_s)).size(), QSize(2400, 600));
        QVERIFY(QFile::exists(QDir(PrintLogo::dir(db)).filePath(stem + u"-original.png"_s)));
        const auto doc =
            DocTemplates::attributed(db, u"<table><tr><td width=90>TLLOGOMARK</td></tr></table>"_s);
        QVERIFY(!doc->toPlainText().contains(u"TLLOGOMARK"_s));
        QTextCursor c(doc.get());
        bool sized = false;
        for (QTextBlock b = doc->begin(); b.isValid(); b = b.next())
            for (auto it = b.begin(); !it.atEnd(); ++it)
                if (it.fragment().charFormat().isImageFormat()) {
                    const QTextImageFormat img = it.fragment().charFormat().toImageFormat();
                    sized = qFuzzyCompare(img.width(), 170.0) && qFuzzyCompare(img.height(), 42.5);
                }
        QVERIFY(sized); // 4:1 at 54 high would be 216 wide, so the 170 cap decides
    }

    void wordPackageIsWellFormed()
    {
        const auto doc = DocTemplates::attributed(
            DB(),
            u"<h1>Scope &amp; Work</h1><p><b>Bold</b> <i>it</i> <u>under</u> <span style='color:#c00000'>"
            u"red</span></p><ul><li>first</li></ul><table border=1><tr><td>cellA</td><td>cellB</td></tr>"
            u"</table>"_s);
        const QByteArray bytes = DocxWriter::package(*doc);
        const auto files = unzip(bytes);
        QVERIFY(files.contains(u"[Content_Types].xml"_s));
        QVERIFY(files.contains(u"word/document.xml"_s));
        for (auto it = files.begin(); it != files.end(); ++it)
            if (it.key().endsWith(u".xml"_s) || it.key().endsWith(u".rels"_s))
                QVERIFY2(wellFormed(it.value()), qPrintable(it.key()));
        const QString xml = QString::fromUtf8(files.value(u"word/document.xml"_s));
        for (const QString &needle :
             {u"Scope &amp; Work"_s, u"Heading1"_s, u"<w:b/>"_s, u"<w:i/>"_s, u"<w:u w:val=\"single\"/>"_s,
              u"C00000"_s, u"<w:numId w:val=\"1\"/>"_s, u"<w:tbl>"_s, u"cellB"_s, u"w:val=\"single\""_s})
            QVERIFY2(xml.contains(needle), qPrintable(needle));
    }
};

TRESTLE_TEST(BodyTests);
#include "bodytests.moc"
