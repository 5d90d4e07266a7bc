#pragma once
// A real SMTP server on loopback for one test or bench: Debian's aiosmtpd (tests/harness/smtp_server.py), storing
// what it accepts in a maildir and logging the moment each message was received.

#include <QList>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

// One message received: when its data had all arrived (CLOCK_MONOTONIC), the alert number its body names (-1
// when none), and its size.
struct Receipt
{
    qint64 receivedNs = 0;
    int alertNumber = -1;
    qint64 bytes = 0;
};

class LocalSmtpServer
{
public:
    // How the server behaves; the defaults are a plain relay that takes everything.
    struct Options
    {
        QString tls; // "", "starttls", "starttls-required" or "implicit" (with certFile and keyFile)
        QString certFile, keyFile;
        QStringList users;     // "name:password", for AUTH PLAIN and LOGIN (then AUTH is required)
        QString xoauth2Tokens; // a file of accepted XOAUTH2 tokens, one a line (then AUTH is required)
        int greylist = 0;      // the first this many messages get 451
        QString refuseRcpt;    // recipients holding this text get 550
        QString quitReply;     // the answer to QUIT instead of 221
        QString hostile;       // "silent" or "endless": no SMTP at all
    };

    LocalSmtpServer();
    ~LocalSmtpServer();
    LocalSmtpServer(const LocalSmtpServer &) = delete;
    LocalSmtpServer &operator=(const LocalSmtpServer &) = delete;

    // Starts the server on a free port and waits until it accepts connections; false (with the server's own
    // output in *error) when it cannot, as when python3-aiosmtpd is missing.
    bool start(QString *error);
    bool start(const Options &options, QString *error);
    quint16 port() const { return m_port; }
    QString address() const { return QStringLiteral("127.0.0.1:") + QString::number(m_port); }
    qint64 pid() const { return m_process.processId(); }

    // The messages stored so far, oldest first, with LF line ends.
    QStringList messages() const;
    // The Subject of each stored message, oldest first.
    QStringList subjects() const;
    // Every message that reached the end of its data, accepted or not, as the bytes received (oldest first), and
    // the envelope of each as JSON (mail_from, rcpt_tos, host_name, authenticated, tls).
    QList<QByteArray> rawMessages() const;
    QList<QByteArray> rawEnvelopes() const;
    QString rawDir() const { return m_dir.filePath(QStringLiteral("raw")); }

    // The file of one stored message, or an empty string when there is none yet.
    QString anyStoredMessage() const;
    // Every message received so far, in the order received; reads only what the log gained since the last call.
    const QList<Receipt> &receipts();
    int received() { return int(receipts().size()); }

private:
    QTemporaryDir m_dir;
    QProcess m_process;
    quint16 m_port = 0;
    QList<Receipt> m_receipts;
    qint64 m_readUpTo = 0; // bytes of the receipts log taken in so far: whole lines only
};

// The header lines and the body of a stored message.
struct StoredMessage
{
    QStringList headers;
    QString body;
    static StoredMessage parse(const QString &message);
};

// CLOCK_MONOTONIC in nanoseconds: the clock the receipts use.
qint64 monotonicNs();
