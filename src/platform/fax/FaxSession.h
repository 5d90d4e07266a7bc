#pragma once
// One fax call driven through a modem: the part every modem class shares (the job, the AT channel, progress
// signals, the failure that ends the call); a driver per class runs the call itself.

#include "AtChannel.h"
#include "ModemProfile.h"

#include <QObject>
#include <QString>

namespace osprel {

class FaxDocument;
class SerialLine;

struct FaxJob
{
    QString number;     // the dial string
    QString stationId;  // our identification (TSI, +FLID / +FLI)
    QString initString; // sent first, as the user configured it
    ModemProfile profile;
    const FaxDocument *document = nullptr;
};

class FaxSession : public QObject
{
    Q_OBJECT
public:
    FaxSession(SerialLine *line, FaxJob job, QObject *parent = nullptr);
    ~FaxSession() override;

    // Brings the modem into a known state (it may still be talking from a call abandoned a moment ago), then lets
    // the driver run the call.
    void start();
    // Abandons the call: drops the exchange in progress and tells the modem to stop and hang up. No finished().
    void abort();
    // Stops listening to the modem without a word to it (the line is going away). No finished().
    void detach();

Q_SIGNALS:
    void status(int code, const QString &text);
    void negotiated(const QString &speed, const QString &resolution, const QString &remoteId);
    void pageStarted(int page, int pageCount);
    void notice(const QString &text);
    void message(const QString &text);
    // The call is over: errorCode 0 when every page was confirmed.
    void finished(int errorCode, const QString &detail);

protected:
    // The driver's part: its first command, and each reply once the modem is in step.
    virtual void begin() = 0;
    virtual void onReply(const AtReply &reply) = 0;

    // Command timeouts. T.30 timers are physical time: they are never scaled.
    static constexpr int kCommandMs = 5000;
    static constexpr int kDialMs = 90000;

    AtChannel &at() { return m_at; }
    const FaxJob &job() const { return m_job; }
    int pageCount() const;
    QByteArray dialCommand() const;
    // The error a failed dial gives (BUSY, NO ANSWER, NO DIALTONE, NO CARRIER, ERROR, timeout).
    static int dialFailure(AtResponse r);
    // Records why the call failed; the first failure wins, later ones only follow from it.
    void setFailure(int code, const QString &detail = QString());
    int failure() const { return m_error; }
    // The call has ended or was abandoned: nothing more may be said to the modem.
    bool isFinished() const { return m_finished; }
    // Ends the call with the recorded outcome (once).
    void finish();

private:
    enum class Sync { Off, Quiet, Query };
    void onChannelReply(const AtReply &reply);
    void onSyncReply(const AtReply &reply);

    AtChannel m_at;
    Sync m_sync = Sync::Off;
    int m_syncTries = 0;
    FaxJob m_job;
    int m_error = 0;
    QString m_detail;
    bool m_finished = false;
};

} // namespace osprel
