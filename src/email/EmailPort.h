#pragma once
// What the e-mail delivery reads of the main window: the return address, the mail server and the SMTP choice.

#include "MailSettings.h"

#include <QString>

namespace osprel {

class EmailPort
{
public:
    virtual ~EmailPort() = default;

    // The return address (text box txtFrom).
    virtual QString txtFrom() const = 0;
    // The mail server as "host" or "host:port" (text box txtMailServer).
    virtual QString txtMailServer() const = 0;
    // True when the option button optSMTP is selected; false sends through the system mail program.
    virtual bool optSMTP() const = 0;
    // How the SMTP client secures, authenticates and times its sessions; a window without these fields sends as
    // an old-style relay expects (no encryption, no AUTH).
    virtual MailSettings mailSettings() const { return MailSettings(); }
};

} // namespace osprel
