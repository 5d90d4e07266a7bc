// The e-mail queue timer and the test e-mail: when a job is taken and when it waits, the history row it writes,
// and a mail server that never answers.

#include "AlertLink.h"
#include "Clock.h"
#include "Database.h"
#include "EmailDeferral.h"
#include "EmailQueue.h"
#include "FormLists.h"
#include "FormTimers.h"
#include "Globals.h"
#include "HeadlessWindow.h"
#include "LocalSmtpServer.h"
#include "Log.h"
#include "SendStates.h"
#include "SendStatus.h"
#include "SmtpClient.h"
#include "StoreFixture.h"
#include "TrayState.h"

#include <QSqlQuery>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QtTest>

using namespace osprel;

class TestEmailQueue : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        m_f = std::make_unique<StoreFixture>();
        m_f->lists.lvwEmailContacts.add(QStringList{"Doe", "Jo", "jo@lab"});
        g.gstrEmailRecipients = QStringLiteral("jo@lab; ");
        m_window = std::make_unique<HeadlessWindow>();
        QVERIFY(m_silent.listen(QHostAddress::LocalHost)); // takes connections, never answers
        m_window->settings.txtMailServer = QStringLiteral("127.0.0.1:") + QString::number(m_silent.serverPort());
        m_window->settings.txtFrom = QStringLiteral("emailfax@lab");
        m_link = std::make_unique<AlertLink>(m_f->lists, m_f->timers);
        m_smtp = std::make_unique<SmtpClient>(*m_window);
        m_tray = std::make_unique<TrayState>(*m_window);
        m_status = std::make_unique<SendStatus>(m_f->lists, m_f->timers, m_f->db, *m_link, *m_smtp, *m_tray, *m_window);
        m_queue =
            std::make_unique<EmailQueue>(m_f->lists, m_f->timers, m_f->db, *m_smtp, *m_window, *m_window, *m_window);
        connect(m_queue.get(), &EmailQueue::sendingStarted, this, &recordEmailSending);
    }
    void cleanup()
    {
        m_queue.reset();
        m_status.reset();
        m_smtp.reset();
        m_silent.close();
        m_link.reset();
        m_f.reset();
    }

    void aJobWaitsUntilItCanGo()
    {
        m_f->lists.lvwSendEmailQue.add(QStringList{"t", "body", "Chamber 4", "jo@lab; ", "0", "CHAMBER_ALARM",
                                                   " 7 | Chamber 4 | high | CHAMBER_ALARM | 9:55 pm ", "7"});
        m_window->email = false;
        m_queue->TimerEmailMsgQue_Timer();
        m_window->email = true;
        m_f->lists.lvwEmailContacts.clear();
        m_queue->TimerEmailMsgQue_Timer();
        QCOMPARE(g.gintEmailSendState, qint16(0));
        QVERIFY(m_f->lists.lvwHist[0].isEmpty());

        m_f->lists.lvwEmailContacts.add(QStringList{"Doe", "Jo", "jo@lab"});
        for (int i = 1; i <= 101; ++i)
            m_f->lists.lvwHist[0].add(QStringList{QStringLiteral("old %1").arg(i)});
        m_f->timers.TimerEmailMsgQue.start();
        m_window->mail.replyTimeoutSec = 1;
        m_queue->TimerEmailMsgQue_Timer();
        QCOMPARE(g.gintEmailSendState, qint16(1));
        QVERIFY(!m_f->timers.TimerEmailMsgQue.isActive());
        QCOMPARE(m_smtp->SmtpState(), qint16(1));
        // The 101 old rows lost their 50 oldest before the new row went on top.
        QCOMPARE(m_f->lists.lvwHist[0].count(), 52);
        QCOMPARE(m_f->lists.lvwHist[0].row(1).mid(1),
                 QStringList({"Sending", "Chamber 4", "jo@lab; ", "high", "CHAMBER_ALARM", "9:55 pm", "7"}));
        QCOMPARE(m_f->lists.lvwHist[0].text(52), QStringLiteral("old 51"));
        QVERIFY(m_f->log->lstEmailStatus()->stringList().contains(
            QStringLiteral("****         Sending New EMail             ****")));

        // Nothing answers: the 60 refreshes that give up other sends leave the SMTP session alone; its own greeting
        // time-out ends it, and the job waits at the head of the queue for its next try.
        for (int tick = 0; tick < SendStatus::kEmailGiveUpTicks + 1; ++tick)
            m_status->SendStatUpdate();
        QCOMPARE(m_smtp->SmtpState(), qint16(1));
        QTRY_VERIFY_WITH_TIMEOUT(m_f->lists.lvwHist[0].text(1, 2).startsWith(QStringLiteral("Deferred 1")), 5000);
        QVERIFY(m_f->lists.lvwHist[0].text(1, 2).contains(QStringLiteral("no reply from the server within 1 s")));
        QCOMPARE(m_smtp->SmtpState(), qint16(0));
        QCOMPARE(m_f->lists.lvwSendEmailQue.count(), 1);
        QVERIFY(m_f->timers.TimerEmailMsgQue.isActive());
    }

    void theTestEmailNeedsAnAddressAndNothingElse()
    {
        m_window->testTo.clear();
        m_queue->cmdTestEmail_Click();
        QCOMPARE(m_window->messages.size(), 1);
        QVERIFY(
            m_window->messages.first().startsWith(QLatin1String("Test Email Warning|You must enter a valid email")));
        QCOMPARE(m_smtp->SmtpState(), qint16(0));

        m_window->testTo = QStringLiteral("labtech");
        m_window->testMessage = QStringLiteral("This is an Osprel test email.");
        m_queue->cmdTestEmail_Click();
        QCOMPARE(m_window->messages.size(), 1);
        QCOMPARE(m_window->testEmailProg, QStringLiteral("Initializing..."));
        QVERIFY(g.gblnEmailTest);
        QCOMPARE(m_smtp->SmtpState(), qint16(1)); // attempted
    }

    // A greylisting server (451 on the first try): the job is deferred, another job goes out meanwhile, and it is
    // delivered on its next try with the same Message-ID. Past the kill time a deferral ends as the final failure.
    void temporaryFailuresAreDeferred()
    {
        LocalSmtpServer::Options options;
        options.greylist = 1;
        LocalSmtpServer server;
        QString error;
        QVERIFY2(server.start(options, &error), qPrintable(error));
        m_window->settings.txtMailServer = server.address();
        QDateTime now = QDateTime::currentDateTime();
        Clock::setSource([&now] { return now; });
        const auto restoreClock = qScopeGuard([] { Clock::setSource(nullptr); });
        ListStore &queue = m_f->lists.lvwSendEmailQue;
        for (const char *id : {"7", "8"})
            queue.add(QStringList{"t", "body", "Chamber 4", "jo@lab; ", "0", "CHAMBER_ALARM", " 7 | Chamber 4 | | | ",
                                  QString::fromLatin1(id)});

        runOneJob();
        QCOMPARE(queue.count(), 2);
        QVERIFY2(m_f->lists.lvwHist[0].text(1, 2).startsWith(QStringLiteral("Deferred 1, next try ")),
                 qPrintable(m_f->lists.lvwHist[0].text(1, 2)));
        QVERIFY(m_f->lists.lvwHist[0].text(1, 2).contains(QStringLiteral("451 4.7.1 greylisted")));
        QCOMPARE(queue.text(1, EmailJobColumn::Status), m_f->lists.lvwHist[0].text(1, 2));
        QCOMPARE(queue.text(1, EmailJobColumn::NextTry), now.addSecs(60).toString(Qt::ISODate));
        const QString messageId = queue.text(1, EmailJobColumn::MessageId);
        QVERIFY(!messageId.isEmpty());

        // Alert 8 goes while 7 waits.
        runOneJob();
        QCOMPARE(queue.count(), 1);
        QCOMPARE(queue.text(1, 8), QStringLiteral("7"));
        m_queue->TimerEmailMsgQue_Timer();
        QCOMPARE(g.gintEmailSendState, qint16(0)); // not due yet

        now = now.addSecs(61);
        runOneJob();
        QVERIFY(queue.isEmpty());
        QCOMPARE(m_f->lists.lvwHist[0].text(1, 2), QStringLiteral("Sent"));
        QCOMPARE(server.rawMessages().size(), 3);
        QVERIFY(server.rawMessages().at(0).contains(("Message-ID: " + messageId).toUtf8()));
        QVERIFY(server.rawMessages().at(2).contains(("Message-ID: " + messageId).toUtf8()));
        QCOMPARE(server.received(), 2);

        // A server that is never there: deferred until the kill time, then "Attempt 3 Failed".
        m_window->settings.txtMailServer = QStringLiteral("127.0.0.1:1");
        m_window->mail.killTimeMinutes = 10;
        queue.add(QStringList{"t", "body", "Chamber 4", "jo@lab; ", "0", "CHAMBER_ALARM", " 9 | | | | ", "9"});
        QStringList statuses;
        for (int i = 0; i < 5 && !queue.isEmpty(); ++i) {
            runOneJob();
            statuses << m_f->lists.lvwHist[0].text(1, 2).section(u',', 0, 0);
            now = now.addSecs(60 * deferralMinutes(i + 1) + 1);
        }
        // Deferred at 0, 1 and 6 minutes; at 21 minutes the 10-minute kill time has passed.
        QCOMPARE(statuses, (QStringList{"Deferred 1", "Deferred 2", "Deferred 3", "Attempt 3 Failed"}));
        QVERIFY(queue.isEmpty());
    }

    // Recipients the server refused are named in the history row of a message that went to the others.
    void refusedRecipientsAreNamedInTheHistory()
    {
        LocalSmtpServer::Options options;
        options.refuseRcpt = QStringLiteral("bob@");
        LocalSmtpServer server;
        QString error;
        QVERIFY2(server.start(options, &error), qPrintable(error));
        m_window->settings.txtMailServer = server.address();
        g.gstrEmailRecipients = QStringLiteral("jo@lab; bob@lab; ");
        m_f->lists.lvwSendEmailQue.add(
            QStringList{"t", "body", "Chamber 4", "jo@lab; bob@lab; ", "0", "CHAMBER_ALARM", " 7 | | | | ", "7"});
        runOneJob();
        QCOMPARE(m_f->lists.lvwHist[0].text(1, 2), QStringLiteral("Sent (refused: bob@lab)"));
        QVERIFY(m_f->lists.lvwSendEmailQue.isEmpty());
    }

    void theEnableBoxIsStored()
    {
        m_window->email = false;
        m_queue->chkEnableEmail_Click();
        QVERIFY(!m_window->emailListEnabled);
        QSqlQuery stored = m_f->db.run(QStringLiteral("SELECT EmailEnabledAtBoot FROM SetupComm"));
        QVERIFY(stored.next());
        QCOMPARE(stored.value(0).toInt(), 0);
    }

private:
    // One tick of the queue and the outcome of the job it took.
    void runOneJob()
    {
        m_f->timers.TimerEmailMsgQue.start();
        m_queue->TimerEmailMsgQue_Timer();
        QCOMPARE(g.gintEmailSendState, qint16(1));
        QTRY_COMPARE_WITH_TIMEOUT(g.gintEmailSendState, qint16(0), 10000);
    }

    std::unique_ptr<StoreFixture> m_f;
    std::unique_ptr<HeadlessWindow> m_window;
    QTcpServer m_silent;
    std::unique_ptr<AlertLink> m_link;
    std::unique_ptr<SmtpClient> m_smtp;
    std::unique_ptr<TrayState> m_tray;
    std::unique_ptr<SendStatus> m_status;
    std::unique_ptr<EmailQueue> m_queue;
};

QTEST_GUILESS_MAIN(TestEmailQueue)
#include "tst_email_queue.moc"
