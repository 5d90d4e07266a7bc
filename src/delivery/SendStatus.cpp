#include "SendStatus.h"

#include "AlertLink.h"
#include "Clock.h"
#include "Database.h"
#include "EmailDeferral.h"
#include "ErrorReport.h"
#include "FaxLine.h"
#include "FormLists.h"
#include "FormTimers.h"
#include "Globals.h"
#include "History.h"
#include "Log.h"
#include "QueueRoutines.h"
#include "RecipientString.h"
#include "SendStates.h"
#include "SmtpClient.h"
#include "StatusPort.h"
#include "TestBanners.h"
#include "TimeScale.h"
#include "TrayState.h"
#include "Values.h"

#include <QElapsedTimer>

namespace osprel {

namespace {
enum SendState : qint16 { Idle = 0, Sending = 1, Sent = 3, Failed = 4 };
enum EmailFax : qint16 { ViaEmail = 1, ViaFax = 2 };
constexpr int kStatusColumn = 2;
constexpr int kAttemptsColumn = 5;

QString failedText(const QString &reason)
{
    return reason.isEmpty() ? QStringLiteral("Send Failed") : QStringLiteral("Send Failed: ") + reason;
}
} // namespace

SendStatus::SendStatus(FormLists &lists, FormTimers &timers, const Database &database, AlertLink &link,
                       SmtpClient &smtp, TrayState &tray, StatusPort &port)
    : m_lists(lists), m_timers(timers), m_database(database), m_link(link), m_smtp(smtp), m_tray(tray), m_port(port)
{
    m_elapsedMs = [] {
        static QElapsedTimer monotonic;
        if (!monotonic.isValid())
            monotonic.start();
        return monotonic.elapsed();
    };
    m_smtpOutcomes = QObject::connect(&m_smtp, &SmtpClient::finished, &m_smtp, [this](const SendOutcome &outcome) {
        m_emailOutcome = outcome;
        m_emailReason = outcome.reason;
        recordEmailOutcome(outcome);
        SendStatUpdate();
    });
}

SendStatus::~SendStatus()
{
    QObject::disconnect(m_smtpOutcomes);
}

void SendStatus::SendStatUpdate()
{
    if (gblnStatusUpdating)
        return;
    gblnStatusUpdating = true;
    guarded(QStringLiteral("SendStatUpdate"), [&] {
        // A queue row leaves its table in the same commit that writes its history row.
        m_database.beginBatch();
        m_tray.IconUpdate();
        const bool outcome = g.gintEmailSendState == Sent || g.gintEmailSendState == Failed ||
                             g.gintFaxSendState == Sent || g.gintFaxSendState == Failed;
        switch (g.gintEmailSendState) {
        case Sending:
            emailSending();
            break;
        case Sent:
            emailSent();
            break;
        case Failed:
            emailFailed();
            break;
        default:
            break;
        }
        switch (g.gintFaxSendState) {
        case Sending:
            faxSending();
            break;
        case Sent:
            faxSent();
            break;
        case Failed:
            faxFailed();
            break;
        default:
            break;
        }
        // An outcome goes to disk at the end of this turn, while the next message waits for its tick, instead of
        // with the batch's idle commit, which would fall inside the next SMTP dialogue.
        if (outcome)
            m_database.commitSoon();
    });
    gblnStatusUpdating = false; // also after a reported error: the guard never stays set
}

void SendStatus::cmdClear_Click(int index)
{
    guarded(QStringLiteral("cmdClear_Click"), [&] {
        if (index != 0 && index != 1)
            raise(Err::SubscriptOutOfRange);
        if (m_lists.lvwHist[index].isEmpty())
            return;
        DBCLearHistory(m_database, index);
        m_lists.lvwHist[index].clear();
    });
}

void SendStatus::cmdClearQueue_Click(int index)
{
    guarded(QStringLiteral("cmdClearQueue_Click"), [&] {
        if (index != 0 && index != 1)
            raise(Err::SubscriptOutOfRange);
        ListStore &queue = index == 0 ? m_lists.lvwSendEmailQue : m_lists.lvwSendFaxQue;
        if (queue.isEmpty())
            return;
        queue.clear();
        if (Log *log = Log::instance()) {
            QStringListModel *status = index == 0 ? log->lstEmailStatus() : log->lstFaxStatus();
            status->removeRows(0, status->rowCount());
        }
    });
}

void SendStatus::emailSending()
{
    if (!m_lists.lvwHist[0].isEmpty())
        m_lists.lvwHist[0].setText(1, kStatusColumn, QStringLiteral("Sending"));
    g.glngEmailTicks += 1;
    // An SMTP session bounds every step with its own time-out and always ends with an outcome; cutting it here
    // could send a slow server's message a second time. The give-up stays for everything else.
    if (g.glngEmailTicks >= kEmailGiveUpTicks && m_smtp.SmtpState() == 0) {
        DumpStr(QStringLiteral("EMail Status: Error: no outcome after ") + QString::number(kEmailGiveUpTicks) +
                    QStringLiteral(" status checks.  Aborting."),
                Log::EmailList);
        m_emailReason =
            QStringLiteral("no outcome after ") + QString::number(kEmailGiveUpTicks) + QStringLiteral(" status checks");
        g.gintEmailSendState = Failed;
        m_emailOutcome = SendOutcome::failed(QStringLiteral("no outcome"));
        g.glngEmailTicks = 0;
        m_smtp.abort(); // closes the socket and sets SmtpState to 0
    }
    if (g.gblnEmailTest)
        m_port.setTxtTestEmailProg(QString::number(g.glngEmailTicks) + QStringLiteral("Sending... "));
}

void SendStatus::emailSent()
{
    g.glngEmailTicks = 0;
    if (g.gblnEmailTest) {
        m_port.setTxtTestEmailProg(QStringLiteral("Sent Successfully"));
        g.gblnEmailTest = false;
        DumpTestEmailBanner(QStringLiteral("*** Status: EMail sent successfully."));
        CopyEmailToRecipientStr(m_lists);
        g.gintEmailSendState = Idle;
        g.glngEmailAttempts = 0;
        return;
    }
    if (g.gintIconState != 2)
        g.gintIconState = 1;
    m_tray.IconUpdate();
    // Recipients the server refused are named: "Sent (refused: bob@example.com)".
    const QString refused = m_emailOutcome.isSent() ? m_emailOutcome.reason : QString();
    m_lists.lvwHist[0].setText(1, kStatusColumn,
                               refused.isEmpty() ? QStringLiteral("Sent") : QStringLiteral("Sent (%1)").arg(refused));
    if (!m_lists.lvwSendEmailQue.isEmpty()) {
        m_link.Vantor32Reply(ViaEmail, true); // before the row goes: the reply reads its alert number
        m_lists.lvwSendEmailQue.remove(1);
    }
    if (m_delivered)
        m_delivered(ViaEmail);
    g.glngEmailAttempts = 0;
    DBAddHistLvw(m_database, m_lists, 0);
    rearmEmailQueue();
    g.gintEmailSendState = Idle;
}

// An e-mail is tried three times in all, always as the head of its queue.
void SendStatus::emailFailed()
{
    g.glngEmailTicks = 0;
    if (g.gblnEmailTest) {
        m_port.setTxtTestEmailProg(failedText(m_emailReason));
        g.gblnEmailTest = false;
        DumpTestEmailBanner(QStringLiteral("*** Status: Test email failed."));
        g.gintEmailSendState = Idle;
        g.glngEmailAttempts = 0;
        return;
    }
    m_smtp.abort();
    ListStore &history = m_lists.lvwHist[0];
    if (!history.isEmpty())
        history.setNote(1, m_emailReason);
    ListStore &queue = m_lists.lvwSendEmailQue;
    // A temporary failure (4xx, a dropped connection, a time-out) waits for a later try, until the kill time.
    if (m_emailOutcome.temporary && !queue.isEmpty()) {
        QString status;
        if (deferTopJob(queue, m_emailOutcome.reason, m_smtp.mailSettings().killTimeMinutes, Clock::now(), &status)) {
            history.setText(1, kStatusColumn, status);
            DumpStr(QStringLiteral("EMail Status: ") + status, Log::EmailList);
            switchOn(m_timers.TimerEmailMsgQue);
            g.gintEmailSendState = Idle;
            m_tray.IconUpdate();
            return;
        }
        g.glngEmailAttempts = 2; // the kill time has passed: this is the final failure
    }
    if (g.glngEmailAttempts < 2) {
        history.setText(1, kStatusColumn, QStringLiteral("Attempt %1 Failed").arg(g.glngEmailAttempts + 1));
        g.glngEmailAttempts += 1;
        if (!queue.isEmpty())
            queue.setText(1, EmailJobColumn::Attempts, QString::number(g.glngEmailAttempts));
        switchOn(m_timers.TimerEmailMsgQue);
    } else {
        history.setText(1, kStatusColumn, QStringLiteral("Attempt 3 Failed"));
        QStringList failed;
        if (!m_lists.lvwSendEmailQue.isEmpty()) {
            m_link.Vantor32Reply(ViaEmail, false); // the chamber program hears of the final failure too
            failed = m_lists.lvwSendEmailQue.row(1);
            m_lists.lvwSendEmailQue.remove(1);
        }
        g.gintIconState = 2;
        g.glngEmailAttempts = 0;
        DBAddHistLvw(m_database, m_lists, 0);
        rearmEmailQueue();
        if (m_finalFailure && !failed.isEmpty())
            m_finalFailure(ViaEmail, failed);
    }
    g.gintEmailSendState = Idle;
    m_tray.IconUpdate();
}

void SendStatus::rearmEmailQueue()
{
    if (m_lists.lvwSendEmailQue.isEmpty())
        m_timers.TimerEmailMsgQue.stop();
    else
        switchOn(m_timers.TimerEmailMsgQue);
}

void SendStatus::faxSending()
{
    g.glngFaxTicks += 1;
    const qint64 now = m_elapsedMs();
    if (g.glngFaxTicks == 1) // the first refresh of this call (the count is cleared at each outcome)
        m_faxSendingSince = now;
    const qint64 underWay = now - m_faxSendingSince;
    // A call that is not in progress ten seconds on has failed; none takes 400 seconds.
    if (underWay >= kFaxCheckMs && (!m_faxLine || m_faxLine->faxStatus() != 2)) {
        g.gintFaxSendState = Failed;
        m_faxReason = QStringLiteral("the call did not reach the sending state");
    }
    if (underWay >= kFaxGiveUpMs) {
        g.gintFaxSendState = Failed;
        m_faxReason =
            QStringLiteral("no outcome after ") + QString::number(kFaxGiveUpMs / 1000) + QStringLiteral(" seconds");
    }
    if (g.gblnFaxTest)
        m_port.setTxtTestFaxProg(QString::number(g.glngFaxTicks) + QStringLiteral("Sending... "));
}

void SendStatus::faxSent()
{
    if (g.gblnFaxTest) {
        m_port.setTxtTestFaxProg(QStringLiteral("Sent Successfully"));
        g.gblnFaxTest = false;
        DumpTestFaxBanner(QStringLiteral("*** Status: Test fax sent successfully."));
        g.gintFaxSendState = Idle;
        g.glngFaxTicks = 0;
        return;
    }
    if (g.gintIconState != 2)
        g.gintIconState = 1;
    m_tray.IconUpdate();
    m_lists.lvwHist[1].setText(1, kStatusColumn, QStringLiteral("Sent"));
    DBAddHistLvw(m_database, m_lists, 1);
    g.glngFaxTicks = 0;
    if (!m_lists.lvwSendFaxQue.isEmpty()) {
        m_link.Vantor32Reply(ViaFax, true);
        m_lists.lvwSendFaxQue.remove(1);
    }
    if (m_delivered)
        m_delivered(ViaFax);
    g.gintFaxSendState = Idle;
}

// A fax is tried three times in all; each retry waits behind every other fax in the queue.
void SendStatus::faxFailed()
{
    if (g.gblnFaxTest) {
        m_port.setTxtTestFaxProg(failedText(m_faxReason));
        g.gblnFaxTest = false;
        DumpTestFaxBanner(QStringLiteral("*** Status: Test fax failed."));
        g.gintFaxSendState = Idle;
        g.glngFaxTicks = 0;
        return;
    }
    ListStore &queue = m_lists.lvwSendFaxQue;
    const qint16 attempts = CInt(Val(queue.text(1, kAttemptsColumn)));
    m_lists.lvwHist[1].setText(1, kStatusColumn, QStringLiteral("Failed"));
    m_lists.lvwHist[1].setNote(1, m_faxReason);
    g.glngFaxTicks = 0;
    if (m_faxLine)
        m_faxLine->endCall();
    QStringList failed;
    if (attempts >= 2) {
        g.gintIconState = 2;
        DBAddHistLvw(m_database, m_lists, 1);
        m_link.Vantor32Reply(ViaFax, false);
        failed = queue.row(1);
    } else {
        queue.setText(1, kAttemptsColumn, QString::number(attempts + 1));
        LVWSendFirstFaxQueueToLast(m_lists);
    }
    queue.remove(1);
    if (m_finalFailure && !failed.isEmpty())
        m_finalFailure(ViaFax, failed);
    m_tray.IconUpdate();
    g.gintFaxSendState = Idle;
}

} // namespace osprel
