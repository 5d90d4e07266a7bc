// The system-mail path with stand-in submission programs: the message the program reads, its arguments, and every
// way the hand-over can end, each leaving its outcome in the send state from the event loop.

#include "FakeEmailPort.h"
#include "Globals.h"
#include "Log.h"
#include "SendStates.h"
#include "SmtpClient.h"
#include "SystemMail.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace osprel;

namespace {
const QString kStars = QStringLiteral("***********************************************");
QStringList completedBanner(bool sent)
{
    return {kStars, QStringLiteral("****         Completed EMail               ****"),
            kStars, sent ? QStringLiteral("*** E-Mail sent successfully.") : QStringLiteral("*** E-Mail send failed."),
            kStars, QString()};
}

QByteArray readAll(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
} // namespace

class TestSystemMail : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        m_log = std::make_unique<Log>(m_dir.path());
        m_log->writeStartRecord(QStringLiteral("start"));
        // Stand-ins for sendmail: one that keeps what it is given, one that refuses, one that hangs, one that dies.
        writeScript(QStringLiteral("accept"), "printf '%s\\n' \"$@\" > \"$0.args\"\ncat > \"$0.message\"\nexit 0\n");
        writeScript(QStringLiteral("refuse"), "cat > /dev/null\necho 'sendmail: user unknown' >&2\nexit 67\n");
        writeScript(QStringLiteral("hang"), "echo $$ > \"$0.pid\"\nexec sleep 30\n");
        writeScript(QStringLiteral("crash"), "cat > /dev/null\nkill -9 $$\n");
    }

    void init()
    {
        resetGlobals();
        m_log->lstEmailStatus()->setStringList({});
        m_log->lstStatus()->setStringList({});
        m_statesAtUpdate.clear();
        m_port = FakeEmailPort();
        m_port.smtp = false;
        m_client = std::make_unique<SmtpClient>(m_port);
        connect(m_client.get(), &SmtpClient::finished, this, [this](const SendOutcome &outcome) {
            recordEmailOutcome(outcome);
            m_statesAtUpdate << g.gintEmailSendState;
        });
        m_client->systemMail().setSendmailPath(script(QStringLiteral("accept")));
        QFile::remove(script(QStringLiteral("accept")) + QStringLiteral(".message"));
    }

    void cleanup()
    {
        for (const QString &line : m_log->lstStatus()->stringList())
            QVERIFY2(!line.startsWith(QStringLiteral("ErrorHandler")), qPrintable(line));
        m_client.reset();
    }

    void sendEmailHandsTheMessageToTheProgram()
    {
        const QString program = script(QStringLiteral("accept"));
        m_client->SendEmail(QStringLiteral("ops@chamber.test; lab@chamber.test; "), QStringLiteral(" Alarm "),
                            QStringLiteral("Line 1\r\n.dot line\r\nLine 3\r\n"));
        QVERIFY(m_client->systemMail().isBusy());
        QCOMPARE(m_statesAtUpdate.size(), 0); // the outcome comes from the event loop
        QTRY_COMPARE_WITH_TIMEOUT(m_statesAtUpdate.size(), 1, 5000);
        QCOMPARE(m_statesAtUpdate, QList<qint16>{3});
        QVERIFY(!m_client->systemMail().isBusy());
        QCOMPARE(m_client->SmtpState(), qint16(0));

        QCOMPARE(readAll(program + QStringLiteral(".args")), QByteArray("-t\n-i\n"));
        QCOMPARE(
            readAll(program + QStringLiteral(".message")),
            QByteArray("To: ops@chamber.test\nTo: lab@chamber.test\nSubject: Alarm\n\nLine 1\n.dot line\nLine 3\n"));

        const QString prefix = QStringLiteral("EMail Status: System mail: ");
        const QStringList expected = QStringList{QString(),
                                                 kStars,
                                                 QStringLiteral("****         Sending New EMail             ****"),
                                                 kStars,
                                                 prefix + "Sent>> " + program + " -t -i",
                                                 prefix + "Sent>> To: ops@chamber.test",
                                                 prefix + "Sent>> To: lab@chamber.test",
                                                 prefix + "Sent>> Subject: Alarm",
                                                 prefix + "Sent>> Line 1.dot lineLine 3",
                                                 prefix + "Message accepted by " + program + "."} +
                                     completedBanner(true);
        QCOMPARE(m_log->lstEmailStatus()->stringList(), expected);

        // Text beyond ASCII is declared, and the subject is an encoded word.
        const QByteArray text = SystemMail::messageText(QStringLiteral("ops@chamber.test"), QStringLiteral("25 °C"),
                                                        QStringLiteral("Reading 25 °C\r\n"));
        QVERIFY(text.startsWith("To: ops@chamber.test\nSubject: =?UTF-8?B?" + QByteArray("25 °C").toBase64() +
                                "?=\nMIME-Version: 1.0\nContent-Type: text/plain; charset=UTF-8\n"));
        QVERIFY(text.endsWith("\n\nReading 25 \xc2\xb0"
                              "C\n"));
        // A line break inside an address cannot smuggle in a header of its own.
        QCOMPARE(SystemMail::messageText(QStringLiteral("ops@chamber.test\nBcc: x@y.test"), QStringLiteral("s"),
                                         QStringLiteral("b")),
                 QByteArray("To: ops@chamber.test Bcc: x@y.test\nSubject: s\n\nb"));
    }

    void failedHandOverFailsTheMessage_data()
    {
        QTest::addColumn<QString>("program");
        QTest::addColumn<QString>("recipients");
        QTest::addColumn<QStringList>("outcomeLines");
        QTest::addColumn<int>("timeLimit");

        const QString prefix = QStringLiteral("EMail Status: System mail: ");
        const QString refuse = script(QStringLiteral("refuse"));
        QTest::newRow("non-zero exit") << refuse << "ops@chamber.test"
                                       << QStringList{prefix + "Rcvd<< sendmail: user unknown",
                                                      prefix + "Error: " + refuse +
                                                          " ended with exit code 67.  Aborting."}
                                       << 5000;
        const QString missing = m_dir.filePath(QStringLiteral("no-such-sendmail"));
        QTest::newRow("cannot start") << missing << "ops@chamber.test"
                                      << QStringList{prefix + "Critical Error: " + missing + " cannot be started ("}
                                      << 5000;
        const QString crash = script(QStringLiteral("crash"));
        QTest::newRow("crash") << crash << "ops@chamber.test"
                               << QStringList{prefix + "Critical Error: " + crash + " crashed.  Aborting."} << 5000;
        const QString hang = script(QStringLiteral("hang"));
        QTest::newRow("time limit") << hang << "ops@chamber.test"
                                    << QStringList{prefix + "Critical Error: " + hang +
                                                   " did not finish within 0.2 s.  "
                                                   "Aborting."}
                                    << 200;
        QTest::newRow("no recipient") << script(QStringLiteral("accept")) << " ; ; "
                                      << QStringList{prefix + "Error: no recipient address.  Aborting."} << 5000;
    }

    void failedHandOverFailsTheMessage()
    {
        QFETCH(QString, program);
        QFETCH(QString, recipients);
        QFETCH(QStringList, outcomeLines);
        QFETCH(int, timeLimit);

        SystemMail &mail = m_client->systemMail();
        mail.setSendmailPath(program);
        mail.setTimeLimit(timeLimit);
        mail.SendMAPIEmail(recipients, QStringLiteral("s"), QStringLiteral("b"));
        QCOMPARE(m_statesAtUpdate.size(), 0);
        QTRY_COMPARE_WITH_TIMEOUT(m_statesAtUpdate.size(), 1, 5000);
        QCOMPARE(m_statesAtUpdate, QList<qint16>{4});
        QVERIFY(!mail.isBusy());

        const QStringList lines = m_log->lstEmailStatus()->stringList();
        const QStringList tail = lines.mid(lines.size() - 6 - outcomeLines.size());
        QCOMPARE(tail.mid(outcomeLines.size()), completedBanner(false));
        for (int i = 0; i < outcomeLines.size(); ++i)
            QVERIFY2(tail.at(i).startsWith(outcomeLines.at(i)), qPrintable(tail.at(i)));

        // The next message goes through.
        mail.setSendmailPath(script(QStringLiteral("accept")));
        mail.setTimeLimit(SystemMail::kDefaultTimeLimitMs);
        mail.SendMAPIEmail(QStringLiteral("ops@chamber.test"), QStringLiteral("next"), QStringLiteral("body"));
        QTRY_COMPARE_WITH_TIMEOUT(m_statesAtUpdate.size(), 2, 5000);
        QCOMPARE(m_statesAtUpdate.last(), qint16(3));
    }

    void abortStopsTheProgramWithoutAnOutcome()
    {
        const QString hang = script(QStringLiteral("hang"));
        QFile::remove(hang + QStringLiteral(".pid"));
        SystemMail &mail = m_client->systemMail();
        mail.setSendmailPath(hang);
        mail.setTimeLimit(200);
        m_client->SendEmail(QStringLiteral("ops@chamber.test"), QStringLiteral("s"), QStringLiteral("b"));
        // A second message while the first is being handed over is not sent.
        mail.SendMAPIEmail(QStringLiteral("lab@chamber.test"), QStringLiteral("s"), QStringLiteral("b"));
        QCOMPARE(m_log->lstEmailStatus()->stringList().last(),
                 QStringLiteral("EMail Status: System mail: Error: the previous message is still being handed over; "
                                "this one is not sent."));
        QTRY_VERIFY_WITH_TIMEOUT(!readAll(hang + QStringLiteral(".pid")).trimmed().isEmpty(), 5000);
        const QString proc = QStringLiteral("/proc/") + QString::fromLatin1(readAll(hang + ".pid").trimmed());
        QVERIFY(QFileInfo::exists(proc));

        m_client->abort(); // the queue gives the message up
        QVERIFY(!mail.isBusy());
        QTRY_VERIFY_WITH_TIMEOUT(!QFileInfo::exists(proc), 5000);

        // The given-up message reports nothing once its program is gone; the next one reports its own outcome.
        mail.setSendmailPath(script(QStringLiteral("accept")));
        mail.setTimeLimit(SystemMail::kDefaultTimeLimitMs);
        mail.SendMAPIEmail(QStringLiteral("ops@chamber.test"), QStringLiteral("next"), QStringLiteral("body"));
        QTRY_COMPARE_WITH_TIMEOUT(m_statesAtUpdate.size(), 1, 5000);
        QCOMPARE(m_statesAtUpdate, QList<qint16>{3});
        QVERIFY(m_log->lstEmailStatus()->stringList().filter(QStringLiteral("did not finish")).isEmpty());
    }

private:
    QString script(const QString &name) const { return m_dir.filePath(name + QStringLiteral(".sh")); }

    void writeScript(const QString &name, const QByteArray &body)
    {
        QFile file(script(name));
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write("#!/bin/sh\n" + body);
        file.close();
        QVERIFY(file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner));
    }

    QTemporaryDir m_dir;
    std::unique_ptr<Log> m_log;
    FakeEmailPort m_port;
    std::unique_ptr<SmtpClient> m_client;
    QList<qint16> m_statesAtUpdate;
};

QTEST_GUILESS_MAIN(TestSystemMail)
#include "tst_email_system_mail.moc"
