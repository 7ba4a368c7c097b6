// The lines grid and the photo strip on a private store: adding and removing
// lines, money typed into a cell, and photos from real and broken files.
#include "testmain.h"

#include "catalog/modules.h"
#include "look/buttons.h"
#include "shell/lineseditor.h"
#include "shell/moduleextras.h"
#include "shell/nav.h"
#include "shell/photostrip.h"
#include "store/db.h"

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtGui/QImage>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
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

        // Removing asks nothing and leaves the other row where it was.
        QWidget *firstRow = editor->findChild<QWidget *>(lines[1].id);
        editor->findChild<QWidget *>(lines[0].id)->findChild<QToolButton *>(u"remove"_s)->click();
        editor->refresh();
        QCOMPARE(db.count(kind, {.parent = owner.id}), 1);
        QCOMPARE(editor->lineIds(), QStringList{lines[1].id});
        QCOMPARE(editor->findChild<QWidget *>(lines[1].id), firstRow);
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
        editor->show();
        QApplication::setActiveWindow(editor.get());
        QVERIFY(QTest::qWaitForWindowActive(editor.get()));
        auto *box = editor->findChild<QWidget *>(u"unitCost"_s)->findChild<QLineEdit *>();
        QCOMPARE(box->text(), u"12.50"_s);
        box->setFocus();
        box->selectAll();
        QTest::keyClick(box, Qt::Key_Backspace);
        QTest::keyClicks(box, typed);
        editor->refresh();
        QCOMPARE(db.get(line.id)->f.value(u"unitCost"_s), stored);
        QCOMPARE(box->text(), typed); // the refresh leaves the box being typed in alone
        QCOMPARE(editor->findChild<QLabel *>(u"amount"_s)->text(), amount);
        auto *error = editor->findChild<QLabel *>(u"error"_s);
        QCOMPARE(error->isVisible(), !errorEnds.isEmpty());
        if (!errorEnds.isEmpty())
            QVERIFY2(error->text().endsWith(errorEnds), qPrintable(error->text()));
    }

    void moneyErrorClearsWhenFixed()
    {
        DB db;
        const Rec p = project(db);
        const Rec est = db.add(u"estimate"_s, p.id, {}, {});
        const Rec line =
            db.add(u"est_line"_s, p.id, est.id, {{u"qty"_s, u"1"_s}, {u"unitCost"_s, u"1250"_s}});
        auto editor = editorOf(db, u"estimates"_s, est.id);
        editor->show();
        QApplication::setActiveWindow(editor.get());
        QVERIFY(QTest::qWaitForWindowActive(editor.get()));
        auto *box = editor->findChild<QWidget *>(u"unitCost"_s)->findChild<QLineEdit *>();
        box->setFocus();
        box->clear();
        QTest::keyClicks(box, u"12x"_s);
        QVERIFY(editor->findChild<QLabel *>(u"error"_s)->isVisible());
        QCOMPARE(db.get(line.id)->f.value(u"unitCost"_s), u"1250"_s);
        QTest::keyClick(box, Qt::Key_Backspace);
        QVERIFY(!editor->findChild<QLabel *>(u"error"_s)->isVisible());
        QCOMPARE(db.get(line.id)->f.value(u"unitCost"_s), u"1200"_s);
        // Leaving the box shows the stored amount in its display form.
        box->clearFocus();
        QCOMPARE(box->text(), u"12.00"_s);
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
