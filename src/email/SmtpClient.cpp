#include "SmtpClient.h"

#include "Clock.h"
#include "EmailLog.h"
#include "EmailPort.h"
#include "ErrorReport.h"
#include "MailAddress.h"
#include "MailServerAddress.h"
#include "MessageFormat.h"
#include "SmtpSecurity.h"
#include "SmtpStates.h"
#include "SocketErrors.h"
#include "TimeScale.h"
#include "Values.h"
#include "WinsockState.h"

#include <QFileInfo>
#include <QSslConfiguration>

namespace osprel {

namespace {
const QString kLineEnd = QStringLiteral("\r\n");
constexpr int kMinStepTimeoutMs = 1000;

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

bool isTemporary(qint16 code)
{
    return code >= 400 && code <= 499;
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
    connect(&m_wsockctl, &QAbstractSocket::connected, this, [this] { armStepTimer(); });
    connect(&m_wsockctl, &QSslSocket::encrypted, this, &SmtpClient::wsockctl_Encrypted);
    connect(&m_wsockctl, &QSslSocket::sslErrors, this, &SmtpClient::wsockctl_SslErrors);
    connect(&m_wsockctl, &QSslSocket::newSessionTicketReceived, this,
            [this] { m_tlsResumeTicket = m_wsockctl.sslConfiguration().sessionTicket(); });
    connect(&m_timerTCPConnect, &QTimer::timeout, this, &SmtpClient::TimerTCPConnect_Timer);
    setupTimer(m_timerTCPConnect, QStringLiteral("TimerTCPConnect"), 1000, true);
    m_stepTimer.setSingleShot(true);
    connect(&m_stepTimer, &QTimer::timeout, this, &SmtpClient::stepTimedOut);
}

SmtpClient::~SmtpClient() = default;

qint16 SmtpClient::wsockctlState() const
{
    return winsockStateNumber(m_wsockctl.state());
}

MailSettings SmtpClient::mailSettings() const
{
    return m_port.mailSettings();
}

void SmtpClient::SendEmail(const QString &recipients, const QString &subject, const QString &body,
                           const QString &messageId)
{
    guarded(QStringLiteral("SendEmail"), [&] {
        logSendingBanner();
        if (!m_port.optSMTP()) {
            m_systemMail.SendMAPIEmail(recipients, subject, body);
            return;
        }
        if (m_SmtpState != SmtpIdle)
            return; // one session at a time: this message is not sent
        m_settings = m_port.mailSettings();
        m_strFrom = normalizeAddress(m_port.txtFrom());
        m_strRecipients = recipients;
        m_strSubject = subject;
        m_strBody = body;
        // Everything that can be known before connecting is checked first: a setting that cannot be used ends the
        // message at once instead of leaving a session that nothing will ever finish.
        const QString fromProblem = addressProblem(m_strFrom);
        if (!fromProblem.isEmpty())
            return failBeforeStart(QStringLiteral("the return address cannot be used: ") + fromProblem);
        bool anyRecipient = false;
        for (const QString &element : Split(recipients, QStringLiteral(";")))
            anyRecipient = !usableRecipient(element).isEmpty() || anyRecipient;
        if (!anyRecipient)
            return failBeforeStart(QStringLiteral("no recipient address can be used"));
        m_messageId = messageId.isEmpty()
                          ? MessageFormat::newMessageId(m_strFrom.contains(u'@') ? m_strFrom.section(u'@', 1)
                                                                                 : QStringLiteral("osprel.invalid"))
                          : messageId;
        m_SmtpState = SMTP_CONNECTING;
        if (!connectToServer(m_port.txtMailServer()))
            m_SmtpState = SmtpIdle;
    });
}

void SmtpClient::abort()
{
    closeSocket();
    m_SmtpState = SmtpIdle;
    m_systemMail.abort();
}

// The CA file is read again only when it changed: parsing it for every message cost more than the rest of the
// session's work on a busy queue.
const QList<QSslCertificate> &SmtpClient::caCertificates(const QString &path)
{
    const QDateTime modified = QFileInfo(path).lastModified();
    if (path != m_caPath || modified != m_caModified || !modified.isValid()) {
        m_caCertificates = QSslCertificate::fromPath(path, QSsl::Pem);
        m_caPath = path;
        m_caModified = modified;
    }
    return m_caCertificates;
}

bool SmtpClient::connectToServer(const QString &serverText)
{
    const QString problem = MailServerAddress::problem(serverText);
    if (!problem.isEmpty()) {
        failBeforeStart(QStringLiteral("the mail server \"%1\" cannot be used: %2")
                            .arg(MessageFormat::oneLine(serverText), problem));
        return false;
    }
    const MailServerAddress server =
        MailServerAddress::parse(serverText, MailSettings::defaultPort(m_settings.security));
    closeSocket();
    m_tls = false;
    m_delivered = false;
    m_tlsFailure.clear();
    m_extensions.clear();
    m_replyLines.clear();
    m_lastReply.clear();
    m_refused.clear();
    m_rcptAccepted = 0;
    m_rcptTemporary = false;
    if (m_settings.security != MailSecurity::None) {
        if (!QSslSocket::supportsSsl()) {
            failBeforeStart(QStringLiteral("TLS is not available on this machine"));
            return false;
        }
        QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
        if (!m_settings.caFile.isEmpty()) {
            const QList<QSslCertificate> &authorities = caCertificates(m_settings.caFile);
            if (authorities.isEmpty()) {
                failBeforeStart(QStringLiteral("the CA file \"%1\" holds no certificate").arg(m_settings.caFile));
                return false;
            }
            // The relay's own CA replaces the system store: an internal relay needs no other, and the handshake
            // then does not load the system's hundreds of certificates for every message.
            configuration.setCaCertificates(authorities);
        }
        // A session ticket from the last connection to the same server with the same trust lets the next
        // handshake resume (RFC 8446 section 2.2) instead of verifying the certificate chain and agreeing on new
        // keys for every message.
        configuration.setSslOption(QSsl::SslOptionDisableSessionPersistence, false);
        const QString resumeKey = server.host + u':' + QString::number(server.port) + u'\n' + m_settings.caFile +
                                  u'\n' + m_settings.pinnedSha256;
        if (resumeKey == m_tlsResumeKey && !m_tlsResumeTicket.isEmpty())
            configuration.setSessionTicket(m_tlsResumeTicket);
        m_tlsResumeKey = resumeKey;
        m_wsockctl.setSslConfiguration(configuration);
        m_wsockctl.setPeerVerifyName(server.host);
    }
    if (m_settings.security == MailSecurity::ImplicitTls)
        m_wsockctl.connectToHostEncrypted(server.host, server.port);
    else
        m_wsockctl.connectToHost(server.host, server.port);
    armStepTimer();
    return true;
}

void SmtpClient::closeSocket()
{
    ++m_session;
    m_reader.clear();
    m_stepTimer.stop();
    m_token.cancel();
    m_wsockctl.abort();
}

void SmtpClient::armStepTimer()
{
    if (m_SmtpState == SmtpIdle)
        return m_stepTimer.stop();
    int seconds = m_settings.replyTimeoutSec;
    if (m_SmtpState == SMTP_CONNECTING && m_wsockctl.state() != QAbstractSocket::ConnectedState)
        seconds = m_settings.connectTimeoutSec;
    else if (kSmtpStates.at(m_SmtpState).wait == SmtpWait::Dot)
        seconds = m_settings.dotTimeoutSec;
    m_stepTimer.setProperty("seconds", seconds);
    // Scaled like every timer, but never below a second: a fast-running demo or test must not fail a busy server
    // that is merely slow, and a second still ends any hang.
    m_stepTimer.start(qMax(kMinStepTimeoutMs, TimeScale::interval(qMax(1, seconds) * 1000)));
}

void SmtpClient::stepTimedOut()
{
    if (m_SmtpState == SmtpIdle)
        return;
    guarded(QStringLiteral("stepTimedOut"), [&] {
        const int seconds = m_stepTimer.property("seconds").toInt();
        if (m_delivered) {
            emailLog(QStringLiteral("EMail Status: ") + stateName(m_SmtpState) +
                     QStringLiteral(": no answer to QUIT; the message was accepted before."));
            return succeed();
        }
        const bool connecting = m_SmtpState == SMTP_CONNECTING && m_wsockctl.state() != QAbstractSocket::ConnectedState;
        fail(stateName(m_SmtpState) + (connecting ? QStringLiteral(": no connection to the server within %1 s")
                                                  : QStringLiteral(": no reply from the server within %1 s"))
                                          .arg(seconds),
             true);
    });
}

void SmtpClient::wsockctl_DataArrival()
{
    guarded(QStringLiteral("wsockctl_DataArrival"), [&] {
        if (wsockctlState() != WinsockState::Connecting)
            m_reader.append(m_wsockctl.readAll());
        // One step per whole reply: a reply split over several reads waits for its line end, and the lines of a
        // multi-line reply (RFC 5321 section 4.2.1) are logged one by one and make one step on the last.
        const quint32 session = m_session;
        QString line;
        for (;;) {
            const SmtpReplyReader::Take take = m_reader.takeLine(line);
            if (take == SmtpReplyReader::Take::NoLine)
                return;
            if (take == SmtpReplyReader::Take::TooLong)
                return fail(stateName(m_SmtpState) + QStringLiteral(": a reply line of the server is longer than %1 "
                                                                    "octets")
                                                         .arg(SmtpReplyReader::kMaxLineOctets),
                            true);
            if (take == SmtpReplyReader::Take::TooManyLines)
                return fail(stateName(m_SmtpState) + QStringLiteral(": a reply of the server goes on past %1 lines")
                                                         .arg(SmtpReplyReader::kMaxReplyLines),
                            true);
            emailLog(QStringLiteral("EMail Status: Rcvd<< ") + line);
            m_replyLines << line;
            if (!SmtpReplyReader::continues(line)) {
                m_lastReply = m_replyLines;
                m_replyLines.clear();
                onReply(SmtpReplyReader::replyCode(line));
                if (session != m_session)
                    return; // the session ended; what is left belongs to no one
                armStepTimer();
            }
        }
    });
    // What the reply made us send goes out now, in one segment, not after the timers due on this turn of the loop:
    // the server works on it while they run.
    if (m_wsockctl.state() == QAbstractSocket::ConnectedState)
        m_wsockctl.flush();
}

void SmtpClient::onReply(qint16 code)
{
    const qint16 state = m_SmtpState;
    if (state < SMTP_CONNECTING || state >= kSmtpStateCount)
        return;
    const bool expected = code == kSmtpStates.at(state).expectedCode;
    switch (state) {
    case SMTP_CONNECTING:
        if (!expected)
            return abortOnCode(code);
        if (m_settings.security == MailSecurity::None) {
            SendData(QStringLiteral("HELO ") + heloDomain(m_strFrom) + kLineEnd);
            m_SmtpState = SMTP_SENT_HELO;
        } else {
            SendData(QStringLiteral("EHLO ") + SmtpSecurity::ehloName(m_wsockctl.localAddress()) + kLineEnd);
            m_SmtpState = SMTP_SENT_EHLO;
        }
        break;
    case SMTP_SENT_HELO:
        if (!expected)
            return abortOnCode(code);
        afterHello();
        break;
    case SMTP_SENT_EHLO:
        onEhloReply(code);
        break;
    case SMTP_SENT_STARTTLS:
        if (!expected)
            return abortOnCode(code);
        // Nothing the server sent in clear may be read as part of the encrypted session (RFC 3207 section 4.2).
        m_reader.clear();
        m_SmtpState = SMTP_TLS_HANDSHAKE;
        m_wsockctl.startClientEncryption();
        break;
    case SMTP_SENT_AUTH:
        if (code == 334 && m_settings.auth == MailAuth::XOAuth2) {
            // A refused token comes as a 334 challenge holding the error; an empty line ends the exchange
            // (the server then answers 535), and the token is fetched anew for the next attempt.
            m_token.invalidate();
            SendData(kLineEnd);
            break;
        }
        if (!expected)
            return abortOnCode(code);
        sendMailFrom();
        break;
    case SMTP_SENT_AUTH_LOGIN: {
        if (!expected)
            return abortOnCode(code);
        const QByteArray user = m_settings.user.toUtf8().toBase64();
        SendData(user + "\r\n", QString::fromLatin1(user));
        m_SmtpState = SMTP_SENT_AUTH_USER;
        break;
    }
    case SMTP_SENT_AUTH_USER:
        if (!expected)
            return abortOnCode(code);
        SendData(m_settings.password.toUtf8().toBase64() + "\r\n", QStringLiteral("****"));
        m_SmtpState = SMTP_SENT_AUTH;
        break;
    case SMTP_SENT_FROM:
        if (!expected)
            return abortOnCode(code);
        sendFirstRecipient();
        break;
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
        if (code < 200 || code > 299)
            return abortOnCode(code);
        m_delivered = true;
        SendData(QStringLiteral("QUIT") + kLineEnd);
        m_SmtpState = SMTP_SENT_QUIT;
        break;
    case SMTP_SENT_QUIT:
        // The server took the message with its answer to the end mark; what QUIT gets changes nothing of that.
        if (!expected)
            emailLog(QStringLiteral("EMail Status: ") + stateName(SMTP_SENT_QUIT) + QStringLiteral(": reply (") +
                     QString::number(code) + QStringLiteral(") to QUIT; the message was accepted before."));
        succeed();
        break;
    default:
        // No reply is awaited while the TLS handshake or a token request is under way.
        abortOnCode(code);
        break;
    }
}

void SmtpClient::onEhloReply(qint16 code)
{
    if (code != kSmtpStates.at(SMTP_SENT_EHLO).expectedCode) {
        // RFC 5321 section 3.2: a server that does not know EHLO answers 500, 502 or 504 (550 by some); HELO is
        // then the way in, without any extension.
        const bool unknown = code == 500 || code == 502 || code == 504 || code == 550;
        if (!unknown)
            return abortOnCode(code);
        if (!m_tls && m_settings.security == MailSecurity::StartTlsRequired)
            return fail(stateName(SMTP_SENT_EHLO) + QStringLiteral(": the server rejects EHLO (") +
                            QString::number(code) + QStringLiteral("), so it cannot offer STARTTLS"),
                        false);
        m_extensions.clear();
        SendData(QStringLiteral("HELO ") + SmtpSecurity::ehloName(m_wsockctl.localAddress()) + kLineEnd);
        m_SmtpState = SMTP_SENT_HELO;
        return;
    }
    m_extensions.clear();
    for (int i = 1; i < m_lastReply.size(); ++i)
        m_extensions.insert(m_lastReply.at(i).mid(4).section(u' ', 0, 0).toUpper());
    const bool wantsStartTls =
        m_settings.security == MailSecurity::StartTlsRequired || m_settings.security == MailSecurity::StartTlsOffered;
    if (!m_tls && wantsStartTls) {
        if (m_extensions.contains(QStringLiteral("STARTTLS"))) {
            SendData(QStringLiteral("STARTTLS") + kLineEnd);
            m_SmtpState = SMTP_SENT_STARTTLS;
            return;
        }
        if (m_settings.security == MailSecurity::StartTlsRequired)
            return fail(stateName(SMTP_SENT_EHLO) + QStringLiteral(": the server does not offer STARTTLS"), false);
    }
    afterHello();
}

void SmtpClient::afterHello()
{
    if (m_settings.auth == MailAuth::None)
        return sendMailFrom();
    if (!m_tls && !m_settings.allowClearAuth)
        return fail(stateName(m_SmtpState) +
                        QStringLiteral(": the connection is not encrypted, and authentication is not sent in clear"),
                    false);
    sendAuth();
}

void SmtpClient::sendAuth()
{
    switch (m_settings.auth) {
    case MailAuth::None:
        return sendMailFrom();
    case MailAuth::Plain: {
        SendData("AUTH PLAIN " + SmtpSecurity::plainResponse(m_settings.user, m_settings.password) + "\r\n",
                 QStringLiteral("AUTH PLAIN ****"));
        m_SmtpState = SMTP_SENT_AUTH;
        return;
    }
    case MailAuth::Login:
        SendData(QStringLiteral("AUTH LOGIN") + kLineEnd);
        m_SmtpState = SMTP_SENT_AUTH_LOGIN;
        return;
    case MailAuth::XOAuth2:
        break;
    }
    m_SmtpState = SMTP_GETTING_TOKEN;
    const quint32 session = m_session;
    m_token.get(m_settings, TimeScale::interval(m_settings.replyTimeoutSec * 1000),
                [this, session](const QString &token, const QString &error) {
                    if (session != m_session || m_SmtpState != SMTP_GETTING_TOKEN)
                        return;
                    guarded(QStringLiteral("SendAuth"), [&] {
                        if (token.isEmpty())
                            return fail(stateName(SMTP_GETTING_TOKEN) + QStringLiteral(": ") + error, true);
                        const QString user = m_settings.user.isEmpty() ? m_strFrom : m_settings.user;
                        SendData("AUTH XOAUTH2 " + SmtpSecurity::xoauth2Response(user, token) + "\r\n",
                                 QStringLiteral("AUTH XOAUTH2 ****"));
                        m_SmtpState = SMTP_SENT_AUTH;
                        armStepTimer();
                    });
                });
}

void SmtpClient::sendMailFrom()
{
    // A server that offers 8BITMIME (RFC 6152) takes the UTF-8 body as it is; any other gets quoted-printable.
    const bool eightBit = m_extensions.contains(QStringLiteral("8BITMIME"));
    SendData(QStringLiteral("MAIL FROM:<") + m_strFrom + QStringLiteral(">") +
             (eightBit ? QStringLiteral(" BODY=8BITMIME") : QString()) + kLineEnd);
    m_SmtpState = SMTP_SENT_FROM;
}

QString SmtpClient::usableRecipient(const QString &element)
{
    const QString address = normalizeAddress(element);
    if (address.isEmpty())
        return QString();
    const QString problem = addressProblem(address);
    if (problem.isEmpty())
        return address;
    if (!m_badAddressesLogged.contains(address)) {
        m_badAddressesLogged.insert(address);
        emailLog(QStringLiteral("EMail Status: Error: recipient \"") + MessageFormat::oneLine(address) +
                 QStringLiteral("\" is skipped: ") + problem + u'.');
    }
    return QString();
}

void SmtpClient::sendFirstRecipient()
{
    const QStringList recipients = Split(m_strRecipients, QStringLiteral(";"));
    for (int i = 0; i < recipients.size(); ++i) {
        const QString address = usableRecipient(recipients.at(i));
        if (address.isEmpty())
            continue;
        SendData(QStringLiteral("RCPT TO:<") + address + QStringLiteral(">") + kLineEnd);
        m_lastRcpt = address;
        m_RcptIndex = qint16(i + 1);
        m_SmtpState = SMTP_SENDING_RCPT;
        return;
    }
}

// A refused recipient does not end the session: the others still get the message, and the outcome names who did
// not. Empty elements, as after a trailing ";", are passed over with the same reply code, so a refusal is logged
// once more for each.
void SmtpClient::recipientLoop(qint16 code)
{
    const bool accepted = code == 250 || code == 251;
    if (accepted) {
        ++m_rcptAccepted;
    } else {
        m_refused << m_lastRcpt;
        m_rcptTemporary = m_rcptTemporary || isTemporary(code);
    }
    for (;;) {
        if (!accepted)
            emailLog(QStringLiteral("EMail Status: Error: ") + stateName(SMTP_SENDING_RCPT) + codeIncorrect(code));
        const QStringList recipients = Split(m_strRecipients, QStringLiteral(";"));
        if (recipients.size() - 1 < m_RcptIndex) {
            if (m_rcptAccepted == 0)
                return fail(stateName(SMTP_SENDING_RCPT) + QStringLiteral(": every recipient was refused"),
                            m_rcptTemporary);
            m_SmtpState = SmtpRcptsDone;
            SendData(QStringLiteral("DATA") + kLineEnd);
            m_SmtpState = SMTP_SENT_DATA;
            return;
        }
        const QString next = usableRecipient(recipients.at(m_RcptIndex));
        m_RcptIndex = addInt(m_RcptIndex, 1);
        if (!next.isEmpty()) {
            SendData(QStringLiteral("RCPT TO:<") + next + QStringLiteral(">") + kLineEnd);
            m_lastRcpt = next;
            return;
        }
    }
}

// The header fields, the empty line, the body and the end mark. Every value is kept to one line, and the body is
// dot-stuffed, so nothing in an alert can end the message early or add a header or a command.
void SmtpClient::sendMessageText()
{
    const bool eightBit = m_extensions.contains(QStringLiteral("8BITMIME"));
    QStringList to;
    for (const QString &element : Split(m_strRecipients, QStringLiteral(";"))) {
        const QString address = usableRecipient(element);
        if (!address.isEmpty())
            to << address;
    }
    SendData(QStringLiteral("From: ") + m_strFrom + kLineEnd);
    SendData("Subject: " + MessageFormat::encodeHeaderValue(Trim(m_strSubject)) + "\r\n");
    SendData(MessageFormat::toField(to) + "\r\n");
    // The fields the classic message lacked go out as one piece, one log line, as the recipient fields did.
    SendData("Date: " + MessageFormat::dateTime(Clock::now()) + "\r\nMessage-ID: " + m_messageId.toLatin1() +
             "\r\nMIME-Version: 1.0\r\nContent-Type: text/plain; charset=UTF-8\r\nContent-Transfer-Encoding: " +
             (eightBit ? "8bit" : "quoted-printable") + "\r\n");
    SendData("\r\n" + MessageFormat::bodyData(m_strBody, eightBit));
    SendData(QByteArray(".\r\n"), QStringLiteral("End Character"));
}

void SmtpClient::SendData(const QByteArray &data, const QString &logText)
{
    m_wsockctl.write(data);
    emailLog(QStringLiteral("EMail Status: Sent>> ") + (logText.isNull() ? QString::fromUtf8(data) : logText));
}

void SmtpClient::SendData(const QString &text, const QString &logText)
{
    SendData(text.toUtf8(), logText.isNull() ? text : logText);
}

void SmtpClient::wsockctl_SslErrors(const QList<QSslError> &errors)
{
    const QSslCertificate certificate = m_wsockctl.peerCertificate();
    if (SmtpSecurity::pinMatches(m_settings.pinnedSha256, certificate)) {
        m_wsockctl.ignoreSslErrors(errors); // the one certificate the user pinned
        return;
    }
    QStringList reasons;
    for (const QSslError &error : errors)
        reasons << error.errorString();
    m_tlsFailure = QStringLiteral("TLS: the server's certificate is refused: ") + reasons.join(QStringLiteral("; ")) +
                   QStringLiteral(" (") + SmtpSecurity::certificateNames(certificate) + u')';
}

void SmtpClient::wsockctl_Encrypted()
{
    guarded(QStringLiteral("wsockctl_Encrypted"), [&] {
        if (m_SmtpState == SmtpIdle)
            return;
        if (!m_settings.pinnedSha256.isEmpty() &&
            !SmtpSecurity::pinMatches(m_settings.pinnedSha256, m_wsockctl.peerCertificate()))
            return fail(QStringLiteral("TLS: the server's certificate is not the pinned one (") +
                            SmtpSecurity::certificateNames(m_wsockctl.peerCertificate()) + u')',
                        false);
        m_tls = true;
        if (m_SmtpState == SMTP_TLS_HANDSHAKE) {
            // RFC 3207 section 4.2: everything learnt before TLS is forgotten; the client asks again.
            SendData(QStringLiteral("EHLO ") + SmtpSecurity::ehloName(m_wsockctl.localAddress()) + kLineEnd);
            m_SmtpState = SMTP_SENT_EHLO;
        }
        armStepTimer();
    });
}

void SmtpClient::abortOnCode(qint16 code)
{
    const QString error = stateName(m_SmtpState) + codeIncorrect(code);
    emailLog(QStringLiteral("EMail Status: Error: ") + error);
    const QString reply = m_lastReply.isEmpty() ? QString::number(code) : m_lastReply.constLast();
    finishSession(SendOutcome::failed(stateName(m_SmtpState) + QStringLiteral(": ") + reply, isTemporary(code)));
}

void SmtpClient::fail(const QString &error, bool temporary)
{
    emailLog(QStringLiteral("EMail Status: Error: ") + error + QStringLiteral(".  Aborting."));
    logCompletedBanner(false);
    finishSession(SendOutcome::failed(error, temporary));
}

void SmtpClient::failBeforeStart(const QString &error)
{
    emailLog(QStringLiteral("EMail Status: Error: ") + error + QStringLiteral(".  Aborting."));
    logCompletedBanner(false);
    QMetaObject::invokeMethod(
        this, [this, error] { Q_EMIT finished(SendOutcome::failed(error)); }, Qt::QueuedConnection);
}

void SmtpClient::succeed()
{
    SendOutcome outcome = SendOutcome::sent();
    if (!m_refused.isEmpty())
        outcome.reason = QStringLiteral("refused: ") + m_refused.join(QStringLiteral(", "));
    finishSession(outcome);
    logCompletedBanner(true);
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
        if (m_delivered) {
            emailLog(QStringLiteral("EMail Status: ") + stateName(m_SmtpState) +
                     QStringLiteral(": the connection ended after the message was accepted."));
            return succeed();
        }
        if (!m_tlsFailure.isEmpty())
            return fail(m_tlsFailure, false);
        const SocketErrorInfo info = socketErrorInfo(error);
        QString reason = Trim(info.description) + QStringLiteral("(") + QString::number(info.number) + u')';
        if (error == QAbstractSocket::SslHandshakeFailedError || error == QAbstractSocket::SslInternalError)
            reason = QStringLiteral("TLS: ") + m_wsockctl.errorString() + u' ' + reason;
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
