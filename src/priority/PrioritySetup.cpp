#include "PrioritySetup.h"

#include "AlarmQueue.h"
#include "ErrorReport.h"
#include "FormLists.h"
#include "FormTimers.h"
#include "PriorityStore.h"
#include "TimeScale.h"
#include "Values.h"

namespace osprel {

namespace {
const char *const kWeekdays[8] = {"Sunday",   "Monday", "Tuesday",  "Wednesday",
                                  "Thursday", "Friday", "Saturday", "Daily"};
const char *const kLevelKeys[3] = {"HighPri", "MidPri", "LowPri"};

// The sample alert of the test button, in the comma-and-semicolon form the chamber program's first sample used.
const QString kSampleAlert = QStringLiteral(
    "123;456, Wharehouse1, Chamber in the warehouse, On, QLM V, T/H, Running, Yes;999, CH1 actual high alarm;"
    "200, 210, 100, 0;100, 95, 100, 0;9:55 pm");

qint16 number(const QString &text)
{
    return CInt(Val(text));
}
} // namespace

qint16 weekdayNumber(const QString &name)
{
    for (int i = 0; i < 8; ++i) {
        if (name == QLatin1String(kWeekdays[i]))
            return qint16(i);
    }
    return 0;
}

QString weekdayName(int number)
{
    return number >= 0 && number < 8 ? QString::fromLatin1(kWeekdays[number]) : QString();
}

PrioritySetup::PrioritySetup(PriorityStore &store, AlarmQueue &alarms, FormLists &lists, FormTimers &timers,
                             AlarmSetupPort &alarmSetup, PriorityPagePort &priorityPage)
    : m_store(store), m_alarms(alarms), m_lists(lists), m_timers(timers), m_alarmSetup(alarmSetup),
      m_priorityPage(priorityPage)
{
}

void PrioritySetup::SetAlarmSetupChanged()
{
    m_alarmSetup.setAlarmSetupChanged(true);
}

void PrioritySetup::SetAlarmSetupUnchanged()
{
    m_alarmSetup.setAlarmSetupChanged(false);
}

void PrioritySetup::SetPrioritySetupChanged()
{
    m_priorityPage.setPrioritySetupChanged(true);
}

void PrioritySetup::SetPrioritySetupUnchanged()
{
    m_priorityPage.setPrioritySetupChanged(false);
}

void PrioritySetup::cmdAcceptAlarmSetup_Click()
{
    guarded(QStringLiteral("cmdAcceptAlarmSetup_Click"), [&] {
        for (int i = 0; i < 8; ++i) {
            const int option = m_alarmSetup.categoryOption(i);
            // A row with no button selected is saved as Ignore.
            m_store.categoryLevel(i) = QString::number(option >= 0 && option <= 2 ? option : 3);
        }
        m_store.DBAddCatPriority();
        SetAlarmSetupUnchanged();
    });
}

void PrioritySetup::cmdCancelAlarmSetup_Click()
{
    guarded(QStringLiteral("cmdCancelAlarmSetup_Click"), [&] {
        m_store.DBInitAlarmCatSetup();
        SetAlarmSetupUnchanged();
    });
}

LevelRecord PrioritySetup::recordOf(const LevelFrameValues &f)
{
    LevelRecord r;
    r.Immediate = f.chkImmediate;
    r.OnceEvery = !f.chkOnceEvery ? IntervalNone
                  : f.optHour     ? IntervalHourly
                  : f.optMinute   ? IntervalMinute
                  : f.optDay      ? IntervalDaily
                  : f.optWeek     ? IntervalWeekly
                                  : IntervalNone;
    r.OnceEveryHourMin = number(f.cboMinutes);
    r.OnceEveryDayHour = number(f.cboHours);
    r.OnceEveryWeekDay = weekdayNumber(f.cboWeekday);
    if (r.OnceEveryWeekDay == 7)
        r.OnceEveryWeekDay = 0; // "Daily" is a reset day only
    r.SendFirstEnabled = f.chkFirstXTimes;
    r.SendFirst = number(f.cboFirstXTimes);
    r.SendAfterEnabled = f.chkAfterXTimes;
    r.SendAfter = number(f.cboAfterXTimes);
    r.ResetHour = number(f.cboResetHours); // "12:00" reads as 12
    r.ResetDay = weekdayNumber(f.cboResetWeekday);
    return r;
}

void PrioritySetup::cmdAcceptPriority_Click()
{
    guarded(QStringLiteral("cmdAcceptPriority_Click"), [&] {
        for (int level = 0; level < 3; ++level) {
            const LevelFrameValues frame = m_priorityPage.levelFrame(level);
            m_store.level(level) = recordOf(frame);
            m_store.DBAddPriority(m_store.level(level), QString::fromLatin1(kLevelKeys[level]));
            m_store.ticketRule(level) = frame.ticket.bounded();
            m_store.DBAddTicketRule(qint16(level));
        }
        SetPrioritySetupUnchanged();
    });
}

void PrioritySetup::cmdCancelPriority_Click()
{
    guarded(QStringLiteral("cmdCancelPriority_Click"), [&] {
        m_store.DBInitAlarmPriSetup();
        SetPrioritySetupUnchanged();
    });
}

void PrioritySetup::cmdClearAlmCat_Click(int index)
{
    guarded(QStringLiteral("cmdClearAlmCat_Click"), [&] {
        if (index < 0 || index > 7)
            raise(Err::SubscriptOutOfRange);
        m_alarms.QueTrackClear(qint16(index));
    });
}

void PrioritySetup::cmdClearAllAlmCat_Click()
{
    guarded(QStringLiteral("cmdClearAllAlmCat_Click"), [&] {
        for (qint16 i = 0; i < 8; ++i)
            m_alarms.QueTrackClear(i);
    });
}

void PrioritySetup::cmdAddErr_Click()
{
    guarded(QStringLiteral("cmdAddErr_Click"), [&] {
        m_lists.lvwMsgQue.add(QStringList{QString(), kSampleAlert});
        switchOn(m_timers.TimerMsgQue);
    });
}

} // namespace osprel
