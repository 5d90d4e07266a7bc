#include "SoftModem.h"

#include "Pty.h"

#include <QFile>
#include <algorithm>
#include <chrono>
#include <cstring>
#include <poll.h>
#include <unistd.h>

#define SPANDSP_EXPOSE_INTERNAL_STRUCTURES
#include <spandsp.h>

namespace osprel::faxlab {

namespace {
using Clock = std::chrono::steady_clock;
constexpr int kBlock = 160;        // 20 ms of 8 kHz audio, wired between the two ends at a time
constexpr int kAnswerDelay = 8000; // the far end picks up after one second of virtual time
constexpr uint8_t kDle = 0x10, kEtx = 0x03;
} // namespace

const char *softModemLineName(SoftModem::Line line)
{
    switch (line) {
    case SoftModem::Line::Answer:
        return "answer";
    case SoftModem::Line::Busy:
        return "busy";
    case SoftModem::Line::NoAnswer:
        return "no answer";
    case SoftModem::Line::NoDialTone:
        return "no dial tone";
    }
    return "?";
}

struct SoftModem::Impl
{
    Options opt;
    Pty pty;
    std::thread thread;
    std::atomic<bool> running{false};
    mutable std::mutex mutex;
    Result result;

    t31_state_t *t31 = nullptr;
    fax_state_t *fax = nullptr;
    bool cts = true;

    // What the host is doing, seen from the modem: the pacing depends on it.
    QByteArray cmdLine, lastCmd, outLine;
    bool hostWaiting = false; // the host has asked and not yet been answered
    bool hostDle = false;
    bool txPhase = false;           // between CONNECT of +FTM and its final result
    Clock::time_point txPhaseStart; // CONNECT, then the end of the host's data (DLE ETX)

    int64_t samples = 0;
    int64_t callStart = 0;
    int64_t answerAt = -1;
    bool hangupPending = false;

    awgn_state_t *noise = nullptr;
    int noisyLeft = 0;  // high-speed transmissions still to be disturbed
    bool noisy = false; // one is going out now
    bool fast = false;
    Clock::time_point wallRef;
    int64_t samplesRef = 0;

    static int atTx(at_state_t *, void *user, const uint8_t *buf, size_t len)
    {
        auto *self = static_cast<Impl *>(user);
        self->pty.writeAll(reinterpret_cast<const char *>(buf), len);
        self->watchModemOutput(buf, len);
        return 0;
    }

    static int modemControl(t31_state_t *, void *user, int op, const char *num)
    {
        auto *self = static_cast<Impl *>(user);
        switch (op) {
        case AT_MODEM_CONTROL_CALL: {
            std::lock_guard<std::mutex> lock(self->mutex);
            self->result.calls++;
            self->result.dialled = QString::fromLatin1(num ? num : "");
            self->answerAt = self->samples + kAnswerDelay;
            self->callStart = self->samples;
            break;
        }
        case AT_MODEM_CONTROL_HANGUP:
        case AT_MODEM_CONTROL_ONHOOK:
            self->hangupPending = true;
            self->answerAt = -1;
            break;
        case AT_MODEM_CONTROL_CTS:
            // T.31 flow control: stop reading the host while its buffer is nearly full; the pty pushes back.
            self->cts = num != nullptr;
            break;
        default:
            break;
        }
        return 0;
    }

    static void phaseE(t30_state_t *t30, void *user, int completion)
    {
        auto *self = static_cast<Impl *>(user);
        t30_stats_t st{};
        t30_get_transfer_statistics(t30, &st);
        std::lock_guard<std::mutex> lock(self->mutex);
        Result &r = self->result;
        r.finished = true;
        r.completionCode = completion;
        r.completionText = QString::fromLatin1(t30_completion_code_to_str(completion));
        r.pages = st.pages_rx;
        r.bitRate = st.bit_rate;
        r.xResolution = st.x_resolution;
        r.yResolution = st.y_resolution;
        r.width = st.width;
        r.length = st.length;
        r.badRows = st.bad_rows;
        r.remoteId = QString::fromLatin1(t30_get_rx_ident(t30)).trimmed();
        r.virtualSeconds = double(self->samples - self->callStart) / SAMPLE_RATE;
    }

