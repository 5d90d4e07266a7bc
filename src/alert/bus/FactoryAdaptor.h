#pragma once
// The factory object at "/": makes one alert object per call for the calling client, and releases it; shows the
// server's window on request.

#include <QDBusContext>
#include <QDBusObjectPath>
#include <QObject>

namespace osprel {

class BusServer;

class FactoryAdaptor : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.osprel.EmailFax.Factory")
public:
    explicit FactoryAdaptor(BusServer &server);

public Q_SLOTS:
    QDBusObjectPath CreateObject();
    void Release(const QDBusObjectPath &object);
    // Brings the server's window up (the settings window asked for from the command line); false when the server
    // has no display to show it on.
    bool ShowWindow();

private:
    BusServer &m_server;
};

} // namespace osprel
