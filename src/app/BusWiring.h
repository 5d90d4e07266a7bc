#pragma once
// The server's ties to its life on the message bus: a linked client that leaves, the bus connection lost, and a
// request to show the window.

namespace osprel {

class BusServer;
class EmailFaxServer;

void wireBus(BusServer &busServer, EmailFaxServer &server);

} // namespace osprel
