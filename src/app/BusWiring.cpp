#include "BusWiring.h"

#include "BusServer.h"
#include "EmailFaxServer.h"

namespace osprel {

void wireBus(BusServer &busServer, EmailFaxServer &server, bool headless)
{
    QObject::connect(&busServer, &BusServer::ownerLeft, &server.link(), &AlertLink::linkedClientLeft);
    QObject::connect(&busServer, &BusServer::objectReleased, &server.link(), &AlertLink::linkedObjectReleased);
    QObject::connect(&busServer, &BusServer::busLost, &server,
                     [&server] { server.unload(EmailFaxServer::SystemShutdown); });
    busServer.setWindowShower([&server, headless] {
        server.mPopRestore_Click();
        return !headless;
    });
}

} // namespace osprel
