// The sample company's drawn files: the plan sheet, its printout, and the notice's body.
#include "catalog/modules.h"
#include "documents/docstore.h"
#include "documents/pdfpages.h"
#include "documents/pdfwrite.h"
#include "documents/samplefiles.h"
#include "store/db.h"
#include "testmain.h"

#include <QtCore/QFileInfo>
#include <QtGui/QTextDocument>

using namespace Qt::StringLiterals;

class SampleFilesTests : public QObject
{
    Q_OBJECT

    DB m_db;
    Rec m_sheet, m_notice;

    std::optional<Rec> first(const QString &kind, const QString &field, const QString &value)
    {
        for (const Rec &r : m_db.list(kind))
            if (r.f.value(field) == value)
                return r;
        return std::nullopt;
    }

private Q_SLOTS:
    void initTestCase()
    {
        Sample::create(m_db, SampleDocs::files());
        const auto sheet = first(u"plan_sheet"_s, u"number"_s, u"A-101"_s);
        const auto notice = first(u"document"_s, u"title"_s, u"Notice to Proceed — Mesa Electric"_s);
        QVERIFY(sheet && notice);
        m_sheet = *sheet;
        m_notice = *notice;
    }

    void planSheetIsALargeDrawing()
    {
        const QString file = m_sheet.f.value(u"file");
        QVERIFY(!file.isEmpty());
        const QString path = m_db.fileURL(file);
        QVERIFY2(QFileInfo::exists(path), qPrintable(path));
        const PdfPages pdf(path);
        QCOMPARE(pdf.pageCount(), 1);
        const QSizeF size = pdf.pageSize(0);
        QVERIFY(std::max(size.width(), size.height()) > 792 && std::min(size.width(), size.height()) > 612);
        const QString text = pdf.text(0);
        for (const QString &word :
             {u"GREAT ROOM"_s, u"KITCHEN"_s, u"LOBBY"_s, u"MECH."_s, u"A-101"_s, u"FLOOR PLAN"_s,
              u"Monument Ridge Clubhouse"_s, u"Studio 81 Architects"_s, u"SCALE"_s})
            QVERIFY2(text.contains(word), qPrintable(word));
    }

    // The record's PDF of a plan sheet is the drawing itself, fitted to a
    // landscape Letter page under its caption, not the sheet's field list.
    void planSheetPrintsItsDrawing()
    {
        QTemporaryDir dir;
        const QString out = dir.filePath(u"sheet.pdf"_s);
        const ModuleDef *def = Modules::get(u"plans");
        QVERIFY(def);
        QVERIFY(PDFOut::record(m_db, *def, m_sheet, out));
        const PdfPages pdf(out);
        QCOMPARE(pdf.pageCount(), 1);
        QCOMPARE(pdf.pageSize(0).toSize(), QSize(792, 612));
        const QString text = pdf.text(0);
        QVERIFY2(text.contains(u"A-101"_s) && text.contains(u"Floor Plan"_s), qPrintable(text));
        QVERIFY(text.contains(u"Page 1 of 1"_s));
        QVERIFY2(!text.contains(u"Architectural"_s), qPrintable(text));
    }

    void noticeBodyIsFilledFromItsTemplate()
    {
        const QString path = DocStore::bodyPath(m_db, m_notice);
        QVERIFY2(QFileInfo::exists(path), qPrintable(path));
        const QString text = DocStore::read(path)->toPlainText();
        for (const QString &part :
             {u"Notice to Proceed"_s, u"You are notified to begin work under your contract"_s,
              u"Monument Ridge Clubhouse"_s, u"Grand Valley Builders (Sample)"_s})
            QVERIFY2(text.contains(part), qPrintable(text));
        // The template does not rename a record that already has its own title.
        QCOMPARE(m_db.get(m_notice.id)->f.value(u"title"), u"Notice to Proceed — Mesa Electric"_s);
    }
};

TRESTLE_TEST(SampleFilesTests);
#include "samplefilestests.moc"
