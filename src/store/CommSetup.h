#pragma once
// The communication setup page's Accept and Cancel: the mail server, the sender and the fax station, kept in the
// one SetupComm row.

#include "StorePort.h"

namespace osprel {

class Database;

// The four boxes as they stand, and the page's changed mark.
class CommSetupPort : public StorePort
{
public:
    virtual CommSettings commSettings() const = 0;
    virtual void setCommSetupChanged(bool changed) = 0;
};

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

} // namespace osprel
