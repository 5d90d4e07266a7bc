#pragma once
// What fax delivery needs of the window: the fax device field, the advanced modem panel, the fax enable box, the
// test-fax fields and the message panel.

#include "SendSwitches.h"

#include <QString>

namespace osprel {

class FaxPort : public virtual SendSwitches
{
public:
    // txtFaxDevice, shown at once (the device search blocks the window while it runs).
    virtual void setTxtFaxDevice(const QString &text) = 0;
    // The advanced modem panel picAdvModemSetup.
    virtual void showAdvModemSetup(bool open) = 0;
    virtual QString txtConStr() const = 0;
    virtual void setTxtConStr(const QString &text) = 0;
    // optModemClass(0..3): 0 automatic, 1 Class 1, 2 Class 2, 3 Class 2.0.
    virtual int selectedModemClassOption() const = 0;
    virtual void selectModemClassOption(int option) = 0;
    virtual void setModemClassCaption(int option, const QString &caption) = 0;
    virtual void setLblCurrentClass(const QString &text) = 0;
    // cmdAcceptModemSetup and cmdCancelModemSetup.
    virtual void setModemSetupButtonsEnabled(bool enabled) = 0;
    virtual bool chkDetailModemLogging() const = 0;
    virtual void setChkEnableFax(bool checked) = 0;
    // The fax recipient list, usable or greyed out.
    virtual void setFaxListEnabled(bool enabled) = 0;
    virtual QString txtTestRcpFName() const = 0;
    virtual QString txtTestFaxNumber() const = 0;
    virtual QString txtTestFaxMessage() const = 0;
    virtual void setTxtTestFaxProg(const QString &text) = 0;
    virtual void showMessage(const QString &title, const QString &text) = 0;
    // The main window's message panel.
    virtual void showPanelMessage(const QString &text) = 0;
};

} // namespace osprel
