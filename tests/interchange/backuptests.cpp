#include "testmain.h"

#include "interchange/backup.h"
#include "store/db.h"

#include <QtCore/QRandomGenerator>

#include <sys/stat.h>
#include <zip.h>

using namespace Qt::StringLiterals;

namespace {

struct ZipEntry
{
    QString name;
    QByteArray data;
    mode_t mode = S_IFREG | 0644;
};

void makeZip(const QString &path, const QList<ZipEntry> &entries)
{
    int err = 0;
    zip_t *z = zip_open(QFile::encodeName(path).constData(), ZIP_CREATE | ZIP_TRUNCATE, &err);
    QVERIFY(z);
    for (const ZipEntry &e : entries) {
        zip_source_t *src = zip_source_buffer(z, e.data.constData(), zip_uint64_t(e.data.size()), 0);
        const zip_int64_t i = zip_file_add(z, e.name.toUtf8().constData(), src, ZIP_FL_ENC_UTF_8);
        QVERIFY(i >= 0);
        zip_file_set_external_attributes(z, zip_uint64_t(i), 0, ZIP_OPSYS_UNIX, zip_uint32_t(e.mode) << 16);
    }
    QCOMPARE(zip_close(z), 0);
}

QByteArray readAll(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

QHash<QString, Rec> snapshot(const DB &db)
{
    QHash<QString, Rec> all;
    db.forEach([&](const Rec &r) { all.insert(r.id, r); });
    return all;
}

// Leftovers of a restore beside the data folder: the aside copy and temporary folders.
QStringList siblings(const QString &parent)
{
    return QDir(parent).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
}

} // namespace

class BackupTests : public QObject
{
    Q_OBJECT

    QTemporaryDir home;
    QString folder; // the data folder, named as the program's own
    QByteArray realDatabase;

private Q_SLOTS:
    void init()
    {
        QVERIFY(home.isValid());
        QDir(home.path()).removeRecursively();
        QDir().mkpath(home.path());
        folder = QDir(home.path()).filePath(u"Trestle"_s);
        QDir().mkpath(folder);
        if (realDatabase.isEmpty()) {
            QTemporaryDir scratch;
            {
                DB db(scratch.filePath(u"trestle.sqlite"_s));
            }
            realDatabase = readAll(scratch.filePath(u"trestle.sqlite"_s));
        }
    }

    // Every record and file comes back byte for byte; the old data stays aside.
    void roundTrip()
    {
        QHash<QString, Rec> before;
        QByteArray pdf(700 * 1024, Qt::Uninitialized);
        QRandomGenerator(7).fillRange(reinterpret_cast<quint32 *>(pdf.data()), pdf.size() / 4);
        const QByteArray notes = QByteArray("Gate code 4411.\n").repeated(2000);
        QString pdfPath, notesPath;
        const QString zipPath = QDir(home.path()).filePath(u"Trestle Backup.zip"_s);
        {
            DB db(QDir(folder).filePath(u"trestle.sqlite"_s));
            db.createCompany(u"Acme"_s, u"Ann"_s, u"CO"_s);
            const Rec p = db.add(u"project"_s, {}, {}, {{u"name"_s, u"Tower — ½"_s}});
            for (int k = 0; k < 300; ++k)
                db.add(u"punch"_s, p.id, {}, {{u"title"_s, u"Item %1"_s.arg(k)}});
            pdfPath = db.fileURL(u"ABCD1234-A-101 Floor Plan.pdf"_s);
            notesPath = db.fileURL(u"notes.txt"_s);
            {
                QFile f(pdfPath);
                QVERIFY(f.open(QIODevice::WriteOnly));
                f.write(pdf);
                QFile g(notesPath);
                QVERIFY(g.open(QIODevice::WriteOnly));
                g.write(notes);
            }
            ::chmod(QFile::encodeName(notesPath).constData(), 0640);
            before = snapshot(db);
            qint64 last = -1, total = 0;
            const Backup::Result r = Backup::backup(db, zipPath, [&](qint64 done, qint64 all) {
                last = done;
                total = all;
                return true;
            });
            QVERIFY2(r.ok, qPrintable(r.message));
            QVERIFY(total >= pdf.size() + notes.size());
            QCOMPARE(last, total);
            // Changes after the backup are what the restore must undo.
            db.add(u"punch"_s, p.id, {}, {{u"title"_s, u"after the backup"_s}});
            QFile f(notesPath);
            QVERIFY(f.open(QIODevice::WriteOnly));
            f.write("changed");
        }

        // The archive: one top-level folder, no shared-memory file, PDFs stored as they are.
        int err = 0;
        zip_t *z = zip_open(QFile::encodeName(zipPath).constData(), ZIP_RDONLY, &err);
        QVERIFY(z);
        bool sawPdf = false;
        for (zip_int64_t i = 0; i < zip_get_num_entries(z, 0); ++i) {
            zip_stat_t st;
            zip_stat_index(z, zip_uint64_t(i), 0, &st);
            const QString name = QString::fromUtf8(st.name);
            QVERIFY2(name.startsWith(u"Trestle/"_s), qPrintable(name));
            QVERIFY(!name.endsWith(u"-shm"_s));
            zip_uint8_t os = 0;
            zip_uint32_t attr = 0;
            zip_file_get_external_attributes(z, zip_uint64_t(i), 0, &os, &attr);
            if (name.endsWith(u".pdf"_s)) {
                sawPdf = true;
                QCOMPARE(st.comp_method, zip_uint16_t(ZIP_CM_STORE));
            }
            if (name.endsWith(u"notes.txt"_s)) {
                QCOMPARE(st.comp_method, zip_uint16_t(ZIP_CM_DEFLATE));
                QCOMPARE(attr >> 16 & 0777, 0640u);
            }
        }
        zip_close(z);
        QVERIFY(sawPdf);

        const Backup::Result r = Backup::restore(zipPath, folder);
        QVERIFY2(r.ok, qPrintable(r.message));
        DB db(QDir(folder).filePath(u"trestle.sqlite"_s));
        QCOMPARE(snapshot(db), before);
        QCOMPARE(readAll(pdfPath), pdf);
        QCOMPARE(readAll(notesPath), notes);
        QCOMPARE(QFileInfo(notesPath).permissions() & QFile::ReadGroup, QFile::ReadGroup);
        const QStringList left = siblings(home.path());
        QCOMPARE(left.size(), 2);
        QVERIFY(left.at(1).startsWith(u"Trestle (before restore "_s));
    }

