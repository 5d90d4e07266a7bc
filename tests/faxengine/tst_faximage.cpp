// Fax images: a text page rendered into a TIFF of G3 pages, and the T.4 coding the drivers send, both checked by
// decoding them with libtiff.

#include "FaxDocument.h"
#include "FaxEngine.h"
#include "FaxTextRenderer.h"
#include "MhEncoder.h"

#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtTest>
#include <tiffio.h>

using namespace osprel;

namespace {
QString writeText(const QTemporaryDir &dir, const QString &name, const QByteArray &content)
{
    const QString path = dir.filePath(name);
    QFile f(path);
    if (f.open(QIODevice::WriteOnly))
        f.write(content);
    return path;
}

QByteArray linesOf(int n, const char *eol = "\r\n")
{
    QByteArray text;
    for (int i = 1; i <= n; ++i)
        text += "Line " + QByteArray::number(i) + ": CH1 actual 85.2" + eol;
    return text;
}

int blackPels(const FaxPageImage &page)
{
    int n = 0;
    for (char c : page.bits)
        n += qPopulationCount(quint8(c));
    return n;
}

// Writes coded rows as the one strip of a G3 TIFF (1-D, or 2-D with tag bits), so that libtiff's own decoder can
// judge them.
bool writeRawG3(const QString &path, const QByteArray &strip, int rows, bool lsbFirst, bool twoD = false)
{
    TIFF *t = TIFFOpen(QFile::encodeName(path).constData(), "w");
    if (!t)
        return false;
    TIFFSetField(t, TIFFTAG_IMAGEWIDTH, uint32_t(FaxPageImage::kWidth));
    TIFFSetField(t, TIFFTAG_IMAGELENGTH, uint32_t(rows));
    TIFFSetField(t, TIFFTAG_BITSPERSAMPLE, uint16_t(1));
    TIFFSetField(t, TIFFTAG_SAMPLESPERPIXEL, uint16_t(1));
    TIFFSetField(t, TIFFTAG_COMPRESSION, COMPRESSION_CCITTFAX3);
    TIFFSetField(t, TIFFTAG_GROUP3OPTIONS, uint32_t(twoD ? GROUP3OPT_2DENCODING : 0));
    TIFFSetField(t, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISWHITE);
    TIFFSetField(t, TIFFTAG_FILLORDER, lsbFirst ? FILLORDER_LSB2MSB : FILLORDER_MSB2LSB);
    TIFFSetField(t, TIFFTAG_ROWSPERSTRIP, uint32_t(rows));
    TIFFSetField(t, TIFFTAG_YRESOLUTION, 196.0f);
    TIFFSetField(t, TIFFTAG_XRESOLUTION, 204.0f);
    const bool ok = TIFFWriteRawStrip(t, 0, const_cast<char *>(strip.constData()), strip.size()) == strip.size();
    TIFFClose(t);
    return ok;
}
} // namespace

