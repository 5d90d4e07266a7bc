#include "PrivateBus.h"

#include <QDBusConnectionInterface>
#include <QDBusReply>
#include <QProcess>
#include <csignal>

QProcessEnvironment PrivateBus::serverEnvironment(const QString &home, double timeScale)
{
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("OSPREL_HOME"), home);
    env.insert(QStringLiteral("OSPREL_TIME_SCALE"), QString::number(timeScale));
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    env.insert(QStringLiteral("OSPREL_FAX_SYSTEM_PORTS"), QStringLiteral("0")); // no probing of the machine's ports
    env.remove(QStringLiteral("DISPLAY"));
    env.remove(QStringLiteral("WAYLAND_DISPLAY"));
    env.remove(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"));
    if (!env.contains(QStringLiteral("XDG_RUNTIME_DIR")))
        env.insert(QStringLiteral("XDG_RUNTIME_DIR"), home);
    return env;
}

PrivateBus::PrivateBus(const QProcessEnvironment &environment) : m_environment(environment) {}

PrivateBus::~PrivateBus()
{
    stop();
}

bool PrivateBus::start(QString *error)
{
    QProcess script;
    script.setProcessEnvironment(m_environment);
    script.start(sourceDir() + QStringLiteral("/scripts/lib/private-bus.sh"),
                 {buildDir() + QStringLiteral("/dbus-1/services"), m_work.path()});
    if (!script.waitForFinished(20000) || script.exitCode() != 0) {
        *error = QString::fromLocal8Bit(script.readAllStandardError());
        return false;
    }
    const QStringList fields = QString::fromLocal8Bit(script.readAllStandardOutput()).split(u' ', Qt::SkipEmptyParts);
    if (fields.size() != 2) {
        *error = QStringLiteral("private-bus.sh printed no address");
        return false;
    }
    m_address = fields.at(0);
    m_pid = fields.at(1).trimmed().toLongLong();
    return true;
}

void PrivateBus::stop()
{
    for (const QString &name : std::as_const(m_connections))
        QDBusConnection::disconnectFromBus(name);
    m_connections.clear();
    m_query.clear();
    if (m_pid > 0)
        ::kill(pid_t(m_pid), SIGTERM);
    m_pid = 0;
}

QDBusConnection PrivateBus::connect(const QString &name)
{
    const QString unique = name + QStringLiteral("-") + QString::number(m_connections.size()) + QStringLiteral("-") +
                           m_address.section(u'=', 1, 1).section(u',', 0, 0);
    m_connections.append(unique);
    return QDBusConnection::connectToBus(m_address, unique);
}

QDBusConnection PrivateBus::queryConnection()
{
    if (m_query.isEmpty()) {
        QDBusConnection bus = connect(QStringLiteral("query"));
        m_query = m_connections.last();
        return bus;
    }
    return QDBusConnection(m_query);
}

qint64 PrivateBus::pidOf(const QString &name)
{
    QDBusConnection bus = queryConnection();
    const QDBusReply<uint> reply = bus.interface()->servicePid(name);
    return reply.isValid() ? reply.value() : 0;
}

bool PrivateBus::hasOwner(const QString &name)
{
    QDBusConnection bus = queryConnection();
    const QDBusReply<bool> reply = bus.interface()->isServiceRegistered(name);
    return reply.isValid() && reply.value();
}