    // Commands and the end of data from the host put the modem in charge of time; result codes give it back.
    void watchHostInput(const uint8_t *buf, int len)
    {
        const int mode = t31->at_state.at_rx_mode;
        for (int i = 0; i < len; ++i) {
            const uint8_t c = buf[i];
            if (mode == AT_MODE_ONHOOK_COMMAND || mode == AT_MODE_OFFHOOK_COMMAND) {
                if (c == '\r') {
                    lastCmd = cmdLine.trimmed().toUpper();
                    cmdLine.clear();
                    if (!lastCmd.isEmpty())
                        hostWaiting = true;
                } else if (c >= 0x20 && c < 0x7f) {
                    cmdLine += char(c);
                }
            } else if (mode == AT_MODE_HDLC || mode == AT_MODE_STUFFED) {
                if (hostDle) {
                    hostDle = false;
                    if (c == kEtx) {
                        hostWaiting = true;
                        if (txPhase)
                            txPhaseStart = Clock::now();
                    }
                } else if (c == kDle) {
                    hostDle = true;
                }
            } else {
                hostWaiting = true; // any byte aborts a reception; the modem answers OK
            }
        }
    }

    void watchModemOutput(const uint8_t *buf, size_t len)
    {
        for (size_t i = 0; i < len; ++i) {
            const char c = char(buf[i]);
            if (c != '\n') {
                if (c != '\r' && outLine.size() < 64)
                    outLine += c;
                continue;
            }
            const QByteArray line = outLine;
            outLine.clear();
            if (line == "CONNECT") {
                if (lastCmd.startsWith("AT+FTM")) {
                    noisy = noise && noisyLeft > 0;
                    txPhase = true;
                    txPhaseStart = Clock::now();
                    hostWaiting = false;
                } else if (lastCmd.startsWith("AT+FTH")) {
                    hostWaiting = false;
                }
                // After a receive command or a dial the host keeps waiting for the data.
            } else if (line == "OK" || line == "ERROR" || line == "NO CARRIER" || line == "BUSY" ||
                       line == "NO ANSWER" || line == "NO DIALTONE" || line == "+FCERROR") {
                hostWaiting = false;
                txPhase = false;
                if (noisy) {
                    noisy = false;
                    --noisyLeft;
                }
            }
        }
    }

    void answer()
    {
        answerAt = -1;
        switch (opt.line) {
        case Line::Busy:
            t31_call_event(t31, AT_CALL_EVENT_BUSY);
            return;
        case Line::NoAnswer:
            t31_call_event(t31, AT_CALL_EVENT_NO_ANSWER);
            return;
        case Line::NoDialTone:
            t31_call_event(t31, AT_CALL_EVENT_NO_DIALTONE);
            return;
        case Line::Answer:
            break;
        }
        fax = fax_init(nullptr, FALSE);
        t30_state_t *t30 = fax_get_t30_state(fax);
        const QByteArray tiff = QFile::encodeName(opt.receivedTiff);
        const QByteArray id = opt.answerId.toLatin1();
        t30_set_rx_file(t30, tiff.constData(), -1);
        t30_set_tx_ident(t30, id.constData());
        t30_set_supported_modems(t30, opt.receiverModems ? opt.receiverModems
                                                         : T30_SUPPORT_V27TER | T30_SUPPORT_V29 | T30_SUPPORT_V17);
        if (opt.receiverResolutions)
            t30_set_supported_resolutions(t30, opt.receiverResolutions);
        if (opt.receiverCompressions)
            t30_set_supported_compressions(t30, opt.receiverCompressions);
        if (opt.minScanLineMs)
            t30_set_minimum_scan_line_time(t30, opt.minScanLineMs);
        t30_set_ecm_capability(t30, FALSE);
        t30_set_phase_e_handler(t30, &Impl::phaseE, this);
        fax_set_transmit_on_idle(fax, TRUE);
        if (opt.log) {
            const int level = SPAN_LOG_SHOW_SEVERITY | SPAN_LOG_SHOW_PROTOCOL | SPAN_LOG_FLOW;
            span_log_set_level(fax_get_logging_state(fax), level);
            span_log_set_level(t30_get_logging_state(t30), level);
        }
        // CONNECTED, not ANSWERED: ANSWERED means we answered an incoming call and would make the modem send CED.
        t31_call_event(t31, AT_CALL_EVENT_CONNECTED);
    }

    void hangUp()
    {
        hangupPending = false;
        if (!fax)
            return;
        t30_terminate(fax_get_t30_state(fax));
        fax_free(fax);
        fax = nullptr;
    }

