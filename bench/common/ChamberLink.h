#pragma once
// The chamber program's side of a bench: one bus connection that creates an alert object (the bus starts the
// server when none runs), links, hands in alerts, and at the end unlinks and waits until the server has gone.

#include <QDBusConnection>
#include <QDBusMessage>
#include <QString>
#include <sys/types.h>

// The reply's error, or what was wrong with it, as one line.
QString describeReply(const QDBusMessage &reply);
// True when the reply is a Boolean true, as SendAlert and ServerCmd answer when they did their work.
bool replyIsTrue(const QDBusMessage &reply);

class ChamberLink
{
public:
    static constexpr qint16 kLink = 1;
    static constexpr qint16 kUnlinkNow = 3;
    static constexpr int kCallTimeoutMs = 5000;

    ChamberLink(const QString &address, const QString &connectionName);
    ~ChamberLink();
    ChamberLink(const ChamberLink &) = delete;
    ChamberLink &operator=(const ChamberLink &) = delete;

    bool connect(QString *error);
    // Asks the factory for an alert object; the first call starts the server.
    bool createObject(QString *error);
    // Delivers one event of the alert object to receiver's slot (a slot taking a QDBusMessage).
    bool subscribe(const QString &event, QObject *receiver, const char *slot, QString *error);
    void unsubscribe(const QString &event, QObject *receiver, const char *slot);
    // Links as the chamber program and looks up the server's process id.
    bool link(QString *error);
    bool createAndLink(QString *error) { return createObject(error) && link(error); }
    bool serverCmd(qint16 command, QString *error);
    // Hands in one alert with a blocking call; false unless the server took it.
    bool sendAlert(const QString &alert, QString *error);
    // Unlinks now and waits until the server has left the bus and its process has ended; *leftAfterMs is how long
    // that took after the unlink call returned.
    bool unlinkAndWaitForExit(qint64 *leftAfterMs, QString *error);

    QDBusConnection &connection() { return m_connection; }
    const QString &path() const { return m_path; }
    pid_t serverPid() const { return m_serverPid; }
    // A call of one of the alert object's methods, arguments still to be added.
    QDBusMessage alertCall(const QString &method) const;

private:
    QString m_address;
    QString m_connectionName;
    QDBusConnection m_connection;
    QString m_path;
    pid_t m_serverPid = 0;
};
