#pragma once
// Turns the e-mail and fax send states into what the user sees and into their consequences: the status of the
// newest history row, retries, removal of a finished item from its queue, the history table, the tray state, the
// queue timers, and the reply to the chamber program. Guarded against being re-entered from an event handled
// while it runs. It takes the SMTP client's outcomes itself: each is recorded and refreshed at once.

#include "SendOutcome.h"

#include <QObject>
#include <QStringList>
#include <functional>

namespace osprel {

class AlertLink;
class Database;
class FaxLine;
class FormLists;
class FormTimers;
class SmtpClient;
class StatusPort;
class TrayState;

class SendStatus
{
public:
    static constexpr int kEmailGiveUpTicks = 60;
    // A fax call is judged by the time it has been under way, not by how often the status was refreshed: the
    // refresh runs on the dispatch tick (1 s at design, any rate under a time scale) and on SMTP events too. At the
    // design interval 10 and 400 ticks were these times.
    static constexpr qint64 kFaxCheckMs = 10000;
    static constexpr qint64 kFaxGiveUpMs = 400000;

    SendStatus(FormLists &lists, FormTimers &timers, const Database &database, AlertLink &link, SmtpClient &smtp,
               TrayState &tray, StatusPort &port);
    ~SendStatus();
    SendStatus(const SendStatus &) = delete;
    SendStatus &operator=(const SendStatus &) = delete;

    void setFaxLine(FaxLine *line) { m_faxLine = line; }
    // The monotonic milliseconds the fax limits are measured with (tests move them); real time by default.
    void setElapsedSource(std::function<qint64()> source) { m_elapsedMs = std::move(source); }
    // Told of each message that failed for good, with its queue row, after the row left its queue (1 e-mail, 2 fax).
    using FinalFailure = std::function<void(int via, const QStringList &row)>;
    void setFinalFailureHandler(FinalFailure handler) { m_finalFailure = std::move(handler); }
    // Told of every notification delivered (not the test messages); via is 1 for e-mail, 2 for fax.
    void setDeliveredHandler(std::function<void(int via)> handler) { m_delivered = std::move(handler); }
    // Why the fax in progress failed, as the fax queue reported it (e-mail outcomes are taken from the client).
    void noteFaxReason(const QString &reason) { m_faxReason = reason; }

    void SendStatUpdate();
    bool isUpdating() const { return gblnStatusUpdating; }

    // The history pages' clear buttons (0 e-mail, 1 fax): the list and its table are emptied.
    void cmdClear_Click(int index);
    // The queue pages' clear buttons (0 e-mail, 1 fax): the send queue and its status list are emptied.
    void cmdClearQueue_Click(int index);

private:
    void emailSending();
    void emailSent();
    void emailFailed();
    void faxSending();
    void faxSent();
    void faxFailed();
    void rearmEmailQueue();

    FormLists &m_lists;
    FormTimers &m_timers;
    const Database &m_database;
    AlertLink &m_link;
    SmtpClient &m_smtp;
    TrayState &m_tray;
    StatusPort &m_port;
    FinalFailure m_finalFailure;
    std::function<void(int via)> m_delivered;
    FaxLine *m_faxLine = nullptr;
    std::function<qint64()> m_elapsedMs;
    qint64 m_faxSendingSince = 0;
    QMetaObject::Connection m_smtpOutcomes;
    SendOutcome m_emailOutcome; // the SMTP client's last outcome: temporary or not, and whom the server refused
    bool gblnStatusUpdating = false;
    // The reason of the latest failure, shown beside "Send Failed" and as the history row's tooltip.
    QString m_emailReason;
    QString m_faxReason;
};

} // namespace osprel
