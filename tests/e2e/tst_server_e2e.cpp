// The server as a chamber program meets it: started by a real bus, linked, fed, refused, and ended.

#include "ChamberClient.h"
#include "PrivateBus.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>
#include <algorithm>
#include <csignal>
#include <vector>

using osprel::ChamberClient;

namespace {
const QString kService = QStringLiteral("org.osprel.EmailFax");
const QString kAlert =
    QStringLiteral("7|4;Chamber 4;Walk-in;On;QLM V;T/H;Running;Yes|999;CH1 high|1;2;3;4|5;6;7;8|5|9:55 pm");
constexpr double kTimeScale = 0.1; // tmrServer at 75 ms

struct Client
{
    Client(PrivateBus &bus, const QString &name) : connection(bus.connect(name)), chamber(connection)
    {
        chamber.setEventHandler([this](const QString &line) { events.append(line); });
    }
    bool create()
    {
        QString error;
        return chamber.createObject(&error);
    }
    bool cmd(qint16 command, const QVariant &custom = QString(), const QString &form = QStringLiteral("Vantor32"))
    {
        bool result = false;
        QString error;
        if (!chamber.serverCmd(form, command, custom, &result, &error))
            qWarning() << "ServerCmd failed:" << error;
        return result;
    }
    bool send(const QString &alert)
    {
        bool result = false;
        QString error;
        if (!chamber.sendAlert(alert, &result, &error))
            qWarning() << "SendAlert failed:" << error;
        return result;
    }
    // A raw call, for the calls a chamber program should not make.
    QDBusMessage call(const QString &path, const QString &method, const QVariantList &arguments)
    {
        QDBusMessage message =
            QDBusMessage::createMethodCall(kService, path, QStringLiteral("org.osprel.EmailFax.clsAlertCls"), method);
        message.setArguments(arguments);
        return connection.call(message);
    }

    QDBusConnection connection;
    ChamberClient chamber;
    QStringList events;
};
} // namespace

