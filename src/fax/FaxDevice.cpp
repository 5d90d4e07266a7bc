#include "FaxDevice.h"

#include "Database.h"
#include "ErrorReport.h"
#include "FaxEngine.h"
#include "FaxFinder.h"
#include "FaxPagePort.h"
#include "FormLists.h"
#include "Log.h"
#include "ModemPanelPort.h"

#include <QSqlQuery>
#include <QVariant>

namespace osprel {

namespace {
const QString kDefaultInitString = QStringLiteral("AT&FE0V1&C1&D2S0=0");

QString supported(const char *name, bool yes)
{
    return QString::fromLatin1(name) + (yes ? QStringLiteral(" - Supported") : QStringLiteral(" - Unsupported"));
}

} // namespace

FaxDevice::FaxDevice(FaxEngine &engine, FaxFinder &finder, const Database &database, const FormLists &lists,
                     FaxPagePort &page, ModemPanelPort &panel)
    : m_engine(engine), m_finder(finder), m_database(database), m_lists(lists), m_page(page), m_panel(panel)
{
}

void FaxDevice::configureFinder(FaxFinder &finder)
{
    finder.setExtraPaths(qEnvironmentVariable("OSPREL_FAX_DEVICES").split(u':', Qt::SkipEmptyParts));
    // Even "search all serial ports" leaves the system's ports alone with OSPREL_FAX_SYSTEM_PORTS=0.
    finder.setSearchSystemPorts(qEnvironmentVariable("OSPREL_FAX_SYSTEM_PORTS") != QLatin1String("0"));
}

QString FaxDevice::description(const FaxDeviceInfo &device)
{
    return QStringLiteral("Class ") + (device.class1 ? QStringLiteral("1 ") : QString()) +
           (device.class2 ? QStringLiteral("2 ") : QString()) + (device.class20 ? QStringLiteral("2.0 ") : QString()) +
           QStringLiteral("Modem on Port ") + device.port + u'.';
}

qint16 FaxDevice::FindDevice()
{
    guarded(QStringLiteral("FindDevice"), [&] {
        if (m_engine.state() == FaxEngine::InCall) {
            DumpStr(QStringLiteral("!!!!! Device currently in use !!!!!"), Log::FaxList);
            return;
        }
        m_page.setTxtFaxDevice(QStringLiteral("Searching for device..."));
        const int found = m_finder.search();
        if (found <= 0) {
            const QString none = QStringLiteral("No fax devices detected.");
            m_page.setTxtFaxDevice(none);
            DumpStr(none, Log::FaxList);
            if (m_finder.candidates().isEmpty() && failedSearches == 0)
                DumpStr(QStringLiteral("No serial port may be searched: list the modem's port under Setup... "
                                       "(Modem ports), or choose 'Search all serial ports'."),
                        Log::FaxList);
            gblnFaxDeviceFound = false;
            // A failed search is tried once more; the next failure clears the count.
            failedSearches += 1;
            if (failedSearches < 2) {
                failedSearches = 2;
                FindDevice();
            } else {
                failedSearches = 0;
            }
            return;
        }
        if (nextDeviceIndex > found - 1)
            nextDeviceIndex = 0;
        const FaxDeviceInfo device = m_finder.item(nextDeviceIndex);
        deviceDescription = description(device);
        m_page.setTxtFaxDevice(deviceDescription);
        if (m_panel.selectedModemClassOption() == 0)
            chooseClass(device);
        showClassSupport(device);
        m_engine.setPort(device.port);
        nextDeviceIndex += 1; // the next search takes the next device, wrapping to the first
        gblnFaxDeviceFound = true;
        rememberDevice(device);
        if (!m_lists.lvwFaxContacts.isEmpty()) {
            if (m_enableFax)
                m_enableFax();
            else
                m_page.setChkEnableFax(true);
        }
    });
    return 0;
}

void FaxDevice::showClassSupport(const FaxDeviceInfo &device)
{
    m_panel.setModemClassCaption(3, supported("Class 2.0", device.class20));
    m_panel.setModemClassCaption(2, supported("Class 2", device.class2));
    m_panel.setModemClassCaption(1, supported("Class 1", device.class1));
}

// The device is kept for the next start; a file that cannot take it (read-only) does not undo the search.
void FaxDevice::rememberDevice(const FaxDeviceInfo &device)
{
    guarded(QStringLiteral("FindDevice"), [&] {
        m_last = LastDevice{device.port, m_engine.faxClass()};
        ModemSettings::saveLastDevice(m_database, m_last);
    });
}

bool FaxDevice::openLastDevice()
{
    bool opened = false;
    guarded(QStringLiteral("OpenLastDevice"), [&] {
        const int cls = m_last.faxClass;
        if (m_last.port.isEmpty() || cls < FaxEngine::Class1 || cls > FaxEngine::Class20 ||
            m_finder.isNotModem(m_last.port) || m_engine.state() == FaxEngine::InCall)
            return;
        FaxDeviceInfo device;
        if (!FaxFinder::probe(m_last.port, &device, m_finder.probeTimeout()))
            return;
        if (!(cls == FaxEngine::Class1 ? device.class1 : cls == FaxEngine::Class2 ? device.class2 : device.class20))
            return;
        if (m_panel.selectedModemClassOption() == 0)
            m_engine.setFaxClass(cls);
        m_engine.setPort(device.port);
        showClassSupport(device);
        deviceDescription = description(device);
        m_page.setTxtFaxDevice(deviceDescription);
        DumpStr(QStringLiteral("Fax device as at the last exit: ") + deviceDescription, Log::FaxList);
        gblnFaxDeviceFound = true;
        opened = true;
    });
    return opened;
}

// Tried in the order 2.0, 2, 1, each leaving the class as it is when unsupported: the last supported wins, so a
// device that has Class 1 always runs in Class 1.
void FaxDevice::chooseClass(const FaxDeviceInfo &device)
{
    if (device.class20)
        m_engine.setFaxClass(FaxEngine::Class20);
    if (device.class2)
        m_engine.setFaxClass(FaxEngine::Class2);
    if (device.class1)
        m_engine.setFaxClass(FaxEngine::Class1);
}

void FaxDevice::loadModemSettings()
{
    QSqlQuery row =
        m_database.run(QStringLiteral("SELECT DevInitStr, ClassOptBtn FROM SetupModem ORDER BY rowid LIMIT 1"));
    if (!row.next())
        raise(Err::NoCurrentRecord);
    m_panel.setTxtConStr(textOf(row, "DevInitStr"));
    m_panel.selectModemClassOption(row.value(1).toInt());
    const ModemSettings settings = ModemSettings::load(m_database);
    m_panel.setModemProfile(settings.profile);
    m_panel.setSearchPolicy(settings.search);
    m_last = settings.last;
}

void FaxDevice::InitModemSettings()
{
    guarded(QStringLiteral("InitModemSettings"), [&] {
        loadModemSettings();
        m_engine.setInitString(m_panel.txtConStr());
        m_engine.setProfile(m_panel.modemProfile());
        m_finder.setPolicy(m_panel.searchPolicy());
        const int option = m_panel.selectedModemClassOption();
        if (option >= 1 && option <= 3)
            m_engine.setFaxClass(option); // with 0 (automatic) the device search chooses
        m_panel.setModemSetupButtonsEnabled(false);
        m_panel.showAdvModemSetup(false);
    });
}

void FaxDevice::cmdAdvSetup_Click()
{
    guarded(QStringLiteral("cmdAdvSetup_Click"), [&] {
        m_panel.showAdvModemSetup(true);
        QString current = QString::number(m_engine.faxClass()) + u' ';
        if (current.contains(u'3'))
            current = QStringLiteral(" 2.0");
        m_panel.setLblCurrentClass(current);
    });
}

void FaxDevice::cmdDefaultInitStr_Click()
{
    m_panel.setTxtConStr(kDefaultInitString);
    modemSetupChanged();
}

void FaxDevice::modemSetupChanged()
{
    m_panel.setModemSetupButtonsEnabled(true);
}

void FaxDevice::cmdAcceptModemSetup_Click()
{
    guarded(QStringLiteral("cmdAcceptModemSetup_Click"), [&] {
        m_engine.setInitString(m_panel.txtConStr());
        const int option = m_panel.selectedModemClassOption();
        if (option == 0) {
            if (m_finder.count() > 0) // without a device found the class stays as it was
                chooseClass(m_finder.item(qBound(0, nextDeviceIndex - 1, m_finder.count() - 1)));
        } else if (option >= 1 && option <= 3) {
            m_engine.setFaxClass(option);
        }
        m_engine.setProfile(m_panel.modemProfile());
        m_finder.setPolicy(m_panel.searchPolicy());
        m_database.run(QStringLiteral("UPDATE SetupModem SET DevInitStr = ?, ClassOptBtn = ? WHERE rowid = ?"),
                       {m_panel.txtConStr(), option, m_database.firstRowId(QStringLiteral("SetupModem"))});
        ModemSettings::saveSetup(m_database, m_panel.modemProfile(), m_panel.searchPolicy());
        m_panel.setModemSetupButtonsEnabled(false);
        m_panel.showAdvModemSetup(false);
    });
}

void FaxDevice::cmdCancelModemSetup_Click()
{
    guarded(QStringLiteral("cmdCancelModemSetup_Click"), [&] {
        loadModemSettings();
        m_panel.setModemSetupButtonsEnabled(false);
        m_panel.showAdvModemSetup(false);
    });
}

void FaxDevice::cmdShutUp_Click()
{
    m_engine.setInitString(QStringLiteral("AT M0")); // speaker off
}

void FaxDevice::cmdTalkToMe_Click()
{
    m_engine.setInitString(QStringLiteral("AT M1")); // speaker on
}

} // namespace osprel
