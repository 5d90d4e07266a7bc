#include "DBInit.h"

#include "CommSetup.h"
#include "Database.h"
#include "ErrorReport.h"
#include "FormLists.h"
#include "Schema.h"
#include "Values.h"

#include <QSqlQuery>
#include <QVariant>

namespace osprel {

namespace {
constexpr int kHistoryLimit = 100;              // more rows than this at start-up ...
constexpr int kHistoryKeep = kHistoryLimit / 2; // ... are cut to this many, the newest

void loadContacts(const Database &database, FormLists &lists)
{
    QSqlQuery contacts = database.run(QStringLiteral("SELECT rowid, * FROM Contacts ORDER BY rowid"));
    QList<qint64> halfEntered;
    while (contacts.next()) {
        const QVariant last = contacts.value(QStringLiteral("LastName"));
        const QVariant first = contacts.value(QStringLiteral("FirstName"));
        if (last.isNull() || first.isNull()) {
            halfEntered.append(contacts.value(0).toLongLong());
            continue;
        }
        const bool email = contacts.value(QStringLiteral("EMailEnabled")).toInt() != 0;
        const bool fax = contacts.value(QStringLiteral("FaxEnabled")).toInt() != 0;
        // A file not yet upgraded has no escalation column: nobody is on that list.
        const bool escalation = contacts.value(QStringLiteral("EscalationEnabled")).toInt() != 0;
        const QString address = textOrEmpty(contacts, "EmailName");
        const QString number = textOrEmpty(contacts, "FaxNumber");
        lists.lvwMainContacts.add(QStringList{last.toString(), first.toString(), address, number});
        if (email)
            lists.lvwEmailContacts.add(QStringList{last.toString(), first.toString(), address});
        if (fax)
            lists.lvwFaxContacts.add(QStringList{last.toString(), first.toString(), number});
        if (escalation)
            lists.lvwEscalationContacts.add(QStringList{last.toString(), first.toString(), address, number});
    }
    contacts.finish();
    // Rows without both names were left half-entered; they are removed at start.
    for (qint64 rowid : halfEntered)
        database.run(QStringLiteral("DELETE FROM Contacts WHERE rowid = ?"), {rowid});
}

void loadHistory(const Database &database, const QString &table, ListStore &list)
{
    QSqlQuery counter = database.run(QStringLiteral("SELECT count(*) FROM ") + table);
    const int rows = counter.next() ? counter.value(0).toInt() : 0;
    counter.finish();
    if (rows > kHistoryLimit) {
        database.run(QStringLiteral("DELETE FROM ") + table + QStringLiteral(" WHERE rowid IN (SELECT rowid FROM ") +
                         table + QStringLiteral(" ORDER BY rowid LIMIT ?)"),
                     {rows - kHistoryKeep});
    }
    QSqlQuery history = database.run(QStringLiteral("SELECT ") + historyColumns().join(QStringLiteral(", ")) +
                                     QStringLiteral(" FROM ") + table + QStringLiteral(" ORDER BY rowid DESC"));
    while (history.next()) {
        QStringList columns;
        for (const QString &column : historyColumns())
            columns.append(history.value(column).toString()); // a null column is an empty sub-item
        list.add(columns);
    }
}

void loadCommSettings(const Database &database, CommSetupPort &port)
{
    QSqlQuery settings = commSettingsRow(database);
    port.setCommSettings({textOf(settings, "EmailServer"), textOf(settings, "EmailReturnAddress"),
                          textOf(settings, "EmailReturnName"), textOf(settings, "FaxStation")});
    port.setChkEnableEmail(Val(textOrEmpty(settings, "EmailEnabledAtBoot")) == 1);
    port.setChkEnableFax(Val(textOrEmpty(settings, "FaxEnabledAtBoot")) == 1);
}
} // namespace

void DBInit(const Database &database, FormLists &lists, CommSetupPort &port)
{
    guarded(QStringLiteral("DBInit"), [&] {
        loadContacts(database, lists);
        // Each history to its own list, newest first, as rows are added while the server runs.
        loadHistory(database, QStringLiteral("EmailHistory"), lists.lvwHist[0]);
        loadHistory(database, QStringLiteral("FaxHistory"), lists.lvwHist[1]);
        loadCommSettings(database, port);
    });
}

} // namespace osprel
