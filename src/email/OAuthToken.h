#pragma once
// Access tokens for XOAUTH2: fetched by the OAuth2 client-credentials grant (RFC 6749 section 4.4) and kept until
// they expire, or taken from the standard output of a command the user names.

#include "MailSettings.h"

#include <QDateTime>
#include <QObject>
#include <QPointer>
#include <functional>

class QNetworkAccessManager;
class QNetworkReply;
class QProcess;

namespace osprel {

class OAuthToken : public QObject
{
    Q_OBJECT
public:
    // The token, or an empty token and the reason there is none.
    using Done = std::function<void(const QString &token, const QString &error)>;

    explicit OAuthToken(QObject *parent = nullptr);
    ~OAuthToken() override;

    // Calls done once, never inside this call. A cached client-credentials token still valid for another minute is
    // used as it is. timeoutMs bounds the request or the command.
    void get(const MailSettings &settings, int timeoutMs, Done done);
    // Stops a request or command under way; its done is never called.
    void cancel();
    // Forgets the cached token: the server refused it.
    void invalidate();

    // The token URL the settings name.
    static QString tokenUrl(const MailSettings &settings);

private:
    void fetch(const MailSettings &settings, int timeoutMs);
    void runCommand(const QString &command, int timeoutMs);
    void finish(const QString &token, const QString &error);

    QNetworkAccessManager *m_network = nullptr;
    QPointer<QNetworkReply> m_reply;
    QPointer<QProcess> m_process;
    Done m_done;
    QString m_cacheKey;
    QString m_token;
    QDateTime m_expires;
};

} // namespace osprel
