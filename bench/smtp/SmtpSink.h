#pragma once
// The SMTP server every message of bench-smtp goes to: Debian's aiosmtpd on loopback with the bench's handler,
// which stores each message in a maildir and logs the moment it was received.

#include <QList>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>

// One message received: when its data had all arrived (CLOCK_MONOTONIC), the alert number its body names (-1
// when none), and its size.
struct Receipt
{
    qint64 receivedNs = 0;
    int alertNumber = -1;
    qint64 bytes = 0;
};

class SmtpSink
{
public:
    SmtpSink();
    ~SmtpSink();
    SmtpSink(const SmtpSink &) = delete;
    SmtpSink &operator=(const SmtpSink &) = delete;

    // Starts the server on a free loopback port and waits until it accepts connections; false with the server's
    // own output in *error, as when python3-aiosmtpd is missing.
    bool start(QString *error);
    quint16 port() const { return m_port; }
    QString address() const { return QStringLiteral("127.0.0.1:") + QString::number(m_port); }
    qint64 pid() const { return m_process.processId(); }
    // Every message received so far, in the order received; reads only what the log gained since the last call.
    const QList<Receipt> &receipts();
    int received() { return int(receipts().size()); }
    // The file of one message as the maildir holds it, or an empty string when there is none yet.
    QString anyStoredMessage() const;

private:
    QTemporaryDir m_dir;
    QProcess m_process;
    quint16 m_port = 0;
    QList<Receipt> m_receipts;
    qint64 m_readUpTo = 0; // bytes of the receipts log taken in so far: whole lines only
};

// CLOCK_MONOTONIC in nanoseconds: the clock the sink's receipts use.
qint64 monotonicNs();
