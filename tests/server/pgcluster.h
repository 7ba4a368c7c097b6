#pragma once
// A throwaway PostgreSQL server for tests: its own cluster made by initdb in a
// temporary folder, reached only through a Unix socket there, and stopped at
// the end. As root it runs as the postgres user, which PostgreSQL requires.
#include <QtCore/QDir>
#include <QtCore/QProcess>
#include <QtCore/QStandardPaths>
#include <QtCore/QTemporaryDir>

#include <unistd.h>

class PgCluster
{
public:
    PgCluster() = default;
    ~PgCluster() { stop(); }
    PgCluster(const PgCluster &) = delete;
    PgCluster &operator=(const PgCluster &) = delete;

    // Makes and starts the cluster; the reason in `error` when it cannot. With
    // `tcp` it also listens on 127.0.0.1, without TLS, at a port of its own.
    bool start(QString *error, bool tcp = false)
    {
        m_tcp = tcp;
        if (tcp)
            m_port = 20000 + int(::getpid() % 20000);
        const QString bin = binDir();
        if (bin.isEmpty()) {
            *error = QStringLiteral(
                "PostgreSQL's server programs are not installed (scripts/setup installs them)");
            return false;
        }
        m_bin = bin;
        m_dir = std::make_unique<QTemporaryDir>(QDir::tempPath() + QStringLiteral("/trestle-pg-XXXXXX"));
        if (!m_dir->isValid()) {
            *error = QStringLiteral("no temporary folder");
            return false;
        }
        if (::geteuid() == 0) {
            // The server refuses to run as root; the folder is handed to postgres.
            QProcess::execute(QStringLiteral("chown"), {QStringLiteral("postgres:postgres"), m_dir->path()});
        }
        QFile::setPermissions(m_dir->path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner |
                                                 QFile::ReadGroup | QFile::ExeGroup | QFile::ReadOther |
                                                 QFile::ExeOther);
        QString out;
        if (!run(QStringLiteral("initdb"),
                 {QStringLiteral("-D"), dataDir(), QStringLiteral("-U"), QStringLiteral("postgres"),
                  QStringLiteral("-A"), QStringLiteral("trust"), QStringLiteral("-E"), QStringLiteral("UTF8"),
                  QStringLiteral("--no-sync")},
                 &out)) {
            *error = QStringLiteral("initdb failed: ") + out;
            return false;
        }
        // The administrator comes in without a password; every other login needs its SCRAM password.
        const QString hba = QStringLiteral("local all postgres trust\nlocal all all scram-sha-256\n"
                                           "host all all 127.0.0.1/32 scram-sha-256\n");
        if (!writeAsServer(QDir(dataDir()).filePath(QStringLiteral("pg_hba.conf")), hba)) {
            *error = QStringLiteral("could not write pg_hba.conf");
            return false;
        }
        // A port another program holds is passed over for the next.
        for (int tries = 0; tries < 5; ++tries) {
            if (startServer(error))
                return true;
            if (!m_tcp)
                return false;
            m_port += 101;
        }
        return false;
    }

    // Starts the stopped server again on the same data.
    bool startServer(QString *error)
    {
        QString out;
        const QString opts = QStringLiteral("-c listen_addresses='%3' -k %1 -p %2 -c fsync=off "
                                            "-c full_page_writes=off -c max_connections=100")
                                 .arg(m_dir->path())
                                 .arg(port())
                                 .arg(m_tcp ? QStringLiteral("127.0.0.1") : QString());
        if (!run(QStringLiteral("pg_ctl"),
                 {QStringLiteral("-D"), dataDir(), QStringLiteral("-l"),
                  m_dir->filePath(QStringLiteral("log")), QStringLiteral("-w"), QStringLiteral("-o"), opts,
                  QStringLiteral("start")},
                 &out)) {
            *error = QStringLiteral("the test server did not start: ") + out;
            return false;
        }
        m_running = true;
        return true;
    }

    // Stops the server at once, as a crash or a pulled plug would.
    void kill()
    {
        if (!m_running)
            return;
        QString out;
        run(QStringLiteral("pg_ctl"),
            {QStringLiteral("-D"), dataDir(), QStringLiteral("-m"), QStringLiteral("immediate"),
             QStringLiteral("stop")},
            &out);
        m_running = false;
    }

