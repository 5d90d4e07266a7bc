#pragma once
// The main window's logic without its widgets: what it owns for the whole run (lists, timers, the link with the
// chamber program) and its load, close and unload procedures.

#include "AlertLink.h"
#include "Database.h"
#include "FormLists.h"
#include "FormTimers.h"
#include "ServerForm.h"

#include <QObject>
#include <memory>

namespace osprel {

class AlarmQueue;
class CommSetup;
class Dispatcher;
class PrioritySetup;
class Recipients;
class EmailQueue;
class FaxDevice;
class FaxEngine;
class FaxFinder;
class FaxQueue;
class SendStatus;
class SmtpClient;
class TrayState;
class FormPort;
class Log;
class PriorityStore;

class EmailFaxServer : public QObject, public ServerForm
{
    Q_OBJECT
public:
    // Why the window is asked to close.
    enum UnloadMode { CloseBox = 0, ByCode = 1, SystemShutdown = 3 };

    EmailFaxServer(Log &log, QObject *parent = nullptr);
    ~EmailFaxServer() override;

    // The window; the subsystems that show things on it are made here.
    void setPort(FormPort *port);
    FormTimers &timers() { return m_timers; }
    AlertLink &link() { return m_link; }
    Log &log() { return m_log; }
    Database &database() { return m_database; }
    SendStatus &sendStatus() { return *m_sendStatus; }
    SmtpClient &smtp() { return *m_smtp; }
    EmailQueue &emailQueue() { return *m_emailQueue; }
    TrayState &tray() { return *m_tray; }
    PriorityStore &priorities() { return *m_priorities; }
    AlarmQueue &alarms() { return *m_alarms; }
    Dispatcher &dispatcher() { return *m_dispatcher; }
    Recipients &recipients() { return *m_recipients; }
    PrioritySetup &prioritySetup() { return *m_prioritySetup; }
    CommSetup &commSetup() { return *m_commSetup; }
    FaxEngine &faxEngine() { return *m_faxEngine; }
    FaxFinder &faxFinder() { return *m_faxFinder; }
    FaxDevice &faxDevice() { return *m_faxDevice; }
    FaxQueue &faxQueue() { return *m_faxQueue; }
    bool isLoading() const { return m_loading; }

    // ServerForm
    FormLists &lists() override { return m_lists; }
    bool Open_Link(clsAlertCls *obj) override { return m_link.Open_Link(obj); }
    void setCategoryCaption(int index, const QString &caption) override;

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
    FormPort &port();

    Log &m_log;
    FormPort *m_port = nullptr;
    FormLists m_lists;
    FormTimers m_timers;
    AlertLink m_link;
    Database m_database;
    std::unique_ptr<SmtpClient> m_smtp;
    std::unique_ptr<TrayState> m_tray;
    std::unique_ptr<SendStatus> m_sendStatus;
    std::unique_ptr<EmailQueue> m_emailQueue;
    std::unique_ptr<PriorityStore> m_priorities;
    std::unique_ptr<AlarmQueue> m_alarms;
    std::unique_ptr<Dispatcher> m_dispatcher;
    std::unique_ptr<Recipients> m_recipients;
    std::unique_ptr<PrioritySetup> m_prioritySetup;
    std::unique_ptr<CommSetup> m_commSetup;
    std::unique_ptr<FaxEngine> m_faxEngine;
    std::unique_ptr<FaxFinder> m_faxFinder;
    std::unique_ptr<FaxDevice> m_faxDevice;
    std::unique_ptr<FaxQueue> m_faxQueue;
    bool m_loading = false;
    bool m_unloaded = false;
};

} // namespace osprel
