// Creates, links, feeds and unlinks one alert object over a private bus.

#include "ChamberLink.h"

#include "ProcStatus.h"

#include <QDBusConnectionInterface>
#include <QDBusObjectPath>
#include <QDBusReply>
#include <QDBusVariant>
#include <QElapsedTimer>
#include <QThread>

namespace {

const QString kService = QStringLiteral("org.osprel.EmailFax");
const QString kFactoryInterface = QStringLiteral("org.osprel.EmailFax.Factory");
const QString kAlertInterface = QStringLiteral("org.osprel.EmailFax.clsAlertCls");
const QString kFormName = QStringLiteral("Vantor32");
// The first call starts the server, which creates its database on a fresh data folder.
constexpr int kActivationTimeoutMs = 60000;

} // namespace

QString describeReply(const QDBusMessage &reply)
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

ChamberLink::ChamberLink(const QString &address, const QString &connectionName)
    : m_address(address), m_connectionName(connectionName), m_connection(QString())
{
}

ChamberLink::~ChamberLink()
{
    if (m_connection.isConnected()) {
        m_connection = QDBusConnection(QString());
        QDBusConnection::disconnectFromBus(m_connectionName);
    }
}

bool ChamberLink::connect(QString *error)
{
    m_connection = QDBusConnection::connectToBus(m_address, m_connectionName);
    if (!m_connection.isConnected()) {
        *error = QStringLiteral("cannot connect to the private bus: ") + m_connection.lastError().message();
        return false;
    }
    return true;
}

bool ChamberLink::createObject(QString *error)
{
    const QDBusMessage create = QDBusMessage::createMethodCall(kService, QStringLiteral("/"), kFactoryInterface,
                                                               QStringLiteral("CreateObject"));
    const QDBusReply<QDBusObjectPath> path = m_connection.call(create, QDBus::Block, kActivationTimeoutMs);
    if (!path.isValid()) {
        *error = QStringLiteral("CreateObject failed: ") + path.error().name() + QStringLiteral(": ") +
                 path.error().message();
        return false;
    }
    m_path = path.value().path();
    return true;
}

bool ChamberLink::subscribe(const QString &event, QObject *receiver, const char *slot, QString *error)
{
    if (m_connection.connect(kService, m_path, kAlertInterface, event, receiver, slot))
        return true;
    *error = QStringLiteral("cannot subscribe to ") + event + QStringLiteral(": ") + m_connection.lastError().message();
    return false;
}

void ChamberLink::unsubscribe(const QString &event, QObject *receiver, const char *slot)
{
    m_connection.disconnect(kService, m_path, kAlertInterface, event, receiver, slot);
}

bool ChamberLink::link(QString *error)
{
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

bool ChamberLink::serverCmd(qint16 command, QString *error)
{
    QDBusMessage call = alertCall(QStringLiteral("ServerCmd"));
    // The command number is int16 ("n"): an int32 would not match the method.
    call << kFormName << QVariant::fromValue<qint16>(command) << QVariant::fromValue(QDBusVariant(QString()));
    const QDBusMessage reply = m_connection.call(call, QDBus::Block, kCallTimeoutMs);
    if (!replyIsTrue(reply)) {
        *error = QStringLiteral("ServerCmd %1 was refused: ").arg(command) + describeReply(reply);
        return false;
    }
    return true;
}

bool ChamberLink::sendAlert(const QString &alert, QString *error)
{
    QDBusMessage call = alertCall(QStringLiteral("SendAlert"));
    call << alert;
    const QDBusMessage reply = m_connection.call(call, QDBus::Block, kCallTimeoutMs);
    if (!replyIsTrue(reply)) {
        *error = QStringLiteral("SendAlert was refused: ") + describeReply(reply);
        return false;
    }
    return true;
}

bool ChamberLink::unlinkAndWaitForExit(qint64 *leftAfterMs, QString *error)
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

QDBusMessage ChamberLink::alertCall(const QString &method) const
{
    return QDBusMessage::createMethodCall(kService, m_path, kAlertInterface, method);
}
