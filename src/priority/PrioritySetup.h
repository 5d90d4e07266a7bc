#pragma once
// The alarm setup and priority pages' procedures: accept writes the page into the settings and the database,
// cancel reloads both from the database, and the clear buttons throw away a category's held alarms.

#include "AlarmSetupPort.h"
#include "LevelRecord.h"
#include "PriorityPagePort.h"

#include <QString>

namespace osprel {

class AlarmQueue;
class FormLists;
class FormTimers;
class PriorityStore;

class PrioritySetup
{
public:
    PrioritySetup(PriorityStore &store, AlarmQueue &alarms, FormLists &lists, FormTimers &timers,
                  AlarmSetupPort &alarmSetup, PriorityPagePort &priorityPage);

    void SetAlarmSetupChanged();
    void SetAlarmSetupUnchanged();
    void SetPrioritySetupChanged();
    void SetPrioritySetupUnchanged();

    void cmdAcceptAlarmSetup_Click();
    void cmdCancelAlarmSetup_Click();
    void cmdAcceptPriority_Click();
    void cmdCancelPriority_Click();
    void cmdClearAlmCat_Click(int index);
    void cmdClearAllAlmCat_Click();
    // The test alarm: one sample alert on the incoming queue, taking the same road as a received one.
    void cmdAddErr_Click();

    // The level record the page's frame describes (no validation: a typed word is 0).
    static LevelRecord recordOf(const LevelFrameValues &frame);

private:
    PriorityStore &m_store;
    AlarmQueue &m_alarms;
    FormLists &m_lists;
    FormTimers &m_timers;
    AlarmSetupPort &m_alarmSetup;
    PriorityPagePort &m_priorityPage;
};

// Weekday names: "Sunday" 0 .. "Saturday" 6, and for the reset day "Daily" 7; unknown names are 0.
qint16 weekdayNumber(const QString &name);
QString weekdayName(int number);

} // namespace osprel
