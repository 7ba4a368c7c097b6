// The window's side of importing: the preview, its column choices, the good
// rows alone, Edit ▸ Undo Import, and what a drop onto the window may carry.
#include "testmain.h"

#include "shell/importdialog.h"
#include "shell/nav.h"
#include "shell/tlwindow.h"
#include "store/db.h"

#include <QtCore/QMimeData>
#include <QtCore/QTimer>
#include <QtCore/QUrl>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QApplication>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QTreeWidget>

using namespace Qt::StringLiterals;

namespace {

QString writeFile(const QTemporaryDir &dir, const QString &name, const QByteArray &bytes)
{
    QFile f(dir.filePath(name));
    if (!f.open(QIODevice::WriteOnly) || f.write(bytes) != bytes.size())
        return QString();
    return f.fileName();
}

// Closes the alerts a step shows, keeping their texts.
struct AlertCatcher
{
    QStringList texts;
    QTimer timer;
    AlertCatcher()
    {
        timer.setInterval(20);
        QObject::connect(&timer, &QTimer::timeout, &timer, [this] {
            if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
                texts.append(box->informativeText());
                box->done(0);
            }
        });
        timer.start();
    }
};

QAction *undoAction(TLWindow &w)
{
    for (QAction *a : w.menuBar()->actions())
        if (a->text().remove(u'&') == u"Edit")
            for (QAction *b : a->menu()->actions())
                if (b->text() == u"Undo Import")
                    return b;
    return nullptr;
}

const QByteArray kContacts = "Name,Phone,Email\r\nAce Roofing,503-555-0100,ace@example.com\r\n"
                             "Bee Glass,call,\r\nCox Paving,503-555-0102,\r\n";

} // namespace

