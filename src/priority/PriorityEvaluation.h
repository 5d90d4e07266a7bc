#pragma once
// Whether a level's summary report is due on this tick of the polling timer.

#include "LevelRecord.h"

#include <QString>
#include <functional>

namespace osprel {

// The clock values of one tick: minute and hour as decimal text (no leading zero), weekday 0 (Sunday) to 6.
struct TickClock
{
    QString minute;
    QString hour;
    qint16 weekday = 0;
};

using ReportCall = std::function<void(qint16 level, qint16 mode)>;

// Calls report(Level, OnceEvery) when the definition's report falls due; a due report goes out once within its
// minute, however often the timer ticks in it, and the first tick outside that minute re-arms it.
void CheckPriorityStates(const LevelRecord &Definition, qint16 Level, SentFlags &flags, const TickClock &clock,
                         const ReportCall &report);

} // namespace osprel
