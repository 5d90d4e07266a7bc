#pragma once
// Connects the controls of the window's pages to the server's procedures, in one visible place.

namespace osprel {

class EmailFaxServer;
class MainWindow;

void wireForm(MainWindow &window, EmailFaxServer &server);

} // namespace osprel
