#pragma once
// The chamber side of the intake bench: a chamber link that times series of blocking calls on its alert object,
// counts the AlertReady events they bring back, and reads the server's memory.

#include "ChamberLink.h"
#include "LatencyStats.h"
#include "SignalCounter.h"

#include <QDBusMessage>
#include <QString>
#include <sys/types.h>

class IntakeBench
{
public:
    // connectionName: the chamber's bus connection; two benches in one process need different names.
    explicit IntakeBench(const QString &address, const QString &connectionName = QStringLiteral("osprel-bench-intake"));
    ~IntakeBench();
    IntakeBench(const IntakeBench &) = delete;
    IntakeBench &operator=(const IntakeBench &) = delete;

    bool connect(QString *error) { return m_link.connect(error); }
    // Asks the factory for an alert object (the bus starts the server when none runs), counts its AlertReady
    // events, links, and looks up the server's process id.
    bool createAndLink(QString *error);
    bool unlinkAndWaitForExit(qint64 *leftAfterMs, QString *error)
    {
        return m_link.unlinkAndWaitForExit(leftAfterMs, error);
    }

    // The bus's own round trip: the peer interface is answered by the server's bus library without reaching the
    // server's event loop.
    bool timePing(int warmUp, int calls, LatencyStats *stats, QString *error);
    // A call that reaches the server's event loop and does nothing there: the floor for any method of the server.
    bool timeEmptyMethod(int warmUp, int calls, LatencyStats *stats, QString *error);
    // SendAlert with one alert text; each call queues one alert in the server and brings back one AlertReady.
    bool timeSendAlert(const QString &alert, int warmUp, int calls, LatencyStats *stats, QString *error);
    // The same, pipelined: up to `window` calls on their way at once, as a chamber program that does not wait for
    // each answer sends them. Each sample runs from a call's sending to its answer.
    bool timeSendAlertPipelined(const QString &alert, int calls, int window, LatencyStats *stats, QString *error);

    pid_t serverPid() const { return m_link.serverPid(); }
    // Lets the server settle for a moment, then reads its VmRSS in KiB (-1 when unreadable).
    qint64 settledServerRssKiB(int settleMs);

private:
    // Times `calls` blocking calls of one message after `warmUp` untimed ones. The client handles its incoming
    // events between calls, outside the timed call but inside the series' wall time, as a chamber program would.
    bool timeSeries(const QDBusMessage &call, int warmUp, int calls, qint64 eventsPerCall, LatencyStats *stats,
                    QString *error);
    // Runs the event loop until `expected` events were counted or timeoutMs passed.
    bool awaitEvents(qint64 expected, int timeoutMs);

    ChamberLink m_link;
    SignalCounter m_events;
    bool m_subscribed = false;
};
