#pragma once
// The fax send queue: each tick takes the head job when the fax path is free, writes its page and image, dials
// the recipient and records the attempt at the top of the fax history; the engine's events become log lines and,
// at the end, the fax send state. Also the test fax and the switch that turns fax messaging on and off.

#include "FaxEvent.h"
#include "FaxLine.h"
#include "SendOutcome.h"

#include <QObject>

namespace osprel {

class Database;
class FaxDevice;
class FaxEngine;
class FaxPagePort;
class FormLists;
class FormTimers;
class ModemPanelPort;
class Notices;
class RecipientsPagePort;

class FaxQueue : public QObject, public FaxLine
{
    Q_OBJECT
public:
    FaxQueue(FaxEngine &engine, FaxDevice &device, FormLists &lists, FormTimers &timers, const Database &database,
             FaxPagePort &page, ModemPanelPort &panel, RecipientsPagePort &recipientsPage, Notices &notices,
             QObject *parent = nullptr);

    void TimerFaxMsgQue_Timer();
    void SendFax();
    void cmdTestFax_Click();
    void chkEnableFax_Click();

    // One log line for an engine event, by its kind.
    static QString GetFaxStatus(const FaxEvent &event);

    // Marks that fax messaging was on when the server last ended: the next queue tick turns it off and says how
    // to turn it on again, unless a device has been found by then.
    bool faxNotice = false;

    // Start-up: fax messaging as the last run left it (read from the enable box at load) ...
    void noteEnabledAtLoad();
    // ... and, once the server has settled, the modem used last, checked with one probe (no search): faxes go on
    // being sent when it answers; otherwise the next queue tick turns fax messaging off with a notice.
    void openDeviceIfEnabledAtLoad();

    // FaxLine: what the send-status refresh asks of the device.
    int faxStatus() const override;
    void endCall() override;

Q_SIGNALS:
    // The engine took the head job (or the test fax): a call is under way.
    void sendingStarted();
    // The engine's completion: the fax was sent or has failed.
    void finished(const osprel::SendOutcome &outcome);

private:
    bool deviceInUse() const;
    void identifyStation();
    void onProgress(const FaxEvent &event);
    void onPages(const FaxEvent &event);
    void FaxmanJr1_CompletionStatus(const FaxEvent &event);
    void onMessage(const QString &text, bool endOfMessage);

    FaxEngine &m_engine;
    FaxDevice &m_device;
    FormLists &m_lists;
    FormTimers &m_timers;
    const Database &m_database;
    FaxPagePort &m_page;
    ModemPanelPort &m_panel;
    RecipientsPagePort &m_recipientsPage;
    Notices &m_notices;
    QString m_detail;         // the modem dialogue gathered for one detail log line
    bool m_hangingUp = false; // the refresh ends a failed call: its own completion is not a new outcome
};

} // namespace osprel
