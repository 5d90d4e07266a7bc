// From alarm to inbox: alerts handed in over a real private bus reach every e-mail recipient through a real SMTP
// server (Debian's aiosmtpd); the outcome is in the history list and table, and the chamber program hears of each
// delivered e-mail as AlertStatus.

#include "Globals.h"
#include "InProcessServer.h"
#include "LocalSmtpServer.h"

#include <QSqlQuery>
#include <QtTest>

using namespace osprel;

class TestEmailE2E : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void alertsReachTheInbox()
    {
        LocalSmtpServer smtp;
        QString error;
        QVERIFY2(smtp.start(&error), qPrintable(error));
        InProcessServer fixture(0.05);
        QVERIFY2(fixture.start(
                     [&](Database &db) {
                         db.run(QStringLiteral(
                             "INSERT INTO Contacts (LastName, FirstName, EMailEnabled, EmailName)"
                             " VALUES ('Doe', 'Jo', 1, 'jo@lab.test'), ('O''Neil', 'Sam', 1, 'sam@lab.test')"));
                         db.run(QStringLiteral("UPDATE SetupComm SET EmailServer = ?, EmailReturnAddress = ?"),
                                {smtp.address(), QStringLiteral("emailfax@chamber.test")});
                     },
                     &error),
                 qPrintable(error));
        QCOMPARE(g.gstrEmailRecipients, QStringLiteral("jo@lab.test; sam@lab.test; "));
        QVERIFY(fixture.link());
        for (const char *id : {"101", "102"}) {
            QVERIFY(
                fixture.sendAlert(QString::fromLatin1(id) +
                                  QStringLiteral("|4;Chamber 4;Walk-in;On;QLM V;T/H;Running;Yes|999;CH1 actual high|"
                                                 "85;91;100;0|60;58;40;0|5005|9:55 pm")));
        }

        QTRY_COMPARE_WITH_TIMEOUT(fixture.events(QStringLiteral("AlertStatus")).size(), 2, 15000);
        const QList<QDBusMessage> statuses = fixture.events(QStringLiteral("AlertStatus"));
        for (int i = 0; i < 2; ++i) {
            QCOMPARE(statuses.at(i).signature(), QStringLiteral("inb"));
            QCOMPARE(statuses.at(i).arguments(), QVariantList({101 + i, short(1), true}));
        }

        QTRY_COMPARE(smtp.messages().size(), 2);
        const StoredMessage first = StoredMessage::parse(smtp.messages().first());
        QVERIFY(first.headers.contains(QStringLiteral("From: emailfax@chamber.test")));
        QVERIFY(first.headers.contains(QStringLiteral("Subject: Chamber 4 Chamber Notification: CHAMBER_ALARM")));
        QCOMPARE(first.headers.filter(QRegularExpression(QStringLiteral("^TO: "))),
                 QStringList({"TO: jo@lab.test, sam@lab.test"}));
        const QStringList body = first.body.split(u'\n');
        QCOMPARE(body.size(), 27 + 1); // 27 lines, each ended
        QCOMPARE(body.at(0), QStringLiteral("Chamber Notification"));
        QCOMPARE(body.at(3), QStringLiteral("\tAlert ID: 101"));
        QCOMPARE(body.at(26), QStringLiteral("\tCH2 Cool/Dehumidify PID: 0"));

        // History: newest on top in the list, both rows in the table.
        EmailFaxServer &server = fixture.server();
        const ListStore &history = server.lists().lvwHist[0];
        QCOMPARE(history.count(), 2);
        QCOMPARE(history.row(1).mid(1), QStringList({"Sent", "Chamber 4", "jo@lab.test; sam@lab.test; ",
                                                     "CH1 actual high", "CHAMBER_ALARM", "9:55 pm", "102"}));
        QSqlQuery rows = server.database().run(QStringLiteral("SELECT group_concat(AlarmID || ':' || Status) FROM"
                                                              " (SELECT * FROM EmailHistory ORDER BY rowid)"));
        QVERIFY(rows.next());
        QCOMPARE(rows.value(0).toString(), QStringLiteral("101:Sent,102:Sent"));
        QVERIFY(server.lists().lvwSendEmailQue.isEmpty());
    }
};

QTEST_MAIN(TestEmailE2E)
#include "tst_email_e2e.moc"
