#pragma once
// The figures of one series of timed calls: per-call latency (mean, median, 99th percentile, worst) and the rate
// of the whole series.

#include <QtGlobal>
#include <vector>

struct LatencyStats
{
    int calls = 0;
    double meanUs = 0;
    double p50Us = 0;
    double p99Us = 0;
    double maxUs = 0;
    // Medians of the first and the last tenth of the calls, in call order: whether a call slows down as the
    // series goes on (for SendAlert, as the server's queue grows).
    double firstTenthP50Us = 0;
    double lastTenthP50Us = 0;
    // Calls per second over the whole series, the client's event handling between calls included.
    double callsPerSecond = 0;

    // samplesNs: one latency per call; wallNs: the time the whole series took.
    static LatencyStats from(std::vector<qint64> samplesNs, qint64 wallNs);
};
