// The document panel on a private store: what its commands do to the body,
// that the body always reaches its file, templates that ask first, and Word export.
#include "testmain.h"

#include "calc/datefmt.h"
#include "catalog/modules.h"
#include "documents/docstore.h"
#include "documents/pdfcheck.h"
#include "look/buttons.h"
#include "screens/documentpanel.h"
#include "screens/richtext.h"
#include "shell/nav.h"
#include "shell/recordeditor.h"
#include "store/db.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QMimeData>
#include <QtCore/QStandardPaths>
#include <QtGui/QKeyEvent>
#include <QtGui/QTextBlock>
#include <QtGui/QTextDocument>
#include <QtGui/QTextList>
#include <QtGui/QTextTable>

using namespace Qt::StringLiterals;

namespace {

struct Shop
{
    DB db;
    Rec project;
    Rec doc;
    Shop()
    {
        db.createCompany(u"Bolt & Beam"_s, u"Olive Owner"_s, u"BB"_s);
        project =
            db.add(u"project"_s, {}, {}, {{u"name"_s, u"Harbor Lofts"_s}, {u"address"_s, u"12 Pier Rd"_s}});
        doc = db.add(u"document"_s, project.id, {}, {{u"title"_s, u"Letter to owner"_s}});
    }
    QString path(const Rec &r) const { return DocStore::bodyPath(db, r); }
    QString bodyText(const Rec &r) const { return DocStore::read(path(r))->toPlainText(); }
};

// Selects `word` in the panel's editor.
void select(DocumentPanel &panel, const QString &word)
{
    QTextCursor c = panel.view()->document()->find(word);
    QVERIFY2(!c.isNull(), qPrintable(word));
    panel.view()->setTextCursor(c);
}

QTextCharFormat formatOf(const QTextDocument &doc, const QString &word)
{
    const QTextCursor found = doc.find(word);
    QTextCursor inside(found.block());
    inside.setPosition(found.selectionStart() + 1);
    return inside.charFormat();
}

// Types the text of several paragraphs into an empty panel.
void type(DocumentPanel &panel, const QString &text)
{
    panel.view()->setFocus();
    QTest::keyClicks(panel.view(), text);
}

} // namespace

