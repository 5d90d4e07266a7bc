// Tickets end to end: the server with its window in this process on a private bus, aiosmtpd as the mail server, and
// the injected clock moved by hand. A High alert whose level asks for acknowledgement, repeats every 2 minutes up to
// 3 times and escalates after 5: the first mail, a repeat, a restart of the server between two repeats that
// continues the schedule, the next repeat, the escalation list's mail; an Acknowledge over the bus stops all further
// mail, reaches the chamber program as AlarmAcknowledged, and is in the history with who, when and how;
// osprel-client then clears the ticket from the command line.

#include "Clock.h"
#include "InProcessServer.h"
#include "ListStore.h"
#include "LocalSmtpServer.h"
#include "TicketDesk.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QSqlQuery>
#include <QtTest>
#include <memory>

using namespace osprel;

namespace {
// osprel-client on the fixture's bus; its exit code, and its output in *output.
int client(const QString &bus, const QStringList &arguments, QByteArray *output)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QStringLiteral(OSPREL_BUILD_DIR "/bin/osprel-client"),
                  QStringList{QStringLiteral("--bus"), bus} + arguments);
    // The server answers on this thread: the event loop runs while the client waits.
    if (!QTest::qWaitFor([&] { return process.state() == QProcess::NotRunning; }, 20000))
        return -1;
    *output = process.readAll();
    return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
}

QJsonArray recipientsOf(const LocalSmtpServer &smtp, int index)
{
    return QJsonDocument::fromJson(smtp.rawEnvelopes().value(index)).object().value("rcpt_tos").toArray();
}
} // namespace

