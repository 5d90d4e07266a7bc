#pragma once
// The Comm Setup page as the e-mail queue and the test e-mail see it: the SMTP client's fields, the switch for
// e-mail messaging, and the test e-mail's boxes.

#include "EmailPort.h"
#include "SendSwitches.h"

#include <QString>

namespace osprel {

class EmailQueuePort : public EmailPort, public virtual SendSwitches
{
public:
    virtual QString txtTestEMailTo() const = 0;
    virtual QString txtTestEMailSubject() const = 0;
    virtual QString txtTestEMailMessage() const = 0;
    virtual void setTxtTestEmailProg(const QString &text) = 0;
    // The test e-mail's boxes as the page opens with them.
    virtual void setTestEmailFields(const QString &to, const QString &subject, const QString &message) = 0;
    // The mail fields beyond the server and the sender, as stored (a window without them ignores this).
    virtual void setMailSettings(const MailSettings &settings) { Q_UNUSED(settings) }
};

} // namespace osprel
