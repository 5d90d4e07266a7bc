#pragma once
// What the priority settings show on the window: the level buttons of the alarm setup page and the three level
// frames of the priority page.

#include "LevelRecord.h"

namespace osprel {

class PriorityPort
{
public:
    virtual ~PriorityPort() = default;
    // Selects optHi, optMid, optLow or optIgnore of category row index (level 0, 1, 2, anything else Ignore).
    virtual void selectCategoryLevel(int index, int level) = 0;
    // Fills the priority page from the three level definitions.
    virtual void showLevelDefinitions(const LevelRecord (&levels)[3]) = 0;
};

} // namespace osprel
