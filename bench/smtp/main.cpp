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
constexpr int kRounds = 3;
constexpr int kThroughputTimeoutMs = 120000;
constexpr int kLatencyAlerts = 20;
constexpr int kLatencySpacingMs = 1300;
// The dispatch timers start 5 s after the server has loaded.
constexpr int kSettleMs = 6000;

constexpr double kMaxSlowdown = 1.5;  // the plain client's rate over ours
constexpr double kMaxMedianMs = 2500; // SendAlert to receipt, design intervals

void printRate(const QByteArray &name, const PathRate &r)
{
    print("%-38s %8d %8.2f %8.1f %9lld %10.1f %14.2f %12.2f\n", name.constData(), r.messages, r.seconds, r.perSecond,
          static_cast<long long>(r.bytesPerMessage), r.firstAfterMs, r.senderCpuMsPerMessage, r.sinkCpuMsPerMessage);
}

double medianRate(std::vector<PathRate> runs)
{
    std::sort(runs.begin(), runs.end(), [](const PathRate &x, const PathRate &y) { return x.perSecond < y.perSecond; });
    return runs.empty() ? 0 : runs[runs.size() / 2].perSecond;
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

    // The four paths take turns, round after round, so that a slow spell of the machine falls on all of them; the
    // targets compare the medians of the rounds.
    std::vector<PathRate> ours, plain, oursTls, plainTls;
    if (!bench.startTls(&error))
        return fail(error);
    for (int round = 1; round <= kRounds; ++round) {
        PathRate a, b, aTls, bTls;
        if (!bench.serverPath(kMessages, kThroughputTimeoutMs, &a, &error) ||
            !bench.plainClient(kMessages, kThroughputTimeoutMs, &b, &error) ||
            !bench.serverPath(kMessages, kThroughputTimeoutMs, &aTls, &error, true) ||
            !bench.plainClient(kMessages, kThroughputTimeoutMs, &bTls, &error, true))
            return fail(error);
        ours.push_back(a);
        plain.push_back(b);
        oursTls.push_back(aTls);
        plainTls.push_back(bTls);
        printLoad(QStringLiteral("after round %1").arg(round).toUtf8().constData());
    }
    print("\n%-38s %8s %8s %8s %9s %10s %14s %12s\n", "path", "messages", "seconds", "msg/s", "bytes/msg", "first (ms)",
          "sender CPU ms", "sink CPU ms");
    for (int round = 0; round < kRounds; ++round) {
        const QByteArray n = QByteArray::number(round + 1);
        printRate("(a) alerts through the server, " + n, ours[round]);
        printRate("(b) plain smtplib client, " + n, plain[round]);
        printRate("(a) STARTTLS + AUTH PLAIN, " + n, oursTls[round]);
        printRate("(b) smtplib STARTTLS + AUTH PLAIN, " + n, plainTls[round]);
    }
    int delivered = 0;
    int failed = 0;
    for (const std::vector<PathRate> *runs : {&ours, &oursTls}) {
        for (const PathRate &run : *runs) {
            delivered += run.delivered;
            failed += run.failed;
        }
    }
    print("(a) at time scale %g, from the first SendAlert to the last receipt; the chamber program heard %d "
          "deliveries, %d failures in all\n(b) one connection per message, from its first connection to the last "
          "receipt\n(CPU per message: of the server process, or of the plain client, and of aiosmtpd; to 10 ms in "
          "all)\n",
          SmtpBench::kFastTimeScale, delivered, failed);
    const double oursRate = medianRate(ours);
    const double plainRate = medianRate(plain);
    const double oursTlsRate = medianRate(oursTls);
    const double plainTlsRate = medianRate(plainTls);
    print("medians of %d rounds (msg/s): (a) %.1f, (b) %.1f; with STARTTLS + AUTH PLAIN (a) %.1f, (b) %.1f\n", kRounds,
          oursRate, plainRate, oursTlsRate, plainTlsRate);

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

    const double slowdown = oursRate > 0 ? plainRate / oursRate : 0;
    printTargetHeader();
    printTarget(QStringLiteral("plain client's rate / ours"), QString::asprintf("%.2fx", slowdown),
                QString::asprintf("<= %gx", kMaxSlowdown), oursRate > 0 && slowdown <= kMaxSlowdown);
    const double slowdownTls = oursTlsRate > 0 ? plainTlsRate / oursTlsRate : 0;
    printTarget(QStringLiteral("the same, STARTTLS + AUTH PLAIN"), QString::asprintf("%.2fx", slowdownTls),
                QString::asprintf("<= %gx", kMaxSlowdown), oursTlsRate > 0 && slowdownTls <= kMaxSlowdown);
    printTarget(QStringLiteral("SendAlert to receipt, median"), QString::asprintf("%.0f ms", stats.p50Us / 1000.0),
                QString::asprintf("< %.0f ms", kMaxMedianMs), stats.p50Us / 1000.0 < kMaxMedianMs);
    return 0;
}
