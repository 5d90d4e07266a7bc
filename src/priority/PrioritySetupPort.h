#pragma once
// What the alarm setup and priority pages show and what their controls hold, as the accept procedures read them.

#include "PriorityPort.h"

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
};

// The setup pages, numbered as their change warnings are.
enum class SetupPage { CommSetup = 0, AlarmSetup = 1, Priority = 2 };

class PrioritySetupPort : public PriorityPort
{
public:
    // Which level button of category row index is selected: 0 optHi, 1 optMid, 2 optLow, 3 optIgnore, -1 none.
    virtual int categoryOption(int index) const = 0;
    virtual LevelFrameValues levelFrame(int level) const = 0;
    // A setup page marked changed (its Accept and Cancel enabled, its change warning shown) or unchanged.
    virtual void setSetupPageChanged(SetupPage page, bool changed) = 0;
};

} // namespace osprel
