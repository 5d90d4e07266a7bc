#include "EmailQueue.h"

#include "Clock.h"
#include "CommSetup.h"
#include "Conversions.h"
#include "Database.h"
#include "EmailDeferral.h"
#include "EmailQueuePort.h"
#include "ErrorReport.h"
#include "FormLists.h"
#include "FormTimers.h"
#include "Globals.h"
#include "Notices.h"
#include "QueueRoutines.h"
#include "RecipientsPagePort.h"
#include "SmtpClient.h"
#include "Values.h"
#include "Version.h"

namespace osprel {

EmailQueue::EmailQueue(FormLists &lists, FormTimers &timers, const Database &database, SmtpClient &smtp,
                       EmailQueuePort &port, RecipientsPagePort &recipientsPage, Notices &notices, QObject *parent)
    : QObject(parent), m_lists(lists), m_timers(timers), m_database(database), m_smtp(smtp), m_port(port),
      m_recipientsPage(recipientsPage), m_notices(notices)
{
    connect(&m_timers.TimerEmailMsgQue, &QTimer::timeout, this, &EmailQueue::TimerEmailMsgQue_Timer);
}

void EmailQueue::TimerEmailMsgQue_Timer()
{
    guarded(QStringLiteral("TimerEmailMsgQue_Timer"), [&] {
        ListStore &queue = m_lists.lvwSendEmailQue;
        // Only with nothing under way, messaging on, a job and somebody to send it to.
        if (m_smtp.SmtpState() != 0 || g.gintEmailSendState != 0 || !m_port.chkEnableEmail() || queue.isEmpty())
            return;
        // A deferred job waits for its next try while the others go on; the timer keeps ticking for it.
        if (!bringDueJobToTop(queue, Clock::now()))
            return;
        // An escalation names its own recipients; every other job goes to the e-mail list as it stands now.
        const bool own = hasOwnRecipients(queue.text(1, 6));
        const QString recipients = own ? queue.text(1, 4) : g.gstrEmailRecipients;
        if (recipients.isEmpty() || (!own && m_lists.lvwEmailContacts.isEmpty()))
            return;
        m_timers.TimerEmailMsgQue.stop(); // the dispatcher or the outcome switches it on again
        g.glngEmailAttempts = queue.text(1, EmailJobColumn::Attempts).toInt();
        const QString body = queue.text(1, 2);
        const QString subject = queue.text(1, 3) + QStringLiteral(" Chamber Notification: ") + queue.text(1, 6);
        m_smtp.SendEmail(recipients, subject, body, queue.text(1, EmailJobColumn::MessageId));
        if (queue.text(1, EmailJobColumn::MessageId).isEmpty()) {
            queue.setText(1, EmailJobColumn::MessageId, m_smtp.messageId());
            // On disk before the server has even greeted: a message sent again after a crash keeps its ID, so a
            // copy that arrives twice can be known as one.
            m_database.commitBatch();
        }
        Q_EMIT sendingStarted();
        addDeliveryRow(m_lists, 0, QStringLiteral("Sending"), recipients, queue.text(1, 7));
    });
}

void EmailQueue::cmdTestEmail_Click()
{
    guarded(QStringLiteral("cmdTestEmail_Click"), [&] {
        const QString to = m_port.txtTestEMailTo();
        if (to.isEmpty()) {
            m_notices.showMessage(QStringLiteral("Test Email Warning"),
                                  QStringLiteral("You must enter a valid email address in the Send To field before "
                                                 "sending a test email.  Example: labtech@example.com"));
            return;
        }
        m_port.setTxtTestEmailProg(QStringLiteral("Initializing..."));
        g.gblnEmailTest = true;
        const QString body = m_port.txtTestEMailMessage() + QStringLiteral("\r\nVersion ") + versionText() +
                             QStringLiteral("\r\nSent ") + generalDateTime(Clock::now());
        m_smtp.SendEmail(to, m_port.txtTestEMailSubject(), body);
    });
}

void EmailQueue::chkEnableEmail_Click()
{
    guarded(QStringLiteral("chkEnableEmail_Click"), [&] {
        const bool enabled = m_port.chkEnableEmail();
        m_recipientsPage.setEmailListEnabled(enabled);
        saveEnabledAtBoot(m_database, Messaging::Email, enabled);
    });
}

} // namespace osprel
