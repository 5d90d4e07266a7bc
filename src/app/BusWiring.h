#pragma once
// The server's ties to its life on the message bus: a linked client that leaves, the bus connection lost, and a
// request to show the window.

namespace osprel {

class BusServer;
class EmailFaxServer;

// headless: the server runs without a display (offscreen), so a shown window is seen by nobody.
void wireBus(BusServer &busServer, EmailFaxServer &server, bool headless);

} // namespace osprel
