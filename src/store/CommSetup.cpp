#include "CommSetup.h"

#include "Database.h"
#include "ErrorReport.h"

#include <QSqlQuery>
#include <QVariant>

namespace osprel {

namespace {
qint64 settingsRow(const Database &database)
{
    QSqlQuery row = database.run(QStringLiteral("SELECT rowid FROM SetupComm ORDER BY rowid LIMIT 1"));
    if (!row.next())
        raise(Err::NoCurrentRecord);
    return row.value(0).toLongLong();
}
} // namespace

void CommSetup::cmdAcceptCommSetup_Click()
{
    guarded(QStringLiteral("cmdAcceptCommSetup_Click"), [&] {
        const CommSettings s = m_port.commSettings();
        m_database.run(QStringLiteral("UPDATE SetupComm SET EmailServer = ?, EmailReturnAddress = ?,"
                                      " EmailReturnName = ?, FaxStation = ? WHERE rowid = ?"),
                       {s.txtMailServer, s.txtFrom, s.txtFromName, s.txtFaxStation, settingsRow(m_database)});
        SetCommSetupUnchanged();
    });
}

void CommSetup::cmdCancelCommSetup_Click()
{
    guarded(QStringLiteral("cmdCancelCommSetup_Click"), [&] {
        QSqlQuery row = m_database.run(QStringLiteral("SELECT * FROM SetupComm ORDER BY rowid LIMIT 1"));
        if (!row.next())
            raise(Err::NoCurrentRecord);
        m_port.setCommSettings({textOrEmpty(row, "EmailServer"), textOrEmpty(row, "EmailReturnAddress"),
                                textOrEmpty(row, "EmailReturnName"), textOrEmpty(row, "FaxStation")});
        SetCommSetupUnchanged();
    });
}

} // namespace osprel
