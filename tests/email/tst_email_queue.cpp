// The e-mail queue timer and the test e-mail: when a job is taken and when it waits, the history row it writes,
// and a mail server that never answers.

#include "AlertLink.h"
#include "Database.h"
#include "EmailQueue.h"
#include "FormLists.h"
#include "FormTimers.h"
#include "Globals.h"
#include "HeadlessWindow.h"
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

        // Nothing answers: the send is given up after 60 refreshes and the job stays at the head for its retry.
        for (int tick = 0; tick < SendStatus::kEmailGiveUpTicks + 1; ++tick)
            m_status->SendStatUpdate();
        QCOMPARE(m_f->lists.lvwHist[0].text(1, 2), QStringLiteral("Attempt 1 Failed"));
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
