// Runs the three parts of bench-smtp against one SMTP sink.

#include "SmtpBench.h"

#include "AlertText.h"
#include "BenchDatabase.h"
#include "ChamberLink.h"
#include "PrivateBus.h"
#include "ProcStatus.h"
#include "Waiting.h"

#include "Database.h"

#include <QFile>
#include <QProcess>
#include <functional>
#include <memory>
#include <sys/resource.h>

namespace {

const QString kFrom = QStringLiteral("emailfax@chamber.test");
const QStringList kRecipients{QStringLiteral("jo@lab.test"), QStringLiteral("sam@lab.test")};
const QString kAlertStatus = QStringLiteral("AlertStatus");
// Throughput alerts are numbered from 100, so that up to 900 of them make messages of one size.
constexpr int kFirstThroughputAlert = 100;
constexpr int kFirstLatencyAlert = 1001;
// What the server gets to finish after the last receipt: the outcome of the last message reaching the chamber.
constexpr int kOutcomeTimeoutMs = 10000;

// One server under test: a private bus at the given time scale, a data folder with the two e-mail recipients and no
// fax whose mail server is the sink, and the server the bus starts, linked.
class ServerUnderTest
{
public:
    explicit ServerUnderTest(double timeScale) : m_bus(timeScale) {}

    // prepare, when given, adds to the data folder before the server starts.
    bool start(const QString &mailServer, DeliveryCounter *counter, QString *error,
               const std::function<bool(const QString &, QString *)> &prepare = {})
    {
        const QList<BenchRecipient> recipients{
            {QStringLiteral("Doe"), QStringLiteral("Jo"), kRecipients.at(0), QString()},
            {QStringLiteral("Neil"), QStringLiteral("Sam"), kRecipients.at(1), QString()}};
        if (!m_bus.start(error) || !prepareDatabase(m_bus.dataFolder(), mailServer, recipients, error))
            return false;
        if (prepare && !prepare(m_bus.dataFolder(), error))
            return false;
        m_link = std::make_unique<ChamberLink>(m_bus.address(), QStringLiteral("osprel-bench-smtp"));
        if (!m_link->connect(error) || !m_link->createObject(error))
            return false;
        if (counter && !m_link->subscribe(kAlertStatus, counter, SLOT(onAlertStatus(QDBusMessage)), error))
            return false;
        if (!m_link->link(error))
            return false;
        m_bus.setServerPid(m_link->serverPid());
        return true;
    }

    ChamberLink &link() { return *m_link; }

    // Unlinks, waits until the server has ended, and ends the bus.
    bool stop(QString *error)
    {
        qint64 leftAfterMs = 0;
        const bool ended = m_link->unlinkAndWaitForExit(&leftAfterMs, error);
        m_link.reset();
        m_bus.stop();
        return ended;
    }

private:
    PrivateBus m_bus;
    std::unique_ptr<ChamberLink> m_link;
};

// The receipts after the first `skip`, once there are `count` of them or timeoutMs passed.
QList<Receipt> awaitReceipts(LocalSmtpServer &sink, int skip, int count, int timeoutMs)
{
    waitFor([&] { return sink.received() >= skip + count; }, timeoutMs, 10);
    return sink.receipts().mid(skip);
}

// The CPU time of this process's ended and reaped children, in milliseconds.
qint64 childrenCpuTimeMs()
{
    rusage usage{};
    getrusage(RUSAGE_CHILDREN, &usage);
    return (qint64(usage.ru_utime.tv_sec) + usage.ru_stime.tv_sec) * 1000 +
           (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1000;
}

void setRate(const QList<Receipt> &receipts, qint64 startNs, PathRate *rate)
{
    rate->messages = int(receipts.size());
    rate->seconds = double(receipts.constLast().receivedNs - startNs) / 1e9;
    rate->perSecond = rate->seconds > 0 ? rate->messages / rate->seconds : 0;
    rate->bytesPerMessage = receipts.constFirst().bytes;
    rate->firstAfterMs = double(receipts.constFirst().receivedNs - startNs) / 1e6;
}

// STARTTLS required and AUTH PLAIN as lab/pw, trusting the bench's CA. The time-outs are set far above their
// defaults: at the fast time scale the defaults would be a tenth of a second.
bool prepareTls(const QString &folder, const QString &caFile, QString *error)
{
    try {
        osprel::Database database;
        database.DBInitADO(folder);
        database.run(QStringLiteral("INSERT INTO MailServerSecurity (Security, Auth, UserName, CaFile, ConnectTimeout,"
                                    " ReplyTimeout, DotTimeout) VALUES (1, 1, 'lab', ?, 60000, 60000, 60000)"),
                     {caFile});
        database.close();
    } catch (const std::exception &e) {
        *error = QStringLiteral("cannot prepare the mail security: ") + QString::fromLocal8Bit(e.what());
        return false;
    }
    QFile secrets(folder + QStringLiteral("/mail-secrets.json"));
    if (!secrets.open(QIODevice::WriteOnly) ||
        !secrets.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner) ||
        secrets.write(R"({"password": "pw"})") < 0) {
        *error = QStringLiteral("cannot write ") + secrets.fileName();
        return false;
    }
    return true;
}

} // namespace

