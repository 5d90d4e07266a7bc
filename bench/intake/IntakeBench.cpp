// Times series of blocking calls on one linked alert object over a private bus.

#include "IntakeBench.h"

#include "ProcStatus.h"
#include "Waiting.h"

#include <QCoreApplication>
#include <QDBusPendingCallWatcher>
#include <QElapsedTimer>
#include <functional>
#include <vector>

namespace {

const QString kAlertReady = QStringLiteral("AlertReady");
const char *const kCountSlot = SLOT(onSignal(QDBusMessage));

} // namespace

IntakeBench::IntakeBench(const QString &address, const QString &connectionName) : m_link(address, connectionName) {}

IntakeBench::~IntakeBench() = default;

bool IntakeBench::createAndLink(QString *error)
{
    if (m_subscribed)
        m_link.unsubscribe(kAlertReady, &m_events, kCountSlot);
    m_subscribed = false;
    if (!m_link.createObject(error) || !m_link.subscribe(kAlertReady, &m_events, kCountSlot, error))
        return false;
    m_subscribed = true;
    return m_link.link(error);
}

bool IntakeBench::timePing(int warmUp, int calls, LatencyStats *stats, QString *error)
{
    const QDBusMessage ping =
        QDBusMessage::createMethodCall(QStringLiteral("org.osprel.EmailFax"), QStringLiteral("/"),
                                       QStringLiteral("org.freedesktop.DBus.Peer"), QStringLiteral("Ping"));
    return timeSeries(ping, warmUp, calls, 0, stats, error);
}

bool IntakeBench::timeEmptyMethod(int warmUp, int calls, LatencyStats *stats, QString *error)
{
    // The alert interface has no properties: the server's bus layer answers with an empty map from its event loop.
    QDBusMessage getAll =
        QDBusMessage::createMethodCall(QStringLiteral("org.osprel.EmailFax"), m_link.path(),
                                       QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("GetAll"));
    getAll << QString();
    return timeSeries(getAll, warmUp, calls, 0, stats, error);
}

bool IntakeBench::timeSendAlert(const QString &alert, int warmUp, int calls, LatencyStats *stats, QString *error)
{
    QDBusMessage send = m_link.alertCall(QStringLiteral("SendAlert"));
    send << alert;
    return timeSeries(send, warmUp, calls, 1, stats, error);
}

bool IntakeBench::timeSendAlertPipelined(const QString &alert, int calls, int window, LatencyStats *stats,
                                         QString *error)
{
    QDBusMessage send = m_link.alertCall(QStringLiteral("SendAlert"));
    send << alert;
    QDBusConnection &connection = m_link.connection();
    std::vector<qint64> samples(std::size_t(calls), 0);
    int sent = 0;
    int done = 0;
    bool failed = false;
    m_events.reset();
    QElapsedTimer wall;
    wall.start();
    std::function<void()> sendOne = [&] {
        const int index = sent++;
        const qint64 start = wall.nsecsElapsed();
        auto *watcher = new QDBusPendingCallWatcher(connection.asyncCall(send, ChamberLink::kCallTimeoutMs));
        QObject::connect(watcher, &QDBusPendingCallWatcher::finished, [&, index, start, watcher] {
            samples[std::size_t(index)] = wall.nsecsElapsed() - start;
            const QDBusMessage reply = watcher->reply();
            if (!failed && !replyIsTrue(reply)) {
                failed = true;
                *error = QStringLiteral("pipelined SendAlert failed: ") + describeReply(reply);
            }
            ++done;
            watcher->deleteLater();
            if (sent < calls && !failed)
                sendOne();
        });
    };
    for (int i = 0; i < qMin(window, calls); ++i)
        sendOne();
    waitFor([&] { return done == sent && (sent == calls || failed); }, 120000);
    if (failed)
        return false;
    if (done != calls) {
        *error = QStringLiteral("%1 of %2 pipelined calls answered").arg(done).arg(calls);
        return false;
    }
    *stats = LatencyStats::from(std::move(samples), wall.nsecsElapsed());
    if (!awaitEvents(calls, ChamberLink::kCallTimeoutMs)) {
        *error = QStringLiteral("%1 AlertReady events arrived where %2 were expected").arg(m_events.count()).arg(calls);
        return false;
    }
    return true;
}

qint64 IntakeBench::settledServerRssKiB(int settleMs)
{
    pump(settleMs);
    return residentKiB(m_link.serverPid());
}

bool IntakeBench::timeSeries(const QDBusMessage &call, int warmUp, int calls, qint64 eventsPerCall, LatencyStats *stats,
                             QString *error)
{
    const bool wantsTrue = call.member() == QLatin1String("SendAlert");
    auto check = [&](const QDBusMessage &reply) {
        if (reply.type() == QDBusMessage::ReplyMessage && (!wantsTrue || replyIsTrue(reply)))
            return true;
        *error = call.interface() + u'.' + call.member() + QStringLiteral(" failed: ") + describeReply(reply);
        return false;
    };
    QDBusConnection &connection = m_link.connection();

    m_events.reset();
    for (int i = 0; i < warmUp; ++i) {
        if (!check(connection.call(call, QDBus::Block, ChamberLink::kCallTimeoutMs)))
            return false;
        QCoreApplication::processEvents();
    }
    if (!awaitEvents(warmUp * eventsPerCall, ChamberLink::kCallTimeoutMs)) {
        *error = QStringLiteral("%1 AlertReady events arrived during the warm-up where %2 were expected")
                     .arg(m_events.count())
                     .arg(warmUp * eventsPerCall);
        return false;
    }

    m_events.reset();
    std::vector<qint64> samples(std::size_t(calls), 0);
    QElapsedTimer wall;
    wall.start();
    for (int i = 0; i < calls; ++i) {
        QElapsedTimer one;
        one.start();
        const QDBusMessage reply = connection.call(call, QDBus::Block, ChamberLink::kCallTimeoutMs);
        samples[std::size_t(i)] = one.nsecsElapsed();
        if (!check(reply))
            return false;
        QCoreApplication::processEvents();
    }
    // The series ends when the last event has been handled, not when the last reply came.
    if (!awaitEvents(calls * eventsPerCall, ChamberLink::kCallTimeoutMs)) {
        *error = QStringLiteral("%1 AlertReady events arrived where %2 were expected")
                     .arg(m_events.count())
                     .arg(calls * eventsPerCall);
        return false;
    }
    *stats = LatencyStats::from(std::move(samples), wall.nsecsElapsed());
    return true;
}

bool IntakeBench::awaitEvents(qint64 expected, int timeoutMs)
{
    waitFor([&] { return m_events.count() >= expected; }, timeoutMs);
    // Anything beyond the expected count would mean events from an earlier series leaked into this one.
    return m_events.count() == expected;
}
