#pragma once
// The mail server setting read as host and port: "host", "host:port" or "[IPv6]:port"; without a port, the default
// port of the connection's security (25, 587 or 465).

#include <QString>

namespace osprel {

struct MailServerAddress
{
    static constexpr quint16 kDefaultPort = 25;

    QString host;
    quint16 port = kDefaultPort;

    // Reads a setting; a text that problem() refuses raises Invalid property value (380).
    static MailServerAddress parse(const QString &text, quint16 defaultPort = kDefaultPort);
    // Why a setting cannot be used, in words for a message box or the log; empty when it can.
    static QString problem(const QString &text);
};

} // namespace osprel
