#pragma once
// The recipients' rows in the Contacts table, found by last and first name together. Each routine reports its own
// failure and returns false, so that the lists are changed only with the table.

#include "QueueRoutines.h"

namespace osprel {

class Database;

enum RecipientEdit : qint16 {
    EnableEmail = 0,
    EnableFax = 1,
    DisableEmail = 2,
    DisableFax = 3,
    EnableEscalation = 4,
    DisableEscalation = 5
};

// Switches the person's e-mail, fax or escalation flag on or off.
bool DBEditRecipient(const Database &database, qint16 mode, const RecipientRec &rec);
// Writes names, addresses and notes into the row of (oldLast, oldFirst), or into a new row when oldLast is null.
bool DBAddEditMainContact(const Database &database, const QString &oldLast, const QString &oldFirst,
                          const RecipientRec &rec);
bool DBDeleteMainContact(const Database &database, const RecipientRec &rec);
// The rowid of the person's row, or 0 when there is none.
qint64 findContact(const Database &database, const QString &last, const QString &first);
QString contactNotes(const Database &database, const QString &last, const QString &first);

} // namespace osprel
