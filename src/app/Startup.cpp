#include "Startup.h"

#include "Version.h"

#include <QDir>
#include <QStandardPaths>

namespace osprel {

StartOptions parseStartOptions(const QStringList &arguments)
{
    StartOptions options;
    for (int i = 1; i < arguments.size(); ++i) {
        const QString &argument = arguments.at(i);
        if (argument == QLatin1String("--automation") || argument == QLatin1String("-Embedding"))
            options.automation = true;
        else if (argument == QLatin1String("--settings"))
            options.settings = true;
        else if (argument == QLatin1String("--help") || argument == QLatin1String("-h"))
            options.help = true;
        else if (argument == QLatin1String("--version") || argument == QLatin1String("-v"))
            options.version = true;
        else if (argument == QLatin1String("--home") && i + 1 < arguments.size())
            options.home = arguments.at(++i);
        else if (argument.startsWith(QLatin1String("--home=")))
            options.home = argument.mid(7);
        else if (options.error.isEmpty())
            options.error = QStringLiteral("unknown option '%1'").arg(argument);
    }
    return options;
}

QString resolveDataFolder(const StartOptions &options)
{
    QString folder = options.home;
    if (folder.isEmpty())
        folder = qEnvironmentVariable("OSPREL_HOME");
    if (folder.isEmpty()) {
        QString dataHome = qEnvironmentVariable("XDG_DATA_HOME");
        if (dataHome.isEmpty())
            dataHome = QDir::homePath() + QStringLiteral("/.local/share");
        folder = dataHome + QStringLiteral("/osprel");
    }
    QDir().mkpath(folder);
    folder = QDir(folder).absolutePath();
    while (folder.size() > 1 && folder.endsWith(u'/'))
        folder.chop(1);
    return folder;
}

std::unique_ptr<QLockFile> takeInstanceLock(const QString &folder, QLockFile::LockError *error)
{
    auto lock = std::make_unique<QLockFile>(folder + QStringLiteral("/osprel-emailfax.lock"));
    lock->setStaleLockTime(0); // a lock is stale only when the process that took it is gone
    if (!lock->tryLock(0)) {
        if (error)
            *error = lock->error();
        return nullptr;
    }
    return lock;
}

QString lockRefusalText(const QString &folder, QLockFile::LockError error)
{
    // Only a lock held by another copy means another copy; a folder that cannot be written says so.
    if (error == QLockFile::LockFailedError)
        return oneInstanceText();
    return QStringLiteral("The data folder ") + folder +
           QStringLiteral(" cannot be written ...\r\n...PROGRAM TERMINATING...");
}

QString helpText(const QString &program)
{
    return QStringLiteral(
               "Usage: %1 [--settings] [--home DIR]\n"
               "\n"
               "The Osprel EmailFax alarm notification server. The session message bus starts it (with\n"
               "--automation) when a chamber program asks for an alert object; started by hand without\n"
               "--settings it refuses.\n"
               "\n"
               "Options:\n"
               "  --settings       Show the settings window. When a server is running, ask it to show its\n"
               "                   window and exit; otherwise open the window over the same data folder\n"
               "                   without taking alerts, until the window is closed.\n"
               "  --home DIR       Use DIR as the data folder.\n"
               "  --automation     Serve alert objects on the session bus (used by the bus service file).\n"
               "  -h, --help       Show this help and exit.\n"
               "  -v, --version    Show the version and exit.\n"
               "\n"
               "Environment:\n"
               "  OSPREL_HOME              the data folder when --home is not given\n"
               "                           (default $XDG_DATA_HOME/osprel, usually ~/.local/share/osprel)\n"
               "  OSPREL_MAIL_TRANSPORT    'sendmail' hands e-mail to the system's mail program instead of\n"
               "                           the built-in SMTP client\n"
               "  OSPREL_SENDMAIL          the mail program to use (default sendmail)\n"
               "  OSPREL_FAX_DEVICES       extra serial devices to probe for a fax modem, colon-separated\n"
               "  OSPREL_FAX_SYSTEM_PORTS  0 skips /dev/ttyS*, /dev/ttyUSB* and /dev/ttyACM* in the search\n"
               "  OSPREL_TIME_SCALE        multiplies every timer interval (0.01 runs a hundred times faster)\n"
               "\n"
               "A server started by the bus inherits the bus's environment: hand it these variables with\n"
               "  dbus-update-activation-environment --systemd OSPREL_HOME=...\n"
               "\n"
               "Files in the data folder: EMAILFAX.MDE (the database), EMailFaxLog.txt (the log),\n"
               "FaxText.txt and FaxImage.fmf (the fax being sent), osprel-emailfax.lock.\n")
        .arg(program);
}

QString versionLine(const QString &program)
{
    return program + u' ' + versionText() + u'\n';
}

QString applicationTitle()
{
    return QStringLiteral("Osprel EmailFax");
}

QString criticalTitle()
{
    return applicationTitle() + QStringLiteral(" Critical Error!!");
}

QString oneInstanceText()
{
    return QStringLiteral("There can only be one instance of program running ...\r\n...PROGRAM TERMINATING...");
}

QString improperStartText()
{
    return QStringLiteral("... Improper Osprel Startup mode ...\r\n...PROGRAM TERMINATING...");
}

QString settingsOnlyText()
{
    return QStringLiteral("Settings window only: no chamber program is served and no alerts are taken.");
}

} // namespace osprel