    void processBlock()
    {
        int16_t toFar[kBlock];
        int16_t fromFar[kBlock];
        int n = t31_tx(t31, toFar, kBlock);
        if (n < kBlock)
            std::memset(toFar + n, 0, sizeof(int16_t) * size_t(kBlock - n));
        if (noisy)
            for (int16_t &sample : toFar)
                sample = int16_t(std::clamp(int(sample) + int(awgn(noise)), -32768, 32767));
        if (fax) {
            fax_rx(fax, toFar, kBlock);
            n = fax_tx(fax, fromFar, kBlock);
        } else {
            n = 0;
        }
        if (n < kBlock)
            std::memset(fromFar + n, 0, sizeof(int16_t) * size_t(kBlock - n));
        t31_rx(t31, fromFar, kBlock);
        samples += kBlock;
        if (answerAt >= 0 && samples >= answerAt)
            answer();
        if (hangupPending)
            hangUp();
    }

    // Real time while the host holds the floor (it must answer within T.30's timers); faster while the host waits on
    // the modem or has queued data for it. The start of a transmission and the end of the host's data are held for
    // a little real time: a sender that divides by the page's whole seconds must not divide by zero.
    bool wantFast() const
    {
        if (txPhase && Clock::now() - txPhaseStart < std::chrono::duration<double>(opt.pageHoldSeconds))
            return false;
        const int queued = t31->tx.in_bytes - t31->tx.out_bytes;
        return hostWaiting || queued > 256;
    }

    void readHost()
    {
        uint8_t buf[256];
        int total = 0;
        while (cts && total < 1024) {
            const ssize_t n = ::read(pty.masterFd(), buf, sizeof buf);
            if (n <= 0)
                break;
            watchHostInput(buf, int(n));
            t31_at_rx(t31, reinterpret_cast<const char *>(buf), int(n));
            total += int(n);
        }
    }

    void run()
    {
        wallRef = Clock::now();
        samplesRef = samples;
        while (running) {
            readHost();
            const bool wanted = wantFast();
            const auto now = Clock::now();
            if (wanted != fast) {
                // Drop any speed-up credit: the new rate counts from now.
                fast = wanted;
                wallRef = now;
                samplesRef = samples;
            }
            const double factor = fast ? opt.speedUp : 1.0;
            const double elapsed = std::chrono::duration<double>(now - wallRef).count();
            int64_t due = samplesRef + int64_t(elapsed * SAMPLE_RATE * factor);
            if (due - samples > SAMPLE_RATE / 5) {
                // We fell behind (a slow machine): do not burst to catch up.
                wallRef = now;
                samplesRef = samples;
                due = samples + kBlock;
            }
            int batch = 0;
            while (samples + kBlock <= due && batch < 10) {
                processBlock();
                ++batch;
            }
            if (batch == 0) {
                const double waitMs = double(samples + kBlock - due) * 1000.0 / (SAMPLE_RATE * factor);
                pollfd p{pty.masterFd(), short(cts ? POLLIN : 0), 0};
                ::poll(&p, 1, std::max(1, std::min(20, int(waitMs))));
            }
        }
        hangUp();
    }
};

SoftModem::SoftModem(Options options) : d(std::make_unique<Impl>())
{
    d->opt = std::move(options);
}

SoftModem::~SoftModem()
{
    stop();
}

bool SoftModem::start(QString *error)
{
    if (d->running)
        return true;
    if (!d->pty.open(d->opt.linkPath, error))
        return false;
    d->t31 = t31_init(nullptr, &Impl::atTx, d.get(), &Impl::modemControl, d.get(), nullptr, nullptr);
    if (!d->t31) {
        if (error)
            *error = QStringLiteral("t31_init failed");
        return false;
    }
    if (d->opt.noiseDbm0 != 0 && d->opt.noisyTrainings > 0) {
        d->noise = awgn_init_dbm0(nullptr, 1234567, d->opt.noiseDbm0);
        d->noisyLeft = d->opt.noisyTrainings;
    }
    if (d->opt.log)
        span_log_set_level(t31_get_logging_state(d->t31),
                           SPAN_LOG_SHOW_SEVERITY | SPAN_LOG_SHOW_PROTOCOL | SPAN_LOG_FLOW);
    d->running = true;
    d->thread = std::thread([this] { d->run(); });
    return true;
}

void SoftModem::stop()
{
    if (d->running) {
        d->running = false;
        d->thread.join();
    }
    if (d->t31) {
        t31_free(d->t31);
        d->t31 = nullptr;
    }
    if (d->noise) {
        awgn_free(d->noise);
        d->noise = nullptr;
    }
    d->pty.close();
}

const QString &SoftModem::linkPath() const
{
    return d->opt.linkPath;
}

SoftModem::Result SoftModem::result() const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->result;
}

} // namespace osprel::faxlab
