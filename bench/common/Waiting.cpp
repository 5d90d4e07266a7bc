// Runs the event loop for a while, or until a condition holds.

#include "Waiting.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

void pump(int ms)
{
    QEventLoop loop;
    QTimer::singleShot(ms, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
}

bool waitFor(const std::function<bool()> &done, int timeoutMs, int stepMs)
{
    QElapsedTimer waited;
    waited.start();
    while (!done()) {
        if (waited.elapsed() > timeoutMs)
            return done();
        pump(stepMs);
    }
    return true;
}
