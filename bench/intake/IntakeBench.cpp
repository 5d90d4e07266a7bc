// Creates, links, times and unlinks one alert object over a private bus.

#include "IntakeBench.h"

#include "ProcStatus.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDBusObjectPath>
#include <QDBusReply>
#include <QDBusVariant>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QThread>
#include <QTimer>
#include <vector>

namespace {

const QString kService = QStringLiteral("org.osprel.EmailFax");
const QString kFactoryInterface = QStringLiteral("org.osprel.EmailFax.Factory");
const QString kAlertInterface = QStringLiteral("org.osprel.EmailFax.clsAlertCls");
const QString kFormName = QStringLiteral("Vantor32");
constexpr qint16 kLink = 1;
constexpr qint16 kUnlinkNow = 3;
constexpr int kCallTimeoutMs = 5000;
// The first call starts the server, which creates its database on a fresh data folder.
constexpr int kActivationTimeoutMs = 60000;

QString describe(const QDBusMessage &reply)
{
    if (reply.type() == QDBusMessage::ErrorMessage)
        return reply.errorName() + QStringLiteral(": ") + reply.errorMessage();
    return QStringLiteral("unexpected reply of signature \"") + reply.signature() + u'"';
}

bool replyIsTrue(const QDBusMessage &reply)
{
    return reply.type() == QDBusMessage::ReplyMessage && reply.signature() == QLatin1String("b") &&
           reply.arguments().constFirst().toBool();
}

void pump(int ms)
{
    QEventLoop loop;
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    loop.exec();
}

} // namespace

IntakeBench::IntakeBench(const QString &address)
    : m_address(address), m_connectionName(QStringLiteral("osprel-bench-intake")), m_connection(QString())
{
}

IntakeBench::~IntakeBench()
{
    if (m_connection.isConnected()) {
        m_connection = QDBusConnection(QString());
        QDBusConnection::disconnectFromBus(m_connectionName);
    }
}

bool IntakeBench::connect(QString *error)
{
    m_connection = QDBusConnection::connectToBus(m_address, m_connectionName);
    if (!m_connection.isConnected()) {
        *error = QStringLiteral("cannot connect to the private bus: ") + m_connection.lastError().message();
        return false;
    }
    return true;
}

bool IntakeBench::createAndLink(QString *error)
{
    const QDBusMessage create = QDBusMessage::createMethodCall(kService, QStringLiteral("/"), kFactoryInterface,
                                                               QStringLiteral("CreateObject"));
    const QDBusReply<QDBusObjectPath> path = m_connection.call(create, QDBus::Block, kActivationTimeoutMs);
    if (!path.isValid()) {
        *error = QStringLiteral("CreateObject failed: ") + path.error().name() + QStringLiteral(": ") +
                 path.error().message();
        return false;
    }
    if (!m_path.isEmpty())
        m_connection.disconnect(kService, m_path, kAlertInterface, QStringLiteral("AlertReady"), &m_events,
                                SLOT(onSignal(QDBusMessage)));
    m_path = path.value().path();
    if (!m_connection.connect(kService, m_path, kAlertInterface, QStringLiteral("AlertReady"), &m_events,
                              SLOT(onSignal(QDBusMessage)))) {
        *error = QStringLiteral("cannot subscribe to AlertReady: ") + m_connection.lastError().message();
        return false;
    }
    if (!serverCmd(kLink, error))
        return false;
    const QDBusReply<uint> pid = m_connection.interface()->servicePid(kService);
    if (!pid.isValid() || pid.value() == 0) {
        *error = QStringLiteral("GetConnectionUnixProcessID failed: ") + pid.error().message();
        return false;
    }
    m_serverPid = pid_t(pid.value());
    return true;
}