class DocumentPanelTests : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        DocumentPanel::confirmHook() = {};
        DateFmt::setToday(QDate(2026, 3, 9));
    }
    void cleanup()
    {
        DocumentPanel::confirmHook() = {};
        DateFmt::setToday({});
    }

    // Each command of the toolbar leaves its mark in the body file, read back by a new panel.
    void commandsSurviveTheBodyFile_data()
    {
        QTest::addColumn<QString>("command");
        for (const char *c : {"bold", "italic", "underline", "red", "center", "right", "bullets", "heading1",
                              "heading2", "font", "picture"})
            QTest::newRow(c) << QString::fromLatin1(c);
    }
    void commandsSurviveTheBodyFile()
    {
        QFETCH(QString, command);
        Shop shop;
        {
            DocumentPanel panel(shop.db, shop.doc.id);
            panel.view()->setPlainText(u"first line\nsecond target line\nthird line"_s);
            select(panel, u"target"_s);
            RichTextController *c = panel.controller();
            if (command == u"bold")
                c->toggleTrait(RichTextController::Bold);
            else if (command == u"italic")
                c->toggleTrait(RichTextController::Italic);
            else if (command == u"underline")
                c->toggleTrait(RichTextController::Underline);
            else if (command == u"red")
                c->redText();
            else if (command == u"center")
                c->align(Qt::AlignHCenter);
            else if (command == u"right")
                c->align(Qt::AlignRight);
            else if (command == u"bullets")
                c->bullets();
            else if (command == u"heading1")
                c->heading(RichTextController::kHeading1, 1);
            else if (command == u"heading2")
                c->heading(RichTextController::kHeading2, 2);
            else if (command == u"font")
                c->applyFont(QFont(u"DejaVu Sans Mono"_s, 17));
            else if (command == u"picture") {
                QImage pic(60, 30, QImage::Format_RGB32);
                pic.fill(Qt::darkGreen);
                panel.view()->setTextCursor(QTextCursor(panel.view()->document()));
                panel.view()->insertImage(pic);
            }
            QVERIFY(panel.hasPendingWrite());
        }
        DocumentPanel back(shop.db, shop.doc.id);
        const QTextDocument &doc = *back.view()->document();
        QVERIFY(doc.toPlainText().contains(u"second target line"_s));
        const QTextCharFormat f = formatOf(doc, u"target"_s);
        const QTextBlock block = doc.find(u"target"_s).block();
        if (command == u"bold") {
            QCOMPARE(f.fontWeight(), int(QFont::Bold));
            QVERIFY(formatOf(doc, u"second"_s).fontWeight() < QFont::DemiBold); // only the selection
        } else if (command == u"italic")
            QVERIFY(f.fontItalic());
        else if (command == u"underline")
            QVERIFY(f.fontUnderline());
        else if (command == u"red")
            QCOMPARE(f.foreground().color(), RichTextController::red());
        else if (command == u"center")
            QVERIFY(block.blockFormat().alignment() & Qt::AlignHCenter);
        else if (command == u"right")
            QVERIFY(block.blockFormat().alignment() & Qt::AlignRight);
        else if (command == u"bullets") {
            QVERIFY(block.textList());
            QCOMPARE(block.textList()->format().style(), QTextListFormat::ListDisc);
            QVERIFY(!doc.find(u"first"_s).block().textList()); // other paragraphs stay plain
        } else if (command.startsWith(u"heading")) {
            const bool one = command == u"heading1";
            // The whole paragraph, not only the selected word.
            QCOMPARE(formatOf(doc, u"second"_s).fontPointSize(),
                     one ? RichTextController::kHeading1 : RichTextController::kHeading2);
            QCOMPARE(formatOf(doc, u"second"_s).fontWeight(), int(QFont::Bold));
            QCOMPARE(block.blockFormat().headingLevel(), one ? 1 : 2);
            QVERIFY(formatOf(doc, u"third"_s).fontWeight() < QFont::DemiBold);
        } else if (command == u"font") {
            QCOMPARE(f.fontFamilies().toStringList().value(0), u"DejaVu Sans Mono"_s);
            QCOMPARE(f.fontPointSize(), 17.0);
        } else if (command == u"picture") {
            QSize found;
            for (QTextBlock b = doc.begin(); b.isValid(); b = b.next())
                for (auto it = b.begin(); !it.atEnd(); ++it)
                    if (it.fragment().charFormat().isImageFormat())
                        found = doc.resource(QTextDocument::ImageResource,
                                             QUrl(it.fragment().charFormat().toImageFormat().name()))
                                    .value<QImage>()
                                    .size();
            QCOMPARE(found, QSize(60, 30));
        }
    }

    // A toggle on a selection that already has the trait takes it off, and
    // bullets on a bulleted paragraph remove them; normal text undoes a heading.
    void commandsTakeBack()
    {
        Shop shop;
        DocumentPanel panel(shop.db, shop.doc.id);
        panel.view()->setPlainText(u"alpha beta"_s);
        select(panel, u"beta"_s);
        RichTextController *c = panel.controller();
        c->toggleTrait(RichTextController::Bold);
        QVERIFY(c->hasTrait(RichTextController::Bold));
        c->toggleTrait(RichTextController::Bold);
        QVERIFY(!c->hasTrait(RichTextController::Bold));
        c->bullets();
        QVERIFY(panel.view()->document()->begin().textList());
        c->bullets();
        QVERIFY(!panel.view()->document()->begin().textList());
        c->heading(RichTextController::kHeading1, 1);
        c->normalText();
        const QTextDocument &doc = *panel.view()->document();
        QCOMPARE(formatOf(doc, u"alpha"_s).fontPointSize(), RichTextController::kNormal);
        QVERIFY(formatOf(doc, u"alpha"_s).fontWeight() < QFont::DemiBold);
        QCOMPARE(doc.begin().blockFormat().headingLevel(), 0);
    }

    // The formatting keys work in the text and reach the body file.
    void formattingKeys_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("trait");
        QTest::newRow("Ctrl+B") << int(Qt::Key_B) << int(RichTextController::Bold);
        QTest::newRow("Ctrl+I") << int(Qt::Key_I) << int(RichTextController::Italic);
        QTest::newRow("Ctrl+U") << int(Qt::Key_U) << int(RichTextController::Underline);
    }
    void formattingKeys()
    {
        QFETCH(int, key);
        QFETCH(int, trait);
        Shop shop;
        DocumentPanel panel(shop.db, shop.doc.id);
        panel.view()->setPlainText(u"alpha beta"_s);
        select(panel, u"beta"_s);
        QKeyEvent override(QEvent::ShortcutOverride, key, Qt::ControlModifier);
        override.ignore(); // as the shortcut map sends it
        QCoreApplication::sendEvent(panel.view(), &override);
        QVERIFY(override.isAccepted()); // ahead of the window's Ctrl+B
        QTest::keyClick(panel.view(), Qt::Key(key), Qt::ControlModifier);
        QVERIFY(panel.controller()->hasTrait(RichTextController::Trait(trait)));
        QVERIFY(panel.view()->document()->toPlainText() == u"alpha beta"_s); // nothing typed
        QTest::keyClick(panel.view(), Qt::Key(key), Qt::ControlModifier);
        QVERIFY(!panel.controller()->hasTrait(RichTextController::Trait(trait)));
    }

    // A pasted picture is taken in by the editor, not refused or pasted as a file name.
    void pastedPictureIsKept()
    {
        Shop shop;
        DocumentPanel panel(shop.db, shop.doc.id);
        QImage pic(50, 40, QImage::Format_ARGB32);
        pic.fill(Qt::red);
        struct Probe : RichTextView
        {
            using RichTextView::canInsertFromMimeData;
            using RichTextView::insertFromMimeData;
        };
        auto *view = static_cast<Probe *>(panel.view());
        QMimeData mime;
        mime.setImageData(pic);
        QVERIFY(view->canInsertFromMimeData(&mime));
        view->insertFromMimeData(&mime);
        panel.flush();
        QVERIFY(DocStore::read(shop.path(shop.doc))->toHtml().contains(u"<img"_s));
    }

    // Pictures keep their own places through several loads and writes, where the
    // panel reuses their encoded form instead of encoding them again.
    void picturesSurviveRewrites()
    {
        Shop shop;
        auto sizes = [](const QTextDocument &doc) {
            QList<QSize> out;
            for (QTextBlock b = doc.begin(); b.isValid(); b = b.next())
                for (auto it = b.begin(); !it.atEnd(); ++it)
                    if (it.fragment().charFormat().isImageFormat())
                        out << doc.resource(QTextDocument::ImageResource,
                                            QUrl(it.fragment().charFormat().toImageFormat().name()))
                                   .value<QImage>()
                                   .size();
            return out;
        };
        const QList<QSize> expected{QSize(30, 20), QSize(70, 10), QSize(30, 20)};
        {
            DocumentPanel panel(shop.db, shop.doc.id);
            for (const QSize &size : expected) {
                QImage pic(size, QImage::Format_RGB32);
                pic.fill(size.width() == 30 ? Qt::blue : Qt::yellow);
                panel.view()->insertImage(pic);
                panel.view()->insertPlainText(u" text "_s);
            }
        }
        for (int round = 0; round < 2; ++round) {
            DocumentPanel panel(shop.db, shop.doc.id);
            QCOMPARE(sizes(*panel.view()->document()), expected);
            panel.view()->moveCursor(QTextCursor::End);
            type(panel, u"more"_s);
        }
        QCOMPARE(sizes(*DocStore::read(shop.path(shop.doc))), expected);
        QVERIFY(shop.bodyText(shop.doc).endsWith(u"moremore"_s));
    }

    // Typing reaches the file even when the panel goes before its timer fires.
    void typingIsNeverLost_data()
    {
        QTest::addColumn<QString>("how");
        QTest::newRow("panel destroyed") << u"destroy"_s;
        QTest::newRow("record switched") << u"switch"_s;
        QTest::newRow("panel hidden") << u"hide"_s;
        QTest::newRow("timer") << u"timer"_s;
    }
    void typingIsNeverLost()
    {
        QFETCH(QString, how);
        Shop shop;
        const Rec other = shop.db.add(u"document"_s, shop.project.id, {}, {{u"title"_s, u"Other"_s}});
        auto panel = std::make_unique<DocumentPanel>(shop.db, shop.doc.id);
        panel->show();
        type(*panel, u"Dear owner"_s);
        QVERIFY(panel->hasPendingWrite());
        QVERIFY(!shop.bodyText(shop.doc).contains(u"Dear owner"_s)); // not yet: the write is coalesced
        if (how == u"destroy")
            panel.reset();
        else if (how == u"switch") {
            panel->showRecord(other.id);
            QCOMPARE(panel->recordId(), other.id);
            QVERIFY(panel->view()->document()->isEmpty()); // the other record has no body yet
        } else if (how == u"hide")
            panel->hide();
        else
            QTRY_VERIFY(!panel->hasPendingWrite());
        QCOMPARE(shop.bodyText(shop.doc), u"Dear owner"_s);
        QVERIFY(!shop.bodyText(other).contains(u"Dear owner"_s));
    }

    // A record deleted while a write waits does not get its body back.
    void deletedRecordLeavesNoBody()
    {
        Shop shop;
        DocumentPanel panel(shop.db, shop.doc.id);
        const QString path = shop.path(shop.doc);
        type(panel, u"draft"_s);
        shop.db.remove(shop.doc.id);
        QFile::remove(path);
        panel.flush();
        QVERIFY(!QFile::exists(path));
    }

    // An unreadable body (here a folder where the file should be) gives an empty
    // editor, and a write that cannot happen neither crashes nor harms what is there.
    void unreadableBodyGivesEmptyEditor()
    {
        Shop shop;
        const QString path = shop.path(shop.doc);
        QVERIFY(QDir().mkpath(path));
        QFile inside(path + u"/keep.txt"_s);
        QVERIFY(inside.open(QIODevice::WriteOnly));
        inside.write("kept");
        inside.close();
        DocumentPanel panel(shop.db, shop.doc.id);
        QVERIFY(panel.view()->document()->toPlainText().isEmpty());
        type(panel, u"fresh start"_s);
        panel.flush();
        QVERIFY(QFileInfo(path).isDir());
        QVERIFY(QFile::exists(path + u"/keep.txt"_s));
    }

    // A template on a document with text asks first and changes nothing when refused;
    // on an empty document it goes straight in.
    void templateAsksFirst_data()
    {
        QTest::addColumn<QString>("existing");
        QTest::addColumn<bool>("answer");
        QTest::addColumn<bool>("asked");
        QTest::addColumn<bool>("replaced");
        QTest::newRow("empty: no question") << QString() << false << false << true;
        QTest::newRow("blanks only: no question") << u"   "_s << false << false << true;
        QTest::newRow("text, refused") << u"my own words"_s << false << true << false;
        QTest::newRow("text, accepted") << u"my own words"_s << true << true << true;
    }
    void templateAsksFirst()
    {
        QFETCH(QString, existing);
        QFETCH(bool, answer);
        QFETCH(bool, asked);
        QFETCH(bool, replaced);
        Shop shop;
        DocumentPanel panel(shop.db, shop.doc.id);
        if (!existing.isEmpty())
            type(panel, existing);
        QStringList questions;
        DocumentPanel::confirmHook() = [&](QWidget *, const QString &q) {
            questions << q;
            return answer;
        };
        panel.chooseTemplate(u"subcontract"_s);
        QCOMPARE(questions,
                 asked ? QStringList{u"Replace this document's text with the template?"_s} : QStringList{});
        const QString shown = panel.view()->document()->toPlainText();
        QCOMPARE(shown.contains(u"Subcontract Agreement"_s), replaced);
        QCOMPARE(shop.bodyText(shop.doc).contains(u"Subcontract Agreement"_s), replaced);
        if (replaced) {
            QVERIFY(shown.contains(u"Bolt & Beam"_s)); // the ampersand arrives as itself
            QVERIFY(shown.contains(u"Harbor Lofts"_s));
            QVERIFY(!panel.hasPendingWrite());
        } else {
            QVERIFY(shown.contains(existing.trimmed()));
        }
        // A titled document keeps its title.
        QCOMPARE(shop.db.get(shop.doc.id)->f.value(u"title"_s), u"Letter to owner"_s);
    }

    // The transmittal keeps its real table in the editor and in the file.
    void transmittalKeepsItsTable()
    {
        Shop shop;
        Rec untitled = shop.db.add(u"document"_s, shop.project.id, {}, {});
        {
            DocumentPanel panel(shop.db, untitled.id);
            panel.chooseTemplate(u"transmittal"_s);
            QVERIFY(panel.view()->document()->find(u"Copies"_s).currentTable());
        }
        DocumentPanel back(shop.db, untitled.id);
        QVERIFY(back.view()->document()->find(u"Description"_s).currentTable());
        QCOMPARE(shop.db.get(untitled.id)->f.value(u"title"_s), u"Transmittal"_s);
    }

    // Attaching stores the file with the document and turns the button into Replace and Open.
    void attachedFileShowsItsButtons()
    {
        Shop shop;
        DocumentPanel panel(shop.db, shop.doc.id);
        auto *attach = panel.findChild<FWChromeButton *>(u"attach"_s);
        auto *open = panel.findChild<FWChromeButton *>(u"open"_s);
        QVERIFY(attach && open);
        QCOMPARE(attach->text(), u"Attach File…"_s);
        QVERIFY(open->isHidden());
        QVERIFY(!panel.attachFile(u"/no/such/file.pdf"_s));
        QTemporaryDir dir;
        const QString permit = dir.filePath(u"permit.pdf"_s);
        QFile f(permit);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("%PDF-1.4 permit");
        f.close();
        QVERIFY(panel.attachFile(permit));
        const QString stored = shop.db.get(shop.doc.id)->f.value(u"file"_s);
        QVERIFY(!stored.isEmpty());
        QVERIFY(QFile::exists(shop.db.fileURL(stored, shop.doc.company)));
        QCOMPARE(attach->text(), u"Replace File…"_s);
        QCOMPARE(open->text(), u"Open "_s + stored);
        QVERIFY(!open->isHidden());
    }

    // Every toolbar item carries its help text.
    void toolbarHasHelp()
    {
        Shop shop;
        DocumentPanel panel(shop.db, shop.doc.id);
        for (const char *name : {"Bold", "Italic", "Underline", "Heading 1", "Heading 2", "Normal text",
                                 "Bullet list", "Align left", "Center", "Align right", "Red text", "Fonts"}) {
            auto *b = panel.findChild<FWChromeButton *>(QString::fromLatin1(name));
            QVERIFY2(b, name);
            QVERIFY2(b->toolTip().startsWith(QString::fromLatin1(name)), name);
        }
    }

    // The record editor of a document holds the panel once the screens layer registered it.
    void recordEditorShowsThePanel()
    {
        Shop shop;
        DocumentPanel::registerExtras();
        Nav nav;
        RecordEditor editor(shop.db, nav, *Modules::get(u"documents"), shop.doc.id);
        QVERIFY(editor.findChild<DocumentPanel *>());
    }

    // The PDF export holds the text as it stands, typing included.
    void pdfHoldsTheText()
    {
        Shop shop;
        DocumentPanel panel(shop.db, shop.doc.id);
        panel.chooseTemplate(u"ntp"_s);
        panel.view()->moveCursor(QTextCursor::End);
        type(panel, u" Acknowledged"_s);
        QTemporaryDir dir;
        const QString pdf = dir.filePath(u"ntp.pdf"_s);
        QVERIFY(panel.exportPDF(pdf));
        const QStringList words = PdfCheck::pageWords(pdf).value(0);
        QVERIFY(words.contains(u"Notice"_s));
        QVERIFY(words.contains(u"Acknowledged"_s));
        QVERIFY(!panel.hasPendingWrite()); // the export wrote the body too
    }

    // The Word file opens in LibreOffice with the same text.
    void wordOpensInLibreOffice()
    {
        const QString soffice = QStandardPaths::findExecutable(u"soffice"_s);
        QVERIFY2(!soffice.isEmpty(),
                 "LibreOffice is not installed (scripts/setup installs libreoffice-writer-nogui)");
        Shop shop;
        DocumentPanel panel(shop.db, shop.doc.id);
        panel.chooseTemplate(u"scope"_s);
        select(panel, u"Schedule"_s);
        panel.controller()->redText();
        QTemporaryDir dir;
        const QString docx = dir.filePath(u"scope.docx"_s);
        QVERIFY(panel.exportWord(docx));
        QProcess p;
        p.start(soffice, {u"-env:UserInstallation=file://"_s + dir.filePath(u"profile"_s), u"--headless"_s,
                          u"--convert-to"_s, u"txt:Text (encoded):UTF8"_s, u"--outdir"_s, dir.path(), docx});
        QVERIFY(p.waitForFinished(120000));
        QFile txt(dir.filePath(u"scope.txt"_s));
        QVERIFY2(txt.open(QIODevice::ReadOnly), qPrintable(QString::fromUtf8(p.readAllStandardError())));
        const QString got = QString::fromUtf8(txt.readAll());
        QVERIFY(got.contains(u"Scope of Work"_s));
        auto words = [](const QString &s) {
            QString t = s;
            t.remove(u'•');
            return t.simplified();
        };
        // The same words in the same order; list bullets may be written by the reader.
        QCOMPARE(words(got).remove(u' '), words(panel.view()->document()->toPlainText()).remove(u' '));
    }
};

TRESTLE_TEST(DocumentPanelTests);
#include "documentpaneltests.moc"
