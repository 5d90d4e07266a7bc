#include "AtChannel.h"

#include "SerialLine.h"

namespace osprel {

namespace {
// A frame is logged in hex; page data only by its size.
QString describeData(const QByteArray &data)
{
    if (data.size() <= 48)
        return QStringLiteral("[") + QString::fromLatin1(data.toHex(' ')) + QStringLiteral("]");
    return QStringLiteral("[%1 bytes]").arg(data.size());
}

QString printable(const QByteArray &line)
{
    QString out;
    for (char c : line) {
        if (c >= 0x20 && c < 0x7f)
            out += QLatin1Char(c);
        else
            out += QStringLiteral("<%1>").arg(uchar(c), 2, 16, QLatin1Char('0'));
    }
    return out;
}
} // namespace

AtChannel::AtChannel(SerialLine *line, QObject *parent) : QObject(parent), m_line(line)
{
    qRegisterMetaType<osprel::AtReply>();
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &AtChannel::onTimeout);
    m_quietTimer.setSingleShot(true);
    connect(&m_quietTimer, &QTimer::timeout, this, [this] {
        if (m_mode == Mode::Quiet)
            finish(AtResponse::Nothing);
    });
    connect(m_line, &SerialLine::readyRead, this, &AtChannel::onReadyRead);
}

QByteArray AtChannel::dleStuff(const QByteArray &data)
{
    QByteArray out;
    out.reserve(data.size() + data.size() / 64 + 4);
    for (char c : data) {
        out += c;
        if (c == kDle)
            out += c;
    }
    return out;
}

void AtChannel::atCmd(const QByteArray &cmd, AtResponse expect, int timeoutMs, bool abortOnTimeout)
{
    // Whatever the modem said while nobody asked (a late result, RING) must not answer this command.
    if (!m_in.isEmpty()) {
        log("<--", QStringLiteral("(discarded) ") + printable(m_in));
        m_in.clear();
    }
    m_echo = cmd.trimmed();
    m_abortOnTimeout = abortOnTimeout;
    log("-->", QString::fromLatin1(cmd));
    m_line->write(cmd + '\r');
    start(Mode::Lines, expect, timeoutMs);
}

void AtChannel::receiveData(int timeoutMs)
{
    m_dataDle = false;
    m_abortOnTimeout = true;
    start(Mode::Data, AtResponse::Ok, timeoutMs);
}

void AtChannel::sendData(const QByteArray &data, const QByteArray &terminator, AtResponse expect, int timeoutMs,
                         bool xonXoff)
{
    log("-->", describeData(data) + QStringLiteral(" ") + QString::fromLatin1(terminator.toHex(' ')));
    if (xonXoff) {
        m_xonXoff = true;
        m_line->setXonXoff(true);
    }
    m_line->write(dleStuff(data) + terminator);
    m_abortOnTimeout = false;
    m_echo.clear();
    start(Mode::Lines, expect, timeoutMs);
}

void AtChannel::waitForXon(int timeoutMs)
{
    m_abortOnTimeout = false;
    start(Mode::Xon, AtResponse::Xon, timeoutMs);
}

void AtChannel::waitForQuiet(int quietMs, int maxMs)
{
    m_abortOnTimeout = false;
    m_quietTimer.setInterval(quietMs);
    start(Mode::Quiet, AtResponse::Nothing, maxMs);
    m_quietTimer.start();
}

void AtChannel::endXonXoff()
{
    if (m_xonXoff) {
        m_xonXoff = false;
        m_line->setXonXoff(false);
    }
}

void AtChannel::cancel()
{
    endXonXoff();
    m_timer.stop();
    m_quietTimer.stop();
    m_mode = Mode::Idle;
    ++m_serial;
}

void AtChannel::writeRaw(const QByteArray &bytes, const QString &description)
{
    cancel();
    log("-->", description);
    m_line->write(bytes);
}

void AtChannel::start(Mode mode, AtResponse expect, int timeoutMs)
{
    m_reply = AtReply();
    m_mode = mode;
    m_expect = expect;
    m_timer.start(timeoutMs);
    const quint64 serial = ++m_serial;
    // Data that arrived with the previous response (frames right after CONNECT) is taken from the event loop, never
    // from inside the caller's reply handler.
    QMetaObject::invokeMethod(
        this,
        [this, serial] {
            if (serial == m_serial)
                process();
        },
        Qt::QueuedConnection);
}

void AtChannel::onReadyRead()
{
    m_in += m_line->readAll();
    process();
}

