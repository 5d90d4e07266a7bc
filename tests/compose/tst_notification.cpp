// The alert record and the notification text made from it.

#include "Log.h"
#include "Notification.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace osprel;

namespace {
const QString kAlert = QStringLiteral(
    "123 | 456; Warehouse 1 ;Chamber in the warehouse;On;QLM V;T/H;Running;Yes|999;  CH1 actual high alarm|"
    "200;210;100;0|100;95;100;0|3|9:55 pm");
}

class TestNotification : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        m_log = std::make_unique<Log>(m_dir.path());
        m_log->writeStartRecord(QString());
    }

    void aFullAlertGivesTheSummaryAndTheText()
    {
        AlertSummary summary;
        const QString text = FormatErrMsg(kAlert, summary);
        QCOMPARE(summary.line(),
                 QStringLiteral("123|Warehouse 1|CH1 actual high alarm|COMMAND_RESPONSE_ERROR|9:55 pm"));
        QCOMPARE(text.count(QStringLiteral("\r\n")), 27);
        const QStringList lines = text.split(QStringLiteral("\r\n"));
        QCOMPARE(lines.at(0), QStringLiteral("Chamber Notification"));
        QCOMPARE(lines.at(1), QString());
        QCOMPARE(lines.at(3), QStringLiteral("\tAlert ID: 123"));
        QCOMPARE(lines.at(5), QStringLiteral("\tChamber Name: Warehouse 1"));
        QCOMPARE(lines.at(14), QStringLiteral("\tError Message: CH1 actual high alarm"));
        QCOMPARE(lines.at(15), QStringLiteral("\tAlarm Category: COMMAND_RESPONSE_ERROR"));
        QCOMPARE(lines.at(16), QStringLiteral("\tAlarm Time: 9:55 pm"));
        QCOMPARE(lines.at(17), QStringLiteral("Channel 1 Data:"));
        QCOMPARE(lines.at(26), QStringLiteral("\tCH2 Cool/Dehumidify PID: 0"));
    }

    void shortAndShiftedAlerts()
    {
        AlertSummary summary;
        // A trailing ";" in the chamber group shifts every later value by one.
        const QStringList shifted =
            SplitString(QStringLiteral("1|2;Name;d;On;c;m;s;l;|9;msg|a;b;c;d|e;f;g;h|5"), summary);
        QCOMPARE(shifted.at(13), QStringLiteral("\tError Code: "));
        QCOMPARE(shifted.at(14), QStringLiteral("\tError Message: 9"));
        QCOMPARE(summary.errorMessage, QStringLiteral("9"));
        QCOMPARE(summary.alarmTime, QStringLiteral("5"));

        // Missing values still give their label lines; an empty category is index 0's name.
        const QString text = FormatErrMsg(QStringLiteral("7"), summary);
        QCOMPARE(text.count(QStringLiteral("\r\n")), 27);
        QVERIFY(text.contains(QStringLiteral("\tCH2 Actual: \r\n")));
        QVERIFY(text.contains(QStringLiteral("\tAlarm Category: COMM_ERROR\r\n")));
    }

    void twentyTwoValuesGiveNothingAndOneLogLine()
    {
        const int before = m_log->lstStatus()->rowCount();
        AlertSummary summary;
        const QString text = FormatErrMsg(kAlert + QStringLiteral(";extra"), summary);
        QVERIFY(text.isEmpty());
        QCOMPARE(m_log->lstStatus()->rowCount(), before + 1);
        QCOMPARE(m_log->lstStatus()->stringList().last(),
                 QStringLiteral("ErrorHandler 9: Subscript out of range (SplitString)"));
    }

    void aTooLargeCategoryNumberIsReportedNotWrapped()
    {
        AlertSummary summary;
        QVERIFY(
            SplitString(QString(kAlert).replace(QStringLiteral("|3|"), QStringLiteral("|70000|")), summary).isEmpty());
        QCOMPARE(m_log->lstStatus()->stringList().last(), QStringLiteral("ErrorHandler 6: Overflow (SplitString)"));
        QVERIFY(AddErrLables(QStringList(20)).isEmpty());
        QCOMPARE(m_log->lstStatus()->stringList().last(),
                 QStringLiteral("ErrorHandler 9: Subscript out of range (AddErrLables)"));
    }

private:
    QTemporaryDir m_dir;
    std::unique_ptr<Log> m_log;
};

QTEST_GUILESS_MAIN(TestNotification)
#include "tst_notification.moc"