class TestTicketsE2E : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void cleanup() { Clock::setSource(nullptr); }

    void repeatedEscalatedAcknowledgedAcrossARestart()
    {
        LocalSmtpServer smtp;
        QString error;
        QVERIFY2(smtp.start(&error), qPrintable(error));
        const QDateTime t0(QDate(2026, 11, 23), QTime(14, 0));
        auto now = std::make_shared<QDateTime>(t0);
        Clock::setSource([now] { return *now; });
        auto advanceTo = [now, t0](int minutes) { *now = t0.addSecs(minutes * 60); };

        InProcessServer fixture(0.01);
        QVERIFY2(fixture.start(
                     [&](Database &db) {
                         InProcessServer::mailToDuty(db, smtp.address());
                         db.run(QStringLiteral("INSERT INTO Contacts (LastName, FirstName, EscalationEnabled,"
                                               " EmailName) VALUES ('Boss', 'Big', 1, 'boss@lab.test')"));
                         db.run(QStringLiteral("UPDATE SetupTicketRule SET AckRequired = 1, RepeatMinutes = 2,"
                                               " RepeatTimes = 3, EscalateMinutes = 5 WHERE PriorityID = 0"));
                     },
                     &error),
                 qPrintable(error));
        QVERIFY(fixture.link());
        // Category 5, CHAMBER_ALARM, is a High level alarm.
        QVERIFY(fixture.sendAlert(QStringLiteral("41|4;Chamber 4;d;On;c;m;s;l|9;CH1 high|1;2;3;4|5;6;7;8|5|t")));

        QTRY_COMPARE_WITH_TIMEOUT(smtp.subjects().size(), 1, 15000);
        const QRegularExpressionMatch ticket =
            QRegularExpression(QStringLiteral(", Ticket ([0-9]{4}-[A-Z]{2})$")).match(smtp.subjects().first());
        QVERIFY2(ticket.hasMatch(), qPrintable(smtp.subjects().first()));
        const QString code = ticket.captured(1);
        QVERIFY(StoredMessage::parse(smtp.messages().first()).body.startsWith(QStringLiteral("Ticket ") + code));
        QCOMPARE(recipientsOf(smtp, 0), QJsonArray({"duty@lab.test"}));

        advanceTo(2);
        QTRY_COMPARE_WITH_TIMEOUT(smtp.subjects().size(), 2, 15000);
        QVERIFY2(smtp.subjects().at(1).endsWith(code + QStringLiteral(", repeat 1 of 3")),
                 qPrintable(smtp.subjects().at(1)));
        QTRY_VERIFY(fixture.server().lists().lvwSendEmailQue.isEmpty());

        // A restart at minute 3 continues the schedule: nothing is sent again at once, the next repeat is the
        // second, at minute 4.
        advanceTo(3);
        fixture.restart();
        QCOMPARE(fixture.server().tickets().tickets().size(), 1);
        QCOMPARE(fixture.server().tickets().tickets().first().repeats, 1);
        QCOMPARE(fixture.server().lists().lvwActiveAlarms.text(1, 1), code);
        QTest::qWait(300); // the start-up and thirty ticks of the ticket timer at this time scale
        QCOMPARE(smtp.subjects().size(), 2);
        QVERIFY(fixture.link());

        advanceTo(4);
        QTRY_COMPARE_WITH_TIMEOUT(smtp.subjects().size(), 3, 15000);
        QVERIFY2(smtp.subjects().at(2).endsWith(code + QStringLiteral(", repeat 2 of 3")),
                 qPrintable(smtp.subjects().at(2)));

        advanceTo(5);
        QTRY_COMPARE_WITH_TIMEOUT(smtp.subjects().size(), 4, 15000);
        QCOMPARE(smtp.subjects().at(3),
                 QStringLiteral("Chamber 4 Chamber Notification: Escalation: CHAMBER_ALARM, Ticket ") + code);
        QCOMPARE(recipientsOf(smtp, 3), QJsonArray({"boss@lab.test"}));
        QCOMPARE(fixture.server().lists().lvwActiveAlarms.text(1, 6), t0.addSecs(300).toString("MM/dd/yyyy  HH:mm:ss"));

        // Unknown and malformed tickets are refused; the right one, typed in lower case, is taken once.
        QVERIFY(!fixture.call(QStringLiteral("Acknowledge"),
                              {QStringLiteral("0000-ZZ"), QStringLiteral("Lan"), QString()}));
        QVERIFY(!fixture.call(QStringLiteral("Acknowledge"),
                              {QStringLiteral("'; DROP TABLE Tickets; --"), QStringLiteral("Lan"), QString()}));
        QVERIFY(!fixture.call(QStringLiteral("Acknowledge"), {code, QStringLiteral("   "), QString()}));
        QVERIFY(!fixture.call(QStringLiteral("Clear"), {QString(100000, u'x')}));
        QVERIFY(fixture.call(QStringLiteral("Acknowledge"),
                             {code.toLower(), QStringLiteral("Lan Nguyen"), QStringLiteral("door closed")}));
        QVERIFY(!fixture.call(QStringLiteral("Acknowledge"), {code, QStringLiteral("Lan Nguyen"), QString()}));
        QTRY_COMPARE(fixture.events(QStringLiteral("AlarmAcknowledged")).size(), 1);
        const QDBusMessage event = fixture.events(QStringLiteral("AlarmAcknowledged")).first();
        QCOMPARE(event.signature(), QStringLiteral("ss"));
        QCOMPARE(event.arguments(), QVariantList({code, QStringLiteral("Lan Nguyen")}));

        // Past the third repeat and far beyond: no more mail.
        advanceTo(6);
        QTest::qWait(200);
        advanceTo(60);
        QTest::qWait(200);
        QCOMPARE(smtp.subjects().size(), 4);

        // From the command line: a ticket that is not open answers 1, a missing name is refused before the bus,
        // and the acknowledged ticket is cleared, stored as done from the command line.
        QByteArray output;
        QCOMPARE(client(fixture.busAddress(),
                        {QStringLiteral("--ack"), code, QStringLiteral("--who"), QStringLiteral("Ann")}, &output),
                 1);
        QVERIFY2(output.contains("Acknowledge -> false"), output.constData());
        QCOMPARE(client(fixture.busAddress(), {QStringLiteral("--ack"), code}, &output), 2);
        QCOMPARE(client(fixture.busAddress(), {QStringLiteral("--clear"), code}, &output), 0);
        QVERIFY2(output.contains("Clear -> true"), output.constData());
        QCOMPARE(fixture.server().lists().lvwActiveAlarms.count(), 0);
        QCOMPARE(fixture.server().lists().lvwHist[0].text(1, 4), QStringLiteral("(command line)"));

        // The history shows who, when (minute 5) and how, in the list and in the table.
        const ListStore &history = fixture.server().lists().lvwHist[0];
        QCOMPARE(history.row(2).mid(0, 5),
                 QStringList({t0.addSecs(300).toString("MM/dd/yyyy  HH:mm:ss"), "Acknowledged", "Chamber 4",
                              "Lan Nguyen (bus)", "door closed"}));
        QSqlQuery stored = fixture.server().database().run(
            QStringLiteral("SELECT Who, How, Comment, At FROM TicketActions WHERE Code = ? ORDER BY rowid"), {code});
        QVERIFY(stored.next());
        QCOMPARE(stored.value(0).toString(), QStringLiteral("Lan Nguyen"));
        QCOMPARE(stored.value(1).toString(), QStringLiteral("bus"));
        QCOMPARE(stored.value(2).toString(), QStringLiteral("door closed"));
        QCOMPARE(QDateTime::fromString(stored.value(3).toString(), Qt::ISODateWithMs), t0.addSecs(300));
        QVERIFY(stored.next());
        QCOMPARE(stored.value(1).toString(), QStringLiteral("command line"));
    }
};

QTEST_MAIN(TestTicketsE2E)
#include "tst_tickets_e2e.moc"
