#pragma once
// Shows that the notifier itself works. Once a day at a set time a status message goes to a chosen list (what
// came in, what went out, what failed, what waits, the last error), through the send queues like any alert. And
// while the server is healthy, a URL is fetched every few minutes: a dead man's switch elsewhere raises the alarm
// when the fetches stop. The settings live in the table ProofOfLife.

#include <QDateTime>
#include <QObject>
#include <QString>
#include <QTime>
#include <QTimer>

class QNetworkAccessManager;
class QNetworkReply;

namespace osprel {

class Database;
class FormLists;
class FormTimers;
class SendSwitches;

struct ProofOfLifeSettings
{
    enum To { EmailList = 0, FaxList = 1, BothLists = 2 };
    bool dailyStatus = false;
    QTime dailyAt{7, 0};
    int dailyTo = EmailList;
    QString pingUrl; // empty: no dead man's switch
    int pingMinutes = 5;

    bool operator==(const ProofOfLifeSettings &other) const;
    bool operator!=(const ProofOfLifeSettings &other) const { return !(*this == other); }
};

class ProofOfLife : public QObject
{
    Q_OBJECT
public:
    static constexpr int kCheckMs = 30000;       // how often the daily time is looked for (design interval)
    static constexpr int kPingTimeoutMs = 20000; // a check URL that does not answer in this time has failed

    ProofOfLife(const Database &database, FormLists &lists, FormTimers &timers, const SendSwitches &switches,
                QObject *parent = nullptr);
    ~ProofOfLife() override;

    // Reads the stored settings and starts the timers; the counts start from now.
    void load();
    // Why settings cannot be used; empty when they can.
    static QString problem(const ProofOfLifeSettings &settings);
    // Stores usable settings and applies them; otherwise returns the problem and changes nothing.
    QString accept(const ProofOfLifeSettings &settings);
    const ProofOfLifeSettings &settings() const { return m_settings; }

    static ProofOfLifeSettings stored(const Database &database);

    // What the daily status counts; via is 0 for e-mail, 1 for fax.
    void alertAccepted() { ++m_received; }
    void delivered(int via);
    void failedForGood(int via, const QString &what);

    // The status message's text as it would go now.
    QString statusText() const;
    // Sends the daily status when its time has come (the check timer's slot; tests call it after moving the clock).
    void dailyCheck();
    // Fetches the check URL when the server is healthy (the ping timer's slot).
    void ping();
    // The server is healthy: its database can be written.
    bool healthy() const;

Q_SIGNALS:
    void settingsChanged(const osprel::ProofOfLifeSettings &settings);

private:
    void apply();
    void sendDailyStatus(const QDateTime &now);
    QDateTime dueAfter(const QDateTime &moment) const;
    void pingFinished(QNetworkReply *reply);

    const Database &m_database;
    FormLists &m_lists;
    FormTimers &m_timers;
    const SendSwitches &m_switches;
    ProofOfLifeSettings m_settings;
    QTimer m_check;
    QTimer m_pingTimer;
    QNetworkAccessManager *m_network = nullptr;
    QNetworkReply *m_pending = nullptr;
    bool m_pingFailing = false;
    QDateTime m_lastDaily; // when the last daily status went (stored, so a restart neither repeats nor skips it)
    QDateTime m_since;     // the counts run from here: the last status of this run, or the start
    QDateTime m_dueFrom;   // set times before this are not owed: the last status, or when it was set or started
    int m_received = 0;
    int m_sent[2] = {0, 0};
    int m_failed[2] = {0, 0};
    QString m_lastFailure;
};

} // namespace osprel
