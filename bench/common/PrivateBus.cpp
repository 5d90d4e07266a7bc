// Starts and ends the bench's private dbus-daemon through scripts/lib/private-bus.sh.

#include "PrivateBus.h"

#include "ProcStatus.h"

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

PrivateBus::PrivateBus() : m_root(QDir::tempPath() + QStringLiteral("/osprel-bench-XXXXXX")) {}

PrivateBus::~PrivateBus()
{
    stop();
}

QString PrivateBus::dataFolder() const
{
    return m_root.filePath(QStringLiteral("home"));
}

bool PrivateBus::start(QString *error)
{
    if (!m_root.isValid()) {
        *error = QStringLiteral("cannot make a temporary folder: ") + m_root.errorString();
        return false;
    }
    const QString runtime = m_root.filePath(QStringLiteral("runtime"));
    if (!QDir().mkpath(dataFolder()) || !QDir().mkpath(runtime) ||
        !QFile::setPermissions(runtime, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner)) {
        *error = QStringLiteral("cannot prepare the folders under ") + m_root.path();
        return false;
    }

    // The daemon, and the server it starts, inherit this environment: a fresh data folder, no display, the bench's
    // time scale, no probing of the machine's serial ports for a fax modem, and no way back to the user's own
    // session bus.
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("OSPREL_HOME"), dataFolder());
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), runtime);
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    environment.insert(QStringLiteral("OSPREL_TIME_SCALE"), QString::number(m_timeScale, 'g', 10));
    environment.insert(QStringLiteral("OSPREL_FAX_SYSTEM_PORTS"), QStringLiteral("0"));
    environment.remove(QStringLiteral("OSPREL_FAX_DEVICES"));
    environment.remove(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"));

    QProcess script;
    script.setProcessEnvironment(environment);
    script.start(QStringLiteral("bash"),
                 {QStringLiteral(OSPREL_SOURCE_DIR "/scripts/lib/private-bus.sh"),
                  QStringLiteral(OSPREL_BUILD_DIR "/dbus-1/services"), m_root.filePath(QStringLiteral("bus"))});
    if (!script.waitForFinished(30000) || script.exitStatus() != QProcess::NormalExit || script.exitCode() != 0) {
        *error = QStringLiteral("the bus helper failed: ") + QString::fromLocal8Bit(script.readAllStandardError());
        return false;
    }
    const QStringList words = QString::fromLocal8Bit(script.readAllStandardOutput()).simplified().split(u' ');
    bool ok = false;
    if (words.size() == 2)
        m_pid = pid_t(words.at(1).toLong(&ok));
    if (!ok || m_pid <= 0 || words.at(0).isEmpty()) {
        *error = QStringLiteral("the bus helper printed no address and pid");
        m_pid = 0;
        return false;
    }
    m_address = words.at(0);
    return true;
}

void PrivateBus::stop()
{
    // A server that still runs ends by itself once its bus is gone; it is asked to only when it does not.
    if (m_pid > 0)
        endProcess(m_pid, 0);
    if (m_serverPid > 0)
        endProcess(m_serverPid, 5000);
    m_pid = 0;
    m_serverPid = 0;
    m_address.clear();
}
