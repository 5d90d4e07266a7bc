// The fax device finder: reading AT+FCLASS=? answers, and searches over pseudo-terminal modems.

#include "FaxFinder.h"
#include "ScriptedModem.h"
#include "SoftModem.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace osprel;
using osprel::faxlab::ScriptedModem;
using osprel::faxlab::SoftModem;

class TestFaxFinder : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { QVERIFY(m_dir.isValid()); }

    void parseClasses_data()
    {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<bool>("fax");
        QTest::addColumn<bool>("c1");
        QTest::addColumn<bool>("c2");
        QTest::addColumn<bool>("c20");
        QTest::newRow("T.31 modem") << QByteArray("0,1,1.0") << true << true << false << false;
        QTest::newRow("all classes") << QByteArray("0,1,2,2.0") << true << true << true << true;
        QTest::newRow("range in parentheses") << QByteArray("(0-2,2.0)") << true << true << true << true;
        QTest::newRow("prefixed") << QByteArray("+FCLASS: 0,2") << true << false << true << false;
        QTest::newRow("spaces") << QByteArray(" 0, 1.0 , 2.0 ") << true << true << false << true;
        QTest::newRow("2.1 is not 2.0") << QByteArray("0,1,2.1") << true << true << false << false;
        QTest::newRow("data modem only") << QByteArray("0") << false << false << false << false;
        QTest::newRow("voice classes") << QByteArray("0,8") << false << false << false << false;
        QTest::newRow("not a list") << QByteArray("CONNECT 9600") << false << false << false << false;
        QTest::newRow("empty") << QByteArray("") << false << false << false << false;
    }

    void parseClasses()
    {
        QFETCH(QByteArray, answer);
        QFETCH(bool, fax);
        QFETCH(bool, c1);
        QFETCH(bool, c2);
        QFETCH(bool, c20);
        FaxDeviceInfo info;
        QCOMPARE(FaxFinder::parseClasses(answer, &info), fax);
        if (fax) {
            QCOMPARE(info.class1, c1);
            QCOMPARE(info.class2, c2);
            QCOMPARE(info.class20, c20);
        }
    }

    // Nothing that answers as a fax modem: a path that does not exist, a device that stays silent, a data modem.
    void searchFindsNone()
    {
        ScriptedModem::Options silentOpt;
        silentOpt.linkPath = m_dir.filePath(QStringLiteral("silent"));
        silentOpt.classes = QByteArray();
        ScriptedModem silent(silentOpt);
        ScriptedModem::Options dataOpt;
        dataOpt.linkPath = m_dir.filePath(QStringLiteral("datamodem"));
        dataOpt.classes = "0";
        ScriptedModem data(dataOpt);
        QVERIFY(silent.start());
        QVERIFY(data.start());

        FaxFinder finder;
        finder.setSearchSystemPorts(false);
        finder.setProbeTimeout(300);
        finder.setExtraPaths({m_dir.filePath(QStringLiteral("missing")), silent.linkPath(), data.linkPath()});
        QCOMPARE(finder.search(), 0);
        QCOMPARE(finder.count(), 0);
        QCOMPARE(finder.item(0).port, QString());
        QCOMPARE(silent.result().commands, QStringList{QStringLiteral("AT+FCLASS=?")});
    }

    // Two fax modems, in the order configured: the software Class 1 modem and a Class 2 / 2.0 modem.
    void searchFindsTwoDevices()
    {
        SoftModem class1({m_dir.filePath(QStringLiteral("class1")), m_dir.filePath(QStringLiteral("unused.tif"))});
        ScriptedModem class2({m_dir.filePath(QStringLiteral("class2"))});
        QVERIFY(class1.start());
        QVERIFY(class2.start());

        FaxFinder finder;
        finder.setSearchSystemPorts(false);
        finder.setExtraPaths({class1.linkPath(), class2.linkPath(), class1.linkPath()});
        QCOMPARE(finder.search(), 2);
        const FaxDeviceInfo a = finder.item(0), b = finder.item(1);
        QCOMPARE(a.port, class1.linkPath());
        QVERIFY(a.class1 && !a.class2 && !a.class20);
        QCOMPARE(b.port, class2.linkPath());
        QVERIFY(!b.class1 && b.class2 && b.class20);
        // A second search starts afresh.
        finder.setExtraPaths({class2.linkPath()});
        QCOMPARE(finder.search(), 1);
        QCOMPARE(finder.item(0).port, class2.linkPath());
    }

    // A chamber controller on a serial port must never see AT+FCLASS=?. Listed as not a modem (here by the device
    // its symlink leads to) it is never opened, though it stands in the list of ports; left in, it is probed, answers
    // garbage, and is not taken for a modem.
    void notAModemIsNeverWritten()
    {
        ScriptedModem a({m_dir.filePath(QStringLiteral("modem-a")), "0,1"});
        ScriptedModem b({m_dir.filePath(QStringLiteral("modem-b")), "0,2,2.0"});
        ScriptedModem::Options controllerOpt;
        controllerOpt.linkPath = m_dir.filePath(QStringLiteral("chamber"));
        controllerOpt.classes = "\x02T1=85.0;T2=60.2\x03";
        ScriptedModem controller(controllerOpt);
        QVERIFY(a.start() && b.start() && controller.start());

        SearchPolicy policy;
        policy.ports = QStringList{a.linkPath(), controller.linkPath(), b.linkPath()};
        policy.notModems = QStringList{QFileInfo(controller.linkPath()).canonicalFilePath()};
        FaxFinder finder;
        finder.setProbeTimeout(500);
        finder.setPolicy(policy);
        QCOMPARE(finder.search(), 2);
        QCOMPARE(finder.item(0).port, a.linkPath());
        QCOMPARE(finder.item(1).port, b.linkPath());
        QVERIFY(controller.result().commands.isEmpty());

        policy.notModems.clear();
        finder.setPolicy(policy);
        QCOMPARE(finder.search(), 2);
        QCOMPARE(controller.result().commands, QStringList{QStringLiteral("AT+FCLASS=?")});
    }

    // By default only the listed ports; "all serial ports" adds the system's after them, less those not modems.
    void candidatesFollowThePolicy()
    {
        FaxFinder finder;
        SearchPolicy policy;
        policy.ports = QStringList{QStringLiteral("/tmp/modem-a"), QString(), QStringLiteral("/tmp/modem-a")};
        finder.setPolicy(policy);
        QCOMPARE(finder.candidates(), QStringList{QStringLiteral("/tmp/modem-a")});

        policy.allSerialPorts = true;
        policy.notModems = QStringList{QStringLiteral("/dev/ttyS0")};
        finder.setPolicy(policy);
        const QStringList c = finder.candidates();
        QCOMPARE(c.first(), QStringLiteral("/tmp/modem-a"));
        QVERIFY(!c.contains(QStringLiteral("/dev/ttyS0")));
        const QRegularExpression serial(QStringLiteral("^/dev/tty(S|USB|ACM)\\d+$"));
        for (int i = 1; i < c.size(); ++i)
            QVERIFY2(serial.match(c.at(i)).hasMatch(), qPrintable(c.at(i)));
        finder.setSearchSystemPorts(false); // the test environment's own switch overrides the policy
        QCOMPARE(finder.candidates(), QStringList{QStringLiteral("/tmp/modem-a")});
    }

private:
    QTemporaryDir m_dir;
};

QTEST_MAIN(TestFaxFinder)
#include "tst_faxfinder.moc"
