#pragma once
// The socket errors of the SMTP connection, told with the socket control's error numbers and descriptions.

#include <QAbstractSocket>
#include <QString>

namespace osprel {

struct SocketErrorInfo
{
    int number;
    QString description;
};

// The number and description the log shows for a Qt socket error; unknown errors read as an aborted connection.
SocketErrorInfo socketErrorInfo(QAbstractSocket::SocketError error);

} // namespace osprel
