#include "SecretStore.h"

#include "EmailLog.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>
#include <QTimer>
#include <qt6keychain/keychain.h>

namespace osprel {

namespace {
const QString kService = QStringLiteral("osprel-emailfax");
}

SecretStore::SecretStore(const QString &folder, bool useKeyring, QObject *parent)
    : QObject(parent), m_folder(folder), m_useKeyring(useKeyring)
{
}

QString SecretStore::filePath() const
{
    return QDir(m_folder).filePath(QStringLiteral("mail-secrets.json"));
}

QString SecretStore::readFile(const QString &name) const
{
    QFile file(filePath());
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    return QJsonDocument::fromJson(file.readAll()).object().value(name).toString();
}

void SecretStore::writeFile(const QString &name, const QString &value)
{
    QJsonObject secrets;
    {
        QFile file(filePath());
        if (file.open(QIODevice::ReadOnly))
            secrets = QJsonDocument::fromJson(file.readAll()).object();
    }
    if (value.isEmpty())
        secrets.remove(name);
    else
        secrets.insert(name, value);
    QSaveFile file(filePath());
    // The permissions are set before a byte of the secret is written.
    if (!file.open(QIODevice::WriteOnly) || !file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner) ||
        file.write(QJsonDocument(secrets).toJson()) < 0 || !file.commit())
        emailLog(QStringLiteral("EMail Status: Error: the mail secrets cannot be stored in ") + filePath() +
                 QStringLiteral(": ") + file.errorString());
}

void SecretStore::write(const QString &name, const QString &value)
{
    if (!m_useKeyring)
        return writeFile(name, value);
    QKeychain::Job *job = nullptr;
    if (value.isEmpty()) {
        job = new QKeychain::DeletePasswordJob(kService, this);
    } else {
        auto *writeJob = new QKeychain::WritePasswordJob(kService, this);
        writeJob->setTextData(value);
        job = writeJob;
    }
    job->setKey(name);
    connect(job, &QKeychain::Job::finished, this, [this, name, value](QKeychain::Job *done) {
        // No keyring answers: the file keeps it. With a keyring, a copy left in the file is removed.
        if (done->error() != QKeychain::NoError && done->error() != QKeychain::EntryNotFound)
            writeFile(name, value);
        else if (!readFile(name).isEmpty())
            writeFile(name, QString());
    });
    job->start();
}

void SecretStore::read(const QString &name, std::function<void(const QString &)> done)
{
    if (!m_useKeyring) {
        QTimer::singleShot(0, this, [this, name, done] { done(readFile(name)); });
        return;
    }
    auto *job = new QKeychain::ReadPasswordJob(kService, this);
    job->setKey(name);
    connect(job, &QKeychain::Job::finished, this, [this, name, done](QKeychain::Job *finished) {
        auto *readJob = static_cast<QKeychain::ReadPasswordJob *>(finished);
        done(readJob->error() == QKeychain::NoError ? readJob->textData() : readFile(name));
    });
    job->start();
}

} // namespace osprel