bool SmtpBench::startTls(QString *error)
{
    if (!m_certs.make(error))
        return false;
    LocalSmtpServer::Options options;
    options.tls = QStringLiteral("starttls-required");
    options.certFile = m_certs.certFile();
    options.keyFile = m_certs.keyFile();
    options.users = QStringList{QStringLiteral("lab:pw")};
    return m_tlsSink.start(options, error);
}

void DeliveryCounter::onAlertStatus(const QDBusMessage &message)
{
    if (message.arguments().value(2).toBool())
        ++delivered;
    else
        ++failed;
}

bool SmtpBench::serverPath(int alerts, int timeoutMs, PathRate *rate, QString *error, bool tls)
{
    LocalSmtpServer &m_sink = tls ? m_tlsSink : this->m_sink;
    ServerUnderTest server(kFastTimeScale);
    DeliveryCounter outcomes;
    const QString caFile = m_certs.caFile();
    const bool started =
        tls ? server.start(QStringLiteral("localhost:%1").arg(m_sink.port()), &outcomes, error,
                           [&caFile](const QString &folder, QString *why) { return prepareTls(folder, caFile, why); })
            : server.start(m_sink.address(), &outcomes, error);
    if (!started)
        return false;
    pump(200); // start-up: TimerInit's 5 s are 5 ms here

    const int before = m_sink.received();
    const qint64 serverCpuMs = cpuTimeMs(server.link().serverPid());
    const qint64 sinkCpuMs = cpuTimeMs(pid_t(m_sink.pid()));
    const qint64 startNs = monotonicNs();
    for (int i = 0; i < alerts; ++i) {
        if (!server.link().sendAlert(chamberAlert(kFirstThroughputAlert + i, ChamberAlarm), error))
            return false;
    }
    const QList<Receipt> receipts = awaitReceipts(m_sink, before, alerts, timeoutMs);
    if (receipts.size() < alerts) {
        *error = QStringLiteral("the server delivered %1 of %2 messages within %3 s")
                     .arg(receipts.size())
                     .arg(alerts)
                     .arg(timeoutMs / 1000);
        return false;
    }
    setRate(receipts, startNs, rate);
    rate->senderCpuMsPerMessage = double(cpuTimeMs(server.link().serverPid()) - serverCpuMs) / alerts;
    rate->sinkCpuMsPerMessage = double(cpuTimeMs(pid_t(m_sink.pid())) - sinkCpuMs) / alerts;
    waitFor([&] { return outcomes.delivered + outcomes.failed >= alerts; }, kOutcomeTimeoutMs);
    rate->delivered = outcomes.delivered;
    rate->failed = outcomes.failed;
    return server.stop(error);
}

