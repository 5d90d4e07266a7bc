#include "CommSetup.h"

#include "Database.h"
#include "ErrorReport.h"

#include <QSqlQuery>
#include <QVariant>

namespace osprel {

void CommSetup::cmdAcceptCommSetup_Click()
{
    guarded(QStringLiteral("cmdAcceptCommSetup_Click"), [&] {
        const CommSettings s = m_port.commSettings();
        m_database.run(QStringLiteral("UPDATE SetupComm SET EmailServer = ?, EmailReturnAddress = ?,"
                                      " EmailReturnName = ?, FaxStation = ? WHERE rowid = ?"),
                       {s.txtMailServer, s.txtFrom, s.txtFromName, s.txtFaxStation,
                        m_database.firstRowId(QStringLiteral("SetupComm"))});
        SetCommSetupUnchanged();
    });
}

void CommSetup::cmdCancelCommSetup_Click()
{
    guarded(QStringLiteral("cmdCancelCommSetup_Click"), [&] {
        QSqlQuery row = commSettingsRow(m_database);
        m_port.setCommSettings({textOrEmpty(row, "EmailServer"), textOrEmpty(row, "EmailReturnAddress"),
                                textOrEmpty(row, "EmailReturnName"), textOrEmpty(row, "FaxStation")});
        SetCommSetupUnchanged();
    });
}

QSqlQuery commSettingsRow(const Database &database)
{
    QSqlQuery row = database.run(QStringLiteral("SELECT EmailServer, EmailReturnAddress, EmailReturnName, FaxStation,"
                                                " EmailEnabledAtBoot, FaxEnabledAtBoot FROM SetupComm"
                                                " ORDER BY rowid LIMIT 1"));
    if (!row.next())
        raise(Err::NoCurrentRecord);
    return row;
}

void saveEnabledAtBoot(const Database &database, Messaging messaging, bool enabled)
{
    const qint64 rowid = database.firstRowId(QStringLiteral("SetupComm"));
    database.run(messaging == Messaging::Email
                     ? QStringLiteral("UPDATE SetupComm SET EmailEnabledAtBoot = ? WHERE rowid = ?")
                     : QStringLiteral("UPDATE SetupComm SET FaxEnabledAtBoot = ? WHERE rowid = ?"),
                 {enabled ? 1 : 0, rowid});
}

} // namespace osprel
