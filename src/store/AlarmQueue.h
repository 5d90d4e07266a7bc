#pragma once
// The pool of held alarms (table AlarmMsgs): an alarm goes into a free slot and waits for its level's summary
// report, which gathers every pending alarm of the level into one message on both send queues. Beside it, the
// eight counters of queued alarms per category.

#include <QString>

namespace osprel {

class Database;
class FormLists;
class FormTimers;
class QueuedAlarmsPort;
class SendSwitches;

class AlarmQueue
{
public:
    AlarmQueue(const Database &database, FormLists &lists, FormTimers &timers, QueuedAlarmsPort &counters,
               const SendSwitches &switches);

    void DBAddAlmMsg(const QString &ErrID, const QString &AlarmString, qint16 Catagory, qint16 Priority,
                     const QString &HistData);
    void DBGetAlmMsg(qint16 Level, qint16 Mode);
    void QueTrackClear(qint16 CatIndex);
    void QueTrackInc(qint16 CatIndex);
    // Sets the eight counters from the pending rows of the table.
    void InitLables();

private:
    // Sends level's held alarms as one report under title (newest first) and frees their rows; raises on a bad row.
    void report(qint16 Level, const QString &title);
    bool storeInFreeSlot(const QString &ErrID, const QString &AlarmString, qint16 Catagory, qint16 Priority,
                         const QString &HistData);

    const Database &m_database;
    FormLists &m_lists;
    FormTimers &m_timers;
    QueuedAlarmsPort &m_counters;
    const SendSwitches &m_switches;
};

} // namespace osprel
