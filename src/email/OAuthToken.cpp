#include "OAuthToken.h"

#include "Clock.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QProcess>
#include <QTimer>
#include <QUrlQuery>

namespace osprel {

namespace {
constexpr int kExpiryMarginSec = 60;
}

OAuthToken::OAuthToken(QObject *parent) : QObject(parent), m_network(new QNetworkAccessManager(this)) {}

OAuthToken::~OAuthToken()
{
    cancel();
}

QString OAuthToken::tokenUrl(const MailSettings &settings)
{
    QString url = settings.tokenUrl.trimmed();
    if (url.isEmpty() && !settings.tenant.trimmed().isEmpty())
        url = QStringLiteral("https://login.microsoftonline.com/{tenant}/oauth2/v2.0/token");
    url.replace(QStringLiteral("{tenant}"), settings.tenant.trimmed());
    return url;
}

void OAuthToken::get(const MailSettings &settings, int timeoutMs, Done done)
{
    cancel();
    m_done = std::move(done);
    if (settings.tokenSource == TokenSource::Command) {
        runCommand(settings.tokenCommand, timeoutMs);
        return;
    }
    const QString key = tokenUrl(settings) + u'\n' + settings.clientId + u'\n' + settings.scope;
    if (key == m_cacheKey && !m_token.isEmpty() && Clock::now().addSecs(kExpiryMarginSec) < m_expires) {
        const QString token = m_token;
        QTimer::singleShot(0, this, [this, token] { finish(token, QString()); });
        return;
    }
    invalidate();
    m_cacheKey = key;
    fetch(settings, timeoutMs);
}

void OAuthToken::cancel()
{
    m_done = nullptr;
    if (m_reply) {
        m_reply->disconnect(this);
        m_reply->abort();
        m_reply->deleteLater();
    }
    if (m_process) {
        m_process->disconnect(this);
        m_process->kill();
        m_process->waitForFinished(1000);
        m_process->deleteLater();
    }
}

void OAuthToken::invalidate()
{
    m_token.clear();
    m_expires = QDateTime();
}

void OAuthToken::fetch(const MailSettings &settings, int timeoutMs)
{
    const QUrl url(tokenUrl(settings));
    if (!url.isValid() || url.scheme().isEmpty()) {
        QTimer::singleShot(0, this, [this] { finish(QString(), QStringLiteral("no valid token URL")); });
        return;
    }
    QUrlQuery form;
    form.addQueryItem(QStringLiteral("grant_type"), QStringLiteral("client_credentials"));
    form.addQueryItem(QStringLiteral("client_id"), settings.clientId);
    form.addQueryItem(QStringLiteral("client_secret"), settings.clientSecret);
    form.addQueryItem(QStringLiteral("scope"), settings.scope);
    QNetworkRequest request(url);
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/x-www-form-urlencoded"));
    request.setTransferTimeout(timeoutMs);
    m_reply = m_network->post(request, form.toString(QUrl::FullyEncoded).toLatin1());
    connect(m_reply, &QNetworkReply::finished, this, [this, reply = m_reply.data()] {
        reply->deleteLater();
        const QByteArray data = reply->readAll();
        const QJsonObject json = QJsonDocument::fromJson(data).object();
        const QString token = json.value(QStringLiteral("access_token")).toString();
        if (reply->error() != QNetworkReply::NoError || token.isEmpty()) {
            QString why = json.value(QStringLiteral("error_description")).toString();
            if (why.isEmpty())
                why = json.value(QStringLiteral("error")).toString();
            if (why.isEmpty())
                why = reply->errorString();
            finish(QString(), QStringLiteral("the token endpoint gave no token: ") + why.simplified());
            return;
        }
        m_token = token;
        m_expires = Clock::now().addSecs(json.value(QStringLiteral("expires_in")).toInt(3600));
        finish(token, QString());
    });
}

void OAuthToken::runCommand(const QString &command, int timeoutMs)
{
    m_process = new QProcess(this);
    m_process->setProgram(QStringLiteral("/bin/sh"));
    m_process->setArguments({QStringLiteral("-c"), command});
    m_process->setStandardInputFile(QProcess::nullDevice());
    QProcess *process = m_process;
    auto *timer = new QTimer(process);
    timer->setSingleShot(true);
    connect(timer, &QTimer::timeout, this, [this, process] {
        process->disconnect(this);
        process->kill();
        process->deleteLater();
        finish(QString(), QStringLiteral("the token command gave no answer in time"));
    });
    connect(process, &QProcess::finished, this, [this, process](int code, QProcess::ExitStatus status) {
        process->deleteLater();
        const QString token = QString::fromUtf8(process->readAllStandardOutput()).section(u'\n', 0, 0).trimmed();
        if (status != QProcess::NormalExit || code != 0 || token.isEmpty())
            finish(QString(), QStringLiteral("the token command failed (exit code %1)").arg(code));
        else
            finish(token, QString());
    });
    connect(process, &QProcess::errorOccurred, this, [this, process](QProcess::ProcessError error) {
        if (error != QProcess::FailedToStart)
            return;
        process->deleteLater();
        finish(QString(), QStringLiteral("the token command could not be started"));
    });
    timer->start(timeoutMs);
    process->start();
}

void OAuthToken::finish(const QString &token, const QString &error)
{
    Done done = std::move(m_done);
    m_done = nullptr;
    if (done)
        done(token, error);
}

} // namespace osprel
