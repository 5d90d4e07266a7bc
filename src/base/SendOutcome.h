#pragma once
// How one attempt to send a message ended, as a transport (the SMTP client, the system mail program, the fax
// queue) reports it to the delivery code. Transports report; only the delivery code turns an outcome into the
// send states, the history and the retries.

#include <QMetaType>
#include <QString>

namespace osprel {

struct SendOutcome
{
    // The send-state value the outcome stands for.
    enum Result : qint16 { Sent = 3, Failed = 4 };

    Result result = Failed;
    // Worth trying again later (a 4xx reply, a dropped connection, a time-out), as opposed to a refusal.
    bool temporary = false;
    // Why it failed, in words fit for the log and the history; empty when sent.
    QString reason;

    static SendOutcome sent() { return {Sent, false, QString()}; }
    static SendOutcome failed(const QString &reason, bool temporary = false) { return {Failed, temporary, reason}; }
    bool isSent() const { return result == Sent; }
};

} // namespace osprel

Q_DECLARE_METATYPE(osprel::SendOutcome)
