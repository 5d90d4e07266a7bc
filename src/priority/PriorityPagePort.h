#pragma once
// The Alarm Priority page as the priority settings see it: one frame per sending level, and the page's changed
// mark.

#include "LevelRecord.h"
#include "TicketRule.h"

#include <QString>

namespace osprel {

// The controls of one level frame, as they stand.
struct LevelFrameValues
{
    bool chkImmediate = false;
    bool chkOnceEvery = false;
    bool optMinute = false, optHour = false, optDay = false, optWeek = false;
    QString cboMinutes, cboHours, cboWeekday;
    bool chkFirstXTimes = false;
    QString cboFirstXTimes;
    bool chkAfterXTimes = false;
    QString cboAfterXTimes;
    QString cboResetHours, cboResetWeekday;
    // Acknowledgement, repeat and escalation (numbers as the spin boxes hold them).
    TicketRule ticket;
};

class PriorityPagePort
{
public:
    virtual ~PriorityPagePort() = default;
    // Fills the page from the three level definitions.
    virtual void showLevelDefinitions(const LevelRecord (&levels)[3]) = 0;
    // Fills each level's acknowledgement, repeat and escalation controls.
    virtual void showTicketRules(const TicketRule (&rules)[3]) = 0;
    virtual LevelFrameValues levelFrame(int level) const = 0;
    // Accept and Cancel enabled and the change warning shown, or not.
    virtual void setPrioritySetupChanged(bool changed) = 0;
};

} // namespace osprel
