#pragma once
// A private session bus for one test: a real dbus-daemon that activates the server from the build tree, with the
// environment the server is to inherit.

#include <QDBusConnection>
#include <QProcessEnvironment>
#include <QString>
#include <QTemporaryDir>

class PrivateBus
{
public:
    // The environment a headless server runs in: its data folder, the time scale, no display.
    static QProcessEnvironment serverEnvironment(const QString &home, double timeScale);

    explicit PrivateBus(const QProcessEnvironment &environment);
    ~PrivateBus();

    bool start(QString *error);
    void stop();
    const QString &address() const { return m_address; }
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
    QStringList m_connections;
};
