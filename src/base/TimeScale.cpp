#include "TimeScale.h"

#include <QTimer>
#include <cmath>

namespace osprel {

namespace {
double &scale()
{
    static double s = [] {
        bool ok = false;
        const double v = qEnvironmentVariable("OSPREL_TIME_SCALE").toDouble(&ok);
        return ok && v >= 0 && std::isfinite(v) ? v : 1.0;
    }();
    return s;
}
} // namespace

double TimeScale::factor()
{
    return scale();
}

void TimeScale::setFactor(double f)
{
    scale() = f >= 0 && std::isfinite(f) ? f : 1.0;
}

int TimeScale::interval(int designMs)
{
    return int(std::lround(designMs * scale()));
}

void switchOn(QTimer &timer)
{
    if (!timer.isActive())
        timer.start();
}

void setupTimer(QTimer &timer, const QString &name, int designMs, bool enabled, bool singleShot)
{
    timer.setObjectName(name);
    timer.setInterval(TimeScale::interval(designMs));
    timer.setSingleShot(singleShot);
    if (enabled)
        timer.start();
}

} // namespace osprel
