#include "FormTimers.h"

#include "TimeScale.h"

namespace osprel {

FormTimers::FormTimers()
{
    // Only TimerInit runs at design; the others are switched on by the procedures that need them.
    setupTimer(TimerInit, QStringLiteral("TimerInit"), 5000, false, true);
    setupTimer(TimerMsgQue, QStringLiteral("TimerMsgQue"), 1000, false);
    setupTimer(TimerDBAlarms, QStringLiteral("TimerDBAlarms"), 1000, false);
    setupTimer(tmrServer, QStringLiteral("tmrServer"), 750, false);
    setupTimer(TimerEmailMsgQue, QStringLiteral("TimerEmailMsgQue"), 1000, false);
    setupTimer(TimerFaxMsgQue, QStringLiteral("TimerFaxMsgQue"), 5000, false);
}

} // namespace osprel
