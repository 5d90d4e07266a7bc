#pragma once
// The fax modem: finding it on the serial ports, choosing its fax class, and the modem settings (initialisation
// string and class option) kept in SetupModem.

#include "ModemSettings.h"

#include <QString>
#include <functional>

namespace osprel {

class Database;
class FaxEngine;
class FaxFinder;
class FaxPagePort;
class ModemPanelPort;
class FormLists;
struct FaxDeviceInfo;

class FaxDevice
{
public:
    FaxDevice(FaxEngine &engine, FaxFinder &finder, const Database &database, const FormLists &lists, FaxPagePort &page,
              ModemPanelPort &panel);

    // Refused while a call is in progress: the search would take the modem from under it.
    qint16 FindDevice();
    // Start-up with fax messaging on at the last exit: the device used last, checked with one probe and no search.
    // True when it answers with its class; the caller then keeps fax messaging on.
    bool openLastDevice();
    // How a found device switches fax messaging on: the same path as a click on the box (stored, list refreshed).
    void setEnableFaxHandler(std::function<void()> handler) { m_enableFax = std::move(handler); }
    void InitModemSettings();
    void cmdAdvSetup_Click();
    void cmdDefaultInitStr_Click();
    void cmdAcceptModemSetup_Click();
    void cmdCancelModemSetup_Click();
    // A class option chosen or the initialisation string edited: the panel's Accept and Cancel come on.
    void modemSetupChanged();
    void cmdShutUp_Click();
    void cmdTalkToMe_Click();

    bool gblnFaxDeviceFound = false;
    QString deviceDescription;  // of the device in use
    qint16 nextDeviceIndex = 0; // the next search takes this device of the finder's list
    qint16 failedSearches = 0;

    // The search as the environment sets it: paths in OSPREL_FAX_DEVICES (a modem on an unusual port, or a
    // software modem) are searched after the listed ports; OSPREL_FAX_SYSTEM_PORTS=0 keeps the system's serial
    // ports out even when the settings ask for all of them.
    static void configureFinder(FaxFinder &finder);

    // "Class 1 2 2.0 Modem on Port /dev/ttyS0."
    static QString description(const FaxDeviceInfo &device);

private:
    void chooseClass(const FaxDeviceInfo &device);
    void showClassSupport(const FaxDeviceInfo &device);
    void loadModemSettings();
    void rememberDevice(const FaxDeviceInfo &device);

    FaxEngine &m_engine;
    FaxFinder &m_finder;
    const Database &m_database;
    const FormLists &m_lists;
    FaxPagePort &m_page;
    ModemPanelPort &m_panel;
    LastDevice m_last;
    std::function<void()> m_enableFax;
};

} // namespace osprel
