// The SMTP client against a scripted peer on loopback: the dialogue, the log lines, the send state and its callback,
// and recovery after every way a session can end.

#include "FakeEmailPort.h"
#include "Globals.h"
#include "Log.h"
#include "ScriptedSmtpPeer.h"
#include "SendStates.h"
#include "SmtpClient.h"
#include "SmtpStates.h"
#include "WinsockState.h"

#include <QTcpServer>
#include <QTemporaryDir>
#include <QtTest>

using namespace osprel;
using Step = ScriptedSmtpPeer::Step;
using Script = ScriptedSmtpPeer::Script;

namespace {
const QString kStars = QStringLiteral("***********************************************");
const QStringList kSendingBanner = {QString(), kStars,
                                    QStringLiteral("****         Sending New EMail             ****"), kStars};
QStringList completedBanner(bool sent)
{
    return {kStars, QStringLiteral("****         Completed EMail               ****"),
            kStars, sent ? QStringLiteral("*** E-Mail sent successfully.") : QStringLiteral("*** E-Mail send failed."),
            kStars, QString()};
}
} // namespace

class TestSmtpClient : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        m_log = std::make_unique<Log>(m_dir.path());
        m_log->writeStartRecord(QStringLiteral("start"));
    }

    void init()
    {
        resetGlobals();
        m_log->lstEmailStatus()->setStringList({});
        m_log->lstStatus()->setStringList({});
        m_statesAtUpdate.clear();
        m_port = FakeEmailPort();
        m_client = std::make_unique<SmtpClient>(m_port);
        m_outcomes.clear();
        connect(m_client.get(), &SmtpClient::finished, this, [this](const SendOutcome &outcome) {
            m_outcomes << outcome;
            recordEmailOutcome(outcome);
            m_statesAtUpdate << g.gintEmailSendState;
        });
    }

    void cleanup()
    {
        // Nothing may have gone through the error-report convention.
        for (const QString &line : m_log->lstStatus()->stringList())
            QVERIFY2(!line.startsWith(QStringLiteral("ErrorHandler")), qPrintable(line));
        m_client.reset();
    }

    void fullSessionSendsEveryCommandAndTheMessageAsIs()
    {
        ScriptedSmtpPeer peer(ScriptedSmtpPeer::session({"250 ok\r\n", "250 ok\r\n"}));
        m_port.from = QStringLiteral(" osprel@chamber.test ");
        m_port.server = peer.address();
        // Two recipients and a trailing ";": two RCPTs, then DATA. A body line that begins with "." gets a second one.
        m_client->SendEmail(QStringLiteral("ops@chamber.test;lab@chamber.test;"),
                            QStringLiteral(" Chamber 3 Chamber Notification: CHAMBER_ALARM "),
                            QStringLiteral("Alarm line\r\n.dot line\r\nLast line"));
        QCOMPARE(m_client->SmtpState(), qint16(SMTP_CONNECTING));
        // A second message while the session is under way is not sent.
        m_client->SendEmail(QStringLiteral("other@chamber.test"), QStringLiteral("second"), QStringLiteral("x"));

        QTRY_COMPARE_WITH_TIMEOUT(m_statesAtUpdate.size(), 1, 3000);
        QCOMPARE(m_statesAtUpdate, QList<qint16>{3});
        QCOMPARE(m_client->SmtpState(), qint16(SmtpIdle));
        QCOMPARE(m_client->wsockctlState(), WinsockState::Closed);
        QCOMPARE(peer.connections(), 1);
        QVERIFY2(peer.mismatches().isEmpty(), qPrintable(peer.mismatches().join(u'\n')));
        QCOMPARE(withoutDateAndId(peer.received()),
                 QByteArray("HELO chamber.test\r\n"
                            "MAIL FROM:<osprel@chamber.test>\r\n"
                            "RCPT TO:<ops@chamber.test>\r\n"
                            "RCPT TO:<lab@chamber.test>\r\n"
                            "DATA\r\n"
                            "From: osprel@chamber.test\r\n"
                            "Subject: Chamber 3 Chamber Notification: CHAMBER_ALARM\r\n"
                            "TO: ops@chamber.test, lab@chamber.test\r\n"
                            "Date: <date>\r\n"
                            "Message-ID: <id>\r\n"
                            "MIME-Version: 1.0\r\n"
                            "Content-Type: text/plain; charset=UTF-8\r\n"
                            "Content-Transfer-Encoding: quoted-printable\r\n"
                            "\r\n"
                            "Alarm line\r\n..dot line\r\nLast line\r\n"
                            ".\r\n"
                            "QUIT\r\n"));

        const QString sent = QStringLiteral("EMail Status: Sent>> ");
        const QString rcvd = QStringLiteral("EMail Status: Rcvd<< ");
        const QStringList expected =
            kSendingBanner + kSendingBanner +
            QStringList{rcvd + "220 peer.test ready",
                        sent + "HELO chamber.test",
                        rcvd + "250 peer.test",
                        sent + "MAIL FROM:<osprel@chamber.test>",
                        rcvd + "250 ok",
                        sent + "RCPT TO:<ops@chamber.test>",
                        rcvd + "250 ok",
                        sent + "RCPT TO:<lab@chamber.test>",
                        rcvd + "250 ok",
                        sent + "DATA",
                        rcvd + "354 go ahead",
                        sent + "From: osprel@chamber.test",
                        sent + "Subject: Chamber 3 Chamber Notification: CHAMBER_ALARM",
                        sent + "TO: ops@chamber.test, lab@chamber.test",
                        sent + "Date: <date>" + "Message-ID: <id>" + "MIME-Version: 1.0" +
                            "Content-Type: text/plain; charset=UTF-8" + "Content-Transfer-Encoding: quoted-printable",
                        sent + "Alarm line..dot lineLast line",
                        sent + "End Character",
                        rcvd + "250 queued",
                        sent + "QUIT",
                        rcvd + "221 bye"} +
            completedBanner(true);
        QStringList lines = emailLines();
        for (QString &line : lines)
            line = QString::fromUtf8(withoutDateAndId(line.toUtf8()));
        QCOMPARE(lines, expected);
        // The same lines reach the log file, with their line breaks removed.
        QFile file(m_log->logPath());
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(withoutDateAndId(file.readAll())
                    .endsWith((expected.join(QStringLiteral("\r\n")) + QStringLiteral("\r\n")).toUtf8()));

        sendsTheNextMessage();
        // The server's close after its answer to QUIT is no error of either session.
        QCOMPARE(emailLines().filter(QStringLiteral("Error")), QStringList());
    }

    void refusedRecipientDoesNotEndTheSession()
    {
        ScriptedSmtpPeer peer(ScriptedSmtpPeer::session({"250 ok\r\n", "550 no such user\r\n"}));
        m_port.server = peer.address();
        // The queue's form of the recipients: every address followed by "; ".
        m_client->SendEmail(QStringLiteral("ops@chamber.test; nobody@chamber.test; "), QStringLiteral("s"),
                            QStringLiteral("b"));
        QTRY_COMPARE_WITH_TIMEOUT(m_statesAtUpdate.size(), 1, 3000);
        QCOMPARE(m_statesAtUpdate, QList<qint16>{3});
        QVERIFY2(peer.mismatches().isEmpty(), qPrintable(peer.mismatches().join(u'\n')));
        QVERIFY(peer.received().contains("RCPT TO:<nobody@chamber.test>\r\nDATA\r\n"));
        QVERIFY(peer.received().contains("TO: ops@chamber.test, nobody@chamber.test\r\n"));
        QVERIFY(peer.received().endsWith("\r\n\r\nb\r\n.\r\nQUIT\r\n"));
        // The history names who did not get it.
        QCOMPARE(m_outcomes.last().reason, QStringLiteral("refused: nobody@chamber.test"));
        // The refusal is logged once for the refused address and once more for the empty element passed over after
        // it, with the same reply code.
        const QString refused =
            QStringLiteral("EMail Status: Error: SMTP_SENDING_RCPT: Connect code is incorrect (550).  Aborting");
        QCOMPARE(emailLines().count(refused), 2);
        const int at = int(emailLines().indexOf(refused));
        QCOMPARE(emailLines().mid(at - 1, 4),
                 (QStringList{QStringLiteral("EMail Status: Rcvd<< 550 no such user"), refused, refused,
                              QStringLiteral("EMail Status: Sent>> DATA")}));
        QCOMPARE(emailLines().mid(emailLines().size() - 6), completedBanner(true));

        sendsTheNextMessage();
    }

    void unexpectedReplyEndsTheSession_data()
    {
        QTest::addColumn<Script>("script");
        QTest::addColumn<QString>("errorLine");
        QTest::addColumn<bool>("banner");
        QTest::addColumn<QByteArray>("received");

        const auto prefix = [](int steps) { return ScriptedSmtpPeer::session().mid(0, steps); };
        QTest::newRow("554 greeting") << Script{{"", {"554 no service\r\n"}}}
                                      << "EMail Status: Error: SMTP_CONNECTING: Connect code is incorrect (554).  "
                                         "Aborting"
                                      << false << QByteArray();
        QTest::newRow("a reply that is no code")
            << (prefix(1) << Step{"HELO ", {"250ok\r\n"}})
            << "EMail Status: Error: SMTP_SENT_HELO: Connect code is incorrect (0).  Aborting" << false
            << QByteArray("HELO chamber.test\r\n");
        QTest::newRow("550 to MAIL FROM")
            << (prefix(2) << Step{"MAIL FROM:<", {"550 sender refused\r\n"}})
            << "EMail Status: Error: SMTP_SENT_FROM: Connect code is incorrect (550).  Aborting" << false
            << QByteArray("HELO chamber.test\r\nMAIL FROM:<osprel@chamber.test>\r\n");
        QTest::newRow("554 to DATA")
            << (prefix(4) << Step{"DATA", {"554 no valid recipients\r\n"}})
            << "EMail Status: Error: SMTP_SENT_DATA: Connect code is incorrect (554).  Aborting" << false
            << QByteArray("HELO chamber.test\r\nMAIL FROM:<osprel@chamber.test>\r\nRCPT TO:<ops@chamber.test>\r\n"
                          "DATA\r\n");
    }

    void unexpectedReplyEndsTheSession()
    {
        QFETCH(Script, script);
        QFETCH(QString, errorLine);
        QFETCH(bool, banner);
        QFETCH(QByteArray, received);

        ScriptedSmtpPeer peer(script);
        m_port.server = peer.address();
        m_client->SendEmail(QStringLiteral("ops@chamber.test"), QStringLiteral("s"), QStringLiteral("b"));
        QTRY_COMPARE_WITH_TIMEOUT(m_statesAtUpdate.size(), 1, 3000);
        QCOMPARE(m_statesAtUpdate, QList<qint16>{4});
        QCOMPARE(m_client->SmtpState(), qint16(SmtpIdle));
        QVERIFY2(peer.mismatches().isEmpty(), qPrintable(peer.mismatches().join(u'\n')));
        QTRY_VERIFY_WITH_TIMEOUT(peer.closed(), 3000);
        if (!received.isNull())
            QCOMPARE(peer.received(), received); // in particular, no QUIT
        const QStringList lines = emailLines();
        if (banner)
            QCOMPARE(lines.mid(lines.size() - 7), QStringList{errorLine} + completedBanner(false));
        else
            QCOMPARE(lines.last(), errorLine);

        sendsTheNextMessage();
    }

    void repliesAreStepsOfWholeLines()
    {
        Script script = ScriptedSmtpPeer::session();
        // A greeting split inside its code: read per arrival, "22" would be a reply without a space (code 0).
        script[0].reply = {"22", "0 peer.test ready\r\n"};
        // A multi-line answer makes one step on its last line: one MAIL FROM, not three.
        script[1].reply = {"250-peer.test\r\n250-SIZE 1000000\r\n250 HELP\r\n"};
        // A multi-line answer whose last line arrives in a later read.
        script[2].reply = {"250-sender\r\n25", "0 ok\r\n"};
        // A bare code is that code (RFC 5321 section 4.2).
        script[3].reply = {"250\r\n"};
        ScriptedSmtpPeer peer(script);
        m_port.server = peer.address();
        m_client->SendEmail(QStringLiteral("ops@chamber.test"), QStringLiteral("s"), QStringLiteral("b"));
        QTRY_COMPARE_WITH_TIMEOUT(m_statesAtUpdate.size(), 1, 3000);
        QCOMPARE(m_statesAtUpdate, QList<qint16>{3});
        QVERIFY2(peer.mismatches().isEmpty(), qPrintable(peer.mismatches().join(u'\n')));
        QVERIFY(peer.received().startsWith("HELO chamber.test\r\nMAIL FROM:<osprel@chamber.test>\r\nRCPT TO:<"));
        // Each received line is logged on its own.
        const QStringList lines = emailLines();
        const QString rcvd = QStringLiteral("EMail Status: Rcvd<< ");
        QCOMPARE(lines.mid(4, 9),
                 (QStringList{rcvd + "220 peer.test ready", "EMail Status: Sent>> HELO chamber.test",
                              rcvd + "250-peer.test", rcvd + "250-SIZE 1000000", rcvd + "250 HELP",
                              "EMail Status: Sent>> MAIL FROM:<osprel@chamber.test>", rcvd + "250-sender",
                              rcvd + "250 ok", "EMail Status: Sent>> RCPT TO:<ops@chamber.test>"}));
    }

    // RFC 5321 section 3.2: a server that rejects EHLO gets HELO. Without STARTTLS on offer, "when offered" goes on
    // in clear and "required" sends nothing; a 4xx reply is a temporary failure, a 5xx one is not.
    void ehloFallsBackToHelo()
    {
        Script fallback = {{"", {"220 old.test ready\r\n"}},
                           {"EHLO ", {"502 command not implemented\r\n"}},
                           {"HELO ", {"250 old.test\r\n"}}};
        fallback << ScriptedSmtpPeer::session().mid(2);
        ScriptedSmtpPeer peer(fallback);
        m_port.server = peer.address();
        m_port.settings.security = MailSecurity::StartTlsOffered;
        m_client->SendEmail(QStringLiteral("ops@chamber.test"), QStringLiteral("s"), QStringLiteral("b"));
        QTRY_COMPARE_WITH_TIMEOUT(m_statesAtUpdate.size(), 1, 3000);
        QCOMPARE(m_statesAtUpdate, QList<qint16>{3});
        QVERIFY2(peer.mismatches().isEmpty(), qPrintable(peer.mismatches().join(u'\n')));
        // No 8BITMIME without EHLO: quoted-printable, and no BODY parameter.
        QVERIFY(peer.received().contains("MAIL FROM:<osprel@chamber.test>\r\n"));
        QVERIFY(peer.received().contains("Content-Transfer-Encoding: quoted-printable\r\n"));

        const Script noStartTls = {{"", {"220 plain.test ready\r\n"}},
                                   {"EHLO ", {"250-plain.test\r\n250 8BITMIME\r\n"}}};
        ScriptedSmtpPeer plain(noStartTls);
        m_port.server = plain.address();
        m_port.settings.security = MailSecurity::StartTlsRequired;
        m_client->SendEmail(QStringLiteral("ops@chamber.test"), QStringLiteral("s"), QStringLiteral("b"));
        QTRY_COMPARE_WITH_TIMEOUT(m_outcomes.size(), 2, 3000);
        QVERIFY(!m_outcomes.last().isSent() && !m_outcomes.last().temporary);
        QCOMPARE(m_outcomes.last().reason, QStringLiteral("SMTP_SENT_EHLO: the server does not offer STARTTLS"));
        QVERIFY(!plain.received().contains("MAIL FROM"));

        const Script busy = {{"", {"421 too busy, try later\r\n"}}};
        ScriptedSmtpPeer later(busy);
        m_port.server = later.address();
        m_client->SendEmail(QStringLiteral("ops@chamber.test"), QStringLiteral("s"), QStringLiteral("b"));
        QTRY_COMPARE_WITH_TIMEOUT(m_outcomes.size(), 3, 3000);
        QVERIFY(!m_outcomes.last().isSent() && m_outcomes.last().temporary);
        QCOMPARE(m_outcomes.last().reason, QStringLiteral("SMTP_CONNECTING: 421 too busy, try later"));
        m_port.settings = MailSettings();
        sendsTheNextMessage();
    }

    // A reply line past 512 octets ends the session as a temporary failure; nothing after it is read.
    void overlongReplyLineEndsTheSession()
    {
        const Script script = {{"", {"220 " + QByteArray(600, 'x') + "\r\n"}}};
        ScriptedSmtpPeer peer(script);
        m_port.server = peer.address();
        m_client->SendEmail(QStringLiteral("ops@chamber.test"), QStringLiteral("s"), QStringLiteral("b"));
        QTRY_COMPARE_WITH_TIMEOUT(m_outcomes.size(), 1, 3000);
        QVERIFY(m_outcomes.last().temporary);
        QVERIFY(emailLines().contains(QStringLiteral(
            "EMail Status: Error: SMTP_CONNECTING: a reply line of the server is longer than 512 octets.  Aborting.")));
        QVERIFY(peer.received().isEmpty());
        sendsTheNextMessage();
    }

    void connectionRefusedFailsTheMessage()
    {
        quint16 port = 0;
        {
            QTcpServer closed;
            QVERIFY(closed.listen(QHostAddress::LocalHost, 0));
            port = closed.serverPort();
        }
        m_port.server = QStringLiteral("127.0.0.1:") + QString::number(port);
        m_client->SendEmail(QStringLiteral("ops@chamber.test"), QStringLiteral("s"), QStringLiteral("b"));
        // The outcome never arrives inside SendEmail: the queue sets its own state after the call.
        QCOMPARE(m_statesAtUpdate.size(), 0);
        QTRY_COMPARE_WITH_TIMEOUT(m_statesAtUpdate.size(), 1, 3000);
        QCOMPARE(m_statesAtUpdate, QList<qint16>{4});
        QCOMPARE(m_client->SmtpState(), qint16(SmtpIdle));
        QCOMPARE(emailLines(), kSendingBanner +
                                   QStringList{QStringLiteral(
                                       "EMail Status: Error: Connection is forcefully rejected(10061).  Aborting.")} +
                                   completedBanner(false));

        sendsTheNextMessage();
    }

    void serverClosingMidSessionFailsTheMessage()
    {
        Script script = ScriptedSmtpPeer::session().mid(0, 2);
        script << Step{"MAIL FROM:<", {}, true};
        ScriptedSmtpPeer peer(script);
        m_port.server = peer.address();
        m_client->SendEmail(QStringLiteral("ops@chamber.test"), QStringLiteral("s"), QStringLiteral("b"));
        QTRY_COMPARE_WITH_TIMEOUT(m_statesAtUpdate.size(), 1, 3000);
        QCOMPARE(m_statesAtUpdate, QList<qint16>{4});
        QCOMPARE(m_client->SmtpState(), qint16(SmtpIdle));
        const QStringList lines = emailLines();
        const QStringList expected =
            QStringList{QStringLiteral("EMail Status: Sent>> MAIL FROM:<osprel@chamber.test>"),
                        QStringLiteral("EMail Status: Error: Connection is reset by remote side(10054).  Aborting.")} +
            completedBanner(false);
        QCOMPARE(lines.mid(lines.size() - 8), expected);

        sendsTheNextMessage();
    }

    void abortGivesUpWithoutAnOutcome()
    {
        Script script = ScriptedSmtpPeer::session().mid(0, 2);
        script << Step{"MAIL FROM:<", {}}; // the server goes silent
        ScriptedSmtpPeer peer(script);
        m_port.server = peer.address();
        m_client->SendEmail(QStringLiteral("ops@chamber.test"), QStringLiteral("s"), QStringLiteral("b"));
        QTRY_COMPARE_WITH_TIMEOUT(m_client->SmtpState(), qint16(SMTP_SENT_FROM), 3000);
        QCOMPARE(m_client->wsockctlState(), WinsockState::Connected);

        m_client->abort();
        QCOMPARE(m_client->SmtpState(), qint16(SmtpIdle));
        QCOMPARE(m_client->wsockctlState(), WinsockState::Closed);
        QTRY_VERIFY_WITH_TIMEOUT(peer.closed(), 3000);
        QCOMPARE(m_statesAtUpdate.size(), 0);
        QCOMPARE(g.gintEmailSendState, qint16(0));

        sendsTheNextMessage();
    }