class ImportDialogTests : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void cleanFileImportsAndUndoes()
    {
        QTemporaryDir dir;
        const QString path = writeFile(dir, u"clients.csv"_s,
                                       "Customer,Main Phone\r\nAce Roofing,503-555-0100\r\nBay Homes,\r\n");
        DB db;
        db.createCompany(u"Acme"_s, u"Ann"_s, u"CO"_s);
        Nav nav;
        TLWindow w(db, nav);
        QAction *undo = undoAction(w);
        QVERIFY(undo);
        Q_EMIT qobject_cast<QMenu *>(undo->parent())->aboutToShow();
        QVERIFY(!undo->isEnabled());

        ImportDialog dialog(db, path, &w);
        QCOMPARE(dialog.readError(), QString());
        auto *import = dialog.findChild<QAbstractButton *>(u"confirm"_s);
        QVERIFY(import->isEnabled());
        QCOMPARE(dialog.findChild<QTreeWidget *>(u"rows"_s)->topLevelItemCount(), 2);
        QCOMPARE(db.count(u"contact"_s), 0);
        import->click();
        QCOMPARE(db.count(u"contact"_s), 2);
        QCOMPARE(db.list(u"contact"_s).first().f.value(u"type"), u"Client / Owner"_s);

        Q_EMIT qobject_cast<QMenu *>(undo->parent())->aboutToShow();
        QVERIFY(undo->isEnabled());
        undo->trigger();
        QCOMPARE(db.count(u"contact"_s), 0);
        Q_EMIT qobject_cast<QMenu *>(undo->parent())->aboutToShow();
        QVERIFY(!undo->isEnabled());
    }

    // A bad row holds Import back until the good rows are asked for alone;
    // the bad one then waits beside the file, to fix.
    void badRowHoldsImportBack()
    {
        QTemporaryDir dir;
        const QString path = writeFile(dir, u"subcontractors.csv"_s, kContacts);
        DB db;
        db.createCompany(u"Acme"_s, u"Ann"_s, u"CO"_s);
        ImportDialog dialog(db, path);
        auto *import = dialog.findChild<QAbstractButton *>(u"confirm"_s);
        auto *skip = dialog.findChild<QCheckBox *>(u"skipBad"_s);
        QVERIFY(!import->isEnabled());
        QVERIFY(!skip->isHidden());
        const QTreeWidget *rows = dialog.findChild<QTreeWidget *>(u"rows"_s);
        QCOMPARE(rows->topLevelItem(1)->text(0), u"3"_s);
        QCOMPARE(rows->topLevelItem(1)->text(1), u"Bad"_s);
        QCOMPARE(rows->topLevelItem(1)->text(3), u"Phone: \u201Ccall\u201D is not a phone number."_s);

        skip->setChecked(true);
        import = dialog.findChild<QAbstractButton *>(u"confirm"_s);
        QVERIFY(import->isEnabled());
        AlertCatcher alerts;
        import->click();
        QCOMPARE(db.count(u"contact"_s), 2);
        QCOMPARE(alerts.texts.size(), 1);
        const QString fix = dir.filePath(u"subcontractors - rows to fix.csv"_s);
        QVERIFY2(alerts.texts.first().contains(QDir::toNativeSeparators(fix)),
                 qPrintable(alerts.texts.first()));
        QFile f(fix);
        QVERIFY(f.open(QIODevice::ReadOnly));
        QVERIFY(f.readAll().startsWith("Name,Phone,Email,Problem\r\nBee Glass,call,,Phone:"));
    }

    // Leaving a column out, or sending the file to another list, reads every row again.
    void choicesReadAgain()
    {
        QTemporaryDir dir;
        const QString path = writeFile(dir, u"subcontractors.csv"_s, kContacts);
        DB db;
        db.createCompany(u"Acme"_s, u"Ann"_s, u"CO"_s);
        ImportDialog dialog(db, path);
        QVERIFY(dialog.plan().anyBad());
        dialog.setColumn(0, 1, QString());
        QVERIFY(!dialog.plan().anyBad());
        QVERIFY(dialog.findChild<QAbstractButton *>(u"confirm"_s)->isEnabled());
        dialog.setKind(0, u"user"_s);
        QCOMPARE(dialog.plan().summary().first(), u"team members: 2 new, 0 updated, 0 unchanged, 1 bad"_s);
        dialog.setKind(0, QString());
        QVERIFY(!dialog.findChild<QAbstractButton *>(u"confirm"_s)->isEnabled());
    }

    void droppedPath_data()
    {
        QTest::addColumn<QStringList>("names");
        QTest::addColumn<bool>("taken");
        QTest::newRow("a CSV file") << QStringList{u"list.csv"_s} << true;
        QTest::newRow("an IIF file, upper case") << QStringList{u"LISTS.IIF"_s} << true;
        QTest::newRow("a workbook") << QStringList{u"jobs.xlsx"_s} << true;
        QTest::newRow("a folder") << QStringList{u"export/"_s} << true;
        QTest::newRow("a PDF") << QStringList{u"plan.pdf"_s} << false;
        QTest::newRow("two files") << QStringList{u"a.csv"_s, u"b.csv"_s} << false;
        QTest::newRow("a file that is not there") << QStringList{u"-gone.csv"_s} << false;
    }
    void droppedPath()
    {
        QFETCH(QStringList, names);
        QFETCH(bool, taken);
        QTemporaryDir dir;
        QList<QUrl> urls;
        for (const QString &name : names) {
            if (name.endsWith(u'/'))
                QDir(dir.path()).mkdir(name.chopped(1));
            else if (!name.startsWith(u'-'))
                writeFile(dir, name, "Name\n");
            urls.append(QUrl::fromLocalFile(dir.filePath(name.startsWith(u'-') ? name.mid(1) : name)));
        }
        QMimeData mime;
        mime.setUrls(urls);
        QCOMPARE(!ImportDialog::droppedPath(&mime).isEmpty(), taken);
        QMimeData web;
        web.setUrls({QUrl(u"https://example.com/list.csv"_s)});
        QVERIFY(ImportDialog::droppedPath(&web).isEmpty());
    }
};

TRESTLE_TEST(ImportDialogTests);
#include "importdialogtests.moc"
