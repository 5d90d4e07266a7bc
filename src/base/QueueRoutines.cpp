#include "QueueRoutines.h"

#include "Conversions.h"
#include "ErrorReport.h"
#include "FormLists.h"
#include "FormTimers.h"
#include "Globals.h"
#include "SendSwitches.h"
#include "TimeScale.h"
#include "Values.h"

namespace osprel {

namespace {
UnreachedSink &unreachedSink()
{
    static UnreachedSink sink;
    return sink;
}

// Why a message went nowhere, for the log and the status line.
QString unreachedText(const SendSwitches &switches, const FormLists &lists, const SendJob &job)
{
    const QString email = !job.byEmail                      ? QStringLiteral("not for e-mail")
                          : !switches.chkEnableEmail()         ? QStringLiteral("e-mail is switched off")
                          : lists.lvwEmailContacts.isEmpty() ? QStringLiteral("no e-mail recipients")
                                                             : QString();
    const QString fax = !job.byFax                      ? QStringLiteral("not for fax")
                        : !switches.chkEnableFax()         ? QStringLiteral("fax is switched off")
                        : lists.lvwFaxContacts.isEmpty() ? QStringLiteral("no fax recipients")
                                                         : QString();
    const QString what =
        job.alertNumber == QLatin1String("*")
            ? QStringLiteral("Summary report ") + job.chamberName
            : QStringLiteral("Alert ") + job.alertNumber + QStringLiteral(" (") + job.chamberName + QStringLiteral(")");
    return what + QStringLiteral(" reached nobody: ") + email + QStringLiteral(", ") + fax + u'.';
}
} // namespace

void setUnreachedSink(UnreachedSink sink)
{
    unreachedSink() = std::move(sink);
}

void queueSendJobs(FormLists &lists, FormTimers &timers, const SendSwitches &switches, const SendJob &job)
{
    const bool byEmail = job.byEmail && switches.chkEnableEmail() && !lists.lvwEmailContacts.isEmpty();
    const bool byFax = job.byFax && switches.chkEnableFax() && !lists.lvwFaxContacts.isEmpty();
    if (!byEmail && !byFax && unreachedSink())
        unreachedSink()(unreachedText(switches, lists, job));
    if (byEmail) {
        lists.lvwSendEmailQue.add(QStringList{GetDateTimeStamp(), job.message, job.chamberName, g.gstrEmailRecipients,
                                              QStringLiteral("0"), job.categoryName, job.histData, job.alertNumber});
        switchOn(timers.TimerEmailMsgQue);
    }
    if (byFax) {
        const ListStore &recipients = lists.lvwFaxContacts;
        for (int j = 1; j <= recipients.count(); ++j) {
            lists.lvwSendFaxQue.add(QStringList{GetDateTimeStamp(), job.message, job.chamberName, recipients.text(j, 3),
                                                QStringLiteral("0"), job.categoryName, job.histData,
                                                recipients.text(j, 1), recipients.text(j, 2), job.alertNumber});
            switchOn(timers.TimerFaxMsgQue);
        }
    }
}

int queueOwnRecipientJobs(FormLists &lists, FormTimers &timers, const SendSwitches &switches, const SendJob &job,
                          const QString &emailTo, const QList<RecipientRec> &faxTo)
{
    const QString category = hasOwnRecipients(job.categoryName) ? job.categoryName : kEscalationMark + job.categoryName;
    int queued = 0;
    if (switches.chkEnableEmail() && !emailTo.isEmpty()) {
        lists.lvwSendEmailQue.add(QStringList{GetDateTimeStamp(), job.message, job.chamberName, emailTo,
                                              QStringLiteral("0"), category, job.histData, job.alertNumber});
        switchOn(timers.TimerEmailMsgQue);
        ++queued;
    }
    if (switches.chkEnableFax()) {
        for (const RecipientRec &person : faxTo) {
            if (person.FaxNumber.isEmpty())
                continue;
            lists.lvwSendFaxQue.add(QStringList{GetDateTimeStamp(), job.message, job.chamberName, person.FaxNumber,
                                                QStringLiteral("0"), category, job.histData, person.LastName,
                                                person.FirstName, job.alertNumber});
            switchOn(timers.TimerFaxMsgQue);
            ++queued;
        }
    }
    return queued;
}

void addDeliveryRow(FormLists &lists, int histIndex, const QString &status, const QString &address,
                    const QString &histData)
{
    if (lists.lvwHist[histIndex].count() > 100)
        LVWClearHistoryHalf(lists, histIndex);
    const QStringList fields = Split(histData, QStringLiteral("|"));
    auto field = [&fields](int i) { return Trim(element(fields, i)); };
    // The row of the message in delivery is always the top one.
    lists.lvwHist[histIndex].insert(
        1, QStringList{GetDateTimeStamp(), status, field(1), address, field(2), field(3), field(4), field(0)});
}

RecipientRec LVWGetFirstFaxQueContact(const FormLists &lists)
{
    RecipientRec rec;
    guarded(QStringLiteral("LVWGetFirstFaxQueContact"), [&] {
        const ListStore &queue = lists.lvwSendFaxQue;
        rec.LastName = queue.text(1, 8);
        rec.FirstName = queue.text(1, 9);
        rec.FaxNumber = queue.text(1, 4);
    });
    return rec;
}

void LVWSendFirstFaxQueueToLast(FormLists &lists)
{
    guarded(QStringLiteral("LVWSendFirstFaxQueueToLast"), [&] { lists.lvwSendFaxQue.add(lists.lvwSendFaxQue.row(1)); });
}

void LVWClearHistoryHalf(FormLists &lists, int histIndex)
{
    guarded(QStringLiteral("LVWClearHistoryHalf"), [&] {
        if (histIndex != 0 && histIndex != 1)
            raise(Err::SubscriptOutOfRange);
        ListStore &history = lists.lvwHist[histIndex];
        // A fixed 50 (100 / 2), not half of what is there.
        if (history.count() > 100) {
            for (int i = 0; i < 50; ++i)
                history.remove(history.count());
        }
    });
}

} // namespace osprel
