// The SMTP client against a real SMTP server that nobody here wrote: Debian's aiosmtpd on loopback, storing what it
// accepts in a maildir.

#include "FakeEmailPort.h"
#include "Globals.h"
#include "LocalSmtpServer.h"
#include "Log.h"
#include "SendStates.h"
#include "SmtpClient.h"

#include <QDir>
#include <QProcess>
#include <QScopeGuard>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QtTest>

using namespace osprel;

class TestAiosmtpd : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void messageReachesARealServer()
    {
        QTemporaryDir dir;
        QVERIFY(dir.isValid());
        Log log(dir.path());
        log.writeStartRecord(QStringLiteral("start"));
        resetGlobals();

        // Without aiosmtpd (package python3-aiosmtpd) the server exits at once and the test fails here.
        LocalSmtpServer server;
        QString error;
        QVERIFY2(server.start(&error), qPrintable(error));

        FakeEmailPort settings;
        settings.from = QStringLiteral("osprel@chamber.test");
        settings.server = server.address();
        QList<qint16> statesAtUpdate;
        SmtpClient client(settings);
        QObject::connect(&client, &SmtpClient::finished, [&statesAtUpdate](const SendOutcome &outcome) {
            recordEmailOutcome(outcome);
            statesAtUpdate << g.gintEmailSendState;
        });

        // A notification-sized body: 27 lines, each ended by CR LF.
        QStringList bodyLines;
        for (int i = 1; i <= 27; ++i)
            bodyLines << QStringLiteral("Line %1: Chamber 3 reading %2").arg(i).arg(20 + i);
        const QString body = bodyLines.join(QStringLiteral("\r\n")) + QStringLiteral("\r\n");
        client.SendEmail(QStringLiteral("ops@chamber.test; lab@chamber.test; "),
                         QStringLiteral("Chamber 3 Chamber Notification: CHAMBER_ALARM"), body);
        QTRY_COMPARE_WITH_TIMEOUT(statesAtUpdate.size(), 1, 10000);
        QCOMPARE(statesAtUpdate, QList<qint16>{3});
        QCOMPARE(log.lstEmailStatus()->stringList().filter(QStringLiteral("Error")), QStringList());
        QVERIFY(log.lstEmailStatus()->stringList().contains(QStringLiteral("*** E-Mail sent successfully.")));

        QTRY_COMPARE_WITH_TIMEOUT(server.messages().size(), 1, 5000);
        const StoredMessage message = StoredMessage::parse(server.messages().first());
        const QStringList &headers = message.headers;
        QVERIFY2(headers.contains(QStringLiteral("From: osprel@chamber.test")), qPrintable(headers.join(u'|')));
        QVERIFY(headers.contains(QStringLiteral("Subject: Chamber 3 Chamber Notification: CHAMBER_ALARM")));
        QCOMPARE(headers.filter(QRegularExpression(QStringLiteral("^TO: "))),
                 QStringList{QStringLiteral("TO: ops@chamber.test, lab@chamber.test")});
        // The envelope, as the server recorded it.
        QVERIFY(headers.contains(QStringLiteral("X-MailFrom: osprel@chamber.test")));
        QVERIFY(headers.contains(QStringLiteral("X-RcptTo: ops@chamber.test, lab@chamber.test")));
        QCOMPARE(message.body, bodyLines.join(u'\n') + QStringLiteral("\n"));
    }
};

QTEST_GUILESS_MAIN(TestAiosmtpd)
#include "tst_email_aiosmtpd.moc"
