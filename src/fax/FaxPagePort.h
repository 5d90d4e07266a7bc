#pragma once
// The Comm Setup page as fax delivery sees it: the fax device field, the box that switches fax messaging on, and
// the test fax's boxes.

#include "SendSwitches.h"

#include <QString>

namespace osprel {

class FaxPagePort : public virtual SendSwitches
{
public:
    // txtFaxDevice, shown at once (the device search blocks the window while it runs).
    virtual void setTxtFaxDevice(const QString &text) = 0;
    virtual void setChkEnableFax(bool checked) = 0;
    virtual QString txtTestRcpFName() const = 0;
    virtual QString txtTestFaxNumber() const = 0;
    virtual QString txtTestFaxMessage() const = 0;
    virtual void setTxtTestFaxProg(const QString &text) = 0;
    // The test fax's boxes as the page opens with them.
    virtual void setTestFaxFields(const QString &name, const QString &number, const QString &message) = 0;
};

} // namespace osprel
