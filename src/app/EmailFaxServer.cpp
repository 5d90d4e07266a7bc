#include "EmailFaxServer.h"

#include "Clock.h"
#include "DBInit.h"
#include "ErrorReport.h"
#include "Globals.h"
#include "Log.h"
#include "QueueRoutines.h"
#include "RecipientString.h"
#include "SendStates.h"
#include "TimeScale.h"
#include "Values.h"
#include "Version.h"

namespace osprel {

namespace {
const QString kCaption = QStringLiteral("Chamber Osprel");
constexpr int kImageNormal = 1;
constexpr int kTrayLeftButtonUp = 514;
constexpr int kTrayLeftButtonDoubleClick = 515;
} // namespace

EmailFaxServer::EmailFaxServer(Log &log, FormLists &lists, const Ports &ports, QObject *parent)
    : QObject(parent), m_log(log), m_ports(ports), m_lists(lists), m_link(m_lists, m_timers),
      m_journal(m_database, m_lists), m_smtp(ports.email),
      m_emailQueue(m_lists, m_timers, m_database, m_smtp, ports.email, ports.recipientsPage, ports.form),
      m_faxDevice(m_faxEngine, m_faxFinder, m_database, m_lists, ports.faxPage, ports.modemPanel),
      m_faxQueue(m_faxEngine, m_faxDevice, m_lists, m_timers, m_database, ports.faxPage, ports.modemPanel,
                 ports.recipientsPage, ports.form),
      m_tray(ports.form), m_sendStatus(m_lists, m_timers, m_database, m_link, m_smtp, m_tray, ports.status),
      m_priorities(m_database, ports.alarmSetup, ports.priorityPage),
      m_alarms(m_database, m_lists, m_timers, ports.queuedAlarms, ports.commSetup),
      m_dispatcher(m_lists, m_timers, m_priorities, m_alarms, ports.commSetup, m_link,
                   [this] { m_sendStatus.SendStatUpdate(); }),
      m_recipients(m_lists, m_database, ports.recipientsPage, ports.contactEditor, ports.form, ports.form),
      m_prioritySetup(m_priorities, m_alarms, m_lists, m_timers, ports.alarmSetup, ports.priorityPage),
      m_commSetup(m_database, ports.commSetup), m_mailSetup(m_database, ports.email, ports.form, m_secrets),
      m_supervision(m_lists, m_timers, ports.commSetup, m_link), m_fallback(m_lists, m_timers, ports.commSetup),
      m_proofOfLife(m_database, m_lists, m_timers, ports.commSetup),
      m_tickets(m_database, m_lists, m_timers, ports.commSetup, m_priorities, m_link)
{
    m_dispatcher.setImmediateHook([this](qint16 level, SendJob &job) { m_tickets.immediateAlert(level, job); });
    m_sendStatus.setFinalFailureHandler([this](int via, const QStringList &row) {
        // The job row: its chamber (or report title) in column 2, its category in column 5.
        m_proofOfLife.failedForGood(via == 1 ? 0 : 1, row.value(2) + u' ' + row.value(5));
        if (via == 1) // e-mail
            m_fallback.emailFailedForGood(row);
        else
            m_fallback.faxFailedForGood(row);
    });
    m_sendStatus.setDeliveredHandler([this](int via) { m_proofOfLife.delivered(via == 1 ? 0 : 1); });
    FaxDevice::configureFinder(m_faxFinder);
    m_sendStatus.setFaxLine(&m_faxQueue);
    connect(&m_faxQueue, &FaxQueue::sendingStarted, this, [this] { m_sendStatus.noteFaxReason(QString()); });
    connect(&m_faxQueue, &FaxQueue::finished, this,
            [this](const SendOutcome &outcome) { m_sendStatus.noteFaxReason(outcome.reason); });
    recordSendStates(m_emailQueue, m_faxQueue);
    connect(&m_timers.TimerInit, &QTimer::timeout, this, &EmailFaxServer::TimerInit_Timer);
    connect(&m_link, &AlertLink::unloadRequested, this, [this] { unload(ByCode); });
    connect(&m_journal, &QueueJournal::healthChanged, this, &EmailFaxServer::storeHealthChanged);
    m_timers.TimerInit.start(); // enabled at design: it runs from the moment the window exists
    // An alert that goes to nobody leaves a trace: one line in the log and the status line.
    setUnreachedSink([this](const QString &text) {
        DumpStr(text);
        m_ports.form.showPanelMessage(text);
    });
}

EmailFaxServer::~EmailFaxServer()
{
    setUnreachedSink(nullptr);
    if (g.gfrmServerForm == this)
        g.gfrmServerForm = nullptr;
}

void EmailFaxServer::setCategoryCaption(int index, const QString &caption)
{
    m_ports.alarmSetup.setCategoryCaption(index, caption);
}

void EmailFaxServer::Form_Load()
{
    m_loading = true;
    g.gintStatusWord = 0;
    guarded(QStringLiteral("Form_Load"), [&] {
        m_lists.InitColHeaders();
        m_database.DBInitADO(g.gstrAppPath);
        if (!m_database.newerFileText().isEmpty()) {
            m_ports.form.showMessage(QStringLiteral("Database Read-Only"), m_database.newerFileText());
            m_ports.form.showPanelMessage(m_database.newerFileText());
        }
        DBInit(m_database, m_lists, m_ports.commSetup);
        m_mailSetup.load();
        resumeQueues();
        m_proofOfLife.load();
        m_priorities.DBInitAlarmCatSetup();
        m_priorities.DBInitAlarmPriSetup();
        m_tickets.load();
        m_alarms.InitLables();
        VersionControl();
        m_ports.form.appendAppVersion(QStringLiteral(" ") + versionText());
        CopyEmailToRecipientStr(m_lists);
        m_faxDevice.InitModemSettings();
        m_faxQueue.noteEnabledAtLoad();
        clearSendStates();
        m_ports.form.setWindowImage(kImageNormal);
        g.gintFlashMode = 0;
        m_ports.form.frameSetup();
        m_ports.form.TabSet(QStringLiteral("Form_Load"));
        m_log.clearFunctErr();
        m_ports.form.showStartPage();
        // The start-up record goes straight to the file, which it creates, before the window shows.
        m_log.writeStartRecord(QStringLiteral("\r\nStarting Alarm System: ") + generalDateTime(Clock::now()) +
                               QStringLiteral("\r\n"));
        m_ports.form.showWindow();
        m_ports.form.trayAdd(QStringLiteral("Your ToolTip"));
        m_ports.form.SysTrayUpdate();
        g.gfrmServerForm = this;
    });
    m_loading = false;
}

// What the last run left in the queues goes back into them before any timer runs, and is delivered as usual.
void EmailFaxServer::resumeQueues()
{
    const QueueJournal::Counts restored = m_journal.restore();
    m_journal.attach();
    if (restored.emails > 0)
        switchOn(m_timers.TimerEmailMsgQue);
    if (restored.faxes > 0)
        switchOn(m_timers.TimerFaxMsgQue);
    if (!m_database.writable())
        m_journal.fail(!m_database.newerFileText().isEmpty() ? QStringLiteral("it was written by a newer version")
                       : m_database.isOpen()                 ? QStringLiteral("the file is read-only")
                                                             : QStringLiteral("the file could not be opened"));
}

void EmailFaxServer::storeHealthChanged(bool healthy, const QString &reason)
{
    g.gblnStoreFailed = !healthy;
    // A file of a newer version has said so in the window already, in more words.
    if (!healthy && m_database.newerFileText().isEmpty())
        m_ports.form.showPanelMessage(QStringLiteral("The database cannot be written (") + reason +
                                      QStringLiteral("). Alerts are refused until it can."));
    if (g.gblnServerLinked && m_link.server())
        m_link.server()->SendServerStatus(IsSendInProgress() || g.gblnStoreFailed, reportedEmailState(),
                                          reportedFaxState());
}

bool EmailFaxServer::acknowledgeTicket(const QString &ticket, const QString &who, const QString &comment,
                                       const QString &how)
{
    return m_tickets.acknowledge(ticket, who, comment,
                                 how == QLatin1String("command line") ? TicketDesk::ByCommandLine : TicketDesk::ByBus);
}

bool EmailFaxServer::clearTicket(const QString &ticket, const QString &who, const QString &how)
{
    return m_tickets.clear(ticket, who,
                           how == QLatin1String("command line") ? TicketDesk::ByCommandLine : TicketDesk::ByBus);
}

bool EmailFaxServer::isLinkedObject(const clsAlertCls *obj) const
{
    return obj && obj == m_link.server() && !g.gstrLinkedForm.isEmpty();
}

bool EmailFaxServer::takeAlert(const QString &text)
{
    if (!m_journal.healthy())
        return false;
    ListStore &incoming = m_lists.lvwMsgQue;
    const int before = incoming.count();
    m_link.m_objAlertServer_AlertReady(text);
    const int row = incoming.count();
    if (row == before)
        return false;
    if (!m_journal.isStored(incoming, row)) {
        incoming.remove(row); // what cannot be kept is refused, not held in memory
        return false;
    }
    m_proofOfLife.alertAccepted();
    return true;
}

void EmailFaxServer::whenStored(std::function<void(bool)> callback)
{
    m_database.whenCommitted(std::move(callback));
}

bool EmailFaxServer::queuesBusy() const
{
    return !m_lists.lvwMsgQue.isEmpty() || !m_lists.lvwSendEmailQue.isEmpty() || !m_lists.lvwSendFaxQue.isEmpty();
}

void EmailFaxServer::VersionControl()
{
    guarded(QStringLiteral("VersionControl"), [&] {
        m_ports.form.setPlacement(5625, 8100);
        m_ports.email.setTestEmailFields(QString(), QStringLiteral("Osprel Test Email"),
                                         QStringLiteral("This is an Osprel test email."));
        m_ports.faxPage.setTestFaxFields(QString(), QString(), QStringLiteral("This is an Osprel test fax."));
        m_ports.form.setServiceControlsVisible(false);
    });
}

void EmailFaxServer::TimerInit_Timer()
{
    switchOn(m_timers.TimerMsgQue);
    switchOn(m_timers.TimerDBAlarms);
    switchOn(m_tickets.timer());
    m_timers.TimerInit.stop();
    m_faxQueue.openDeviceIfEnabledAtLoad();
}

bool EmailFaxServer::Form_QueryUnload(int UnloadMode)
{
    bool cancel = false;
    guarded(QStringLiteral("Form_QueryUnload"), [&] {
        switch (UnloadMode) {
        case ByCode:
            g.gblnServerLinked = false;
            break;
        case SystemShutdown:
            if (g.gblnServerLinked)
                m_link.SendServerClosing();
            g.gblnServerLinked = false;
            break;
        case CloseBox:
            if (m_settingsOnly) {
                // Nobody else needs this process: closing the settings window ends it.
                g.gblnServerLinked = false;
                break;
            }
            // Closing by hand only hides the window: the server keeps running in the notification area.
            cancel = true;
            g.gblnServerLinked = true;
            m_ports.form.hideWindow();
            g.gintFlashMode = 0;
            m_ports.form.setCaption(kCaption);
            m_ports.form.setWindowImage(kImageNormal);
            m_ports.form.SysTrayUpdate();
            break;
        default:
            cancel = true;
            g.gblnServerLinked = true;
            break;
        }
    });
    return cancel;
}

bool EmailFaxServer::Form_Unload()
{
    bool cancel = false;
    guarded(QStringLiteral("Form_Unload"), [&] {
        if (g.gblnServerLinked) {
            cancel = true;
            return;
        }
        m_link.StopQueueTimers();
        m_tickets.stop();
        // An outcome already in is recorded; what is not yet delivered stays on disk for the next start.
        m_sendStatus.SendStatUpdate();
        m_journal.detach();
        m_database.close();
        if (m_smtp.wsockctlState() == 7)
            m_smtp.abort();
        // A fax under way is stopped; the engine is idle again when stop() returns.
        if (m_faxEngine.state() != FaxEngine::Idle)
            m_faxQueue.endCall();
        m_ports.form.trayRemove();
        m_timers.tmrServer.setInterval(0);
        m_timers.tmrServer.stop();
    });
    if (!cancel) {
        g.gfrmServerForm = nullptr;
        m_link.dropServer();
    }
    return cancel;
}

void EmailFaxServer::Form_Resize()
{
    guarded(QStringLiteral("Form_Resize"), [&] {
        g.gintFlashMode = 0;
        m_ports.form.setCaption(kCaption);
        m_ports.form.setWindowImage(kImageNormal);
        m_ports.form.SysTrayUpdate();
    });
}

void EmailFaxServer::mPopRestore_Click()
{
    guarded(QStringLiteral("mPopRestore_Click"), [&] { m_ports.form.restoreWindow(); });
}

void EmailFaxServer::Form_MouseMove(int x, int y)
{
    guarded(QStringLiteral("Form_MouseMove"), [&] {
        if (y != 0)
            return;
        if (x != kTrayLeftButtonUp && x != kTrayLeftButtonDoubleClick)
            return;
        g.gintIconState = 0;
        m_ports.form.setCaption(kCaption);
        m_ports.form.setWindowImage(kImageNormal);
        m_ports.form.SysTrayUpdate();
        m_ports.form.restoreWindow();
    });
}

// A stop lets a message already on its way reach its outcome first (for at most kDrainMs), so that it is neither
// cut off nor sent again at the next start. No new message is started meanwhile.
bool EmailFaxServer::waitForSendInFlight(int mode)
{
    constexpr qint64 kDrainMs = 10000;
    if (g.gintEmailSendState != 1 && g.gintFaxSendState != 1)
        return false;
    if (!m_draining.isValid()) {
        m_draining.start();
        m_timers.TimerMsgQue.stop();
        m_timers.TimerEmailMsgQue.stop();
        m_timers.TimerFaxMsgQue.stop();
        DumpStr(QStringLiteral("Stopping once the message on its way has its outcome."));
    }
    if (m_draining.elapsed() >= kDrainMs)
        return false;
    QTimer::singleShot(10, this, [this, mode] { unload(mode); });
    return true;
}

void EmailFaxServer::unload(int mode)
{
    if (m_unloaded)
        return;
    if ((mode == ByCode || mode == SystemShutdown) && waitForSendInFlight(mode))
        return;
    if (Form_QueryUnload(mode))
        return;
    if (Form_Unload())
        return;
    m_unloaded = true;
    Q_EMIT finished();
}

} // namespace osprel
