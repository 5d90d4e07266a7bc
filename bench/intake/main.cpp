// bench-intake: how fast the server takes alerts in over the message bus, against the bus's own round trip, and
// how much memory queued alerts cost it. Prints figures beside their targets; exits non-zero only when the bench
// itself could not run.

#include "AlertText.h"
#include "IntakeBench.h"
#include "PrivateBus.h"
#include "Report.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QString>
#include <algorithm>
#include <fcntl.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr int kPingWarmUp = 2000;
constexpr int kPings = 20000;
constexpr int kAlertWarmUp = 1000;
constexpr int kAlerts = 10000;
constexpr int kSettleMs = 500;

// One alert as a chamber program sends it.
const QString kAlert = chamberAlert(123, ChamberAlarm);

constexpr int kPipelined = 10000;
constexpr int kWindow = 64; // calls on their way at once in the pipelined series

constexpr double kMinDurableRate = 2000; // alerts per second, pipelined, each on disk before its answer
constexpr double kMinRate = 5000;    // alerts per second
constexpr double kMaxP99Ms = 2.0;    // SendAlert 99th percentile
constexpr double kMaxRatio = 1.5;    // SendAlert latency over the bus round trip
constexpr double kMaxAddedMB = 40.0; // memory for the queued alerts

void printSeries(const char *name, const LatencyStats &s)
{
    print("%-36s %7d %9.1f %9.1f %9.1f %9.1f %10.0f %9.1f %9.1f\n", name, s.calls, s.meanUs, s.p50Us, s.p99Us, s.maxUs,
          s.callsPerSecond, s.firstTenthP50Us, s.lastTenthP50Us);
}

