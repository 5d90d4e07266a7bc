// bench-smtp: messages per second from alert to SMTP server through the whole path, against a plain smtplib client
// sending the same messages to the same server, and the latency from SendAlert to the message's receipt at the
// design timer intervals. Prints figures beside their targets; exits non-zero only when the bench itself could not
// run.

#include "LatencyStats.h"
#include "Report.h"
#include "SmtpBench.h"

#include <QCoreApplication>
#include <algorithm>

namespace {

constexpr int kMessages = 300;
constexpr int kThroughputTimeoutMs = 120000;
constexpr int kLatencyAlerts = 20;
constexpr int kLatencySpacingMs = 1300;
// The dispatch timers start 5 s after the server has loaded.
constexpr int kSettleMs = 6000;

constexpr double kMaxSlowdown = 1.5;  // the plain client's rate over ours
constexpr double kMaxMedianMs = 2500; // SendAlert to receipt, design intervals

void printRate(const char *name, const PathRate &r)
{
    print("%-32s %8d %8.2f %8.1f %9lld %10.1f %14.2f %12.2f\n", name, r.messages, r.seconds, r.perSecond,
          static_cast<long long>(r.bytesPerMessage), r.firstAfterMs, r.senderCpuMsPerMessage, r.sinkCpuMsPerMessage);
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    ignoreBrokenPipe();
    QString error;
    printLoad("at start");

    SmtpBench bench;
    if (!bench.start(&error))
        return fail(error);
    print("SMTP sink (aiosmtpd, maildir) on %s; two recipients per message\n",
          bench.sinkAddress().toUtf8().constData());

    PathRate ours, plain, oursTls, plainTls;
    if (!bench.serverPath(kMessages, kThroughputTimeoutMs, &ours, &error))
        return fail(error);
    printLoad("after (a)");
    if (!bench.plainClient(kMessages, kThroughputTimeoutMs, &plain, &error))
        return fail(error);
    printLoad("after (b)");
    if (!bench.startTls(&error) || !bench.serverPath(kMessages, kThroughputTimeoutMs, &oursTls, &error, true))
        return fail(error);
    printLoad("after (a) with TLS");
    if (!bench.plainClient(kMessages, kThroughputTimeoutMs, &plainTls, &error, true))
        return fail(error);
    printLoad("after (b) with TLS");
    print("\n%-32s %8s %8s %8s %9s %10s %14s %12s\n", "path", "messages", "seconds", "msg/s", "bytes/msg", "first (ms)",
          "sender CPU ms", "sink CPU ms");
    printRate("(a) alerts through the server", ours);
    printRate("(b) plain smtplib client", plain);
    printRate("(a) STARTTLS + AUTH PLAIN", oursTls);
    printRate("(b) smtplib STARTTLS + AUTH PLAIN", plainTls);
    print("(a) at time scale %g, from the first SendAlert to the last receipt; the chamber program heard %d "
          "deliveries, %d failures\n(b) one connection per message, from its first connection to the last receipt\n"
          "(CPU per message: of the server process, or of the plain client, and of aiosmtpd; to 10 ms in all)\n",
          SmtpBench::kFastTimeScale, ours.delivered, ours.failed);
    print("(a) with STARTTLS + AUTH PLAIN: %d deliveries, %d failures\n", oursTls.delivered, oursTls.failed);

    std::vector<qint64> latencies;
    if (!bench.latency(kLatencyAlerts, kLatencySpacingMs, kSettleMs, &latencies, &error))
        return fail(error);
    print("\n(c) time scale 1, %d alerts %d ms apart after %d s of start-up; SendAlert to receipt (ms):\n   ",
          kLatencyAlerts, kLatencySpacingMs, kSettleMs / 1000);
    for (qint64 ns : latencies)
        print(" %.0f", double(ns) / 1e6);
    const LatencyStats stats = LatencyStats::from(latencies, 0);
    print("\n    median %.0f ms (nearest rank), max %.0f ms\n", stats.p50Us / 1000.0, stats.maxUs / 1000.0);
    printLoad("at end");

    const double slowdown = ours.perSecond > 0 ? plain.perSecond / ours.perSecond : 0;
    printTargetHeader();
    printTarget(QStringLiteral("plain client's rate / ours"), QString::asprintf("%.2fx", slowdown),
                QString::asprintf("<= %gx", kMaxSlowdown), ours.perSecond > 0 && slowdown <= kMaxSlowdown);
    const double slowdownTls = oursTls.perSecond > 0 ? plainTls.perSecond / oursTls.perSecond : 0;
    printTarget(QStringLiteral("the same, STARTTLS + AUTH PLAIN"), QString::asprintf("%.2fx", slowdownTls),
                QString::asprintf("<= %gx", kMaxSlowdown), oursTls.perSecond > 0 && slowdownTls <= kMaxSlowdown);
    printTarget(QStringLiteral("SendAlert to receipt, median"), QString::asprintf("%.0f ms", stats.p50Us / 1000.0),
                QString::asprintf("< %.0f ms", kMaxMedianMs), stats.p50Us / 1000.0 < kMaxMedianMs);
    return 0;
}
