#pragma once
// The system-mail path: hands a message to the local mail submission program (sendmail -t -i) without blocking the
// event loop, and reports its outcome as the SMTP path does.

#include "SendOutcome.h"

#include <QByteArray>
#include <QObject>
#include <QProcess>
#include <QString>
#include <QTimer>

namespace osprel {

class SystemMail : public QObject
{
    Q_OBJECT
public:
    static constexpr int kDefaultTimeLimitMs = 30000;

    explicit SystemMail(QObject *parent = nullptr);
    ~SystemMail() override;

    // $OSPREL_SENDMAIL when set, else /usr/sbin/sendmail.
    static QString defaultSendmailPath();
    void setSendmailPath(const QString &path) { m_sendmailPath = path; }
    const QString &sendmailPath() const { return m_sendmailPath; }

    // How long the program may take before it is stopped and the message counts as failed. Real milliseconds: this
    // bounds an outside program, so the time scale does not shorten it.
    void setTimeLimit(int ms) { m_timeLimitMs = ms; }
    int timeLimit() const { return m_timeLimitMs; }

    // True from SendMAPIEmail until its outcome is recorded.
    bool isBusy() const { return m_busy; }

    // Starts handing one message to the program. The outcome comes later from the event loop (finished): sent when
    // the program exits with 0, failed when it cannot start, fails, crashes or overruns the time limit. Recipients
    // are addresses separated by ";".
    void SendMAPIEmail(const QString &recipients, const QString &subject, const QString &body);

    // Stops a submission under way without recording an outcome (the caller gives the message up).
    void abort();

    // The message as the program reads it: one "To:" header per recipient, "Subject:", an empty line and the body,
    // with LF line ends. Text beyond ASCII is declared as UTF-8 (RFC 2045, RFC 2047 for the subject).
    static QByteArray messageText(const QString &recipients, const QString &subject, const QString &body);

Q_SIGNALS:
    void finished(const osprel::SendOutcome &outcome);

private:
    enum class Outcome { Accepted, Refused, Crashed, NotStarted, TimedOut, NoRecipient };

    void startProcess(const QByteArray &message);
    void deferOutcome(Outcome outcome, const QString &detail = QString());
    void recordOutcome(quint32 run, Outcome outcome, const QString &detail);
    void releaseProcess();

    QString m_sendmailPath;
    int m_timeLimitMs = kDefaultTimeLimitMs;
    QProcess *m_process = nullptr;
    QTimer m_timeLimit;
    bool m_busy = false;
    quint32 m_run = 0; // counts submissions, so that the late outcome of a given-up one is ignored
};

} // namespace osprel
