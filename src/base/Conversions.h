#pragma once
// The shared types' names and codes: alarm categories, priority levels, report intervals, and the time stamp.

#include <QString>

namespace osprel {

// Category codes are stored as 5000 + index.
constexpr int kCategoryCodeBase = 5000;
constexpr int kCategoryCount = 8;

// Category name of an index 0..7 or a code 5000..5007; empty for anything else.
QString GetCatName(int code);
// Index 0..7 of a category name (exact, case-sensitive); 0 when the name is none of them.
qint16 GetCatIndex(const QString &name);
// "High", "Mid", "Low", "Ignore" for 0..3; empty otherwise.
QString GetPriLevelName(int level);
// "None", "Minute", "Hourly", "Daily", "Weekly" for -1..3; empty otherwise.
QString GetReportTypeName(int mode);
// "mm/dd/yyyy  hh:mm:ss" of the current moment.
QString GetDateTimeStamp();

} // namespace osprel
