// The whole intake and dispatch path with a real private bus between the chamber program and the server: alerts
// of several categories in, send jobs and held alarms out, one alert per tick, ServerStatus after each tick.

#include "AlertObjectAdaptor.h"
#include "BusServer.h"
#include "ChamberClient.h"
#include "Database.h"
#include "EmailFaxServer.h"
#include "Globals.h"
#include "Log.h"
#include "MainWindow.h"
#include "PrivateBus.h"
#include "TimeScale.h"
#include "clsAlertCls.h"

#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QSqlQuery>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QtTest>

using namespace osprel;

namespace {
const QString kService = QStringLiteral("org.osprel.EmailFax");
const QString kAlertInterface = QStringLiteral("org.osprel.EmailFax.clsAlertCls");

QString alert(int number, int category)
{
    return QString::number(number) + QStringLiteral("|4;Chamber 4;d;On;QLM V;T/H;Running;Yes|999;high|1;2;3;4|5;6;7;8|") +
           QString::number(category) + QStringLiteral("|9:55 pm");
}

class EventRecorder : public QObject
{
    Q_OBJECT
public:
    QList<QDBusMessage> events;
public Q_SLOTS:
    void record(const QDBusMessage &message) { events.append(message); }
};
} // namespace

class TestDispatchBus : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void alertsBecomeJobsAndHeldAlarms()
    {
        TimeScale::setFactor(0.05); // TimerMsgQue every 50 ms, started 250 ms after load
        resetGlobals();
        QTemporaryDir home;
        g.gstrAppPath = home.path();
        // A mail server that takes the connection and never answers: the e-mail jobs stay queued to be counted.
        QTcpServer silentMailServer;
        QVERIFY(silentMailServer.listen(QHostAddress::LocalHost));
        {
            Database setup;
            setup.DBInitADO(home.path());
            setup.run(QStringLiteral("INSERT INTO Contacts (LastName, FirstName, EMailEnabled, FaxEnabled, EmailName,"
                                     " FaxNumber) VALUES (?, ?, 1, 1, ?, ?), (?, ?, 0, 1, NULL, ?)"),
                      {"Doe", "Jo", "jo@lab", "5550001111", "Roe", "Al", "5550002222"});
            setup.run(QStringLiteral("UPDATE SetupComm SET FaxEnabledAtBoot = 1, EmailServer = ?"),
                      {QStringLiteral("127.0.0.1:") + QString::number(silentMailServer.serverPort())});
        }
        Log log(home.path());
        EmailFaxServer server(log);
        MainWindow window(server, log);
        server.setPort(&window);
        server.Form_Load();

        PrivateBus bus(PrivateBus::serverEnvironment(home.path(), 0.05));
        QString error;
        QVERIFY2(bus.start(&error), qPrintable(error));
        BusServer busServer(bus.connect(QStringLiteral("server")));
        QVERIFY2(busServer.start(&error), qPrintable(error));
        QSignalSpy created(&busServer, &BusServer::objectCreated);

        QDBusConnection chamber = bus.connect(QStringLiteral("chamber"));
        QDBusPendingCall create = chamber.asyncCall(QDBusMessage::createMethodCall(
            kService, QStringLiteral("/"), QStringLiteral("org.osprel.EmailFax.Factory"), QStringLiteral("CreateObject")));
        QTRY_VERIFY(create.isFinished());
        const QString path = create.reply().arguments().value(0).value<QDBusObjectPath>().path();
        EventRecorder recorder;
        chamber.connect(QString(), path, kAlertInterface, QStringLiteral("ServerStatus"), &recorder,
                        SLOT(record(QDBusMessage)));
        auto call = [&](const QString &method, const QVariantList &arguments) {
            QDBusMessage message = QDBusMessage::createMethodCall(kService, path, kAlertInterface, method);
            message.setArguments(arguments);
            QDBusPendingCall pending = chamber.asyncCall(message);
            if (!QTest::qWaitFor([&] { return pending.isFinished(); }, 5000))
                return false;
            return pending.reply().arguments().value(0).toBool();
        };
        QVERIFY(call(QStringLiteral("ServerCmd"),
                     {QStringLiteral("Vantor32"), QVariant::fromValue<short>(1), QVariant::fromValue(QDBusVariant(QString()))}));

        // The queue length seen at the end of every tick: it shrinks by exactly one per tick.
        auto *object = created.at(0).at(0).value<clsAlertCls *>();
        QList<int> lengths;
        connect(object, &clsAlertCls::ServerStatus, this, [&] { lengths.append(server.lists().lvwMsgQue.count()); });

        server.timers().TimerMsgQue.stop(); // hold the ticks until every alert is in
        server.timers().TimerInit.stop();
        // CHAMBER_ALARM (High: at once), COMMAND_RESPONSE_ERROR (Low: daily report), PROGRAM_ALARM (Mid: both),
        // GENERAL_STATUS sent as a bare index (Low: held).
        for (const auto &[number, category] : {std::pair{1, 5005}, {2, 5003}, {3, 5006}, {4, 7}})
            QVERIFY(call(QStringLiteral("SendAlert"), {alert(number, category)}));
        QCOMPARE(server.lists().lvwMsgQue.count(), 4);
        server.timers().TimerMsgQue.start();
        QTRY_VERIFY(lengths.size() >= 5);
        QCOMPARE(lengths.mid(0, 5), QList<int>({3, 2, 1, 0, 0}));

        FormLists &lists = server.lists();
        QCOMPARE(lists.lvwSendEmailQue.count(), 2); // alerts 1 and 3
        QCOMPARE(lists.lvwSendEmailQue.text(2, 8), QStringLiteral("3"));
        QCOMPARE(lists.lvwSendFaxQue.count(), 4); // two recipients each
        QCOMPARE(lists.lvwSendFaxQue.text(4, 4), QStringLiteral("5550002222"));
        QSqlQuery held = server.database().run(
            QStringLiteral("SELECT group_concat(ErrID || ':' || Priority || ':' || Catagory) FROM"
                           " (SELECT * FROM AlarmMsgs WHERE OverWrite = FALSE ORDER BY rowid)"));
        QVERIFY(held.next());
        QCOMPARE(held.value(0).toString(), QStringLiteral("2:2:5003,3:1:5006,4:2:5007"));
        QCOMPARE(window.lblQueuedAlarms(7), QStringLiteral("1"));

        // Every tick reported the send states to the chamber program, with their bus types.
        g.gintEmailSendState = 1;
        QTRY_VERIFY(!recorder.events.isEmpty() && recorder.events.last().arguments().value(1).toInt() == 1);
        const QDBusMessage last = recorder.events.last();
        QCOMPARE(last.signature(), QStringLiteral("bnn"));
        QCOMPARE(last.arguments(), QVariantList({true, short(1), short(0)}));
        g.gintEmailSendState = 0;
        server.timers().TimerMsgQue.stop();
        TimeScale::setFactor(1);
    }
};

QTEST_MAIN(TestDispatchBus)
#include "tst_dispatch_bus.moc"
