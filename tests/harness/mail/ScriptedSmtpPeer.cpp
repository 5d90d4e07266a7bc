#include "ScriptedSmtpPeer.h"

#include <QTimer>

ScriptedSmtpPeer::Script ScriptedSmtpPeer::session(const QList<QByteArray> &rcptReplies, const QByteArray &quitReply)
{
    Script script = {
        {"", {"220 peer.test ready\r\n"}}, {"HELO ", {"250 peer.test\r\n"}}, {"MAIL FROM:<", {"250 ok\r\n"}}};
    for (const QByteArray &reply : rcptReplies)
        script.append(Step{"RCPT TO:<", {reply}});
    script.append(Step{"DATA", {"354 go ahead\r\n"}});
    script.append(Step{".", {"250 queued\r\n"}});
    script.append(Step{"QUIT", {quitReply}, true}); // servers close after answering QUIT
    return script;
}

ScriptedSmtpPeer::ScriptedSmtpPeer(Script script, QObject *parent) : QObject(parent), m_script(std::move(script))
{
    connect(&m_server, &QTcpServer::newConnection, this, &ScriptedSmtpPeer::onNewConnection);
    m_server.listen(QHostAddress::LocalHost, 0);
}

void ScriptedSmtpPeer::onNewConnection()
{
    QTcpSocket *socket = m_server.nextPendingConnection();
    ++m_connections;
    if (m_socket) { // one client at a time
        socket->abort();
        socket->deleteLater();
        return;
    }
    m_socket = socket;
    socket->setParent(this);
    connect(socket, &QTcpSocket::readyRead, this, &ScriptedSmtpPeer::onReadyRead);
    connect(socket, &QTcpSocket::disconnected, this, [this] { m_closed = true; });
    if (!m_script.isEmpty() && m_script.first().expect.isEmpty())
        play(m_script.at(m_next++));
}

void ScriptedSmtpPeer::onReadyRead()
{
    const QByteArray bytes = m_socket->readAll();
    m_received += bytes;
    m_pending += bytes;
    for (;;) {
        QByteArray unit;
        if (m_inData) {
            // The message text ends with CR LF "." CR LF (RFC 5321 section 4.1.1.4).
            const qsizetype end = m_pending.indexOf("\r\n.\r\n");
            if (end < 0)
                return;
            m_pending.remove(0, end + 5);
            m_inData = false;
            unit = ".";
        } else {
            const qsizetype end = m_pending.indexOf("\r\n");
            if (end < 0)
                return;
            unit = m_pending.left(end);
            m_pending.remove(0, end + 2);
        }
        if (m_next >= m_script.size()) {
            m_mismatches << QStringLiteral("after the script: ") + QString::fromUtf8(unit);
            continue;
        }
        const Step &step = m_script.at(m_next++);
        if (!unit.startsWith(step.expect))
            m_mismatches << QStringLiteral("expected ") + QString::fromUtf8(step.expect) + QStringLiteral(", got ") +
                                QString::fromUtf8(unit);
        if (unit == "DATA" && !step.reply.isEmpty() && step.reply.first().startsWith("354"))
            m_inData = true;
        play(step);
    }
}

void ScriptedSmtpPeer::play(const Step &step)
{
    QTcpSocket *socket = m_socket;
    const int chunks = int(step.reply.size());
    if (chunks == 0 && step.closeAfter) {
        socket->disconnectFromHost();
        return;
    }
    for (int i = 0; i < chunks; ++i) {
        const QByteArray chunk = step.reply.at(i);
        const bool last = i == chunks - 1;
        const bool close = last && step.closeAfter;
        // Separate writes with a pause between them reach the client as separate reads.
        QTimer::singleShot(30 * i, socket, [socket, chunk, close] {
            socket->write(chunk);
            socket->flush();
            if (close)
                socket->disconnectFromHost();
        });
    }
}
