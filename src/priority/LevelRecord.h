#pragma once
// The definition of one sending level (High, Mid, Low): whether its alarms go out at once, and when its summary
// report is due. The send-first, send-after and reset settings are kept and edited, not acted on.

#include <QtGlobal>

namespace osprel {

enum ReportInterval : qint32 {
    IntervalNone = -1,
    IntervalMinute = 0,
    IntervalHourly = 1,
    IntervalDaily = 2,
    IntervalWeekly = 3
};
enum PriorityLevel : qint16 { LevelHigh = 0, LevelMid = 1, LevelLow = 2, LevelIgnore = 3 };

struct LevelRecord
{
    bool Immediate = false;
    qint32 OnceEvery = IntervalNone;
    qint16 OnceEveryHourMin = 0;
    qint16 OnceEveryDayHour = 1;
    qint16 OnceEveryWeekDay = 0;
    bool SendFirstEnabled = false;
    bool SendAfterEnabled = false;
    qint16 SendFirst = 0;
    qint16 SendAfter = 0;
    qint16 ResetHour = 1;
    qint16 ResetDay = 0;

    // A record with every field zero or false (what a caller clears before asking for a level).
    static LevelRecord cleared();
    bool operator==(const LevelRecord &other) const;
};

// The report-sent flags of one level, kept by the polling timer for the life of the program.
struct SentFlags
{
    bool hourly = false;
    bool daily = false;
    bool weekly = false;
};

} // namespace osprel
