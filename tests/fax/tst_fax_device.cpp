// Finding the fax modem: a failed search is tried once more, found devices are taken in turn, and the automatic
// class choice prefers Class 1; the modem settings load and save.

#include "FaxDevice.h"
#include "FaxEngine.h"
#include "FaxFinder.h"
#include "Globals.h"
#include "HeadlessWindow.h"
#include "ScriptedModem.h"
#include "StoreFixture.h"

#include <QSqlQuery>
#include <QtTest>

using namespace osprel;
using osprel::faxlab::ScriptedModem;

class TestFaxDevice : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        m_f = std::make_unique<StoreFixture>();
        m_window = std::make_unique<HeadlessWindow>();
        m_finder = FaxFinder();
        m_finder.setSearchSystemPorts(false);
        m_finder.setProbeTimeout(500);
        m_device = std::make_unique<FaxDevice>(m_engine, m_finder, m_f->db, m_f->lists, *m_window, *m_window);
    }
    void cleanup()
    {
        m_device.reset();
        m_f.reset();
    }

    void noDeviceIsSearchedTwiceAndLoggedTwice()
    {
        m_finder.setExtraPaths({m_f->dir.filePath(QStringLiteral("no-such-modem"))});
        m_device->FindDevice();
        QVERIFY(!m_device->gblnFaxDeviceFound);
        QCOMPARE(m_window->faxDevice, QStringLiteral("No fax devices detected."));
        QCOMPARE(m_f->log->lstFaxStatus()->stringList(),
                 QStringList({"No fax devices detected.", "No fax devices detected."}));
        m_device->FindDevice(); // the count was cleared: again one search and one retry
        QCOMPARE(m_f->log->lstFaxStatus()->rowCount(), 4);
    }

    void devicesAreTakenInTurnWithTheirClass()
    {
        ScriptedModem allClasses({m_f->dir.filePath(QStringLiteral("modemA")), "0,1,2,2.0"});
        ScriptedModem noClass1({m_f->dir.filePath(QStringLiteral("modemB")), "0,2,2.0"});
        QVERIFY(allClasses.start());
        QVERIFY(noClass1.start());
        m_finder.setExtraPaths({allClasses.linkPath(), noClass1.linkPath()});
        m_f->lists.lvwFaxContacts.add(QStringList{"Roe", "Al", "5550002222"});
        m_window->fax = false;
        m_window->classOption = 0; // automatic

        m_device->FindDevice();
        QVERIFY(m_device->gblnFaxDeviceFound);
        QCOMPARE(m_window->faxDevice, QStringLiteral("Class 1 2 2.0 Modem on Port ") + allClasses.linkPath() + u'.');
        QCOMPARE(m_engine.port(), allClasses.linkPath());
        QCOMPARE(m_engine.faxClass(), int(FaxEngine::Class1)); // Class 1 wins whenever it is there
        QCOMPARE(m_window->classCaptions[1], QStringLiteral("Class 1 - Supported"));
        QVERIFY(m_window->fax); // fax recipients exist: fax messaging comes on

        m_device->FindDevice();
        QCOMPARE(m_engine.port(), noClass1.linkPath());
        QCOMPARE(m_engine.faxClass(), int(FaxEngine::Class2));
        QCOMPARE(m_window->classCaptions[1], QStringLiteral("Class 1 - Unsupported"));
        m_device->FindDevice();
        QCOMPARE(m_engine.port(), allClasses.linkPath());
    }

    void modemSettingsLoadAndSave()
    {
        m_device->InitModemSettings();
        QCOMPARE(m_window->initString, QStringLiteral("AT&FE0V1&C1&D2S0=0"));
        QVERIFY(!m_window->modemButtonsEnabled);

        // The automatic option with no device found leaves the class, but the settings are saved.
        m_engine.setFaxClass(FaxEngine::Class20);
        m_window->initString = QStringLiteral("ATZ");
        m_window->classOption = 0;
        m_device->cmdAcceptModemSetup_Click();
        QCOMPARE(m_engine.faxClass(), int(FaxEngine::Class20));
        QCOMPARE(m_engine.initString(), QStringLiteral("ATZ"));
        QSqlQuery row = m_f->db.run(QStringLiteral("SELECT DevInitStr || '|' || ClassOptBtn FROM SetupModem"));
        QVERIFY(row.next());
        QCOMPARE(row.value(0).toString(), QStringLiteral("ATZ|0"));

        m_device->cmdAdvSetup_Click();
        QCOMPARE(m_window->currentClass, QStringLiteral(" 2.0")); // class 3 is shown as 2.0
        m_device->cmdDefaultInitStr_Click();
        QVERIFY(m_window->modemButtonsEnabled);
        m_device->cmdCancelModemSetup_Click();
        QCOMPARE(m_window->initString, QStringLiteral("ATZ"));
        QVERIFY(!m_window->advModemOpen);
    }

private:
    std::unique_ptr<StoreFixture> m_f;
    std::unique_ptr<HeadlessWindow> m_window;
    FaxEngine m_engine;
    FaxFinder m_finder;
    std::unique_ptr<FaxDevice> m_device;
};

QTEST_GUILESS_MAIN(TestFaxDevice)
#include "tst_fax_device.moc"
