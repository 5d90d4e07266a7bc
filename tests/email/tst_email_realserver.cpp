// The SMTP client against Debian's aiosmtpd on loopback, judged on the bytes the server received: the message
// format a mail reader sees, hostile alert values and addresses, TLS and authentication, and servers that never
// answer or never stop answering.

#include "Clock.h"
#include "FakeEmailPort.h"
#include "Globals.h"
#include "LocalSmtpServer.h"
#include "Log.h"
#include "MailLab.h"
#include "Notification.h"
#include "SmtpClient.h"
#include "TimeScale.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QtTest>

using namespace osprel;

namespace {
constexpr int kWaitMs = 15000;

// An alert in the chamber program's text form, with the given chamber name and error message.
QString alertText(const QString &chamberName, const QString &errorMessage)
{
    return QStringLiteral("17|3;%1;Walk-in;On;F4;Auto;Running;On|E12;%2|25.0;24.9;10;0|50;49;5;0|5|03/02/2026 10:00:00")
        .arg(chamberName, errorMessage);
}
} // namespace

class TestRealServer : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        m_log = std::make_unique<Log>(m_dir.path());
        m_log->writeStartRecord(QStringLiteral("start"));
        QString error;
        QVERIFY2(m_certs.make(&error), qPrintable(error));
    }

    void init()
    {
        resetGlobals();
        TimeScale::setFactor(1);
        m_log->lstEmailStatus()->setStringList({});
        m_outcomes.clear();
        m_port = FakeEmailPort();
        m_port.from = QStringLiteral("osprel@lab.example");
        m_client = std::make_unique<SmtpClient>(m_port);
        connect(m_client.get(), &SmtpClient::finished, this, [this](const SendOutcome &o) { m_outcomes << o; });
    }

    void cleanup() { m_client.reset(); }

    // A notification with hostile values, through the composed body to a server offering 8BITMIME.
    void hostileAlertValuesStayInsideTheirLines()
    {
        LocalSmtpServer server;
        QVERIFY(startServer(server, {}));
        m_port.server = server.address();
        m_port.settings.security = MailSecurity::StartTlsOffered; // EHLO: the server offers 8BITMIME

        const QString injected = QStringLiteral(
            "ok\r\n.\r\nMAIL FROM:<ceo@lab.example>\r\nRCPT TO:<victim@elsewhere.example>\r\nDATA\r\nforged\r\n.\r\n");
        const QString chamber = QStringLiteral("Prüfkammer 3\r\nBcc: spy@attacker.example");
        AlertSummary summary;
        QString body = FormatErrMsg(alertText(chamber, injected), summary);
        // A body line that is a single "." and one far beyond the 998-octet limit.
        body += QStringLiteral(".\r\n") + QString(1500, u'x') + QStringLiteral("\r\n");
        send(QStringLiteral("ops@lab.example; lab@lab.example; "),
             summary.chamberName + QStringLiteral(" Chamber Notification: ") + summary.categoryName, body);
        QVERIFY(m_outcomes.last().isSent());

        // One message, to the two recipients only: nothing forged, nobody added.
        QCOMPARE(server.rawMessages().size(), 1);
        const QJsonObject envelope = QJsonDocument::fromJson(server.rawEnvelopes().first()).object();
        QCOMPARE(envelope.value("rcpt_tos").toArray(), QJsonArray({"ops@lab.example", "lab@lab.example"}));
        const QByteArray raw = server.rawMessages().first();
        QVERIFY(raw.contains("\r\n.\r\n")); // the "." line, dot-stuffed on the way and back as it was
        for (const QByteArray &line : raw.split('\n'))
            QVERIFY2(line.size() <= 999, line.left(80).constData());

        const QJsonObject message = readMessage(raw);
        QStringList headers;
        for (const QJsonValue &name : message.value("headers").toArray())
            headers << name.toString().toLower();
        QCOMPARE(headers, (QStringList{"from", "subject", "to", "date", "message-id", "mime-version", "content-type",
                                       "content-transfer-encoding"}));
        QCOMPARE(message.value("defects").toArray(), QJsonArray());
        QCOMPARE(message.value("to").toArray(), QJsonArray({"ops@lab.example", "lab@lab.example"}));
        QVERIFY(message.value("date_valid").toBool());
        QCOMPARE(message.value("message_id").toString(), m_client->messageId());
        QCOMPARE(message.value("subject").toString(),
                 QStringLiteral("Prüfkammer 3  Bcc: spy@attacker.example Chamber Notification: CHAMBER_ALARM"));
        QCOMPARE(message.value("charset").toString(), QStringLiteral("utf-8"));
        QCOMPARE(message.value("encoding").toString(), QStringLiteral("8bit"));
        const QStringList lines = message.value("body").toString().split(u'\n');
        QVERIFY(lines.contains(QStringLiteral("\tError Message: ok  .  MAIL FROM:<ceo@lab.example>  RCPT "
                                              "TO:<victim@elsewhere.example>  DATA  forged  .  ")));
        QVERIFY(lines.contains(QStringLiteral("\tChamber Name: Prüfkammer 3  Bcc: spy@attacker.example")));
        QVERIFY(lines.contains(QStringLiteral(".")));
        // The long line arrives whole once its wrapping is undone.
        QVERIFY(message.value("body").toString().remove(u'\n').contains(QString(1500, u'x')));
    }

    // Without 8BITMIME (a plain HELO dialogue), UTF-8 travels as quoted-printable and still reads the same.
    void plainDialogueSendsQuotedPrintable()
    {
        LocalSmtpServer server;
        QVERIFY(startServer(server, {}));
        m_port.server = server.address();
        // "=", a trailing blank, a "." line, and a line that needs soft line breaks.
        const QString body = QStringLiteral("Temperatur zu hoch: 85 °C = Grenze\r\n.\r\nEnde  \r\n") +
                             QStringLiteral("ä").repeated(30) + QString(150, u'y') + QStringLiteral("\r\n");
        // A subject long enough for several encoded words, each holding whole characters.
        const QString subject = QStringLiteral("Prüfkammer 3 Öl-Temperatur über Grenzwert ").repeated(4) +
                                QStringLiteral("Chamber Notification: X");
        send(QStringLiteral("ops@lab.example"), subject, body);
        QVERIFY(m_outcomes.last().isSent());
        const QByteArray raw = server.rawMessages().first();
        for (const QByteArray &line : raw.split('\n'))
            QVERIFY2(line.size() <= 77, line.constData());
        const QJsonObject message = readMessage(raw);
        QCOMPARE(message.value("encoding").toString(), QStringLiteral("quoted-printable"));
        QCOMPARE(message.value("body").toString(), QString(body).replace(QStringLiteral("\r\n"), QStringLiteral("\n")));
        QCOMPARE(message.value("subject").toString(), subject);
    }

    // Addresses that try to break out of RCPT TO are skipped (logged once); one typed in <...> is used bare.
    void hostileAddressesAreSkipped()
    {
        LocalSmtpServer server;
        QVERIFY(startServer(server, {}));
        m_port.server = server.address();
        const QString evil = QStringLiteral("x@lab.example>\r\nRCPT TO:<evil@attacker.example");
        const QString recipients =
            QStringLiteral("ops@lab.example; ") + evil + QStringLiteral("; <c@lab.example>; d@lab .example; ");
        send(recipients, QStringLiteral("s"), QStringLiteral("b"));
        send(recipients, QStringLiteral("s"), QStringLiteral("b"));
        QVERIFY(m_outcomes.at(0).isSent() && m_outcomes.at(1).isSent());
        for (const QByteArray &json : server.rawEnvelopes()) {
            const QJsonObject envelope = QJsonDocument::fromJson(json).object();
            QCOMPARE(envelope.value("rcpt_tos").toArray(), QJsonArray({"ops@lab.example", "c@lab.example"}));
        }
        QCOMPARE(readMessage(server.rawMessages().first()).value("to").toArray(),
                 QJsonArray({"ops@lab.example", "c@lab.example"}));
        // Each bad address is logged once in the program's run, not once per message.
        QCOMPARE(emailLines().filter(QStringLiteral("is skipped")).size(), 2);
        QVERIFY(!emailLines().filter(QStringLiteral("is skipped")).first().contains(u'\n'));
    }

    // A wrong answer to QUIT after the message was taken: sent, one copy. A refused RCPT: sent, and named.
    void acceptedMeansSent()
    {
        LocalSmtpServer::Options options;
        options.quitReply = QStringLiteral("250");
        options.refuseRcpt = QStringLiteral("bob@");
        LocalSmtpServer server;
        QVERIFY(startServer(server, options));
        m_port.server = server.address();
        send(QStringLiteral("ops@lab.example; bob@lab.example; "), QStringLiteral("s"), QStringLiteral("b"));
        QVERIFY(m_outcomes.last().isSent());
        QCOMPARE(m_outcomes.last().reason, QStringLiteral("refused: bob@lab.example"));
        QCOMPARE(server.rawMessages().size(), 1);
        QVERIFY(emailLines().contains(QStringLiteral("*** E-Mail sent successfully.")));
        QVERIFY(emailLines().contains(
            QStringLiteral("EMail Status: Error: SMTP_SENDING_RCPT: Connect code is incorrect (550).  Aborting")));
    }

    // A server that never speaks and one whose greeting never ends: a temporary failure within the time-outs,
    // and the next message goes out.
    void brokenServersEndWithinTheTimeOut_data()
    {
        QTest::addColumn<QString>("mode");
        QTest::addColumn<QString>("logged");
        QTest::newRow("silent") << "silent"
                                << "SMTP_CONNECTING: no reply from the server within 120 s";
        QTest::newRow("endless") << "endless"
                                 << "SMTP_CONNECTING: a reply of the server goes on past 100 lines";
    }

    void brokenServersEndWithinTheTimeOut()
    {
        QFETCH(QString, mode);
        QFETCH(QString, logged);
        TimeScale::setFactor(0.01); // 120 s of silence take 1.2 s
        LocalSmtpServer::Options options;
        options.hostile = mode;
        LocalSmtpServer hostile;
        QVERIFY(startServer(hostile, options));
        m_port.server = hostile.address();
        QElapsedTimer elapsed;
        elapsed.start();
        send(QStringLiteral("ops@lab.example"), QStringLiteral("s"), QStringLiteral("b"));
        QVERIFY(elapsed.elapsed() < 5000);
        QVERIFY(!m_outcomes.last().isSent());
        QVERIFY(m_outcomes.last().temporary);
        QVERIFY2(
            emailLines().contains(QStringLiteral("EMail Status: Error: ") + logged + QStringLiteral(".  Aborting.")),
            qPrintable(emailLines().join(u'\n').right(2000)));
        nextMessageIsDelivered();
    }

    // A mail server text that cannot be parsed fails the message at once, and the client stays usable.
    void unusableServerTextFailsAtOnce()
    {
        for (const QString &text : {QStringLiteral("mail:"), QStringLiteral("host:0"), QStringLiteral("[::1")}) {
            m_port.server = text;
            QElapsedTimer elapsed;
            elapsed.start();
            const int before = int(m_outcomes.size());
            m_client->SendEmail(QStringLiteral("ops@lab.example"), QStringLiteral("s"), QStringLiteral("b"));
            QCOMPARE(m_outcomes.size(), before); // never inside SendEmail
            QTRY_COMPARE_WITH_TIMEOUT(m_outcomes.size(), before + 1, 1000);
            QVERIFY(elapsed.elapsed() < 1000);
            QVERIFY(!m_outcomes.last().isSent());
            QVERIFY2(m_outcomes.last().reason.startsWith(QStringLiteral("the mail server \"") + text),
                     qPrintable(m_outcomes.last().reason));
            nextMessageIsDelivered();
        }
    }

    void tlsAndAuthentication_data()
    {
        QTest::addColumn<QString>("serverTls");
        QTest::addColumn<int>("security");
        QTest::addColumn<int>("auth");
        QTest::addColumn<QString>("password");
        QTest::addColumn<bool>("sent");
        QTest::addColumn<QString>("logged");
        const int required = int(MailSecurity::StartTlsRequired), implicit = int(MailSecurity::ImplicitTls);
        const int plain = int(MailAuth::Plain), login = int(MailAuth::Login);
        QTest::newRow("STARTTLS + PLAIN")
            << "starttls-required" << required << plain << "pw" << true << "EMail Status: Sent>> AUTH PLAIN ****";
        QTest::newRow("STARTTLS + LOGIN")
            << "starttls-required" << required << login << "pw" << true << "EMail Status: Sent>> ****";
        QTest::newRow("implicit TLS + PLAIN")
            << "implicit" << implicit << plain << "pw" << true << "EMail Status: Sent>> AUTH PLAIN ****";
        QTest::newRow("wrong password") << "starttls-required" << required << plain << "wrong" << false
                                        << "EMail Status: Rcvd<< 535 5.7.8 Authentication credentials invalid";
    }

    void tlsAndAuthentication()
    {
        QFETCH(QString, serverTls);
        QFETCH(int, security);
        QFETCH(int, auth);
        QFETCH(QString, password);
        QFETCH(bool, sent);
        QFETCH(QString, logged);
        LocalSmtpServer server;
        QVERIFY(startServer(server, tlsOptions(serverTls, m_certs.certFile(), m_certs.keyFile())));
        m_port.server = QStringLiteral("localhost:%1").arg(server.port());
        m_port.settings.security = MailSecurity(security);
        m_port.settings.auth = MailAuth(auth);
        m_port.settings.caFile = m_certs.caFile();
        m_port.settings.user = QStringLiteral("lab");
        m_port.settings.password = password;
        send(QStringLiteral("ops@lab.example"), QStringLiteral("s"), QStringLiteral("b"));
        QCOMPARE(m_outcomes.last().isSent(), sent);
        QVERIFY2(emailLines().contains(logged), qPrintable(emailLines().join(u'\n').right(3000)));
        // The password never reaches the log.
        QVERIFY(!QFile(m_log->logPath()).open(QIODevice::ReadOnly) ||
                !emailLines().join(u'\n').contains(QString::fromLatin1(QByteArray("\0lab\0pw", 7).toBase64())));
        if (sent) {
            const QJsonObject envelope = QJsonDocument::fromJson(server.rawEnvelopes().first()).object();
            QVERIFY(envelope.value("authenticated").toBool());
            QVERIFY(envelope.value("tls").toBool() || serverTls == QLatin1String("implicit"));
        } else {
            QVERIFY(!m_outcomes.last().temporary); // a 5xx keeps the rule of three attempts
            QCOMPARE(server.rawMessages().size(), 0);
        }
    }

    // Certificates the client must not trust end the attempt with a line naming why and whose; a pinned one is
    // taken even from an unknown CA. A password is never sent in clear unless allowed.
    void certificatesAndClearText()
    {
        struct Case
        {
            QString cert, key, pin;
            bool sent;
            QString logged;
        };
        const QList<Case> cases = {
            {m_certs.wrongNameCertFile(), m_certs.keyFile().replace("srv.key", "other.key"), QString(), false,
             "mail.elsewhere.example"},
            {m_certs.untrustedCertFile(), m_certs.keyFile().replace("srv.key", "rogue-srv.key"), QString(), false,
             "Test CA rogue-ca"},
            {m_certs.untrustedCertFile(), m_certs.keyFile().replace("srv.key", "rogue-srv.key"),
             m_certs.untrustedFingerprint(), true, QString()},
        };
        for (const Case &c : cases) {
            m_log->lstEmailStatus()->setStringList({});
            LocalSmtpServer server;
            QVERIFY(startServer(server, tlsOptions("starttls-required", c.cert, c.key)));
            m_port.server = QStringLiteral("localhost:%1").arg(server.port());
            m_port.settings.security = MailSecurity::StartTlsRequired;
            m_port.settings.caFile = m_certs.caFile();
            m_port.settings.pinnedSha256 = c.pin;
            m_port.settings.auth = MailAuth::Plain;
            m_port.settings.user = QStringLiteral("lab");
            m_port.settings.password = QStringLiteral("pw");
            send(QStringLiteral("ops@lab.example"), QStringLiteral("s"), QStringLiteral("b"));
            QVERIFY2(m_outcomes.last().isSent() == c.sent, qPrintable(emailLines().join(u'\n').right(1500)));
            if (!c.sent) {
                const QStringList errors = emailLines().filter(QStringLiteral("EMail Status: Error: TLS: "));
                QCOMPARE(errors.size(), 1);
                QVERIFY2(errors.first().contains(c.logged) && errors.first().contains(QStringLiteral("issuer")),
                         qPrintable(errors.first()));
                QCOMPARE(server.rawMessages().size(), 0);
            }
        }

        // A server that offers AUTH without TLS: the client refuses to send the password.
        m_log->lstEmailStatus()->setStringList({});
        LocalSmtpServer clear;
        LocalSmtpServer::Options options;
        options.users = QStringList{QStringLiteral("lab:pw")};
        QVERIFY(startServer(clear, options));
        m_port.server = clear.address();
        m_port.settings = MailSettings();
        m_port.settings.security = MailSecurity::StartTlsOffered;
        m_port.settings.auth = MailAuth::Plain;
        m_port.settings.user = QStringLiteral("lab");
        m_port.settings.password = QStringLiteral("pw");
        send(QStringLiteral("ops@lab.example"), QStringLiteral("s"), QStringLiteral("b"));
        QVERIFY(!m_outcomes.last().isSent());
        QVERIFY(m_outcomes.last().reason.contains(QStringLiteral("not sent in clear")));
        QCOMPARE(emailLines().filter(QStringLiteral("Sent>> AUTH")).size(), 0);
        m_port.settings.allowClearAuth = true;
        send(QStringLiteral("ops@lab.example"), QStringLiteral("s"), QStringLiteral("b"));
        QVERIFY(m_outcomes.last().isSent());
    }

    // XOAUTH2 with client-credentials tokens: fetched once, reused while valid, fetched again after expiry.
    void xoauth2WithClientCredentials()
    {
        TokenEndpoint endpoint;
        QString error;
        QVERIFY2(endpoint.start(3600, &error), qPrintable(error));
        LocalSmtpServer::Options options = tlsOptions("starttls-required", m_certs.certFile(), m_certs.keyFile());
        options.xoauth2Tokens = endpoint.tokensFile();
        LocalSmtpServer server;
        QVERIFY(startServer(server, options));
        m_port.server = QStringLiteral("localhost:%1").arg(server.port());
        m_port.settings.security = MailSecurity::StartTlsRequired;
        m_port.settings.caFile = m_certs.caFile();
        m_port.settings.auth = MailAuth::XOAuth2;
        m_port.settings.tokenUrl = endpoint.url();
        m_port.settings.tenant = QStringLiteral("lab-tenant");
        m_port.settings.clientId = QStringLiteral("osprel");
        m_port.settings.clientSecret = QStringLiteral("secret");
        m_port.settings.scope = QStringLiteral("https://outlook.office365.com/.default");

        QDateTime now = QDateTime::currentDateTime();
        Clock::setSource([&now] { return now; });
        const auto restoreClock = qScopeGuard([] { Clock::setSource(nullptr); });
        send(QStringLiteral("ops@lab.example"), QStringLiteral("s"), QStringLiteral("b"));
        send(QStringLiteral("ops@lab.example"), QStringLiteral("s"), QStringLiteral("b"));
        QVERIFY(m_outcomes.at(0).isSent() && m_outcomes.at(1).isSent());
        QCOMPARE(endpoint.requests(), 1);
        now = now.addSecs(3600);
        send(QStringLiteral("ops@lab.example"), QStringLiteral("s"), QStringLiteral("b"));
        QVERIFY(m_outcomes.last().isSent());
        QCOMPARE(endpoint.requests(), 2);
        QVERIFY(emailLines().contains(QStringLiteral("EMail Status: Sent>> AUTH XOAUTH2 ****")));

        // The server stops taking the cached token (revoked): that attempt fails with its 535, and the next one
        // fetches a new token.
        QFile tokens(endpoint.tokensFile());
        QVERIFY(tokens.open(QIODevice::WriteOnly | QIODevice::Truncate));
        tokens.close();
        send(QStringLiteral("ops@lab.example"), QStringLiteral("s"), QStringLiteral("b"));
        QVERIFY(!m_outcomes.last().isSent());
        QVERIFY2(m_outcomes.last().reason.contains(QStringLiteral("535")), qPrintable(m_outcomes.last().reason));
        send(QStringLiteral("ops@lab.example"), QStringLiteral("s"), QStringLiteral("b"));
        QVERIFY(m_outcomes.last().isSent());
        QCOMPARE(endpoint.requests(), 3);

        // A token command, as a password-eval: its output is the token. A token the server refuses fails the
        // attempt with the server's 535.
        m_port.settings.tokenSource = TokenSource::Command;
        m_port.settings.tokenCommand = QStringLiteral("tail -n 1 '%1'").arg(endpoint.tokensFile());
        send(QStringLiteral("ops@lab.example"), QStringLiteral("s"), QStringLiteral("b"));
        QVERIFY(m_outcomes.last().isSent());
        m_port.settings.tokenCommand = QStringLiteral("echo stolen-token");
        send(QStringLiteral("ops@lab.example"), QStringLiteral("s"), QStringLiteral("b"));
        QVERIFY(!m_outcomes.last().isSent());
        QVERIFY2(m_outcomes.last().reason.contains(QStringLiteral("535")), qPrintable(m_outcomes.last().reason));
        QCOMPARE(server.rawMessages().size(), 5);
    }

