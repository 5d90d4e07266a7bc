#include "ScriptedModem.h"

#include "Pty.h"

#include <atomic>
#include <chrono>
#include <mutex>
#include <poll.h>
#include <thread>
#include <unistd.h>

namespace osprel::faxlab {

namespace {
constexpr char kDle = 0x10, kEtx = 0x03, kXon = 0x11, kXoff = 0x13;
using Clock = std::chrono::steady_clock;
// After XOFF: how long the modem waits before taking what was already on the wire, and how long it then stays
// deaf before XON. A host that honours XOFF sends nothing in the second span.
constexpr auto kXoffSettle = std::chrono::milliseconds(50);
constexpr auto kXoffDeaf = std::chrono::milliseconds(50);
constexpr int kInFlightMax = 16384;
} // namespace

struct ScriptedModem::Impl
{
    Options opt;
    Pty pty;
    std::thread thread;
    std::atomic<bool> running{false};
    mutable std::mutex mutex;
    Result result;

    bool echo = true;
    QByteArray mode = "0"; // +FCLASS
    QByteArray line;
    bool inData = false, dataDle = false;
    QByteArray page;
    int pagesLeftHint = 0;
    int fnr[4] = {0, 0, 0, 0}; // +FNR: receiver parameters, session parameters, identification, NSF
    enum class Flow { On, Settle, Deaf } flow = Flow::On;
    Clock::time_point flowUntil;
    int sinceXon = 0;

    bool class20() const { return mode == "2.0"; }

    void send(const QByteArray &text) { pty.writeAll(text.constData(), size_t(text.size())); }
    void respond(const QByteArray &text) { send("\r\n" + text + "\r\n"); }

    void hangup(const char *finalCode)
    {
        respond((class20() ? "+FHS:" : "+FHNG:") + QByteArray::number(opt.hangupCode));
        respond(finalCode);
        mode = "0";
    }

    void command(const QByteArray &raw)
    {
        const QByteArray cmd = raw.trimmed().toUpper();
        {
            std::lock_guard<std::mutex> lock(mutex);
            result.commands << QString::fromLatin1(raw.trimmed());
        }
        if (echo)
            send(raw + "\r");
        if (!cmd.startsWith("AT"))
            return;
        if (cmd.contains("E0"))
            echo = false;
        if (cmd == "AT+FCLASS=?") {
            if (opt.classes.isEmpty())
                return; // not a modem at all: silence
            respond(opt.classes);
            respond("OK");
        } else if (cmd == "AT+FCLASS?") {
            respond(mode);
            respond("OK");
        } else if (cmd.startsWith("AT+FCLASS=")) {
            const QByteArray want = cmd.mid(10);
            const QList<QByteArray> offered = opt.classes.split(',');
            if (offered.contains(want) || want == "0") {
                mode = want;
                respond("OK");
            } else {
                respond("ERROR");
            }
        } else if (cmd.startsWith("AT+FNR=")) {
            const QList<QByteArray> v = cmd.mid(7).split(',');
            for (int i = 0; i < 4; ++i)
                fnr[i] = i < v.size() ? v.at(i).toInt() : 0;
            respond("OK");
        } else if (cmd.startsWith("AT+FLID=") || cmd.startsWith("AT+FLI=")) {
            const int a = raw.indexOf('"'), b = raw.lastIndexOf('"');
            std::lock_guard<std::mutex> lock(mutex);
            result.localId = a >= 0 && b > a ? QString::fromLatin1(raw.mid(a + 1, b - a - 1)).trimmed() : QString();
            respond("OK");
        } else if (cmd.startsWith("ATD")) {
            if (mode != "2" && mode != "2.0") {
                respond("NO CARRIER");
                return;
            }
            respond(class20() ? "+FCO" : "+FCON");
            if (reports(2))
                respond((class20() ? "+FCI:\"" : "+FCSI:\"") + opt.remoteId.toLatin1() + "\"");
            if (opt.hangupAt == HangupAt::Dial) {
                hangup("OK");
                return;
            }
            if (reports(0))
                respond((class20() ? "+FIS:" : "+FDIS:") + QByteArray("1,5,0,2,0,0,0,0"));
            respond("OK");
        } else if (cmd == "AT+FDT") {
            if (opt.hangupAt == HangupAt::PageStart) {
                hangup("ERROR");
                return;
            }
            if (reports(1))
                respond((class20() ? "+FCS:" : "+FDCS:") + opt.session);
            respond("CONNECT");
            if (opt.sendXon)
                send(QByteArray(1, 0x11));
            inData = true;
            dataDle = false;
            sinceXon = 0;
            page.clear();
        } else if (cmd.startsWith("AT+FET=")) {
            const bool last = cmd.endsWith('2');
            respond("+FPTS:1");
            if (opt.hangupAt == HangupAt::PageEnd) {
                hangup("OK");
                return;
            }
            if (last)
                respond("+FHNG:0");
            respond("OK");
        } else {
            respond("OK");
        }
    }

