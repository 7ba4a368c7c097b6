// The lines grid and the photo strip on a private store: adding and removing
// lines, what the cells show, typing into a cell while the store refreshes,
// and photos from real and broken files.
#include "testmain.h"

#include "catalog/modules.h"
#include "look/buttons.h"
#include "shell/linecells.h"
#include "shell/lineseditor.h"
#include "shell/moduleextras.h"
#include "shell/nav.h"
#include "shell/photostrip.h"
#include "shell/recordeditor.h"
#include "store/db.h"

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtGui/QImage>
#include <QtWidgets/QApplication>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QTableView>
#include <QtWidgets/QToolButton>

using namespace Qt::StringLiterals;

class ExtrasLinesTests : public QObject
{
    Q_OBJECT

    static Rec project(DB &db)
    {
        db.createCompany(u"Acme"_s, u"Olive Owner"_s, u"CO"_s);
        return db.add(u"project"_s, {}, {}, {{u"name"_s, u"Harbor Lofts"_s}});
    }

    static std::unique_ptr<LinesEditor> editorOf(DB &db, const QString &module, const QString &ownerId)
    {
        Nav nav;
        QWidget *w = makeLinesEditor(db, nav, *Modules::get(module), ownerId, nullptr);
        return std::unique_ptr<LinesEditor>(qobject_cast<LinesEditor *>(w));
    }

    // The editor shown in an active window, as a user would have it.
    static bool showActive(QWidget *w)
    {
        w->resize(800, 400);
        w->show();
        QApplication::setActiveWindow(w);
        return QTest::qWaitForWindowActive(w);
    }

    // The grid cell of field `key` in row `row`.
    static QModelIndex cell(LinesEditor *editor, int row, QStringView key)
    {
        const QList<FD> &fields = editor->model()->fields();
        for (int c = 0; c < fields.size(); ++c)
            if (fields.at(c).key == key)
                return editor->model()->index(row, c);
        return {};
    }

    // Clicks a cell as the user would; the box that opens has the focus.
    static QWidget *click(LinesEditor *editor, const QModelIndex &index)
    {
        QTableView *grid = editor->grid();
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, grid->visualRect(index).center());
        return QApplication::focusWidget();
    }

    static QString amountShown(LinesEditor *editor, int row)
    {
        return editor->model()->index(row, editor->model()->amountColumn()).data().toString();
    }

