#pragma once
// Watches the linked chamber program on behalf of the people its alarms are for. When it goes away without
// unlinking, when it links again afterwards, and when it breaks a heartbeat promise, a notification goes to the
// e-mail and fax lists (as enabled) through the send queues, so it is retried, stored and recorded in the history
// like any alert.

#include <QDateTime>
#include <QObject>
#include <QString>
#include <QTimer>

namespace osprel {

class AlertLink;
class FormLists;
class FormTimers;
class SendSwitches;

class Supervision : public QObject
{
    Q_OBJECT
public:
    Supervision(FormLists &lists, FormTimers &timers, const SendSwitches &switches, AlertLink &link,
                QObject *parent = nullptr);

    void chamberStopped(const QString &formName);
    void linkOpened();
    void heartbeat(quint32 seconds);
    // The silence timer ran out (public for tests that drive it without waiting).
    void silenceNoticed();

    bool isWatchingHeartbeat() const { return m_silence.isActive(); }

private:
    void notify(const QString &formName, const QString &what, const QString &text);

    FormLists &m_lists;
    FormTimers &m_timers;
    const SendSwitches &m_switches;
    QTimer m_silence;
    QString m_stoppedForm;   // the form that went away without unlinking, until it links again
    QString m_heartbeatForm; // the form whose heartbeat is watched
    QDateTime m_lastBeat;
    bool m_silentReported = false;
};

} // namespace osprel
