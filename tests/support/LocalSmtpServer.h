#pragma once
// A real SMTP server on loopback for one test: Debian's aiosmtpd, storing what it accepts in a maildir.

#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

class LocalSmtpServer
{
public:
    LocalSmtpServer();
    ~LocalSmtpServer();

    // Starts the server on a free port and waits until it accepts connections; false (with the server's own
    // output in *error) when it cannot, as when python3-aiosmtpd is missing.
    bool start(QString *error);
    quint16 port() const { return m_port; }
    QString address() const { return QStringLiteral("127.0.0.1:") + QString::number(m_port); }
    // The messages stored so far, oldest first, with LF line ends.
    QStringList messages() const;

private:
    QTemporaryDir m_dir;
    QProcess m_process;
    quint16 m_port = 0;
};

// The header lines and the body of a stored message.
struct StoredMessage
{
    QStringList headers;
    QString body;
    static StoredMessage parse(const QString &message);
};
