#pragma once
// The start-up decisions made before the window exists: options, the data folder, the single-instance lock and
// the start mode, with the texts of the two refusals.

#include <QLockFile>
#include <QString>
#include <QStringList>
#include <memory>

namespace osprel {

struct StartOptions
{
    bool automation = false; // started by the message bus to serve an alert object
    bool settings = false;   // --settings: the window alone, or the running server's window
    bool help = false;       // --help
    bool version = false;    // --version
    QString home;            // --home DIR
    QString error;           // an option not understood; empty when every argument was
};

StartOptions parseStartOptions(const QStringList &arguments);

// --home DIR, else $OSPREL_HOME, else $XDG_DATA_HOME/osprel (~/.local/share/osprel); created when missing.
QString resolveDataFolder(const StartOptions &options);

// Takes the single-instance lock of a data folder; null (with the reason in error) when another instance holds it or
// the folder cannot be written.
std::unique_ptr<QLockFile> takeInstanceLock(const QString &folder, QLockFile::LockError *error = nullptr);
// The refusal for a lock that could not be taken: another instance, or a folder that cannot be written.
QString lockRefusalText(const QString &folder, QLockFile::LockError error);

// What --help and --version print, without touching the data folder or the lock.
QString helpText(const QString &program);
QString versionLine(const QString &program);

QString applicationTitle();
QString criticalTitle();
QString oneInstanceText();
QString improperStartText();
// Logged when the window runs without a chamber program (--settings).
QString settingsOnlyText();

} // namespace osprel
