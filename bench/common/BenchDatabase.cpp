// Creates a bench's database with the server's own schema code.

#include "BenchDatabase.h"

#include "Database.h"
#include "RunError.h"

#include <QVariant>

bool prepareDatabase(const QString &folder, const QString &mailServer, const QList<BenchRecipient> &recipients,
                     QString *error)
{
    try {
        osprel::Database database;
        database.DBInitADO(folder);
        if (!database.isOpen()) {
            *error = QStringLiteral("cannot create the database in ") + folder;
            return false;
        }
        bool anyFax = false;
        for (const BenchRecipient &r : recipients) {
            anyFax = anyFax || !r.fax.isEmpty();
            database.run(
                QStringLiteral("INSERT INTO Contacts (LastName, FirstName, EMailEnabled, FaxEnabled, EmailName,"
                               " FaxNumber) VALUES (?, ?, ?, ?, ?, ?)"),
                {r.lastName, r.firstName, r.email.isEmpty() ? 0 : 1, r.fax.isEmpty() ? 0 : 1,
                 r.email.isEmpty() ? QVariant() : QVariant(r.email), r.fax.isEmpty() ? QVariant() : QVariant(r.fax)});
        }
        database.run(
            QStringLiteral("UPDATE SetupComm SET EmailServer = ?, EmailReturnAddress = ?, EmailEnabledAtBoot = 1,"
                           " FaxEnabledAtBoot = ?"),
            {mailServer, QStringLiteral("emailfax@chamber.test"), anyFax ? 1 : 0});
        database.close();
    } catch (const std::exception &e) {
        *error = QStringLiteral("cannot prepare the database: ") + QString::fromLocal8Bit(e.what());
        return false;
    }
    return true;
}
