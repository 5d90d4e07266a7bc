// osprel-faxbench: how long a fax page takes to render and code, and how large it is. Prints figures; not a test.

#include "FaxDocument.h"
#include "FaxEngine.h"
#include "T30Params.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <cstdio>

using namespace osprel;

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    QTemporaryDir dir;
    const QString text = dir.filePath(QStringLiteral("FaxText.txt"));
    const QString image = dir.filePath(QStringLiteral("FaxImage.fmf"));
    QFile f(text);
    if (!f.open(QIODevice::WriteOnly))
        return 1;
    // A notification page: the header and 27 lines, most of them a tab and a label with a value.
    f.write("To: Pat Example\r\nFax Number: 5550199\r\n\r\nChamber Notification\r\n\r\n");
    for (int i = 0; i < 26; ++i)
        f.write("\tChamber Value " + QByteArray::number(i) + ": Warehouse 1 reading 85.2\r\n");
    f.close();

    constexpr int kRuns = 20;
    QElapsedTimer t;
    FaxEngine::convertText(text, image, nullptr); // warm-up: fonts
    t.start();
    for (int i = 0; i < kRuns; ++i)
        FaxEngine::convertText(text, image, nullptr);
    const double convertMs = double(t.elapsed()) / kRuns;

    FaxDocument doc;
    doc.open(image, nullptr);
    t.restart();
    QByteArray line0, line20;
    for (int i = 0; i < kRuns; ++i) {
        line0 = doc.encodePage(0, true, T30Params::minBytesPerLine(14400, 0));
        line20 = doc.encodePage(0, true, T30Params::minBytesPerLine(9600, 20));
    }
    const double encodeMs = double(t.elapsed()) / (2 * kRuns);

    std::printf("text to TIFF (render, threshold, G3 write), one page: %.1f ms\n", convertMs);
    std::printf("TIFF file, one page: %lld bytes\n", QFileInfo(image).size());
    std::printf("T.4 data for the line, one page: %.1f ms to code; %d bytes (no scan time), %d bytes (20 ms at "
                "9600 bit/s)\n",
                encodeMs, int(line0.size()), int(line20.size()));
    std::printf("line time at 14400 bit/s: %.1f s; at 9600 bit/s with 20 ms lines: %.1f s\n",
                line0.size() * 8.0 / 14400, line20.size() * 8.0 / 9600);
    return 0;
}
