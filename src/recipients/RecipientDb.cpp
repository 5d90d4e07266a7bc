#include "RecipientDb.h"

#include "Database.h"
#include "ErrorReport.h"

#include <QSqlQuery>
#include <QVariant>

namespace osprel {

qint64 findContact(const Database &database, const QString &last, const QString &first)
{
    QSqlQuery row = database.run(
        QStringLiteral("SELECT rowid FROM Contacts WHERE LastName = ? AND FirstName = ? ORDER BY rowid LIMIT 1"),
        {last, first});
    return row.next() ? row.value(0).toLongLong() : 0;
}

QString contactNotes(const Database &database, const QString &last, const QString &first)
{
    QSqlQuery row = database.run(
        QStringLiteral("SELECT Notes FROM Contacts WHERE LastName = ? AND FirstName = ? ORDER BY rowid LIMIT 1"),
        {last, first});
    if (!row.next())
        raise(Err::NoCurrentRecord);
    return row.value(0).toString();
}

bool DBEditRecipient(const Database &database, qint16 mode, const RecipientRec &rec)
{
    return guarded(QStringLiteral("DBEditRecipient"), [&] {
        const qint64 rowid = findContact(database, rec.LastName, rec.FirstName);
        if (!rowid)
            raise(Err::NoCurrentRecord);
        const QString column = mode == EnableEmail || mode == DisableEmail ? QStringLiteral("EMailEnabled")
                               : mode == EnableFax || mode == DisableFax   ? QStringLiteral("FaxEnabled")
                               : mode == EnableEscalation || mode == DisableEscalation
                                   ? QStringLiteral("EscalationEnabled")
                                   : QString();
        if (column.isEmpty())
            raise(Err::InvalidProcedureCall);
        const int value = mode == EnableEmail || mode == EnableFax || mode == EnableEscalation ? 1 : 0;
        database.run(QStringLiteral("UPDATE Contacts SET ") + column + QStringLiteral(" = ? WHERE rowid = ?"),
                     {value, rowid});
    });
}

bool DBAddEditMainContact(const Database &database, const QString &oldLast, const QString &oldFirst,
                          const RecipientRec &rec)
{
    return guarded(QStringLiteral("DBAddEditMainContact"), [&] {
        if (oldLast.isNull()) {
            database.run(QStringLiteral("INSERT INTO Contacts (LastName, FirstName, EmailName, FaxNumber, Notes)"
                                        " VALUES (?, ?, ?, ?, ?)"),
                         {rec.LastName, rec.FirstName, rec.EmailName, rec.FaxNumber, rec.Notes});
            return;
        }
        const qint64 rowid = findContact(database, oldLast, oldFirst);
        if (!rowid)
            raise(Err::NoCurrentRecord);
        database.run(QStringLiteral("UPDATE Contacts SET LastName = ?, FirstName = ?, EmailName = ?, FaxNumber = ?,"
                                    " Notes = ? WHERE rowid = ?"),
                     {rec.LastName, rec.FirstName, rec.EmailName, rec.FaxNumber, rec.Notes, rowid});
    });
}

bool DBDeleteMainContact(const Database &database, const RecipientRec &rec)
{
    return guarded(QStringLiteral("DBDeleteMainContact"), [&] {
        const qint64 rowid = findContact(database, rec.LastName, rec.FirstName);
        if (!rowid)
            raise(Err::NoCurrentRecord);
        database.run(QStringLiteral("DELETE FROM Contacts WHERE rowid = ?"), {rowid});
    });
}

} // namespace osprel
