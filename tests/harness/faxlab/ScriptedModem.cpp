#include "ScriptedModem.h"

#include "Pty.h"

#include <atomic>
#include <mutex>
#include <poll.h>
#include <thread>
#include <unistd.h>

namespace osprel::faxlab {

namespace {
constexpr char kDle = 0x10, kEtx = 0x03;
}

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
            respond((class20() ? "+FCI:\"" : "+FCSI:\"") + opt.remoteId.toLatin1() + "\"");
            if (opt.hangupAt == HangupAt::Dial) {
                hangup("OK");
                return;
            }
            respond((class20() ? "+FIS:" : "+FDIS:") + QByteArray("1,5,0,2,0,0,0,0"));
            respond("OK");
        } else if (cmd == "AT+FDT") {
            if (opt.hangupAt == HangupAt::PageStart) {
                hangup("ERROR");
                return;
            }
            respond((class20() ? "+FCS:" : "+FDCS:") + QByteArray("1,5,0,2,0,0,0,0"));
            respond("CONNECT");
            if (opt.sendXon)
                send(QByteArray(1, 0x11));
            inData = true;
            dataDle = false;
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

    void endPage(char terminator)
    {
        {
            std::lock_guard<std::mutex> lock(mutex);
            result.pages << page;
            result.pageEnds << QByteArray(1, kDle) + terminator;
        }
        inData = false;
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

    void run()
    {
        char buf[4096];
        while (running) {
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
    int eols = 0, zeros = 0;
    for (char byte : t4) {
        for (int bit = 0; bit < 8; ++bit) {
            if (uchar(byte) & (1 << bit)) {
                if (zeros >= 11)
                    ++eols;
                zeros = 0;
            } else {
                ++zeros;
            }
        }
    }
    return eols - 6;
}

} // namespace osprel::faxlab
