#include "Clock.h"

#include "TimeScale.h"

#include <QElapsedTimer>

namespace osprel {

namespace {
std::function<QDateTime()> &source()
{
    static std::function<QDateTime()> s;
    return s;
}
} // namespace

QDateTime Clock::now()
{
    return source() ? source()() : QDateTime::currentDateTime();
}

void Clock::setSource(std::function<QDateTime()> s)
{
    source() = std::move(s);
}

void Clock::startAt(const QDateTime &moment)
{
    auto elapsed = std::make_shared<QElapsedTimer>();
    elapsed->start();
    const double scale = TimeScale::factor();
    setSource([moment, elapsed, scale] {
        // A scale of 0.01 runs every timer a hundred times faster, so the clock runs a hundred times faster too.
        const double ms = scale > 0 ? double(elapsed->elapsed()) / scale : 0;
        return moment.addMSecs(qint64(ms));
    });
}

} // namespace osprel