    bool reports(int what) const { return !class20() || !opt.reportsOnlyAfterFnr || fnr[what] != 0; }

    void endPage(char terminator)
    {
        {
            std::lock_guard<std::mutex> lock(mutex);
            result.pages << page;
            result.pageEnds << QByteArray(1, kDle) + terminator;
        }
        inData = false;
        sinceXon = 0;
        if (flow != Flow::On) {
            // The page is complete: whatever held the data back is over.
            flow = Flow::On;
            send(QByteArray(1, kXon));
        }
        if (!class20()) {
            respond("OK");
            return;
        }
        respond("+FPS:1");
        if (opt.hangupAt == HangupAt::PageEnd) {
            hangup("OK");
            return;
        }
        if (terminator == '.')
            respond("+FHS:0");
        respond("OK");
    }

    void input(const char *buf, int len)
    {
        for (int i = 0; i < len; ++i) {
            const char c = buf[i];
            if (inData) {
                if (dataDle) {
                    dataDle = false;
                    if (c == kDle)
                        page += kDle;
                    else if (c == kEtx || c == ',' || c == '.')
                        endPage(c);
                } else if (c == kDle) {
                    dataDle = true;
                } else {
                    page += c;
                }
                if (inData && opt.xoffAfter > 0 && flow == Flow::On && ++sinceXon >= opt.xoffAfter) {
                    send(QByteArray(1, kXoff));
                    flow = Flow::Settle;
                    flowUntil = Clock::now() + kXoffSettle;
                    std::lock_guard<std::mutex> lock(mutex);
                    ++result.xoffs;
                }
                continue;
            }
            if (c == '\r') {
                if (!line.trimmed().isEmpty())
                    command(line);
                line.clear();
            } else if (c != '\n' && line.size() < 256) {
                line += c;
            }
        }
    }

    // XOFF sent: wait, take what was on the wire, then lose whatever the host still sends until XON.
    void flowControl(char *buf, size_t size)
    {
        if (Clock::now() < flowUntil) {
            if (flow == Flow::Deaf) {
                pollfd p{pty.masterFd(), POLLIN, 0};
                if (::poll(&p, 1, 5) > 0) {
                    const ssize_t n = ::read(pty.masterFd(), buf, size);
                    std::lock_guard<std::mutex> lock(mutex);
                    result.dropped += int(qMax<ssize_t>(0, n));
                }
            } else {
                ::usleep(2000);
            }
            return;
        }
        if (flow == Flow::Settle) {
            int taken = 0;
            ssize_t n;
            while (taken < kInFlightMax && (n = ::read(pty.masterFd(), buf, size)) > 0) {
                input(buf, int(n));
                taken += int(n);
            }
            if (flow == Flow::Settle) { // the page did not end with what was on the wire
                flow = Flow::Deaf;
                flowUntil = Clock::now() + kXoffDeaf;
            }
            return;
        }
        flow = Flow::On;
        sinceXon = 0;
        send(QByteArray(1, kXon));
    }

    void run()
    {
        char buf[4096];
        while (running) {
            if (flow != Flow::On) {
                flowControl(buf, sizeof buf);
                continue;
            }
            pollfd p{pty.masterFd(), POLLIN, 0};
            if (::poll(&p, 1, 20) <= 0)
                continue;
            const ssize_t n = ::read(pty.masterFd(), buf, sizeof buf);
            if (n > 0)
                input(buf, int(n));
        }
    }
};

ScriptedModem::ScriptedModem(Options options) : d(std::make_unique<Impl>())
{
    d->opt = std::move(options);
}

ScriptedModem::~ScriptedModem()
{
    stop();
}

bool ScriptedModem::start(QString *error)
{
    if (!d->pty.open(d->opt.linkPath, error))
        return false;
    d->running = true;
    d->thread = std::thread([this] { d->run(); });
    return true;
}

void ScriptedModem::stop()
{
    if (d->running) {
        d->running = false;
        d->thread.join();
    }
    d->pty.close();
}

const QString &ScriptedModem::linkPath() const
{
    return d->opt.linkPath;
}

ScriptedModem::Result ScriptedModem::result() const
{
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->result;
}

int ScriptedModem::countLines(const QByteArray &t4)
{
    // A coded line always holds a 1 bit before its EOL (every MH code word has one); the first EOL and the extra
    // EOLs of RTC follow nothing but fill.
    int lines = 0, zeros = 0;
    bool coded = false;
    for (char byte : t4) {
        for (int bit = 0; bit < 8; ++bit) {
            if (uchar(byte) & (1 << bit)) {
                if (zeros >= 11) {
                    lines += coded ? 1 : 0;
                    coded = false;
                } else {
                    coded = true;
                }
                zeros = 0;
            } else {
                ++zeros;
            }
        }
    }
    return lines;
}

} // namespace osprel::faxlab
