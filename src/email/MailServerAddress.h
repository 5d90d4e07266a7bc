#pragma once
// The mail server setting read as host and port: "host", "host:port" or "[IPv6]:port"; the port is 25 when absent.

#include <QString>

namespace osprel {

struct MailServerAddress
{
    static constexpr quint16 kDefaultPort = 25;

    QString host;
    quint16 port = kDefaultPort;

    // Reads a setting; a port that is not a number from 1 to 65535 raises Invalid property value (380).
    static MailServerAddress parse(const QString &text);
};

} // namespace osprel
