#include "PrivateBus.h"

#include "ProcStatus.h"

#include <QDBusConnectionInterface>
#include <QDBusReply>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QThread>
#include <csignal>

namespace {
// Gives the process graceMs to end by itself, then asks it to with SIGTERM, and at last makes it with SIGKILL.
void endProcess(pid_t pid, int graceMs)
{
    QElapsedTimer waited;
    waited.start();
    while (processRunning(pid) && waited.elapsed() < graceMs)
        QThread::msleep(10);
    for (int signal : {SIGTERM, SIGKILL}) {
        if (!processRunning(pid))
            return;
        ::kill(pid, signal);
        waited.restart();
        while (processRunning(pid) && waited.elapsed() < 5000)
            QThread::msleep(10);
    }
}
} // namespace

QProcessEnvironment PrivateBus::serverEnvironment(const QString &home, double timeScale)
{
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("OSPREL_HOME"), home);
    env.insert(QStringLiteral("OSPREL_TIME_SCALE"), QString::number(timeScale, 'g', 10));
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    env.insert(QStringLiteral("OSPREL_FAX_SYSTEM_PORTS"), QStringLiteral("0"));
    env.remove(QStringLiteral("OSPREL_FAX_DEVICES"));
    env.remove(QStringLiteral("DISPLAY"));
    env.remove(QStringLiteral("WAYLAND_DISPLAY"));
    env.remove(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"));
    if (!env.contains(QStringLiteral("XDG_RUNTIME_DIR")))
        env.insert(QStringLiteral("XDG_RUNTIME_DIR"), home);
    return env;
}

PrivateBus::PrivateBus(const QProcessEnvironment &environment) : m_environment(environment) {}

PrivateBus::PrivateBus(double timeScale)
{
    const QString runtime = m_work.filePath(QStringLiteral("runtime"));
    QDir().mkpath(dataFolder());
    QDir().mkpath(runtime);
    QFile::setPermissions(runtime, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    m_environment = serverEnvironment(dataFolder(), timeScale);
    m_environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), runtime);
}

PrivateBus::~PrivateBus()
{
    stop();
}

bool PrivateBus::start(QString *error)
{
    QProcess script;
    script.setProcessEnvironment(m_environment);
    script.start(QStringLiteral("bash"),
                 {sourceDir() + QStringLiteral("/scripts/lib/private-bus.sh"),
                  buildDir() + QStringLiteral("/dbus-1/services"), m_work.filePath(QStringLiteral("bus"))});
    if (!script.waitForFinished(20000) || script.exitStatus() != QProcess::NormalExit || script.exitCode() != 0) {
        *error = QStringLiteral("the bus helper failed: ") + QString::fromLocal8Bit(script.readAllStandardError());
        return false;
    }
    const QStringList fields = QString::fromLocal8Bit(script.readAllStandardOutput()).simplified().split(u' ');
    bool ok = false;
    const qint64 pid = fields.size() == 2 ? fields.at(1).toLongLong(&ok) : 0;
    if (!ok || pid <= 0 || fields.at(0).isEmpty()) {
        *error = QStringLiteral("the bus helper printed no address and pid");
        return false;
    }
    m_address = fields.at(0);
    m_pid = pid;
    return true;
}

void PrivateBus::stop()
{
    for (const QString &name : std::as_const(m_connections))
        QDBusConnection::disconnectFromBus(name);
    m_connections.clear();
    m_query.clear();
    if (m_pid > 0)
        endProcess(pid_t(m_pid), 0);
    if (m_serverPid > 0)
        endProcess(pid_t(m_serverPid), 5000);
    m_pid = 0;
    m_serverPid = 0;
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
