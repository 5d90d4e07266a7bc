// The priority settings: when a level's summary report falls due, and how the settings load and save.

#include "Database.h"
#include "HeadlessWindow.h"
#include "Log.h"
#include "PriorityEvaluation.h"
#include "PriorityStore.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace osprel;

Q_DECLARE_METATYPE(osprel::LevelRecord)

class TestPriority : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        m_log = std::make_unique<Log>(m_dir->path());
        m_log->writeStartRecord(QString());
        m_db = std::make_unique<Database>();
        m_db->DBInitADO(m_dir->path());
        m_port = HeadlessWindow();
        m_store = std::make_unique<PriorityStore>(*m_db, m_port, m_port);
    }
    void cleanup()
    {
        m_store.reset();
        m_db.reset();
        m_log.reset();
    }

    // Ticks given as "ddd hh:mm:ss" (ddd = Sun..Sat); the report is expected on the ticks marked in `due`.
    void reportsFallDueOncePerMatchingMinute_data()
    {
        QTest::addColumn<int>("mode");
        QTest::addColumn<int>("minute");
        QTest::addColumn<int>("hour");
        QTest::addColumn<int>("weekday");
        QTest::addColumn<QStringList>("ticks");
        QTest::addColumn<QList<int>>("due");
        QTest::newRow("hourly at :15, ticks every 20 s")
            << 1 << 15 << 0 << 0 << QStringList{"Mon 10:14:40", "Mon 10:15:00", "Mon 10:15:20", "Mon 10:15:40",
                                                "Mon 10:16:00", "Mon 11:15:00", "Mon 11:15:20"}
            << QList<int>{1, 5};
        QTest::newRow("daily at 08:30") << 2 << 30 << 8 << 0
                                        << QStringList{"Tue 08:29:00", "Tue 08:30:00", "Tue 08:30:59",
                                                       "Tue 08:31:00", "Tue 09:30:00", "Wed 08:30:00"}
                                        << QList<int>{1, 5};
        QTest::newRow("weekly Sunday 23:59")
            << 3 << 59 << 23 << 0
            << QStringList{"Sat 23:59:00", "Sun 23:58:59", "Sun 23:59:00", "Sun 23:59:30", "Mon 23:59:00"}
            << QList<int>{2};
        QTest::newRow("every minute: every tick")
            << 0 << 0 << 0 << 0 << QStringList{"Mon 10:00:00", "Mon 10:00:01"} << QList<int>{0, 1};
        QTest::newRow("none") << -1 << 0 << 0 << 0 << QStringList{"Mon 00:00:00"} << QList<int>{};
    }
    void reportsFallDueOncePerMatchingMinute()
    {
        QFETCH(int, mode);
        QFETCH(int, minute);
        QFETCH(int, hour);
        QFETCH(int, weekday);
        QFETCH(QStringList, ticks);
        QFETCH(QList<int>, due);
        LevelRecord level;
        level.OnceEvery = mode;
        level.OnceEveryHourMin = qint16(minute);
        level.OnceEveryDayHour = qint16(hour);
        level.OnceEveryWeekDay = qint16(weekday);
        SentFlags flags;
        QList<int> reported;
        const QStringList days = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
        for (int i = 0; i < ticks.size(); ++i) {
            const QTime time = QTime::fromString(ticks[i].mid(4), QStringLiteral("hh:mm:ss"));
            const TickClock clock{QString::number(time.minute()), QString::number(time.hour()),
                                  qint16(days.indexOf(ticks[i].left(3)))};
            CheckPriorityStates(level, 1, flags, clock, [&](qint16 l, qint16 m) {
                QCOMPARE(l, qint16(1));
                QCOMPARE(m, qint16(mode));
                reported.append(i);
            });
        }
        QCOMPARE(reported, due);
    }

    void settingsSaveAndLoad()
    {
        m_store->DBInitAlarmCatSetup();
        QCOMPARE(m_port.levels[5], 0); // the delivered level of CHAMBER_ALARM
        for (int i = 0; i < 8; ++i)
            m_store->categoryLevel(i) = QString::number(i % 4);
        m_store->DBAddCatPriority();
        LevelRecord weekly;
        weekly.Immediate = true;
        weekly.OnceEvery = IntervalWeekly;
        weekly.OnceEveryWeekDay = 6;
        weekly.SendFirstEnabled = true;
        weekly.SendFirst = 3;
        weekly.ResetDay = 7;
        m_store->DBAddPriority(weekly, QStringLiteral("MidPri"));
        m_store->DBAddPriority(LevelRecord(), QStringLiteral("highpri")); // wrong case: nothing written
        QCOMPARE(m_log->lstStatus()->stringList().last(),
                 QStringLiteral(
                     "ErrorHandler -2147217908: Command text was not set for the command object. (DBAddPriority)"));

        PriorityStore reloaded(*m_db, m_port, m_port);
        reloaded.DBInitAlarmCatSetup();
        reloaded.DBInitAlarmPriSetup();
        QCOMPARE(reloaded.GetPriotiryLevel(QStringLiteral("PROGRAM_ALARM")), qint16(2));
        QCOMPARE(m_port.levels[7], 3);
        QVERIFY(reloaded.level(1) == weekly);
        QVERIFY(reloaded.level(0).Immediate); // the delivered High level was left alone
        LevelRecord untouched = LevelRecord::cleared();
        reloaded.GetPriotiryLevelInfo(untouched, 3);
        QVERIFY(untouched == LevelRecord::cleared());
        QCOMPARE(reloaded.GetPriotiryLevel(QStringLiteral("NO_SUCH_CATEGORY")), qint16(0)); // unknown is High
    }

    void shortOrBadTablesLeaveTheRestAsItWas()
    {
        m_db->run(QStringLiteral("DELETE FROM SetupPriority WHERE rowid > 5"));
        m_db->run(QStringLiteral("DELETE FROM SetupPriorityDef"));
        m_store->DBInitAlarmCatSetup();
        m_store->DBInitAlarmPriSetup();
        for (int level = 0; level < 3; ++level) {
            QVERIFY(!m_store->level(level).Immediate);
            QCOMPARE(m_store->level(level).OnceEvery, qint32(IntervalNone));
        }
        QCOMPARE(m_store->GetPriotiryLevel(QStringLiteral("CHAMBER_ALARM")), qint16(0));
        QCOMPARE(m_log->lstStatus()->stringList().last(),
                 QStringLiteral("ErrorHandler 13: Type mismatch (GetPriotiryLevel)"));

        m_db->run(QStringLiteral("UPDATE SetupPriority SET PLevelID = 'x' WHERE rowid = 2"));
        m_db->run(QStringLiteral("UPDATE SetupPriority SET PLevelID = '2'"
                                 " WHERE rowid <> 2"));
        PriorityStore store(*m_db, m_port, m_port);
        store.DBInitAlarmCatSetup();
        QCOMPARE(store.categoryLevel(0), QStringLiteral("2"));
        QCOMPARE(store.categoryLevel(2), QString()); // the load ended at the bad row
        QCOMPARE(m_log->lstStatus()->stringList().last(),
                 QStringLiteral("ErrorHandler 13: Type mismatch (DBInitAlarmCatSetup)"));
    }

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<Log> m_log;
    std::unique_ptr<Database> m_db;
    HeadlessWindow m_port;
    std::unique_ptr<PriorityStore> m_store;
};

QTEST_GUILESS_MAIN(TestPriority)
#include "tst_priority.moc"
