#pragma once
// The Alarm Setup page as the priority settings see it: one row per category with its caption and its level
// buttons, and the page's changed mark.

#include <QString>

namespace osprel {

class AlarmSetupPort
{
public:
    virtual ~AlarmSetupPort() = default;
    // Selects optHi, optMid, optLow or optIgnore of category row index (level 0, 1, 2, anything else Ignore).
    virtual void selectCategoryLevel(int index, int level) = 0;
    // Which level button of category row index is selected: 0 optHi, 1 optMid, 2 optLow, 3 optIgnore, -1 none.
    virtual int categoryOption(int index) const = 0;
    // Accept and Cancel enabled and the change warning shown, or not.
    virtual void setAlarmSetupChanged(bool changed) = 0;
    // The caption of lblErrCata(index), index 0..7.
    virtual void setCategoryCaption(int index, const QString &caption) = 0;
};

} // namespace osprel
