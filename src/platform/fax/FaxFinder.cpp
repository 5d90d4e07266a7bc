#include "FaxFinder.h"

#include "AtResponse.h"
#include "QtSerialLine.h"

#include <QCollator>
#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>

namespace osprel {

bool FaxFinder::isNotModem(const QString &port) const
{
    const QString device = QFileInfo(port).canonicalFilePath();
    for (const QString &p : m_policy.notModems) {
        const QString listed = p.trimmed();
        if (listed.isEmpty())
            continue;
        if (listed == port || (!device.isEmpty() && QFileInfo(listed).canonicalFilePath() == device))
            return true;
    }
    return false;
}

QStringList FaxFinder::candidates() const
{
    QStringList ports;
    auto add = [&](const QString &p) {
        const QString port = p.trimmed();
        if (!port.isEmpty() && !ports.contains(port) && !isNotModem(port))
            ports << port;
    };
    for (const QString &p : m_policy.ports)
        add(p);
    for (const QString &p : m_extraPaths)
        add(p);
    if (m_policy.allSerialPorts && m_systemPorts) {
        QStringList names =
            QDir(QStringLiteral("/dev"))
                .entryList({QStringLiteral("ttyS*"), QStringLiteral("ttyUSB*"), QStringLiteral("ttyACM*")},
                           QDir::System | QDir::Files | QDir::Readable | QDir::Writable);
        QCollator numeric;
        numeric.setNumericMode(true);
        std::sort(names.begin(), names.end(), numeric);
        for (const QString &n : names)
            add(QStringLiteral("/dev/") + n);
    }
    return ports;
}

int FaxFinder::search()
{
    m_devices.clear();
    for (const QString &port : candidates()) {
        FaxDeviceInfo info;
        if (probe(port, &info, m_probeMs))
            m_devices.append(info);
    }
    return count();
}

bool FaxFinder::parseClasses(const QByteArray &answer, FaxDeviceInfo *info)
{
    QByteArray text = answer.trimmed();
    if (text.startsWith("+FCLASS:"))
        text = text.mid(8);
    text.replace('(', ',').replace(')', ',');
    bool any = false;
    for (const QByteArray &part : text.split(',')) {
        const QByteArray t = part.trimmed();
        if (t.isEmpty())
            continue;
        QList<QByteArray> names;
        const int dash = t.indexOf('-');
        if (dash > 0) {
            // A range of whole classes, "0-2".
            bool ok1 = false, ok2 = false;
            const int a = t.left(dash).toInt(&ok1), b = t.mid(dash + 1).toInt(&ok2);
            if (!ok1 || !ok2)
                return false;
            for (int c = a; c <= b && c - a < 16; ++c)
                names << QByteArray::number(c);
        } else {
            names << t;
        }
        for (const QByteArray &n : names) {
            bool ok = false;
            n.toDouble(&ok);
            if (!ok)
                return false; // not a class list at all
            if (n == "1" || n == "1.0") {
                info->class1 = true;
                any = true;
            } else if (n == "2") {
                info->class2 = true;
                any = true;
            } else if (n == "2.0") {
                info->class20 = true;
                any = true;
            }
        }
    }
    return any;
}

bool FaxFinder::probe(const QString &port, FaxDeviceInfo *info, int timeoutMs)
{
    QtSerialLine line;
    QString error;
    if (!line.open(port, &error))
        return false;
    line.write("AT+FCLASS=?\r");
    QByteArray in;
    QDeadlineTimer deadline(timeoutMs);
    bool found = false, done = false;
    while (!done && !deadline.hasExpired()) {
        if (!line.waitForReadyRead(int(qMax<qint64>(1, deadline.remainingTime()))))
            continue;
        in += line.readAll();
        int nl;
        while (!done && (nl = in.indexOf('\n')) >= 0) {
            const QByteArray l = in.left(nl).trimmed();
            in.remove(0, nl + 1);
            const AtResponse r = classifyAtLine(l);
            if (r == AtResponse::Other && !l.startsWith("AT"))
                found = parseClasses(l, info) || found;
            else if (isFinalResponse(r))
                done = true;
        }
    }
    line.close();
    if (found)
        info->port = port;
    return found && done;
}

} // namespace osprel
