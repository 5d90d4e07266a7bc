#pragma once
// The server's own SMTP client: one message at a time over the socket wsockctl, each server reply one step of the
// session, every line sent and received written to the e-mail log.

#include "SendOutcome.h"
#include "SmtpReplyReader.h"
#include "SystemMail.h"

#include <QObject>
#include <QTcpSocket>
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
    // e-mail addresses separated by ";". Does nothing while an SMTP session is under way.
    void SendEmail(const QString &recipients, const QString &subject, const QString &body);

    // Gives up the message in flight without an outcome: the socket is closed, SmtpState = 0, and a system-mail
    // submission still running is stopped. The send state is left to the caller.
    void abort();

    qint16 SmtpState() const { return m_SmtpState; }
    qint16 RcptIndex() const { return m_RcptIndex; }
    // The socket's state as the socket control numbers it (6 connecting, 7 connected).
    qint16 wsockctlState() const;

    SystemMail &systemMail() { return m_systemMail; }

Q_SIGNALS:
    // Once per message handed to SendEmail, by either path: the message was accepted or has failed.
    void finished(const osprel::SendOutcome &outcome);
    // Every tick of TimerTCPConnect: the socket's state as text ("Closed", "Connecting", "Connected", ...).
    void socketStateText(const QString &text);

private:
    void wsockctl_DataArrival();
    void wsockctl_Error(quint32 session, QAbstractSocket::SocketError error);
    void TimerTCPConnect_Timer();

    void connectToServer(const QString &serverText);
    void onReply(qint16 code);
    void recipientLoop(qint16 code);
    void sendMessageText();
    void SendData(const QString &text, const QString &logText = QString());
    // An unexpected reply code: the session ends without a banner.
    void abortOnCode(qint16 code);
    // Closes the socket and forgets whatever it had delivered; events of the old connection are ignored from now on.
    void closeSocket();
    void finishSession(const SendOutcome &outcome);

    EmailPort &m_port;
    QTcpSocket m_wsockctl;
    QTimer m_timerTCPConnect;
    SmtpReplyReader m_reader;
    SystemMail m_systemMail;

    qint16 m_SmtpState = 0;
    qint16 m_RcptIndex = 0;
    quint32 m_session = 0; // counts connections, so that a late error event of a closed one is recognised
    QString m_strFrom;
    QString m_strRecipients;
    QString m_strSubject;
    QString m_strBody;
};

} // namespace osprel
