#pragma once
// The e-mail path end to end: alerts over a private bus into a server process the bus starts, delivered by it to
// the SMTP sink; beside it a plain smtplib client sending the same messages to the same sink; and the latency from
// SendAlert to the sink's receipt at the design timer intervals.

#include "LocalSmtpServer.h"
#include "MailLab.h"

#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <vector>

// Counts the AlertStatus events of delivered e-mails, successes and failures apart.
class DeliveryCounter : public QObject
{
    Q_OBJECT
public:
    int delivered = 0;
    int failed = 0;

public Q_SLOTS:
    void onAlertStatus(const QDBusMessage &message);
};

// N messages through one path: how long from the first hand-in to the last receipt, and their size.
struct PathRate
{
    int messages = 0;
    double seconds = 0;
    double perSecond = 0;
    qint64 bytesPerMessage = 0;
    double firstAfterMs = 0; // the first message's receipt after the start
    // CPU time per message of the sender (the server process, or the plain client) and of the SMTP sink.
    double senderCpuMsPerMessage = 0;
    double sinkCpuMsPerMessage = 0;
    int delivered = 0; // AlertStatus events (the server path only)
    int failed = 0;
};

class SmtpBench
{
public:
    // The time scale of the throughput run: TimerMsgQue and TimerEmailMsgQue every millisecond.
    static constexpr double kFastTimeScale = 0.001;

    bool start(QString *error) { return m_sink.start(error); }
    // A second sink that takes mail only after STARTTLS and AUTH, with a CA and certificate made for it.
    bool startTls(QString *error);
    QString sinkAddress() const { return m_sink.address(); }

    // (a) `alerts` alerts over the bus into a server at kFastTimeScale; waits until every message was received.
    // With tls, to the second sink through STARTTLS and AUTH PLAIN.
    bool serverPath(int alerts, int timeoutMs, PathRate *rate, QString *error, bool tls = false);
    // (b) the same number of messages, as the server sent them, from smtplib with one connection each (with tls,
    // each doing STARTTLS and AUTH PLAIN as well).
    bool plainClient(int messages, int timeoutMs, PathRate *rate, QString *error, bool tls = false);
    // (c) at time scale 1, after start-up, `alerts` alerts spacingMs apart; the latency of each from SendAlert to
    // its receipt.
    bool latency(int alerts, int spacingMs, int settleMs, std::vector<qint64> *latenciesNs, QString *error);

private:
    LocalSmtpServer m_sink;
    LocalSmtpServer m_tlsSink;
    TestCertificates m_certs;
};
