#include "ProofOfLife.h"

#include "Clock.h"
#include "Conversions.h"
#include "Database.h"
#include "ErrorReport.h"
#include "FormLists.h"
#include "Globals.h"
#include "Log.h"
#include "QueueRoutines.h"
#include "TimeScale.h"

#include <QHostInfo>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSqlQuery>
#include <QUrl>

namespace osprel {

namespace {
constexpr int kMaxPingMinutes = 24 * 60;
const QString kTimeFormat = QStringLiteral("HH:mm");

QString stampOf(const QDateTime &when)
{
    return when.date().toString(u"MM/dd/yyyy") + QStringLiteral("  ") + when.toString(kTimeFormat);
}

// The oldest row of the three queues: its stamp and which queue holds it.
QString oldestUndelivered(const FormLists &lists)
{
    QDateTime oldest;
    QString text = QStringLiteral("none");
    const struct
    {
        const ListStore &list;
        const char *name;
    } queues[] = {{lists.lvwMsgQue, "incoming"}, {lists.lvwSendEmailQue, "e-mail"}, {lists.lvwSendFaxQue, "fax"}};
    for (const auto &queue : queues) {
        for (int row = 1; row <= queue.list.count(); ++row) {
            const QString stamp = queue.list.text(row, 0);
            const QDateTime when = QDateTime::fromString(stamp.simplified(), QStringLiteral("MM/dd/yyyy HH:mm:ss"));
            if (when.isValid() && (!oldest.isValid() || when < oldest)) {
                oldest = when;
                text = stamp + QStringLiteral(" in the ") + QLatin1String(queue.name) + QStringLiteral(" queue");
            }
        }
    }
    return text;
}
} // namespace

bool ProofOfLifeSettings::operator==(const ProofOfLifeSettings &other) const
{
    return dailyStatus == other.dailyStatus && dailyAt == other.dailyAt && dailyTo == other.dailyTo &&
           pingUrl == other.pingUrl && pingMinutes == other.pingMinutes;
}

ProofOfLife::ProofOfLife(const Database &database, FormLists &lists, FormTimers &timers, const SendSwitches &switches,
                         QObject *parent)
    : QObject(parent), m_database(database), m_lists(lists), m_timers(timers), m_switches(switches)
{
    connect(&m_check, &QTimer::timeout, this, &ProofOfLife::dailyCheck);
    connect(&m_pingTimer, &QTimer::timeout, this, &ProofOfLife::ping);
}

ProofOfLife::~ProofOfLife() = default;

ProofOfLifeSettings ProofOfLife::stored(const Database &database)
{
    ProofOfLifeSettings settings;
    QSqlQuery row = database.run(
        QStringLiteral("SELECT DailyStatus, DailyAt, DailyTo, PingUrl, PingMinutes FROM ProofOfLife LIMIT 1"));
    if (!row.next())
        return settings;
    settings.dailyStatus = row.value(0).toInt() != 0;
    const QTime at = QTime::fromString(row.value(1).toString(), kTimeFormat);
    if (at.isValid())
        settings.dailyAt = at;
    settings.dailyTo = qBound(0, row.value(2).toInt(), 2);
    settings.pingUrl = row.value(3).toString().trimmed();
    settings.pingMinutes = qBound(1, row.value(4).toInt(), kMaxPingMinutes);
    return settings;
}

void ProofOfLife::load()
{
    guarded(QStringLiteral("ProofOfLife_Load"), [&] {
        m_since = Clock::now();
        m_settings = stored(m_database);
        QSqlQuery row = m_database.run(QStringLiteral("SELECT LastDailyStatus FROM ProofOfLife LIMIT 1"));
        m_lastDaily = row.next() ? QDateTime::fromString(row.value(0).toString(), Qt::ISODate) : QDateTime();
        // A set time missed while the server was down is owed since the last status that went; without one, the
        // first set time after this start is the first owed.
        m_dueFrom = m_lastDaily.isValid() ? m_lastDaily : m_since;
        apply();
    });
}

QString ProofOfLife::problem(const ProofOfLifeSettings &settings)
{
    if (settings.dailyStatus && !settings.dailyAt.isValid())
        return QStringLiteral("The daily status needs a time of day.");
    if (!settings.pingUrl.isEmpty()) {
        const QUrl url(settings.pingUrl, QUrl::StrictMode);
        if (!url.isValid() || (url.scheme() != QLatin1String("http") && url.scheme() != QLatin1String("https")) ||
            url.host().isEmpty())
            return QStringLiteral("The check URL \"%1\" is not an http or https address.").arg(settings.pingUrl);
    }
    if (settings.pingMinutes < 1 || settings.pingMinutes > kMaxPingMinutes)
        return QStringLiteral("The check URL's interval must be 1 to %1 minutes.").arg(kMaxPingMinutes);
    return QString();
}

QString ProofOfLife::accept(const ProofOfLifeSettings &settings)
{
    const QString why = problem(settings);
    if (!why.isEmpty())
        return why;
    const bool stored = guarded(QStringLiteral("ProofOfLife_Accept"), [&] {
        const QVariantList values{settings.dailyStatus ? 1 : 0, settings.dailyAt.toString(kTimeFormat),
                                  settings.dailyTo, settings.pingUrl, settings.pingMinutes};
        // The table holds one row, made by the first Accept.
        const QSqlQuery updated = m_database.run(QStringLiteral("UPDATE ProofOfLife SET DailyStatus = ?, DailyAt = ?, "
                                                                "DailyTo = ?, PingUrl = ?, PingMinutes = ?"),
                                                 values);
        if (updated.numRowsAffected() == 0)
            m_database.run(QStringLiteral("INSERT INTO ProofOfLife (DailyStatus, DailyAt, DailyTo, PingUrl, "
                                          "PingMinutes) VALUES (?, ?, ?, ?, ?)"),
                           values);
    });
    if (!stored)
        return QStringLiteral("The proof of life settings could not be stored.");
    // A daily status switched on or moved counts its set times from now: switched on at 08:00 for 07:00, the first
    // one goes tomorrow, not at once.
    if (settings.dailyStatus && (!m_settings.dailyStatus || settings.dailyAt != m_settings.dailyAt))
        m_dueFrom = Clock::now();
    m_settings = settings;
    apply();
    return QString();
}

void ProofOfLife::apply()
{
    if (m_settings.dailyStatus)
        m_check.start(qMax(1, TimeScale::interval(kCheckMs)));
    else
        m_check.stop();
    if (m_settings.pingUrl.isEmpty()) {
        m_pingTimer.stop();
    } else {
        m_pingTimer.start(qMax(1, TimeScale::interval(m_settings.pingMinutes * 60000)));
        ping(); // the first sign of life at once, not an interval after start
    }
    Q_EMIT settingsChanged(m_settings);
}

void ProofOfLife::delivered(int via)
{
    if (via == 0 || via == 1)
        ++m_sent[via];
}

void ProofOfLife::failedForGood(int via, const QString &reason)
{
    if (via == 0 || via == 1)
        ++m_failed[via];
    m_lastFailure = GetDateTimeStamp() + QStringLiteral("  ") +
                    (via == 0 ? QStringLiteral("E-mail") : QStringLiteral("Fax")) + QStringLiteral(" failed for good") +
                    (reason.isEmpty() ? QString() : QStringLiteral(": ") + reason);
}

// The first moment of the set time of day after the given one.
QDateTime ProofOfLife::dueAfter(const QDateTime &moment) const
{
    QDateTime due(moment.date(), m_settings.dailyAt);
    if (due <= moment)
        due = due.addDays(1);
    return due;
}

void ProofOfLife::dailyCheck()
{
    guarded(QStringLiteral("ProofOfLife_DailyCheck"), [&] {
        if (!m_settings.dailyStatus)
            return;
        const QDateTime now = Clock::now();
        // The last set time at or before now; it is due when no status went since (a server that was down at
        // that time sends it when it is back, once).
        QDateTime latest(now.date(), m_settings.dailyAt);
        if (latest > now)
            latest = latest.addDays(-1);
        if (m_dueFrom < latest)
            sendDailyStatus(now);
    });
}

QString ProofOfLife::statusText() const
{
    const QDateTime now = Clock::now();
    const QString lastError = m_lastFailure.isEmpty() ? lastErrorReport() : m_lastFailure;
    QSqlQuery held = m_database.run(QStringLiteral("SELECT count(*) FROM AlarmMsgs WHERE OverWrite = FALSE"));
    const int heldNow = held.next() ? held.value(0).toInt() : 0;
    const auto pair = [](const int(&n)[2]) { return QStringLiteral("%1 by e-mail, %2 by fax").arg(n[0]).arg(n[1]); };
    return QStringLiteral("Daily status of Osprel EmailFax on ") + QHostInfo::localHostName() + QStringLiteral(" at ") +
           stampOf(now) + QStringLiteral(".\r\n\r\n") + QStringLiteral("Since ") + stampOf(m_since) +
           (m_since != m_lastDaily ? QStringLiteral(" (server start)") : QString()) + QStringLiteral(":\r\n") +
           QStringLiteral("  Alerts received:     %1\r\n").arg(m_received) + QStringLiteral("  Notifications sent:  ") +
           pair(m_sent) + QStringLiteral("\r\n") + QStringLiteral("  Failed for good:     ") + pair(m_failed) +
           QStringLiteral("\r\n") + QStringLiteral("  Held for reports:    %1\r\n\r\n").arg(heldNow) +
           QStringLiteral("Queues now: %1 incoming, %2 e-mail, %3 fax.\r\n")
               .arg(m_lists.lvwMsgQue.count())
               .arg(m_lists.lvwSendEmailQue.count())
               .arg(m_lists.lvwSendFaxQue.count()) +
           QStringLiteral("Oldest undelivered: ") + oldestUndelivered(m_lists) + QStringLiteral(".\r\n") +
           QStringLiteral("Last error: ") + (lastError.isEmpty() ? QStringLiteral("none") : lastError) +
           QStringLiteral("\r\n");
}

void ProofOfLife::sendDailyStatus(const QDateTime &now)
{
    const QString name = QStringLiteral("Osprel EmailFax");
    const QString what = QStringLiteral("daily status");
    SendJob job{QStringLiteral("# ") + name + u':' + u' ' + what + QStringLiteral(" #\r\n\r\n") + statusText(), name,
                what, QStringLiteral("*|") + name + u'|' + what + QStringLiteral("|STATUS|") + GetDateTimeStamp(),
                QStringLiteral("*")};
    job.byEmail = m_settings.dailyTo != ProofOfLifeSettings::FaxList;
    job.byFax = m_settings.dailyTo != ProofOfLifeSettings::EmailList;
    queueSendJobs(m_lists, m_timers, m_switches, job);
    DumpStr(QStringLiteral("Daily status queued for ") + stampOf(now));
    m_lastDaily = now;
    m_since = now;
    m_dueFrom = now;
    m_received = 0;
    m_sent[0] = m_sent[1] = 0;
    m_failed[0] = m_failed[1] = 0;
    m_lastFailure.clear();
    m_database.run(QStringLiteral("UPDATE ProofOfLife SET LastDailyStatus = ?"), {now.toString(Qt::ISODate)});
}

bool ProofOfLife::healthy() const
{
    return !g.gblnStoreFailed && m_database.isOpen() && m_database.writable();
}

void ProofOfLife::ping()
{
    guarded(QStringLiteral("ProofOfLife_Ping"), [&] {
        if (m_settings.pingUrl.isEmpty() || m_pending)
            return;
        // Silence is the message: the switch elsewhere raises the alarm when the fetches stop.
        if (!healthy())
            return;
        if (!m_network)
            m_network = new QNetworkAccessManager(this);
        QNetworkRequest request{QUrl(m_settings.pingUrl)};
        request.setTransferTimeout(qMax(1, TimeScale::interval(kPingTimeoutMs)));
        request.setHeader(QNetworkRequest::UserAgentHeader, QStringLiteral("osprel-emailfax"));
        m_pending = m_network->get(request);
        connect(m_pending, &QNetworkReply::finished, this, [this, reply = m_pending] { pingFinished(reply); });
    });
}

void ProofOfLife::pingFinished(QNetworkReply *reply)
{
    reply->deleteLater();
    if (reply == m_pending)
        m_pending = nullptr;
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    const bool ok = reply->error() == QNetworkReply::NoError && status >= 200 && status < 300;
    // One line when the check URL starts failing and one when it answers again, not one per interval.
    if (!ok && !m_pingFailing)
        DumpStr(QStringLiteral("Proof of life: the check URL failed: ") +
                (reply->error() != QNetworkReply::NoError ? reply->errorString()
                                                          : QStringLiteral("HTTP ") + QString::number(status)));
    else if (ok && m_pingFailing)
        DumpStr(QStringLiteral("Proof of life: the check URL answers again"));
    m_pingFailing = !ok;
}

} // namespace osprel
