#include "MailServerAddress.h"

#include "RunError.h"
#include "Values.h"

#include <QHostAddress>

namespace osprel {

namespace {
// The host and port text of a setting, or the reason it has none.
struct Parts
{
    QString host;
    QString port; // null when the setting names none
    QString problem;
};

Parts split(const QString &text)
{
    const QString server = Trim(text);
    Parts parts;
    if (server.startsWith(u'[')) {
        const qsizetype close = server.indexOf(u']');
        if (close < 0) {
            parts.problem = QStringLiteral("the \"]\" that closes the address is missing");
            return parts;
        }
        parts.host = server.mid(1, close - 1);
        const QString rest = server.mid(close + 1);
        if (!rest.isEmpty() && !rest.startsWith(u':'))
            parts.problem = QStringLiteral("only \":port\" may follow the \"]\"");
        else if (!rest.isEmpty())
            parts.port = rest.mid(1);
        if (parts.problem.isEmpty() && QHostAddress(parts.host).protocol() != QAbstractSocket::IPv6Protocol)
            parts.problem = QStringLiteral("\"%1\" inside the brackets is no IPv6 address").arg(parts.host);
        return parts;
    }
    // More than one colon is a bare IPv6 address without a port.
    const qsizetype colon = server.indexOf(u':');
    if (colon >= 0 && server.indexOf(u':', colon + 1) < 0) {
        parts.host = server.left(colon);
        parts.port = server.mid(colon + 1);
    } else {
        parts.host = server;
    }
    return parts;
}

bool validHost(const QString &host)
{
    if (!QHostAddress(host).isNull())
        return true;
    for (const QChar c : host) {
        if (!(c.isLetterOrNumber() || c == u'.' || c == u'-' || c == u'_'))
            return false;
    }
    return !host.startsWith(u'.') && !host.startsWith(u'-');
}
} // namespace

QString MailServerAddress::problem(const QString &text)
{
    const Parts parts = split(text);
    if (!parts.problem.isEmpty())
        return parts.problem;
    if (parts.host.isEmpty())
        return QStringLiteral("no host name is given");
    if (!validHost(parts.host))
        return QStringLiteral("\"%1\" is no host name").arg(parts.host);
    if (!parts.port.isNull()) {
        if (parts.port.isEmpty())
            return QStringLiteral("the port after the \":\" is missing");
        bool ok = false;
        const uint port = parts.port.toUInt(&ok);
        if (!ok || port < 1 || port > 65535)
            return QStringLiteral("the port must be a number from 1 to 65535, not \"%1\"").arg(parts.port);
    }
    return QString();
}

MailServerAddress MailServerAddress::parse(const QString &text, quint16 defaultPort)
{
    if (!problem(text).isEmpty())
        raise(Err::InvalidPropertyValue);
    const Parts parts = split(text);
    MailServerAddress address;
    address.host = parts.host;
    address.port = parts.port.isNull() ? defaultPort : quint16(parts.port.toUInt());
    return address;
}

} // namespace osprel
