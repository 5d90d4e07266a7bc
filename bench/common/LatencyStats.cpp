// Reduces a series of call latencies to its figures.

#include "LatencyStats.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

// Nearest-rank percentile of sorted samples: the smallest sample that at least p percent of all samples do not
// exceed.
qint64 percentile(const std::vector<qint64> &sorted, double p)
{
    const auto rank = std::size_t(std::ceil(p / 100.0 * double(sorted.size())));
    return sorted.at(std::clamp<std::size_t>(rank, 1, sorted.size()) - 1);
}

double medianUs(std::vector<qint64>::const_iterator begin, std::vector<qint64>::const_iterator end)
{
    std::vector<qint64> part(begin, end);
    std::sort(part.begin(), part.end());
    return double(percentile(part, 50)) / 1000.0;
}

} // namespace

LatencyStats LatencyStats::from(std::vector<qint64> samplesNs, qint64 wallNs)
{
    LatencyStats stats;
    if (samplesNs.empty())
        return stats;
    const auto tenth = std::max<std::ptrdiff_t>(1, std::ptrdiff_t(samplesNs.size() / 10));
    stats.firstTenthP50Us = medianUs(samplesNs.cbegin(), samplesNs.cbegin() + tenth);
    stats.lastTenthP50Us = medianUs(samplesNs.cend() - tenth, samplesNs.cend());
    std::sort(samplesNs.begin(), samplesNs.end());
    stats.calls = int(samplesNs.size());
    const double totalNs = std::accumulate(samplesNs.begin(), samplesNs.end(), 0.0);
    stats.meanUs = totalNs / double(samplesNs.size()) / 1000.0;
    stats.p50Us = double(percentile(samplesNs, 50)) / 1000.0;
    stats.p99Us = double(percentile(samplesNs, 99)) / 1000.0;
    stats.maxUs = double(samplesNs.back()) / 1000.0;
    stats.callsPerSecond = wallNs > 0 ? double(samplesNs.size()) * 1e9 / double(wallNs) : 0;
    return stats;
}
