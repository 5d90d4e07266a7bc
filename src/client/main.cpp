// osprel-client: a chamber program in a box. Creates an alert object (starting the server), links, sends alerts
// and commands, prints every event it receives as one line, and unlinks.

#include "ChamberClient.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDBusConnection>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTextStream>
#include <QTimer>
#include <cstdio>

namespace {

void out(const QString &line)
{
    std::fprintf(stdout, "%s\n", line.toUtf8().constData());
    std::fflush(stdout);
}

void err(const QString &line)
{
    std::fprintf(stderr, "osprel-client: %s\n", line.toUtf8().constData());
}

// Runs the event loop for a while, so that events arrive and are printed.
void pump(int ms)
{
    QEventLoop loop;
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    loop.exec();
}

QString boolText(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("osprel-client"));
    QCoreApplication::setApplicationVersion(
        QStringLiteral("%1.%2.%3").arg(OSPREL_VERSION_MAJOR).arg(OSPREL_VERSION_MINOR).arg(OSPREL_VERSION_PATCH));
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Talks to the Osprel EmailFax server as a chamber program does: creates an alert object, links with "
        "command 1, sends the alerts given as arguments (or read from standard input, one a line) and the "
        "commands given with --cmd, prints every event it receives as one line, and unlinks.\n"
        "With --ack or --clear it only acknowledges or clears that ticket, without linking, and exits 0 when the "
        "server took it, 1 when there is no such open ticket.\n\n"
        "Environment:\n  DBUS_SESSION_BUS_ADDRESS  the session bus, when --bus is not given"));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument(QStringLiteral("alert"), QStringLiteral("Alert texts to send."),
                                 QStringLiteral("[alert...]"));
    const QCommandLineOption busOption(QStringLiteral("bus"), QStringLiteral("Bus address (default: the session bus)."),
                                       QStringLiteral("address"));
    const QCommandLineOption formOption(QStringLiteral("form"),
                                        QStringLiteral("Form name to link with (default Vantor32)."),
                                        QStringLiteral("name"), QStringLiteral("Vantor32"));
    const QCommandLineOption noLinkOption(QStringLiteral("no-link"), QStringLiteral("Do not link (command 1)."));
    const QCommandLineOption stdinOption(QStringLiteral("stdin"), QStringLiteral("Read alerts from standard input."));
    const QCommandLineOption cmdOption(QStringLiteral("cmd"),
                                       QStringLiteral("Send ServerCmd N with CustomStr VALUE; repeatable."),
                                       QStringLiteral("N[=VALUE]"));
    const QCommandLineOption waitOption(QStringLiteral("wait"),
                                        QStringLiteral("Seconds to keep printing events before unlinking (default 1)."),
                                        QStringLiteral("seconds"), QStringLiteral("1"));
    const QCommandLineOption unlinkOption(QStringLiteral("unlink"),
                                          QStringLiteral("idle: command 2, retried until the server is idle, then 3 "
                                                         "after --timeout; now: command 3; none: stay linked."),
                                          QStringLiteral("mode"), QStringLiteral("idle"));
    const QCommandLineOption timeoutOption(QStringLiteral("timeout"),
                                           QStringLiteral("Seconds to wait for an idle unlink (default 30)."),
                                           QStringLiteral("seconds"), QStringLiteral("30"));
    const QCommandLineOption ackOption(QStringLiteral("ack"), QStringLiteral("Acknowledge this ticket (with --who)."),
                                       QStringLiteral("ticket"));
    const QCommandLineOption whoOption(QStringLiteral("who"), QStringLiteral("Who acknowledges or clears."),
                                       QStringLiteral("name"));
    const QCommandLineOption commentOption(QStringLiteral("comment"),
                                           QStringLiteral("A comment stored with the acknowledgement."),
                                           QStringLiteral("text"));
    const QCommandLineOption clearOption(QStringLiteral("clear"), QStringLiteral("Clear this ticket."),
                                         QStringLiteral("ticket"));
    parser.addOptions({busOption, formOption, noLinkOption, stdinOption, cmdOption, waitOption, unlinkOption,
                       timeoutOption, ackOption, whoOption, commentOption, clearOption});
    parser.process(app);

    const bool ticketOnly = parser.isSet(ackOption) || parser.isSet(clearOption);
    if (parser.isSet(ackOption) && parser.value(whoOption).trimmed().isEmpty()) {
        err(QStringLiteral("--ack needs --who NAME"));
        return 2;
    }
    if (parser.isSet(ackOption) && parser.isSet(clearOption)) {
        err(QStringLiteral("--ack and --clear do not go together"));
        return 2;
    }

    QDBusConnection bus = parser.isSet(busOption)
                              ? QDBusConnection::connectToBus(parser.value(busOption), QStringLiteral("osprel-client"))
                              : QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        err(QStringLiteral("no message bus: ") + bus.lastError().message());
        return 2;
    }
    osprel::ChamberClient client(bus);
    client.setEventHandler([](const QString &line) { out(QStringLiteral("event ") + line); });
    QString error;
    if (!client.createObject(&error)) {
        err(QStringLiteral("CreateObject failed: ") + error);
        return 2;
    }
    out(QStringLiteral("object ") + client.objectPath());

    if (ticketOnly) {
        bool result = false;
        const bool ack = parser.isSet(ackOption);
        const bool called = ack ? client.acknowledge(parser.value(ackOption), parser.value(whoOption),
                                                     parser.value(commentOption), &result, &error)
                                : client.clear(parser.value(clearOption), &result, &error);
        const QString method = ack ? QStringLiteral("Acknowledge") : QStringLiteral("Clear");
        if (!called) {
            err(method + QStringLiteral(" failed: ") + error);
            return 2;
        }
        out(method + QStringLiteral(" -> ") + boolText(result));
        return result ? 0 : 1;
    }

    const QString form = parser.value(formOption);
    int failures = 0;
    auto command = [&](qint16 number, const QVariant &custom) {
        bool result = false;
        if (!client.serverCmd(form, number, custom, &result, &error)) {
            err(QStringLiteral("ServerCmd %1 failed: ").arg(number) + error);
            ++failures;
            return false;
        }
        out(QStringLiteral("ServerCmd %1 -> ").arg(number) + boolText(result));
        return result;
    };

    if (!parser.isSet(noLinkOption))
        command(1, QString());
    for (const QString &request : parser.values(cmdOption)) {
        const int eq = request.indexOf(u'=');
        bool ok = false;
        const int number = request.left(eq < 0 ? request.size() : eq).toInt(&ok);
        if (!ok || number < -32768 || number > 32767) {
            err(QStringLiteral("bad --cmd ") + request);
            return 2;
        }
        command(qint16(number), eq < 0 ? QString() : request.mid(eq + 1));
    }

    QStringList alerts = parser.positionalArguments();
    if (parser.isSet(stdinOption)) {
        QTextStream input(stdin);
        for (QString line = input.readLine(); !line.isNull(); line = input.readLine())
            alerts.append(line);
    }
    for (const QString &alert : alerts) {
        bool result = false;
        if (client.sendAlert(alert, &result, &error)) {
            out(QStringLiteral("SendAlert -> ") + boolText(result));
        } else {
            err(QStringLiteral("SendAlert failed: ") + error);
            ++failures;
        }
    }

    pump(int(parser.value(waitOption).toDouble() * 1000));

    const QString unlink = parser.value(unlinkOption);
    if (unlink == QLatin1String("idle")) {
        QElapsedTimer waited;
        waited.start();
        const qint64 limit = qint64(parser.value(timeoutOption).toDouble() * 1000);
        while (!command(2, QString())) {
            if (failures > 0 || waited.elapsed() > limit) {
                command(3, QString());
                break;
            }
            pump(500);
        }
    } else if (unlink == QLatin1String("now")) {
        command(3, QString());
    }
    pump(50); // events raised while unlinking
    return failures == 0 ? 0 : 1;
}
