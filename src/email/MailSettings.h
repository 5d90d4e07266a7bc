#pragma once
// How the SMTP client reaches and authenticates to the mail server, and how long it waits for each step: the
// Comm Setup page's mail fields beyond the server, the sender and the transport choice.

#include <QString>
#include <QtGlobal>

namespace osprel {

// How the connection is protected. None keeps the plain HELO dialogue of an old-style relay on port 25.
enum class MailSecurity : int { None = 0, StartTlsRequired = 1, StartTlsOffered = 2, ImplicitTls = 3 };
// How the client proves who it is; None sends no AUTH at all.
enum class MailAuth : int { None = 0, Plain = 1, Login = 2, XOAuth2 = 3 };
// Where an XOAUTH2 access token comes from.
enum class TokenSource : int { ClientCredentials = 0, Command = 1 };

struct MailSettings
{
    MailSecurity security = MailSecurity::None;
    MailAuth auth = MailAuth::None;
    QString user;
    QString password;
    // AUTH PLAIN and LOGIN over a connection that is not encrypted, only when the user asks for it.
    bool allowClearAuth = false;
    // A CA certificate file (PEM) trusted instead of the system's store, and a SHA-256 fingerprint (hex, colons
    // allowed) of the one server certificate accepted whatever its chain: both for internal relays.
    QString caFile;
    QString pinnedSha256;

    TokenSource tokenSource = TokenSource::ClientCredentials;
    // The token URL; "{tenant}" in it is replaced by the tenant. Empty with a tenant: the Microsoft identity
    // platform's v2.0 endpoint of that tenant.
    QString tokenUrl;
    QString tenant;
    QString clientId;
    QString clientSecret;
    QString scope;
    // A shell command whose standard output is the token.
    QString tokenCommand;

    // Per-step time-outs in seconds at a time scale of 1.
    int connectTimeoutSec = 30;
    int replyTimeoutSec = 120;
    int dotTimeoutSec = 600;
    // A message deferred by temporary failures ends as failed this long after its first deferral.
    int killTimeMinutes = 240;

    static quint16 defaultPort(MailSecurity security)
    {
        switch (security) {
        case MailSecurity::StartTlsRequired:
        case MailSecurity::StartTlsOffered:
            return 587;
        case MailSecurity::ImplicitTls:
            return 465;
        case MailSecurity::None:
            break;
        }
        return 25;
    }
};

} // namespace osprel
