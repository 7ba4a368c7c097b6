// Printing from the screen: which job Print runs, the beep when nothing is
// made, the pages handed to the print dialog, and the company logo command.
#include "testmain.h"

#include "catalog/modules.h"
#include "documents/pageddocument.h"
#include "documents/pdfout.h"
#include "documents/pdfpages.h"
#include "documents/pdfwrite.h"
#include "documents/samplefiles.h"
#include "shell/fileactions.h"
#include "shell/nav.h"
#include "shell/printbutton.h"
#include "shell/printcenter.h"
#include "shell/printengine.h"
#include "shell/printsetup.h"
#include "shell/recordeditor.h"
#include "shell/savedpdf.h"
#include "store/db.h"

#include <QtCore/QBuffer>
#include <QtCore/QDir>
#include <QtCore/QTimer>
#include <QtPrintSupport/QPrintPreviewDialog>
#include <QtPrintSupport/QPrintPreviewWidget>
#include <QtPrintSupport/QPrinter>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMessageBox>

using namespace Qt::StringLiterals;

namespace {
// What the dialog step was given, in place of the real dialog.
struct Shown
{
    int calls = 0;
    QString title;
    int pages = 0;
    QPageLayout::Orientation orientation = QPageLayout::Portrait;
};

PrintJob htmlJob(const QString &title, const QString &html, int *made = nullptr)
{
    return {title, [html, made]() -> std::optional<PrintSource> {
                if (made)
                    ++*made;
                return PrintSource::fromHtml(html);
            }};
}

QString paragraphs(int n)
{
    QString html;
    for (int i = 0; i < n; ++i)
        html += u"<p>Paragraph "_s + QString::number(i) + u" of the field report, long enough to wrap.</p>"_s;
    return html;
}
} // namespace

class PrintTests : public QObject
{
    Q_OBJECT

    Shown m_shown;

private Q_SLOTS:
    void init()
    {
        m_shown = {};
        PrintEngine::dialogHook() = [this](PagedDocument &pages, QPrinter &printer, QWidget *) {
            ++m_shown.calls;
            m_shown.title = pages.title();
            m_shown.pages = pages.pageCount();
            m_shown.orientation = printer.pageLayout().orientation();
        };
    }
    void cleanup()
    {
        PrintEngine::dialogHook() = nullptr;
        FileActions::openFileHook() = nullptr;
        FileActions::saveFileHook() = nullptr;
        PrintSetup::setShared(PagedDocument::letter());
    }

