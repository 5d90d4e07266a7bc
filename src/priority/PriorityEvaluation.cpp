#include "PriorityEvaluation.h"

#include "ErrorReport.h"
#include "Values.h"

namespace osprel {

namespace {
// Sends once while matching; any tick that does not match re-arms the flag.
void onceWhile(bool matches, bool &sent, const std::function<void()> &send)
{
    if (!matches) {
        sent = false;
        return;
    }
    if (!sent) {
        send();
        sent = true;
    }
}
} // namespace

void CheckPriorityStates(const LevelRecord &d, qint16 Level, SentFlags &flags, const TickClock &clock,
                         const ReportCall &report)
{
    guarded(QStringLiteral("CheckPriorityStates"), [&] {
        auto send = [&] { report(Level, qint16(d.OnceEvery)); };
        switch (d.OnceEvery) {
        case IntervalMinute:
            send(); // every tick: the report frequency is the polling interval
            break;
        case IntervalHourly:
            onceWhile(strictInt(clock.minute) == d.OnceEveryHourMin, flags.hourly, send);
            break;
        case IntervalDaily:
            onceWhile(strictInt(clock.hour) == d.OnceEveryDayHour && strictInt(clock.minute) == d.OnceEveryHourMin,
                      flags.daily, send);
            break;
        case IntervalWeekly:
            onceWhile(strictInt(QString::number(clock.weekday)) == d.OnceEveryWeekDay &&
                          strictInt(clock.hour) == d.OnceEveryDayHour && strictInt(clock.minute) == d.OnceEveryHourMin,
                      flags.weekly, send);
            break;
        default:
            break;
        }
    });
}

} // namespace osprel
