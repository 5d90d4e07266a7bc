#pragma once
// A scripted SMTP server on loopback for the client tests: it takes one connection and plays a list of steps, each
// answering one command line of the client (or the message text after DATA) with fixed bytes.

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QStringList>
#include <QTcpServer>
#include <QTcpSocket>

class ScriptedSmtpPeer : public QObject
{
    Q_OBJECT
public:
    struct Step
    {
        QByteArray expect;       // how the client's line begins; empty for the greeting, "." for the message text
        QList<QByteArray> reply; // sent in separate writes, 30 ms apart; empty: no answer at all
        bool closeAfter = false; // close the connection once the reply is out
    };
    using Script = QList<Step>;

    // The usual script: greeting, answers to HELO, MAIL FROM, one RCPT per given reply, DATA, the text and QUIT.
    static Script session(const QList<QByteArray> &rcptReplies = {"250 ok\r\n"},
                          const QByteArray &quitReply = "221 bye\r\n");

    explicit ScriptedSmtpPeer(Script script, QObject *parent = nullptr);

    quint16 port() const { return m_server.serverPort(); }
    QString address() const { return QStringLiteral("127.0.0.1:") + QString::number(port()); }
    // Every byte the client sent.
    const QByteArray &received() const { return m_received; }
    // Lines that did not match the script, or came after its end.
    const QStringList &mismatches() const { return m_mismatches; }
    int connections() const { return m_connections; }
    // The client closed its side (or the script closed the connection).
    bool closed() const { return m_closed; }

private:
    void onNewConnection();
    void onReadyRead();
    void play(const Step &step);

    QTcpServer m_server;
    QTcpSocket *m_socket = nullptr;
    Script m_script;
    int m_next = 0;
    bool m_inData = false;
    QByteArray m_pending;
    QByteArray m_received;
    QStringList m_mismatches;
    int m_connections = 0;
    bool m_closed = false;
};

Q_DECLARE_METATYPE(ScriptedSmtpPeer::Script)
