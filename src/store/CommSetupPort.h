#pragma once
// The Comm Setup page as the store sees it: the mail server, the sender and the fax station, the two boxes that
// switch messaging on, and the page's changed mark.

#include "SendSwitches.h"

#include <QString>

namespace osprel {

struct CommSettings
{
    QString txtMailServer, txtFrom, txtFromName, txtFaxStation;
};

class CommSetupPort : public virtual SendSwitches
{
public:
    virtual CommSettings commSettings() const = 0;
    virtual void setCommSettings(const CommSettings &settings) = 0;
    virtual void setChkEnableEmail(bool checked) = 0;
    virtual void setChkEnableFax(bool checked) = 0;
    // Accept and Cancel enabled and the change warning shown, or not.
    virtual void setCommSetupChanged(bool changed) = 0;
};

} // namespace osprel
