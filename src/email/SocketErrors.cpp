#include "SocketErrors.h"

namespace osprel {

namespace {
struct Row
{
    QAbstractSocket::SocketError error;
    int number;
    const char *description;
};

// Winsock numbers wherever the same condition exists. A peer that closes, gracefully or by reset, is one Qt error;
// it reads as a reset by the remote side, the way an SMTP session that ends without QUIT appears to its client.
constexpr Row kRows[] = {
    {QAbstractSocket::ConnectionRefusedError, 10061, "Connection is forcefully rejected"},
    {QAbstractSocket::RemoteHostClosedError, 10054, "Connection is reset by remote side"},
    {QAbstractSocket::HostNotFoundError, 11001, "Authoritative answer: Host not found"},
    {QAbstractSocket::SocketAccessError, 10013, "Permission denied"},
    {QAbstractSocket::SocketResourceError, 10055, "No buffer space is available"},
    {QAbstractSocket::SocketTimeoutError, 10060, "Attempt to connect timed out"},
    {QAbstractSocket::DatagramTooLargeError, 10040, "Datagram is too large to fit into buffer"},
    {QAbstractSocket::NetworkError, 10051, "The network cannot be reached from this host at this time"},
    {QAbstractSocket::AddressInUseError, 10048, "Address in use"},
    {QAbstractSocket::SocketAddressNotAvailableError, 10049, "Address not available from the local machine"},
    {QAbstractSocket::UnsupportedSocketOperationError, 10045, "Operation not supported"},
    {QAbstractSocket::UnfinishedSocketOperationError, 10036, "A blocking operation is in progress"},
    {QAbstractSocket::ProxyConnectionRefusedError, 10061, "Connection is forcefully rejected"},
    {QAbstractSocket::ProxyConnectionClosedError, 10054, "Connection is reset by remote side"},
    {QAbstractSocket::ProxyConnectionTimeoutError, 10060, "Attempt to connect timed out"},
    {QAbstractSocket::ProxyNotFoundError, 11001, "Authoritative answer: Host not found"},
    {QAbstractSocket::OperationError, 40020, "Invalid operation at current state"},
    {QAbstractSocket::TemporaryError, 10035, "The operation would block"},
};

constexpr Row kUnknown = {QAbstractSocket::UnknownSocketError, 10053,
                          "Connection is aborted due to timeout or other failure"};
} // namespace

SocketErrorInfo socketErrorInfo(QAbstractSocket::SocketError error)
{
    for (const Row &row : kRows) {
        if (row.error == error)
            return {row.number, QString::fromLatin1(row.description)};
    }
    return {kUnknown.number, QString::fromLatin1(kUnknown.description)};
}

} // namespace osprel
