// bench-fax: what a fax page costs. Rendering and coding one notification page beside Debian's efix on the same
// text, in the same run; coding it for the line with our T.4 coder beside spandsp's t4_tx on the same image file;
// and one page sent through the software fax modem, beside the line's own limit (the page's bits at the negotiated
// rate). Prints figures; not a test.

#include "FaxDocument.h"
#include "FaxEngine.h"
#include "FaxTextRenderer.h"
#include "FaxTiffWriter.h"
#include "SoftModem.h"
#include "T30Params.h"

#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFileInfo>
#include <QGuiApplication>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>
#include <cstdio>

#include <spandsp.h>

using namespace osprel;
using osprel::faxlab::SoftModem;

namespace {
constexpr int kRuns = 20;

// A notification page as the server writes it: the address header and the 27 lines.
void writePage(const QString &path)
{
    QFile f(path);
    if (!f.open(QIODevice::WriteOnly))
        return;
    f.write("To: Al Roe\r\nFax Number: 5550002222\r\n\r\nChamber Notification\r\n\r\nChamber Information:\r\n");
    const char *labels[] = {
        "Alert ID: 31", "Chamber ID: 4",          "Chamber Name: Chamber 4", "Chamber Description: Walk-in",
        "On / Off: On", "Controller Name: QLM V", "Configuration: T/H",      "Status: Running",
        "Logging: Yes"};
    for (const char *label : labels)
        f.write(QByteArray("\t") + label + "\r\n");
    f.write("Alarm Information:\r\n\tError Code: 999\r\n\tError Message: CH1 actual high\r\n");
    f.write("\tAlarm Category: CHAMBER_ALARM\r\n\tAlarm Time: 9:55 pm\r\nChannel 1 Data:\r\n");
    for (const char *line : {"\tCH1 Set Point: 85", "\tCH1 Actual: 91", "\tCH1 Heat PID: 100", "\tCH1 Cool PID: 0"})
        f.write(QByteArray(line) + "\r\n");
    f.write("Channel 2 Data:\r\n");
    for (const char *line :
         {"\tCH2 Set Point: 60", "\tCH2 Actual: 58", "\tCH2 Heat/Humidify PID: 40", "\tCH2 Cool/Dehumidify PID: 0"})
        f.write(QByteArray(line) + "\r\n");
    f.write("\r\n");
}

// The first page of an image file coded for the line by spandsp's T.4 coder, as the engine would get it if it used
// t4_tx instead of its own coder: EOLs and RTC, no minimum row length, no header line.
QByteArray spandspPageData(const QString &tiff, int encoding)
{
    t4_tx_state_t *t4 = t4_tx_init(nullptr, QFile::encodeName(tiff).constData(), 0, 0);
    if (!t4)
        return QByteArray();
    t4_tx_set_tx_encoding(t4, encoding);
    t4_tx_set_min_bits_per_row(t4, 0);
    t4_tx_set_header_info(t4, nullptr);
    QByteArray data;
    if (t4_tx_start_page(t4) == 0) {
        uint8_t chunk[4096];
        int n = 0;
        do {
            n = t4_tx_get_chunk(t4, chunk, int(sizeof chunk));
            data.append(reinterpret_cast<const char *>(chunk), n);
        } while (n == int(sizeof chunk));
        t4_tx_end_page(t4);
    }
    t4_tx_free(t4);
    return data;
}

qint64 folderSize(const QString &folder, const QString &pattern)
{
    qint64 size = 0;
    for (const QFileInfo &info : QDir(folder).entryInfoList({pattern}, QDir::Files))
        size += info.size();
    return size;
}

// One page through the software modem; the wall time from send() to the completion, and what the line did.
// The page as it was before pages were trimmed: the same text on 11 inches of paper.
QString untrimmedCopy(const QString &image, const QString &folder)
{
    FaxDocument doc;
    if (!doc.open(image, nullptr) || doc.pageCount() == 0)
        return QString();
    FaxPageImage page = doc.page(0);
    page.bits.append(QByteArray(qsizetype(FaxTextRenderer::kRows - page.rows) * FaxPageImage::kRowBytes, '\0'));
    page.rows = FaxTextRenderer::kRows;
    const QString path = folder + QStringLiteral("/untrimmed.fmf");
    return FaxTiffWriter::write(path, {page}, nullptr) ? path : QString();
}

bool sendOnePage(const QString &image, const QString &folder, int scanLineMs)
{
    SoftModem::Options options;
    options.linkPath = folder + QStringLiteral("/ttyFAXBENCH");
    options.receivedTiff = folder + QStringLiteral("/received.tif");
    options.minScanLineMs = scanLineMs;
    SoftModem modem(options);
    QString error;
    if (!modem.start(&error)) {
        std::fprintf(stderr, "bench-fax: software modem: %s\n", qPrintable(error));
        return false;
    }
    FaxEngine engine;
    engine.setPort(modem.linkPath());
    engine.setNumber(QStringLiteral("15550002222"));
    engine.setFileToSend(image);
    engine.setStationId(QStringLiteral("OSPREL BENCH"));
    QEventLoop loop;
    int errorCode = -1;
    QString speed;
    QObject::connect(&engine, &FaxEngine::CompletionStatus, &loop, [&](const FaxEvent &e) {
        errorCode = e.errorCode;
        speed = e.speed;
        loop.quit();
    });
    QTimer::singleShot(120000, &loop, &QEventLoop::quit); // bounded
    QElapsedTimer wall;
    wall.start();
    if (!engine.send())
        return false;
    loop.exec();
    const double seconds = wall.elapsed() / 1000.0;
    const SoftModem::Result r = modem.result();
    if (errorCode != 0 || r.bitRate <= 0) {
        std::fprintf(stderr, "bench-fax: the fax failed (error %d)\n", errorCode);
        return false;
    }
    FaxDocument doc;
    doc.open(image, nullptr);
    // As the engine codes it for a receiver that offers 2-D coding (spandsp's does): MR with K = 4 at fine.
    const QByteArray pageData =
        doc.encodePage(0, true, T30Params::minBytesPerLine(r.bitRate, scanLineMs), true, 4, false);
    const double lineLimit = pageData.size() * 8.0 / r.bitRate;
    std::printf("\none page through the software modem (spandsp T.31, Class 1) to a %d ms scan-line receiver\n",
                scanLineMs);
    std::printf("  page                                %6d rows\n", doc.page(0).rows);
    std::printf("  negotiated rate                     %6d bit/s, %d page(s) received, %d bad rows\n", r.bitRate,
                r.pages, r.badRows);
    std::printf("  page data                           %6d bytes: %.1f s at that rate (the line's own limit)\n",
                int(pageData.size()), lineLimit);
    std::printf("  whole call on the simulated line    %6.1f s (dial, training, page, post-page)\n", r.virtualSeconds);
    std::printf("  wall time, send() to completion     %6.1f s (the modem's clock runs faster while it can)\n",
                seconds);
    return true;
}
} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    QTemporaryDir dir;
    const QString text = dir.filePath(QStringLiteral("FaxText.txt"));
    const QString image = dir.filePath(QStringLiteral("FaxImage.fmf"));
    writePage(text);

    QString error;
    if (!FaxEngine::convertText(text, image, &error)) { // also the warm-up: fonts
        std::fprintf(stderr, "bench-fax: %s\n", qPrintable(error));
        return 1;
    }
    QElapsedTimer t;
    t.start();
    for (int i = 0; i < kRuns; ++i)
        FaxEngine::convertText(text, image, nullptr);
    const double ourMs = double(t.elapsed()) / kRuns;
    const qint64 ourSize = QFileInfo(image).size();

    // efix on the same text: one TIFF G3 file per page.
    const QString efixOut = dir.filePath(QStringLiteral("efix"));
    QDir().mkpath(efixOut);
    double efixMs = -1;
    QProcess efix;
    t.restart();
    for (int i = 0; i < kRuns; ++i) {
        efix.start(QStringLiteral("efix"), {QStringLiteral("-n"), efixOut + QStringLiteral("/page.%03d"), text});
        if (!efix.waitForFinished(10000) || efix.exitCode() != 0) {
            std::fprintf(stderr, "bench-fax: efix failed: %s\n", efix.readAllStandardError().constData());
            break;
        }
        efixMs = double(t.elapsed()) / (i + 1);
    }
    const qint64 efixSize = folderSize(efixOut, QStringLiteral("page.*"));

    FaxDocument rendered;
    rendered.open(image, nullptr);
    std::printf("one notification page, text to fax image (mean of %d runs)\n", kRuns);
    std::printf("  ours: glyph cache, G3 TIFF          %6.1f ms  %6lld bytes  (1728 x %d, 204 x 196 dpi)\n", ourMs,
                ourSize, rendered.pageCount() ? rendered.page(0).rows : 0);
    if (efixMs >= 0)
        std::printf("  efix (a process each run)           %6.1f ms  %6lld bytes  (1728 x 2287, 204 x 196 dpi)\n",
                    efixMs, efixSize);
    // From the image file to the page's data for the line, both coders reading the same file.
    std::printf("coding the page for the line (T.4), image file to page data (mean of %d runs)\n", kRuns);
    for (const int k : {0, 4}) {
        t.restart();
        QByteArray ours;
        for (int i = 0; i < kRuns; ++i) {
            FaxDocument doc;
            doc.open(image, nullptr);
            ours = doc.encodePage(0, true, 0, true, k, false); // as Class 1 sends it
        }
        const double oursMs = double(t.elapsed()) / kRuns;
        t.restart();
        QByteArray theirs;
        for (int i = 0; i < kRuns; ++i)
            theirs = spandspPageData(image, k ? T4_COMPRESSION_ITU_T4_2D : T4_COMPRESSION_ITU_T4_1D);
        const double theirsMs = double(t.elapsed()) / kRuns;
        const char *name = k ? "2-D (MR, K = 4)" : "1-D (MH)       ";
        std::printf("  %s  ours %6.2f ms %6d bytes   spandsp t4_tx %6.2f ms %6d bytes\n", name, oursMs,
                    int(ours.size()), theirsMs, int(theirs.size()));
    }

    const QString untrimmed = untrimmedCopy(image, dir.path());
    bool ok = true;
    for (int scanLineMs : {0, 20})
        for (const QString &page : {untrimmed, image})
            ok = sendOnePage(page, dir.path(), scanLineMs) && ok;
    return ok ? 0 : 1;
}
