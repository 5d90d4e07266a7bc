#include "SmtpSecurity.h"

#include <QHostInfo>

namespace osprel::SmtpSecurity {

QString ehloName(const QHostAddress &localAddress)
{
    const QString host = QHostInfo::localHostName();
    const QString domain = QHostInfo::localDomainName();
    if (host.contains(u'.'))
        return host;
    if (!host.isEmpty() && !domain.isEmpty())
        return host + u'.' + domain;
    if (localAddress.protocol() == QAbstractSocket::IPv6Protocol)
        return QStringLiteral("[IPv6:") + localAddress.toString() + u']';
    return u'[' + localAddress.toString() + u']';
}

QByteArray plainResponse(const QString &user, const QString &password)
{
    return (QByteArray(1, '\0') + user.toUtf8() + QByteArray(1, '\0') + password.toUtf8()).toBase64();
}

QByteArray xoauth2Response(const QString &user, const QString &token)
{
    return ("user=" + user.toUtf8() + "\x01" + "auth=Bearer " + token.toUtf8() + "\x01\x01").toBase64();
}

bool pinMatches(const QString &pinnedSha256, const QSslCertificate &certificate)
{
    QString pin = pinnedSha256;
    pin.remove(u':').remove(u' ');
    return !pin.isEmpty() && !certificate.isNull() &&
           certificate.digest(QCryptographicHash::Sha256).toHex() == pin.toLower().toLatin1();
}

QString certificateNames(const QSslCertificate &certificate)
{
    return QStringLiteral("certificate subject \"%1\", issuer \"%2\"")
        .arg(certificate.subjectDisplayName(), certificate.issuerDisplayName());
}

} // namespace osprel::SmtpSecurity
