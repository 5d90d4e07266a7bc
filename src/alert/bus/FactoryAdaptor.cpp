#include "FactoryAdaptor.h"

#include "BusServer.h"

#include <QDBusMessage>

namespace osprel {

FactoryAdaptor::FactoryAdaptor(BusServer &server) : m_server(server) {}

QDBusObjectPath FactoryAdaptor::CreateObject()
{
    return QDBusObjectPath(m_server.createObject(message().service()));
}

void FactoryAdaptor::Release(const QDBusObjectPath &object)
{
    QDBusError::ErrorType error = QDBusError::NoError;
    QString text;
    if (!m_server.releaseObject(object.path(), message().service(), &error, &text))
        sendErrorReply(error, text);
}

bool FactoryAdaptor::ShowWindow()
{
    return m_server.showWindow();
}

} // namespace osprel
