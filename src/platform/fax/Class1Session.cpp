#include "Class1Session.h"

#include "FaxCodes.h"
#include "FaxDocument.h"

#include <QTimer>

namespace osprel {

namespace {
constexpr int kT1Ms = 35000;        // T.30 T1: time to find the called station
constexpr int kResponseMs = 4000;   // T.30 T4 (3 s +-15 %) until a response begins
constexpr int kFrameMs = 10000;     // one V.21 frame at 300 bit/s, long NSF frames included
constexpr int kMaxCommandTries = 3; // T.30: a command without response is repeated up to three times
constexpr int kMaxPageRetries = 2;  // a page the remote asks for again (RTN) is sent at most this often more
constexpr int kTcfMs = 1500;        // T.30: TCF is 1.5 s of zeros
constexpr int kRelistenMs = 200;    // after +FRH failed at once

// Time for a V.21 frame: a second of flags (T.30) and the octets at 300 bit/s, with room to spare.
int frameMs(int octets)
{
    return 3000 + octets * 8 * 1000 / 300;
}
} // namespace

const char *Class1Session::stateName(State s)
{
    static const char *const names[] = {"Idle",
                                        "Reset",
                                        "FlowControl",
                                        "SetClass",
                                        "QueryModulations",
                                        "Dial",
                                        "PhaseBConnect",
                                        "PhaseBFrame",
                                        "TsiSilence",
                                        "TsiConnect",
                                        "TsiSent",
                                        "DcsSent",
                                        "TcfPause",
                                        "TcfConnect",
                                        "TcfSent",
                                        "TrainingConnect",
                                        "TrainingFrame",
                                        "PagePause",
                                        "PageConnect",
                                        "PageSent",
                                        "PostPagePause",
                                        "PostPageConnect",
                                        "PostPageSent",
                                        "ResponseConnect",
                                        "ResponseFrame",
                                        "DcnConnect",
                                        "DcnSent",
                                        "Hangup",
                                        "Done"};
    static_assert(sizeof names / sizeof names[0] == int(State::Done) + 1, "one name per state");
    return names[int(s)];
}

Class1Session::Class1Session(SerialLine *line, FaxJob job, QObject *parent) : FaxSession(line, std::move(job), parent)
{
}

void Class1Session::begin()
{
    enter(job().initString.trimmed().isEmpty() ? State::FlowControl : State::Reset);
}

void Class1Session::pause(int delay, State next)
{
    if (delay <= 0) {
        enter(next);
        return;
    }
    at().atCmd("AT+FTS=" + QByteArray::number(delay), AtResponse::Ok, kCommandMs);
}

QString Class1Session::rateText() const
{
    return m_mod ? QString::number(m_mod->bitRate) : QString();
}

void Class1Session::sendFrame(quint8 fcf, const QByteArray &info, bool final, AtResponse expect)
{
    const T30Frame frame = T30Frame::command(fcf, info, final);
    Q_EMIT message(QStringLiteral("--- send ") + QLatin1String(T30Frame::fcfName(fcf)));
    at().sendData(frame.encoded(), QByteArray("\x10\x03", 2), expect, frameMs(frame.encoded().size()));
}

void Class1Session::enter(State s)
{
    m_state = s;
    switch (s) {
    case State::Idle:
    case State::Done:
        return;
    case State::Reset:
        at().atCmd(job().initString.trimmed().toLatin1(), AtResponse::Ok, kCommandMs);
        return;
    case State::FlowControl:
        at().atCmd(job().profile.flowCommandFor(1), AtResponse::Ok, kCommandMs);
        return;
    case State::SetClass:
        at().atCmd("AT+FCLASS=1", AtResponse::Ok, kCommandMs);
        return;
    case State::QueryModulations:
        at().atCmd("AT+FTM=?", AtResponse::Ok, kCommandMs);
        return;
    case State::Dial:
        Q_EMIT status(FaxStatus::Dialing, QStringLiteral("Dialing ") + job().number);
        at().atCmd(dialCommand(), AtResponse::Connect, kDialMs, true);
        return;
    case State::PhaseBConnect:
    case State::TrainingConnect:
    case State::ResponseConnect:
        at().atCmd("AT+FRH=3", AtResponse::Connect, kResponseMs, true);
        return;
    case State::PhaseBFrame:
    case State::TrainingFrame:
    case State::ResponseFrame:
        at().receiveData(kFrameMs);
        return;
    case State::TsiSilence:
        // T.30: our answer starts 75 ms +-20 ms after the received frame ends; +FRS waits for that silence.
        if (job().profile.frsDelay <= 0)
            enter(State::TsiConnect);
        else
            at().atCmd("AT+FRS=" + QByteArray::number(job().profile.frsDelay), AtResponse::Ok, kCommandMs);
        return;
    case State::TsiConnect:
    case State::PostPageConnect:
    case State::DcnConnect:
        at().atCmd("AT+FTH=3", AtResponse::Connect, kCommandMs);
        return;
    case State::TsiSent:
        sendFrame(Fcf::TSI, T30Frame::encodeIdent(job().stationId), false, AtResponse::Connect);
        return;
    case State::DcsSent:
        sendFrame(Fcf::DCS, T30Params::dcs(*m_mod, m_fine, m_minScanMs, m_twoD), true, AtResponse::Ok);
        return;
    // T.30: 75 ms +-20 ms of silence between the frames and the high-speed signal. TCF follows DCS that closely; the
    // round trip of +FTM adds to the pause before it, which is why that one is shorter by default.
    case State::TcfPause:
        pause(job().profile.tcfDelay, State::TcfConnect);
        return;
    case State::PagePause:
        pause(job().profile.ftsDelay, State::PageConnect);
        return;
    case State::PostPagePause:
        pause(job().profile.ftsDelay, State::PostPageConnect);
        return;
    case State::TcfConnect:
        at().atCmd("AT+FTM=" + QByteArray::number(m_mod->trainingCode), AtResponse::Connect, kCommandMs);
        return;
    case State::TcfSent: {
        const int octets = m_mod->bitRate * kTcfMs / 8000;
        at().sendData(QByteArray(octets, '\0'), QByteArray("\x10\x03", 2), AtResponse::Ok, kTcfMs + 8000,
                      job().profile.softwareFlow());
        return;
    }
    case State::PageConnect:
        at().atCmd("AT+FTM=" + QByteArray::number(m_longTrain ? m_mod->trainingCode : m_mod->pageCode),
                   AtResponse::Connect, kCommandMs);
        return;
    case State::PageSent: {
        const int ms = int(qint64(m_pageData.size()) * 8000 / m_mod->bitRate) + 15000;
        at().sendData(m_pageData, QByteArray("\x10\x03", 2), AtResponse::Ok, ms, job().profile.softwareFlow());
        return;
    }
    case State::PostPageSent:
        sendFrame(m_page + 1 < pageCount() ? Fcf::MPS : Fcf::EOP, QByteArray(), true, AtResponse::Ok);
        return;
    case State::DcnSent:
        sendFrame(Fcf::DCN, QByteArray(), true, AtResponse::Ok);
        return;
    case State::Hangup:
        Q_EMIT status(FaxStatus::Disconnecting, QStringLiteral("Hanging up"));
        at().atCmd("ATH0", AtResponse::Ok, kCommandMs);
        return;
    }
}

void Class1Session::fail(int code, const QString &detail, bool sendDcn)
{
    setFailure(code, detail + QStringLiteral(" (") + QLatin1String(stateName(m_state)) + QStringLiteral(")"));
    enter(sendDcn ? State::DcnConnect : State::Hangup);
}

void Class1Session::onReply(const AtReply &r)
{
    switch (m_state) {
    case State::Idle:
    case State::Done:
        return;
    case State::Reset:
        if (r.is(AtResponse::Ok))
            enter(State::FlowControl);
        else
            fail(r.is(AtResponse::Timeout) ? FaxError::NoResponse : FaxError::ModemError,
                 QStringLiteral("init string answered ") + QLatin1String(atResponseName(r.result)), false);
        return;
    case State::FlowControl:
        // A modem that keeps its own flow control can still send; the log says so.
        if (!r.is(AtResponse::Ok))
            Q_EMIT notice(QString::fromLatin1(job().profile.flowCommandFor(1)) + QStringLiteral(" not accepted"));
        enter(State::SetClass);
        return;
    case State::SetClass:
        if (r.is(AtResponse::Ok))
            enter(State::QueryModulations);
        else
            fail(r.is(AtResponse::Timeout) ? FaxError::NoResponse : FaxError::ModemError,
                 QStringLiteral("the modem refuses Class 1"), false);
        return;
    case State::QueryModulations:
        for (const QByteArray &line : r.lines)
            m_modemCodes += T30Params::parseCarrierList(line);
        if (m_modemCodes.isEmpty())
            m_modemCodes = {24, 48, 72, 96}; // what every Class 1 modem has (V.27 ter, V.29)
        enter(State::Dial);
        return;
    case State::Dial:
        if (r.is(AtResponse::Connect)) {
            Q_EMIT status(FaxStatus::Negotiating, QStringLiteral("Connected, receiving DIS"));
            m_t1.start();
            enter(State::PhaseBFrame);
        } else {
            fail(dialFailure(r.result), QStringLiteral("dial answered ") + QLatin1String(atResponseName(r.result)),
                 false);
        }
        return;
    case State::PhaseBConnect:
        if (r.is(AtResponse::Connect)) {
            enter(State::PhaseBFrame);
        } else if (m_t1.elapsed() > kT1Ms) {
            fail(FaxError::NoAnswerT1, QStringLiteral("no DIS from the called station"));
        } else if (r.is(AtResponse::Timeout)) {
            enter(State::PhaseBConnect);
        } else {
            // An immediate ERROR or NO CARRIER (a carrier that is not V.21, noise): listen again a moment later
            // rather than ask the modem thousands of times until T1.
            QTimer::singleShot(kRelistenMs, this, [this] {
                if (!isFinished() && m_state == State::PhaseBConnect)
                    enter(State::PhaseBConnect);
            });
        }
        return;
    case State::PhaseBFrame:
        onPhaseBFrame(r);
        return;
    case State::TsiSilence:
        enter(State::TsiConnect);
        return;
    case State::TsiConnect:
        if (r.is(AtResponse::Connect))
            enter(job().stationId.trimmed().isEmpty() ? State::DcsSent : State::TsiSent);
        else
            fail(FaxError::PhaseBError, QStringLiteral("+FTH answered ") + QLatin1String(atResponseName(r.result)),
                 false);
        return;
    case State::TsiSent:
        if (r.is(AtResponse::Connect))
            enter(State::DcsSent);
        else
            fail(FaxError::PhaseBError, QStringLiteral("TSI answered ") + QLatin1String(atResponseName(r.result)),
                 false);
        return;
    case State::DcsSent:
        ++m_dcsTries;
        if (r.is(AtResponse::Ok))
            enter(State::TcfPause);
        else
            fail(FaxError::PhaseBError, QStringLiteral("DCS answered ") + QLatin1String(atResponseName(r.result)),
                 false);
        return;
    case State::TcfPause:
        enter(State::TcfConnect);
        return;
    case State::TcfConnect:
        if (r.is(AtResponse::Connect))
            enter(State::TcfSent);
        else
            fail(FaxError::PhaseBError, QStringLiteral("+FTM answered ") + QLatin1String(atResponseName(r.result)),
                 false);
        return;
    case State::TcfSent:
        if (r.is(AtResponse::Ok))
            enter(State::TrainingConnect);
        else
            fail(FaxError::PhaseBError, QStringLiteral("TCF answered ") + QLatin1String(atResponseName(r.result)),
                 false);
        return;
    case State::TrainingConnect:
        if (r.is(AtResponse::Connect))
            enter(State::TrainingFrame);
        else if (m_dcsTries < kMaxCommandTries)
            retrain(false);
        else
            fail(FaxError::DcsNoResponse, QStringLiteral("no answer to DCS"));
        return;
    case State::TrainingFrame:
        onTrainingFrame(r);
        return;
    case State::PagePause:
        enter(State::PageConnect);
        return;
    case State::PageConnect:
        if (r.is(AtResponse::Connect))
            enter(State::PageSent);
        else
            fail(FaxError::PhaseCError, QStringLiteral("+FTM answered ") + QLatin1String(atResponseName(r.result)),
                 false);
        return;
    case State::PageSent:
        if (r.is(AtResponse::Ok))
            enter(State::PostPagePause);
        else
            fail(FaxError::PhaseCError, QStringLiteral("page data answered ") + QLatin1String(atResponseName(r.result)),
                 false);
        return;
    case State::PostPagePause:
        enter(State::PostPageConnect);
        return;
    case State::PostPageConnect:
        if (r.is(AtResponse::Connect))
            enter(State::PostPageSent);
        else
            fail(FaxError::PhaseDError, QStringLiteral("+FTH answered ") + QLatin1String(atResponseName(r.result)),
                 false);
        return;
    case State::PostPageSent:
        ++m_postTries;
        if (r.is(AtResponse::Ok))
            enter(State::ResponseConnect);
        else
            fail(FaxError::PhaseDError,
                 QStringLiteral("post-page command answered ") + QLatin1String(atResponseName(r.result)), false);
        return;
    case State::ResponseConnect:
        if (r.is(AtResponse::Connect))
            enter(State::ResponseFrame);
        else
            noPostPageResponse();
        return;
    case State::ResponseFrame:
        onResponseFrame(r);
        return;
    case State::DcnConnect:
        enter(r.is(AtResponse::Connect) ? State::DcnSent : State::Hangup);
        return;
    case State::DcnSent:
        enter(State::Hangup);
        return;
    case State::Hangup:
        m_state = State::Done;
        finish();
        return;
    }
}

void Class1Session::onPhaseBFrame(const AtReply &r)
{
    const T30Frame frame = T30Frame::fromReceived(r.data);
    if (!r.is(AtResponse::Ok) || !frame.isValid()) {
        // A damaged frame or none: listen on; the called station repeats DIS until T1 (T.30).
        if (m_t1.elapsed() > kT1Ms)
            fail(FaxError::NoAnswerT1, QStringLiteral("no DIS from the called station"));
        else
            enter(State::PhaseBConnect);
        return;
    }
    Q_EMIT message(QStringLiteral("--- received ") + QLatin1String(T30Frame::fcfName(frame.fcf())));
    switch (frame.fcf()) {
    case Fcf::CSI:
        m_remoteId = T30Frame::decodeIdent(frame.info());
        break;
    case Fcf::DIS:
        m_remote = RemoteCapabilities::fromDis(frame.info());
        Q_EMIT message(QStringLiteral("--- DIS: ") + m_remote.describe());
        break;
    case Fcf::DCN:
        fail(FaxError::PhaseBError, QStringLiteral("the remote station disconnected"), false);
        return;
    default:
        break;
    }
    if (!frame.isFinal() || !m_remote.valid)
        enter(State::PhaseBConnect);
    else
        afterDis();
}

void Class1Session::afterDis()
{
    if (!m_remote.canReceive) {
        fail(FaxError::RemoteCannotReceive, QStringLiteral("DIS offers no reception"));
        return;
    }
    if (!m_mod) {
        m_mod = T30Params::choose(m_modemCodes, m_remote);
        if (!m_mod) {
            fail(FaxError::NoCommonModulation, QStringLiteral("DIS ") + m_remote.describe());
            return;
        }
    }
    const bool pageFine = pageCount() > 0 && job().document->page(0).fine;
    m_fine = pageFine && m_remote.fine;
    m_twoD = m_remote.twoD;
    m_minScanMs = m_remote.minScanMsFor(m_fine);
    m_dcsTries = 0;
    retrain(false);
}

void Class1Session::retrain(bool fallBack)
{
    if (fallBack) {
        const FaxModulation *lower = T30Params::choose(m_modemCodes, m_remote, m_mod->bitRate - 1);
        if (!lower) {
            fail(FaxError::TrainingFailed, QStringLiteral("no lower rate after %1 bit/s").arg(m_mod->bitRate));
            return;
        }
        Q_EMIT notice(
            QStringLiteral("Training failed at %1 bit/s, trying %2 bit/s").arg(m_mod->bitRate).arg(lower->bitRate));
        m_mod = lower;
        m_dcsTries = 0;
    }
    Q_EMIT status(FaxStatus::Training, QStringLiteral("Training at %1 bit/s").arg(m_mod->bitRate));
    enter(State::TsiSilence);
}

void Class1Session::onTrainingFrame(const AtReply &r)
{
    const T30Frame frame = T30Frame::fromReceived(r.data);
    if (!r.is(AtResponse::Ok) || !frame.isValid()) {
        if (m_dcsTries < kMaxCommandTries)
            retrain(false);
        else
            fail(FaxError::DcsNoResponse, QStringLiteral("no valid answer to DCS"));
        return;
    }
    Q_EMIT message(QStringLiteral("--- received ") + QLatin1String(T30Frame::fcfName(frame.fcf())));
    switch (frame.fcf()) {
    case Fcf::CFR:
        // Reported again when a fall-back changed the rate: the log and the completion carry the one used.
        if (!m_negotiated || m_negotiatedRate != m_mod->bitRate) {
            m_negotiated = true;
            m_negotiatedRate = m_mod->bitRate;
            Q_EMIT negotiated(rateText(), m_fine ? QStringLiteral("Fine") : QStringLiteral("Normal"), m_remoteId);
        }
        startPage();
        return;
    case Fcf::FTT:
        retrain(true);
        return;
    case Fcf::CSI:
    case Fcf::NSF:
        // The called station did not take our DCS and sends its identification and DIS again.
        if (frame.fcf() == Fcf::CSI)
            m_remoteId = T30Frame::decodeIdent(frame.info());
        enter(State::TrainingConnect);
        return;
    case Fcf::DIS:
        if (++m_disCount >= kMaxCommandTries)
            fail(FaxError::DisRepeated, QStringLiteral("DIS repeated after DCS"));
        else
            retrain(false);
        return;
    case Fcf::CRP:
        retrain(false);
        return;
    case Fcf::DCN:
        fail(FaxError::PhaseBError, QStringLiteral("the remote station disconnected"), false);
        return;
    default:
        fail(FaxError::PhaseBError, QStringLiteral("unexpected ") + QLatin1String(T30Frame::fcfName(frame.fcf())));
        return;
    }
}

void Class1Session::startPage()
{
    const int minBytes = T30Params::minBytesPerLine(m_mod->bitRate, m_minScanMs);
    // T.4 4.2.1: K = 2 at standard resolution, 4 at fine. The receiver takes the bits as they come: no octet-aligned
    // EOLs, so no fill beyond the minimum scan-line time.
    m_pageData =
        job().document->encodePage(m_page, m_fine, minBytes, true, m_twoD ? (m_fine ? 4 : 2) : 0, false);
    m_postTries = 0;
    Q_EMIT pageStarted(m_page + 1, pageCount());
    Q_EMIT status(FaxStatus::SendingPage, QStringLiteral("Sending page %1 of %2").arg(m_page + 1).arg(pageCount()));
    enter(State::PagePause);
}

void Class1Session::noPostPageResponse()
{
    const bool last = m_page + 1 >= pageCount();
    if (m_postTries < kMaxCommandTries) {
        enter(State::PostPageConnect);
        return;
    }
    fail(last ? FaxError::EopNoResponse : FaxError::MpsNoResponse, QStringLiteral("no answer after the page"));
}

void Class1Session::onResponseFrame(const AtReply &r)
{
    const T30Frame frame = T30Frame::fromReceived(r.data);
    if (!r.is(AtResponse::Ok) || !frame.isValid()) {
        noPostPageResponse();
        return;
    }
    Q_EMIT message(QStringLiteral("--- received ") + QLatin1String(T30Frame::fcfName(frame.fcf())));
    Q_EMIT status(FaxStatus::PageConfirm,
                  QStringLiteral("Page %1: %2").arg(m_page + 1).arg(QLatin1String(T30Frame::fcfName(frame.fcf()))));
    const bool last = m_page + 1 >= pageCount();
    switch (frame.fcf()) {
    case Fcf::MCF:
    case Fcf::PIP: // T.30: the page is good; operator intervention is not offered here
    case Fcf::RTP:
        m_pageRetries = 0;
        ++m_page;
        if (last)
            enter(State::DcnConnect);
        else if (frame.fcf() == Fcf::RTP)
            retrain(false); // T.30: RTP asks for new training before the next page
        else
            startPage();
        return;
    case Fcf::RTN:
    case Fcf::PIN:
        // T.30: the page was not good enough; train again (one rate lower) and send it again.
        if (++m_pageRetries > kMaxPageRetries) {
            fail(FaxError::PageRejected, QStringLiteral("page %1 rejected").arg(m_page + 1));
            return;
        }
        Q_EMIT notice(QStringLiteral("Page %1 not accepted (RTN), sending it again").arg(m_page + 1));
        if (T30Params::choose(m_modemCodes, m_remote, m_mod->bitRate - 1))
            retrain(true);
        else
            retrain(false);
        return;
    case Fcf::CRP:
        if (m_postTries < kMaxCommandTries)
            enter(State::PostPageConnect);
        else
            noPostPageResponse();
        return;
    case Fcf::CSI:
    case Fcf::NSF:
        // The called station is back in phase B: it lost the page (its carrier or training) and announces itself
        // again; its DIS follows.
        if (frame.fcf() == Fcf::CSI)
            m_remoteId = T30Frame::decodeIdent(frame.info());
        enter(State::ResponseConnect);
        return;
    case Fcf::DIS:
        // T.30: DIS after the page means it was not received. Train again, one rate lower when there is one, and
        // send it again.
        if (++m_pageRetries > kMaxPageRetries) {
            fail(FaxError::PageRejected, QStringLiteral("page %1 not received").arg(m_page + 1));
            return;
        }
        m_remote = RemoteCapabilities::fromDis(frame.info());
        m_longTrain = true; // the short training of V.17 is what a poor line loses first
        Q_EMIT notice(QStringLiteral("Page %1 not received (DIS after the page), sending it again").arg(m_page + 1));
        retrain(T30Params::choose(m_modemCodes, m_remote, m_mod->bitRate - 1) != nullptr);
        return;
    case Fcf::DCN:
        fail(FaxError::PhaseDError, QStringLiteral("the remote station disconnected"), false);
        return;
    default:
        fail(last ? FaxError::EopInvalidResponse : FaxError::MpsInvalidResponse,
             QStringLiteral("answer ") + QLatin1String(T30Frame::fcfName(frame.fcf())));
        return;
    }
}

} // namespace osprel
