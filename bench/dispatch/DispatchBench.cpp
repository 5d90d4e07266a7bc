// Runs the server's dispatch in this process and measures it at a held incoming-queue length.

#include "DispatchBench.h"

#include "AlertText.h"
#include "BenchDatabase.h"
#include "BusServer.h"
#include "EmailFaxServer.h"
#include "FormLists.h"
#include "FormWiring.h"
#include "Globals.h"
#include "Log.h"
#include "MainWindow.h"
#include "Waiting.h"
#include "pages/AlarmSetupPage.h"

#include <QDBusConnection>
#include <QEventLoop>
#include <QFile>
#include <QTimer>
#include <ctime>

using namespace osprel;

namespace {

// The send-queue timers are re-armed with this interval whenever the dispatcher starts them: longer than any run,
// so no e-mail or fax goes out and the send queues only grow.
constexpr int kParkedMs = 24 * 3600 * 1000;
constexpr int kLinkTimeoutMs = 30000;
// Every series is bounded: one that has not finished by then fails the bench.
constexpr int kSeriesTimeoutMs = 300000;

// One round of categories as a lab's chamber program hands them in: status reports most often, chamber alarms next,
// now and then a program alarm, a communication error or a refused command.
constexpr int kMix[] = {GeneralStatus, ChamberAlarm, GeneralStatus,        ProgramAlarm, ChamberAlarm,
                        GeneralStatus, CommError,    CommandResponseError, ChamberAlarm, GeneralStatus};
constexpr int kMixSize = int(sizeof kMix / sizeof kMix[0]);

qint64 cpuNowNs()
{
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return qint64(now.tv_sec) * 1000000000 + now.tv_nsec;
}

} // namespace

QString DispatchBench::categoryMix()
{
    return QStringLiteral("per 10 alerts: 4 GENERAL_STATUS (Low: held for the daily report), 3 CHAMBER_ALARM and "
                          "1 COMM_ERROR (High: sent at once), 1 PROGRAM_ALARM (Mid: sent at once and held for the "
                          "hourly report), 1 COMMAND_RESPONSE_ERROR (Low: held)");
}

DispatchBench::DispatchBench() = default;

DispatchBench::~DispatchBench()
{
    stop();
}

bool DispatchBench::start(QString *error)
{
    // A mail server that takes connections and never answers: should a message start after all, its session would
    // only wait, costing nothing.
    if (!m_silentMailServer.listen(QHostAddress::LocalHost)) {
        *error = QStringLiteral("cannot listen on loopback: ") + m_silentMailServer.errorString();
        return false;
    }
    if (!m_bus.start(error))
        return false;
    const QString home = m_bus.dataFolder();
    const QList<BenchRecipient> recipients{
        {QStringLiteral("Doe"), QStringLiteral("Jo"), QStringLiteral("jo@lab.test"), QStringLiteral("5550001111")},
        {QStringLiteral("Roe"), QStringLiteral("Al"), QStringLiteral("al@lab.test"), QString()},
        {QStringLiteral("Poe"), QStringLiteral("Ed"), QStringLiteral("ed@lab.test"), QString()},
        {QStringLiteral("Loe"), QStringLiteral("Cy"), QString(), QStringLiteral("5550002222")},
    };
    const QString mailServer = QStringLiteral("127.0.0.1:") + QString::number(m_silentMailServer.serverPort());
    if (!prepareDatabase(home, mailServer, recipients, error))
        return false;

    resetGlobals();
    g.gstrAppPath = home;
    m_log = std::make_unique<Log>(home);
    m_window = std::make_unique<MainWindow>(m_lists, *m_log);
    m_server = std::make_unique<EmailFaxServer>(*m_log, m_lists, m_window->ports());
    wireForm(*m_window, *m_server);
    m_server->Form_Load();
    FormTimers &timers = m_server->timers();
    timers.TimerEmailMsgQue.setInterval(kParkedMs);
    timers.TimerFaxMsgQue.setInterval(kParkedMs);
    // After the dispatcher, so that each tick's count and hand-in follow its dispatch.
    QObject::connect(&timers.TimerMsgQue, &QTimer::timeout, m_server.get(), [this] { onTick(); });

    m_busServer = std::make_unique<BusServer>(
        QDBusConnection::connectToBus(m_bus.address(), QStringLiteral("osprel-bench-dispatch-server")));
    QObject::connect(m_busServer.get(), &BusServer::ownerLeft, &m_server->link(), &AlertLink::linkedClientLeft);
    QObject::connect(m_busServer.get(), &BusServer::objectReleased, &m_server->link(),
                     &AlertLink::linkedObjectReleased);
    if (!m_busServer->start(error))
        return false;

    // The chamber program is the reference client in a child process: it links and then only listens, so that the
    // ServerStatus event of every tick really goes out over the bus without costing this process to receive it.
    m_chamber.setStandardOutputFile(QProcess::nullDevice());
    m_chamber.setStandardErrorFile(QProcess::nullDevice());
    m_chamber.start(QStringLiteral(OSPREL_BUILD_DIR "/bin/osprel-client"),
                    {QStringLiteral("--bus"), m_bus.address(), QStringLiteral("--wait"),
                     QString::number(kSeriesTimeoutMs / 1000 * 4), QStringLiteral("--unlink"), QStringLiteral("none")});
    if (!waitFor([this] { return g.gblnServerLinked && m_server->link().server(); }, kLinkTimeoutMs)) {
        *error = QStringLiteral("the chamber program did not link within %1 s").arg(kLinkTimeoutMs / 1000);
        return false;
    }
    // TimerInit has fired (interval 0) and started the dispatch timers; the series start them again themselves.
    pump(200);
    timers.TimerMsgQue.stop();
    return true;
}

