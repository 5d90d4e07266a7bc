#pragma once
// The two timers that move alerts forward: TimerMsgQue takes the oldest alert from the incoming queue, judges it by
// its category's level and turns it into send jobs and/or a held alarm; TimerDBAlarms asks each second whether a
// level's summary report is due.

#include "LevelRecord.h"
#include "QueueRoutines.h"

#include <QObject>
#include <functional>

namespace osprel {

class AlarmQueue;
class AlertLink;
class FormLists;
class FormTimers;
class PriorityStore;
class SendSwitches;

class Dispatcher : public QObject
{
    Q_OBJECT
public:
    // A failing alert is tried again on the next tick; after this many failures in a row it leaves the queue,
    // logged, so that one malformed alert cannot hold back every alert behind it.
    static constexpr int kMaxHeadFailures = 3;

    Dispatcher(FormLists &lists, FormTimers &timers, PriorityStore &priorities, AlarmQueue &alarms,
               SendSwitches &switches, AlertLink &link, std::function<void()> sendStatUpdate,
               QObject *parent = nullptr);

    void TimerMsgQue_Timer();
    void TimerDBAlarms_Timer();
    // Switches TimerMsgQue on when it is off and off when it is on; returns the button's new caption.
    QString cmdEnableTimer_Click();

    // Told of every alert sent at once, with its level, just before its jobs are queued; it may change the job (an
    // alert that opens a ticket carries the ticket's code in its subject and text).
    using ImmediateHook = std::function<void(qint16 level, SendJob &job)>;
    void setImmediateHook(ImmediateHook hook) { m_immediateHook = std::move(hook); }

private:
    void dispatchHead();
    void dropPoisonedHead();

    FormLists &m_lists;
    FormTimers &m_timers;
    PriorityStore &m_priorities;
    AlarmQueue &m_alarms;
    SendSwitches &m_switches;
    AlertLink &m_link;
    std::function<void()> m_sendStatUpdate;
    ImmediateHook m_immediateHook;
    SentFlags m_sent[3];
    int m_headFailures = 0;
};

} // namespace osprel
