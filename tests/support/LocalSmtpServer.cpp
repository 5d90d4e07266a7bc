#include "LocalSmtpServer.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>

namespace {
// Debian's interpreter: the python3 first on the PATH of these machines does not see Debian's Python packages.
const QString kPython = QStringLiteral("/usr/bin/python3");

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

LocalSmtpServer::LocalSmtpServer()
{
    m_process.setProcessChannelMode(QProcess::MergedChannels);
}

LocalSmtpServer::~LocalSmtpServer()
{
    m_process.kill();
    m_process.waitForFinished(5000);
}

bool LocalSmtpServer::start(QString *error)
{
    m_port = freePort();
    m_process.start(kPython, {QStringLiteral("-m"), QStringLiteral("aiosmtpd"), QStringLiteral("-n"),
                              QStringLiteral("-l"), address(), QStringLiteral("-c"),
                              QStringLiteral("aiosmtpd.handlers.Mailbox"), m_dir.filePath(QStringLiteral("maildir"))});
    const QDeadlineTimer deadline(15000);
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

StoredMessage StoredMessage::parse(const QString &message)
{
    const qsizetype split = message.indexOf(QStringLiteral("\n\n"));
    return {message.left(split).split(u'\n'), message.mid(split + 2)};
}
