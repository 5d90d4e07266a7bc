#pragma once
// Connects the window's own events and the controls of its pages to the server's procedures, in one visible place.

namespace osprel {

class EmailFaxServer;
class MainWindow;

void wireForm(MainWindow &window, EmailFaxServer &server);

} // namespace osprel