class TestServerE2E : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        m_home = std::make_unique<QTemporaryDir>();
        m_bus = std::make_unique<PrivateBus>(PrivateBus::serverEnvironment(m_home->path(), kTimeScale));
        QString error;
        QVERIFY2(m_bus->start(&error), qPrintable(error));
    }
    void cleanup()
    {
        if (const qint64 pid = m_bus->pidOf(kService))
            ::kill(pid_t(pid), SIGKILL);
        m_bus.reset();
        m_home.reset();
    }

    void startsThroughTheBusAndEndsAfterUnlink()
    {
        QVERIFY(!m_bus->hasOwner(kService));
        Client chamber(*m_bus, QStringLiteral("chamber"));
        QVERIFY(chamber.create()); // activates the server
        QVERIFY(m_bus->hasOwner(kService));
        QVERIFY(log().contains("Starting Alarm System: "));

        QVERIFY(chamber.cmd(1));
        QVERIFY(!chamber.cmd(1)); // already linked
        QVERIFY(!chamber.cmd(3, QString(), QStringLiteral("Other")));
        QVERIFY(m_bus->hasOwner(kService));
        QVERIFY(chamber.cmd(2));                                    // idle: unlinks
        QTRY_VERIFY_WITH_TIMEOUT(!m_bus->hasOwner(kService), 5000); // tmrServer ended the process
    }

    void refusesAStartByHandAndASecondInstance()
    {
        QProcess manual;
        manual.setProcessEnvironment(PrivateBus::serverEnvironment(m_home->path(), kTimeScale));
        manual.start(PrivateBus::buildDir() + QStringLiteral("/bin/osprel-emailfax"), {});
        QVERIFY(manual.waitForFinished(20000));
        QCOMPARE(manual.exitCode(), 1);
        QVERIFY(
            manual.readAllStandardError().contains("... Improper Osprel Startup mode ...\n...PROGRAM TERMINATING..."));

        Client chamber(*m_bus, QStringLiteral("chamber"));
        QVERIFY(chamber.create());
        const qint64 running = m_bus->pidOf(kService);
        for (const QStringList &arguments : {QStringList{}, QStringList{QStringLiteral("--automation")}}) {
            manual.start(PrivateBus::buildDir() + QStringLiteral("/bin/osprel-emailfax"), arguments);
            QVERIFY(manual.waitForFinished(20000));
            QCOMPARE(manual.exitCode(), 1);
            QVERIFY(manual.readAllStandardError().contains("There can only be one instance of program running ...\n"));
        }
        QCOMPARE(m_bus->pidOf(kService), running);
        QVERIFY(chamber.cmd(1));
    }

    void eventsReachOnlyTheirOwnerAndObjectsTheirCreator()
    {
        Client first(*m_bus, QStringLiteral("first")), second(*m_bus, QStringLiteral("second"));
        QVERIFY(first.create());
        QVERIFY(second.create());
        QVERIFY(first.cmd(1));
        QVERIFY(!second.cmd(1, QString(), QStringLiteral("Second"))); // somebody is linked

        QVERIFY(first.send(kAlert));
        QVERIFY(!second.send(QStringLiteral("8|x|y|z|w|6|t"))); // not linked: refused, nothing queued
        QTRY_COMPARE(first.events, QStringList{QStringLiteral("AlertReady ") + kAlert});
        QVERIFY(second.events.isEmpty());

        // The second client cannot call or release the first client's object.
        const QString firstPath = first.chamber.objectPath();
        QCOMPARE(second.call(firstPath, QStringLiteral("SendAlert"), {kAlert}).errorName(),
                 QStringLiteral("org.freedesktop.DBus.Error.AccessDenied"));
        QDBusMessage release = QDBusMessage::createMethodCall(
            kService, QStringLiteral("/"), QStringLiteral("org.osprel.EmailFax.Factory"), QStringLiteral("Release"));
        release << QVariant::fromValue(QDBusObjectPath(firstPath));
        QCOMPARE(second.connection.call(release).errorName(),
                 QStringLiteral("org.freedesktop.DBus.Error.AccessDenied"));
        QTest::qWait(50);
        QCOMPARE(second.events.size(), 0);
    }

    // Two chamber programs on one bus: only the linked one steers and hands in alerts; releasing its object frees the
    // link; a 16 MB alert is refused at once and leaves the bus and the log as they were.
    void onlyTheLinkedProgramSteers()
    {
        Client linked(*m_bus, QStringLiteral("linked")), other(*m_bus, QStringLiteral("other"));
        QVERIFY(linked.create());
        QVERIFY(other.create());
        QVERIFY(linked.cmd(1));
        for (qint16 command = 2; command <= 7; ++command)
            QVERIFY2(!other.cmd(command, QStringLiteral("x")), qPrintable(QString::number(command)));
        QVERIFY(!other.send(kAlert));
        QVERIFY(m_bus->hasOwner(kService));
        QVERIFY(linked.cmd(4, QStringLiteral("Oven"))); // the linked program still steers
        QVERIFY(linked.send(kAlert));
        QVERIFY(!linked.cmd(2)); // its alert still waits in a queue

        QDBusMessage release = QDBusMessage::createMethodCall(
            kService, QStringLiteral("/"), QStringLiteral("org.osprel.EmailFax.Factory"), QStringLiteral("Release"));
        release << QVariant::fromValue(QDBusObjectPath(linked.chamber.objectPath()));
        QCOMPARE(linked.connection.call(release).type(), QDBusMessage::ReplyMessage);
        QTRY_VERIFY(log().contains("Chamber program Vantor32 released its alert object without unlinking; the link is "
                                   "free for its return.\r\n"));
        QVERIFY(other.cmd(1, QString(), QStringLiteral("Other")));

        const QString huge(16 << 20, u'x');
        QVERIFY(!other.send(huge));
        QDBusConnection query = m_bus->connect(QStringLiteral("pinger"));
        std::vector<qint64> pings;
        for (int i = 0; i < 21; ++i) {
            QElapsedTimer one;
            one.start();
            const QDBusMessage pong = query.call(QDBusMessage::createMethodCall(
                kService, QStringLiteral("/"), QStringLiteral("org.freedesktop.DBus.Peer"), QStringLiteral("Ping")));
            pings.push_back(one.nsecsElapsed());
            QCOMPARE(pong.type(), QDBusMessage::ReplyMessage);
        }
        std::nth_element(pings.begin(), pings.begin() + 10, pings.end());
        QVERIFY2(pings[10] < 10'000'000, qPrintable(QStringLiteral("median ping %1 ns").arg(pings[10])));
        QVERIFY(QFileInfo(m_home->filePath(QStringLiteral("EMailFaxLog.txt"))).size() < 512000 + 4200);
    }

    void badInputNeverHurtsTheServer()
    {
        Client chamber(*m_bus, QStringLiteral("chamber"));
        QVERIFY(chamber.create());
        QVERIFY(chamber.cmd(1));
        QVERIFY(!chamber.send(QString()));
        QVERIFY(chamber.send(kAlert + QStringLiteral(";22nd value")));
        QVERIFY(chamber.send(QStringLiteral("too|short")));
        const QString huge = QStringLiteral("1|") + QString(1 << 20, u'x') + QStringLiteral("|a|b|c|5|t");
        QVERIFY(!chamber.send(huge)); // past the 64 KB limit
        QVERIFY(!chamber.cmd(0));
        QVERIFY(!chamber.cmd(8));
        QVERIFY(!chamber.cmd(4, QStringList{QStringLiteral("not"), QStringLiteral("text")}));
        QVERIFY(!chamber.cmd(5, QStringLiteral("only,two")));
        QVERIFY(!chamber.cmd(7, QStringLiteral("1,2,3")));
        QVERIFY(chamber.cmd(4, 17)); // a number is taken as its text

        // intCmd sent as int32 is not the method at all.
        const QDBusMessage wrongType =
            chamber.call(chamber.chamber.objectPath(), QStringLiteral("ServerCmd"),
                         {QStringLiteral("Vantor32"), 1, QVariant::fromValue(QDBusVariant(QString()))});
        QCOMPARE(wrongType.errorName(), QStringLiteral("org.freedesktop.DBus.Error.UnknownMethod"));

        // A released object is gone; the client keeps its link through the window's reference.
        Client other(*m_bus, QStringLiteral("other"));
        QVERIFY(other.create());
        const QString otherPath = other.chamber.objectPath();
        QDBusMessage release = QDBusMessage::createMethodCall(
            kService, QStringLiteral("/"), QStringLiteral("org.osprel.EmailFax.Factory"), QStringLiteral("Release"));
        release << QVariant::fromValue(QDBusObjectPath(otherPath));
        QCOMPARE(other.connection.call(release).type(), QDBusMessage::ReplyMessage);
        QCOMPARE(other.call(otherPath, QStringLiteral("SendAlert"), {kAlert}).errorName(),
                 QStringLiteral("org.freedesktop.DBus.Error.UnknownObject"));

        // The huge alert was refused whole, with one line naming its size.
        QTRY_VERIFY(log().contains("Alert of " + QByteArray::number(huge.toUtf8().size()) +
                                   " bytes refused: the limit is 65536 bytes.\r\n"));
        QTRY_COMPARE(chamber.events.filter(QStringLiteral("AlertReady ")).size(), 2);
        QTRY_VERIFY(log().contains("ErrorHandler 9: Subscript out of range (m_objAlertServer_AlertReady)\r\n"));
        const QByteArray text = log();
        QVERIFY(text.contains("ErrorHandler 13: Type mismatch (ServerCmd), Form = Vantor32\r\n"));
        QCOMPARE(text.count("ErrorHandler 9: Subscript out of range (ServerCmd), Form = Vantor32\r\n"), 2);
        QVERIFY(m_bus->hasOwner(kService));
        QVERIFY(chamber.cmd(3));
        QTRY_VERIFY_WITH_TIMEOUT(!m_bus->hasOwner(kService), 5000);
    }

    void shutdownWarnsTheLinkedChamberProgram()
    {
        Client chamber(*m_bus, QStringLiteral("chamber"));
        QVERIFY(chamber.create());
        QVERIFY(chamber.cmd(1));
        ::kill(pid_t(m_bus->pidOf(kService)), SIGTERM);
        QTRY_COMPARE(chamber.events, QStringList{QStringLiteral("ServerClosing")});
        QTRY_VERIFY_WITH_TIMEOUT(!m_bus->hasOwner(kService), 5000);
    }

    void aChamberProgramThatVanishesCanLinkAgain()
    {
        {
            Client crashed(*m_bus, QStringLiteral("crashed"));
            QVERIFY(crashed.create());
            QVERIFY(crashed.cmd(1));
            QDBusConnection::disconnectFromBus(crashed.connection.name());
        }
        QTRY_VERIFY(log().contains("left without unlinking"));
        QVERIFY(m_bus->hasOwner(kService)); // nothing queued is lost: the server stays
        Client restarted(*m_bus, QStringLiteral("restarted"));
        QVERIFY(restarted.create());
        QVERIFY(restarted.cmd(1));
    }

    void theReferenceClientsWork()
    {
        QProcess client;
        client.start(PrivateBus::buildDir() + QStringLiteral("/bin/osprel-client"),
                     {QStringLiteral("--bus"), m_bus->address(), QStringLiteral("--wait"), QStringLiteral("0.2"),
                      QStringLiteral("--cmd"), QStringLiteral("4=Oven"), kAlert});
        QVERIFY(client.waitForFinished(30000));
        const QString out = QString::fromUtf8(client.readAllStandardOutput());
        QCOMPARE(client.exitCode(), 0);
        QVERIFY2(out.contains(QStringLiteral("ServerCmd 1 -> true\nServerCmd 4 -> true\nSendAlert -> true\n")),
                 qPrintable(out));
        QVERIFY(out.contains(QStringLiteral("event AlertReady ") + kAlert));
        QVERIFY(out.contains(QStringLiteral("ServerCmd 2 -> true")));
        QTRY_VERIFY_WITH_TIMEOUT(!m_bus->hasOwner(kService), 5000);

        // The Python example of the README, against the same kind of bus.
        QProcess python;
        python.start(QStringLiteral("/usr/bin/python3"),
                     {PrivateBus::sourceDir() + QStringLiteral("/examples/chamber.py"), QStringLiteral("--bus"),
                      m_bus->address()});
        QVERIFY(python.waitForFinished(30000));
        const QString pyOut = QString::fromUtf8(python.readAllStandardOutput());
        QVERIFY2(python.exitCode() == 0, qPrintable(QString::fromUtf8(python.readAllStandardError())));
        QVERIFY2(pyOut.contains(QStringLiteral("linked: True")), qPrintable(pyOut));
        QVERIFY(pyOut.contains(QStringLiteral("AlertReady: 1|")));
        QVERIFY(pyOut.contains(QStringLiteral("unlinked: True")));
    }

private:
    QByteArray log() const
    {
        QFile file(m_home->filePath(QStringLiteral("EMailFaxLog.txt")));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    std::unique_ptr<QTemporaryDir> m_home;
    std::unique_ptr<PrivateBus> m_bus;
};

QTEST_GUILESS_MAIN(TestServerE2E)
#include "tst_server_e2e.moc"
