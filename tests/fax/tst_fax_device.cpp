// Finding the fax modem: a failed search is tried once more, found devices are taken in turn, and the automatic
// class choice prefers Class 1; the modem settings load and save.

#include "FaxDevice.h"
#include "FaxEngine.h"
#include "FaxFinder.h"
#include "FaxQueue.h"
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
        // No port to search at all (the default): the log says where to list one, once per search.
        m_finder.setExtraPaths({});
        m_device->FindDevice();
        QCOMPARE(m_f->log->lstFaxStatus()->rowCount(), 7);
        QVERIFY(m_f->log->lstFaxStatus()->stringList().at(5).startsWith(QLatin1String("No serial port may be")));
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

    // A found device with fax recipients switches fax messaging on as a click on the box does (stored for the next
    // start, fax list enabled) and is kept as the device last used. A search during a call is refused and leaves the
    // call's modem alone. At the next start the kept device is checked with one probe, with no search; when it is
    // gone nothing is searched and nothing is logged as "not detected".
    void searchPolicyAroundCallsAndStartUp()
    {
        ScriptedModem modem({m_f->dir.filePath(QStringLiteral("modem")), "0,2,2.0"});
        QVERIFY(modem.start());
        FaxQueue queue(m_engine, *m_device, m_f->lists, m_f->timers, m_f->db, *m_window, *m_window, *m_window,
                       *m_window);
        m_device->InitModemSettings();
        m_finder.setExtraPaths({modem.linkPath()});
        m_f->lists.lvwFaxContacts.add(QStringList{"Roe", "Al", "5550002222"});
        m_window->fax = false;
        m_window->faxListEnabled = false;
        m_window->classOption = 0;
        m_device->FindDevice();
        QVERIFY(m_device->gblnFaxDeviceFound);
        QVERIFY(m_window->fax);
        QVERIFY(m_window->faxListEnabled);
        QSqlQuery stored = m_f->db.run(QStringLiteral("SELECT c.FaxEnabledAtBoot || '|' || p.LastPort || '|' || "
                                                      "p.LastClass FROM SetupComm c, SetupModemProfile p"));
        QVERIFY(stored.next());
        QCOMPARE(stored.value(0).toString(), QStringLiteral("1|") + modem.linkPath() + QStringLiteral("|2"));

        ScriptedModem silent({m_f->dir.filePath(QStringLiteral("busy-line")), QByteArray()});
        QVERIFY(silent.start());
        m_engine.setPort(silent.linkPath());
        m_engine.setFileToSend(m_f->dir.filePath(QStringLiteral("none.fmf")));
        QVERIFY(m_engine.send());
        m_device->FindDevice();
        QCOMPARE(m_f->log->lstFaxStatus()->stringList().last(), QStringLiteral("!!!!! Device currently in use !!!!!"));
        QVERIFY(m_device->gblnFaxDeviceFound);
        QCOMPARE(m_engine.port(), silent.linkPath());
        QCOMPARE(modem.result().commands.count(QStringLiteral("AT+FCLASS=?")), 1);
        m_engine.stop();

        const int logged = m_f->log->lstFaxStatus()->rowCount();
        FaxEngine restarted;
        FaxFinder finder; // no ports to search at all: only the kept device can be found
        FaxDevice atStart(restarted, finder, m_f->db, m_f->lists, *m_window, *m_window);
        atStart.InitModemSettings();
        QVERIFY(atStart.openLastDevice());
        QVERIFY(atStart.gblnFaxDeviceFound);
        QCOMPARE(restarted.port(), modem.linkPath());
        QCOMPARE(restarted.faxClass(), int(FaxEngine::Class2));
        QCOMPARE(modem.result().commands.count(QStringLiteral("AT+FCLASS=?")), 2);

        modem.stop();
        FaxDevice modemGone(restarted, finder, m_f->db, m_f->lists, *m_window, *m_window);
        modemGone.InitModemSettings();
        QVERIFY(!modemGone.openLastDevice());
        QVERIFY(!modemGone.gblnFaxDeviceFound);
        QVERIFY(
            !m_f->log->lstFaxStatus()->stringList().mid(logged).contains(QStringLiteral("No fax devices detected.")));
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

        // The profile and the search's ports are stored with them, and come back at the next start.
        QCOMPARE(m_window->profile.flowControl, int(ModemProfile::RtsCts));
        m_window->profile.flowControl = ModemProfile::XonXoff;
        m_window->profile.modemAppendsRtc = false;
        m_window->search.ports = QStringList{QStringLiteral("/dev/ttyUSB0")};
        m_window->search.notModems = QStringList{QStringLiteral("/dev/ttyS0"), QStringLiteral("/dev/ttyS1")};
        m_device->cmdAcceptModemSetup_Click();
        QCOMPARE(m_engine.profile().flowControl, int(ModemProfile::XonXoff));
        QVERIFY(m_finder.isNotModem(QStringLiteral("/dev/ttyS1")));
        m_window->profile = ModemProfile();
        m_window->search = SearchPolicy();
        m_device->InitModemSettings();
        QCOMPARE(m_window->profile.flowControl, int(ModemProfile::XonXoff));
        QVERIFY(!m_window->profile.modemAppendsRtc);
        QCOMPARE(m_window->search.ports, QStringList{QStringLiteral("/dev/ttyUSB0")});
        QCOMPARE(m_window->search.notModems.size(), 2);
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
