#include "MailServerAddress.h"

#include "RunError.h"
#include "Values.h"

namespace osprel {

namespace {
quint16 portNumber(const QString &text)
{
    bool ok = false;
    const uint port = text.toUInt(&ok);
    if (!ok || port < 1 || port > 65535)
        raise(Err::InvalidPropertyValue);
    return quint16(port);
}
} // namespace

MailServerAddress MailServerAddress::parse(const QString &text)
{
    const QString server = Trim(text);
    MailServerAddress address;
    if (server.startsWith(u'[')) {
        const qsizetype close = server.indexOf(u']');
        if (close < 0)
            raise(Err::InvalidPropertyValue);
        address.host = server.mid(1, close - 1);
        const QString rest = server.mid(close + 1);
        if (!rest.isEmpty()) {
            if (!rest.startsWith(u':'))
                raise(Err::InvalidPropertyValue);
            address.port = portNumber(rest.mid(1));
        }
        return address;
    }
    // More than one colon is a bare IPv6 address without a port.
    const qsizetype colon = server.indexOf(u':');
    if (colon >= 0 && server.indexOf(u':', colon + 1) < 0) {
        address.host = server.left(colon);
        address.port = portNumber(server.mid(colon + 1));
    } else {
        address.host = server;
    }
    return address;
}

} // namespace osprel
