// Reads /proc/<pid>/stat and /proc/<pid>/status.

#include "ProcStatus.h"

#include <QFile>

namespace {

QByteArray readProcFile(pid_t pid, const char *name)
{
    QFile file(QStringLiteral("/proc/%1/%2").arg(pid).arg(QLatin1String(name)));
    if (!file.open(QIODevice::ReadOnly))
        return QByteArray();
    return file.readAll();
}

} // namespace

bool processRunning(pid_t pid)
{
    if (pid <= 0)
        return false;
    // The state letter follows the command name, which is in parentheses and may itself hold blanks.
    const QByteArray stat = readProcFile(pid, "stat");
    const int close = stat.lastIndexOf(')');
    if (close < 0 || close + 2 >= stat.size())
        return false;
    const char state = stat.at(close + 2);
    return state != 'Z' && state != 'X';
}

qint64 residentKiB(pid_t pid)
{
    const QList<QByteArray> lines = readProcFile(pid, "status").split('\n');
    for (const QByteArray &line : lines) {
        if (!line.startsWith("VmRSS:"))
            continue;
        bool ok = false;
        const qint64 kib = line.mid(6).simplified().split(' ').value(0).toLongLong(&ok);
        return ok ? kib : -1;
    }
    return -1;
}