private Q_SLOTS:
    void addAndRemove_data()
    {
        QTest::addColumn<QString>("module");
        QTest::addColumn<QString>("ownerKind");
        QTest::addColumn<QString>("button");
        QTest::addColumn<QStringList>("starts"); // key=value the new line holds
        QTest::newRow("estimate") << u"estimates"_s << u"estimate"_s << u"Add Line"_s
                                  << QStringList{u"sort=2"_s, u"qty=1"_s};
        QTest::newRow("assembly") << u"assemblies"_s << u"assembly"_s << u"Add Line"_s
                                  << QStringList{u"sort=2"_s, u"qtyPer=1"_s};
        QTest::newRow("purchase order on its cost code")
            << u"pos"_s << u"po"_s << u"Add Line"_s << QStringList{u"qty=1"_s, u"costCode=CC-9"_s};
        QTest::newRow("bids") << u"bids"_s << u"bid_package"_s << u"Add Bid"_s << QStringList{u"sort=2"_s};
    }
    void addAndRemove()
    {
        QFETCH(QString, module);
        QFETCH(QString, ownerKind);
        QFETCH(QString, button);
        QFETCH(QStringList, starts);
        DB db;
        const Rec p = project(db);
        const Rec owner = db.add(ownerKind, p.id, {}, {{u"costCode"_s, u"CC-9"_s}});
        const QString kind = *Modules::get(module)->lineKind;
        auto editor = editorOf(db, module, owner.id);
        QVERIFY(editor);
        auto *add = editor->findChild<FWChromeButton *>(u"add"_s);
        QCOMPARE(add->text(), button);

        add->click();
        add->click();
        editor->refresh();
        const QList<Rec> lines = db.list(kind, {.parent = owner.id});
        QCOMPARE(lines.size(), 2);
        QCOMPARE(editor->lineIds(), (QStringList{lines[0].id, lines[1].id}));
        for (const QString &pair : starts)
            QCOMPARE(lines[1].f.value(pair.section(u'=', 0, 0)), pair.section(u'=', 1));
        QCOMPARE(lines[1].project, p.id);

        // Removing asks nothing, and the line being typed in keeps its box and caret.
        QVERIFY(showActive(editor.get()));
        const QList<FD> &fields = editor->model()->fields();
        const auto text =
            std::find_if(fields.begin(), fields.end(), [](const FD &fd) { return fd.type.kind == FT::text; });
        auto *box = qobject_cast<QLineEdit *>(click(editor.get(), cell(editor.get(), 1, text->key)));
        QVERIFY(box);
        QTest::keyClick(box, Qt::Key_End);
        QTest::keyClicks(box, u"ab"_s);
        const int caret = box->cursorPosition();
        QTableView *grid = editor->grid();
        const QModelIndex remove = editor->model()->index(0, editor->model()->removeColumn());
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, grid->visualRect(remove).center());
        editor->refresh();
        QCOMPARE(db.count(kind, {.parent = owner.id}), 1);
        QCOMPARE(editor->lineIds(), QStringList{lines[1].id});
        QCOMPARE(QApplication::focusWidget(), box);
        QCOMPARE(editor->grid()->currentIndex().row(), 0);
        QCOMPARE(box->cursorPosition(), caret);
        QTest::keyClicks(box, u"c"_s);
        QVERIFY(db.get(lines[1].id)->f.value(text->key).endsWith(u"abc"_s));
    }

    // Removing the line last edited opens no other line's box and moves no focus.
    void removingCurrentLineOpensNothing()
    {
        DB db;
        const Rec p = project(db);
        const Rec est = db.add(u"estimate"_s, p.id, {}, {});
        db.add(u"est_line"_s, p.id, est.id, {{u"sort"_s, u"1"_s}});
        db.add(u"est_line"_s, p.id, est.id, {{u"sort"_s, u"2"_s}});
        auto editor = editorOf(db, u"estimates"_s, est.id);
        QVERIFY(showActive(editor.get()));
        QVERIFY(qobject_cast<QLineEdit *>(click(editor.get(), cell(editor.get(), 0, u"description"))));
        auto *add = editor->findChild<FWChromeButton *>(u"add"_s);
        add->setFocus();
        QTableView *grid = editor->grid();
        const QModelIndex remove = editor->model()->index(0, editor->model()->removeColumn());
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, grid->visualRect(remove).center());
        editor->refresh();
        QCOMPARE(editor->lineIds().size(), 1);
        QCOMPARE(QApplication::focusWidget(), add);
    }

    void emptyAndGoneOwner()
    {
        DB db;
        const Rec p = project(db);
        const Rec est = db.add(u"estimate"_s, p.id, {}, {});
        auto editor = editorOf(db, u"estimates"_s, est.id);
        editor->show();
        QLabel *empty = nullptr;
        for (QLabel *l : editor->findChildren<QLabel *>())
            if (l->text() == u"No lines yet."_s)
                empty = l;
        QVERIFY(empty && empty->isVisible());
        db.remove(est.id);
        editor->refresh();
        QVERIFY(editor->isHidden());
        editor->add();
        QCOMPARE(db.count(u"est_line"_s, {.parent = est.id}), 0);
    }

    // What a money cell stores as it is typed into, and what it says.
    void moneyCell_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("stored");
        QTest::addColumn<QString>("errorEnds");
        QTest::addColumn<QString>("amount");
        QTest::newRow("grouped amount") << u"1,234.5"_s << u"123450"_s << QString() << u"$2,469.00"_s;
        QTest::newRow("typing error keeps the amount")
            << u"1,2x"_s << u"1250"_s << u" Kept $12.50."_s << u"$25.00"_s;
        QTest::newRow("too large") << u"1000000000"_s << u"1250"_s << u" Kept $12.50."_s << u"$25.00"_s;
        QTest::newRow("emptied") << QString() << QString() << QString() << u"$0.00"_s;
    }
    void moneyCell()
    {
        QFETCH(QString, typed);
        QFETCH(QString, stored);
        QFETCH(QString, errorEnds);
        QFETCH(QString, amount);
        DB db;
        const Rec p = project(db);
        const Rec est = db.add(u"estimate"_s, p.id, {}, {});
        const Rec line =
            db.add(u"est_line"_s, p.id, est.id, {{u"qty"_s, u"2"_s}, {u"unitCost"_s, u"1250"_s}});
        auto editor = editorOf(db, u"estimates"_s, est.id);
        QVERIFY(showActive(editor.get()));
        const QModelIndex unitCost = cell(editor.get(), 0, u"unitCost");
        QCOMPARE(unitCost.data().toString(), u"12.50"_s);
        const int plainHeight = editor->grid()->rowHeight(0);
        auto *box = qobject_cast<QLineEdit *>(click(editor.get(), unitCost));
        QVERIFY(box);
        QCOMPARE(box->text(), u"12.50"_s);
        box->selectAll();
        QTest::keyClick(box, Qt::Key_Backspace);
        QTest::keyClicks(box, typed);
        editor->refresh();
        QCOMPARE(db.get(line.id)->f.value(u"unitCost"_s), stored);
        QCOMPARE(box->text(), typed); // the refresh leaves the box being typed in alone
        QCOMPARE(QApplication::focusWidget(), box);
        QCOMPARE(amountShown(editor.get(), 0), amount);
        const QString errors = editor->model()->rowErrors(0);
        QCOMPARE(errors.isEmpty(), errorEnds.isEmpty());
        QVERIFY2(errors.endsWith(errorEnds), qPrintable(errors));
        if (!errorEnds.isEmpty()) {
            QVERIFY(errors.startsWith(u"Unit cost: "_s));
            QVERIFY(editor->grid()->rowHeight(0) > plainHeight); // room for the message under the row
        }
    }

    void moneyErrorClearsWhenFixed()
    {
        DB db;
        const Rec p = project(db);
        const Rec est = db.add(u"estimate"_s, p.id, {}, {});
        const Rec line =
            db.add(u"est_line"_s, p.id, est.id, {{u"qty"_s, u"1"_s}, {u"unitCost"_s, u"1250"_s}});
        auto editor = editorOf(db, u"estimates"_s, est.id);
        QVERIFY(showActive(editor.get()));
        const QModelIndex unitCost = cell(editor.get(), 0, u"unitCost");
        auto *box = qobject_cast<QLineEdit *>(click(editor.get(), unitCost));
        QVERIFY(box);
        box->clear();
        QTest::keyClicks(box, u"12x"_s);
        QVERIFY(!editor->model()->rowErrors(0).isEmpty());
        QCOMPARE(db.get(line.id)->f.value(u"unitCost"_s), u"1250"_s);
        QTest::keyClick(box, Qt::Key_Backspace);
        QVERIFY(editor->model()->rowErrors(0).isEmpty());
        QCOMPARE(db.get(line.id)->f.value(u"unitCost"_s), u"1200"_s);
        // Leaving the box closes it; the cell shows the stored amount in its display form.
        editor->grid()->setFocus();
        QVERIFY(!qobject_cast<QLineEdit *>(QApplication::focusWidget()));
        editor->refresh();
        QCOMPARE(unitCost.data().toString(), u"12.00"_s);
    }

    // A refused amount left behind keeps its message, and the cell shows what was kept.
    void moneyErrorStaysAfterLeaving()
    {
        DB db;
        const Rec p = project(db);
        const Rec est = db.add(u"estimate"_s, p.id, {}, {});
        db.add(u"est_line"_s, p.id, est.id, {{u"qty"_s, u"1"_s}, {u"unitCost"_s, u"1250"_s}});
        auto editor = editorOf(db, u"estimates"_s, est.id);
        QVERIFY(showActive(editor.get()));
        const QModelIndex unitCost = cell(editor.get(), 0, u"unitCost");
        auto *box = qobject_cast<QLineEdit *>(click(editor.get(), unitCost));
        QVERIFY(box);
        box->clear();
        QTest::keyClicks(box, u"9,9,9x"_s);
        QTest::keyClick(box, Qt::Key_Return);
        editor->grid()->setFocus();
        editor->refresh();
        QCOMPARE(unitCost.data().toString(), u"12.50"_s);
        QVERIFY(editor->model()->rowErrors(0).endsWith(u" Kept $12.50."_s));
        QVERIFY(!unitCost.data(LinesModel::ErrorRole).toString().isEmpty());
    }

    // What a closed cell shows for a stored value.
    void cellShows_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("stored");
        QTest::addColumn<QString>("shown");
        QTest::newRow("cents grouped") << u"unitCost"_s << u"123456"_s << u"1,234.56"_s;
        QTest::newRow("no amount stays empty") << u"unitCost"_s << QString() << QString();
        QTest::newRow("a number as stored") << u"qty"_s << u"2.5"_s << u"2.5"_s;
        QTest::newRow("no cost code") << u"costCode"_s << QString() << u"—"_s;
        QTest::newRow("a code not in the list") << u"costCode"_s << u"gone"_s << u"Choose…"_s;
        QTest::newRow("text as typed") << u"description"_s << u"Framing "_s << u"Framing "_s;
    }
    void cellShows()
    {
        QFETCH(QString, key);
        QFETCH(QString, stored);
        QFETCH(QString, shown);
        DB db;
        const Rec p = project(db);
        const Rec est = db.add(u"estimate"_s, p.id, {}, {});
        db.add(u"est_line"_s, p.id, est.id, {{key, stored}});
        auto editor = editorOf(db, u"estimates"_s, est.id);
        QCOMPARE(cell(editor.get(), 0, key).data().toString(), shown);
    }

    // A choice cell opens on a click and stores the pick; the cell then shows its label.
    void choiceCell()
    {
        DB db;
        const Rec p = project(db);
        const Rec est = db.add(u"estimate"_s, p.id, {}, {});
        const Rec line = db.add(u"est_line"_s, p.id, est.id, {{u"qty"_s, u"1"_s}});
        const Rec code = db.costCodes().at(1);
        auto editor = editorOf(db, u"estimates"_s, est.id);
        QVERIFY(showActive(editor.get()));
        const QModelIndex costCode = cell(editor.get(), 0, u"costCode");
        auto *choice = qobject_cast<QComboBox *>(click(editor.get(), costCode));
        QVERIFY(choice);
        const int at = choice->findText(db.label(code.id));
        QVERIFY(at > 0);
        choice->hidePopup();
        QMetaObject::invokeMethod(choice, "activated", Q_ARG(int, at));
        QCOMPARE(db.get(line.id)->f.value(u"costCode"_s), code.id);
        editor->refresh();
        QCOMPARE(costCode.data().toString(), db.label(code.id));
    }

    // A save made elsewhere while a cell is typed in updates the rest of the row only.
    void refreshWhileTyping()
    {
        DB db;
        const Rec p = project(db);
        const Rec est = db.add(u"estimate"_s, p.id, {}, {});
        const Rec line =
            db.add(u"est_line"_s, p.id, est.id,
                   {{u"description"_s, u"Drywall"_s}, {u"qty"_s, u"1"_s}, {u"unitCost"_s, u"100"_s}});
        auto editor = editorOf(db, u"estimates"_s, est.id);
        QVERIFY(showActive(editor.get()));
        auto *box = qobject_cast<QLineEdit *>(click(editor.get(), cell(editor.get(), 0, u"description")));
        QVERIFY(box);
        QTest::keyClick(box, Qt::Key_End);
        QTest::keyClicks(box, u" tape"_s);
        QTest::keyClick(box, Qt::Key_Left);
        Rec changed = *db.get(line.id);
        changed.f.insert(u"qty"_s, u"3"_s);
        db.save(changed);
        db.add(u"est_line"_s, p.id, est.id, {{u"sort"_s, u"0"_s}}); // lands above the line typed in
        editor->refresh();
        QCOMPARE(QApplication::focusWidget(), box);
        QCOMPARE(box->text(), u"Drywall tape"_s);
        QCOMPARE(box->cursorPosition(), 11);
        QCOMPARE(editor->lineIds().size(), 2);
        const int row = editor->model()->rowOf(line.id);
        QCOMPARE(amountShown(editor.get(), row), u"$3.00"_s);
        QTest::keyClicks(box, u"s"_s);
        QCOMPARE(db.get(line.id)->f.value(u"description"_s), u"Drywall tapse"_s);
    }

    // Tab walks the cells that take input, on to the next line.
    void tabWalksCells()
    {
        DB db;
        const Rec p = project(db);
        const Rec est = db.add(u"estimate"_s, p.id, {}, {});
        db.add(u"est_line"_s, p.id, est.id, {{u"sort"_s, u"1"_s}});
        db.add(u"est_line"_s, p.id, est.id, {{u"sort"_s, u"2"_s}});
        auto editor = editorOf(db, u"estimates"_s, est.id);
        QVERIFY(showActive(editor.get()));
        QVERIFY(click(editor.get(), cell(editor.get(), 0, u"unitCost")));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QCOMPARE(editor->grid()->currentIndex(), cell(editor.get(), 1, u"description"));
        QVERIFY(qobject_cast<QLineEdit *>(QApplication::focusWidget()));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab);
        QCOMPARE(editor->grid()->currentIndex(), cell(editor.get(), 0, u"unitCost"));
    }

    // A cell opened below the editor's fold scrolls into view.
    void editedCellScrollsIntoView()
    {
        DB db;
        const Rec p = project(db);
        const Rec est = db.add(u"estimate"_s, p.id, {}, {});
        QList<Rec> lines;
        for (int k = 0; k < 40; ++k)
            lines.append(db.add(u"est_line"_s, p.id, est.id, {{u"sort"_s, QString::number(k + 1)}}));
        Nav nav;
        RecordEditor editor(db, nav, *Modules::get(u"estimates"), est.id);
        editor.resize(820, 500);
        QVERIFY(showActive(&editor));
        auto *lineEditor = editor.findChild<LinesEditor *>();
        auto *area = editor.findChild<QScrollArea *>();
        QVERIFY(lineEditor && area);
        QCOMPARE(area->verticalScrollBar()->value(), 0);
        QTableView *grid = lineEditor->grid();
        grid->edit(cell(lineEditor, 39, u"description"));
        auto *box = qobject_cast<QLineEdit *>(QApplication::focusWidget());
        QVERIFY(box);
        QVERIFY(area->verticalScrollBar()->value() > 0);
        const QRect shown(box->mapTo(area->viewport(), QPoint()), box->size());
        QVERIFY(area->viewport()->rect().contains(shown));
    }

    void photos()
    {
        DB db;
        const Rec p = project(db);
        const Rec log = db.add(u"daily_log"_s, p.id, {}, {{u"date"_s, u"2026-06-01"_s}});
        QTemporaryDir dir;
        const QString png = dir.filePath(u"roof leak.png"_s);
        QImage image(64, 48, QImage::Format_RGB32);
        image.fill(Qt::darkCyan);
        QVERIFY(image.save(png));
        const QString broken = dir.filePath(u"site.jpg"_s);
        QFile f(broken);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("\xff\xd8\xff not really a picture");
        f.close();

        std::unique_ptr<QWidget> w(makePhotoStrip(db, log.id, nullptr));
        auto *strip = qobject_cast<PhotoStrip *>(w.get());
        QVERIFY(strip);
        QCOMPARE(strip->caption(), u"Photos (none)"_s);
        strip->addFiles({png, dir.filePath(u"missing.png"_s), broken});
        strip->refresh();
        strip->show();
        QCOMPARE(strip->caption(), u"Photos (2)"_s);
        const QList<Rec> photos = db.list(u"photo"_s, {.parent = log.id});
        QCOMPARE(photos.size(), 2);
        QCOMPARE(photos[0].f.value(u"caption"_s), u"roof leak"_s);
        QCOMPARE(photos[0].project, p.id);
        QCOMPARE(strip->photoIds(), (QStringList{photos[0].id, photos[1].id}));

        // The real picture reads; the broken one gets the placeholder and draws without harm.
        auto thumbOf = [&](const Rec &photo) {
            return strip->findChild<QWidget *>(photo.id)->findChild<PhotoThumb *>();
        };
        QVERIFY(thumbOf(photos[0])->readable());
        QVERIFY(!thumbOf(photos[1])->readable());
        QVERIFY(!strip->grab().isNull());

        // A caption typed in the box is stored; the delete button removes photo and file at once.
        auto *caption = strip->findChild<QWidget *>(photos[1].id)->findChild<QLineEdit *>(u"caption"_s);
        QCOMPARE(caption->text(), u"site"_s);
        QTest::keyClick(caption, Qt::Key_End);
        QTest::keyClicks(caption, u" east"_s);
        QCOMPARE(db.get(photos[1].id)->f.value(u"caption"_s), u"site east"_s);
        const QString stored = db.fileURL(photos[0].f.value(u"file"_s));
        QVERIFY(QFile::exists(stored));
        strip->findChild<QWidget *>(photos[0].id)->findChild<QToolButton *>(u"delete"_s)->click();
        strip->refresh();
        QCOMPARE(strip->caption(), u"Photos (1)"_s);
        QVERIFY(!QFile::exists(stored));
    }
};

TRESTLE_TEST(ExtrasLinesTests);
#include "extraslinestests.moc"
