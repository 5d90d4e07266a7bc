#include "Conversions.h"

#include "Clock.h"
#include "Values.h"

namespace osprel {

namespace {
const char *const kCategoryNames[kCategoryCount] = {
    "COMM_ERROR",          "CONTROLLER_ERROR", "APPLICATION_ERROR", "COMMAND_RESPONSE_ERROR",
    "COMMAND_PARSE_ERROR", "CHAMBER_ALARM",    "PROGRAM_ALARM",     "GENERAL_STATUS"};
}

QString GetCatName(int code)
{
    // Both the plain index and the stored 5000-based code are accepted.
    const int index = code >= kCategoryCodeBase ? code - kCategoryCodeBase : code;
    if (index < 0 || index >= kCategoryCount)
        return QString();
    return QString::fromLatin1(kCategoryNames[index]);
}

qint16 GetCatIndex(const QString &name)
{
    for (int i = 0; i < kCategoryCount; ++i) {
        if (name == QLatin1String(kCategoryNames[i]))
            return qint16(i);
    }
    return 0;
}

QString GetPriLevelName(int level)
{
    static const char *const names[] = {"High", "Mid", "Low", "Ignore"};
    return level >= 0 && level <= 3 ? QString::fromLatin1(names[level]) : QString();
}

QString GetReportTypeName(int mode)
{
    static const char *const names[] = {"None", "Minute", "Hourly", "Daily", "Weekly"};
    return mode >= -1 && mode <= 3 ? QString::fromLatin1(names[mode + 1]) : QString();
}

QString GetDateTimeStamp()
{
    const QDateTime now = Clock::now();
    return dateText(now) + QStringLiteral("  ") + timeText(now);
}

} // namespace osprel
