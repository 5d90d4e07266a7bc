#pragma once
// The advanced modem panel (picAdvModemSetup): the initialisation string, the fax class options, the current
// class, its Accept and Cancel, and detail logging.

#include "FaxFinder.h"
#include "ModemProfile.h"

#include <QString>

namespace osprel {

class ModemPanelPort
{
public:
    virtual ~ModemPanelPort() = default;
    // Opens the panel over the page ("Setup...") or closes it.
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
    // The modem profile and the device search's ports, as the panel shows them.
    virtual ModemProfile modemProfile() const = 0;
    virtual void setModemProfile(const ModemProfile &profile) = 0;
    virtual SearchPolicy searchPolicy() const = 0;
    virtual void setSearchPolicy(const SearchPolicy &policy) = 0;
};

} // namespace osprel