private:
    static LocalSmtpServer::Options tlsOptions(const QString &tls, const QString &cert, const QString &key)
    {
        LocalSmtpServer::Options options;
        options.tls = tls;
        options.certFile = cert;
        options.keyFile = key;
        options.users = QStringList{QStringLiteral("lab:pw")};
        return options;
    }

    bool startServer(LocalSmtpServer &server, const LocalSmtpServer::Options &options)
    {
        QString error;
        const bool started = server.start(options, &error);
        if (!started)
            qWarning("%s", qPrintable(error));
        return started;
    }

    // Sends one message and waits for its outcome.
    void send(const QString &recipients, const QString &subject, const QString &body)
    {
        const int before = int(m_outcomes.size());
        m_client->SendEmail(recipients, subject, body);
        QTRY_COMPARE_WITH_TIMEOUT(m_outcomes.size(), before + 1, kWaitMs);
    }

    void nextMessageIsDelivered()
    {
        LocalSmtpServer server;
        QVERIFY(startServer(server, {}));
        m_port.server = server.address();
        send(QStringLiteral("ops@lab.example"), QStringLiteral("next"), QStringLiteral("body"));
        QVERIFY(m_outcomes.last().isSent());
        QCOMPARE(server.rawMessages().size(), 1);
    }

    QStringList emailLines() const { return m_log->lstEmailStatus()->stringList(); }

    QTemporaryDir m_dir;
    std::unique_ptr<Log> m_log;
    TestCertificates m_certs;
    FakeEmailPort m_port;
    std::unique_ptr<SmtpClient> m_client;
    QList<SendOutcome> m_outcomes;
};

QTEST_GUILESS_MAIN(TestRealServer)
#include "tst_email_realserver.moc"
