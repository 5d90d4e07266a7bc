// The whole intake and dispatch path with a real private bus between the chamber program and the server: alerts
// of several categories in, send jobs and held alarms out, one alert per tick, ServerStatus after each tick.

#include "Globals.h"
#include "InProcessServer.h"
#include "clsAlertCls.h"
#include "pages/AlarmSetupPage.h"

#include <QSqlQuery>
#include <QTcpServer>
#include <QtTest>

using namespace osprel;

namespace {
QString alert(int number, int category)
{
    return QString::number(number) +
           QStringLiteral("|4;Chamber 4;d;On;QLM V;T/H;Running;Yes|999;high|1;2;3;4|5;6;7;8|") +
           QString::number(category) + QStringLiteral("|9:55 pm");
}
} // namespace

class TestDispatchBus : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void alertsBecomeJobsAndHeldAlarms()
    {
        // A mail server that takes the connection and never answers: the e-mail jobs stay queued to be counted.
        QTcpServer silentMailServer;
        QVERIFY(silentMailServer.listen(QHostAddress::LocalHost));
        InProcessServer fixture(0.05); // TimerMsgQue every 50 ms
        QString error;
        QVERIFY2(fixture.start(
                     [&](Database &db) {
                         db.run(QStringLiteral(
                                    "INSERT INTO Contacts (LastName, FirstName, EMailEnabled, FaxEnabled, EmailName,"
                                    " FaxNumber) VALUES (?, ?, 1, 1, ?, ?), (?, ?, 0, 1, NULL, ?)"),
                                {"Doe", "Jo", "jo@lab", "5550001111", "Roe", "Al", "5550002222"});
                         db.run(QStringLiteral("UPDATE SetupComm SET FaxEnabledAtBoot = 1, EmailServer = ?"),
                                {QStringLiteral("127.0.0.1:") + QString::number(silentMailServer.serverPort())});
                     },
                     &error),
                 qPrintable(error));
        EmailFaxServer &server = fixture.server();
        QVERIFY(fixture.link());

        // The queue length seen at the end of every tick: it shrinks by exactly one per tick.
        QList<int> lengths;
        connect(fixture.object(), &clsAlertCls::ServerStatus, this,
                [&] { lengths.append(server.lists().lvwMsgQue.count()); });
        server.timers().TimerMsgQue.stop(); // hold the ticks until every alert is in
        server.timers().TimerInit.stop();
        // CHAMBER_ALARM (High: at once), COMMAND_RESPONSE_ERROR (Low: daily report), PROGRAM_ALARM (Mid: both),
        // GENERAL_STATUS sent as a bare index (Low: held).
        for (const auto &[number, category] : {std::pair{1, 5005}, {2, 5003}, {3, 5006}, {4, 7}})
            QVERIFY(fixture.sendAlert(alert(number, category)));
        QCOMPARE(server.lists().lvwMsgQue.count(), 4);
        server.timers().TimerMsgQue.start();
        QTRY_VERIFY(lengths.size() >= 5);
        QCOMPARE(lengths.mid(0, 5), QList<int>({3, 2, 1, 0, 0}));

        FormLists &lists = server.lists();
        QCOMPARE(lists.lvwSendEmailQue.count(), 2); // alerts 1 and 3
        QCOMPARE(lists.lvwSendEmailQue.text(2, 8), QStringLiteral("3"));
        // Two recipients each. The fax queue's own timer may have tried its first job meanwhile (there is no
        // modem), which moves that job behind the others: the jobs are compared in any order.
        QStringList faxJobs;
        for (int row = 1; row <= lists.lvwSendFaxQue.count(); ++row)
            faxJobs << lists.lvwSendFaxQue.text(row, 10) + u':' + lists.lvwSendFaxQue.text(row, 4);
        faxJobs.sort();
        QCOMPARE(faxJobs, QStringList({"1:5550001111", "1:5550002222", "3:5550001111", "3:5550002222"}));
        QSqlQuery held =
            server.database().run(QStringLiteral("SELECT group_concat(ErrID || ':' || Priority || ':' || Catagory) FROM"
                                                 " (SELECT * FROM AlarmMsgs WHERE OverWrite = FALSE ORDER BY rowid)"));
        QVERIFY(held.next());
        QCOMPARE(held.value(0).toString(), QStringLiteral("2:2:5003,3:1:5006,4:2:5007"));
        QCOMPARE(fixture.window().alarmSetupPage()->lblQueuedAlarms(7), QStringLiteral("1"));

        // Every tick reported the send states to the chamber program, with their bus types.
        g.gintEmailSendState = 1;
        QTRY_VERIFY(fixture.events(QStringLiteral("ServerStatus")).last().arguments().value(1).toInt() == 1);
        const QDBusMessage last = fixture.events(QStringLiteral("ServerStatus")).last();
        QCOMPARE(last.signature(), QStringLiteral("bnn"));
        QCOMPARE(last.arguments(), QVariantList({true, short(1), short(0)}));
        g.gintEmailSendState = 0;
        server.timers().TimerMsgQue.stop();
    }
};

QTEST_MAIN(TestDispatchBus)
#include "tst_dispatch_bus.moc"
