#include "Dispatcher.h"

#include "AlarmQueue.h"
#include "AlertLink.h"
#include "Clock.h"
#include "Conversions.h"
#include "ErrorReport.h"
#include "FormLists.h"
#include "FormTimers.h"
#include "Globals.h"
#include "Log.h"
#include "Notification.h"
#include "PriorityEvaluation.h"
#include "PriorityStore.h"
#include "QueueRoutines.h"
#include "SendSwitches.h"
#include "TimeScale.h"
#include "Values.h"
#include "clsAlertCls.h"

namespace osprel {

namespace {
// Held alarms keep their category as its stored code; a chamber program may send the bare index 0..7.
qint16 categoryCode(qint16 category)
{
    return category >= 0 && category < kCategoryCount ? qint16(kCategoryCodeBase + category) : category;
}
} // namespace

Dispatcher::Dispatcher(FormLists &lists, FormTimers &timers, PriorityStore &priorities, AlarmQueue &alarms,
                       SendSwitches &switches, AlertLink &link, std::function<void()> sendStatUpdate, QObject *parent)
    : QObject(parent), m_lists(lists), m_timers(timers), m_priorities(priorities), m_alarms(alarms),
      m_switches(switches), m_link(link), m_sendStatUpdate(std::move(sendStatUpdate))
{
    connect(&m_timers.TimerMsgQue, &QTimer::timeout, this, &Dispatcher::TimerMsgQue_Timer);
    connect(&m_timers.TimerDBAlarms, &QTimer::timeout, this, &Dispatcher::TimerDBAlarms_Timer);
}

void Dispatcher::TimerMsgQue_Timer()
{
    if (!m_lists.lvwMsgQue.isEmpty()) {
        if (guarded(QStringLiteral("TimerMsgQue_Timer"), [&] { dispatchHead(); }))
            m_headFailures = 0;
        else if (++m_headFailures >= kMaxHeadFailures)
            dropPoisonedHead();
    }
    guarded(QStringLiteral("TimerMsgQue_Timer"), [&] {
        if (m_sendStatUpdate)
            m_sendStatUpdate();
        if (g.gblnServerLinked && m_link.server())
            m_link.server()->SendServerStatus(IsSendInProgress() || g.gblnStoreFailed, reportedEmailState(),
                                              reportedFaxState());
    });
}

void Dispatcher::dispatchHead()
{
    ListStore &incoming = m_lists.lvwMsgQue;
    const QString alert = incoming.text(1, 2);
    const qint16 category = CInt(Val(incoming.text(1, 4)));

    const QString categoryName = GetCatName(category);
    const qint16 level = m_priorities.GetPriotiryLevel(categoryName);
    LevelRecord info = LevelRecord::cleared();
    m_priorities.GetPriotiryLevelInfo(info, level);

    AlertSummary summary;
    const QString message = FormatErrMsg(alert, summary);
    const QString summaryLine = summary.line();
    const bool sendNow = level != LevelIgnore && info.Immediate;

    if (sendNow) {
        SendJob job{message, summary.chamberName, summary.categoryName, summaryLine, summary.alertNumber};
        if (m_immediateHook)
            m_immediateHook(level, job);
        queueSendJobs(m_lists, m_timers, m_switches, job);
    }
    incoming.remove(1);
    // Independently of sending, a level with a report interval holds the alarm for its summary. A cleared record
    // has interval 0, so an ignored category's alarm is held too, under level 3.
    if (info.OnceEvery != IntervalNone)
        m_alarms.DBAddAlmMsg(summary.alertNumber, message, categoryCode(category), level, summaryLine);
}

void Dispatcher::dropPoisonedHead()
{
    guarded(QStringLiteral("TimerMsgQue_Timer"), [&] {
        DumpStr(QStringLiteral("Alert removed from the incoming queue after ") + QString::number(kMaxHeadFailures) +
                QStringLiteral(" failed attempts: ") + m_lists.lvwMsgQue.text(1, 2));
        m_lists.lvwMsgQue.remove(1);
    });
    m_headFailures = 0;
}

void Dispatcher::TimerDBAlarms_Timer()
{
    guarded(QStringLiteral("TimerDBAlarms_Timer"), [&] {
        const QDateTime now = Clock::now();
        TickClock clock;
        clock.hour = QString::number(now.time().hour());
        clock.minute = QString::number(now.time().minute());
        clock.weekday = qint16(now.date().dayOfWeek() % 7); // Sunday 0 .. Saturday 6
        const ReportCall report = [this](qint16 level, qint16 mode) { m_alarms.DBGetAlmMsg(level, mode); };
        for (qint16 level = LevelHigh; level <= LevelLow; ++level)
            CheckPriorityStates(m_priorities.level(level), level, m_sent[level], clock, report);
    });
}

QString Dispatcher::cmdEnableTimer_Click()
{
    if (m_timers.TimerMsgQue.isActive()) {
        m_timers.TimerMsgQue.stop();
        return QStringLiteral("TimerMsgQue OFF");
    }
    m_timers.TimerMsgQue.start();
    return QStringLiteral("TimerMsgQue ON");
}

} // namespace osprel