void AtChannel::process()
{
    const quint64 serial = m_serial;
    while (m_mode != Mode::Idle && serial == m_serial) {
        bool progressed = false;
        switch (m_mode) {
        case Mode::Lines:
        case Mode::Drain:
            progressed = processLines();
            break;
        case Mode::Data:
            progressed = processData();
            break;
        case Mode::Xon:
            progressed = processXon();
            break;
        case Mode::Quiet:
            if (!m_in.isEmpty()) {
                log("<--", QStringLiteral("(discarded) ") + printable(m_in));
                m_in.clear();
                m_quietTimer.start();
            }
            break;
        case Mode::Idle:
            break;
        }
        if (!progressed)
            break;
    }
}

bool AtChannel::takeLine(QByteArray *line)
{
    const int end = m_in.indexOf('\n');
    if (end < 0)
        return false;
    *line = m_in.left(end);
    m_in.remove(0, end + 1);
    line->replace('\r', QByteArray());
    line->replace(kXon, QByteArray());
    return true;
}

bool AtChannel::processLines()
{
    QByteArray line;
    if (!takeLine(&line))
        return false;
    const AtResponse r = classifyAtLine(line);
    if (r == AtResponse::Empty)
        return true;
    if (!m_echo.isEmpty() && line.trimmed() == m_echo) {
        m_echo.clear();
        return true;
    }
    log("<--", printable(line));
    if (m_mode == Mode::Drain) {
        if (isFinalResponse(r))
            finish(AtResponse::Timeout);
        return true;
    }
    if (r == m_expect || isFinalResponse(r))
        finish(r);
    else
        m_reply.lines.append(line.trimmed());
    return true;
}

bool AtChannel::processData()
{
    // No carrier after all: the modem answers with a result code where the data would begin (T.31).
    if (m_reply.data.isEmpty() && !m_dataDle && m_in == "\r")
        return false; // the start of a result line, or of nothing yet
    if (m_reply.data.isEmpty() && !m_dataDle && m_in.startsWith("\r\n")) {
        const int end = m_in.indexOf('\n', 2);
        if (end < 0)
            return false;
        const QByteArray line = m_in.mid(2, end - 2).trimmed();
        const AtResponse r = classifyAtLine(line);
        if (isFinalResponse(r)) {
            m_in.remove(0, end + 1);
            log("<--", printable(line));
            finish(r);
            return true;
        }
    }
    for (int i = 0; i < m_in.size(); ++i) {
        const char c = m_in.at(i);
        if (m_dataDle) {
            m_dataDle = false;
            if (c == kEtx) {
                m_reply.dataComplete = true;
                m_in.remove(0, i + 1);
                log("<--", describeData(m_reply.data));
                m_mode = Mode::Lines;
                m_echo.clear();
                return true;
            }
            if (c == kDle)
                m_reply.data += kDle;
            else if (c == kSub) // T.31 / T.32: DLE SUB stands for two DLE characters
                m_reply.data += QByteArray(2, kDle);
        } else if (c == kDle) {
            m_dataDle = true;
        } else {
            m_reply.data += c;
        }
    }
    m_in.clear();
    return false;
}

bool AtChannel::processXon()
{
    const int xon = m_in.indexOf(kXon);
    const int nl = m_in.indexOf('\n');
    if (xon >= 0 && (nl < 0 || xon < nl)) {
        m_in.remove(0, xon + 1);
        log("<--", QStringLiteral("<XON>"));
        finish(AtResponse::Xon);
        return true;
    }
    QByteArray line;
    if (!takeLine(&line))
        return false;
    const AtResponse r = classifyAtLine(line);
    if (r == AtResponse::Empty)
        return true;
    log("<--", printable(line));
    if (isFinalResponse(r))
        finish(r);
    else
        m_reply.lines.append(line.trimmed());
    return true;
}

void AtChannel::onTimeout()
{
    if (m_mode == Mode::Drain || !m_abortOnTimeout) {
        finish(AtResponse::Timeout);
        return;
    }
    log("-->", QStringLiteral("<CAN> (abort after timeout)"));
    m_line->write(QByteArray(1, kCan));
    m_mode = Mode::Drain;
    m_timer.start(1000);
    process();
}

void AtChannel::finish(AtResponse result)
{
    endXonXoff();
    m_timer.stop();
    m_quietTimer.stop();
    m_reply.result = result;
    m_mode = Mode::Idle;
    ++m_serial;
    if (result == AtResponse::Timeout)
        log("<--", QStringLiteral("(timeout)"));
    const AtReply done = m_reply;
    Q_EMIT reply(done);
}

void AtChannel::log(const char *direction, const QString &text)
{
    Q_EMIT message(QLatin1String(direction) + QLatin1Char(' ') + text);
}

} // namespace osprel
