// The database file as the server leaves it: schema and delivered rows, the start-up load, and the pool of held
// alarms with its reports and counters.

#include "AlarmQueue.h"
#include "DBInit.h"
#include "Database.h"
#include "FormLists.h"
#include "FormTimers.h"
#include "Globals.h"
#include "HeadlessWindow.h"
#include "Log.h"
#include "Schema.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QtTest>

using namespace osprel;

namespace {
const QString kSeparator = QStringLiteral("\r\n-----------------------------\r\n\r\n");
}

class TestStore : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        resetGlobals();
        m_port = HeadlessWindow();
        m_dir = std::make_unique<QTemporaryDir>();
        m_log = std::make_unique<Log>(m_dir->path());
        m_log->writeStartRecord(QString());
        m_db = std::make_unique<Database>();
        m_db->DBInitADO(m_dir->path());
        QVERIFY(m_db->isOpen());
        m_lists = std::make_unique<FormLists>();
        m_lists->InitColHeaders();
        m_queue = std::make_unique<AlarmQueue>(*m_db, *m_lists, m_timers, m_port, m_port);
        // An independent connection looks at the file as another program would.
        m_inspect = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("inspect"));
        m_inspect.setDatabaseName(m_db->path());
        QVERIFY(m_inspect.open());
    }
    void cleanup()
    {
        m_inspect.close();
        m_inspect = QSqlDatabase();
        QSqlDatabase::removeDatabase(QStringLiteral("inspect"));
        m_queue.reset();
        m_db.reset();
        m_lists.reset();
        m_log.reset();
        m_dir.reset();
    }

    void aNewFileHasTheSchemaAndTheDeliveredRows()
    {
        QCOMPARE(scalar("SELECT count(*) FROM SetupComm"), 1);
        QCOMPARE(scalar("SELECT count(*) FROM SetupModem"), 1);
        QCOMPARE(scalar("SELECT count(*) FROM SetupPriority"), 8);
        QCOMPARE(scalar("SELECT group_concat(PriorityID) FROM SetupPriorityDef"), QVariant("0,1,2"));
        for (const char *table : {"Contacts", "EmailHistory", "FaxHistory"})
            QCOMPARE(scalar(QByteArray("SELECT count(*) FROM ") + table), 0);
        // The yes/no representation is the one TRUE and FALSE match.
        QCOMPARE(scalar("SELECT count(*) FROM AlarmMsgs"), kAlarmPoolSize);
        QCOMPARE(scalar("SELECT count(*) FROM AlarmMsgs WHERE OverWrite = TRUE"), kAlarmPoolSize);
        m_queue->DBAddAlmMsg(QStringLiteral("1"), QStringLiteral("text"), 5005, 0, QStringLiteral("hist"));
        QCOMPARE(scalar("SELECT count(*) FROM AlarmMsgs WHERE OverWrite = FALSE"), 1);
        QCOMPARE(scalar("SELECT OverWrite FROM AlarmMsgs WHERE OverWrite = FALSE"), 0);
        QVERIFY(!exec("UPDATE AlarmMsgs SET OverWrite = -1")); // Booleans stay 0 or 1
    }

    void startUpLoadPurgesAndTrims()
    {
        exec("INSERT INTO Contacts (LastName, FirstName, EMailEnabled, FaxEnabled, EmailName, FaxNumber)"
             " VALUES ('O''Brien', 'Pat', 1, 1, NULL, '5551234567'), ('Half', NULL, 1, 0, 'h@x', NULL),"
             " ('Smith', 'Ann', 0, 1, 'ann@x', '5559876543')");
        for (int i = 1; i <= 101; ++i)
            exec(QStringLiteral("INSERT INTO EmailHistory (Time, Status) VALUES ('t%1', 'Sent')").arg(i).toUtf8());
        for (int i = 1; i <= 100; ++i)
            exec(QStringLiteral("INSERT INTO FaxHistory (Time) VALUES ('f%1')").arg(i).toUtf8());
        exec("UPDATE SetupComm SET EmailServer = 'mail:2525', EmailEnabledAtBoot = 2, FaxEnabledAtBoot = 1");

        DBInit(*m_db, *m_lists, m_port);
        QCOMPARE(m_lists->lvwMainContacts.count(), 2);
        QCOMPARE(m_lists->lvwMainContacts.row(1), QStringList({"O'Brien", "Pat", "", "5551234567"}));
        QCOMPARE(m_lists->lvwEmailContacts.row(1), QStringList({"O'Brien", "Pat", ""}));
        QCOMPARE(m_lists->lvwFaxContacts.count(), 2);
        QCOMPARE(scalar("SELECT count(*) FROM Contacts"), 2); // the half-entered row is gone

        QCOMPARE(scalar("SELECT count(*) FROM EmailHistory"), 50);
        QCOMPARE(scalar("SELECT Time FROM EmailHistory ORDER BY rowid LIMIT 1"), QVariant("t52"));
        QCOMPARE(scalar("SELECT count(*) FROM FaxHistory"), 100);
        // Each history fills its own list, newest first.
        QCOMPARE(m_lists->lvwHist[0].count(), 50);
        QCOMPARE(m_lists->lvwHist[0].text(1), QStringLiteral("t101"));
        QCOMPARE(m_lists->lvwHist[0].text(50), QStringLiteral("t52"));
        QCOMPARE(m_lists->lvwHist[1].count(), 100);
        QCOMPARE(m_lists->lvwHist[1].text(1), QStringLiteral("f100"));
        QCOMPARE(m_lists->lvwHist[0].text(1, 3), QString()); // a null column is an empty sub-item

        QCOMPARE(m_port.settings.txtMailServer, QStringLiteral("mail:2525"));
        QVERIFY(!m_port.email); // 2 is not 1
        QVERIFY(m_port.fax);
    }

    void thePoolFillsFlushesAndCounts()
    {
        exec("DELETE FROM AlarmMsgs WHERE rowid > 3"); // a pool of three slots
        m_queue->DBAddAlmMsg(QStringLiteral("1"), QStringLiteral("a"), 5000, 0, QStringLiteral("h1"));
        m_queue->DBAddAlmMsg(QStringLiteral("2"), QStringLiteral("b"), 5001, 1, QStringLiteral("h2"));
        m_queue->DBAddAlmMsg(QStringLiteral("3"), QStringLiteral("c"), 5001, 1, QStringLiteral("h3"));
        QCOMPARE(m_port.counters.mid(0, 3), QStringList({"1", "2", "0"}));
        QCOMPARE(scalar("SELECT count(*) FROM AlarmMsgs WHERE OverWrite = FALSE"), 3);

        // Full: each level's held alarms go out as an early report, the new one takes the first slot.
        m_timers.TimerMsgQue.start();
        m_queue->DBAddAlmMsg(QStringLiteral("4"), QStringLiteral("d"), 5007, 2, QStringLiteral("h4"));
        QCOMPARE(scalar("SELECT count(*) FROM AlarmMsgs WHERE OverWrite = FALSE"), 1);
        QCOMPARE(scalar("SELECT ErrID || Catagory || Priority FROM AlarmMsgs WHERE OverWrite = FALSE"),
                 QVariant("450072"));
        QCOMPARE(scalar("SELECT rowid FROM AlarmMsgs WHERE OverWrite = FALSE"), 1);
        QCOMPARE(m_port.counters, QStringList({"0", "0", "0", "0", "0", "0", "0", "1"}));
        QVERIFY(m_timers.TimerMsgQue.isActive());
        QVERIFY(m_log->lstStatus()->stringList().contains(
            QStringLiteral("The alarm pool is full: its 3 held alarms are sent now as early reports.")));

        // At start-up the counters come from the pending rows only.
        m_port.counters = QStringList(8, QStringLiteral("9"));
        m_queue->InitLables();
        QCOMPARE(m_port.counters, QStringList({"0", "0", "0", "0", "0", "0", "0", "1"}));
    }

    // The whole pool of one level: one early report with every block, newest first, and the new alarm held.
    void aFullPoolIsReportedNotDiscarded()
    {
        m_lists->lvwEmailContacts.add(QStringList{"Doe", "Jo", "jo@lab"});
        g.gstrEmailRecipients = QStringLiteral("jo@lab; ");
        m_db->beginBatch();
        for (int i = 1; i <= 1001; ++i)
            m_queue->DBAddAlmMsg(QString::number(i), QStringLiteral("alarm %1").arg(i), 5007, 2, QStringLiteral("h"));
        QCOMPARE(m_lists->lvwSendEmailQue.count(), 1);
        const QString report = m_lists->lvwSendEmailQue.text(1, 2);
        QVERIFY(report.startsWith(
            QStringLiteral("# Vantor 32 Early Report (alarm pool full) #\r\n# Low Priority Setting #\r\n\r\nalarm 1000")));
        QCOMPARE(report.count(kSeparator), 1000);
        QVERIFY(report.endsWith(QStringLiteral("alarm 1") + kSeparator));
        QCOMPARE(m_lists->lvwSendEmailQue.text(1, 3), QStringLiteral("Early Report (alarm pool full)"));
        QCOMPARE(scalar("SELECT group_concat(ErrID) FROM AlarmMsgs WHERE OverWrite = FALSE"), QVariant("1001"));
        QCOMPARE(scalar("SELECT rowid FROM AlarmMsgs WHERE OverWrite = FALSE"), 1);
        QCOMPARE(m_port.counters.at(7), QStringLiteral("1"));
    }

    void aReportGathersALevelNewestFirst()
    {
        m_lists->lvwEmailContacts.add(QStringList{"Doe", "Jo", "jo@lab"});
        for (const char *name : {"Ann", "Bob", "Cy"})
            m_lists->lvwFaxContacts.add(QStringList{QString::fromLatin1(name), "F", QStringLiteral("555000") + name});
        g.gstrEmailRecipients = QStringLiteral("jo@lab; ");
        m_queue->DBAddAlmMsg(QStringLiteral("1"), QStringLiteral("chamber alarm"), 5005, 0, QStringLiteral("h"));
        m_queue->DBAddAlmMsg(QStringLiteral("2"), QStringLiteral("comm error"), 5000, 0, QStringLiteral("h"));
        m_queue->DBAddAlmMsg(QStringLiteral("3"), QStringLiteral("same category, other level"), 5005, 2,
                             QStringLiteral("h"));
        m_queue->DBAddAlmMsg(QStringLiteral("4"), QStringLiteral("untouched"), 5003, 2, QStringLiteral("h"));

        m_queue->DBGetAlmMsg(0, 1);
        const QString report = QStringLiteral("# Vantor 32 Hourly Report #\r\n# High Priority Setting #\r\n\r\n") +
                               QStringLiteral("comm error") + kSeparator + QStringLiteral("chamber alarm") + kSeparator;
        QCOMPARE(m_lists->lvwSendEmailQue.count(), 1);
        QCOMPARE(m_lists->lvwSendEmailQue.row(1).mid(1, 7),
                 QStringList({report, "Hourly Report", "jo@lab; ", "0", "*", "*|Hourly Report|*|*|*|*", "*"}));
        QCOMPARE(m_lists->lvwSendFaxQue.count(), 3);
        QCOMPARE(m_lists->lvwSendFaxQue.row(3).mid(1), QStringList({report, "Hourly Report", "555000Cy", "0", "*",
                                                                    "*|Hourly Report|*|*|*|*", "Cy", "F", "*"}));
        QVERIFY(m_timers.TimerEmailMsgQue.isActive());
        QVERIFY(m_timers.TimerFaxMsgQue.isActive());
        // Both reported categories are cleared, at every level; the other category waits on.
        QCOMPARE(m_port.counters, QStringList({"0", "0", "0", "1", "0", "0", "0", "0"}));
        QCOMPARE(scalar("SELECT group_concat(ErrID) FROM AlarmMsgs WHERE OverWrite = FALSE"), QVariant("4"));

        // Nothing pending for the level: nothing queued, nothing cleared.
        m_queue->DBGetAlmMsg(1, 2);
        QCOMPARE(m_lists->lvwSendEmailQue.count(), 1);
        QCOMPARE(m_port.counters.at(3), QStringLiteral("1"));
    }

    void withoutRecipientsTheAlarmsAreStillFreed()
    {
        m_queue->DBAddAlmMsg(QStringLiteral("1"), QStringLiteral("x"), 5002, 1, QStringLiteral("h"));
        m_queue->DBGetAlmMsg(1, 0);
        QCOMPARE(m_lists->lvwSendEmailQue.count(), 0);
        QCOMPARE(m_lists->lvwSendFaxQue.count(), 0);
        QCOMPARE(scalar("SELECT count(*) FROM AlarmMsgs WHERE OverWrite = FALSE"), 0);
    }

    void aCategoryOutOfRangeStopsTheReport()
    {
        m_queue->DBAddAlmMsg(QStringLiteral("1"), QStringLiteral("fine"), 5001, 0, QStringLiteral("h"));
        m_queue->DBAddAlmMsg(QStringLiteral("2"), QStringLiteral("bad"), 17, 0, QStringLiteral("h"));
        m_queue->DBAddAlmMsg(QStringLiteral("3"), QStringLiteral("after"), 5001, 0, QStringLiteral("h"));
        m_queue->DBGetAlmMsg(0, 0);
        QCOMPARE(m_log->lstStatus()->stringList().last(),
                 QStringLiteral("ErrorHandler 9: Subscript out of range (DBGetAlmMsg)"));
        QCOMPARE(m_lists->lvwSendEmailQue.count(), 0);
        QCOMPARE(scalar("SELECT group_concat(ErrID) FROM AlarmMsgs WHERE OverWrite = FALSE"), QVariant("2,3"));
    }

    // After a cycle of the whole pool with two levels, freed rows still carry their old level; the next alarms must
    // still take the rows first to last, so that a report lists them in the order they came.
    void aCycledPoolIsRefilledFromItsFirstRow()
    {
        m_lists->lvwEmailContacts.add(QStringList{"Doe", "Jo", "jo@lab"});
        for (int i = 1; i <= kAlarmPoolSize; ++i)
            m_queue->DBAddAlmMsg(QString::number(i), QStringLiteral("old"), 5002, qint16(1 + i % 2),
                                 QStringLiteral("h"));
        QCOMPARE(scalar("SELECT count(*) FROM AlarmMsgs WHERE OverWrite = FALSE"), kAlarmPoolSize);
        m_queue->DBGetAlmMsg(1, 1);
        m_queue->DBGetAlmMsg(2, 2);
        QCOMPARE(scalar("SELECT count(*) FROM AlarmMsgs WHERE OverWrite = FALSE"), 0);

        const int refill = kAlarmPoolSize / 2 + 10; // past the rows that the first level had held
        QString expected;
        for (int i = 1; i <= refill; ++i) {
            m_queue->DBAddAlmMsg(QString::number(i), QStringLiteral("new %1").arg(i), 5002, 2, QStringLiteral("h"));
            expected = QStringLiteral("new %1").arg(i) + kSeparator + expected; // a report lists the newest first
        }
        QCOMPARE(scalar("SELECT count(*) FROM AlarmMsgs WHERE OverWrite = FALSE AND ErrID <> rowid"), 0);
        QCOMPARE(scalar("SELECT max(rowid) FROM AlarmMsgs WHERE OverWrite = FALSE"), refill);

        m_lists->lvwSendEmailQue.clear();
        m_queue->DBGetAlmMsg(2, 2);
        QCOMPARE(m_lists->lvwSendEmailQue.text(1, 2),
                 QStringLiteral("# Vantor 32 Daily Report #\r\n# Low Priority Setting #\r\n\r\n") + expected);
    }

private:
    QVariant scalar(const QByteArray &sql)
    {
        m_db->commitBatch(); // the inspecting connection sees what is committed
        QSqlQuery query(m_inspect);
        if (!query.exec(QString::fromUtf8(sql)) || !query.next())
            return QStringLiteral("query failed: ") + query.lastError().text();
        return query.value(0);
    }
    bool exec(const QByteArray &sql)
    {
        QSqlQuery query(m_inspect);
        return query.exec(QString::fromUtf8(sql));
    }

    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<Log> m_log;
    std::unique_ptr<Database> m_db;
    std::unique_ptr<FormLists> m_lists;
    std::unique_ptr<AlarmQueue> m_queue;
    FormTimers m_timers;
    HeadlessWindow m_port;
    QSqlDatabase m_inspect;
};

QTEST_GUILESS_MAIN(TestStore)
#include "tst_store.moc"
