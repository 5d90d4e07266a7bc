#pragma once
// Small operations on the send queues and the history lists that the dispatch, store and delivery code share: the
// rows of a new send job, the row of a message in delivery, and the list routines named LVW....

#include <QString>
#include <functional>

namespace osprel {

class FormLists;
class FormTimers;
class SendSwitches;

struct RecipientRec
{
    QString LastName, FirstName, EmailName, FaxNumber, Notes;
    qint16 ListType = 0; // 0 all contacts, 1 e-mail list, 2 fax list
};

// What every send job carries, whoever made it (an alert, or a summary report of held alarms).
struct SendJob
{
    QString message;      // the notification text
    QString chamberName;  // or the report's title
    QString categoryName; // "*" for a report
    QString histData;     // the alert summary line: the history row's fields joined by "|"
    QString alertNumber;  // "*" for a report
    bool byEmail = true;  // the channels the job may take (each still only while switched on)
    bool byFax = true;
};

// Puts one job on the e-mail queue for all e-mail recipients together and one job per fax recipient on the fax
// queue, each only while its messaging is switched on and its recipient list is not empty, and switches the
// queue's timer on.
// A job that reaches nobody (neither queue took it) is told once to the sink, with the words saying why.
void queueSendJobs(FormLists &lists, FormTimers &timers, const SendSwitches &switches, const SendJob &job);

// A job for named people rather than the e-mail and fax lists (an escalation): its category starts with this mark,
// its e-mail row holds its own recipient string in the Address column, and the queues send it even while their
// lists are empty.
inline const QString kEscalationMark = QStringLiteral("Escalation: ");
inline bool hasOwnRecipients(const QString &category)
{
    return category.startsWith(kEscalationMark);
}

// Puts an escalation on the queues: one e-mail job to every address in `emailTo` (the recipient string, each
// address followed by "; ") while e-mail is on, and one fax job per person in `faxTo` while fax is on. The job's
// category is marked. Returns how many jobs were queued.
int queueOwnRecipientJobs(FormLists &lists, FormTimers &timers, const SendSwitches &switches, const SendJob &job,
                          const QString &emailTo, const QList<RecipientRec> &faxTo);

// Where queueSendJobs tells of a message that reaches nobody; the server installs the log and the status line here.
using UnreachedSink = std::function<void(const QString &text)>;
void setUnreachedSink(UnreachedSink sink);

// The row of a message going out, at the top of history list histIndex (0 e-mail, 1 fax): the time stamp, the
// status, and the fields of the job's history data; the oldest half goes first when the list holds over 100.
void addDeliveryRow(FormLists &lists, int histIndex, const QString &status, const QString &address,
                    const QString &histData);

// The person of the fax at the head of the fax queue: last and first name and the number dialled.
RecipientRec LVWGetFirstFaxQueContact(const FormLists &lists);
// Appends a copy of the fax queue's first row at its end (the caller then removes the first).
void LVWSendFirstFaxQueueToLast(FormLists &lists);
// Takes the 50 oldest rows off a history list that holds more than 100 (the newest are at the top).
void LVWClearHistoryHalf(FormLists &lists, int histIndex);

} // namespace osprel