// The disk's own flush: median microseconds of writing 4 KiB and fdatasync() in the data folder, 200 times.
double fsyncUs(const QString &folder)
{
    const QByteArray path = (folder + QStringLiteral("/fsync-probe")).toLocal8Bit();
    const int fd = ::open(path.constData(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    if (fd < 0)
        return -1;
    std::vector<qint64> samples;
    const std::vector<char> page(4096, 'x');
    for (int i = 0; i < 200; ++i) {
        QElapsedTimer one;
        one.start();
        if (::pwrite(fd, page.data(), page.size(), off_t(i) * 4096) < 0 || ::fdatasync(fd) != 0)
            break;
        samples.push_back(one.nsecsElapsed());
    }
    ::close(fd);
    ::unlink(path.constData());
    if (samples.empty())
        return -1;
    std::nth_element(samples.begin(), samples.begin() + samples.size() / 2, samples.end());
    return samples[samples.size() / 2] / 1000.0;
}

double megabytes(qint64 kib)
{
    return double(kib) * 1024.0 / 1e6;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    ignoreBrokenPipe();
    QString error;
    printLoad("at start");

    PrivateBus bus(1);
    if (!bus.start(&error))
        return fail(error);
    IntakeBench bench(bus.address());
    if (!bench.connect(&error))
        return fail(error);

    // First server: latency and rate, each series after a warm-up.
    if (!bench.createAndLink(&error))
        return fail(error);
    bus.setServerPid(bench.serverPid());
    print("private bus %s, server pid %d, data folder %s\n", bus.address().toUtf8().constData(), int(bench.serverPid()),
          bus.dataFolder().toUtf8().constData());
    LatencyStats ping, empty, send, pipelined;
    if (!bench.timePing(kPingWarmUp, kPings, &ping, &error) ||
        !bench.timeEmptyMethod(kPingWarmUp, kPings, &empty, &error) ||
        !bench.timeSendAlert(kAlert, kAlertWarmUp, kAlerts, &send, &error) ||
        !bench.timeSendAlertPipelined(kAlert, kPipelined, kWindow, &pipelined, &error))
        return fail(error);
    const double flushUs = fsyncUs(bus.dataFolder());
    qint64 leftAfterMs = 0;
    if (!bench.unlinkAndWaitForExit(&leftAfterMs, &error))
        return fail(error);
    const qint64 firstLeftMs = leftAfterMs;

    // Second, fresh server: exactly kAlerts alerts queued, for a clean memory figure (no warm-up alerts).
    if (!bench.createAndLink(&error))
        return fail(error);
    bus.setServerPid(bench.serverPid());
    const qint64 idleKiB = bench.settledServerRssKiB(kSettleMs);
    LatencyStats fresh;
    if (!bench.timeSendAlert(kAlert, 0, kAlerts, &fresh, &error))
        return fail(error);
    const qint64 loadedKiB = bench.settledServerRssKiB(kSettleMs);
    if (idleKiB < 0 || loadedKiB < 0)
        return fail(QStringLiteral("cannot read VmRSS of server process %1").arg(bench.serverPid()));
    if (!bench.unlinkAndWaitForExit(&leftAfterMs, &error))
        return fail(error);
    bus.stop();

    // Third server, on a bus of its own, that commits each alert by itself: what group commit saves.
    qputenv("OSPREL_GROUP_COMMIT", "0");
    PrivateBus eachBus(1);
    qunsetenv("OSPREL_GROUP_COMMIT");
    if (!eachBus.start(&error))
        return fail(error);
    IntakeBench each(eachBus.address(), QStringLiteral("osprel-bench-intake-each"));
    LatencyStats eachBlocking, eachPipelined;
    if (!each.connect(&error) || !each.createAndLink(&error))
        return fail(error);
    eachBus.setServerPid(each.serverPid());
    if (!each.timeSendAlert(kAlert, kAlertWarmUp, kAlerts / 2, &eachBlocking, &error) ||
        !each.timeSendAlertPipelined(kAlert, kPipelined / 2, kWindow, &eachPipelined, &error) ||
        !each.unlinkAndWaitForExit(&leftAfterMs, &error))
        return fail(error);
    eachBus.stop();

    print("\n%-36s %7s %9s %9s %9s %9s %10s %9s %9s\n", "series (latency in us)", "calls", "mean", "p50", "p99", "max",
          "calls/s", "p50 1st", "p50 last");
    printSeries("Peer.Ping (bus round trip)", ping);
    printSeries("Properties.GetAll (empty method)", empty);
    printSeries("SendAlert", send);
    printSeries("SendAlert, fresh server, no warm-up", fresh);
    printSeries("SendAlert pipelined (64 on their way)", pipelined);
    printSeries("commit per alert: SendAlert", eachBlocking);
    printSeries("commit per alert: pipelined", eachPipelined);
    print("(p50 1st, p50 last: medians of the first and the last tenth of the calls, in call order)\n");
    const double addedMB = megabytes(loadedKiB - idleKiB);
    print("\nserver VmRSS: %.1f MB linked and idle, %.1f MB with %d alerts queued (MB = 10^6 bytes)\n",
          megabytes(idleKiB), megabytes(loadedKiB), kAlerts);
    print("server left the bus %lld ms and %lld ms after unlinking\n", static_cast<long long>(firstLeftMs),
          static_cast<long long>(leftAfterMs));

    print("the disk's own fsync (4 KiB write + fdatasync, median): %.1f us\n", flushUs);
    const double rate = qMin(send.callsPerSecond, fresh.callsPerSecond);
    const double p99Ms = send.p99Us / 1000.0;
    const double ratio50 = ping.p50Us > 0 ? send.p50Us / ping.p50Us : 0;
    const double ratio99 = ping.p99Us > 0 ? send.p99Us / ping.p99Us : 0;
    printLoad("at end");
    printTargetHeader();
    printTarget(QStringLiteral("durable intake, pipelined"), QString::asprintf("%.0f /s", pipelined.callsPerSecond),
                QString::asprintf(">= %.0f /s", kMinDurableRate), pipelined.callsPerSecond >= kMinDurableRate);
    printTarget(QStringLiteral("SendAlert p50 vs Ping p50 + one fsync"), QString::asprintf("%.0f us", send.p50Us),
                QString::asprintf("<= %.0f us", ping.p50Us + flushUs), send.p50Us <= ping.p50Us + flushUs);
    printTarget(QStringLiteral("SendAlert rate (slower of both runs)"), QString::asprintf("%.0f /s", rate),
                QString::asprintf(">= %.0f /s", kMinRate), rate >= kMinRate);
    printTarget(QStringLiteral("SendAlert p99"), QString::asprintf("%.3f ms", p99Ms),
                QString::asprintf("< %g ms", kMaxP99Ms), p99Ms < kMaxP99Ms);
    printTarget(QStringLiteral("SendAlert p50 / Ping p50"), QString::asprintf("%.2fx", ratio50),
                QString::asprintf("<= %gx", kMaxRatio), ratio50 <= kMaxRatio);
    printTarget(QStringLiteral("SendAlert p99 / Ping p99"), QString::asprintf("%.2fx", ratio99),
                QString::asprintf("<= %gx", kMaxRatio), ratio99 <= kMaxRatio);
    printTarget(QStringLiteral("memory added by %1 queued alerts").arg(kAlerts), QString::asprintf("%.1f MB", addedMB),
                QString::asprintf("< %g MB", kMaxAddedMB), addedMB < kMaxAddedMB);
    return 0;
}
