#include "WinsockState.h"

#include <array>

namespace osprel {

qint16 winsockStateNumber(QAbstractSocket::SocketState state)
{
    switch (state) {
    case QAbstractSocket::UnconnectedState:
        return WinsockState::Closed;
    case QAbstractSocket::HostLookupState:
        return WinsockState::ResolvingHost;
    case QAbstractSocket::ConnectingState:
        return WinsockState::Connecting;
    case QAbstractSocket::ConnectedState:
        return WinsockState::Connected;
    case QAbstractSocket::BoundState:
        return WinsockState::Open;
    case QAbstractSocket::ListeningState:
        return WinsockState::Listening;
    case QAbstractSocket::ClosingState:
        return WinsockState::PeerClosing;
    }
    return WinsockState::Error;
}

QString winsockStateText(int number)
{
    static const std::array<const char *, 10> texts = {
        "Closed",        "Open",       "Listening", "Connection pending",      "Resolving host",
        "Host resolved", "Connecting", "Connected", "Peer closing connection", "Error",
    };
    if (number < 0 || number >= int(texts.size()))
        return QString();
    return QString::fromLatin1(texts[number]);
}

} // namespace osprel
