#pragma once
// What the mail tests need besides the SMTP server: certificates made with the openssl command (a test CA, a
// server certificate for localhost, one for another host name, and one from a CA the client does not know), a
// loopback OAuth2 token endpoint, and a reading of a received message by Python's email package.

#include <QJsonObject>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>

class TestCertificates
{
public:
    // Makes every file; false with the openssl output in *error when that fails.
    bool make(QString *error);
    QString caFile() const { return path("ca.pem"); }
    QString certFile() const { return path("srv.pem"); }
    QString keyFile() const { return path("srv.key"); }
    QString wrongNameCertFile() const { return path("other.pem"); }
    QString untrustedCertFile() const { return path("rogue-srv.pem"); }
    // SHA-256 of the untrusted server certificate, hex with colons as openssl prints it.
    QString untrustedFingerprint() const { return m_untrustedFingerprint; }

private:
    QString path(const char *name) const { return m_dir.filePath(QString::fromLatin1(name)); }
    bool openssl(const QStringList &arguments, QString *error, QByteArray *output = nullptr);
    bool serverCert(const QString &ca, const QString &name, const QString &cn, const QString &san, QString *error);

    QTemporaryDir m_dir;
    QString m_untrustedFingerprint;
};

class TokenEndpoint
{
public:
    TokenEndpoint() = default;
    ~TokenEndpoint();
    TokenEndpoint(const TokenEndpoint &) = delete;
    TokenEndpoint &operator=(const TokenEndpoint &) = delete;

    bool start(int expiresInSec, QString *error);
    QString url() const;
    // The file of issued tokens: the SMTP server's --xoauth2-tokens.
    QString tokensFile() const { return m_dir.filePath(QStringLiteral("tokens")); }
    int requests() const;

private:
    QTemporaryDir m_dir;
    QProcess m_process;
    quint16 m_port = 0;
};

// The message as Python's email package reads it under email.policy.SMTP (see check_message.py).
QJsonObject readMessage(const QByteArray &raw);
