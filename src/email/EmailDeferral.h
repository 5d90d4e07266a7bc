#pragma once
// Temporary failures of an e-mail job: the job waits in the e-mail queue for its next try (after 1, 5, 15 and
// 30 minutes, then every hour) while the others go on, until its kill time. Everything a deferred job needs to be
// taken up again lives in its queue row, so the row alone resumes it.

#include <QDateTime>
#include <QString>

namespace osprel {

class ListStore;

// The columns of lvwSendEmailQue that carry a job's delivery state, after the eight it is queued with.
namespace EmailJobColumn {
constexpr int Attempts = 5;       // failed attempts with a refusal (5xx), of the three allowed
constexpr int Status = 9;         // what the queue shows: empty, or the deferral and its reason
constexpr int NextTry = 10;       // ISO date-time; empty: at once
constexpr int MessageId = 11;     // the same Message-ID on every try
constexpr int Deferrals = 12;     // temporary failures so far
constexpr int FirstDeferred = 13; // ISO date-time of the first; the kill time counts from it
} // namespace EmailJobColumn

// Puts the first job whose next try has come at the top of the queue, the others keeping their order; false when
// no job is due.
bool bringDueJobToTop(ListStore &queue, const QDateTime &now);

// Defers the top job after a temporary failure: its count, next try and status text (also put in *status).
// False when its kill time has passed: the caller ends it as a final failure.
bool deferTopJob(ListStore &queue, const QString &reason, int killTimeMinutes, const QDateTime &now, QString *status);

// Minutes before the next try after the n-th temporary failure (n from 1).
int deferralMinutes(int n);

} // namespace osprel
