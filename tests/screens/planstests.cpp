// The plan sheets screen on a private store: names from file names, revisions,
// refused files, marks drawn with the mouse landing in the sheet's file, undo,
// the old-revision warning and deleting a sheet.
#include "testmain.h"

#include "look/fwui.h"

#include "calc/datefmt.h"
#include "catalog/modules.h"
#include "documents/pdfmarks.h"
#include "documents/samplefiles.h"
#include "screens/markupview.h"
#include "screens/plansscreen.h"
#include "shell/nav.h"
#include "shell/notice.h"
#include "shell/savebanner.h"
#include "store/db.h"
#include "store/filewrites.h"

#include <QtCore/QCryptographicHash>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>
#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtGui/QPdfWriter>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QScrollBar>

using namespace Qt::StringLiterals;

namespace {

// A drawing of `pages` pages on Tabloid landscape at `path`.
QString drawing(const QString &path, int pages = 1)
{
    QPdfWriter writer(path);
    writer.setPageSize(QPageSize(QSizeF(17, 11), QPageSize::Inch));
    writer.setPageMargins({});
    writer.setResolution(72);
    QPainter p(&writer);
    for (int i = 0; i < pages; ++i) {
        if (i)
            writer.newPage();
        p.drawRect(36, 36, 1152, 720);
        p.drawText(60, 80, u"PAGE %1"_s.arg(i + 1));
    }
    return path;
}

QByteArray hashOf(const QString &path)
{
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly))
        return {};
    return QCryptographicHash::hash(f.readAll(), QCryptographicHash::Sha256);
}

void send(QWidget *to, QEvent::Type type, const QPointF &at, Qt::MouseButtons buttons)
{
    QMouseEvent e(type, at, to->mapToGlobal(at), Qt::LeftButton, buttons, Qt::NoModifier);
    QApplication::sendEvent(to, &e);
}

// A drag on the viewer from `a` to `b`, points of page `page`.
void drag(MarkupView *view, int page, const QPointF &a, const QPointF &b)
{
    QWidget *vp = view->viewport();
    send(vp, QEvent::MouseButtonPress, view->toViewport(page, a), Qt::LeftButton);
    send(vp, QEvent::MouseMove, view->toViewport(page, (a + b) / 2), Qt::LeftButton);
    send(vp, QEvent::MouseMove, view->toViewport(page, b), Qt::LeftButton);
    send(vp, QEvent::MouseButtonRelease, view->toViewport(page, b), Qt::NoButton);
}

} // namespace

class PlansTests : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    DB *m_db = nullptr;
    Nav *m_nav = nullptr;
    Rec m_project;

    PlansScreen *screen()
    {
        auto *s = new PlansScreen({*m_db, *m_nav, *Modules::get(u"plans")});
        s->resize(1300, 800);
        return s;
    }
    Rec sheet(const QString &number, int version)
    {
        for (const Rec &r : m_db->list(u"plan_sheet"_s))
            if (r.f.value(u"number") == number && r.i(u"version") == version)
                return r;
        return {};
    }

