// Reads /proc/<pid>/stat, /proc/<pid>/status and /proc/loadavg.

#include "ProcStatus.h"

#include <QFile>
#include <unistd.h>

namespace {

QByteArray readFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QByteArray();
    return file.readAll();
}

QByteArray readProcFile(pid_t pid, const char *name)
{
    return readFile(QStringLiteral("/proc/%1/%2").arg(pid).arg(QLatin1String(name)));
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

qint64 cpuTimeMs(pid_t pid)
{
    // utime and stime are the 12th and 13th fields after the command name's closing parenthesis.
    const QByteArray stat = readProcFile(pid, "stat");
    const int close = stat.lastIndexOf(')');
    if (close < 0)
        return -1;
    const QList<QByteArray> fields = stat.mid(close + 2).split(' ');
    if (fields.size() < 13)
        return -1;
    const qint64 ticks = fields.at(11).toLongLong() + fields.at(12).toLongLong();
    return ticks * 1000 / sysconf(_SC_CLK_TCK);
}

QString loadAverage()
{
    const QList<QByteArray> fields = readFile(QStringLiteral("/proc/loadavg")).simplified().split(' ');
    if (fields.size() < 3)
        return QStringLiteral("?");
    return QString::fromLatin1(fields.at(0) + ' ' + fields.at(1) + ' ' + fields.at(2));
}
