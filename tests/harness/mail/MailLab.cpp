#include "MailLab.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QJsonDocument>
#include <QTemporaryFile>
#include <QThread>

namespace {
const QString kPython = QStringLiteral("/usr/bin/python3");
}

bool TestCertificates::openssl(const QStringList &arguments, QString *error, QByteArray *output)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QStringLiteral("openssl"), arguments);
    if (!process.waitForFinished(30000) || process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
        *error = QStringLiteral("openssl ") + arguments.join(u' ') + QStringLiteral(": ") +
                 QString::fromLocal8Bit(process.readAll()) + process.errorString();
        return false;
    }
    if (output)
        *output = process.readAll();
    return true;
}

bool TestCertificates::serverCert(const QString &ca, const QString &name, const QString &cn, const QString &san,
                                  QString *error)
{
    QFile ext(m_dir.filePath(name + QStringLiteral(".ext")));
    if (!ext.open(QIODevice::WriteOnly) || ext.write(("subjectAltName=" + san + "\n").toUtf8()) < 0)
        return false;
    ext.close();
    const QString base = m_dir.filePath(name);
    return openssl({"req", "-newkey", "rsa:2048", "-nodes", "-keyout", base + ".key", "-out", base + ".csr", "-subj",
                    "/CN=" + cn},
                   error) &&
           openssl({"x509", "-req", "-in", base + ".csr", "-CA", m_dir.filePath(ca + ".pem"), "-CAkey",
                    m_dir.filePath(ca + ".key"), "-CAcreateserial", "-out", base + ".pem", "-days", "30", "-extfile",
                    ext.fileName()},
                   error);
}

bool TestCertificates::make(QString *error)
{
    if (!m_dir.isValid())
        return false;
    for (const char *ca : {"ca", "rogue-ca"}) {
        if (!openssl({"req", "-x509", "-newkey", "rsa:2048", "-nodes", "-keyout", path(ca) + ".key", "-out",
                      path(ca) + ".pem", "-days", "30", "-subj", QStringLiteral("/CN=Test CA ") + QLatin1String(ca)},
                     error))
            return false;
    }
    // The key files of "srv" and "other" and "rogue-srv" differ; the server is started with the matching one.
    if (!serverCert("ca", "srv", "localhost", "DNS:localhost,IP:127.0.0.1", error) ||
        !serverCert("ca", "other", "mail.elsewhere.example", "DNS:mail.elsewhere.example", error) ||
        !serverCert("rogue-ca", "rogue-srv", "localhost", "DNS:localhost,IP:127.0.0.1", error))
        return false;
    QByteArray fingerprint;
    if (!openssl({"x509", "-in", path("rogue-srv.pem"), "-noout", "-fingerprint", "-sha256"}, error, &fingerprint))
        return false;
    m_untrustedFingerprint = QString::fromLatin1(fingerprint).section(u'=', 1).trimmed();
    return true;
}

TokenEndpoint::~TokenEndpoint()
{
    if (m_process.state() != QProcess::NotRunning) {
        m_process.kill();
        m_process.waitForFinished(5000);
    }
}

bool TokenEndpoint::start(int expiresInSec, QString *error)
{
    const QString portFile = m_dir.filePath(QStringLiteral("port"));
    m_process.setProcessChannelMode(QProcess::MergedChannels);
    m_process.start(kPython, {QStringLiteral(OSPREL_HARNESS_DIR "/mail/token_endpoint.py"),
                              QStringLiteral("--port-file"), portFile, QStringLiteral("--tokens"), tokensFile(),
                              QStringLiteral("--requests"), m_dir.filePath(QStringLiteral("requests")),
                              QStringLiteral("--expires-in"), QString::number(expiresInSec)});
    const QDeadlineTimer deadline(15000);
    while (!deadline.hasExpired() && m_process.state() != QProcess::NotRunning) {
        QFile file(portFile);
        if (file.open(QIODevice::ReadOnly)) {
            m_port = quint16(file.readAll().toUInt());
            return m_port != 0;
        }
        m_process.waitForReadyRead(50);
    }
    *error = QStringLiteral("token endpoint did not start: ") + QString::fromLocal8Bit(m_process.readAll());
    return false;
}

QString TokenEndpoint::url() const
{
    return QStringLiteral("http://127.0.0.1:%1/{tenant}/oauth2/v2.0/token").arg(m_port);
}

int TokenEndpoint::requests() const
{
    QFile file(m_dir.filePath(QStringLiteral("requests")));
    return file.open(QIODevice::ReadOnly) ? int(file.readAll().count('\n')) : 0;
}

QJsonObject readMessage(const QByteArray &raw)
{
    QTemporaryFile file;
    if (!file.open() || file.write(raw) != raw.size())
        return {};
    file.flush();
    QProcess process;
    process.start(kPython, {QStringLiteral(OSPREL_HARNESS_DIR "/mail/check_message.py"), file.fileName()});
    process.waitForFinished(15000);
    return QJsonDocument::fromJson(process.readAllStandardOutput()).object();
}
