#pragma once
// The one place the server reads the wall clock; tests and the demo move it instead of waiting.

#include <QDateTime>
#include <functional>

namespace osprel {

class Clock
{
public:
    // The current local date and time.
    static QDateTime now();
    // Replaces the source of now() (tests); an empty function restores the system clock.
    static void setSource(std::function<QDateTime()> source);
    // Starts the clock at a given moment and lets it run on from there at the process's time scale.
    static void startAt(const QDateTime &moment);
};

} // namespace osprel