    void stop()
    {
        if (!m_running)
            return;
        QString out;
        run(QStringLiteral("pg_ctl"),
            {QStringLiteral("-D"), dataDir(), QStringLiteral("-m"), QStringLiteral("fast"),
             QStringLiteral("stop")},
            &out);
        m_running = false;
    }

    // A connection string for `db` as `user` (the administrator when empty).
    QString conninfo(const QString &db, const QString &user = QStringLiteral("postgres")) const
    {
        return QStringLiteral("host=%1 port=%2 dbname=%3 user=%4")
            .arg(m_dir->path())
            .arg(port())
            .arg(db, user);
    }

    // Creates an empty database.
    bool createDatabase(const QString &name, QString *error)
    {
        QString out;
        if (!run(QStringLiteral("createdb"),
                 {QStringLiteral("-h"), m_dir->path(), QStringLiteral("-p"), QString::number(port()),
                  QStringLiteral("-U"), QStringLiteral("postgres"), name},
                 &out)) {
            *error = out;
            return false;
        }
        return true;
    }

    // Runs SQL through psql as `user` (password in PGPASSWORD when given);
    // the exit code, and what it printed in `out`.
    int psql(const QString &db, const QString &user, const QString &sql, QString *out,
             const QString &password = QString()) const
    {
        QProcess p;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        if (!password.isEmpty())
            env.insert(QStringLiteral("PGPASSWORD"), password);
        p.setProcessEnvironment(env);
        p.start(m_bin + QStringLiteral("/psql"),
                {QStringLiteral("-X"), QStringLiteral("-At"), QStringLiteral("-v"),
                 QStringLiteral("ON_ERROR_STOP=1"), QStringLiteral("-h"), m_dir->path(), QStringLiteral("-p"),
                 QString::number(port()), QStringLiteral("-U"), user, QStringLiteral("-d"), db,
                 QStringLiteral("-c"), sql});
        p.waitForFinished(60000);
        if (out)
            *out = QString::fromUtf8(p.readAllStandardOutput() + p.readAllStandardError()).trimmed();
        return p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
    }

    QString socketDir() const { return m_dir->path(); }
    int port() const { return m_port; }

private:
    QString dataDir() const { return m_dir->filePath(QStringLiteral("data")); }

    static QString binDir()
    {
        const QDir lib(QStringLiteral("/usr/lib/postgresql"));
        QStringList versions = lib.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
        for (auto it = versions.crbegin(); it != versions.crend(); ++it)
            if (QFileInfo::exists(lib.filePath(*it + QStringLiteral("/bin/initdb"))))
                return lib.filePath(*it + QStringLiteral("/bin"));
        const QString initdb = QStandardPaths::findExecutable(QStringLiteral("initdb"));
        return initdb.isEmpty() ? QString() : QFileInfo(initdb).absolutePath();
    }

    // Runs a server program, as postgres when this process is root.
    bool run(const QString &program, const QStringList &args, QString *out) const
    {
        QProcess p;
        p.setWorkingDirectory(QDir::tempPath());
        if (::geteuid() == 0)
            p.start(QStringLiteral("runuser"), QStringList{QStringLiteral("-u"), QStringLiteral("postgres"),
                                                           QStringLiteral("--"), m_bin + u'/' + program} +
                                                   args);
        else
            p.start(m_bin + u'/' + program, args);
        p.waitForFinished(120000);
        *out = QString::fromUtf8(p.readAllStandardOutput() + p.readAllStandardError()).trimmed();
        return p.exitStatus() == QProcess::NormalExit && p.exitCode() == 0;
    }

    bool writeAsServer(const QString &path, const QString &text) const
    {
        QFile f(path);
        if (!f.open(QIODevice::WriteOnly | QIODevice::Truncate))
            return false;
        return f.write(text.toUtf8()) >= 0;
    }

    std::unique_ptr<QTemporaryDir> m_dir;
    QString m_bin;
    bool m_running = false;
    bool m_tcp = false;
    int m_port = 5432;
};
