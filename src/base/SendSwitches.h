#pragma once
// The two check boxes that switch e-mail and fax messaging on, as the queueing code reads them.

namespace osprel {

class SendSwitches
{
public:
    virtual ~SendSwitches() = default;
    virtual bool chkEnableEmail() const = 0;
    virtual bool chkEnableFax() const = 0;
};

} // namespace osprel
