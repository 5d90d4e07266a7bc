#pragma once
// The server on the message bus: the service name, the factory, the alert objects by client, and the watch on
// every client (an object lives as long as the connection that created it) and on the bus itself.

#include <QDBusConnection>
#include <QDBusError>
#include <QHash>
#include <QObject>
#include <QTimer>
#include <functional>

class QDBusServiceWatcher;

namespace osprel {

class AlertObjectAdaptor;
class FactoryAdaptor;
class clsAlertCls;

class BusServer : public QObject
{
    Q_OBJECT
public:
    explicit BusServer(const QDBusConnection &connection, QObject *parent = nullptr);
    ~BusServer() override;

    // Registers the factory and takes the service name; false (with the reason in errorText) when either fails.
    bool start(QString *errorText);
    // Gives up the service name and every object (shutdown).
    void stop();

    QDBusConnection connection() const { return m_connection; }
    int objectCount() const { return int(m_objects.size()); }

    // What shows the server's window when somebody on the bus asks (osprel-emailfax --settings while this server
    // runs); it returns whether the window can be seen (false on a server without a display).
    void setWindowShower(std::function<bool()> shower) { m_windowShower = std::move(shower); }
    bool showWindow() { return m_windowShower && m_windowShower(); }

    // Factory work, called by the factory adaptor.
    QString createObject(const QString &owner);
    bool releaseObject(const QString &path, const QString &caller, QDBusError::ErrorType *error, QString *text);

Q_SIGNALS:
    void objectCreated(clsAlertCls *object);
    // A client left the bus; each of its objects is announced before it is released.
    void ownerLeft(clsAlertCls *object);
    // A client released one of its objects.
    void objectReleased(clsAlertCls *object);
    // The server's own bus connection is gone.
    void busLost();

private:
    void dropObject(const QString &path);
    void onServiceUnregistered(const QString &owner);

    QDBusConnection m_connection;
    FactoryAdaptor *m_factory = nullptr;
    QDBusServiceWatcher *m_watcher = nullptr;
    QHash<QString, AlertObjectAdaptor *> m_objects; // by path
    quint64 m_serial = 0;
    QTimer m_busWatch;
    bool m_started = false;
    std::function<bool()> m_windowShower;
};

} // namespace osprel
