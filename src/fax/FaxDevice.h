#pragma once
// The fax modem: finding it on the serial ports, choosing its fax class, and the modem settings (initialisation
// string and class option) kept in SetupModem.

#include <QString>

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

    qint16 FindDevice();
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
    // software modem) are searched besides the system's serial ports, which OSPREL_FAX_SYSTEM_PORTS=0 leaves out.
    static void configureFinder(FaxFinder &finder);

    // "Class 1 2 2.0 Modem on Port /dev/ttyS0."
    static QString description(const FaxDeviceInfo &device);

private:
    void chooseClass(const FaxDeviceInfo &device);
    void loadModemSettings();

    FaxEngine &m_engine;
    FaxFinder &m_finder;
    const Database &m_database;
    const FormLists &m_lists;
    FaxPagePort &m_page;
    ModemPanelPort &m_panel;
};

} // namespace osprel
