// osprel-emailfax: the alarm notification server. Started by the message bus when a chamber program asks for an
// alert object; refuses a second copy and a start by hand. --settings opens the window without a chamber program
// (or asks the running server to show its own); --help and --version answer before anything else happens.

#include "BusNames.h"
#include "BusServer.h"
#include "BusWiring.h"
#include "EmailFaxServer.h"
#include "ErrorReport.h"
#include "FormWiring.h"
#include "Globals.h"
#include "Log.h"
#include "MainWindow.h"
#include "ShutdownSignal.h"
#include "Startup.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QMessageBox>
#include <cstdio>

namespace osprel {
namespace {

// The refusal boxes always write their text to stderr, and show a box only on a real display: a modal box on the
// offscreen platform would wait for ever.
void criticalBox(const QString &text)
{
    QString plain = text;
    plain.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    std::fprintf(stderr, "%s: %s\n", criticalTitle().toLocal8Bit().constData(), plain.toLocal8Bit().constData());
    const QString platform = QGuiApplication::platformName();
    if (platform != QLatin1String("offscreen") && platform != QLatin1String("minimal"))
        QMessageBox::critical(nullptr, criticalTitle(), text, QMessageBox::Ok);
}

enum class RunningServer { None, Shown, Headless };

// Asks a server already on the session bus to show its window. None when no server runs (the bus does not start
// one for this call) or it did not answer; Headless when it runs without a display.
RunningServer askRunningServerToShowWindow()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return RunningServer::None;
    QDBusMessage call = QDBusMessage::createMethodCall(bus::kService, bus::kFactoryPath, bus::kFactoryInterface,
                                                       QStringLiteral("ShowWindow"));
    call.setAutoStartService(false);
    const QDBusMessage reply = bus.call(call, QDBus::Block, 5000);
    if (reply.type() != QDBusMessage::ReplyMessage)
        return RunningServer::None;
    return reply.arguments().value(0).toBool() ? RunningServer::Shown : RunningServer::Headless;
}

// The window over the data folder without a chamber program: no bus name, no alert objects. Closing the window
// ends the program.
int runSettingsWindow(QApplication &app, Log &log, FormLists &lists)
{
    MainWindow window(lists, log);
    EmailFaxServer server(log, lists, window.ports());
    wireForm(window, server);
    server.setSettingsOnly(true);
    server.Form_Load();
    DumpStr(settingsOnlyText());
    ShutdownSignal shutdown;
    QObject::connect(&shutdown, &ShutdownSignal::requested, &server,
                     [&server] { server.unload(EmailFaxServer::SystemShutdown); });
    QObject::connect(&server, &EmailFaxServer::finished, &app, [&app] { app.exit(0); });
    return app.exec();
}

int SubMain(QApplication &app, const StartOptions &options)
{
    int exitCode = 1;
    guarded(QStringLiteral("Sub Main"), [&] {
        resetGlobals();
        if (options.settings && !options.automation) {
            switch (askRunningServerToShowWindow()) {
            case RunningServer::Shown:
                exitCode = 0;
                return;
            case RunningServer::Headless:
                std::fputs("osprel-emailfax: the running server has no display to show its window on: it was started "
                           "without DISPLAY or WAYLAND_DISPLAY. Hand them to the bus with\n"
                           "  dbus-update-activation-environment --systemd DISPLAY WAYLAND_DISPLAY\n"
                           "and the server started next shows its window.\n",
                           stderr);
                return;
            case RunningServer::None:
                break;
            }
        }
        const QString folder = resolveDataFolder(options);
        // The single-instance test comes first, then the start mode.
        QLockFile::LockError lockError = QLockFile::NoError;
        const std::unique_ptr<QLockFile> lock = takeInstanceLock(folder, &lockError);
        if (!lock) {
            criticalBox(lockRefusalText(folder, lockError));
            return;
        }
        if (!options.automation && !options.settings) {
            criticalBox(improperStartText());
            return;
        }
        g.gstrAppPath = folder;

        Log log(folder);
        FormLists lists;
        if (!options.automation) {
            exitCode = runSettingsWindow(app, log, lists);
            return;
        }
        MainWindow window(lists, log);
        EmailFaxServer server(log, lists, window.ports());
        wireForm(window, server);
        server.Form_Load();

        QDBusConnection bus = QDBusConnection::sessionBus();
        BusServer busServer(bus);
        wireBus(busServer, server, QGuiApplication::platformName() == QLatin1String("offscreen"));
        ShutdownSignal shutdown;
        QObject::connect(&shutdown, &ShutdownSignal::requested, &server,
                         [&server] { server.unload(EmailFaxServer::SystemShutdown); });
        QObject::connect(&server, &EmailFaxServer::finished, &app, [&] {
            // One round trip to the bus makes sure every event already sent (ServerClosing) has left.
            if (bus.isConnected())
                bus.interface()->isServiceRegistered(bus.baseService());
            busServer.stop();
            app.exit(0);
        });

        QString error;
        if (!busServer.start(&error)) {
            DumpStr(error);
            std::fprintf(stderr, "%s\n", error.toLocal8Bit().constData());
            return;
        }
        exitCode = app.exec();
    });
    return exitCode;
}

} // namespace
} // namespace osprel

int main(int argc, char **argv)
{
    // Help, version and option errors are answered before the data folder, the lock or a display is touched.
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    const osprel::StartOptions options = osprel::parseStartOptions(arguments);
    const QString program = QStringLiteral("osprel-emailfax");
    if (options.help) {
        std::fputs(osprel::helpText(program).toLocal8Bit().constData(), stdout);
        return 0;
    }
    if (options.version) {
        std::fputs(osprel::versionLine(program).toLocal8Bit().constData(), stdout);
        return 0;
    }
    if (!options.error.isEmpty()) {
        std::fprintf(stderr, "%s: %s (see --help)\n", program.toLocal8Bit().constData(),
                     options.error.toLocal8Bit().constData());
        return 2;
    }

    // Started by the bus without a display, the server runs on the offscreen platform rather than abort.
    if (qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") &&
        qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QApplication::setApplicationName(program);
    QApplication::setDesktopFileName(QStringLiteral("org.osprel.EmailFax"));
    QApplication::setApplicationDisplayName(osprel::applicationTitle());
    QApplication::setQuitOnLastWindowClosed(false);
    return osprel::SubMain(app, options);
}
