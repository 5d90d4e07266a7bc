#include "Startup.h"

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
        else if (argument == QLatin1String("--home") && i + 1 < arguments.size())
            options.home = arguments.at(++i);
        else if (argument.startsWith(QLatin1String("--home=")))
            options.home = argument.mid(7);
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

} // namespace osprel
