#include "SystemMail.h"

#include "EmailLog.h"
#include "ErrorReport.h"
#include "Values.h"

namespace osprel {

namespace {
const QString kPrefix = QStringLiteral("EMail Status: System mail: ");

bool isAscii(const QString &text)
{
    for (const QChar c : text) {
        if (c.unicode() > 127)
            return false;
    }
    return true;
}

// A header value on one line: a line break inside would start a header of its own.
QString oneLine(QString value)
{
    value.replace(u'\r', u' ');
    value.replace(u'\n', u' ');
    return value;
}

QStringList recipientList(const QString &recipients)
{
    QStringList list;
    for (const QString &element : Split(recipients, QStringLiteral(";"))) {
        const QString address = Trim(oneLine(element));
        if (!address.isEmpty())
            list << address;
    }
    return list;
}
} // namespace

SystemMail::SystemMail(QObject *parent) : QObject(parent), m_sendmailPath(defaultSendmailPath())
{
    m_timeLimit.setObjectName(QStringLiteral("systemMailTimeLimit"));
    m_timeLimit.setSingleShot(true);
    connect(&m_timeLimit, &QTimer::timeout, this,
            [this] { recordOutcome(m_run, Outcome::TimedOut, QString::number(m_timeLimitMs / 1000.0)); });
}

SystemMail::~SystemMail()
{
    if (m_process) {
        m_process->disconnect(this);
        m_process->kill();
        m_process->waitForFinished(1000);
    }
}

QString SystemMail::defaultSendmailPath()
{
    const QString configured = qEnvironmentVariable("OSPREL_SENDMAIL");
    return configured.isEmpty() ? QStringLiteral("/usr/sbin/sendmail") : configured;
}

QByteArray SystemMail::messageText(const QString &recipients, const QString &subject, const QString &body)
{
    QString text;
    for (const QString &address : recipientList(recipients))
        text += QStringLiteral("To: ") + address + u'\n';
    const QString subjectLine = Trim(oneLine(subject));
    text += QStringLiteral("Subject: ") +
            (isAscii(subjectLine) ? subjectLine
                                  : QStringLiteral("=?UTF-8?B?") +
                                        QString::fromLatin1(subjectLine.toUtf8().toBase64()) + QStringLiteral("?="));
    text += u'\n';
    if (!isAscii(body)) {
        text += QStringLiteral("MIME-Version: 1.0\nContent-Type: text/plain; charset=UTF-8\n"
                               "Content-Transfer-Encoding: 8bit\n");
    }
    text += u'\n';
    // The notification text ends its lines with CR LF; the submission program reads Unix lines.
    QString unixBody = body;
    unixBody.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    text += unixBody;
    return text.toUtf8();
}

void SystemMail::SendMAPIEmail(const QString &recipients, const QString &subject, const QString &body)
{
    guarded(QStringLiteral("SendMAPIEmail"), [&] {
        if (m_busy) {
            emailLog(kPrefix + QStringLiteral("Error: the previous message is still being handed over; this one is "
                                              "not sent."));
            return;
        }
        m_busy = true;
        ++m_run;
        emailLog(kPrefix + QStringLiteral("Sent>> ") + m_sendmailPath + QStringLiteral(" -t -i"));
        if (recipientList(recipients).isEmpty()) {
            deferOutcome(Outcome::NoRecipient);
            return;
        }
        const QByteArray message = messageText(recipients, subject, body);
        const qsizetype headerEnd = message.indexOf("\n\n");
        for (const QByteArray &header : message.left(headerEnd).split('\n'))
            emailLog(kPrefix + QStringLiteral("Sent>> ") + QString::fromUtf8(header));
        emailLog(kPrefix + QStringLiteral("Sent>> ") + QString::fromUtf8(message.mid(headerEnd + 2)));
        startProcess(message);
    });
}

void SystemMail::startProcess(const QByteArray &message)
{
    m_process = new QProcess(this);
    QProcess *process = m_process;
    process->setProgram(m_sendmailPath);
    // -t: the recipients are read from the To: headers; -i: a line holding only "." does not end the message.
    process->setArguments({QStringLiteral("-t"), QStringLiteral("-i")});
    connect(process, &QProcess::errorOccurred, this, [this, process](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            deferOutcome(Outcome::NotStarted, process->errorString());
    });
    connect(process, &QProcess::finished, this, [this](int exitCode, QProcess::ExitStatus status) {
        if (status == QProcess::CrashExit)
            deferOutcome(Outcome::Crashed);
        else if (exitCode != 0)
            deferOutcome(Outcome::Refused, QString::number(exitCode));
        else
            deferOutcome(Outcome::Accepted);
    });
    m_timeLimit.start(m_timeLimitMs);
    process->start();
    if (process->state() != QProcess::NotRunning) {
        process->write(message);
        process->closeWriteChannel();
    }
}

// Outcomes are recorded from the event loop, never inside SendMAPIEmail, so that the caller has set its own state
// before the outcome is known.
void SystemMail::deferOutcome(Outcome outcome, const QString &detail)
{
    m_timeLimit.stop();
    QMetaObject::invokeMethod(
        this, [this, run = m_run, outcome, detail] { recordOutcome(run, outcome, detail); }, Qt::QueuedConnection);
}

void SystemMail::recordOutcome(quint32 run, Outcome outcome, const QString &detail)
{
    if (run != m_run || !m_busy)
        return;
    guarded(QStringLiteral("SendMAPIEmail"), [&] {
        m_timeLimit.stop();
        if (m_process) {
            const QList<QByteArray> lines = m_process->readAllStandardError().split('\n');
            for (const QByteArray &line : lines) {
                if (!line.trimmed().isEmpty())
                    emailLog(kPrefix + QStringLiteral("Rcvd<< ") + QString::fromUtf8(line.trimmed()));
            }
        }
        QString reason;
        switch (outcome) {
        case Outcome::Accepted:
            emailLog(kPrefix + QStringLiteral("Message accepted by ") + m_sendmailPath + QStringLiteral("."));
            break;
        case Outcome::Refused:
            reason = m_sendmailPath + QStringLiteral(" ended with exit code ") + detail;
            emailLog(kPrefix + QStringLiteral("Error: ") + reason + QStringLiteral(".  Aborting."));
            break;
        case Outcome::NoRecipient:
            reason = QStringLiteral("no recipient address");
            emailLog(kPrefix + QStringLiteral("Error: ") + reason + QStringLiteral(".  Aborting."));
            break;
        case Outcome::Crashed:
            reason = m_sendmailPath + QStringLiteral(" crashed");
            emailLog(kPrefix + QStringLiteral("Critical Error: ") + reason + QStringLiteral(".  Aborting."));
            break;
        case Outcome::NotStarted:
            reason = m_sendmailPath + QStringLiteral(" cannot be started (") + detail + u')';
            emailLog(kPrefix + QStringLiteral("Critical Error: ") + reason + QStringLiteral(".  Aborting."));
            break;
        case Outcome::TimedOut:
            reason = m_sendmailPath + QStringLiteral(" did not finish within ") + detail + QStringLiteral(" s");
            emailLog(kPrefix + QStringLiteral("Critical Error: ") + reason + QStringLiteral(".  Aborting."));
            break;
        }
        releaseProcess();
        m_busy = false;
        if (outcome == Outcome::Accepted) {
            Q_EMIT finished(SendOutcome::sent());
            logCompletedBanner(true);
        } else {
            logCompletedBanner(false);
            Q_EMIT finished(SendOutcome::failed(reason, outcome == Outcome::TimedOut));
        }
    });
}

void SystemMail::abort()
{
    ++m_run;
    m_timeLimit.stop();
    if (m_process)
        emailLog(kPrefix + QStringLiteral("Critical Error: given up; ") + m_sendmailPath + QStringLiteral(" stopped."));
    releaseProcess();
    m_busy = false;
}

void SystemMail::releaseProcess()
{
    if (!m_process)
        return;
    QProcess *process = m_process;
    m_process = nullptr;
    process->disconnect(this);
    if (process->state() == QProcess::NotRunning) {
        process->deleteLater();
        return;
    }
    // A stopped program is reaped before its QProcess goes.
    connect(process, &QProcess::finished, process, &QObject::deleteLater);
    process->kill();
}

} // namespace osprel
