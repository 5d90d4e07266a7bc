#include "EmailQueue.h"

#include "Clock.h"
#include "Conversions.h"
#include "Database.h"
#include "EmailQueuePort.h"
#include "ErrorReport.h"
#include "FormLists.h"
#include "FormTimers.h"
#include "Globals.h"
#include "QueueRoutines.h"
#include "SmtpClient.h"
#include "Values.h"
#include "Version.h"

#include <QSqlQuery>
#include <QVariant>

namespace osprel {

EmailQueue::EmailQueue(FormLists &lists, FormTimers &timers, const Database &database, SmtpClient &smtp,
                       EmailQueuePort &port, QObject *parent)
    : QObject(parent), m_lists(lists), m_timers(timers), m_database(database), m_smtp(smtp), m_port(port)
{
    connect(&m_timers.TimerEmailMsgQue, &QTimer::timeout, this, &EmailQueue::TimerEmailMsgQue_Timer);
}

void EmailQueue::TimerEmailMsgQue_Timer()
{
    guarded(QStringLiteral("TimerEmailMsgQue_Timer"), [&] {
        ListStore &queue = m_lists.lvwSendEmailQue;
        // Only with nothing under way, messaging on, a job and somebody to send it to.
        if (m_smtp.SmtpState() != 0 || g.gintEmailSendState != 0 || !m_port.chkEnableEmail() || queue.isEmpty() ||
            m_lists.lvwEmailContacts.isEmpty())
            return;
        m_timers.TimerEmailMsgQue.stop(); // the dispatcher or the outcome switches it on again
        const QString body = queue.text(1, 2);
        const QString subject = queue.text(1, 3) + QStringLiteral(" Chamber Notification: ") + queue.text(1, 6);
        m_smtp.SendEmail(g.gstrEmailRecipients, subject, body);
        g.gintEmailSendState = 1;

        if (m_lists.lvwHist[0].count() > 100)
            LVWClearHistoryHalf(m_lists, 0);
        const QStringList fields = Split(queue.text(1, 7), QStringLiteral("|"));
        auto field = [&fields](int i) { return Trim(element(fields, i)); };
        // The row of the message in delivery is always the top one.
        m_lists.lvwHist[0].insert(1, QStringList{GetDateTimeStamp(), QStringLiteral("Sending"), field(1),
                                                 g.gstrEmailRecipients, field(2), field(3), field(4), field(0)});
    });
}

void EmailQueue::cmdTestEmail_Click()
{
    guarded(QStringLiteral("cmdTestEmail_Click"), [&] {
        const QString to = m_port.txtTestEMailTo();
        if (to.isEmpty()) {
            m_port.showMessage(QStringLiteral("Test Email Warning"),
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
        QSqlQuery row = m_database.run(QStringLiteral("SELECT rowid FROM SetupComm ORDER BY rowid LIMIT 1"));
        if (!row.next())
            raise(Err::NoCurrentRecord);
        const qint64 rowid = row.value(0).toLongLong();
        row.finish();
        const bool enabled = m_port.chkEnableEmail();
        m_port.setEmailListEnabled(enabled);
        m_database.run(QStringLiteral("UPDATE SetupComm SET EmailEnabledAtBoot = ? WHERE rowid = ?"),
                       {enabled ? 1 : 0, rowid});
    });
}

} // namespace osprel
