// The dispatcher on a real database: each alert judged by its category's level, sent now, held, both or neither;
// one alert per tick; summary reports when the moved clock reaches them.

#include "AlarmQueue.h"
#include "AlertLink.h"
#include "Clock.h"
#include "Database.h"
#include "Dispatcher.h"
#include "FormLists.h"
#include "FormTimers.h"
#include "Globals.h"
#include "HeadlessWindow.h"
#include "Log.h"
#include "PriorityStore.h"
#include "StoreFixture.h"
#include "clsAlertCls.h"

#include <QSignalSpy>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QtTest>

using namespace osprel;

namespace {
QString alert(const QString &number, const QString &category)
{
    return number + QStringLiteral("|4;Chamber 4;d;On;QLM V;T/H;Running;Yes|999;CH1 high|1;2;3;4|5;6;7;8|") + category +
           QStringLiteral("|9:55 pm");
}
} // namespace

class TestDispatch : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        m_f = std::make_unique<StoreFixture>();
        m_port = HeadlessWindow();
        m_f->lists.lvwEmailContacts.add(QStringList{"Doe", "Jo", "jo@lab"});
        for (const char *name : {"Ann", "Bob", "Cy"})
            m_f->lists.lvwFaxContacts.add(QStringList{QString::fromLatin1(name), "F", QStringLiteral("555") + name});
        g.gstrEmailRecipients = QStringLiteral("jo@lab; ");
        m_link = std::make_unique<AlertLink>(m_f->lists, m_f->timers);
        m_store = std::make_unique<PriorityStore>(m_f->db, m_port, m_port);
        m_store->DBInitAlarmCatSetup();
        m_store->DBInitAlarmPriSetup();
        m_alarms = std::make_unique<AlarmQueue>(m_f->db, m_f->lists, m_f->timers, m_port, m_port);
        m_statusUpdates = 0;
        m_dispatcher = std::make_unique<Dispatcher>(m_f->lists, m_f->timers, *m_store, *m_alarms, m_port, *m_link,
                                                    [this] { ++m_statusUpdates; });
    }
    void cleanup()
    {
        Clock::setSource(nullptr);
        m_dispatcher.reset();
        m_alarms.reset();
        m_store.reset();
        m_link.reset();
        m_f.reset();
    }

    void eachAlertIsJudgedByItsLevel_data()
    {
        QTest::addColumn<QString>("categoryLevel");
        QTest::addColumn<bool>("immediate");
        QTest::addColumn<int>("interval");
        QTest::addColumn<int>("emailJobs");
        QTest::addColumn<int>("faxJobs");
        QTest::addColumn<int>("heldUnder"); // -1: not held
        QTest::newRow("send now") << "1" << true << -1 << 1 << 3 << -1;
        QTest::newRow("hold for the hourly report") << "1" << false << 1 << 0 << 0 << 1;
        QTest::newRow("both") << "2" << true << 2 << 1 << 3 << 2;
        QTest::newRow("neither: dropped") << "1" << false << -1 << 0 << 0 << -1;
        QTest::newRow("ignore: held under level 3") << "3" << true << -1 << 0 << 0 << 3;
    }
    void eachAlertIsJudgedByItsLevel()
    {
        QFETCH(QString, categoryLevel);
        QFETCH(bool, immediate);
        QFETCH(int, interval);
        QFETCH(int, emailJobs);
        QFETCH(int, faxJobs);
        QFETCH(int, heldUnder);
        m_store->categoryLevel(6) = categoryLevel; // PROGRAM_ALARM
        for (int level = 0; level < 3; ++level) {
            m_store->level(level).Immediate = immediate;
            m_store->level(level).OnceEvery = interval;
        }
        m_f->lists.lvwMsgQue.add(
            QStringList{QString(), alert(QStringLiteral("42"), QStringLiteral("6")), QString(), "6"});
        m_dispatcher->TimerMsgQue_Timer();
        QCOMPARE(m_f->lists.lvwMsgQue.count(), 0);
        QCOMPARE(m_f->lists.lvwSendEmailQue.count(), emailJobs);
        QCOMPARE(m_f->lists.lvwSendFaxQue.count(), faxJobs);
        if (emailJobs) {
            const QStringList job = m_f->lists.lvwSendEmailQue.row(1);
            QCOMPARE(job.mid(2, 6), QStringList({"Chamber 4", "jo@lab; ", "0", "PROGRAM_ALARM",
                                                 "42|Chamber 4|CH1 high|PROGRAM_ALARM|9:55 pm", "42"}));
            QVERIFY(job.at(1).startsWith(QLatin1String("Chamber Notification\r\n")));
        }
        if (faxJobs)
            QCOMPARE(m_f->lists.lvwSendFaxQue.row(3).mid(3),
                     QStringList({"555Cy", "0", "PROGRAM_ALARM", "42|Chamber 4|CH1 high|PROGRAM_ALARM|9:55 pm", "Cy",
                                  "F", "42"}));
        QSqlQuery held =
            m_f->db.run(QStringLiteral("SELECT Priority, Catagory, ErrID FROM AlarmMsgs WHERE OverWrite = FALSE"));
        if (heldUnder < 0) {
            QVERIFY(!held.next());
        } else {
            QVERIFY(held.next());
            QCOMPARE(held.value(0).toInt(), heldUnder);
            QCOMPARE(held.value(1).toInt(), 5006); // the bare index is held as its code
            QCOMPARE(held.value(2).toString(), QStringLiteral("42"));
            QCOMPARE(m_port.counters.at(6), QStringLiteral("1"));
        }
        QCOMPARE(m_statusUpdates, 1);
    }

    void oneAlertPerTickAndOnlyTheEnabledChannels()
    {
        m_port.email = false;
        for (int i = 1; i <= 3; ++i)
            m_f->lists.lvwMsgQue.add(QStringList{QString(), alert(QString::number(i), "5005"), QString(), "5005"});
        clsAlertCls chamber;
        QSignalSpy status(&chamber, &clsAlertCls::ServerStatus);
        m_dispatcher->TimerMsgQue_Timer(); // nobody linked: no event, but the status refresh runs
        QCOMPARE(status.count(), 0);
        QCOMPARE(m_statusUpdates, 1);
        QVERIFY(m_link->Open_Link(&chamber));
        g.gintEmailSendState = 1;
        m_dispatcher->TimerMsgQue_Timer();
        QCOMPARE(m_f->lists.lvwMsgQue.count(), 1);
        QCOMPARE(m_f->lists.lvwSendEmailQue.count(), 0);
        QCOMPARE(m_f->lists.lvwSendFaxQue.count(), 6);
        QCOMPARE(status.count(), 1);
        QCOMPARE(status.at(0), QVariantList({true, qint16(1), qint16(0)}));
    }

    void queuingKeepsTheSendTimersCountdown()
    {
        // A queue timer already running is left alone: restarting it on every job would put the sending off for
        // as long as alerts keep coming.
        m_f->timers.TimerEmailMsgQue.start();
        m_f->timers.TimerFaxMsgQue.start();
        const int email = m_f->timers.TimerEmailMsgQue.timerId(), fax = m_f->timers.TimerFaxMsgQue.timerId();
        for (int i = 1; i <= 2; ++i) {
            m_f->lists.lvwMsgQue.add(QStringList{QString(), alert(QString::number(i), "5005"), QString(), "5005"});
            m_dispatcher->TimerMsgQue_Timer();
        }
        QCOMPARE(m_f->lists.lvwSendEmailQue.count(), 2);
        QCOMPARE(m_f->timers.TimerEmailMsgQue.timerId(), email);
        QCOMPARE(m_f->timers.TimerFaxMsgQue.timerId(), fax);
    }

    void aMalformedAlertCannotHoldBackTheQueue()
    {
        m_f->lists.lvwMsgQue.add(QStringList{QString(), QStringLiteral("1|x|y|z|w|99999|t"), QString(), "99999"});
        m_f->lists.lvwMsgQue.add(QStringList{QString(), alert("2", "5005"), QString(), "5005"});
        for (int tick = 1; tick < Dispatcher::kMaxHeadFailures; ++tick) {
            m_dispatcher->TimerMsgQue_Timer();
            QCOMPARE(m_f->lists.lvwMsgQue.count(), 2); // tried again on the next tick
        }
        QCOMPARE(m_f->log->lstStatus()->stringList().at(0),
                 QStringLiteral("ErrorHandler 6: Overflow (TimerMsgQue_Timer)"));
        m_dispatcher->TimerMsgQue_Timer();
        QCOMPARE(m_f->lists.lvwMsgQue.count(), 1);
        QVERIFY(m_f->log->lstStatus()->stringList().last().contains(QLatin1String("1|x|y|z|w|99999|t")));
        m_dispatcher->TimerMsgQue_Timer();
        QCOMPARE(m_f->lists.lvwMsgQue.count(), 0);
        QCOMPARE(m_f->lists.lvwSendEmailQue.count(), 1);
    }

    void summaryReportsFollowTheClock()
    {
        QDateTime now(QDate(2026, 11, 22), QTime(8, 29, 59)); // a Sunday
        Clock::setSource([&now] { return now; });
        m_store->categoryLevel(3) = QStringLiteral("2");
        LevelRecord &low = m_store->level(2);
        low = LevelRecord();
        low.OnceEvery = IntervalDaily;
        low.OnceEveryDayHour = 8;
        low.OnceEveryHourMin = 30;
        auto hold = [this](const QString &number) {
            m_f->lists.lvwMsgQue.add(QStringList{QString(), alert(number, "5003"), QString(), "5003"});
            m_dispatcher->TimerMsgQue_Timer();
        };
        hold(QStringLiteral("1"));
        hold(QStringLiteral("2"));
        m_dispatcher->TimerDBAlarms_Timer();
        QCOMPARE(m_f->lists.lvwSendEmailQue.count(), 0);
        now = now.addSecs(1);
        m_dispatcher->TimerDBAlarms_Timer();
        QCOMPARE(m_f->lists.lvwSendEmailQue.count(), 1);
        QVERIFY(m_f->lists.lvwSendEmailQue.text(1, 2).startsWith(
            QLatin1String("# Vantor 32 Daily Report #\r\n# Low Priority Setting #\r\n\r\nChamber Notification")));
        QVERIFY(m_f->lists.lvwSendEmailQue.text(1, 2).indexOf(QLatin1String("Alert ID: 2")) <
                m_f->lists.lvwSendEmailQue.text(1, 2).indexOf(QLatin1String("Alert ID: 1")));
        hold(QStringLiteral("3"));
        now = now.addSecs(30);
        m_dispatcher->TimerDBAlarms_Timer(); // same minute: not again
        QCOMPARE(m_f->lists.lvwSendEmailQue.count(), 1);
        now = now.addDays(1);
        m_dispatcher->TimerDBAlarms_Timer(); // the next day, but no tick outside the minute has re-armed it yet
        QCOMPARE(m_f->lists.lvwSendEmailQue.count(), 1);
        now = now.addSecs(60);
        m_dispatcher->TimerDBAlarms_Timer();
        now = now.addSecs(-60);
        m_dispatcher->TimerDBAlarms_Timer();
        QCOMPARE(m_f->lists.lvwSendEmailQue.count(), 2);
    }

private:
    std::unique_ptr<StoreFixture> m_f;
    HeadlessWindow m_port;
    std::unique_ptr<AlertLink> m_link;
    std::unique_ptr<PriorityStore> m_store;
    std::unique_ptr<AlarmQueue> m_alarms;
    std::unique_ptr<Dispatcher> m_dispatcher;
    int m_statusUpdates = 0;
};

QTEST_GUILESS_MAIN(TestDispatch)
#include "tst_dispatch.moc"