class TestFaxImage : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { QVERIFY(m_dir.isValid()); }

    void pagesOfSixtyLines_data()
    {
        QTest::addColumn<int>("lines");
        QTest::addColumn<int>("pages");
        QTest::newRow("empty file") << 0 << 1;
        QTest::newRow("a notification") << 30 << 1;
        QTest::newRow("a full page") << 60 << 1;
        QTest::newRow("one line more") << 61 << 2;
        QTest::newRow("three pages") << 121 << 3;
    }

    void pagesOfSixtyLines()
    {
        QFETCH(int, lines);
        QFETCH(int, pages);
        const QString text = writeText(m_dir, QStringLiteral("t.txt"), linesOf(lines));
        const QString image = m_dir.filePath(QStringLiteral("t.fmf"));
        QString error;
        QVERIFY2(FaxEngine::convertText(text, image, &error), qPrintable(error));

        TIFF *t = TIFFOpen(QFile::encodeName(image).constData(), "r");
        QVERIFY(t);
        QCOMPARE(int(TIFFNumberOfDirectories(t)), pages);
        uint32_t width = 0, length = 0;
        uint16_t compression = 0, bps = 0, photometric = 0, unit = 0;
        float xres = 0, yres = 0;
        TIFFGetField(t, TIFFTAG_IMAGEWIDTH, &width);
        TIFFGetField(t, TIFFTAG_IMAGELENGTH, &length);
        TIFFGetField(t, TIFFTAG_COMPRESSION, &compression);
        TIFFGetField(t, TIFFTAG_BITSPERSAMPLE, &bps);
        TIFFGetField(t, TIFFTAG_PHOTOMETRIC, &photometric);
        TIFFGetField(t, TIFFTAG_RESOLUTIONUNIT, &unit);
        TIFFGetField(t, TIFFTAG_XRESOLUTION, &xres);
        TIFFGetField(t, TIFFTAG_YRESOLUTION, &yres);
        TIFFClose(t);
        QCOMPARE(width, uint32_t(1728));
        QCOMPARE(length, uint32_t(FaxTextRenderer::pageRows(qMin(lines, 60)))); // ends a margin after its text
        QCOMPARE(compression, uint16_t(COMPRESSION_CCITTFAX3));
        QCOMPARE(bps, uint16_t(1));
        QCOMPARE(photometric, uint16_t(PHOTOMETRIC_MINISWHITE));
        QCOMPARE(unit, uint16_t(RESUNIT_INCH));
        QCOMPARE(xres, 204.0f);
        QCOMPARE(yres, 196.0f);

        // Every page decodes; text gives black pels on each page, an empty file one white page.
        FaxDocument doc;
        QVERIFY2(doc.open(image, &error), qPrintable(error));
        QCOMPARE(doc.pageCount(), pages);
        // Written row by row, the pages are those drawn whole.
        const QList<FaxPageImage> whole =
            FaxTextRenderer::render(FaxTextRenderer::splitLines(QString::fromLatin1(linesOf(lines))));
        QCOMPARE(whole.size(), pages);
        for (int p = 0; p < pages; ++p) {
            QVERIFY(doc.page(p).bits == whole.at(p).bits);
            QVERIFY(doc.page(p).fine);
            QCOMPARE(doc.page(p).rows, FaxTextRenderer::pageRows(qMin(60, lines - 60 * p)));
            QCOMPARE(blackPels(doc.page(p)) > 0, lines > 0);
        }
    }

    // CR LF or LF alone, a trailing line break or none: the same page. Tabs stop every 8 columns.
    void lineEndsAndTabs()
    {
        QCOMPARE(FaxTextRenderer::splitLines(QStringLiteral("a\r\nb\r\n")), (QStringList{"a", "b"}));
        QCOMPARE(FaxTextRenderer::splitLines(QStringLiteral("a\nb")), (QStringList{"a", "b"}));
        QCOMPARE(FaxTextRenderer::splitLines(QStringLiteral("a\r\n\r\n")), (QStringList{"a", ""}));
        QCOMPARE(FaxTextRenderer::splitLines(QStringLiteral("\tX\r\nab\tY")), (QStringList{"        X", "ab      Y"}));
        const QList<FaxPageImage> crlf =
            FaxTextRenderer::render(FaxTextRenderer::splitLines(QString::fromLatin1(linesOf(5))));
        const QList<FaxPageImage> lf =
            FaxTextRenderer::render(FaxTextRenderer::splitLines(QString::fromLatin1(linesOf(5, "\n"))));
        QCOMPARE(crlf.size(), 1);
        QVERIFY(crlf.first().bits == lf.first().bits);
    }

    void missingTextFile()
    {
        QString error;
        QVERIFY(!FaxEngine::convertText(m_dir.filePath(QStringLiteral("none.txt")),
                                        m_dir.filePath(QStringLiteral("none.fmf")), &error));
        QVERIFY(!error.isEmpty());
        QVERIFY(!QFile::exists(m_dir.filePath(QStringLiteral("none.fmf"))));
    }

    // Every run length 0-1728 of both colours, coded with the T.4 tables and decoded by libtiff.
    void mhCodesEveryRunLength()
    {
        QList<QByteArray> rows;
        auto addRow = [&rows](const QList<int> &runs) { // alternating white/black runs
            QByteArray row(FaxPageImage::kRowBytes, '\0');
            int x = 0;
            bool black = false;
            for (int run : runs) {
                for (int i = 0; i < run && x < FaxPageImage::kWidth; ++i, ++x)
                    if (black)
                        row[x >> 3] = char(row[x >> 3] | (0x80 >> (x & 7)));
                black = !black;
            }
            rows << row;
        };
        for (int run = 0; run <= FaxPageImage::kWidth; run += (run < 130 ? 1 : 37)) {
            addRow({run, FaxPageImage::kWidth - run});    // white run, then black
            addRow({0, run, FaxPageImage::kWidth - run}); // black run first
        }
        addRow({0, FaxPageImage::kWidth}); // all black
        QRandomGenerator rng(7);
        for (int i = 0; i < 50; ++i) { // short runs of random length
            QList<int> runs;
            for (int x = 0; x < FaxPageImage::kWidth;) {
                runs << int(rng.bounded(1, 9));
                x += runs.last();
            }
            addRow(runs);
        }
        BitWriter out(false);
        for (const QByteArray &row : rows) {
            out.put(MhEncoder::kEol, MhEncoder::kEolBits);
            MhEncoder::encodeRow(out, reinterpret_cast<const uchar *>(row.constData()), FaxPageImage::kWidth);
        }
        const QString path = m_dir.filePath(QStringLiteral("runs.tif"));
        QVERIFY(writeRawG3(path, out.take(), int(rows.size()), false));
        FaxDocument doc;
        QString error;
        QVERIFY2(doc.open(path, &error), qPrintable(error));
        for (int y = 0; y < rows.size(); ++y)
            QVERIFY2(QByteArray(reinterpret_cast<const char *>(doc.page(0).row(y)), FaxPageImage::kRowBytes) ==
                         rows.at(y),
                     qPrintable(QStringLiteral("row %1").arg(y)));
    }

    // The data a driver sends: EOL first, fill to the minimum line length, EOLs on octet boundaries, RTC at the
    // end, the first bit in the lowest bit; 1-D or 2-D. libtiff reads it back as the same page.
    void pageDataForTheLine_data()
    {
        QTest::addColumn<int>("minBytes");
        QTest::addColumn<int>("k");
        QTest::addColumn<bool>("aligned");
        QTest::newRow("no minimum") << 0 << 0 << true;
        QTest::newRow("20 ms at 14400") << 36 << 0 << true;
        QTest::newRow("2-D") << 0 << 4 << true;
        QTest::newRow("2-D, 20 ms at 14400") << 36 << 4 << true;
        QTest::newRow("EOLs not aligned") << 0 << 0 << false;
        QTest::newRow("2-D, EOLs not aligned") << 0 << 4 << false;
        QTest::newRow("2-D, EOLs not aligned, 20 ms at 14400") << 36 << 4 << false;
    }

    void pageDataForTheLine()
    {
        QFETCH(int, minBytes);
        QFETCH(int, k);
        QFETCH(bool, aligned);
        const QString image = m_dir.filePath(QStringLiteral("line.fmf"));
        QVERIFY(FaxEngine::convertText(writeText(m_dir, QStringLiteral("line.txt"), linesOf(40)), image, nullptr));
        FaxDocument doc;
        QVERIFY(doc.open(image, nullptr));
        const QByteArray data = doc.encodePage(0, true, minBytes, true, k, aligned);
        const int rows = doc.page(0).rows;
        QVERIFY(data.size() >= rows * minBytes);
        if (!aligned && minBytes == 0) // fill only where the minimum asks for it
            QVERIFY(data.size() < doc.encodePage(0, true, minBytes, true, k).size());
        // RTC: six EOLs after the last line's octet-aligned one (000000000001, first bit lowest).
        if (k == 0 && aligned)
            QVERIFY(data.endsWith(QByteArray::fromHex("800008800008800008")));
        if (k > 0) // two-dimensional: text compresses further
            QVERIFY(data.size() < doc.encodePage(0, true, minBytes).size() || minBytes > 0);
        // The page begins with an EOL.
        QCOMPARE(data.at(0), '\0');
        QCOMPARE(data.at(1) & 0x0f, 0x08);
        const QString path = m_dir.filePath(QStringLiteral("line.tif"));
        QVERIFY(writeRawG3(path, data, rows, true, k > 0));
        FaxDocument back;
        QString error;
        QVERIFY2(back.open(path, &error), qPrintable(error));
        QVERIFY(back.page(0).bits == doc.page(0).bits);

        // At normal resolution every other line goes.
        QVERIFY(writeRawG3(path, doc.encodePage(0, false, minBytes, true, k > 0 ? 2 : 0, aligned), rows / 2, true,
                           k > 0));
        QVERIFY(back.open(path, &error));
        for (int y = 0; y < rows / 2; ++y)
            QVERIFY(memcmp(back.page(0).row(y), doc.page(0).row(2 * y), FaxPageImage::kRowBytes) == 0);
    }

private:
    QTemporaryDir m_dir;
};

QTEST_MAIN(TestFaxImage)
#include "tst_faximage.moc"