bool IntakeBench::unlinkAndWaitForExit(qint64 *leftAfterMs, QString *error)
{
    if (!serverCmd(kUnlinkNow, error))
        return false;
    QElapsedTimer waited;
    waited.start();
    QDBusConnectionInterface *bus = m_connection.interface();
    while (bus->isServiceRegistered(kService).value()) {
        if (waited.elapsed() > 10000) {
            *error = QStringLiteral("the server was still on the bus 10 s after unlinking");
            return false;
        }
        QThread::msleep(5);
    }
    *leftAfterMs = waited.elapsed();
    while (processRunning(m_serverPid)) {
        if (waited.elapsed() > 15000) {
            *error = QStringLiteral("the server left the bus but its process %1 did not end").arg(m_serverPid);
            return false;
        }
        QThread::msleep(5);
    }
    m_serverPid = 0;
    return true;
}

bool IntakeBench::timePing(int warmUp, int calls, LatencyStats *stats, QString *error)
{
    const QDBusMessage ping = QDBusMessage::createMethodCall(
        kService, QStringLiteral("/"), QStringLiteral("org.freedesktop.DBus.Peer"), QStringLiteral("Ping"));
    return timeSeries(ping, warmUp, calls, 0, stats, error);
}

bool IntakeBench::timeEmptyMethod(int warmUp, int calls, LatencyStats *stats, QString *error)
{
    // The alert interface has no properties: the server's bus layer answers with an empty map from its event loop.
    QDBusMessage getAll = QDBusMessage::createMethodCall(
        kService, m_path, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("GetAll"));
    getAll << QString();
    return timeSeries(getAll, warmUp, calls, 0, stats, error);
}

bool IntakeBench::timeSendAlert(const QString &alert, int warmUp, int calls, LatencyStats *stats, QString *error)
{
    QDBusMessage send = alertCall(QStringLiteral("SendAlert"));
    send << alert;
    return timeSeries(send, warmUp, calls, 1, stats, error);
}

qint64 IntakeBench::settledServerRssKiB(int settleMs)
{
    pump(settleMs);
    return residentKiB(m_serverPid);
}

QDBusMessage IntakeBench::alertCall(const QString &method) const
{
    return QDBusMessage::createMethodCall(kService, m_path, kAlertInterface, method);
}

bool IntakeBench::serverCmd(qint16 command, QString *error)
{
    QDBusMessage call = alertCall(QStringLiteral("ServerCmd"));
    // The command number is int16 ("n"): an int32 would not match the method.
    call << kFormName << QVariant::fromValue<qint16>(command) << QVariant::fromValue(QDBusVariant(QString()));
    const QDBusMessage reply = m_connection.call(call, QDBus::Block, kCallTimeoutMs);
    if (!replyIsTrue(reply)) {
        *error = QStringLiteral("ServerCmd %1 was refused: ").arg(command) + describe(reply);
        return false;
    }
    return true;
}

bool IntakeBench::timeSeries(const QDBusMessage &call, int warmUp, int calls, qint64 eventsPerCall, LatencyStats *stats,
                             QString *error)
{
    const bool wantsTrue = call.member() == QLatin1String("SendAlert");
    auto check = [&](const QDBusMessage &reply) {
        if (reply.type() == QDBusMessage::ReplyMessage && (!wantsTrue || replyIsTrue(reply)))
            return true;
        *error = call.interface() + u'.' + call.member() + QStringLiteral(" failed: ") + describe(reply);
        return false;
    };

    m_events.reset();
    for (int i = 0; i < warmUp; ++i) {
        if (!check(m_connection.call(call, QDBus::Block, kCallTimeoutMs)))
            return false;
        QCoreApplication::processEvents();
    }
    if (!awaitEvents(warmUp * eventsPerCall, kCallTimeoutMs)) {
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
        const QDBusMessage reply = m_connection.call(call, QDBus::Block, kCallTimeoutMs);
        samples[std::size_t(i)] = one.nsecsElapsed();
        if (!check(reply))
            return false;
        QCoreApplication::processEvents();
    }
    // The series ends when the last event has been handled, not when the last reply came.
    if (!awaitEvents(calls * eventsPerCall, kCallTimeoutMs)) {
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
    QElapsedTimer waited;
    waited.start();
    while (m_events.count() < expected) {
        if (waited.elapsed() > timeoutMs)
            return false;
        pump(1);
    }
    // Anything beyond the expected count would mean events from an earlier series leaked into this one.
    return m_events.count() == expected;
}
