// From alarm to fax: an alert handed in over a real private bus becomes a fax that the server sends through a
// software fax modem (spandsp's T.31) to a receiving fax terminal; the page arrives, the history records it, and
// the chamber program hears of it. A test fax and a device search asked for while that fax is on the line are
// refused and leave it alone.

#include "FaxDevice.h"
#include "FaxEngine.h"
#include "FaxFinder.h"
#include "Globals.h"
#include "InProcessServer.h"
#include "SoftModem.h"
#include "pages/CommSetupPage.h"

#include <QLineEdit>
#include <QProcess>
#include <QSqlQuery>
#include <QtTest>

using namespace osprel;
using osprel::faxlab::SoftModem;

class TestFaxE2E : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void anAlertArrivesAsAFax()
    {
        QTemporaryDir lab;
        SoftModem::Options options;
        options.linkPath = lab.filePath(QStringLiteral("ttyFAX0"));
        options.receivedTiff = lab.filePath(QStringLiteral("received.tif"));
        SoftModem modem(options);
        QString error;
        QVERIFY2(modem.start(&error), qPrintable(error));

        InProcessServer fixture(0.05);
        QVERIFY2(fixture.start(
                     [](Database &db) {
                         db.run(QStringLiteral("INSERT INTO Contacts (LastName, FirstName, FaxEnabled, FaxNumber)"
                                               " VALUES ('Roe', 'Al', 1, '5550002222')"));
                         db.run(QStringLiteral("UPDATE SetupComm SET FaxStation = '+1 555 0100 Osprel Lab'"));
                     },
                     &error),
                 qPrintable(error));
        EmailFaxServer &server = fixture.server();
        server.faxFinder().setSearchSystemPorts(false);
        server.faxFinder().setExtraPaths({modem.linkPath()});
        server.faxDevice().FindDevice();
        QVERIFY(server.faxDevice().gblnFaxDeviceFound);
        QVERIFY(
            fixture.window().commSetupPage()->chkEnableFax()); // a device and a fax recipient: fax messaging comes on

        QVERIFY(fixture.link());
        QVERIFY(fixture.sendAlert(QStringLiteral("31|4;Chamber 4;Walk-in;On;QLM V;T/H;Running;Yes|999;CH1 actual high|"
                                                 "85;91;100;0|60;58;40;0|5005|9:55 pm")));
        QTRY_COMPARE_WITH_TIMEOUT(server.faxEngine().state(), int(FaxEngine::InCall), 20000);
        CommSetupPage &page = *fixture.window().commSetupPage();
        page.setTestFaxFields(QStringLiteral("Pat"), QStringLiteral("5550199"), QStringLiteral("test"));
        server.faxQueue().cmdTestFax_Click();
        server.faxDevice().FindDevice();
        QCOMPARE(page.ui.txtTestFaxProg->text(), QStringLiteral("Device currently in use"));
        QVERIFY(!g.gblnFaxTest);
        QCOMPARE(server.log().lstFaxStatus()->stringList().count(QStringLiteral("!!!!! Device currently in use !!!!!")),
                 2);
        QVERIFY(server.faxDevice().gblnFaxDeviceFound);

        QTRY_COMPARE_WITH_TIMEOUT(fixture.events(QStringLiteral("AlertStatus")).size(), 1, 60000);
        QCOMPARE(fixture.events(QStringLiteral("AlertStatus")).first().arguments(), QVariantList({31, short(2), true}));

        const SoftModem::Result received = modem.result();
        QCOMPARE(received.dialled, QStringLiteral("15550002222"));
        QCOMPARE(received.calls, 1);                                // the live fax went out once
        QCOMPARE(received.remoteId, QStringLiteral("+1 555 0100")); // the station's number as TSI
        QCOMPARE(received.pages, 1);
        QCOMPARE(received.badRows, 0);
        QProcess info;
        info.start(QStringLiteral("tiffinfo"), {options.receivedTiff});
        QVERIFY(info.waitForFinished(10000));
        QCOMPARE(info.readAllStandardOutput().count("TIFF Directory"), 1);

        QCOMPARE(server.lists().lvwHist[1].text(1, 2), QStringLiteral("Sent"));
        QVERIFY(server.lists().lvwSendFaxQue.isEmpty());
        QSqlQuery row =
            server.database().run(QStringLiteral("SELECT Status || '|' || Address || '|' || AlarmID FROM FaxHistory"));
        QVERIFY(row.next());
        QCOMPARE(row.value(0).toString(), QStringLiteral("Sent|5550002222|31"));
        QVERIFY(!row.next());
        QVERIFY(
            fixture.server().log().lstFaxStatus()->stringList().contains(QStringLiteral("*** Fax sent successfully")));
    }
};

QTEST_MAIN(TestFaxE2E)
#include "tst_fax_e2e.moc"
