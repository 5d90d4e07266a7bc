#pragma once
// A private session bus for one test or bench: a real dbus-daemon that activates the server from the build tree,
// with the environment the server is to inherit.

#include <QDBusConnection>
#include <QProcessEnvironment>
#include <QString>
#include <QTemporaryDir>

class PrivateBus
{
public:
    // The environment a headless server runs in: its data folder, the time scale, no display, no probing of the
    // machine's serial ports for a fax modem, and no way back to the user's own session bus.
    static QProcessEnvironment serverEnvironment(const QString &home, double timeScale);

    explicit PrivateBus(const QProcessEnvironment &environment);
    // A bus whose server gets a data folder of its own (dataFolder()) and the given time scale.
    explicit PrivateBus(double timeScale);
    ~PrivateBus();
    PrivateBus(const PrivateBus &) = delete;
    PrivateBus &operator=(const PrivateBus &) = delete;

    bool start(QString *error);
    // Ends the daemon, and then the server it started (setServerPid), which ends by itself once its bus is gone and
    // is made to only when it does not; waits until both are gone.
    void stop();
    void setServerPid(qint64 pid) { m_serverPid = pid; }

    const QString &address() const { return m_address; }
    // The data folder of the second constructor's server.
    QString dataFolder() const { return m_work.filePath(QStringLiteral("home")); }
    // A new client connection of its own.
    QDBusConnection connect(const QString &name);
    // The process id behind a bus name, or 0.
    qint64 pidOf(const QString &name);
    bool hasOwner(const QString &name);

    static QString buildDir() { return QStringLiteral(OSPREL_BUILD_DIR); }
    static QString sourceDir() { return QStringLiteral(OSPREL_SOURCE_DIR); }

private:
    QDBusConnection queryConnection();

    QString m_query;
    QProcessEnvironment m_environment;
    QTemporaryDir m_work;
    QString m_address;
    qint64 m_pid = 0;
    qint64 m_serverPid = 0;
    QStringList m_connections;
};
