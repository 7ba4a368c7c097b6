// The window's side of snapshots: the day's snapshot at start, the File menu
// entry and the dialog that lists them.
#include "testmain.h"

#include "shell/nav.h"
#include "shell/snapshotdialog.h"
#include "shell/tlwindow.h"
#include "store/db.h"

#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QTreeWidget>

using namespace Qt::StringLiterals;

class SnapshotDialogTests : public QObject
{
    Q_OBJECT

    QTemporaryDir scratch;
    QString folder;

    QString database() const { return QDir(folder).filePath(u"trestle.sqlite"_s); }

private Q_SLOTS:
    void init()
    {
        folder = scratch.filePath(newID().left(8) + u"/Trestle"_s);
        QVERIFY(QDir().mkpath(folder));
    }

    void age_data()
    {
        QTest::addColumn<QDateTime>("taken");
        QTest::addColumn<QString>("words");
        QTest::newRow("an hour ago") << QDateTime(QDate(2026, 5, 20), QTime(8, 0)) << u"today"_s;
        QTest::newRow("late last night") << QDateTime(QDate(2026, 5, 19), QTime(23, 50)) << u"yesterday"_s;
        QTest::newRow("a week") << QDateTime(QDate(2026, 5, 13), QTime(9, 0)) << u"7 days ago"_s;
        QTest::newRow("three weeks") << QDateTime(QDate(2026, 4, 29), QTime(9, 0)) << u"3 weeks ago"_s;
        QTest::newRow("a day short of 3 months")
            << QDateTime(QDate(2026, 2, 21), QTime(9, 0)) << u"2 months ago"_s;
        QTest::newRow("a year") << QDateTime(QDate(2025, 5, 20), QTime(9, 0)) << u"12 months ago"_s;
        QTest::newRow("years") << QDateTime(QDate(2023, 6, 1), QTime(9, 0)) << u"2 years ago"_s;
        QTest::newRow("clock set back") << QDateTime(QDate(2026, 5, 22), QTime(9, 0)) << u"today"_s;
    }
    void age()
    {
        QFETCH(QDateTime, taken);
        QFETCH(QString, words);
        QCOMPARE(SnapshotDialog::age(taken, QDateTime(QDate(2026, 5, 20), QTime(9, 30))), words);
    }

    // Newest first with each one's count; nothing can be restored until one is chosen.
    void dialogLists()
    {
        DB db(database());
        db.createCompany(u"Acme"_s, u"Ann"_s, u"CO"_s);
        const QDateTime first = QDateTime::currentDateTime().addDays(-40);
        QVERIFY(Snapshots::make(database(), first).ok);
        const qint64 older = db.size();
        for (int k = 0; k < 120; ++k)
            db.add(u"punch"_s, {}, {}, {{u"title"_s, u"x"_s}});
        QVERIFY(Snapshots::make(database(), first.addDays(39)).ok);

        SnapshotDialog dialog(folder);
        QCOMPARE(dialog.count(), 2);
        auto *list = dialog.findChild<QTreeWidget *>(u"snapshots"_s);
        auto *restore = dialog.findChild<QAbstractButton *>(u"confirm"_s);
        QVERIFY(list && restore);
        QCOMPARE(list->topLevelItem(0)->text(1), u"yesterday"_s);
        QCOMPARE(list->topLevelItem(0)->text(2), QString::number(older + 120));
        QCOMPARE(list->topLevelItem(1)->text(1), u"5 weeks ago"_s);
        QCOMPARE(list->topLevelItem(1)->text(2), QString::number(older));
        QVERIFY(dialog.chosen().isEmpty());
        QVERIFY(!restore->isEnabled());
        list->setCurrentItem(list->topLevelItem(1));
        QVERIFY(restore->isEnabled());
        QCOMPARE(QFileInfo(dialog.chosen()).fileName(), first.toString(u"yyyy-MM-dd HHmmss"_s));
    }

    void emptyDialogSaysWhere()
    {
        SnapshotDialog dialog(folder);
        QCOMPARE(dialog.count(), 0);
        QVERIFY(dialog.findChild<QTreeWidget *>(u"snapshots"_s)->isHidden());
        bool said = false;
        for (const QLabel *l : dialog.findChildren<QLabel *>())
            said = said || l->text().contains(u"Trestle Snapshots"_s);
        QVERIFY(said);
    }

    void fileMenuEntry()
    {
        DB db;
        db.createCompany(u"Acme"_s, u"Ann"_s, u"CO"_s);
        Nav nav;
        TLWindow w(db, nav);
        QMenu *file = nullptr;
        for (QAction *a : w.menuBar()->actions())
            if (a->text().remove(u'&') == u"File")
                file = a->menu();
        QVERIFY(file);
        QStringList titles;
        for (QAction *a : file->actions())
            titles << a->text();
        const qsizetype backup = titles.indexOf(u"Restore From Backup…"_s);
        QVERIFY(backup >= 0);
        QCOMPARE(titles.value(backup + 1), u"Restore From Snapshot…"_s);
    }

    // At start: one snapshot when due, none the next time, none of an empty store.
    void startOfDay()
    {
        int calls = 0;
        Backup::Result result;
        QString made;
        auto done = [&](const Backup::Result &r, const QString &path) {
            ++calls;
            result = r;
            made = path;
        };
        {
            DB empty(database());
            SnapshotActions::startOfDay(empty, done);
        }
        DB db(database());
        db.createCompany(u"Acme"_s, u"Ann"_s, u"CO"_s);
        SnapshotActions::startOfDay(db, done);
        QTRY_COMPARE_WITH_TIMEOUT(calls, 1, 30000);
        QVERIFY2(result.ok, qPrintable(result.message));
        QCOMPARE(Snapshots::list(folder).value(0).path, made);
        QCOMPARE(Snapshots::list(folder).value(0).records, db.size());
        SnapshotActions::startOfDay(db, done);
        QTest::qWait(200);
        QCOMPARE(calls, 1);
        QCOMPARE(Snapshots::list(folder).size(), 1);
    }
};

TRESTLE_TEST(SnapshotDialogTests);
#include "snapshotdialogtests.moc"