private:
    // The two header values that differ per message, replaced by fixed marks.
    static QByteArray withoutDateAndId(QByteArray bytes)
    {
        static const QRegularExpression date(
            QStringLiteral("Date: \\w{3}, \\d{2} \\w{3} \\d{4} \\d{2}:\\d{2}:\\d{2} [+-]\\d{4}"));
        static const QRegularExpression id(QStringLiteral("Message-ID: <[^>]*>"));
        QString text = QString::fromUtf8(bytes);
        text.replace(date, QStringLiteral("Date: <date>")).replace(id, QStringLiteral("Message-ID: <id>"));
        return text.toUtf8();
    }

    QStringList emailLines() const { return m_log->lstEmailStatus()->stringList(); }

    // After any ending, the client takes the next message; a return address without "@" is announced whole.
    void sendsTheNextMessage()
    {
        const int updates = int(m_statesAtUpdate.size());
        ScriptedSmtpPeer peer(ScriptedSmtpPeer::session());
        m_port.from = QStringLiteral("chamberhost");
        m_port.server = peer.address();
        m_client->SendEmail(QStringLiteral("ops@chamber.test"), QStringLiteral("next"), QStringLiteral("body"));
        QTRY_COMPARE_WITH_TIMEOUT(m_statesAtUpdate.size(), updates + 1, 3000);
        QCOMPARE(m_statesAtUpdate.last(), qint16(3));
        QVERIFY2(peer.mismatches().isEmpty(), qPrintable(peer.mismatches().join(u'\n')));
        QVERIFY(peer.received().startsWith("HELO chamberhost\r\nMAIL FROM:<chamberhost>\r\n"));
        QVERIFY(peer.received().endsWith("\r\n\r\nbody\r\n.\r\nQUIT\r\n"));
        QVERIFY(m_outcomes.last().reason.isEmpty());
    }

    QTemporaryDir m_dir;
    std::unique_ptr<Log> m_log;
    FakeEmailPort m_port;
    std::unique_ptr<SmtpClient> m_client;
    QList<qint16> m_statesAtUpdate;
    QList<SendOutcome> m_outcomes;
};

QTEST_GUILESS_MAIN(TestSmtpClient)
#include "tst_email_smtp.moc"
