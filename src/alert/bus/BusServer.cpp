#include "BusServer.h"

#include "AlertObjectAdaptor.h"
#include "BusNames.h"
#include "FactoryAdaptor.h"
#include "TimeScale.h"
#include "clsAlertCls.h"

#include <QDBusConnectionInterface>
#include <QDBusServiceWatcher>

namespace osprel {

BusServer::BusServer(const QDBusConnection &connection, QObject *parent) : QObject(parent), m_connection(connection)
{
    m_factory = new FactoryAdaptor(*this);
    m_factory->setParent(this);
    m_watcher = new QDBusServiceWatcher(QString(), m_connection, QDBusServiceWatcher::WatchForUnregistration, this);
    connect(m_watcher, &QDBusServiceWatcher::serviceUnregistered, this, &BusServer::onServiceUnregistered);
    // Qt raises no event when the bus connection drops, so it is looked at once a second.
    m_busWatch.setObjectName(QStringLiteral("tmrBusWatch"));
    m_busWatch.setInterval(qMax(1, TimeScale::interval(1000)));
    connect(&m_busWatch, &QTimer::timeout, this, [this] {
        if (!m_connection.isConnected()) {
            m_busWatch.stop();
            Q_EMIT busLost();
        }
    });
}

BusServer::~BusServer()
{
    stop();
}

bool BusServer::start(QString *errorText)
{
    if (!m_connection.isConnected()) {
        *errorText = QStringLiteral("No message bus: ") + m_connection.lastError().message();
        return false;
    }
    if (!m_connection.registerObject(bus::kFactoryPath, m_factory, QDBusConnection::ExportAllSlots)) {
        *errorText = QStringLiteral("Cannot register the factory object: ") + m_connection.lastError().message();
        return false;
    }
    if (!m_connection.registerService(bus::kService)) {
        *errorText = QStringLiteral("Cannot take the bus name ") + bus::kService + QStringLiteral(": ") +
                     m_connection.lastError().message();
        m_connection.unregisterObject(bus::kFactoryPath);
        return false;
    }
    m_started = true;
    m_busWatch.start();
    return true;
}

void BusServer::stop()
{
    const QStringList paths = m_objects.keys();
    for (const QString &path : paths)
        dropObject(path);
    m_busWatch.stop();
    if (m_started && m_connection.isConnected()) {
        m_connection.unregisterObject(bus::kFactoryPath);
        m_connection.unregisterService(bus::kService);
    }
    m_started = false;
}

QString BusServer::createObject(const QString &owner)
{
    const QString path = bus::kObjectPathPrefix + QString::number(++m_serial);
    auto *object = new clsAlertCls();
    object->AddRef(); // the client's reference
    auto *adaptor = new AlertObjectAdaptor(m_connection, path, owner, object);
    adaptor->setParent(this);
    m_objects.insert(path, adaptor);
    m_connection.registerObject(path, adaptor, QDBusConnection::ExportAllSlots);
    if (!owner.isEmpty())
        m_watcher->addWatchedService(owner);
    Q_EMIT objectCreated(object);
    return path;
}

bool BusServer::releaseObject(const QString &path, const QString &caller, QDBusError::ErrorType *error, QString *text)
{
    AlertObjectAdaptor *adaptor = m_objects.value(path);
    if (!adaptor) {
        *error = QDBusError::UnknownObject;
        *text = QStringLiteral("No alert object ") + path;
        return false;
    }
    if (adaptor->owner() != caller) {
        *error = QDBusError::AccessDenied;
        *text = QStringLiteral("This alert object belongs to another client.");
        return false;
    }
    if (adaptor->object())
        Q_EMIT objectReleased(adaptor->object());
    dropObject(path);
    return true;
}

void BusServer::dropObject(const QString &path)
{
    AlertObjectAdaptor *adaptor = m_objects.take(path);
    if (!adaptor)
        return;
    if (m_connection.isConnected())
        m_connection.unregisterObject(path);
    // The window may still hold the object (while linked); it then lives on until the window lets go.
    if (clsAlertCls *object = adaptor->object())
        object->Release();
    adaptor->deleteLater();
}

void BusServer::onServiceUnregistered(const QString &owner)
{
    m_watcher->removeWatchedService(owner);
    const auto adaptors = m_objects.values();
    for (AlertObjectAdaptor *adaptor : adaptors) {
        if (adaptor->owner() != owner)
            continue;
        if (adaptor->object())
            Q_EMIT ownerLeft(adaptor->object());
        dropObject(adaptor->path());
    }
}

} // namespace osprel
