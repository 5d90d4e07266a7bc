#include "SmtpClient.h"

#include "EmailLog.h"
#include "EmailPort.h"
#include "ErrorReport.h"
#include "MailServerAddress.h"
#include "SmtpStates.h"
#include "SocketErrors.h"
#include "TimeScale.h"
#include "Values.h"
#include "WinsockState.h"

namespace osprel {

namespace {
const QString kLineEnd = QStringLiteral("\r\n");

QString stateName(qint16 state)
{
    return QString::fromLatin1(kSmtpStates.at(state).name);
}

QString codeIncorrect(qint16 code)
{
    return QStringLiteral(": Connect code is incorrect (") + QString::number(code) + QStringLiteral(").  Aborting");
}

// The domain announced in HELO: what follows the first "@" of the return address, or the whole address.
QString heloDomain(const QString &from)
{
    const qsizetype at = from.indexOf(u'@');
    return Trim(at < 0 ? from : from.mid(at + 1));
}

// One "TO: " header per recipient that is not empty.
QString toHeaders(const QString &recipients)
{
    if (!recipients.contains(u';'))
        return QStringLiteral("TO: ") + Trim(recipients) + kLineEnd;
    QString headers;
    for (const QString &element : Split(recipients, QStringLiteral(";"))) {
        if (!Trim(element).isEmpty())
            headers += QStringLiteral("TO: ") + Trim(element) + kLineEnd;
    }
    return headers;
}
} // namespace

SmtpClient::SmtpClient(EmailPort &port, QObject *parent) : QObject(parent), m_port(port)
{
    connect(&m_systemMail, &SystemMail::finished, this, &SmtpClient::finished);
    m_wsockctl.setObjectName(QStringLiteral("wsockctl"));
    connect(&m_wsockctl, &QTcpSocket::readyRead, this, &SmtpClient::wsockctl_DataArrival);
    // Error events are handled from the event loop, never inside the call that caused them: a connect that fails at
    // once must not report an outcome before SendEmail has returned to the queue that called it.
    connect(&m_wsockctl, &QAbstractSocket::errorOccurred, this, [this](QAbstractSocket::SocketError error) {
        QMetaObject::invokeMethod(
            this, [this, session = m_session, error] { wsockctl_Error(session, error); }, Qt::QueuedConnection);
    });
    connect(&m_timerTCPConnect, &QTimer::timeout, this, &SmtpClient::TimerTCPConnect_Timer);
    setupTimer(m_timerTCPConnect, QStringLiteral("TimerTCPConnect"), 1000, true);
}

SmtpClient::~SmtpClient() = default;

qint16 SmtpClient::wsockctlState() const
{
    return winsockStateNumber(m_wsockctl.state());
}

void SmtpClient::SendEmail(const QString &recipients, const QString &subject, const QString &body)
{
    guarded(QStringLiteral("SendEmail"), [&] {
        logSendingBanner();
        m_strFrom = m_port.txtFrom();
        if (!m_port.optSMTP()) {
            m_systemMail.SendMAPIEmail(recipients, subject, body);
            return;
        }
        if (m_SmtpState != SmtpIdle)
            return; // one session at a time: this message is not sent
        m_strRecipients = recipients;
        m_strSubject = subject;
        m_strBody = body;
        m_SmtpState = SMTP_CONNECTING;
        // An open connection is reused: the session then goes on with the next reply.
        if (wsockctlState() != WinsockState::Connected)
            connectToServer(m_port.txtMailServer());
    });
}

void SmtpClient::abort()
{
    closeSocket();
    m_SmtpState = SmtpIdle;
    m_systemMail.abort();
}

void SmtpClient::connectToServer(const QString &serverText)
{
    const MailServerAddress server = MailServerAddress::parse(serverText);
    if (m_wsockctl.state() != QAbstractSocket::UnconnectedState)
        m_wsockctl.abort();
    m_reader.clear();
    ++m_session;
    m_wsockctl.connectToHost(server.host, server.port);
}

void SmtpClient::closeSocket()
{
    ++m_session;
    m_reader.clear();
    m_wsockctl.abort();
}

void SmtpClient::wsockctl_DataArrival()
{
    guarded(QStringLiteral("wsockctl_DataArrival"), [&] {
        if (wsockctlState() != WinsockState::Connecting)
            m_reader.append(m_wsockctl.readAll());
        // One step per whole reply: a reply split over several reads waits for its line end, and the lines of a
        // multi-line reply (RFC 5321 section 4.2.1) are logged one by one and make one step on the last.
        QString line;
        while (m_reader.takeLine(line)) {
            emailLog(QStringLiteral("EMail Status: Rcvd<< ") + line);
            if (!SmtpReplyReader::continues(line))
                onReply(SmtpReplyReader::replyCode(line));
        }
    });
}

void SmtpClient::onReply(qint16 code)
{
    const qint16 state = m_SmtpState;
    if (state < SMTP_CONNECTING || state > SMTP_SENT_QUIT)
        return;
    const bool expected = code == kSmtpStates.at(state).expectedCode;
    switch (state) {
    case SMTP_CONNECTING:
        if (!expected)
            return abortOnCode(code);
        SendData(QStringLiteral("HELO ") + heloDomain(m_strFrom) + kLineEnd);
        m_SmtpState = SMTP_SENT_HELO;
        break;
    case SMTP_SENT_HELO:
        if (!expected)
            return abortOnCode(code);
        SendData(QStringLiteral("MAIL FROM:<") + Trim(m_strFrom) + QStringLiteral(">") + kLineEnd);
        m_SmtpState = SMTP_SENT_FROM;
        break;
    case SMTP_SENT_FROM: {
        if (!expected)
            return abortOnCode(code);
        const QStringList recipients = Split(m_strRecipients, QStringLiteral(";"));
        SendData(QStringLiteral("RCPT TO:<") + Trim(element(recipients, 0)) + QStringLiteral(">") + kLineEnd);
        m_RcptIndex = 1;
        m_SmtpState = SMTP_SENDING_RCPT;
        break;
    }
    case SMTP_SENDING_RCPT:
        recipientLoop(code);
        break;
    case SmtpRcptsDone:
        SendData(QStringLiteral("DATA") + kLineEnd);
        m_SmtpState = SMTP_SENT_DATA;
        break;
    case SMTP_SENT_DATA:
        if (!expected)
            return abortOnCode(code);
        sendMessageText();
        m_SmtpState = SMTP_SENT_DONE;
        break;
    case SMTP_SENT_DONE:
        if (!expected)
            return abortOnCode(code);
        SendData(QStringLiteral("QUIT") + kLineEnd);
        m_SmtpState = SMTP_SENT_QUIT;
        break;
    case SMTP_SENT_QUIT:
        if (expected) {
            finishSession(SendOutcome::sent());
            logCompletedBanner(true);
        } else {
            // The mail was accepted already; a wrong answer to QUIT still counts as a failed send.
            emailLog(stateName(SMTP_SENT_QUIT) + codeIncorrect(code));
            finishSession(SendOutcome::failed(stateName(SMTP_SENT_QUIT) + codeIncorrect(code)));
            logCompletedBanner(false);
        }
        break;
    }
}

// A refused recipient does not end the session: the others still get the message. Empty elements, as after a
// trailing ";", are passed over with the same reply code, so a refusal is logged once more for each.
void SmtpClient::recipientLoop(qint16 code)
{
    for (;;) {
        if (code != kSmtpStates.at(SMTP_SENDING_RCPT).expectedCode)
            emailLog(QStringLiteral("EMail Status: Error: ") + stateName(SMTP_SENDING_RCPT) + codeIncorrect(code));
        const QStringList recipients = Split(m_strRecipients, QStringLiteral(";"));
        if (recipients.size() - 1 < m_RcptIndex) {
            m_SmtpState = SmtpRcptsDone;
            SendData(QStringLiteral("DATA") + kLineEnd);
            m_SmtpState = SMTP_SENT_DATA;
            return;
        }
        const QString next = Trim(recipients.at(m_RcptIndex));
        if (!next.isEmpty()) {
            SendData(QStringLiteral("RCPT TO:<") + next + QStringLiteral(">") + kLineEnd);
            m_RcptIndex = addInt(m_RcptIndex, 1);
            return;
        }
        m_RcptIndex = addInt(m_RcptIndex, 1);
    }
}

// Headers, the empty line and the body, then the end mark. The body goes out as it is, without the dot doubling of
// RFC 5321 section 4.5.2: a body line that begins with "." loses that dot at the server.
void SmtpClient::sendMessageText()
{
    SendData(QStringLiteral("From: ") + Trim(m_strFrom) + kLineEnd);
    SendData(QStringLiteral("Subject: ") + Trim(m_strSubject) + kLineEnd);
    SendData(toHeaders(m_strRecipients));
    SendData(kLineEnd + m_strBody);
    SendData(kLineEnd + QStringLiteral(".") + kLineEnd, QStringLiteral("End Character"));
}

void SmtpClient::SendData(const QString &text, const QString &logText)
{
    m_wsockctl.write(text.toUtf8());
    emailLog(QStringLiteral("EMail Status: Sent>> ") + (logText.isNull() ? text : logText));
}

void SmtpClient::abortOnCode(qint16 code)
{
    const QString error = stateName(m_SmtpState) + codeIncorrect(code);
    emailLog(QStringLiteral("EMail Status: Error: ") + error);
    finishSession(SendOutcome::failed(error));
}

void SmtpClient::finishSession(const SendOutcome &outcome)
{
    closeSocket();
    m_SmtpState = SmtpIdle;
    Q_EMIT finished(outcome);
}

void SmtpClient::wsockctl_Error(quint32 session, QAbstractSocket::SocketError error)
{
    // Only the connection of the session under way can fail it; a closed or given-up one has no say any more.
    if (session != m_session || m_SmtpState == SmtpIdle)
        return;
    guarded(QStringLiteral("wsockctl_Error"), [&] {
        const SocketErrorInfo info = socketErrorInfo(error);
        const QString reason =
            Trim(info.description) + QStringLiteral("(") + QString::number(info.number) + QStringLiteral(")");
        emailLog(QStringLiteral("EMail Status: Error: ") + reason + QStringLiteral(".  Aborting."));
        logCompletedBanner(false);
        finishSession(SendOutcome::failed(reason, true));
    });
}

void SmtpClient::TimerTCPConnect_Timer()
{
    guarded(QStringLiteral("TimerTCPConnect_Timer"),
            [&] { Q_EMIT socketStateText(winsockStateText(wsockctlState())); });
}

} // namespace osprel
