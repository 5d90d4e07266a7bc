#pragma once
// What the e-mail queue and the test e-mail need of the window beyond the SMTP client's fields.

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
    // The e-mail recipient list, usable (window background) or greyed out (scroll-bar colour).
    virtual void setEmailListEnabled(bool enabled) = 0;
    // The program's own message box: a title, a text, an OK button.
    virtual void showMessage(const QString &title, const QString &text) = 0;
};

} // namespace osprel
