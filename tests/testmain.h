#pragma once
// The shared entry of the per-layer test executables: runs every registered
// test class, and lets a test start this same executable as a child process
// ("--child <name> args...") to exercise crashes and fatal stops.
#include <QtCore/QCoreApplication>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

// Graphical test executables define TRESTLE_TEST_APP as 1 (QtGui) or 2 (widgets).
#if defined(TRESTLE_TEST_APP) && TRESTLE_TEST_APP == 2
#include <QtWidgets/QApplication>
using TestApp = QApplication;
#elif defined(TRESTLE_TEST_APP) && TRESTLE_TEST_APP == 1
#include <QtGui/QGuiApplication>
using TestApp = QGuiApplication;
#else
using TestApp = QCoreApplication;
#endif

#include <functional>
#include <map>
#include <memory>

namespace TestMain {

using Factory = std::function<std::unique_ptr<QObject>()>;
using Child = std::function<int(const QStringList &args)>;

inline std::vector<std::pair<const char *, Factory>> &classes()
{
    static std::vector<std::pair<const char *, Factory>> list;
    return list;
}
inline std::map<QString, Child> &children()
{
    static std::map<QString, Child> map;
    return map;
}

struct RegisterClass
{
    RegisterClass(const char *name, Factory f) { classes().emplace_back(name, std::move(f)); }
};
struct RegisterChild
{
    RegisterChild(const QString &name, Child c) { children()[name] = std::move(c); }
};

// Runs this executable as `--child name args` and waits; the finished process.
inline std::unique_ptr<QProcess> runChild(const QString &name, const QStringList &args, int timeoutMs = 30000)
{
    auto p = std::make_unique<QProcess>();
    p->start(QCoreApplication::applicationFilePath(), QStringList{QStringLiteral("--child"), name} + args);
    p->waitForFinished(timeoutMs);
    return p;
}

// Points the data and settings folders at a private temporary folder so that
// no test reads or writes the user's own data.
inline void isolateHome(QTemporaryDir &dir)
{
    qputenv("XDG_DATA_HOME", dir.filePath(QStringLiteral("data")).toLocal8Bit());
    qputenv("XDG_CONFIG_HOME", dir.filePath(QStringLiteral("config")).toLocal8Bit());
}

inline int main(int argc, char *argv[])
{
    // Graphical tests run headless unless a display is asked for explicitly.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    TestApp app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() >= 3 && args.at(1) == QLatin1StringView("--child")) {
        auto it = children().find(args.at(2));
        return it == children().end() ? 3 : it->second(args.mid(3));
    }
    // A tester's own data must never be touched, whatever a test forgets.
    QTemporaryDir home;
    isolateHome(home);
    int failed = 0;
    for (auto &[name, make] : classes()) {
        std::unique_ptr<QObject> test = make();
        failed += QTest::qExec(test.get(), args);
    }
    return failed == 0 ? 0 : 1;
}

} // namespace TestMain

// Registers a test class with the layer's executable.
#define TRESTLE_TEST(Class)                                                                                  \
    static TestMain::RegisterClass trestleRegister##Class(#Class, [] { return std::make_unique<Class>(); })
