#pragma once
// The fax send queue: each tick takes the head job when the fax path is free, writes its page and image, dials
// the recipient and records the attempt at the top of the fax history; the engine's events become log lines and,
// at the end, the fax send state. Also the test fax and the switch that turns fax messaging on and off.

#include "FaxEvent.h"
#include "StatusPort.h"

#include <QObject>

namespace osprel {

class Database;
class FaxDevice;
class FaxEngine;
class FaxPort;
class FormLists;
class FormTimers;

class FaxQueue : public QObject, public FaxLine
{
    Q_OBJECT
public:
    FaxQueue(FaxEngine &engine, FaxDevice &device, FormLists &lists, FormTimers &timers, const Database &database,
             FaxPort &port, QObject *parent = nullptr);

    void TimerFaxMsgQue_Timer();
    void SendFax();
    void cmdTestFax_Click();
    void chkEnableFax_Click();

    // One log line for an engine event, by its kind.
    static QString GetFaxStatus(const FaxEvent &event);

    // Marks that fax messaging was on when the server last ended: the next queue tick turns it off and says how
    // to turn it on again, unless a device has been found by then.
    bool faxNotice = false;

    // FaxLine: what the send-status refresh asks of the device.
    int faxStatus() const override;
    void endCall() override;

private:
    void onProgress(const FaxEvent &event);
    void onPages(const FaxEvent &event);
    void FaxmanJr1_CompletionStatus(const FaxEvent &event);
    void onMessage(const QString &text, bool endOfMessage);

    FaxEngine &m_engine;
    FaxDevice &m_device;
    FormLists &m_lists;
    FormTimers &m_timers;
    const Database &m_database;
    FaxPort &m_port;
    QString m_detail;         // the modem dialogue gathered for one detail log line
    bool m_hangingUp = false; // the refresh ends a failed call: its own completion is not a new outcome
};

} // namespace osprel
