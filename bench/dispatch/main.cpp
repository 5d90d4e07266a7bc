// bench-dispatch: the CPU time and the rate of dispatching alerts with 10, 1,000 and 100,000 alerts waiting in the
// incoming queue. Prints figures beside their targets; exits non-zero only when the bench itself could not run.

#include "DispatchBench.h"
#include "Report.h"
#include "TimeScale.h"

#include <QApplication>
#include <QTemporaryDir>
#include <algorithm>
#include <vector>

namespace {

constexpr int kQueueLengths[] = {10, 1000, 100000};
constexpr int kRounds = 5;
constexpr int kWarmUp = 200;
constexpr int kAlerts = 2000;

constexpr double kMaxCostRatio = 1.3; // largest over smallest per-alert CPU time
constexpr double kMinRate = 2000;     // alerts per second, flat out

template <typename Value> double median(std::vector<DispatchRun> runs, Value value)
{
    std::sort(runs.begin(), runs.end(),
              [&](const DispatchRun &a, const DispatchRun &b) { return value(a) < value(b); });
    return value(runs.at(runs.size() / 2));
}

} // namespace

int main(int argc, char **argv)
{
    // The real window, on the offscreen platform whatever the display; every timer at interval 0, so that
    // TimerMsgQue fires back to back (and TimerDBAlarms, tmrServer and TimerTCPConnect as often, as at their design
    // intervals of about a second each).
    QTemporaryDir runtime;
    if (qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR"))
        qputenv("XDG_RUNTIME_DIR", runtime.path().toLocal8Bit());
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // Fax is on, but no fax modem is looked for on the machine's serial ports: the fax jobs only queue up.
    qputenv("OSPREL_FAX_SYSTEM_PORTS", "0");
    qunsetenv("OSPREL_FAX_DEVICES");
    osprel::TimeScale::setFactor(0);
    QApplication app(argc, argv);
    ignoreBrokenPipe();
    QApplication::setQuitOnLastWindowClosed(false);
    printLoad("at start");

    DispatchBench bench;
    QString error;
    if (!bench.start(&error))
        return fail(error);
    print("time scale 0 (TimerMsgQue back to back); e-mail and fax queue timers parked; per series %d alerts "
          "measured after %d unmeasured, %d rounds over the queue lengths\nmix %s\n",
          kAlerts, kWarmUp, kRounds, DispatchBench::categoryMix().toUtf8().constData());

    std::vector<std::vector<DispatchRun>> runs(std::size(kQueueLengths));
    print("\n%6s %10s %10s %12s %10s %11s %10s %10s %14s\n", "round", "queue", "alerts", "CPU us/alert", "alerts/s",
          "e-mail jobs", "fax jobs", "held", "fill us/alert");
    for (int round = 1; round <= kRounds; ++round) {
        for (std::size_t i = 0; i < std::size(kQueueLengths); ++i) {
            DispatchRun run;
            if (!bench.measure(kQueueLengths[i], kWarmUp, kAlerts, &run, &error))
                return fail(error);
            print("%6d %10d %10d %12.1f %10.0f %11d %10d %10d %14.1f\n", round, run.queueLength, run.alerts,
                  run.cpuUsPerAlert, run.alertsPerSecond, run.emailJobs, run.faxJobs, run.heldAlarms,
                  run.fillCpuUsPerAlert);
            runs[i].push_back(run);
        }
    }
    const int sessions = bench.emailSessionsStarted();
    const int errors = bench.errorsLogged();
    print("(CPU: the whole process per dispatched alert, less the hand-in that keeps the queue at its length; "
          "fill: in-process intake per alert before a series)\ne-mail messages started: %d; errors logged: %d\n",
          sessions, errors);
    bench.stop();

    print("\n%10s %18s %16s\n", "queue", "median CPU us/alert", "median alerts/s");
    std::vector<double> cost, rate;
    for (std::size_t i = 0; i < std::size(kQueueLengths); ++i) {
        cost.push_back(median(runs[i], [](const DispatchRun &r) { return r.cpuUsPerAlert; }));
        rate.push_back(median(runs[i], [](const DispatchRun &r) { return r.alertsPerSecond; }));
        print("%10d %18.1f %16.0f\n", kQueueLengths[i], cost.back(), rate.back());
    }
    printLoad("at end");

    const auto [cheapest, dearest] = std::minmax_element(cost.begin(), cost.end());
    const double ratio = *cheapest > 0 ? *dearest / *cheapest : 0;
    const double slowest = *std::min_element(rate.begin(), rate.end());
    printTargetHeader();
    printTarget(QStringLiteral("per-alert CPU, largest / smallest median"), QString::asprintf("%.2fx", ratio),
                QString::asprintf("<= %gx", kMaxCostRatio), ratio <= kMaxCostRatio);
    printTarget(QStringLiteral("dispatch rate, slowest median"), QString::asprintf("%.0f /s", slowest),
                QString::asprintf(">= %.0f /s", kMinRate), slowest >= kMinRate);
    if (sessions != 0 || errors != 0)
        return fail(QStringLiteral("the bench did not measure dispatch alone: %1 e-mail messages started, %2 errors "
                                   "logged")
                        .arg(sessions)
                        .arg(errors));
    return 0;
}
