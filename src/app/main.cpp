// osprel-emailfax: the alarm notification server. Started by the message bus when a chamber program asks for an
// alert object; refuses a second copy and a start by hand.

#include "BusServer.h"
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

int SubMain(QApplication &app)
{
    int exitCode = 1;
    guarded(QStringLiteral("Sub Main"), [&] {
        resetGlobals();
        const StartOptions options = parseStartOptions(app.arguments());
        const QString folder = resolveDataFolder(options);
        // The single-instance test comes first, then the start mode.
        QLockFile::LockError lockError = QLockFile::NoError;
        const std::unique_ptr<QLockFile> lock = takeInstanceLock(folder, &lockError);
        if (!lock) {
            criticalBox(lockRefusalText(folder, lockError));
            return;
        }
        if (!options.automation) {
            criticalBox(improperStartText());
            return;
        }
        g.gstrAppPath = folder;

        Log log(folder);
        FormLists lists;
        MainWindow window(lists, log);
        EmailFaxServer server(log, lists, window.ports());
        wireForm(window, server);
        server.Form_Load();

        QDBusConnection bus = QDBusConnection::sessionBus();
        BusServer busServer(bus);
        QObject::connect(&busServer, &BusServer::ownerLeft, &server.link(), &AlertLink::linkedClientLeft);
        QObject::connect(&busServer, &BusServer::objectReleased, &server.link(), &AlertLink::linkedObjectReleased);
        QObject::connect(&busServer, &BusServer::busLost, &server,
                         [&server] { server.unload(EmailFaxServer::SystemShutdown); });
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
    // Started by the bus without a display, the server runs on the offscreen platform rather than abort.
    if (qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") &&
        qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("osprel-emailfax"));
    QApplication::setApplicationDisplayName(osprel::applicationTitle());
    QApplication::setQuitOnLastWindowClosed(false);
    return osprel::SubMain(app);
}
