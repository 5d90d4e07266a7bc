#pragma once
// The server's logic and its window in this process, on a private bus with a chamber program linked from a child
// process, a prepared database, and every timer at interval 0, so that TimerMsgQue dispatches back to back. It
// keeps the incoming queue at a chosen length and measures what each dispatched alert costs.

#include "FormLists.h"
#include "PrivateBus.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QString>
#include <QTcpServer>
#include <memory>

namespace osprel {
class BusServer;
class EmailFaxServer;
class Log;
class MainWindow;
} // namespace osprel

// What one measured series of dispatched alerts cost and produced.
struct DispatchRun
{
    int queueLength = 0;
    int alerts = 0;
    double cpuUsPerAlert = 0;
    double alertsPerSecond = 0;
    // What the alerts became: e-mail jobs, fax jobs, alarms held for a report.
    int emailJobs = 0;
    int faxJobs = 0;
    int heldAlarms = 0;
    // Filling the queue before the series: in-process intake cost per alert.
    double fillCpuUsPerAlert = 0;
    int filled = 0;
};

class DispatchBench
{
public:
    // The categories handed in, in turn; see categoryMix().
    static QString categoryMix();

    DispatchBench();
    ~DispatchBench();
    DispatchBench(const DispatchBench &) = delete;
    DispatchBench &operator=(const DispatchBench &) = delete;

    // Prepares the database, loads the server and its window, starts the bus and links the chamber program.
    bool start(QString *error);
    // Fills the incoming queue to queueLength, lets warmUp alerts go, then measures `alerts` dispatched alerts
    // while every tick's alert is replaced at once, so that the queue holds queueLength throughout.
    bool measure(int queueLength, int warmUp, int alerts, DispatchRun *run, QString *error);
    // E-mail sessions started and errors the server logged during the bench (both should stay 0).
    int emailSessionsStarted() const;
    int errorsLogged() const;
    void stop();

private:
    void onTick();
    void handIn();
    int heldAlarms() const;

    PrivateBus m_bus{1};
    QTcpServer m_silentMailServer;
    std::unique_ptr<osprel::Log> m_log;
    osprel::FormLists m_lists;
    std::unique_ptr<osprel::MainWindow> m_window;
    std::unique_ptr<osprel::EmailFaxServer> m_server;
    std::unique_ptr<osprel::BusServer> m_busServer;
    QProcess m_chamber;
    int m_nextAlert = 1;

    // The series under way.
    bool m_running = false;
    int m_ticks = 0;
    int m_warmUp = 0;
    int m_target = 0;
    qint64 m_cpuStartNs = 0;
    qint64 m_cpuEndNs = 0;
    qint64 m_wallStartNs = 0;
    qint64 m_wallEndNs = 0;
    qint64 m_handInCpuNs = 0;
    qint64 m_handInWallNs = 0;
    int m_emailJobsAtStart = 0;
    int m_faxJobsAtStart = 0;
    int m_heldAtStart = 0;
    QElapsedTimer m_wall;
};
