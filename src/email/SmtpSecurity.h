#pragma once
// What the SMTP client says about itself and checks of the server: the EHLO name, the SASL responses of AUTH
// PLAIN and XOAUTH2, and the certificate checks beyond the CA store.

#include <QByteArray>
#include <QHostAddress>
#include <QSslCertificate>
#include <QString>

namespace osprel::SmtpSecurity {

// RFC 5321 section 4.1.4: the machine's fully qualified name, or else an address literal of this end of the
// connection ("[192.0.2.7]", "[IPv6:...]").
QString ehloName(const QHostAddress &localAddress);

// RFC 4616: authorization identity (empty), NUL, user, NUL, password; base64.
QByteArray plainResponse(const QString &user, const QString &password);
// "user=<user>^Aauth=Bearer <token>^A^A", base64.
QByteArray xoauth2Response(const QString &user, const QString &token);

// True when the certificate's SHA-256 fingerprint is the pinned one (hex, colons and blanks allowed, any case).
bool pinMatches(const QString &pinnedSha256, const QSslCertificate &certificate);
// "certificate subject "...", issuer "..."" for the log.
QString certificateNames(const QSslCertificate &certificate);

} // namespace osprel::SmtpSecurity
