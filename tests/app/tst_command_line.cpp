// The programs' command lines as a user meets them: help and version that touch nothing, and the settings window
// with and without a running server.

#include "BusServer.h"
#include "BusWiring.h"
#include "EmailFaxServer.h"
#include "FormWiring.h"
#include "Globals.h"
#include "Log.h"
#include "MainWindow.h"
#include "PrivateBus.h"

#include <QDBusMessage>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>
#include <csignal>

using namespace osprel;

namespace {
const QString kService = QStringLiteral("org.osprel.EmailFax");

QString program(const char *name)
{
    return PrivateBus::buildDir() + QStringLiteral("/bin/") + QLatin1String(name);
}

QDBusMessage createObject(QDBusConnection &connection)
{
    return connection.call(QDBusMessage::createMethodCall(kService, QStringLiteral("/"),
                                                          QStringLiteral("org.osprel.EmailFax.Factory"),
                                                          QStringLiteral("CreateObject")),
                           QDBus::Block, 20000);
}
} // namespace

class TestCommandLine : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void helpAndVersionAnswerWithoutADataFolder_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("expected");
        QTest::newRow("help") << "osprel-emailfax" << QStringList{"--help"} << 0 << "OSPREL_TIME_SCALE";
        QTest::newRow("help beside --automation")
            << "osprel-emailfax" << QStringList{"--automation", "-h"} << 0 << "dbus-update-activation-environment";
        QTest::newRow("version") << "osprel-emailfax" << QStringList{"--version"} << 0 << "osprel-emailfax 1.0.0";
        QTest::newRow("unknown option") << "osprel-emailfax" << QStringList{"--settngs"} << 2 << "--settngs";
        QTest::newRow("client version") << "osprel-client" << QStringList{"--version"} << 0 << "osprel-client 1.0.0";
    }
    void helpAndVersionAnswerWithoutADataFolder()
    {
        QFETCH(QString, name);
        QFETCH(QStringList, arguments);
        QFETCH(int, exitCode);
        QFETCH(QString, expected);
        QTemporaryDir dir;
        QProcessEnvironment env = PrivateBus::serverEnvironment(dir.filePath(QStringLiteral("home")), 1);
        env.insert(QStringLiteral("XDG_DATA_HOME"), dir.filePath(QStringLiteral("xdg")));
        env.remove(QStringLiteral("QT_QPA_PLATFORM")); // nothing here may need a display
        QProcess process;
        process.setProcessEnvironment(env);
        process.start(program(name.toLatin1().constData()), arguments);
        QVERIFY(process.waitForFinished(20000));
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), exitCode);
        const QString output = QString::fromLocal8Bit(process.readAllStandardOutput() + process.readAllStandardError());
        QVERIFY2(output.contains(expected), qPrintable(output));
        QCOMPARE(QDir(dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList{});
    }

    // Without a chamber program the settings window holds the data folder: a bus start refuses at once instead of
    // opening the same database twice, and SIGTERM ends the window.
    void settingsWindowHoldsTheFolderAgainstABusStart()
    {
        PrivateBus bus(0.1);
        QString error;
        QVERIFY2(bus.start(&error), qPrintable(error));
        QProcessEnvironment env = PrivateBus::serverEnvironment(bus.dataFolder(), 0.1);
        env.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), bus.address());
        QProcess settings;
        settings.setProcessEnvironment(env);
        settings.start(program("osprel-emailfax"), {QStringLiteral("--settings")});
        QVERIFY(settings.waitForStarted());
        const QString logPath = bus.dataFolder() + QStringLiteral("/EMailFaxLog.txt");
        QTRY_VERIFY_WITH_TIMEOUT(logText(logPath).contains("Settings window only"), 20000);
        QVERIFY(QFile::exists(bus.dataFolder() + QStringLiteral("/EMAILFAX.MDE")));

        QDBusConnection chamber = bus.connect(QStringLiteral("chamber"));
        const QDBusMessage refused = createObject(chamber);
        QCOMPARE(refused.type(), QDBusMessage::ErrorMessage);
        QVERIFY(!bus.hasOwner(kService));
        QCOMPARE(settings.state(), QProcess::Running);

        ::kill(pid_t(settings.processId()), SIGTERM);
        QVERIFY(settings.waitForFinished(20000));
        QCOMPARE(settings.exitCode(), 0);
        QVERIFY(createObject(chamber).type() == QDBusMessage::ReplyMessage); // the folder is free again
        bus.setServerPid(bus.pidOf(kService));
    }

    // With a server on the bus, --settings brings that server's window up and leaves; a server without a display
    // says so, since its window would be seen by nobody.
    void settingsAsksTheRunningServerForItsWindow_data()
    {
        QTest::addColumn<bool>("headless");
        QTest::newRow("on a display") << false;
        QTest::newRow("without a display") << true;
    }
    void settingsAsksTheRunningServerForItsWindow()
    {
        QFETCH(bool, headless);
        resetGlobals();
        QTemporaryDir home;
        g.gstrAppPath = home.path();
        Log log(home.path());
        FormLists lists;
        MainWindow window(lists, log);
        EmailFaxServer server(log, lists, window.ports());
        wireForm(window, server);
        server.Form_Load();
        PrivateBus bus(PrivateBus::serverEnvironment(home.path(), 1));
        QString error;
        QVERIFY2(bus.start(&error), qPrintable(error));
        BusServer busServer(bus.connect(QStringLiteral("server")));
        wireBus(busServer, server, headless);
        QVERIFY2(busServer.start(&error), qPrintable(error));
        window.close();
        QVERIFY(!window.isVisible() || window.isMinimized());

        QProcessEnvironment env = PrivateBus::serverEnvironment(home.path(), 1);
        env.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), bus.address());
        QProcess settings;
        settings.setProcessEnvironment(env);
        settings.start(program("osprel-emailfax"), {QStringLiteral("--settings")});
        // The event loop turns while the other process waits for this server's answer.
        QTRY_COMPARE_WITH_TIMEOUT(settings.state(), QProcess::NotRunning, 20000);
        QCOMPARE(settings.exitCode(), headless ? 1 : 0);
        QCOMPARE(settings.readAllStandardError().contains("has no display"), headless);
        QVERIFY(window.isVisible());
        QVERIFY(!window.isMinimized());
        busServer.stop();
        g.gblnServerLinked = false;
    }

private:
    static QByteArray logText(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
};

QTEST_MAIN(TestCommandLine)
#include "tst_command_line.moc"
