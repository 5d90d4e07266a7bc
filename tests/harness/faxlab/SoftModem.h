#pragma once
// A software Class 1 fax modem for tests: spandsp's T.31 modem behind a pseudo-terminal, its audio wired to a spandsp
// T.30 terminal that answers the call and receives the fax into a TIFF file.

#include <QString>
#include <atomic>
#include <memory>
#include <mutex>
#include <thread>

namespace osprel::faxlab {

class SoftModem
{
public:
    // What the far end of the dialled line does.
    enum class Line { Answer, Busy, NoAnswer, NoDialTone };

    struct Options
    {
        QString linkPath;     // the serial port name a host opens
        QString receivedTiff; // where the answering terminal stores the fax
        Line line = Line::Answer;
        QString answerId = QStringLiteral("SOFTMODEM"); // CSI of the answering terminal
        double speedUp = 20;                            // sample clock factor while the host waits on the modem
        double pageHoldSeconds = 1.2; // real time before a page's end may be reported (efax divides by it)
        bool log = false;             // spandsp's own protocol log on stderr
        // A demanding receiver: what it offers in DIS (0 keeps spandsp's defaults). Modems as T30_SUPPORT_V27TER |
        // V29 | V17, resolutions as T30_SUPPORT_STANDARD_RESOLUTION | FINE_RESOLUTION ..., compressions as
        // T30_SUPPORT_T4_1D_COMPRESSION | T4_2D_COMPRESSION, and the minimum scan-line time it asks for in ms.
        int receiverModems = 0;
        int receiverResolutions = 0;
        int receiverCompressions = 0;
        int minScanLineMs = 0;
        // A noisy line: white noise at this level (dBm0; fax signals leave the modem at about -14) from the sender to
        // the receiver while the first noisyTrainings high-speed transmissions (+FTM) go out. 0: a clean line.
        float noiseDbm0 = 0;
        int noisyTrainings = 0;
    };

    struct Result
    {
        int calls = 0;         // ATD commands seen
        QString dialled;       // the last dial string
        bool finished = false; // the answering terminal reached phase E
        int completionCode = -1;
        QString completionText;
        int pages = 0;
        int bitRate = 0;
        int xResolution = 0, yResolution = 0, width = 0, length = 0, badRows = 0;
        QString remoteId;          // the TSI the sender gave
        double virtualSeconds = 0; // virtual time from the dial to phase E
    };

    explicit SoftModem(Options options);
    ~SoftModem();
    SoftModem(const SoftModem &) = delete;
    SoftModem &operator=(const SoftModem &) = delete;

    bool start(QString *error = nullptr);
    void stop();
    const QString &linkPath() const;
    Result result() const;

private:
    struct Impl;
    std::unique_ptr<Impl> d;
};

const char *softModemLineName(SoftModem::Line line);

} // namespace osprel::faxlab
