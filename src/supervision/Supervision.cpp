#include "Supervision.h"

#include "AlertLink.h"
#include "Clock.h"
#include "Conversions.h"
#include "ErrorReport.h"
#include "FormLists.h"
#include "FormTimers.h"
#include "Globals.h"
#include "Log.h"
#include "QueueRoutines.h"
#include "SendSwitches.h"
#include "TimeScale.h"

#include <utility>

namespace osprel {

namespace {
QString clockTime(const QDateTime &when)
{
    return when.toString(QStringLiteral("HH:mm"));
}
} // namespace

Supervision::Supervision(FormLists &lists, FormTimers &timers, const SendSwitches &switches, AlertLink &link,
                         QObject *parent)
    : QObject(parent), m_lists(lists), m_timers(timers), m_switches(switches)
{
    m_silence.setSingleShot(true);
    connect(&m_silence, &QTimer::timeout, this, &Supervision::silenceNoticed);
    connect(&link, &AlertLink::chamberStopped, this, &Supervision::chamberStopped);
    // Queued: the link command sets the form name after the link is open.
    connect(&link, &AlertLink::linkOpened, this, &Supervision::linkOpened, Qt::QueuedConnection);
    connect(&link, &AlertLink::heartbeat, this, &Supervision::heartbeat);
}

void Supervision::chamberStopped(const QString &formName)
{
    guarded(QStringLiteral("chamberStopped"), [&] {
        m_silence.stop();
        m_heartbeatForm.clear();
        m_stoppedForm = formName;
        const QDateTime now = Clock::now();
        notify(formName, QStringLiteral("stopped without unlinking"),
               QStringLiteral("At ") + clockTime(now) + QStringLiteral(" on ") + now.date().toString(u"MM/dd/yyyy") +
                   QStringLiteral(" the chamber program ") + formName +
                   QStringLiteral(" stopped without unlinking.\r\nChamber alarms are not being watched from that "
                                  "moment until it links again.\r\n"));
    });
}

void Supervision::linkOpened()
{
    guarded(QStringLiteral("linkOpened"), [&] {
        if (m_stoppedForm.isEmpty())
            return;
        const QString form = g.gstrLinkedForm.isEmpty() ? m_stoppedForm : g.gstrLinkedForm;
        const QString stopped = std::exchange(m_stoppedForm, QString());
        notify(form, QStringLiteral("linked again"),
               QStringLiteral("At ") + clockTime(Clock::now()) + QStringLiteral(" the chamber program ") + form +
                   QStringLiteral(" linked again after ") + stopped +
                   QStringLiteral(" had stopped without unlinking.\r\nChamber alarms are watched again.\r\n"));
    });
}

void Supervision::heartbeat(quint32 seconds)
{
    guarded(QStringLiteral("Heartbeat"), [&] {
        m_heartbeatForm = g.gstrLinkedForm;
        m_lastBeat = Clock::now();
        m_silentReported = false;
        // A grace of one interval: the promise lapses at twice the promised time.
        const qint64 ms = qMin<qint64>(qint64(seconds) * 2000, 24LL * 3600 * 1000); // at most a day
        m_silence.start(qMax(1, TimeScale::interval(int(ms))));
    });
}

void Supervision::silenceNoticed()
{
    guarded(QStringLiteral("silenceNoticed"), [&] {
        if (m_silentReported || m_heartbeatForm.isEmpty())
            return;
        m_silentReported = true; // once per silence, not once per tick
        const QString since = clockTime(m_lastBeat);
        DumpStr(QStringLiteral("Chamber program ") + m_heartbeatForm + QStringLiteral(" silent since ") + since);
        notify(m_heartbeatForm, QStringLiteral("silent since ") + since,
               QStringLiteral("The chamber program ") + m_heartbeatForm +
                   QStringLiteral(" promised a heartbeat and has been silent since ") + since +
                   QStringLiteral(".\r\nChamber alarms may not be watched until it is heard from again.\r\n"));
    });
}

void Supervision::notify(const QString &formName, const QString &what, const QString &text)
{
    // A text that starts with "#" is the server's own, like a report: it carries no alert number back.
    const QString message = QStringLiteral("# Osprel EmailFax: chamber program ") + formName + u' ' + what +
                            QStringLiteral(" #\r\n\r\n") + text;
    const QString summary =
        QStringLiteral("*|") + formName + u'|' + what + QStringLiteral("|SUPERVISION|") + GetDateTimeStamp();
    queueSendJobs(m_lists, m_timers, m_switches, {message, formName, what, summary, QStringLiteral("*")});
}

} // namespace osprel
