// The SMTP client against a real SMTP server that nobody here wrote: Debian's aiosmtpd on loopback, storing what it
// accepts in a maildir.

#include "FakeEmailPort.h"
#include "Globals.h"
#include "Log.h"
#include "SmtpClient.h"

#include <QDir>
#include <QProcess>
#include <QScopeGuard>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QtTest>

using namespace osprel;

namespace {
// Debian's interpreter: the python3 first on the PATH of these machines does not see Debian's Python packages.
const QString kPython = QStringLiteral("/usr/bin/python3");

quint16 freePort()
{
    QTcpServer server;
    return server.listen(QHostAddress::LocalHost, 0) ? server.serverPort() : 0;
}

bool accepts(quint16 port)
{
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, port);
    const bool connected = socket.waitForConnected(200);
    socket.abort();
    return connected;
}
} // namespace

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

        const quint16 port = freePort();
        QVERIFY(port != 0);
        const QString maildir = dir.filePath(QStringLiteral("maildir"));
        QProcess server;
        server.setProcessChannelMode(QProcess::MergedChannels);
        server.start(kPython, {QStringLiteral("-m"), QStringLiteral("aiosmtpd"), QStringLiteral("-n"),
                               QStringLiteral("-l"), QStringLiteral("127.0.0.1:") + QString::number(port),
                               QStringLiteral("-c"), QStringLiteral("aiosmtpd.handlers.Mailbox"), maildir});
        const auto stop = qScopeGuard([&server] {
            server.kill();
            server.waitForFinished(5000);
        });
        // Without aiosmtpd (package python3-aiosmtpd) the server exits at once and the test fails here.
        QTRY_VERIFY_WITH_TIMEOUT(server.state() == QProcess::NotRunning || accepts(port), 15000);
        QVERIFY2(server.state() == QProcess::Running, server.readAll().constData());

        FakeEmailPort settings;
        settings.from = QStringLiteral("osprel@chamber.test");
        settings.server = QStringLiteral("127.0.0.1:") + QString::number(port);
        QList<qint16> statesAtUpdate;
        SmtpClient client(settings, [&statesAtUpdate] { statesAtUpdate << g.gintEmailSendState; });

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

        QDir stored(maildir + QStringLiteral("/new"));
        QTRY_COMPARE_WITH_TIMEOUT(stored.entryList(QDir::Files).size(), 1, 5000);
        QFile file(stored.filePath(stored.entryList(QDir::Files).first()));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QString message = QString::fromUtf8(file.readAll()).replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
        const qsizetype split = message.indexOf(QStringLiteral("\n\n"));
        QVERIFY(split > 0);
        const QStringList headers = message.left(split).split(u'\n');
        QVERIFY2(headers.contains(QStringLiteral("From: osprel@chamber.test")), qPrintable(headers.join(u'|')));
        QVERIFY(headers.contains(QStringLiteral("Subject: Chamber 3 Chamber Notification: CHAMBER_ALARM")));
        QCOMPARE(headers.filter(QRegularExpression(QStringLiteral("^TO: "))),
                 (QStringList{QStringLiteral("TO: ops@chamber.test"), QStringLiteral("TO: lab@chamber.test")}));
        // The envelope, as the server recorded it.
        QVERIFY(headers.contains(QStringLiteral("X-MailFrom: osprel@chamber.test")));
        QVERIFY(headers.contains(QStringLiteral("X-RcptTo: ops@chamber.test, lab@chamber.test")));
        // The end mark opens with a line end of its own, so a body that ends with one gains an empty last line.
        QCOMPARE(message.mid(split + 2), bodyLines.join(u'\n') + QStringLiteral("\n\n"));
    }
};

QTEST_GUILESS_MAIN(TestAiosmtpd)
#include "tst_email_aiosmtpd.moc"
