#include "FaxSession.h"

#include "FaxCodes.h"
#include "FaxDocument.h"
#include "SerialLine.h"

namespace osprel {

namespace {
constexpr int kQuietMs = 200; // the modem has said all it had to say
constexpr int kMaxSyncTries = 4;
constexpr int kSyncMs = 2000;
} // namespace

FaxSession::FaxSession(SerialLine *line, FaxJob job, QObject *parent)
    : QObject(parent), m_at(line), m_job(std::move(job))
{
    connect(&m_at, &AtChannel::message, this, &FaxSession::message);
    connect(&m_at, &AtChannel::reply, this, &FaxSession::onChannelReply);
}

FaxSession::~FaxSession() = default;

void FaxSession::start()
{
    Q_EMIT status(FaxStatus::Initializing, QStringLiteral("Initializing modem"));
    m_sync = Sync::Quiet;
    m_at.waitForQuiet(kQuietMs, kCommandMs);
}

void FaxSession::onChannelReply(const AtReply &reply)
{
    if (m_sync == Sync::Off)
        onReply(reply);
    else
        onSyncReply(reply);
}

// A result code left over from an abandoned call ("OK" as a transmission drains) must not answer our commands:
// the modem is in step once it answers a query with its information line and a result code.
void FaxSession::onSyncReply(const AtReply &r)
{
    if (m_sync == Sync::Quiet) {
        m_sync = Sync::Query;
        m_at.atCmd("AT+FCLASS?", AtResponse::Ok, kSyncMs);
        return;
    }
    if ((r.is(AtResponse::Ok) && !r.lines.isEmpty()) || r.is(AtResponse::Error)) {
        m_sync = Sync::Off;
        begin();
        return;
    }
    if (++m_syncTries >= kMaxSyncTries) {
        m_sync = Sync::Off;
        setFailure(FaxError::NoResponse, QStringLiteral("the modem does not answer AT+FCLASS?"));
        finish();
        return;
    }
    if (r.is(AtResponse::Timeout)) {
        // Perhaps still in a data mode: end it, cancel any reception, and listen until it is quiet.
        m_at.writeRaw(QByteArray("\x10\x03\x18\r", 4), QStringLiteral("<DLE><ETX><CAN> (resynchronise)"));
        m_sync = Sync::Quiet;
        m_at.waitForQuiet(kQuietMs, kCommandMs);
        return;
    }
    m_at.atCmd("AT+FCLASS?", AtResponse::Ok, kSyncMs);
}

void FaxSession::abort()
{
    m_finished = true;
    // DLE ETX ends a transmission in progress, CAN ends a reception or an EIA-592 session (T.32), and the
    // hang-up command puts the modem on hook; the caller then closes the port, which drops DTR (&D2).
    m_at.writeRaw(QByteArray("\x10\x03\x18\r", 4) + "ATH0\r", QStringLiteral("<DLE><ETX><CAN> ATH0 (abort)"));
}

void FaxSession::detach()
{
    m_finished = true;
    m_at.cancel();
}

int FaxSession::pageCount() const
{
    return m_job.document ? m_job.document->pageCount() : 0;
}

QByteArray FaxSession::dialCommand() const
{
    const QByteArray number = m_job.number.trimmed().toLatin1();
    // Tone dialling unless the number chooses (T or P first, V.250 D command).
    if (number.startsWith('T') || number.startsWith('P') || number.startsWith('t') || number.startsWith('p'))
        return "ATD" + number;
    return "ATDT" + number;
}

int FaxSession::dialFailure(AtResponse r)
{
    switch (r) {
    case AtResponse::Busy:
        return FaxError::Busy;
    case AtResponse::NoAnswer:
        return FaxError::NoAnswer;
    case AtResponse::NoDialTone:
        return FaxError::NoDialTone;
    case AtResponse::NoCarrier:
        return FaxError::NoCarrier;
    case AtResponse::Timeout:
        return FaxError::NoResponse;
    default:
        return FaxError::ModemError;
    }
}

void FaxSession::setFailure(int code, const QString &detail)
{
    if (m_error != 0 || code == 0)
        return;
    m_error = code;
    m_detail = detail;
}

void FaxSession::finish()
{
    if (m_finished)
        return;
    m_finished = true;
    m_at.cancel();
    Q_EMIT finished(m_error, m_detail);
}

} // namespace osprel
