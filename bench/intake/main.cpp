// bench-intake: how fast the server takes alerts in over the message bus, against the bus's own round trip, and
// how much memory queued alerts cost it. Prints figures beside their targets; exits non-zero only when the bench
// itself could not run.

#include "AlertText.h"
#include "IntakeBench.h"
#include "PrivateBus.h"
#include "Report.h"

#include <QCoreApplication>
#include <QString>

namespace {

constexpr int kPingWarmUp = 2000;
constexpr int kPings = 20000;
constexpr int kAlertWarmUp = 1000;
constexpr int kAlerts = 10000;
constexpr int kSettleMs = 500;

// One alert as a chamber program sends it.
const QString kAlert = chamberAlert(123, ChamberAlarm);

constexpr double kMinRate = 5000;    // alerts per second
constexpr double kMaxP99Ms = 2.0;    // SendAlert 99th percentile
constexpr double kMaxRatio = 1.5;    // SendAlert latency over the bus round trip
constexpr double kMaxAddedMB = 40.0; // memory for the queued alerts

void printSeries(const char *name, const LatencyStats &s)
{
    print("%-36s %7d %9.1f %9.1f %9.1f %9.1f %10.0f %9.1f %9.1f\n", name, s.calls, s.meanUs, s.p50Us, s.p99Us, s.maxUs,
          s.callsPerSecond, s.firstTenthP50Us, s.lastTenthP50Us);
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
    LatencyStats ping, empty, send;
    if (!bench.timePing(kPingWarmUp, kPings, &ping, &error) ||
        !bench.timeEmptyMethod(kPingWarmUp, kPings, &empty, &error) ||
        !bench.timeSendAlert(kAlert, kAlertWarmUp, kAlerts, &send, &error))
        return fail(error);
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

    print("\n%-36s %7s %9s %9s %9s %9s %10s %9s %9s\n", "series (latency in us)", "calls", "mean", "p50", "p99", "max",
          "calls/s", "p50 1st", "p50 last");
    printSeries("Peer.Ping (bus round trip)", ping);
    printSeries("Properties.GetAll (empty method)", empty);
    printSeries("SendAlert", send);
    printSeries("SendAlert, fresh server, no warm-up", fresh);
    print("(p50 1st, p50 last: medians of the first and the last tenth of the calls, in call order)\n");
    const double addedMB = megabytes(loadedKiB - idleKiB);
    print("\nserver VmRSS: %.1f MB linked and idle, %.1f MB with %d alerts queued (MB = 10^6 bytes)\n",
          megabytes(idleKiB), megabytes(loadedKiB), kAlerts);
    print("server left the bus %lld ms and %lld ms after unlinking\n", static_cast<long long>(firstLeftMs),
          static_cast<long long>(leftAfterMs));

    const double rate = qMin(send.callsPerSecond, fresh.callsPerSecond);
    const double p99Ms = send.p99Us / 1000.0;
    const double ratio50 = ping.p50Us > 0 ? send.p50Us / ping.p50Us : 0;
    const double ratio99 = ping.p99Us > 0 ? send.p99Us / ping.p99Us : 0;
    printLoad("at end");
    printTargetHeader();
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
