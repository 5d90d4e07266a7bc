#pragma once
// The server's own SMTP client: one message at a time over the socket wsockctl, each server reply one step of the
// session, every line sent and received written to the e-mail log. Plain, STARTTLS or implicit TLS; AUTH PLAIN,
// LOGIN or XOAUTH2; every step bounded by a time-out.

#include "MailSettings.h"
#include "OAuthToken.h"
#include "SendOutcome.h"
#include "SmtpReplyReader.h"
#include "SystemMail.h"

#include <QObject>
#include <QSet>
#include <QSslError>
#include <QSslSocket>
#include <QTimer>

namespace osprel {

class EmailPort;

class SmtpClient : public QObject
{
    Q_OBJECT
public:
    explicit SmtpClient(EmailPort &port, QObject *parent = nullptr);
    ~SmtpClient() override;

    // Sends one message, over SMTP when optSMTP is selected, else through the system mail program. Recipients are
    // e-mail addresses separated by ";". Does nothing while an SMTP session is under way. A message sent again
    // passes the Message-ID of its first try; an empty one makes a new one.
    void SendEmail(const QString &recipients, const QString &subject, const QString &body,
                   const QString &messageId = QString());

    // Gives up the message in flight without an outcome: the socket is closed, SmtpState = 0, and a system-mail
    // submission still running is stopped. The send state is left to the caller.
    void abort();

    qint16 SmtpState() const { return m_SmtpState; }
    qint16 RcptIndex() const { return m_RcptIndex; }
    // The socket's state as the socket control numbers it (6 connecting, 7 connected).
    qint16 wsockctlState() const;
    // The settings the next session will use.
    MailSettings mailSettings() const;
    // The Message-ID of the message last handed to SendEmail over SMTP.
    const QString &messageId() const { return m_messageId; }

    SystemMail &systemMail() { return m_systemMail; }

Q_SIGNALS:
    // Once per message handed to SendEmail, by either path: the message was accepted or has failed. A message
    // accepted while some recipients were refused is sent, its reason "refused: " and their addresses.
    void finished(const osprel::SendOutcome &outcome);
    // Every tick of TimerTCPConnect: the socket's state as text ("Closed", "Connecting", "Connected", ...).
    void socketStateText(const QString &text);

private:
    void wsockctl_DataArrival();
    void wsockctl_Error(quint32 session, QAbstractSocket::SocketError error);
    void wsockctl_Encrypted();
    void wsockctl_SslErrors(const QList<QSslError> &errors);
    void TimerTCPConnect_Timer();
    void stepTimedOut();

    bool connectToServer(const QString &serverText);
    void onReply(qint16 code);
    void onEhloReply(qint16 code);
    void afterHello();
    void sendAuth();
    void sendMailFrom();
    void sendFirstRecipient();
    void recipientLoop(qint16 code);
    void sendMessageText();
    void SendData(const QByteArray &data, const QString &logText = QString());
    void SendData(const QString &text, const QString &logText = QString());
    void armStepTimer();
    // The address of one element of the recipients, or empty when it is empty or cannot be used (logged once).
    QString usableRecipient(const QString &element);

    // An unexpected reply code: the session ends without a banner; a 4xx reply is a temporary failure.
    void abortOnCode(qint16 code);
    // The session ends with an error line and the failure banner.
    void fail(const QString &error, bool temporary);
    // A message that cannot even be started: the outcome comes from the event loop, after SendEmail returned.
    void failBeforeStart(const QString &error);
    void succeed();
    // Closes the socket and forgets whatever it had delivered; events of the old connection are ignored from now on.
    void closeSocket();
    void finishSession(const SendOutcome &outcome);

    EmailPort &m_port;
    QSslSocket m_wsockctl;
    QTimer m_timerTCPConnect;
    QTimer m_stepTimer;
    SmtpReplyReader m_reader;
    SystemMail m_systemMail;
    OAuthToken m_token;

    qint16 m_SmtpState = 0;
    qint16 m_RcptIndex = 0;
    quint32 m_session = 0; // counts connections, so that a late event of a closed one is recognised
    MailSettings m_settings;
    QString m_strFrom;
    QString m_strRecipients;
    QString m_strSubject;
    QString m_strBody;
    QString m_messageId;

    QStringList m_replyLines;   // the lines of the reply being read
    QStringList m_lastReply;    // the lines of the last whole reply
    QSet<QString> m_extensions; // EHLO keywords of the server, upper case
    bool m_tls = false;
    bool m_delivered = false; // the end mark got a 2xx reply: the message is the server's now
    QString m_tlsFailure;     // why the server's certificate was refused
    QString m_lastRcpt;
    QStringList m_refused;
    int m_rcptAccepted = 0;
    bool m_rcptTemporary = false;
    QSet<QString> m_badAddressesLogged;
    // The TLS session of the last connection, for resuming the next one to the same server.
    QString m_tlsResumeKey;
    QByteArray m_tlsResumeTicket;
};

} // namespace osprel
