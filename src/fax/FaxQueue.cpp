#include "FaxQueue.h"

#include "CommSetup.h"
#include "Conversions.h"
#include "Database.h"
#include "ErrorReport.h"
#include "FaxDevice.h"
#include "FaxEngine.h"
#include "FaxPage.h"
#include "FaxPagePort.h"
#include "FormLists.h"
#include "FormTimers.h"
#include "Globals.h"
#include "Log.h"
#include "LogBanner.h"
#include "ModemPanelPort.h"
#include "Notices.h"
#include "QueueRoutines.h"
#include "RecipientsPagePort.h"
#include "Values.h"

namespace osprel {

namespace {
void faxLog(const QString &line)
{
    DumpStr(line, Log::FaxList);
}

QString when(const QDateTime &moment)
{
    return moment.isValid() ? generalDateTime(moment) : QString();
}
} // namespace

FaxQueue::FaxQueue(FaxEngine &engine, FaxDevice &device, FormLists &lists, FormTimers &timers, const Database &database,
                   FaxPagePort &page, ModemPanelPort &panel, RecipientsPagePort &recipientsPage, Notices &notices,
                   QObject *parent)
    : QObject(parent), m_engine(engine), m_device(device), m_lists(lists), m_timers(timers), m_database(database),
      m_page(page), m_panel(panel), m_recipientsPage(recipientsPage), m_notices(notices)
{
    connect(&m_timers.TimerFaxMsgQue, &QTimer::timeout, this, &FaxQueue::TimerFaxMsgQue_Timer);
    for (auto signal : {&FaxEngine::Status, &FaxEngine::NegotiatedParms, &FaxEngine::StartTime, &FaxEngine::EndTime})
        connect(&m_engine, signal, this, &FaxQueue::onProgress);
    connect(&m_engine, &FaxEngine::Pages, this, &FaxQueue::onPages);
    connect(&m_engine, &FaxEngine::CompletionStatus, this, &FaxQueue::FaxmanJr1_CompletionStatus);
    connect(&m_engine, &FaxEngine::Message, this, &FaxQueue::onMessage);
    m_device.setEnableFaxHandler([this] {
        m_page.setChkEnableFax(true);
        chkEnableFax_Click();
    });
}

bool FaxQueue::deviceInUse() const
{
    // A call holds the modem; an outcome not yet recorded would be taken for the test's own.
    return m_engine.state() == FaxEngine::InCall || g.gintFaxSendState != 0;
}

void FaxQueue::identifyStation()
{
    // The station as stored with Comm Setup's Accept: sent as TSI / +FLID and printed in each page's header line.
    QString station;
    guarded(QStringLiteral("SendFax"), [&] { station = textOrEmpty(commSettingsRow(m_database), "FaxStation"); });
    m_engine.setStationId(Trim(station));
}

void FaxQueue::TimerFaxMsgQue_Timer()
{
    guarded(QStringLiteral("TimerFaxMsgQue_Timer"), [&] {
        ListStore &queue = m_lists.lvwSendFaxQue;
        // Stricter than SendFax: only an idle device (state 1) takes the next fax from here. An escalation names its
        // own recipient, so it goes even while the fax list is empty.
        if (g.gintFaxSendState == 0 && !queue.isEmpty() &&
            (!m_lists.lvwFaxContacts.isEmpty() || hasOwnRecipients(queue.text(1, 6))) && m_page.chkEnableFax() &&
            m_engine.state() <= FaxEngine::Idle) {
            const RecipientRec recipient = LVWGetFirstFaxQueContact(m_lists);
            WriteToFile(queue.text(1, 2).split(QStringLiteral("\r\n")), recipient);
            CreateFaxImage();
            m_engine.setNumber(QStringLiteral("1") + recipient.FaxNumber); // always with the long-distance 1
            identifyStation();
            SendFax();
            addDeliveryRow(m_lists, 1, QStringLiteral("Finding Device"), recipient.FaxNumber, queue.text(1, 7));
        }
        if (faxNotice && !m_device.gblnFaxDeviceFound) {
            faxNotice = false;
            m_page.setChkEnableFax(false);
            m_notices.showPanelMessage(
                QStringLiteral("When you last exited the Vantor32 program you had Fax Messaging enabled.  ") +
                QStringLiteral("If you would like to have Fax Messaging enabled for this session, you must go to the "
                               "'Comm Setup' tab and press the 'Find Device' button.  "));
        }
    });
}

void FaxQueue::SendFax()
{
    guarded(QStringLiteral("SendFax"), [&] {
        const int state = m_engine.state();
        if (state != FaxEngine::Finished && state != FaxEngine::Idle) {
            faxLog(QStringLiteral("!!!!! Device currently in use !!!!!"));
            return; // the job stays queued for a later tick
        }
        m_engine.setFileToSend(faxImagePath());
        if (m_engine.send())
            Q_EMIT sendingStarted(); // in flight until the engine's completion
        faxLog(QString());
        faxLog(starLine());
        faxLog(QStringLiteral("****         Sending New Fax               ****"));
        faxLog(starLine());
    });
}

QString FaxQueue::GetFaxStatus(const FaxEvent &e)
{
    QString line;
    guarded(QStringLiteral("GetFaxStatus"), [&] {
        switch (e.kind) { // kinds are tested in the order 6, 5, 2, 3, 7, 4, 1, 8
        case FaxEvent::CompletionKind:
            line = QStringLiteral("All Done: ") + e.completionText;
            if (e.completionCode % 100 != 0)
                line += u' ' + FaxEngine::errorText(e.completionCode);
            break;
        case FaxEvent::EndTimeKind:
            line = QStringLiteral("End Time: ") + when(e.endTime);
            break;
        case FaxEvent::NegotiatedKind:
            line = QStringLiteral("Negotiated Parameters:") + QStringLiteral(" Speed=") + e.speed +
                   QStringLiteral(" Res=") + e.resolution + QStringLiteral(" RemoteID=") + e.remoteId;
            break;
        case FaxEvent::PagesKind:
            line = QStringLiteral("Page ") + QString::number(e.page) + QStringLiteral(" of ") +
                   QString::number(e.pageCount);
            break;
        case FaxEvent::FileNameKind:
            line = QStringLiteral("FileName: ") + e.fileName;
            break;
        case FaxEvent::StartTimeKind:
            line = QStringLiteral("StartTime: ") + when(e.startTime);
            break;
        case FaxEvent::StatusKind:
            line = QStringLiteral("Fax Status: ") + e.statusText;
            if (e.statusCode >= 1)
                line += u' ' + FaxEngine::statusText(e.statusCode);
            break;
        case FaxEvent::MessageKind:
            line = e.statusText;
            break;
        default:
            break;
        }
    });
    return line;
}

void FaxQueue::onProgress(const FaxEvent &event)
{
    guarded(QStringLiteral("FaxmanJr1_Status"), [&] { faxLog(GetFaxStatus(event)); });
}

void FaxQueue::onPages(const FaxEvent &event)
{
    guarded(QStringLiteral("FaxmanJr1_Pages"), [&] {
        if (!m_lists.lvwHist[1].isEmpty())
            m_lists.lvwHist[1].setText(1, 2, QStringLiteral("Sending"));
        faxLog(GetFaxStatus(event));
    });
}

void FaxQueue::FaxmanJr1_CompletionStatus(const FaxEvent &e)
{
    guarded(QStringLiteral("FaxmanJr1_CompletionStatus"), [&] {
        if (m_hangingUp)
            return; // the call the refresh gave up: its outcome is recorded already
        const QString result = QString::number(e.errorCode) + u' ' + e.errorText;
        Q_EMIT finished(e.errorCode > 0 ? SendOutcome::failed(result) : SendOutcome::sent());
        faxLog(GetFaxStatus(e));
        faxLog(starLine());
        faxLog(QStringLiteral("****           Completed Fax               ****"));
        faxLog(starLine());
        faxLog(QStringLiteral("*** RemoteID: ") + e.remoteId);
        if (!e.fileName.isEmpty())
            faxLog(QStringLiteral("*** Receive Filename: ") + e.fileName);
        faxLog(QStringLiteral("*** Connect Speed: ") + e.speed);
        faxLog(QStringLiteral("*** Resolution: ") + e.resolution);
        faxLog(QStringLiteral("*** Status: ") + e.statusText);
        faxLog(QStringLiteral("*** Start Time: ") + when(e.startTime));
        faxLog(QStringLiteral("*** End Time: ") + when(e.endTime));
        faxLog(QStringLiteral("*** Pages: ") + QString::number(e.pageCount));
        if (e.errorCode > 0) {
            faxLog(QStringLiteral("*** Error: ") + result);
            faxLog(starLine());
            faxLog(QStringLiteral("*** Fax send failed"));
        } else {
            faxLog(QStringLiteral("*** No Error: Sent Successfully ") + result);
            faxLog(starLine());
            faxLog(QStringLiteral("*** Fax sent successfully"));
        }
        faxLog(starLine());
        faxLog(QString());
    });
}

// The modem dialogue reaches the log only with detail logging on, one line per message.
void FaxQueue::onMessage(const QString &text, bool endOfMessage)
{
    if (!m_panel.chkDetailModemLogging())
        return;
    m_detail += text;
    if (endOfMessage && !m_detail.isEmpty()) {
        faxLog(QStringLiteral("Detail Log: ") + m_detail);
        m_detail.clear();
    }
}

void FaxQueue::cmdTestFax_Click()
{
    guarded(QStringLiteral("cmdTestFax_Click"), [&] {
        const QString name = m_page.txtTestRcpFName(), number = m_page.txtTestFaxNumber();
        if (Trim(name).isEmpty() || Trim(number).isEmpty()) {
            m_notices.showMessage(
                QStringLiteral("Test Fax Warning"),
                QStringLiteral("You must enter a valid name & fax number before sending a test fax."));
            return;
        }
        if (deviceInUse()) {
            // The live fax goes on untouched; the test can be sent once it is done.
            faxLog(QStringLiteral("!!!!! Device currently in use !!!!!"));
            m_page.setTxtTestFaxProg(QStringLiteral("Device currently in use"));
            return;
        }
        m_page.setTxtTestFaxProg(QStringLiteral("Initializing..."));
        RecipientRec recipient;
        recipient.FirstName = Trim(name);
        recipient.FaxNumber = Trim(number);
        WriteToFile(m_page.txtTestFaxMessage().split(QStringLiteral("\r\n")), recipient);
        CreateFaxImage();
        m_device.FindDevice();
        g.gblnFaxTest = true;
        m_engine.setNumber(recipient.FaxNumber);
        identifyStation();
        SendFax();
    });
}

void FaxQueue::chkEnableFax_Click()
{
    guarded(QStringLiteral("chkEnableFax_Click"), [&] {
        bool enabled = m_page.chkEnableFax();
        if (enabled && !m_device.gblnFaxDeviceFound) {
            m_page.setChkEnableFax(false);
            m_notices.showMessage(QStringLiteral("No Fax Device"),
                                  QStringLiteral("No fax device has been found.  Press 'Find Device' on the 'Comm "
                                                 "Setup' tab to search for the fax modem, then switch fax messaging "
                                                 "on."));
            enabled = false;
        }
        m_recipientsPage.setFaxListEnabled(enabled);
        saveEnabledAtBoot(m_database, Messaging::Fax, enabled);
    });
}

void FaxQueue::noteEnabledAtLoad()
{
    faxNotice = m_page.chkEnableFax();
}

void FaxQueue::openDeviceIfEnabledAtLoad()
{
    if (!faxNotice || m_device.gblnFaxDeviceFound)
        return;
    if (m_device.openLastDevice())
        faxNotice = false;
}

int FaxQueue::faxStatus() const
{
    return m_engine.state();
}

void FaxQueue::endCall()
{
    m_hangingUp = true;
    m_engine.stop();
    m_hangingUp = false;
}

} // namespace osprel