    // A PDF saved from the window takes the page setup's orientation and opens
    // in the viewer; one that cannot be written opens nothing and says so.
    void savedPdfFollowsPageSetup_data()
    {
        QTest::addColumn<int>("orientation");
        QTest::addColumn<bool>("writable");
        QTest::newRow("portrait") << int(QPageLayout::Portrait) << true;
        QTest::newRow("landscape") << int(QPageLayout::Landscape) << true;
        QTest::newRow("unwritable folder") << int(QPageLayout::Landscape) << false;
    }
    void savedPdfFollowsPageSetup()
    {
        QFETCH(int, orientation);
        QFETCH(bool, writable);
        DB db;
        db.createCompany(u"Acme"_s, u"Ann"_s, u"CA"_s);
        PrintSetup::setShared(PagedDocument::letter(QPageLayout::Orientation(orientation)));
        QTemporaryDir dir;
        const QString path = writable ? dir.filePath(u"report.pdf"_s) : dir.filePath(u"missing/report.pdf"_s);
        QStringList opened;
        SavedPdf::openHook() = [&](const QString &p) { opened << p; };
        QString alert;
        QTimer poll;
        connect(&poll, &QTimer::timeout, this, [&] {
            if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
                alert = box->text();
                box->accept();
            }
        });
        poll.start(20);
        const bool saved = SavedPdf::save(nullptr, path, [&](QPageLayout::Orientation o) {
            return PDFOut::saveHTML(db, paragraphs(3), path, o);
        });
        QCOMPARE(saved, writable);
        QCOMPARE(alert, writable ? QString() : u"Export failed"_s);
        // Nothing opens by itself: a message says where the file went and opens it when asked.
        QVERIFY(opened.isEmpty());
        QMessageBox *message = nullptr;
        for (QWidget *w : QApplication::topLevelWidgets())
            if (w->objectName() == QString::fromUtf16(SavedPdf::kSavedMessage) && w->isVisible())
                message = qobject_cast<QMessageBox *>(w);
        QCOMPARE(message != nullptr, writable);
        if (message) {
            QCOMPARE(message->text(),
                     u"Saved \u201Creport.pdf\u201D in "_s + QDir::toNativeSeparators(dir.path()) + u'.');
            QStringList buttons;
            for (QAbstractButton *b : message->buttons())
                buttons << b->text();
            QVERIFY2(buttons.contains(u"Show in Folder"_s), qPrintable(buttons.join(u", "_s)));
            for (QAbstractButton *b : message->buttons())
                if (b->text() == u"Open")
                    b->click();
            QCOMPARE(opened, QStringList{path});
        }
        SavedPdf::openHook() = [](const QString &) {};
        if (writable) {
            const QSize want = orientation == int(QPageLayout::Landscape) ? QSize(792, 612) : QSize(612, 792);
            QCOMPARE(PdfPages(path).pageSize(0).toSize(), want);
        }
        // A cancelled chooser writes and opens nothing.
        QVERIFY(!SavedPdf::save(nullptr, QString(), [](QPageLayout::Orientation) { return true; }));
    }

    // After a backup the new zip is shown in the file manager; a cancelled one shows nothing.
    void backupIsRevealed()
    {
        QTemporaryDir dir;
        QDir().mkpath(dir.filePath(u"data"_s));
        DB db(dir.filePath(u"data/trestle.sqlite"_s));
        db.createCompany(u"Acme"_s, u"Ann"_s, u"CA"_s);
        const QString zip = dir.filePath(u"backup.zip"_s);
        // A failure would show a modal alert: note it and close it.
        QString alert;
        QTimer poll;
        connect(&poll, &QTimer::timeout, this, [&] {
            if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
                alert = box->text();
                box->accept();
            }
        });
        poll.start(20);
        QStringList revealed;
        FileActions::revealHook() = [&](const QString &p) { revealed << p; };
        FileActions::saveFileHook() = [&](QWidget *, const QString &, const QString &) { return zip; };
        FileActions::backupAll(nullptr, db);
        FileActions::saveFileHook() = [&](QWidget *, const QString &, const QString &) { return QString(); };
        FileActions::backupAll(nullptr, db);
        FileActions::revealHook() = [](const QString &) {};
        QCOMPARE(alert, QString());
        QVERIFY(QFileInfo(zip).size() > 0);
        QCOMPARE(revealed, QStringList{zip});
    }

    // The editor's Print button follows the record: its job's title and what the dialog is given.
    void editorPrintFollowsEdits()
    {
        DB db;
        db.createCompany(u"Acme"_s, u"Ann"_s, u"CA"_s);
        const Rec p = db.add(u"project"_s, {}, {}, {{u"name"_s, u"Tower"_s}});
        Rec rfi = db.add(u"rfi"_s, p.id, {}, {{u"number"_s, u"7"_s}, {u"subject"_s, u"Footing depth"_s}});
        Nav nav;
        const ModuleDef &def = *Modules::get(u"rfis"_s);
        RecordEditor editor(db, nav, def, rfi.id);
        auto *print = editor.findChild<PrintButton *>();
        QVERIFY(print);
        const QString before = print->job().title;
        QVERIFY(before.endsWith(u" 7"_s));
        rfi.f.insert(u"number"_s, u"12"_s);
        db.save(rfi);
        editor.refresh();
        QCOMPARE(print->job().title, PDFOut::recordTitle(def, *db.get(rfi.id)));
        QVERIFY(print->job().title.endsWith(u" 12"_s));
        QVERIFY(print->toolTip().contains(print->job().title));
        print->click();
        QCOMPARE(m_shown.title, print->job().title);
    }

    void frontMostJobIsMade_data()
    {
        QTest::addColumn<QList<int>>("levels"); // in order of appearance
        QTest::addColumn<int>("winner");
        QTest::newRow("deeper level wins") << QList<int>{2, 0, 1} << 0;
        QTest::newRow("latest among equals") << QList<int>{1, 1, 0} << 1;
        QTest::newRow("single") << QList<int>{0} << 0;
    }
    void frontMostJobIsMade()
    {
        QFETCH(QList<int>, levels);
        QFETCH(int, winner);
        PrintCenter center;
        QList<QUuid> ids;
        QList<int> made(levels.size(), 0);
        for (int i = 0; i < levels.size(); ++i) {
            ids.append(QUuid::createUuid());
            center.put(ids.last(), levels[i], htmlJob(QString::number(i), u"<p>x</p>"_s, &made[i]));
        }
        center.print();
        for (int i = 0; i < levels.size(); ++i)
            QCOMPARE(made[i], i == winner ? 1 : 0); // the others cost nothing
        QCOMPARE(m_shown.calls, 1);
        QCOMPARE(m_shown.title, QString::number(winner));
        // When the entries leave, Print has nothing.
        for (const QUuid &id : ids)
            center.remove(id);
        QVERIFY(!center.front());
        QTRY_VERIFY(!center.hasJob());
    }

    void nothingToPrintBeeps_data()
    {
        QTest::addColumn<bool>("registered");
        QTest::addColumn<bool>("withMake");
        QTest::newRow("no job in front") << false << false;
        QTest::newRow("job makes nothing") << true << true;
        QTest::newRow("job without a maker") << true << false;
    }
    void nothingToPrintBeeps()
    {
        QFETCH(bool, registered);
        QFETCH(bool, withMake);
        PrintCenter center;
        int made = 0;
        if (registered) {
            PrintJob job{u"Empty"_s, {}};
            if (withMake)
                job.make = [&made]() -> std::optional<PrintSource> {
                    ++made;
                    return std::nullopt;
                };
            center.put(QUuid::createUuid(), 1, job);
        }
        const int before = PrintEngine::beeps();
        center.print();
        QCOMPARE(PrintEngine::beeps(), before + 1);
        QCOMPARE(made, withMake ? 1 : 0);
        QCOMPARE(m_shown.calls, 0);
    }

    void printableFollowsVisibility()
    {
        PrintCenter center;
        QWidget screen;
        auto *printable = new Printable(&screen, 1, htmlJob(u"Contacts Log"_s, u"<p>x</p>"_s), center);
        QVERIFY(!center.front());
        screen.show();
        QCOMPARE(center.front()->job.title, u"Contacts Log"_s);
        QTRY_VERIFY(center.hasJob());
        printable->setTitle(u"Vendors Log"_s);
        QCOMPARE(center.front()->job.title, u"Vendors Log"_s);
        screen.hide();
        QVERIFY(!center.front());
    }

    void printButtonPrintsItsOwnJob()
    {
        // A deeper screen in front does not take over the button.
        const QUuid front = QUuid::createUuid();
        PrintCenter::shared().put(front, 9, htmlJob(u"Front"_s, u"<p>x</p>"_s));
        int made = 0;
        PrintButton button(htmlJob(u"Budget Clubhouse"_s, u"<p>x</p>"_s, &made));
        QCOMPARE(button.toolTip(),
                 u"Print Budget Clubhouse — preview, choose a printer, or PDF ▸ Save as PDF (Ctrl+P)"_s);
        button.click();
        QCOMPARE(made, 1);
        QCOMPARE(m_shown.title, u"Budget Clubhouse"_s);
        PrintCenter::shared().remove(front);
    }

    void sheetPrintsLandscapeAndTextFollowsSetup()
    {
        QTemporaryDir dir;
        const QString sheet = dir.filePath(u"sheet.pdf"_s);
        QVERIFY(SampleDocs::samplePlan(sheet));
        PrintEngine::run(
            {u"Plan sheet"_s, [sheet] { return std::optional(PrintSource::fromPdf(sheet, u"A-101"_s)); }});
        QCOMPARE(m_shown.orientation, QPageLayout::Landscape);
        QCOMPARE(m_shown.pages, 1);
        PrintEngine::run(htmlJob(u"Log"_s, u"<p>x</p>"_s));
        QCOMPARE(m_shown.orientation, QPageLayout::Portrait); // the page setup's own choice
    }

    // What the preview and the printer get: pages laid out for the paper chosen
    // in the dialog, and only the pages of the range asked for.
    void printedPagesFollowTheDialog_data()
    {
        QTest::addColumn<QPageLayout::Orientation>("orientation");
        QTest::addColumn<int>("rangeFrom"); // 0: all pages
        QTest::newRow("portrait, all") << QPageLayout::Portrait << 0;
        QTest::newRow("landscape, all") << QPageLayout::Landscape << 0;
        QTest::newRow("page 2 only") << QPageLayout::Portrait << 2;
    }
    void printedPagesFollowTheDialog()
    {
        QFETCH(QPageLayout::Orientation, orientation);
        QFETCH(int, rangeFrom);
        QTemporaryDir dir;
        const QString out = dir.filePath(u"out.pdf"_s);
        int portraitPages = 0, laidOut = 0;
        PrintEngine::dialogHook() = [&](PagedDocument &pages, QPrinter &printer, QWidget *) {
            portraitPages = pages.pageCount();
            printer.setOutputFormat(QPrinter::PdfFormat);
            printer.setOutputFileName(out);
            QPageLayout layout = printer.pageLayout();
            layout.setOrientation(orientation);
            printer.setPageLayout(layout);
            if (rangeFrom)
                printer.setPageRanges(QPageRanges::fromString(QString::number(rangeFrom)));
            PrintEngine::printPages(pages, printer);
            laidOut = pages.pageCount();
        };
        PrintEngine::run(htmlJob(u"Daily Logs Log"_s, paragraphs(120)));
        const PdfPages pdf(out);
        QVERIFY(pdf.isValid());
        QVERIFY(portraitPages >= 3);
        if (orientation == QPageLayout::Landscape)
            QVERIFY(laidOut > portraitPages); // re-paginated for the wider, shorter page
        QCOMPARE(pdf.pageCount(), rangeFrom ? 1 : laidOut);
        const QSizeF size = pdf.pageSize(0);
        QCOMPARE(size.width() > size.height(), orientation == QPageLayout::Landscape);
        QVERIFY(pdf.text(0).contains(u"Page "_s + QString::number(rangeFrom ? rangeFrom : 1) + u" of "_s));
    }

    // The real preview: its pages are the engine's, and turning the paper re-paginates.
    void previewRepaginatesOnOrientation()
    {
        PrintEngine::dialogHook() = nullptr;
        int portrait = 0, landscape = 0;
        QTimer poll;
        connect(&poll, &QTimer::timeout, this, [&] {
            auto *dialog = qobject_cast<QPrintPreviewDialog *>(QApplication::activeModalWidget());
            auto *preview = dialog ? dialog->findChild<QPrintPreviewWidget *>() : nullptr;
            if (!preview || preview->pageCount() == 0)
                return;
            portrait = preview->pageCount();
            preview->setLandscapeOrientation();
            preview->updatePreview();
            landscape = preview->pageCount();
            if (const QString keep = qEnvironmentVariable("TRESTLE_KEEP_PREVIEW"); !keep.isEmpty())
                dialog->grab().save(keep);
            dialog->reject();
        });
        poll.start(50);
        PrintEngine::run(htmlJob(u"Daily Logs Log"_s, paragraphs(120)));
        QVERIFY(portrait >= 3);
        QVERIFY(landscape > portrait);
    }

    void logoCommand_data()
    {
        QTest::addColumn<QByteArray>("content"); // empty: the chooser is cancelled
        QTest::addColumn<bool>("installed");
        QImage image(40, 20, QImage::Format_RGB32);
        image.fill(Qt::darkBlue);
        QByteArray png;
        QBuffer buffer(&png);
        buffer.open(QIODevice::WriteOnly);
        image.save(&buffer, "PNG");
        QTest::newRow("picture") << png << true;
        QTest::newRow("broken file") << QByteArray("\x89PNG\r\n\x1a\nnot really a picture") << false;
        QTest::newRow("cancelled") << QByteArray() << false;
    }
    void logoCommand()
    {
        QFETCH(QByteArray, content);
        QFETCH(bool, installed);
        QTemporaryDir dir;
        DB db;
        db.createCompany(u"Acme"_s, u"Olive Owner"_s, u"CO"_s);
        const QString path = dir.filePath(u"logo.png"_s);
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
        file.close();
        QString message, filter;
        FileActions::openFileHook() = [&](QWidget *, const QString &text, const QString &names) {
            message = text;
            filter = names;
            return content.isEmpty() ? QString() : path;
        };
        // The alert is modal: read it and close it from the event loop.
        QString title, text;
        QTimer poll;
        connect(&poll, &QTimer::timeout, this, [&] {
            if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
                title = box->text();
                text = box->informativeText();
                box->accept();
            }
        });
        poll.start(20);
        FileActions::chooseLogo(nullptr, db);
        QCOMPARE(message, u"Choose your company logo for printouts and PDFs"_s);
        QVERIFY(filter.contains(u"*.pdf"_s) && filter.contains(u"*.svg"_s) && filter.contains(u"*.heic"_s));
        const QString logo = db.company()->f.value(u"logo");
        QCOMPARE(!logo.isEmpty(), installed);
        const bool alerted = !installed && !content.isEmpty();
        QCOMPARE(title, alerted ? u"That logo file could not be read"_s : QString());
        QCOMPARE(text, alerted ? u"Try a PNG, JPEG, HEIC, PDF or SVG file."_s : QString());
    }
};

TRESTLE_TEST(PrintTests);
#include "printtests.moc"
