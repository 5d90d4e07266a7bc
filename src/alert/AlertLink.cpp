#include "AlertLink.h"

#include "ErrorReport.h"
#include "TimeScale.h"
#include "FormLists.h"
#include "FormTimers.h"
#include "Globals.h"
#include "Log.h"
#include "Values.h"
#include "clsAlertCls.h"

namespace osprel {

AlertLink::AlertLink(FormLists &lists, FormTimers &timers, QObject *parent)
    : QObject(parent), m_lists(lists), m_timers(timers)
{
    connect(&m_timers.tmrServer, &QTimer::timeout, this, &AlertLink::tmrServer_Timer);
}

AlertLink::~AlertLink()
{
    dropServer();
}

bool AlertLink::Open_Link(clsAlertCls *obj)
{
    bool result = false;
    guarded(QStringLiteral("Open_Link"), [&] {
        // The type name, upper-cased, must be that of the alert class.
        const QString typeName = obj ? QString::fromLatin1(obj->metaObject()->className()).section(u':', -1).toUpper()
                                     : QStringLiteral("NOTHING");
        if (typeName != QLatin1String("CLSALERTCLS"))
            return;
        if (m_objAlertServer != obj) {
            dropServer();
            m_objAlertServer = obj;
            obj->AddRef();
            connect(obj, &clsAlertCls::HeartbeatPromised, this, &AlertLink::heartbeat);
        }
        g.gblnServerLinked = !m_objAlertServer.isNull();
        switchOn(m_timers.tmrServer);
        result = g.gblnServerLinked;
        if (result)
            Q_EMIT linkOpened();
    });
    return result;
}

void AlertLink::m_objAlertServer_AlertReady(const QString &strAlertString)
{
    guarded(QStringLiteral("m_objAlertServer_AlertReady"), [&] {
        if (strAlertString.isEmpty())
            return;
        // The row is added whole, in one change: column 2 the alert, column 4 its category number (the sixth "|"
        // group) unless alerts are raw.
        QStringList columns{QString(), Trim(strAlertString)};
        QString category;
        bool shortAlert = false;
        if (!g.gblnRawAlerts) {
            const QStringList groups = Split(strAlertString, QStringLiteral("|"));
            shortAlert = groups.size() < 6;
            if (!shortAlert)
                category = Trim(groups[5]);
        }
        columns << QString() << category;
        m_lists.lvwMsgQue.add(columns);
        // A shorter alert is reported after its row was added, as reading past the groups always was.
        if (shortAlert)
            raise(Err::SubscriptOutOfRange);
    });
}

void AlertLink::tmrServer_Timer()
{
    guarded(QStringLiteral("tmrServer_Timer"), [&] {
        if (!g.gblnServerLinked)
            Q_EMIT unloadRequested();
    });
}

void AlertLink::Vantor32Reply(qint16 intEmailFax, bool blnStatus)
{
    guarded(QStringLiteral("Vantor32Reply"), [&] {
        ListStore *queue = intEmailFax == 1   ? &m_lists.lvwSendEmailQue
                           : intEmailFax == 2 ? &m_lists.lvwSendFaxQue
                                              : nullptr;
        if (!queue)
            return;
        const QString message = queue->text(1, 2);
        if (Trim(message).startsWith(u'#'))
            return; // a report made by the server itself has no alert number
        // Three characters after "Alert ID: " (1-based position as the text search gives it, 0 when absent): an
        // alert number of four or more digits is cut to its first three.
        static const QString marker = QStringLiteral("Alert ID: ");
        const int start = message.indexOf(marker) + 1 + marker.size(); // 1-based
        const qint32 lngAlertID = CLng(Val(Trim(message.mid(start - 1, 3))));
        if (g.gblnServerLinked && m_objAlertServer)
            m_objAlertServer->SendAlertStatus(lngAlertID, intEmailFax, blnStatus);
    });
}

void AlertLink::StopQueueTimers()
{
    guarded(QStringLiteral("StopQueueTimers"), [&] {
        if (g.gblnServerLinked)
            return;
        m_timers.TimerMsgQue.stop();
        m_timers.TimerEmailMsgQue.stop();
        m_timers.TimerFaxMsgQue.stop();
    });
}

void AlertLink::SendServerClosing()
{
    if (m_objAlertServer)
        m_objAlertServer->SendServerClosing();
}

void AlertLink::dropServer()
{
    if (m_objAlertServer) {
        disconnect(m_objAlertServer, nullptr, this, nullptr);
        m_objAlertServer->Release();
    }
    m_objAlertServer = nullptr;
}

void AlertLink::linkedClientLeft(clsAlertCls *obj)
{
    if (!obj || obj != m_objAlertServer)
        return;
    if (g.gstrLinkedForm.isEmpty()) { // already unlinked: the program is ending anyway
        dropServer();
        return;
    }
    lostWithoutUnlink(QStringLiteral("left"));
}

void AlertLink::linkedObjectReleased(clsAlertCls *obj)
{
    if (!obj || obj != m_objAlertServer || g.gstrLinkedForm.isEmpty())
        return;
    lostWithoutUnlink(QStringLiteral("released its alert object"));
}

// The linked program is gone without unlinking: the link is freed for its return and supervision is told.
void AlertLink::lostWithoutUnlink(const QString &how)
{
    const QString form = g.gstrLinkedForm;
    DumpStr(QStringLiteral("Chamber program ") + form + u' ' + how +
            QStringLiteral(" without unlinking; the link is free for its return."));
    dropServer();
    g.gstrLinkedForm.clear();
    Q_EMIT chamberStopped(form);
}

} // namespace osprel
