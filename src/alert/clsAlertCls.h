#pragma once
// The alert object a chamber program holds: it hands alerts in (SendAlert), links and configures the server
// (ServerCmd), and raises the four events back to its owner. All state is process-wide; the object keeps none.

#include <QObject>
#include <QVariant>
#include <functional>

namespace osprel {

class clsAlertCls : public QObject
{
    Q_OBJECT
public:
    clsAlertCls();
    ~clsAlertCls() override;

    // The object lives while the client or the window holds it, as a COM reference does.
    void AddRef() { ++m_refs; }
    void Release();

    // True when the alert is queued; it is on disk once whenStored() calls back with true.
    bool SendAlert(const QString &strAlertString);
    void whenStored(std::function<void(bool)> callback);
    // The linked chamber program promises its next heartbeat within `seconds`; false from any other object.
    bool Heartbeat(quint32 seconds);
    bool ServerCmd(const QString &strFormName, qint16 intCmd, const QVariant &CustomStr);
    // Acknowledges or clears an open ticket, from any object (a person at a command line holds an object that is
    // not linked); `how` says which road the call took. False for a ticket that is not open.
    bool Acknowledge(const QString &ticket, const QString &who, const QString &comment, const QString &how);
    bool Clear(const QString &ticket, const QString &how);

    // Internal raise methods: reachable from inside the server only.
    void SendAlertStatus(qint32 lngAlertID, qint16 intEmailFax, bool blnStatus);
    void SendServerStatus(bool blnBusy, qint16 intEmailStatus, qint16 intFaxStatus);
    void SendServerClosing();
    void SendAlarmAcknowledged(const QString &ticket, const QString &who);

Q_SIGNALS:
    void AlertStatus(qint32 lngAlertID, qint16 intEmailFax, bool blnStatus);
    void ServerStatus(bool blnBusy, qint16 intEmailStatus, qint16 intFaxStatus);
    void ServerClosing();
    void AlertReady(const QString &strAlertString);
    void AlarmAcknowledged(const QString &ticket, const QString &who);
    // Inside the server only (not a bus event): a heartbeat promise from the linked object.
    void HeartbeatPromised(quint32 seconds);

private:
    // Commands 4 to 7: the heading word, the category captions, raw alerts, the alert labels.
    bool setting(qint16 intCmd, const QVariant &CustomStr);

    int m_refs = 0;
};

// CustomStr used as a string: text as it is, numbers and Booleans as their text; anything else (an array, a
// structure) raises Type mismatch.
QString customString(const QVariant &value);

// The longest alert taken, in UTF-8 bytes: OSPREL_MAX_ALERT_BYTES, 65536 when unset.
qint64 maxAlertBytes();

} // namespace osprel
