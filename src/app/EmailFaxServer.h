#pragma once
// The server's logic without its widgets, made in one place in the order the pieces depend on each other: what
// the main window owns for the whole run (timers, the link with the chamber program, the database), every
// subsystem, and the window's load, close and unload procedures.

#include "AlarmQueue.h"
#include "AlertLink.h"
#include "CommSetup.h"
#include "Database.h"
#include "Dispatcher.h"
#include "EmailQueue.h"
#include "Fallback.h"
#include "FaxDevice.h"
#include "FaxEngine.h"
#include "FaxFinder.h"
#include "FaxQueue.h"
#include "FormLists.h"
#include "FormTimers.h"
#include "MailSetup.h"
#include "Ports.h"
#include "PrioritySetup.h"
#include "ProofOfLife.h"
#include "PriorityStore.h"
#include "QueueJournal.h"
#include "Recipients.h"
#include "SecretStore.h"
#include "SendStatus.h"
#include "ServerForm.h"
#include "SmtpClient.h"
#include "Supervision.h"
#include "TicketDesk.h"
#include "TrayState.h"

#include <QElapsedTimer>
#include <QObject>

namespace osprel {

class Log;

class EmailFaxServer : public QObject, public ServerForm
{
    Q_OBJECT
public:
    // Why the window is asked to close.
    enum UnloadMode { CloseBox = 0, ByCode = 1, SystemShutdown = 3 };

    // lists are the window's list views' storage; ports are the window's pages.
    EmailFaxServer(Log &log, FormLists &lists, const Ports &ports, QObject *parent = nullptr);
    ~EmailFaxServer() override;

    FormTimers &timers() { return m_timers; }
    AlertLink &link() { return m_link; }
    Log &log() { return m_log; }
    Database &database() { return m_database; }
    SendStatus &sendStatus() { return m_sendStatus; }
    SmtpClient &smtp() { return m_smtp; }
    EmailQueue &emailQueue() { return m_emailQueue; }
    TrayState &tray() { return m_tray; }
    PriorityStore &priorities() { return m_priorities; }
    AlarmQueue &alarms() { return m_alarms; }
    Dispatcher &dispatcher() { return m_dispatcher; }
    Recipients &recipients() { return m_recipients; }
    PrioritySetup &prioritySetup() { return m_prioritySetup; }
    CommSetup &commSetup() { return m_commSetup; }
    MailSetup &mailSetup() { return m_mailSetup; }
    FaxEngine &faxEngine() { return m_faxEngine; }
    FaxFinder &faxFinder() { return m_faxFinder; }
    FaxDevice &faxDevice() { return m_faxDevice; }
    FaxQueue &faxQueue() { return m_faxQueue; }
    bool isLoading() const { return m_loading; }
    // The window runs without a chamber program (--settings): closing it ends the program.
    void setSettingsOnly(bool on) { m_settingsOnly = on; }
    bool isSettingsOnly() const { return m_settingsOnly; }

    // ServerForm
    FormLists &lists() override { return m_lists; }
    bool Open_Link(clsAlertCls *obj) override { return m_link.Open_Link(obj); }
    bool isLinkedObject(const clsAlertCls *obj) const override;
    bool takeAlert(const QString &text) override;
    void whenStored(std::function<void(bool)> callback) override;
    bool queuesBusy() const override;
    QueueJournal &journal() { return m_journal; }
    Supervision &supervision() { return m_supervision; }
    ProofOfLife &proofOfLife() { return m_proofOfLife; }
    void setCategoryCaption(int index, const QString &caption) override;
    bool acknowledgeTicket(const QString &ticket, const QString &who, const QString &comment,
                           const QString &how) override;
    bool clearTicket(const QString &ticket, const QString &who, const QString &how) override;
    TicketDesk &tickets() { return m_tickets; }

    void Form_Load();
    // Returns true when the close is cancelled.
    bool Form_QueryUnload(int UnloadMode);
    bool Form_Unload();
    void Form_Resize();
    void TimerInit_Timer();
    void VersionControl();
    void mPopRestore_Click();
    void mPopExit_Click() {}
    // The tray's mouse message: x carries the message number, y must be 0.
    void Form_MouseMove(int x, int y);

    // Closes the window for the given reason; when the close goes through, the program ends (finished()).
    void unload(int mode);

Q_SIGNALS:
    void finished();

private:
    void storeHealthChanged(bool healthy, const QString &reason);
    bool waitForSendInFlight(int mode);
    void resumeQueues();

private:
    Log &m_log;
    Ports m_ports;
    FormLists &m_lists;
    FormTimers m_timers;
    AlertLink m_link;
    Database m_database;
    QueueJournal m_journal;
    SmtpClient m_smtp;
    EmailQueue m_emailQueue;
    FaxEngine m_faxEngine;
    FaxFinder m_faxFinder;
    FaxDevice m_faxDevice;
    FaxQueue m_faxQueue;
    TrayState m_tray;
    SendStatus m_sendStatus;
    PriorityStore m_priorities;
    AlarmQueue m_alarms;
    Dispatcher m_dispatcher;
    Recipients m_recipients;
    PrioritySetup m_prioritySetup;
    CommSetup m_commSetup;
    SecretStore m_secrets;
    MailSetup m_mailSetup;
    Supervision m_supervision;
    Fallback m_fallback;
    ProofOfLife m_proofOfLife;
    TicketDesk m_tickets;
    bool m_loading = false;
    bool m_unloaded = false;
    QElapsedTimer m_draining; // running while a stop waits for a message on its way
    bool m_settingsOnly = false;
};

} // namespace osprel
