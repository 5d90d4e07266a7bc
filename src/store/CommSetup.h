#pragma once
// The communication settings kept in the one SetupComm row: the Comm Setup page's Accept and Cancel, and the
// switches that say whether e-mail and fax messaging are on at the next start.

#include "CommSetupPort.h"

#include <QSqlQuery>

namespace osprel {

class Database;

class CommSetup
{
public:
    CommSetup(const Database &database, CommSetupPort &port) : m_database(database), m_port(port) {}

    void SetCommSetupChanged() { m_port.setCommSetupChanged(true); }
    void SetCommSetupUnchanged() { m_port.setCommSetupChanged(false); }
    void cmdAcceptCommSetup_Click();
    void cmdCancelCommSetup_Click();

private:
    const Database &m_database;
    CommSetupPort &m_port;
};

// The SetupComm row, positioned on it, with its columns by name; raises No current record when there is none.
QSqlQuery commSettingsRow(const Database &database);

enum class Messaging { Email, Fax };
// Stores whether e-mail or fax messaging is on at the next start (EmailEnabledAtBoot, FaxEnabledAtBoot); raises
// on failure.
void saveEnabledAtBoot(const Database &database, Messaging messaging, bool enabled);

} // namespace osprel
