#include "LocalSmtpServer.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QTcpServer>
#include <QTcpSocket>
#include <ctime>

namespace {
// Debian's interpreter: the python3 first on the PATH of these machines does not see Debian's Python packages.
const QString kPython = QStringLiteral("/usr/bin/python3");
constexpr int kStartTimeoutMs = 15000;

quint16 freePort()
{
    QTcpServer server;
    return server.listen(QHostAddress::LocalHost, 0) ? server.serverPort() : 0;
}

bool accepts(quint16 port)
{
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, port);
    const bool connected = socket.waitForConnected(200);
    socket.abort();
    return connected;
}
} // namespace

qint64 monotonicNs()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return qint64(now.tv_sec) * 1000000000 + now.tv_nsec;
}

LocalSmtpServer::LocalSmtpServer()
{
    m_process.setProcessChannelMode(QProcess::MergedChannels);
}

LocalSmtpServer::~LocalSmtpServer()
{
    if (m_process.state() == QProcess::NotRunning)
        return;
    m_process.terminate();
    if (!m_process.waitForFinished(5000)) {
        m_process.kill();
        m_process.waitForFinished(5000);
    }
}

bool LocalSmtpServer::start(QString *error)
{
    return start(Options(), error);
}

bool LocalSmtpServer::start(const Options &options, QString *error)
{
    if (!m_dir.isValid()) {
        *error = QStringLiteral("cannot make a temporary folder: ") + m_dir.errorString();
        return false;
    }
    m_port = freePort();
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("PYTHONDONTWRITEBYTECODE"), QStringLiteral("1"));
    m_process.setProcessEnvironment(environment);
    QStringList arguments = {QStringLiteral(OSPREL_HARNESS_DIR "/smtp_server.py"),
                             QStringLiteral("--listen"),
                             address(),
                             QStringLiteral("--maildir"),
                             m_dir.filePath(QStringLiteral("maildir")),
                             QStringLiteral("--receipts"),
                             m_dir.filePath(QStringLiteral("receipts")),
                             QStringLiteral("--raw"),
                             rawDir()};
    const auto option = [&arguments](const char *name, const QString &value) {
        if (!value.isEmpty())
            arguments << QString::fromLatin1(name) << value;
    };
    option("--tls", options.tls);
    option("--cert", options.certFile);
    option("--key", options.keyFile);
    for (const QString &user : options.users)
        option("--user", user);
    option("--xoauth2-tokens", options.xoauth2Tokens);
    if (options.greylist > 0)
        option("--greylist", QString::number(options.greylist));
    option("--refuse-rcpt", options.refuseRcpt);
    option("--quit-reply", options.quitReply);
    option("--hostile", options.hostile);
    m_process.start(kPython, arguments);
    const QDeadlineTimer deadline(kStartTimeoutMs);
    while (!deadline.hasExpired()) {
        if (m_process.state() == QProcess::NotRunning)
            break;
        if (accepts(m_port))
            return true;
        m_process.waitForReadyRead(50); // lets the server start without spinning
    }
    *error = QStringLiteral("aiosmtpd did not start: ") + QString::fromLocal8Bit(m_process.readAll());
    return false;
}

QStringList LocalSmtpServer::subjects() const
{
    QStringList found;
    for (const QString &message : messages()) {
        for (const QString &header : StoredMessage::parse(message).headers) {
            if (header.startsWith(QLatin1String("Subject: ")))
                found.append(header.mid(9));
        }
    }
    return found;
}

QStringList LocalSmtpServer::messages() const
{
    QDir stored(m_dir.filePath(QStringLiteral("maildir/new")));
    QFileInfoList files = stored.entryInfoList(QDir::Files);
    std::sort(files.begin(), files.end(),
              [](const QFileInfo &a, const QFileInfo &b) { return a.lastModified() < b.lastModified(); });
    QStringList messages;
    for (const QFileInfo &info : files) {
        QFile file(info.filePath());
        if (file.open(QIODevice::ReadOnly))
            messages << QString::fromUtf8(file.readAll()).replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    }
    return messages;
}

namespace {
QList<QByteArray> rawFiles(const QString &dir, const QString &suffix)
{
    QList<QByteArray> contents;
    const QDir raw(dir);
    for (const QString &name : raw.entryList({QStringLiteral("*") + suffix}, QDir::Files, QDir::Name)) {
        QFile file(raw.filePath(name));
        if (file.open(QIODevice::ReadOnly))
            contents << file.readAll();
    }
    return contents;
}
} // namespace

QList<QByteArray> LocalSmtpServer::rawMessages() const
{
    return rawFiles(rawDir(), QStringLiteral(".eml"));
}

QList<QByteArray> LocalSmtpServer::rawEnvelopes() const
{
    return rawFiles(rawDir(), QStringLiteral(".json"));
}

QString LocalSmtpServer::anyStoredMessage() const
{
    const QDir stored(m_dir.filePath(QStringLiteral("maildir/new")));
    const QStringList files = stored.entryList(QDir::Files, QDir::Name);
    return files.isEmpty() ? QString() : stored.filePath(files.constFirst());
}

const QList<Receipt> &LocalSmtpServer::receipts()
{
    QFile file(m_dir.filePath(QStringLiteral("receipts")));
    if (!file.open(QIODevice::ReadOnly) || !file.seek(m_readUpTo))
        return m_receipts;
    const QByteArray added = file.readAll();
    const qsizetype end = added.lastIndexOf('\n') + 1; // a line still being written waits for the next call
    m_readUpTo += end;
    for (const QByteArray &line : added.left(end).split('\n')) {
        const QList<QByteArray> fields = line.split(' ');
        bool ok = false;
        Receipt receipt;
        receipt.receivedNs = fields.size() == 3 ? fields.at(0).toLongLong(&ok) : 0;
        if (!ok)
            continue;
        receipt.alertNumber = fields.at(1) == "-" ? -1 : fields.at(1).toInt();
        receipt.bytes = fields.at(2).toLongLong();
        m_receipts.append(receipt);
    }
    return m_receipts;
}

StoredMessage StoredMessage::parse(const QString &message)
{
    const qsizetype split = message.indexOf(QStringLiteral("\n\n"));
    return {message.left(split).split(u'\n'), message.mid(split + 2)};
}
