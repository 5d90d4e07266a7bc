#include "BusWiring.h"

#include "BusServer.h"
#include "EmailFaxServer.h"

namespace osprel {

void wireBus(BusServer &busServer, EmailFaxServer &server)
{
    QObject::connect(&busServer, &BusServer::ownerLeft, &server.link(), &AlertLink::linkedClientLeft);
    QObject::connect(&busServer, &BusServer::objectReleased, &server.link(), &AlertLink::linkedObjectReleased);
    QObject::connect(&busServer, &BusServer::busLost, &server,
                     [&server] { server.unload(EmailFaxServer::SystemShutdown); });
    QObject::connect(&busServer, &BusServer::showWindowRequested, &server, &EmailFaxServer::mPopRestore_Click);
}

} // namespace osprel
