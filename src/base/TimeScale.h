#pragma once
// One process-wide factor on every timer interval (OSPREL_TIME_SCALE, default 1): 0.01 runs the whole system a
// hundred times faster without changing what it does.

#include <QString>

class QTimer;

namespace osprel {

class TimeScale
{
public:
    static double factor();
    static void setFactor(double factor);
    // The scaled interval of a design interval in milliseconds.
    static int interval(int designMs);
};

// Switches a timer on. A timer already running keeps its countdown: starting it again would put its next tick
// off for as long as it keeps being switched on, as the dispatcher does for every job.
void switchOn(QTimer &timer);

// Sets up a named timer with its design interval (scaled) and its enabled state at design.
void setupTimer(QTimer &timer, const QString &name, int designMs, bool enabled, bool singleShot = false);

} // namespace osprel
