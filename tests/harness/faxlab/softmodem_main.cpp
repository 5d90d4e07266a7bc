// osprel-softmodem: the test suite's software Class 1 fax modem as a program, for trying a sender by hand.
//   osprel-softmodem --link /tmp/faxmodem --out received.tif [--line answer|busy|noanswer|nodialtone] [--log]
// Runs until interrupted, then prints what the answering terminal received.

#include "SoftModem.h"

#include <QCoreApplication>
#include <QStringList>
#include <csignal>
#include <cstdio>
#include <unistd.h>

using osprel::faxlab::SoftModem;

namespace {
volatile std::sig_atomic_t g_stop = 0;
void onSignal(int)
{
    g_stop = 1;
}
} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    SoftModem::Options opt;
    opt.linkPath = QStringLiteral("/tmp/osprel-faxmodem");
    opt.receivedTiff = QStringLiteral("received.tif");
    const QStringList args = app.arguments();
    for (int i = 1; i < args.size(); ++i) {
        const QString &a = args.at(i);
        const QString next = i + 1 < args.size() ? args.at(i + 1) : QString();
        if (a == QLatin1String("--link")) {
            opt.linkPath = next;
            ++i;
        } else if (a == QLatin1String("--out")) {
            opt.receivedTiff = next;
            ++i;
        } else if (a == QLatin1String("--line")) {
            ++i;
            if (next == QLatin1String("busy"))
                opt.line = SoftModem::Line::Busy;
            else if (next == QLatin1String("noanswer"))
                opt.line = SoftModem::Line::NoAnswer;
            else if (next == QLatin1String("nodialtone"))
                opt.line = SoftModem::Line::NoDialTone;
        } else if (a == QLatin1String("--log")) {
            opt.log = true;
        } else {
            std::fprintf(stderr,
                         "usage: %s --link PATH --out FILE.tif [--line answer|busy|noanswer|nodialtone] "
                         "[--log]\n",
                         argv[0]);
            return 2;
        }
    }
    SoftModem modem(opt);
    QString error;
    if (!modem.start(&error)) {
        std::fprintf(stderr, "%s\n", qPrintable(error));
        return 1;
    }
    std::signal(SIGINT, onSignal);
    std::signal(SIGTERM, onSignal);
    std::printf("soft modem on %s (line: %s)\n", qPrintable(opt.linkPath), softModemLineName(opt.line));
    std::fflush(stdout);
    while (!g_stop)
        ::pause();
    modem.stop();
    const SoftModem::Result r = modem.result();
    std::printf("calls=%d dialled=%s finished=%d completion=%d (%s) pages=%d rate=%d res=%dx%d width=%d badrows=%d "
                "remote=\"%s\" virtual=%.1fs\n",
                r.calls, qPrintable(r.dialled), r.finished, r.completionCode, qPrintable(r.completionText), r.pages,
                r.bitRate, r.xResolution, r.yResolution, r.width, r.badRows, qPrintable(r.remoteId), r.virtualSeconds);
    return 0;
}
