#include "LevelRecord.h"

namespace osprel {

LevelRecord LevelRecord::cleared()
{
    LevelRecord record;
    record.OnceEvery = 0;
    record.OnceEveryDayHour = 0;
    record.ResetHour = 0;
    return record;
}

bool LevelRecord::operator==(const LevelRecord &o) const
{
    return Immediate == o.Immediate && OnceEvery == o.OnceEvery && OnceEveryHourMin == o.OnceEveryHourMin &&
           OnceEveryDayHour == o.OnceEveryDayHour && OnceEveryWeekDay == o.OnceEveryWeekDay &&
           SendFirstEnabled == o.SendFirstEnabled && SendAfterEnabled == o.SendAfterEnabled &&
           SendFirst == o.SendFirst && SendAfter == o.SendAfter && ResetHour == o.ResetHour && ResetDay == o.ResetDay;
}

} // namespace osprel
