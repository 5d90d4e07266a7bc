#pragma once
// What the e-mail delivery reads of the main window: the return address, the mail server and the SMTP choice.

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
};

} // namespace osprel