bool SmtpBench::plainClient(int messages, int timeoutMs, PathRate *rate, QString *error, bool tls)
{
    LocalSmtpServer &m_sink = tls ? m_tlsSink : this->m_sink;
    QStringList tlsArguments;
    if (tls)
        tlsArguments << m_certs.caFile() << QStringLiteral("lab") << QStringLiteral("pw");
    const QString stored = m_sink.anyStoredMessage();
    if (stored.isEmpty()) {
        *error = QStringLiteral("no stored message to send again");
        return false;
    }
    const int before = m_sink.received();
    const qint64 sinkCpuMs = cpuTimeMs(pid_t(m_sink.pid()));
    const qint64 childrenCpuMs = childrenCpuTimeMs();
    QProcess client;
    client.setProcessChannelMode(QProcess::SeparateChannels);
    client.start(QStringLiteral("/usr/bin/python3"),
                 QStringList{QStringLiteral(OSPREL_BENCH_SMTP_DIR "/plain_client.py"), QStringLiteral("127.0.0.1"),
                             QString::number(m_sink.port()), QString::number(messages), kFrom, kRecipients.join(u','),
                             stored} +
                     tlsArguments);
    if (!client.waitForFinished(timeoutMs) || client.exitStatus() != QProcess::NormalExit || client.exitCode() != 0) {
        client.kill();
        client.waitForFinished(5000);
        *error = QStringLiteral("the plain client failed: ") + QString::fromLocal8Bit(client.readAllStandardError());
        return false;
    }
    qint64 startNs = 0;
    for (const QByteArray &line : client.readAllStandardOutput().split('\n')) {
        if (line.startsWith("start "))
            startNs = line.mid(6).toLongLong();
    }
    const QList<Receipt> receipts = awaitReceipts(m_sink, before, messages, 5000);
    if (startNs == 0 || receipts.size() != messages) {
        *error = QStringLiteral("the plain client's %1 messages were not all received (%2)")
                     .arg(messages)
                     .arg(receipts.size());
        return false;
    }
    setRate(receipts, startNs, rate);
    rate->senderCpuMsPerMessage = double(childrenCpuTimeMs() - childrenCpuMs) / messages;
    rate->sinkCpuMsPerMessage = double(cpuTimeMs(pid_t(m_sink.pid())) - sinkCpuMs) / messages;
    return true;
}

bool SmtpBench::latency(int alerts, int spacingMs, int settleMs, std::vector<qint64> *latenciesNs, QString *error)
{
    ServerUnderTest server(1);
    if (!server.start(m_sink.address(), nullptr, error))
        return false;
    pump(settleMs);

    const int before = m_sink.received();
    std::vector<qint64> sentNs(std::size_t(alerts), 0);
    const qint64 startNs = monotonicNs();
    for (int i = 0; i < alerts; ++i) {
        const qint64 waitMs = (startNs + qint64(i) * spacingMs * 1000000 - monotonicNs()) / 1000000;
        if (waitMs > 0)
            pump(int(waitMs));
        sentNs[std::size_t(i)] = monotonicNs();
        if (!server.link().sendAlert(chamberAlert(kFirstLatencyAlert + i, ChamberAlarm), error))
            return false;
    }
    const QList<Receipt> receipts = awaitReceipts(m_sink, before, alerts, 10 * spacingMs + 10000);
    latenciesNs->clear();
    for (int i = 0; i < alerts; ++i) {
        for (const Receipt &receipt : receipts) {
            if (receipt.alertNumber == kFirstLatencyAlert + i) {
                latenciesNs->push_back(receipt.receivedNs - sentNs[std::size_t(i)]);
                break;
            }
        }
    }
    if (int(latenciesNs->size()) != alerts) {
        *error = QStringLiteral("%1 of %2 alerts reached the SMTP server").arg(latenciesNs->size()).arg(alerts);
        return false;
    }
    return server.stop(error);
}