private Q_SLOTS:
    void init()
    {
        DateFmt::setToday(QDate(2026, 3, 14));
        Nav().setProjectID(QString());
        m_db = new DB;
        m_nav = new Nav;
        m_db->createCompany(u"Acme Builders"_s, u"Olive Owner"_s, u"CO"_s);
        m_project = m_db->add(u"project"_s, {}, {}, {{u"name"_s, u"Clubhouse"_s}});
        m_nav->setProjectID(m_project.id);
        PlansScreen::reportHook() = [](QWidget *, const QString &, const QString &) {};
        PlansScreen::confirmDeleteHook() = [](QWidget *) { return true; };
    }
    void cleanup()
    {
        delete m_nav;
        delete m_db;
        PlansScreen::reportHook() = {};
        PlansScreen::confirmDeleteHook() = {};
        PlansScreen::chooseFilesHook() = {};
        MarkupView::askNoteHook() = {};
        DateFmt::setToday(QDate());
    }

    void sheetName_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<int>("existing");
        QTest::addColumn<int>("n");
        QTest::addColumn<QString>("number");
        QTest::addColumn<QString>("title");
        QTest::newRow("number and title")
            << u"A-101 Floor Plan.pdf"_s << 0 << 1 << u"A-101"_s << u"Floor Plan"_s;
        QTest::newRow("no digit in the first word")
            << u"Site Plan.pdf"_s << 0 << 1 << u"S-01"_s << u"Site Plan"_s;
        QTest::newRow("counts on from the sheets there")
            << u"Site Plan.pdf"_s << 4 << 2 << u"S-06"_s << u"Site Plan"_s;
        QTest::newRow("one word only") << u"C2.pdf"_s << 0 << 1 << u"S-01"_s << u"C2"_s;
        QTest::newRow("split at the first blank only")
            << u"S2.1 Roof Framing Plan.pdf"_s << 0 << 3 << u"S2.1"_s << u"Roof Framing Plan"_s;
        QTest::newRow("past 99") << u"Detail.pdf"_s << 120 << 1 << u"S-121"_s << u"Detail"_s;
    }
    void sheetName()
    {
        QFETCH(QString, file);
        QFETCH(int, existing);
        QFETCH(int, n);
        QFETCH(QString, number);
        QFETCH(QString, title);
        const auto [gotNumber, gotTitle] = PlansScreen::sheetName(file, existing, n);
        QCOMPARE(gotNumber, number);
        QCOMPARE(gotTitle, title);
    }

    void addSheetsNamesAndSelects()
    {
        std::unique_ptr<PlansScreen> s(screen());
        QVERIFY(s->emptyText()->isVisibleTo(s.get()));
        QCOMPARE(s->emptyText()->text(),
                 u"No plan sheets yet. Click Add Sheets (PDF)… — each PDF becomes a sheet; "
                 u"multi-page sets work too."_s);
        const QStringList paths{drawing(m_dir.filePath(u"A-101 Floor Plan.pdf"_s)),
                                drawing(m_dir.filePath(u"Site Plan.pdf"_s), 3),
                                drawing(m_dir.filePath(u"C2.pdf"_s))};
        PlansScreen::chooseFilesHook() = [paths](QWidget *, bool several) {
            return several ? paths : QStringList();
        };
        QAbstractButton *add = nullptr;
        for (QAbstractButton *b : s->findChildren<QAbstractButton *>())
            if (b->text() == u"Add Sheets (PDF)…")
                add = b;
        QVERIFY(add);
        add->click();
        const QList<Rec> sheets = PlansScreen::sheetsInOrder(*m_db, m_project.id);
        QCOMPARE(sheets.size(), 3);
        QStringList shown;
        for (const Rec &r : sheets)
            shown << r.f.value(u"number") + u'|' + r.f.value(u"title");
        QCOMPARE(shown, (QStringList{u"A-101|Floor Plan"_s, u"S-02|Site Plan"_s, u"S-03|C2"_s}));
        for (const Rec &r : sheets) {
            QCOMPARE(r.f.value(u"version"), u"1"_s);
            QCOMPARE(r.f.value(u"status"), u"Current"_s);
            QCOMPARE(r.f.value(u"discipline"), u"General"_s);
            QCOMPARE(r.f.value(u"date"), u"2026-03-14"_s);
            QVERIFY(QFile::exists(m_db->fileURL(r.f.value(u"file"))));
        }
        // The last one added is shown, with all its pages.
        QCOMPARE(m_nav->selected(u"plans"_s), sheet(u"S-03"_s, 1).id);
        QCOMPARE(s->list()->count(), 3);
        QCOMPARE(s->caption()->text(), u"3 current · 3 sheets"_s);
        QVERIFY(!s->emptyText()->isVisibleTo(s.get()));
        QVERIFY(s->viewer());
        QCOMPARE(s->viewer()->pageCount(), 1);
        s->list()->setCurrentRow(1);
        QCOMPARE(m_nav->selected(u"plans"_s), sheet(u"S-02"_s, 1).id);
        QCOMPARE(s->viewer()->pageCount(), 3);
        // A retitled sheet shows its new title in its row, and stays chosen.
        Rec renamed = sheet(u"A-101"_s, 1);
        renamed.f.insert(u"title"_s, u"Ground Floor"_s);
        m_db->save(renamed);
        s->refresh();
        QStringList texts;
        for (QLabel *l : s->list()->itemWidget(s->list()->item(0))->findChildren<QLabel *>())
            texts << l->text();
        QVERIFY2(texts.contains(u"A-101  Ground Floor"_s), qPrintable(texts.join(u'|')));
        QCOMPARE(s->list()->currentRow(), 1);
    }

    void badFilesAreRefusedWithoutARecord_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("cut short") << QByteArray();
        QTest::newRow("not a PDF at all") << QByteArray("just some text\n");
    }
    void badFilesAreRefusedWithoutARecord()
    {
        QFETCH(QByteArray, bytes);
        if (bytes.isEmpty()) {
            QFile whole(drawing(m_dir.filePath(u"whole.pdf"_s)));
            QVERIFY(whole.open(QIODevice::ReadOnly));
            bytes = whole.readAll().left(whole.size() * 2 / 3);
        }
        const QString bad = m_dir.filePath(u"A-102 Broken.pdf"_s);
        QFile f(bad);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(bytes);
        f.close();
        QString reported;
        PlansScreen::reportHook() = [&](QWidget *, const QString &title, const QString &text) {
            reported = title + u": "_s + text;
        };
        PlansScreen::chooseFilesHook() = [&](QWidget *, bool) {
            return QStringList{bad, drawing(m_dir.filePath(u"A-103 Good.pdf"_s))};
        };
        std::unique_ptr<PlansScreen> s(screen());
        for (QAbstractButton *b : s->findChildren<QAbstractButton *>())
            if (b->text() == u"Add Sheets (PDF)…")
                b->click();
        QVERIFY2(reported.startsWith(u"Some files were not added: “A-102 Broken.pdf”"_s),
                 qPrintable(reported));
        const QList<Rec> sheets = m_db->list(u"plan_sheet"_s);
        QCOMPARE(sheets.size(), 1);
        QCOMPARE(sheets.first().f.value(u"number"), u"A-103"_s);
    }

    // Revisions 1 and 2 give 3; both older ones are superseded and their files untouched.
    void newVersionSupersedesTheOlder()
    {
        std::unique_ptr<PlansScreen> s(screen());
        s->addSheets(m_project, {drawing(m_dir.filePath(u"A-101 Floor Plan.pdf"_s))});
        Rec one = sheet(u"A-101"_s, 1);
        m_db->add(u"plan_sheet"_s, m_project.id, {},
                  {{u"number"_s, u"A-101"_s},
                   {u"title"_s, u"Floor Plan"_s},
                   {u"version"_s, u"2"_s},
                   {u"status"_s, u"Current"_s},
                   {u"discipline"_s, u"Architectural"_s},
                   {u"file"_s, *m_db->importFile(drawing(m_dir.filePath(u"rev2.pdf"_s)))}});
        s->addSheets(m_project, {drawing(m_dir.filePath(u"E-201 Lighting.pdf"_s))});
        const Rec two = sheet(u"A-101"_s, 2);
        const QByteArray oneBytes = hashOf(m_db->fileURL(one.f.value(u"file")));
        const QByteArray twoBytes = hashOf(m_db->fileURL(two.f.value(u"file")));

        QVERIFY(!s->newVersion(two, drawing(m_dir.filePath(u"A-101 rev 3.pdf"_s))));
        const Rec three = sheet(u"A-101"_s, 3);
        QCOMPARE(three.f.value(u"status"), u"Current"_s);
        QCOMPARE(three.f.value(u"title"), u"Floor Plan"_s);
        QCOMPARE(three.f.value(u"discipline"), u"Architectural"_s);
        QCOMPARE(m_nav->selected(u"plans"_s), three.id);
        QCOMPARE(sheet(u"A-101"_s, 1).f.value(u"status"), u"Superseded"_s);
        QCOMPARE(sheet(u"A-101"_s, 2).f.value(u"status"), u"Superseded"_s);
        QCOMPARE(sheet(u"E-201"_s, 1).f.value(u"status"), u"Current"_s);
        QCOMPARE(hashOf(m_db->fileURL(one.f.value(u"file"))), oneBytes);
        QCOMPARE(hashOf(m_db->fileURL(two.f.value(u"file"))), twoBytes);

        // Listed by number, newest revision first.
        QStringList order;
        for (const Rec &r : PlansScreen::sheetsInOrder(*m_db, m_project.id))
            order << r.f.value(u"number") + u'/' + r.f.value(u"version");
        QCOMPARE(order, (QStringList{u"A-101/3"_s, u"A-101/2"_s, u"A-101/1"_s, u"E-201/1"_s}));
        QCOMPARE(s->caption()->text(), u"2 current · 4 sheets"_s);

        // A damaged file makes no revision and leaves the current one current.
        const QString bad = m_dir.filePath(u"bad.pdf"_s);
        QFile f(bad);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("%PDF-1.4\nnothing\n");
        f.close();
        QVERIFY(s->newVersion(three, bad));
        QCOMPARE(sheet(u"A-101"_s, 3).f.value(u"status"), u"Current"_s);
        QCOMPARE(m_db->count(u"plan_sheet"_s), 4);
    }

    // Marks drawn with the mouse go into the sheet's file; undo takes the last back out.
    void marksLandInTheFile()
    {
        std::unique_ptr<PlansScreen> s(screen());
        s->addSheets(m_project, {drawing(m_dir.filePath(u"A-101 Floor Plan.pdf"_s), 2)});
        const QString file = m_db->fileURL(sheet(u"A-101"_s, 1).f.value(u"file"));
        s->show();
        MarkupView *view = s->viewer();
        QVERIFY(view);
        s->setColorName(u"Blue"_s);
        s->setTool(u"box"_s);
        drag(view, 0, {100, 100}, {300, 200});
        s->setTool(u"pen"_s);
        drag(view, 0, {400, 400}, {500, 450});
        s->setTool(u"highlight"_s);
        drag(view, 0, {600, 100}, {700, 150});
        MarkupView::askNoteHook() = [](QWidget *) { return std::optional<QString>(u"Verify"_s); };
        s->setTool(u"text"_s);
        const QPointF at = view->toViewport(0, {200, 500});
        send(view->viewport(), QEvent::MouseButtonPress, at, Qt::LeftButton);
        send(view->viewport(), QEvent::MouseButtonRelease, at, Qt::NoButton);
        // An empty note adds nothing.
        MarkupView::askNoteHook() = [](QWidget *) { return std::optional<QString>(u"  "_s); };
        send(view->viewport(), QEvent::MouseButtonPress, at, Qt::LeftButton);
        send(view->viewport(), QEvent::MouseButtonRelease, at, Qt::NoButton);

        QList<PdfMarkup::Mark> marks = PdfMarkup(file).marks(0);
        QCOMPARE(marks.size(), 4);
        QCOMPARE(marks[0].kind, PdfMarkup::Kind::Box);
        QVERIFY(std::abs(marks[0].rect.left() - 100) < 2 && std::abs(marks[0].rect.bottom() - 200) < 2);
        QCOMPARE(marks[0].color.rgb(), PlansScreen::colors().at(1).second.rgb());
        QCOMPARE(marks[1].kind, PdfMarkup::Kind::Ink);
        QCOMPARE(marks[2].kind, PdfMarkup::Kind::Highlight);
        QCOMPARE(marks[3].kind, PdfMarkup::Kind::Note);
        QCOMPARE(marks[3].text, u"Verify"_s);

        s->undo();
        marks = PdfMarkup(file).marks(0);
        QCOMPARE(marks.size(), 3);
        QCOMPARE(marks.last().kind, PdfMarkup::Kind::Highlight);
        QCOMPARE(view->undoable(), 3);

        // Opening the sheet again starts a new session: nothing of the old one can be undone.
        s->list()->setCurrentRow(-1);
        m_nav->setSelected(u"plans"_s, QString());
        s->refresh();
        QVERIFY(!s->viewer());
        m_nav->setSelected(u"plans"_s, sheet(u"A-101"_s, 1).id);
        s->refresh();
        QVERIFY(s->viewer());
        QCOMPARE(s->viewer()->undoable(), 0);
        s->undo();
        QCOMPARE(PdfMarkup(file).marks(0).size(), 3);
        // The tool and colour stay chosen.
        QCOMPARE(s->tool(), u"text"_s);
        QCOMPARE(s->viewer()->tool(), u"text"_s);
        QCOMPARE(s->colorName(), u"Blue"_s);
    }

    // A mark the sheet's file cannot take is kept and said by the save banner,
    // as any failed write is, and written once the file can be written again.
    void unwritableSheetKeepsTheMarkAndSaysSo()
    {
        std::unique_ptr<PlansScreen> s(screen());
        s->addSheets(m_project, {drawing(m_dir.filePath(u"A-102 Roof.pdf"_s), 1)});
        const QString file = m_db->fileURL(sheet(u"A-102"_s, 1).f.value(u"file"));
        s->show();
        MarkupView *view = s->viewer();
        QVERIFY(view);
        SaveBanner banner(*m_db);
        QVERIFY(banner.isHidden());
        // Its folder gone, the file cannot be written, whoever runs the test.
        const QString folder = QFileInfo(file).absolutePath();
        QVERIFY(QDir().rename(folder, folder + u".away"_s));
        s->setTool(u"box"_s);
        drag(view, 0, {100, 100}, {300, 200});
        QCOMPARE(FileWrites::shared().count(), 1);
        QVERIFY(!banner.isHidden());
        QVERIFY2(banner.text().contains(u"could not be written"_s), qPrintable(banner.text()));
        QVERIFY(banner.text().startsWith(u"Not saved: "_s));
        QVERIFY(!FileWrites::shared().retry());
        QCOMPARE(FileWrites::shared().count(), 1);
        QVERIFY(QDir().rename(folder + u".away"_s, folder));
        QVERIFY(FileWrites::shared().retry());
        QVERIFY(banner.isHidden());
        QCOMPARE(PdfMarkup(file).marks(0).size(), 1);
    }

    // A theme or zoom change restyles the screen but keeps the open sheet's undo
    // list and the part of the sheet in view.
    void lookChangeKeepsUndoAndPosition_data()
    {
        QTest::addColumn<bool>("zoom"); // false: the finish changes
        QTest::newRow("finish") << false;
        QTest::newRow("zoom") << true;
    }
    void lookChangeKeepsUndoAndPosition()
    {
        QFETCH(bool, zoom);
        std::unique_ptr<PlansScreen> s(screen());
        s->addSheets(m_project, {drawing(m_dir.filePath(u"A-101 Floor Plan.pdf"_s), 3)});
        const QString file = m_db->fileURL(sheet(u"A-101"_s, 1).f.value(u"file"));
        s->show();
        MarkupView *view = s->viewer();
        QVERIFY(view);
        s->setTool(u"box"_s);
        drag(view, 0, {100, 100}, {300, 200});
        drag(view, 0, {400, 400}, {500, 450});
        QCOMPARE(view->undoable(), 2);
        view->setZoom(2);
        view->verticalScrollBar()->setValue(view->verticalScrollBar()->maximum() / 2);
        const QPointF before = view->position();
        QVERIFY(before.y() > 0.1);

        FWUI &ui = FWUI::shared();
        const double oldZoom = ui.zoom();
        const QString oldTheme = ui.theme().id;
        if (zoom)
            ui.setZoom(FWUI::nextZoom(oldZoom));
        else
            ui.setTheme(FWTheme::all().last().id == oldTheme ? FWTheme::all().first().id
                                                             : FWTheme::all().last().id);
        QApplication::processEvents();
        MarkupView *after = s->viewer();
        QVERIFY(after);
        QCOMPARE(after->undoable(), 2);
        QCOMPARE(after->zoom(), 2.0);
        QVERIFY2(
            std::abs(after->position().y() - before.y()) < 0.02,
            qPrintable(QString::number(after->position().y()) + u" was "_s + QString::number(before.y())));
        s->undo();
        QCOMPARE(PdfMarkup(file).marks(0).size(), 1);
        ui.setZoom(oldZoom);
        ui.setTheme(oldTheme);
    }

    void oldRevisionWarns()
    {
        std::unique_ptr<PlansScreen> s(screen());
        s->addSheets(m_project, {drawing(m_dir.filePath(u"A-101 Floor Plan.pdf"_s))});
        QVERIFY(!s->notice());
        QVERIFY(!s->newVersion(sheet(u"A-101"_s, 1), drawing(m_dir.filePath(u"A-101 v2.pdf"_s))));
        QVERIFY(!s->notice());
        m_nav->setSelected(u"plans"_s, sheet(u"A-101"_s, 1).id);
        s->refresh();
        QVERIFY(s->notice());
        QCOMPARE(s->notice()->text(),
                 u"This is an old revision (Rev 1). Markups here won't show on the current sheet."_s);
        // A mark on the old sheet goes into the old file, and the warning stays.
        s->show();
        s->setTool(u"box"_s);
        drag(s->viewer(), 0, {50, 50}, {90, 90});
        QCOMPARE(PdfMarkup(m_db->fileURL(sheet(u"A-101"_s, 1).f.value(u"file"))).marks(0).size(), 1);
        QCOMPARE(PdfMarkup(m_db->fileURL(sheet(u"A-101"_s, 2).f.value(u"file"))).marks(0).size(), 0);
        s->refresh();
        QVERIFY(s->notice());
    }

    void deleteSheetAsksFirst_data()
    {
        QTest::addColumn<bool>("confirmed");
        QTest::newRow("confirmed") << true;
        QTest::newRow("cancelled") << false;
    }
    void deleteSheetAsksFirst()
    {
        QFETCH(bool, confirmed);
        PlansScreen::confirmDeleteHook() = [confirmed](QWidget *) { return confirmed; };
        std::unique_ptr<PlansScreen> s(screen());
        s->addSheets(m_project, {drawing(m_dir.filePath(u"A-101 Floor Plan.pdf"_s))});
        const Rec r = sheet(u"A-101"_s, 1);
        const QString file = m_db->fileURL(r.f.value(u"file"));
        s->deleteSheet();
        QCOMPARE(m_db->get(r.id).has_value(), !confirmed);
        QCOMPARE(QFile::exists(file), !confirmed);
        QCOMPARE(s->viewer() != nullptr, !confirmed);
    }

    // The sample's floor plan with one mark of each kind made through the file
    // shows them in their colours where they were put. TRESTLE_KEEP_SHOTS=<folder>
    // keeps the picture for a look.
    void sampleSheetShowsItsMarks()
    {
        DB db;
        Nav nav;
        Sample::create(db, SampleDocs::files());
        Rec plan;
        for (const Rec &r : db.list(u"plan_sheet"_s))
            if (r.f.value(u"number") == u"A-101")
                plan = r;
        QVERIFY(!plan.id.isEmpty());
        const QColor red = PlansScreen::colors().at(0).second, blue = PlansScreen::colors().at(1).second,
                     green = PlansScreen::colors().at(2).second, orange = PlansScreen::colors().at(3).second;
        {
            PdfMarkup pdf(db.fileURL(plan.f.value(u"file")));
            QVERIFY(pdf.addInk(0, {{300, 300}, {360, 340}, {420, 310}, {480, 360}, {540, 330}}, red) > 0);
            QVERIFY(pdf.addBox(0, QRectF(600, 250, 260, 180), blue) > 0);
            QVERIFY(pdf.addHighlight(0, QRectF(900, 500, 300, 120), green) > 0);
            QVERIFY(pdf.addNote(0, {300, 600}, u"Check door swing"_s, orange) > 0);
            QVERIFY(pdf.save());
        }
        nav.setProjectID(plan.project);
        nav.setSelected(u"plans"_s, plan.id);
        PlansScreen s({db, nav, *Modules::get(u"plans")});
        s.resize(1400, 900);
        s.show();
        const QImage shot = s.grab().toImage();
        if (const QString keep = qEnvironmentVariable("TRESTLE_KEEP_SHOTS"); !keep.isEmpty())
            shot.save(keep + u"/plan-sheet-marks.png"_s);
        MarkupView *view = s.viewer();
        QVERIFY(view);
        const QPoint origin = view->viewport()->mapTo(&s, QPoint());
        const auto pixel = [&](const QPointF &at) {
            return shot.pixelColor(view->toViewport(0, at).toPoint() + origin);
        };
        // The highlight tints the paper green, and leaves it light.
        const QColor tint = pixel({1050, 560});
        QVERIFY2(tint.green() > tint.red() + 20 && tint.green() > tint.blue() && tint.lightness() > 150,
                 qPrintable(tint.name()));
        // The box's top edge is blue somewhere within a pixel or two.
        bool edge = false;
        for (int dy = -3; dy <= 3 && !edge; ++dy) {
            const QColor c =
                shot.pixelColor(view->toViewport(0, {730, 250}).toPoint() + origin + QPoint(0, dy));
            edge = c.blue() > c.red() + 60;
        }
        QVERIFY(edge);
    }

    // Scrolling a zoomed-in page draws only the strips coming into view, and
    // the page pieced together that way looks the same as one drawn whole.
    void scrolledPageMatchesAFreshDraw()
    {
        const QString path = drawing(m_dir.filePath(u"big.pdf"_s));
        MarkupView a(path), b(path);
        for (MarkupView *v : {&a, &b}) {
            v->resize(800, 600);
            v->setAttribute(Qt::WA_DontShowOnScreen);
            v->show();
            v->setZoom(6);
        }
        a.grab();
        const int first = a.renders();
        a.horizontalScrollBar()->setValue(a.horizontalScrollBar()->value() + 50);
        a.verticalScrollBar()->setValue(a.verticalScrollBar()->value() + 70);
        const QImage pieced = a.grab().toImage();
        QVERIFY2(a.renders() > first && a.renders() <= first + 3, qPrintable(QString::number(a.renders())));
        // A little more scrolling stays within what was drawn.
        const int after = a.renders();
        a.verticalScrollBar()->setValue(a.verticalScrollBar()->value() + 10);
        a.grab();
        QCOMPARE(a.renders(), after);
        a.verticalScrollBar()->setValue(a.verticalScrollBar()->value() - 10);
        b.horizontalScrollBar()->setValue(a.horizontalScrollBar()->value());
        b.verticalScrollBar()->setValue(a.verticalScrollBar()->value());
        QCOMPARE(a.grab().toImage(), b.grab().toImage());
        QCOMPARE(pieced, b.grab().toImage());
    }

    // The view draws only pages in sight, and keeps what it drew while scrolling back and forth.
    void drawsOnlyWhatShows()
    {
        std::unique_ptr<PlansScreen> s(screen());
        s->addSheets(m_project, {drawing(m_dir.filePath(u"A-100 Set.pdf"_s), 30)});
        s->show();
        MarkupView *view = s->viewer();
        QCOMPARE(view->pageCount(), 30);
        view->grab();
        const int first = view->renders();
        QVERIFY2(first >= 1 && first <= 3, qPrintable(QString::number(first)));
        view->grab();
        QCOMPARE(view->renders(), first);
        // Zooming in draws again at the new scale, so the page stays sharp.
        const double before = view->scale();
        view->setZoom(2);
        QCOMPARE(view->scale(), before * 2);
        view->grab();
        QVERIFY(view->renders() > first);
    }
};

TRESTLE_TEST(PlansTests);
#include "planstests.moc"