    // A file from outside never writes beyond the temporary folder, and a refused one changes nothing.
    void hostile_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<bool>("restores");
        QTest::newRow("dot-dot") << u"dotdot"_s << false;
        QTest::newRow("absolute path") << u"absolute"_s << false;
        QTest::newRow("symlink entry") << u"symlink"_s << true;
        QTest::newRow("device entry") << u"device"_s << true;
        QTest::newRow("not a zip") << u"garbage"_s << false;
        QTest::newRow("other folder") << u"otherfolder"_s << false;
        QTest::newRow("not a database") << u"notdb"_s << false;
    }
    void hostile()
    {
        QFETCH(QString, kind);
        QFETCH(bool, restores);
        const QString marker = QDir(folder).filePath(u"trestle.sqlite"_s);
        {
            QFile f(marker);
            QVERIFY(f.open(QIODevice::WriteOnly));
            f.write("the current data");
        }
        const QString outside = QDir(home.path()).filePath(u"escaped"_s);
        const QString absolute = QDir::tempPath() + u"/tl-absolute-"_s + newID();
        const QString zipPath = QDir(home.path()).filePath(u"in.zip"_s);
        const ZipEntry db{u"Trestle/trestle.sqlite"_s, realDatabase};
        if (kind == u"dotdot")
            makeZip(zipPath, {db, {u"Trestle/../escaped"_s, "x"}});
        else if (kind == u"absolute")
            makeZip(zipPath, {db, {absolute, "x"}});
        else if (kind == u"symlink")
            makeZip(zipPath, {db, {u"Trestle/files/link"_s, outside.toUtf8(), S_IFLNK | 0777}});
        else if (kind == u"device")
            makeZip(zipPath, {db, {u"Trestle/files/dev"_s, QByteArray(), S_IFCHR | 0666}});
        else if (kind == u"otherfolder")
            makeZip(zipPath, {{u"Other/trestle.sqlite"_s, realDatabase}});
        else if (kind == u"notdb")
            makeZip(zipPath, {{u"Trestle/trestle.sqlite"_s, "not a database at all"}});
        else {
            QFile f(zipPath);
            QVERIFY(f.open(QIODevice::WriteOnly));
            f.write(QByteArray("PK\x03\x04 truncated").repeated(10));
        }

        const Backup::Result r = Backup::restore(zipPath, folder);
        QCOMPARE(r.ok, restores);
        QVERIFY(!QFileInfo::exists(outside));
        QVERIFY(!QFileInfo::exists(absolute));
        if (restores) {
            QCOMPARE(readAll(marker), realDatabase);
            QVERIFY(!QFileInfo(QDir(folder).filePath(u"files/link"_s)).isSymLink());
            QVERIFY(!QFileInfo::exists(QDir(folder).filePath(u"files/dev"_s)));
        } else {
            QCOMPARE(r.title, u"Not a Trestle backup"_s);
            QCOMPARE(r.message, u"That file doesn't contain Trestle data."_s);
            QCOMPARE(readAll(marker), QByteArray("the current data"));
            QCOMPARE(siblings(home.path()), QStringList{u"Trestle"_s});
        }
    }

    // Cancelling leaves no archive behind.
    void cancel()
    {
        DB db(QDir(folder).filePath(u"trestle.sqlite"_s));
        db.createCompany(u"Acme"_s, u"Ann"_s, u"CO"_s);
        QFile f(db.fileURL(u"big.bin"_s));
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(QByteArray(4 << 20, 'x'));
        f.close();
        const QString zipPath = QDir(home.path()).filePath(u"cancelled.zip"_s);
        const Backup::Result r = Backup::backup(db, zipPath, [](qint64, qint64) { return false; });
        QVERIFY(!r.ok);
        QVERIFY(!QFileInfo::exists(zipPath));
        QCOMPARE(QDir(home.path()).entryList(QDir::Files), QStringList());
    }
};

TRESTLE_TEST(BackupTests);
#include "backuptests.moc"