void DispatchBench::handIn()
{
    // What SendAlert's AlertReady event does in the server: the link's handler appends the alert to the incoming
    // queue. The bus echo of AlertReady to the chamber program is left out, so no traffic outlives the hand-in.
    const int number = m_nextAlert++;
    m_server->link().m_objAlertServer_AlertReady(chamberAlert(number, kMix[number % kMixSize]));
}

void DispatchBench::onTick()
{
    if (!m_running)
        return;
    ++m_ticks;
    const qint64 cpu = cpuNowNs();
    const qint64 wall = m_wall.nsecsElapsed();
    handIn();
    m_handInCpuNs += cpuNowNs() - cpu;
    m_handInWallNs += m_wall.nsecsElapsed() - wall;
    if (m_ticks == m_warmUp) {
        // The measured ticks begin: the warm-up's jobs are not counted.
        const FormLists &lists = m_server->lists();
        m_emailJobsAtStart = lists.lvwSendEmailQue.count();
        m_faxJobsAtStart = lists.lvwSendFaxQue.count();
        m_heldAtStart = heldAlarms();
        m_handInCpuNs = 0;
        m_handInWallNs = 0;
        m_cpuStartNs = cpuNowNs();
        m_wallStartNs = m_wall.nsecsElapsed();
    } else if (m_ticks == m_warmUp + m_target) {
        m_cpuEndNs = cpuNowNs();
        m_wallEndNs = m_wall.nsecsElapsed();
        m_running = false;
        m_server->timers().TimerMsgQue.stop();
    }
}

int DispatchBench::heldAlarms() const
{
    // The per-category counters count every alarm held, also across a full pool being emptied.
    int held = 0;
    for (int i = 0; i < 8; ++i)
        held += m_window->alarmSetupPage()->lblQueuedAlarms(i).toInt();
    return held;
}

bool DispatchBench::measure(int queueLength, int warmUp, int alerts, DispatchRun *run, QString *error)
{
    FormLists &lists = m_server->lists();
    // Every series starts with empty send queues, so that only the incoming queue's length differs between them.
    lists.lvwSendEmailQue.clear();
    lists.lvwSendFaxQue.clear();

    run->queueLength = queueLength;
    // Coming down from a longer queue, the queue starts again from empty.
    if (lists.lvwMsgQue.count() > queueLength)
        lists.lvwMsgQue.clear();
    const qint64 fillCpu = cpuNowNs();
    int filled = 0;
    for (; lists.lvwMsgQue.count() < queueLength; ++filled)
        handIn();
    run->filled = filled;
    run->fillCpuUsPerAlert = filled > 0 ? double(cpuNowNs() - fillCpu) / 1000.0 / filled : 0;
    pump(300); // lets the views take in the new rows before the series

    m_ticks = 0;
    m_warmUp = warmUp;
    m_target = alerts;
    m_running = true;
    m_wall.start();
    m_server->timers().TimerMsgQue.start();
    const bool finished = waitFor([this] { return !m_running; }, kSeriesTimeoutMs, 50);
    if (!finished) {
        m_running = false;
        m_server->timers().TimerMsgQue.stop();
        *error = QStringLiteral("only %1 of %2 alerts were dispatched within %3 s")
                     .arg(m_ticks)
                     .arg(warmUp + alerts)
                     .arg(kSeriesTimeoutMs / 1000);
        return false;
    }
    if (lists.lvwMsgQue.count() != queueLength) {
        *error = QStringLiteral("the incoming queue held %1 alerts after the series, not %2")
                     .arg(lists.lvwMsgQue.count())
                     .arg(queueLength);
        return false;
    }
    run->alerts = alerts;
    run->cpuUsPerAlert = double(m_cpuEndNs - m_cpuStartNs - m_handInCpuNs) / 1000.0 / alerts;
    run->alertsPerSecond = alerts * 1e9 / double(m_wallEndNs - m_wallStartNs - m_handInWallNs);
    run->emailJobs = lists.lvwSendEmailQue.count() - m_emailJobsAtStart;
    run->faxJobs = lists.lvwSendFaxQue.count() - m_faxJobsAtStart;
    run->heldAlarms = heldAlarms() - m_heldAtStart;
    return true;
}

int DispatchBench::emailSessionsStarted() const
{
    // Every message taken from the e-mail queue leaves a history row.
    return m_server ? m_server->lists().lvwHist[0].count() : 0;
}

int DispatchBench::errorsLogged() const
{
    QFile file(m_log ? m_log->logPath() : QString());
    if (!file.open(QIODevice::ReadOnly))
        return -1;
    return int(file.readAll().count("ErrorHandler"));
}

void DispatchBench::stop()
{
    if (m_chamber.state() != QProcess::NotRunning) {
        m_chamber.terminate();
        if (!m_chamber.waitForFinished(5000)) {
            m_chamber.kill();
            m_chamber.waitForFinished(5000);
        }
    }
    if (m_busServer)
        m_busServer->stop();
    m_busServer.reset();
    m_server.reset();
    m_window.reset();
    m_log.reset();
    m_bus.stop();
}
