// Loading a file of unsaved changes from the command line and from the
// File menu: one line (or one message) that says what was done or why not.
#include "testmain.h"

#include "shell/fileactions.h"
#include "store/db.h"

#include <QtCore/QDateTime>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QTimer>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMessageBox>

using namespace Qt::StringLiterals;

namespace {

// A data folder holding a company and one contact, and a file of unsaved
// changes that renames the contact and adds another: the contact's id.
QString prepare(const QString &store, const QString &file, const QString &kind)
{
    QDir().mkpath(QFileInfo(store).absolutePath());
    DB db(store);
    db.createCompany(u"Acme"_s, u"Olive"_s, u"CO"_s);
    Rec contact = db.add(u"contact"_s, {}, {}, {{u"name"_s, u"Mesa Electric"_s}});
    QByteArray bytes = "{\"name\": \"not ours\"}";
    if (kind == u"good") {
        contact.f.insert(u"name"_s, u"Mesa Electric & Solar"_s);
        contact.updated += 1;
        Rec added = contact;
        added.id = newID();
        added.f.insert(u"name"_s, u"Ridge Plumbing"_s);
        added.f.insert(u"note"_s, QString(6000, u'x')); // needs fresh pages on a capped disk
        const QJsonObject top{
            {u"trestleUnsaved"_s, 1},
            {u"store"_s, store},
            {u"savedAt"_s, QDateTime::currentDateTimeUtc().toString(Qt::ISODate)},
            {u"cause"_s, u"the disk is full"_s},
            {u"records"_s, QJsonArray{QJsonDocument::fromJson(RecJSON::encode(contact)).object(),
                                      QJsonDocument::fromJson(RecJSON::encode(added)).object()}},
            {u"removed"_s, QJsonArray{}}};
        bytes = QJsonDocument(top).toJson();
    }
    QFile out(file);
    if (!out.open(QIODevice::WriteOnly))
        return {};
    out.write(bytes);
    return contact.id;
}

} // namespace

class RecoverTests : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void cleanup() { FileActions::openFileHook() = {}; }

    void verb_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QStringList>("env");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("out");
        QTest::addColumn<QString>("err");
        QTest::newRow("good") << u"good"_s << QStringList() << 0
                              << u"2 records written, 0 removed, 0 skipped (newer here)\n"_s << QString();
        QTest::newRow("foreign") << u"foreign"_s << QStringList() << 1 << QString()
                                 << u"trestle: unsaved.json is not a file of unsaved changes\n"_s;
        QTest::newRow("full disk") << u"good"_s << QStringList{u"TRESTLE_MAX_PAGES=1"_s} << 1 << QString()
                                   << u"trestle: could not save to "_s;
        QTest::newRow("no file named")
            << u"none"_s << QStringList() << 2 << QString() << u"usage: trestle recover <file.json>\n"_s;
    }
    void verb()
    {
        QFETCH(QString, kind);
        QFETCH(QStringList, env);
        QFETCH(int, code);
        QFETCH(QString, out);
        QFETCH(QString, err);
        QTemporaryDir home;
        const QString store = home.filePath(u"data/Fenwright/Trestle/trestle.sqlite"_s);
        const QString file = home.filePath(u"unsaved.json"_s);
        const QString id = prepare(store, file, kind);
        QProcess p;
        QProcessEnvironment e = QProcessEnvironment::systemEnvironment();
        e.insert(u"XDG_DATA_HOME"_s, home.filePath(u"data"_s));
        e.insert(u"XDG_CONFIG_HOME"_s, home.filePath(u"config"_s));
        e.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
        e.insert(u"QT_LOGGING_RULES"_s, u"*.warning=false"_s);
        for (const QString &kv : std::as_const(env))
            e.insert(kv.section(u'=', 0, 0), kv.section(u'=', 1));
        p.setProcessEnvironment(e);
        p.start(QStringLiteral(TRESTLE_BINARY),
                kind == u"none" ? QStringList{u"recover"_s} : QStringList{u"recover"_s, file});
        QVERIFY(p.waitForFinished(120000));
        QCOMPARE(p.exitCode(), code);
        QCOMPARE(QString::fromUtf8(p.readAllStandardOutput()), out);
        const QString said = QString::fromUtf8(p.readAllStandardError());
        QVERIFY2(said.startsWith(err) && said.count(u'\n') == (err.isEmpty() ? 0 : 1), qPrintable(said));
        const QString name = DB(store).get(id)->f.value(u"name");
        QCOMPARE(name, code == 0 ? u"Mesa Electric & Solar"_s : u"Mesa Electric"_s);
    }

    // File ▸ Load Unsaved Changes…: the chosen file is loaded and summed up,
    // or refused with the reason; a cancelled dialog does nothing.
    void menu_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("text");
        QTest::newRow("good") << u"good"_s << u"Unsaved changes loaded"_s
                              << u"2 records written, 0 removed, 0 skipped (newer here)."_s;
        QTest::newRow("foreign") << u"foreign"_s << u"Could not load the changes"_s
                                 << u"unsaved.json is not a file of unsaved changes"_s;
        QTest::newRow("cancelled") << u"cancel"_s << QString() << QString();
    }
    void menu()
    {
        QFETCH(QString, kind);
        QFETCH(QString, title);
        QFETCH(QString, text);
        QTemporaryDir dir;
        const QString store = dir.filePath(u"trestle.sqlite"_s);
        const QString file = dir.filePath(u"unsaved.json"_s);
        const QString id = prepare(store, file, kind);
        DB db(store);
        QString filter;
        FileActions::openFileHook() = [&](QWidget *, const QString &, const QString &names) {
            filter = names;
            return kind == u"cancel" ? QString() : file;
        };
        QString seenTitle, seenText;
        QTimer poll;
        connect(&poll, &QTimer::timeout, this, [&] {
            if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
                seenTitle = box->text();
                seenText = box->informativeText();
                box->accept();
            }
        });
        poll.start(20);
        FileActions::loadUnsaved(nullptr, db);
        QCOMPARE(filter, u"Trestle changes (*.json)"_s);
        QCOMPARE(seenTitle, title);
        QCOMPARE(seenText, text);
        QCOMPARE(db.get(id)->f.value(u"name"),
                 kind == u"good" ? u"Mesa Electric & Solar"_s : u"Mesa Electric"_s);
    }
};

TRESTLE_TEST(RecoverTests);
#include "recovertests.moc"
