#pragma once
// A private session bus for one bench run: its own temporary data folder, runtime folder and dbus-daemon, able to
// start the server from the build tree's service folder.

#include <QString>
#include <QTemporaryDir>
#include <sys/types.h>

class PrivateBus
{
public:
    PrivateBus();
    ~PrivateBus();
    PrivateBus(const PrivateBus &) = delete;
    PrivateBus &operator=(const PrivateBus &) = delete;

    // The time scale (OSPREL_TIME_SCALE) of the server this bus starts; 1, the design intervals, unless set before
    // start().
    void setTimeScale(double factor) { m_timeScale = factor; }
    // Starts the daemon through the project's bus helper script; false with the reason in *error.
    bool start(QString *error);
    // The server the daemon started: stop() makes sure it has ended before the folders go.
    void setServerPid(pid_t pid) { m_serverPid = pid; }
    // Ends the daemon (which the destructor also does) and waits until it and the server are gone.
    void stop();

    const QString &address() const { return m_address; }
    QString dataFolder() const;

private:
    QTemporaryDir m_root;
    QString m_address;
    pid_t m_pid = 0;
    pid_t m_serverPid = 0;
    double m_timeScale = 1;
};
