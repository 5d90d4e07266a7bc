#pragma once
// The main window's side of the link with the chamber program: the linked alert object, the incoming queue it
// feeds, the watchdog that ends the program once the link is released, and the replies back to the chamber program.

#include <QObject>
#include <QPointer>

#include "clsAlertCls.h"

namespace osprel {

class clsAlertCls;
class FormLists;
class FormTimers;

class AlertLink : public QObject
{
    Q_OBJECT
public:
    AlertLink(FormLists &lists, FormTimers &timers, QObject *parent = nullptr);
    ~AlertLink() override;

    // m_objAlertServer: the linked object, or null.
    clsAlertCls *server() const { return m_objAlertServer; }

    bool Open_Link(clsAlertCls *obj);
    void m_objAlertServer_AlertReady(const QString &strAlertString);
    void tmrServer_Timer();
    void Vantor32Reply(qint16 intEmailFax, bool blnStatus);
    void StopQueueTimers();

    // Raises ServerClosing on the linked object, if any.
    void SendServerClosing();
    // Drops the window's reference to the linked object (unload).
    void dropServer();
    // The linked chamber program left the bus without unlinking: its object goes, and the link is free for the
    // chamber program when it comes back. The server keeps running, so nothing queued is lost.
    void linkedClientLeft(clsAlertCls *obj);
    // The linked chamber program released its object without unlinking: the link is freed the same way.
    void linkedObjectReleased(clsAlertCls *obj);

Q_SIGNALS:
    // tmrServer found the link released: the window is to be unloaded by code.
    void unloadRequested();
    // The linked chamber program went away without unlinking (left the bus or released its object).
    void chamberStopped(const QString &formName);
    // An object was linked (its form name is set once the link command returns).
    void linkOpened();
    // The linked chamber program promised its next heartbeat within `seconds`.
    void heartbeat(quint32 seconds);

private:
    void lostWithoutUnlink(const QString &how);
    FormLists &m_lists;
    FormTimers &m_timers;
    QPointer<clsAlertCls> m_objAlertServer;
};

} // namespace osprel
