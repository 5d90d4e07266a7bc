#include "EmailFaxServer.h"

#include "AlarmQueue.h"
#include "Clock.h"
#include "CommSetup.h"
#include "DBInit.h"
#include "Dispatcher.h"
#include "EmailQueue.h"
#include "ErrorReport.h"
#include "TimeScale.h"
#include "FaxDevice.h"
#include "FaxEngine.h"
#include "FaxFinder.h"
#include "FaxQueue.h"
#include "FormPort.h"
#include "Globals.h"
#include "Log.h"
#include "PrioritySetup.h"
#include "PriorityStore.h"
#include "RecipientString.h"
#include "Recipients.h"
#include "SendStatus.h"
#include "SmtpClient.h"
#include "TrayState.h"
#include "Values.h"
#include "Version.h"

namespace osprel {

namespace {
const QString kCaption = QStringLiteral("Chamber Osprel");
constexpr int kImageNormal = 1;
constexpr int kTrayLeftButtonUp = 514;
constexpr int kTrayLeftButtonDoubleClick = 515;
} // namespace

EmailFaxServer::EmailFaxServer(Log &log, QObject *parent) : QObject(parent), m_log(log), m_link(m_lists, m_timers)
{
    connect(&m_timers.TimerInit, &QTimer::timeout, this, &EmailFaxServer::TimerInit_Timer);
    connect(&m_link, &AlertLink::unloadRequested, this, [this] { unload(ByCode); });
    m_timers.TimerInit.start(); // enabled at design: it runs from the moment the window exists
}

EmailFaxServer::~EmailFaxServer()
{
    if (g.gfrmServerForm == this)
        g.gfrmServerForm = nullptr;
}

void EmailFaxServer::setPort(FormPort *port)
{
    m_port = port;
    const auto sendStatUpdate = [this] { m_sendStatus->SendStatUpdate(); };
    m_smtp = std::make_unique<SmtpClient>(*port, sendStatUpdate);
    m_tray = std::make_unique<TrayState>(*port);
    m_sendStatus = std::make_unique<SendStatus>(m_lists, m_timers, m_database, m_link, *m_smtp, *m_tray, *port);
    m_emailQueue = std::make_unique<EmailQueue>(m_lists, m_timers, m_database, *m_smtp, *port);
    m_priorities = std::make_unique<PriorityStore>(m_database, *port);
    m_alarms = std::make_unique<AlarmQueue>(m_database, m_lists, m_timers, *port);
    m_dispatcher =
        std::make_unique<Dispatcher>(m_lists, m_timers, *m_priorities, *m_alarms, *port, m_link, sendStatUpdate);
    m_recipients = std::make_unique<Recipients>(m_lists, m_database, *port);
    m_prioritySetup = std::make_unique<PrioritySetup>(*m_priorities, *m_alarms, m_lists, m_timers, *port);
    m_commSetup = std::make_unique<CommSetup>(m_database, *port);
    m_faxEngine = std::make_unique<FaxEngine>();
    m_faxFinder = std::make_unique<FaxFinder>();
    // Configured device paths (a modem on an unusual port, or a software modem) are searched besides the system's.
    m_faxFinder->setExtraPaths(qEnvironmentVariable("OSPREL_FAX_DEVICES").split(u':', Qt::SkipEmptyParts));
    m_faxFinder->setSearchSystemPorts(qEnvironmentVariable("OSPREL_FAX_SYSTEM_PORTS") != QLatin1String("0"));
    m_faxDevice = std::make_unique<FaxDevice>(*m_faxEngine, *m_faxFinder, m_database, m_lists, *port);
    m_faxQueue = std::make_unique<FaxQueue>(*m_faxEngine, *m_faxDevice, m_lists, m_timers, m_database, *port);
    m_sendStatus->setFaxLine(m_faxQueue.get());
}

FormPort &EmailFaxServer::port()
{
    if (!m_port)
        raise(Err::ObjectNotSet);
    return *m_port;
}

void EmailFaxServer::setCategoryCaption(int index, const QString &caption)
{
    port().setCategoryCaption(index, caption);
}

void EmailFaxServer::Form_Load()
{
    m_loading = true;
    g.gintStatusWord = 0;
    guarded(QStringLiteral("Form_Load"), [&] {
        m_lists.InitColHeaders();
        m_database.DBInitADO(g.gstrAppPath);
        DBInit(m_database, m_lists, port());
        m_priorities->DBInitAlarmCatSetup();
        m_priorities->DBInitAlarmPriSetup();
        m_alarms->InitLables();
        VersionControl();
        port().appendAppVersion(QStringLiteral(" ") + versionText());
        CopyEmailToRecipientStr(m_lists);
        m_faxDevice->InitModemSettings();
        // Fax messaging on at the last exit: the device is looked for once the server has settled.
        m_faxQueue->faxNotice = port().chkEnableFax();
        g.gintEmailSendState = 0;
        g.gintFaxSendState = 0;
        port().setWindowImage(kImageNormal);
        g.gintFlashMode = 0;
        port().frameSetup();
        port().TabSet(QStringLiteral("Form_Load"));
        m_log.clearFunctErr();
        port().showStartPage();
        // The start-up record goes straight to the file, which it creates, before the window shows.
        m_log.writeStartRecord(QStringLiteral("\r\nStarting Alarm System: ") + generalDateTime(Clock::now()) +
                               QStringLiteral("\r\n"));
        port().showWindow();
        port().trayAdd(QStringLiteral("Your ToolTip"));
        port().SysTrayUpdate();
        g.gfrmServerForm = this;
    });
    m_loading = false;
}

void EmailFaxServer::VersionControl()
{
    guarded(QStringLiteral("VersionControl"), [&] {
        port().setPlacement(5625, 8100);
        port().setTestFields(QString(), QStringLiteral("Osprel Test Email"),
                             QStringLiteral("This is an Osprel test email."), QString(), QString(),
                             QStringLiteral("This is an Osprel test fax."));
        port().setServiceControlsVisible(false);
    });
}

void EmailFaxServer::TimerInit_Timer()
{
    switchOn(m_timers.TimerMsgQue);
    switchOn(m_timers.TimerDBAlarms);
    m_timers.TimerInit.stop();
    // Fax messaging was on when the server last ended: the modem is searched for once, so that faxes go on being
    // sent when it is there; without it the fax queue turns fax messaging off with a notice.
    if (m_faxQueue && m_faxQueue->faxNotice && !m_faxDevice->gblnFaxDeviceFound) {
        m_faxDevice->FindDevice();
        if (m_faxDevice->gblnFaxDeviceFound)
            m_faxQueue->faxNotice = false;
    }
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
            // Closing by hand only hides the window: the server keeps running in the notification area.
            cancel = true;
            g.gblnServerLinked = true;
            port().hideWindow();
            g.gintFlashMode = 0;
            port().setCaption(kCaption);
            port().setWindowImage(kImageNormal);
            port().SysTrayUpdate();
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
        m_database.close();
        if (m_smtp && m_smtp->wsockctlState() == 7)
            m_smtp->abort();
        // A fax under way is stopped; the engine is idle again when stop() returns.
        if (m_faxQueue && m_faxEngine->state() != FaxEngine::Idle)
            m_faxQueue->endCall();
        port().trayRemove();
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
        port().setCaption(kCaption);
        port().setWindowImage(kImageNormal);
        port().SysTrayUpdate();
    });
}

void EmailFaxServer::mPopRestore_Click()
{
    guarded(QStringLiteral("mPopRestore_Click"), [&] { port().restoreWindow(); });
}

void EmailFaxServer::Form_MouseMove(int x, int y)
{
    guarded(QStringLiteral("Form_MouseMove"), [&] {
        if (y != 0)
            return;
        if (x != kTrayLeftButtonUp && x != kTrayLeftButtonDoubleClick)
            return;
        g.gintIconState = 0;
        port().setCaption(kCaption);
        port().setWindowImage(kImageNormal);
        port().SysTrayUpdate();
        port().restoreWindow();
    });
}

void EmailFaxServer::unload(int mode)
{
    if (m_unloaded)
        return;
    if (Form_QueryUnload(mode))
        return;
    if (Form_Unload())
        return;
    m_unloaded = true;
    Q_EMIT finished();
}

} // namespace osprel
