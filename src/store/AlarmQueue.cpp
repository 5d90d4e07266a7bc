#include "AlarmQueue.h"

#include "Clock.h"
#include "Conversions.h"
#include "Database.h"
#include "ErrorReport.h"
#include "FormLists.h"
#include "FormTimers.h"
#include "Globals.h"
#include "Log.h"
#include "QueueRoutines.h"
#include "QueuedAlarmsPort.h"
#include "TimeScale.h"
#include "Values.h"

#include <QSqlQuery>
#include <QVariant>

namespace osprel {

namespace {
const QString kSeparator = QStringLiteral("\r\n-----------------------------\r\n\r\n");
const QString kEarlyReportTitle = QStringLiteral("Early Report (alarm pool full)");
} // namespace

AlarmQueue::AlarmQueue(const Database &database, FormLists &lists, FormTimers &timers, QueuedAlarmsPort &counters,
                       const SendSwitches &switches)
    : m_database(database), m_lists(lists), m_timers(timers), m_counters(counters), m_switches(switches)
{
}

void AlarmQueue::DBAddAlmMsg(const QString &ErrID, const QString &AlarmString, qint16 Catagory, qint16 Priority,
                             const QString &HistData)
{
    guarded(QStringLiteral("DBAddAlmMsg"), [&] {
        if (storeInFreeSlot(ErrID, AlarmString, Catagory, Priority, HistData))
            return;
        // The pool is full: every level's held alarms go out at once as that level's report, titled as an early
        // one, and the freed rows take the new alarm from the first. Nothing held is discarded.
        QSqlQuery pending = m_database.run(QStringLiteral("SELECT count(*) FROM AlarmMsgs WHERE OverWrite = FALSE"));
        const int held = pending.next() ? pending.value(0).toInt() : 0;
        pending.finish();
        if (held == 0) {
            DumpStr(QStringLiteral("The alarm table has no rows: alarm ") + ErrID + QStringLiteral(" is not held."));
            return;
        }
        m_timers.TimerMsgQue.stop();
        m_database.beginBatch(); // the reports' queue rows and the freed pool are one change on disk
        DumpStr(QStringLiteral("The alarm pool is full: its ") + QString::number(held) +
                QStringLiteral(" held alarms are sent now as early reports."));
        for (qint16 level = 0; level <= 2; ++level)
            report(level, kEarlyReportTitle);
        storeInFreeSlot(ErrID, AlarmString, Catagory, Priority, HistData);
        switchOn(m_timers.TimerMsgQue);
    });
}

bool AlarmQueue::storeInFreeSlot(const QString &ErrID, const QString &AlarmString, qint16 Catagory, qint16 Priority,
                                 const QString &HistData)
{
    // The first free row in the pool's own order: without ORDER BY, SQLite would answer from the (OverWrite,
    // Priority) index, and after the pool has cycled new alarms would no longer take the rows in arrival order.
    QSqlQuery free =
        m_database.run(QStringLiteral("SELECT rowid FROM AlarmMsgs WHERE OverWrite = TRUE ORDER BY rowid LIMIT 1"));
    if (!free.next())
        return false;
    const qint64 slot = free.value(0).toLongLong();
    free.finish();
    m_database.run(QStringLiteral("UPDATE AlarmMsgs SET EntryDate = ?, ErrID = ?, OverWrite = FALSE, Priority = ?,"
                                  " Catagory = ?, AlarmString = ?, HistData = ? WHERE rowid = ?"),
                   {generalDateTime(Clock::now()), ErrID, Priority, Catagory, AlarmString, HistData, slot});
    QueTrackInc(GetCatIndex(GetCatName(Catagory)));
    return true;
}

void AlarmQueue::DBGetAlmMsg(qint16 Level, qint16 Mode)
{
    guarded(QStringLiteral("DBGetAlmMsg"), [&] { report(Level, GetReportTypeName(Mode) + QStringLiteral(" Report")); });
}

void AlarmQueue::report(qint16 Level, const QString &title)
{
    {
        QSqlQuery pending = m_database.run(
            QStringLiteral("SELECT rowid, AlarmString, Catagory FROM AlarmMsgs WHERE OverWrite = FALSE AND Priority = ?"
                           " ORDER BY rowid"),
            {Level});
        struct Row
        {
            qint64 rowid;
            QString text;
            qint64 category;
        };
        QList<Row> rows;
        while (pending.next())
            rows.append({pending.value(0).toLongLong(), pending.value(1).toString(), pending.value(2).toLongLong()});
        pending.finish();
        if (rows.isEmpty())
            return;

        bool reported[9] = {};
        QString body;
        for (const Row &row : rows) {
            const qint64 index = row.category - kCategoryCodeBase;
            if (index < 0 || index > 8)
                raise(Err::SubscriptOutOfRange); // the rows before this one stay freed; no report goes out
            reported[index] = true;
            // Each block goes in front, so the report lists the alarms newest first.
            body = row.text + kSeparator + body;
            m_database.run(QStringLiteral("UPDATE AlarmMsgs SET OverWrite = TRUE WHERE rowid = ?"), {row.rowid});
        }

        const QString levelLine = GetPriLevelName(Level) + QStringLiteral(" Priority Setting");
        const QString alertLine = QStringLiteral("*|") + title + QStringLiteral("|*|*|*|*");
        const QString header = QStringLiteral("# Vantor 32 ") + title + QStringLiteral(" #\r\n# ") + levelLine +
                               QStringLiteral(" #\r\n\r\n");
        queueSendJobs(m_lists, m_timers, m_switches,
                      {header + body, title, QStringLiteral("*"), alertLine, QStringLiteral("*")});

        for (qint16 i = 0; i < kCategoryCount; ++i) {
            if (reported[i])
                QueTrackClear(i);
        }
    }
}

void AlarmQueue::QueTrackClear(qint16 CatIndex)
{
    guarded(QStringLiteral("QueTrackClear"), [&] {
        m_database.run(QStringLiteral("UPDATE AlarmMsgs SET OverWrite = TRUE WHERE OverWrite = FALSE And Catagory = ?"),
                       {kCategoryCodeBase + CatIndex});
        m_counters.setLblQueuedAlarms(CatIndex, QStringLiteral("0"));
    });
}

void AlarmQueue::QueTrackInc(qint16 CatIndex)
{
    const qint16 count = addInt(CInt(Val(m_counters.lblQueuedAlarms(CatIndex))), 1);
    m_counters.setLblQueuedAlarms(CatIndex, QString::number(count));
}

void AlarmQueue::InitLables()
{
    guarded(QStringLiteral("InitLables"), [&] {
        for (int i = 0; i < kCategoryCount; ++i)
            m_counters.setLblQueuedAlarms(i, QStringLiteral("0"));
        for (int i = 0; i < kCategoryCount; ++i) {
            QSqlQuery pending = m_database.run(
                QStringLiteral("SELECT count(*) FROM AlarmMsgs WHERE OverWrite = FALSE AND Catagory = ?"),
                {kCategoryCodeBase + i});
            const int count = pending.next() ? pending.value(0).toInt() : 0;
            m_counters.setLblQueuedAlarms(i, QString::number(count));
        }
    });
}

} // namespace osprel
