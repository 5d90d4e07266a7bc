#pragma once
// The tables of EMAILFAX.MDE and the rows a new database is delivered with.

#include <QSqlDatabase>
#include <QStringList>

namespace osprel {

// Rows of the alarm pool. The pool is emptied as a whole when full, so it is sized for an hour of alarms at one
// every four seconds; a report of that many alarms is still an e-mail any mail server takes.
constexpr int kAlarmPoolSize = 1000;

// The columns of EmailHistory and FaxHistory, in the order of the history lists' columns.
const QStringList &historyColumns();

// Creates every table and the delivered rows, in one transaction; raises on failure.
void createSchema(QSqlDatabase &database, int poolSize = kAlarmPoolSize);

} // namespace osprel
