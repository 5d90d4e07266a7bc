#pragma once
// The Comm Setup page's mail fields beyond the server and the sender: loaded at start, checked and stored at
// Accept (with the server and the sender, which must be usable before anything is stored), put back at Cancel.
// The settings live in the table MailServerSecurity; the secrets in the SecretStore.

#include "MailSettings.h"
#include "SecretStore.h"

namespace osprel {

class Database;
class EmailQueuePort;
class Notices;

class MailSetup
{
public:
    MailSetup(const Database &database, EmailQueuePort &port, Notices &notices, SecretStore &secrets);

    // The stored settings onto the page; the secrets follow when the secret store answers.
    void load();
    // False, with a message box naming the problem, when the mail server or the return address cannot be used;
    // otherwise stores the mail fields and returns true.
    bool accept();
    void cancel() { load(); }

    // Why the page's server and return address cannot be used; empty when they can.
    static QString problem(const QString &server, const QString &from);
    // The settings of the table's one row (defaults when it has none); no secrets.
    static MailSettings stored(const Database &database);
    static void store(const Database &database, const MailSettings &settings);

private:
    const Database &m_database;
    EmailQueuePort &m_port;
    Notices &m_notices;
    SecretStore &m_secrets;
};

} // namespace osprel
