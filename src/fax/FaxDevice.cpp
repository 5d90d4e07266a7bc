#include "FaxDevice.h"

#include "Database.h"
#include "ErrorReport.h"
#include "FaxEngine.h"
#include "FaxFinder.h"
#include "FaxPort.h"
#include "FormLists.h"
#include "Log.h"

#include <QSqlQuery>
#include <QVariant>

namespace osprel {

namespace {
const QString kDefaultInitString = QStringLiteral("AT&FE0V1&C1&D2S0=0");

QString supported(const char *name, bool yes)
{
    return QString::fromLatin1(name) + (yes ? QStringLiteral(" - Supported") : QStringLiteral(" - Unsupported"));
}

qint64 modemRow(const Database &database)
{
    QSqlQuery row = database.run(QStringLiteral("SELECT rowid FROM SetupModem ORDER BY rowid LIMIT 1"));
    if (!row.next())
        raise(Err::NoCurrentRecord);
    return row.value(0).toLongLong();
}
} // namespace

FaxDevice::FaxDevice(FaxEngine &engine, FaxFinder &finder, const Database &database, const FormLists &lists,
                     FaxPort &port)
    : m_engine(engine), m_finder(finder), m_database(database), m_lists(lists), m_port(port)
{
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
        m_port.setTxtFaxDevice(QStringLiteral("Searching for device..."));
        const int found = m_finder.search();
        if (found <= 0) {
            const QString none = QStringLiteral("No fax devices detected.");
            m_port.setTxtFaxDevice(none);
            DumpStr(none, Log::FaxList);
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
        m_port.setTxtFaxDevice(deviceDescription);
        if (m_port.selectedModemClassOption() == 0)
            chooseClass(device);
        m_port.setModemClassCaption(3, supported("Class 2.0", device.class20));
        m_port.setModemClassCaption(2, supported("Class 2", device.class2));
        m_port.setModemClassCaption(1, supported("Class 1", device.class1));
        m_engine.setPort(device.port);
        nextDeviceIndex += 1; // the next search takes the next device, wrapping to the first
        gblnFaxDeviceFound = true;
        if (!m_lists.lvwFaxContacts.isEmpty())
            m_port.setChkEnableFax(true);
    });
    return 0;
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
    m_port.setTxtConStr(textOf(row, "DevInitStr"));
    m_port.selectModemClassOption(row.value(1).toInt());
}

void FaxDevice::InitModemSettings()
{
    guarded(QStringLiteral("InitModemSettings"), [&] {
        loadModemSettings();
        m_engine.setInitString(m_port.txtConStr());
        const int option = m_port.selectedModemClassOption();
        if (option >= 1 && option <= 3)
            m_engine.setFaxClass(option); // with 0 (automatic) the device search chooses
        m_port.setModemSetupButtonsEnabled(false);
        m_port.showAdvModemSetup(false);
    });
}

void FaxDevice::cmdAdvSetup_Click()
{
    guarded(QStringLiteral("cmdAdvSetup_Click"), [&] {
        m_port.showAdvModemSetup(true);
        QString current = QString::number(m_engine.faxClass()) + u' ';
        if (current.contains(u'3'))
            current = QStringLiteral(" 2.0");
        m_port.setLblCurrentClass(current);
    });
}

void FaxDevice::cmdDefaultInitStr_Click()
{
    m_port.setTxtConStr(kDefaultInitString);
    modemSetupChanged();
}

void FaxDevice::modemSetupChanged()
{
    m_port.setModemSetupButtonsEnabled(true);
}

void FaxDevice::cmdAcceptModemSetup_Click()
{
    guarded(QStringLiteral("cmdAcceptModemSetup_Click"), [&] {
        m_engine.setInitString(m_port.txtConStr());
        const int option = m_port.selectedModemClassOption();
        if (option == 0) {
            if (m_finder.count() > 0) // without a device found the class stays as it was
                chooseClass(m_finder.item(qBound(0, nextDeviceIndex - 1, m_finder.count() - 1)));
        } else if (option >= 1 && option <= 3) {
            m_engine.setFaxClass(option);
        }
        m_database.run(QStringLiteral("UPDATE SetupModem SET DevInitStr = ?, ClassOptBtn = ? WHERE rowid = ?"),
                       {m_port.txtConStr(), option, modemRow(m_database)});
        m_port.setModemSetupButtonsEnabled(false);
        m_port.showAdvModemSetup(false);
    });
}

void FaxDevice::cmdCancelModemSetup_Click()
{
    guarded(QStringLiteral("cmdCancelModemSetup_Click"), [&] {
        loadModemSettings();
        m_port.setModemSetupButtonsEnabled(false);
        m_port.showAdvModemSetup(false);
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
