#pragma once
// The server with its real window in the test's own process, on a data folder the test prepared, without a bus:
// for widget tests that click through pages and read the database after.

#include "EmailFaxServer.h"
#include "FormWiring.h"
#include "Globals.h"
#include "Log.h"
#include "MainWindow.h"
#include "TimeScale.h"

#include <memory>

struct WindowServer
{
    ~WindowServer() { stop(); }

    // Loads the server from the folder at the design time scale; the start-up timer is held.
    void start(const QString &home)
    {
        osprel::TimeScale::setFactor(1);
        osprel::resetGlobals();
        osprel::g.gstrAppPath = home;
        log = std::make_unique<osprel::Log>(home);
        lists = std::make_unique<osprel::FormLists>();
        window = std::make_unique<osprel::MainWindow>(*lists, *log);
        server = std::make_unique<osprel::EmailFaxServer>(*log, *lists, window->ports());
        osprel::wireForm(*window, *server);
        server->Form_Load();
        server->timers().TimerInit.stop();
    }
    void stop()
    {
        osprel::g.gblnServerLinked = false;
        server.reset();
        window.reset();
        lists.reset();
        log.reset();
    }

    std::unique_ptr<osprel::Log> log;
    std::unique_ptr<osprel::FormLists> lists;
    std::unique_ptr<osprel::MainWindow> window;
    std::unique_ptr<osprel::EmailFaxServer> server;
};
