#pragma once
// The socket's state told with the socket control's numbering 0..9, as the log and the status text know it.

#include <QAbstractSocket>
#include <QString>

namespace osprel {

namespace WinsockState {
constexpr qint16 Closed = 0;
constexpr qint16 Open = 1;
constexpr qint16 Listening = 2;
constexpr qint16 ConnectionPending = 3;
constexpr qint16 ResolvingHost = 4;
constexpr qint16 HostResolved = 5;
constexpr qint16 Connecting = 6;
constexpr qint16 Connected = 7;
constexpr qint16 PeerClosing = 8;
constexpr qint16 Error = 9;
} // namespace WinsockState

// The number of a Qt socket state. Connection pending, host resolved and error have no Qt state of their own.
qint16 winsockStateNumber(QAbstractSocket::SocketState state);

// The text TimerTCPConnect shows for a state number: "Closed" .. "Error"; empty outside 0..9.
QString winsockStateText(int number);

} // namespace osprel
