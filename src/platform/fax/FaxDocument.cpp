#include "FaxDocument.h"

#include "MhEncoder.h"

#include <QFile>
#include <algorithm>
#include <cstring>
#include <memory>
#include <tiffio.h>
#include <vector>

namespace osprel {

namespace {
struct TiffCloser
{
    void operator()(TIFF *t) const { TIFFClose(t); }
};

// libtiff reports through global handlers; a fax file that does not open must not print to the server's stderr.
void quietHandler(const char *, const char *, va_list) {}
} // namespace

bool FaxDocument::open(const QString &path, QString *error)
{
    m_pages.clear();
    TIFFSetWarningHandler(quietHandler);
    TIFFErrorHandler oldError = TIFFSetErrorHandler(quietHandler);
    std::unique_ptr<TIFF, TiffCloser> tif(TIFFOpen(QFile::encodeName(path).constData(), "r"));
    TIFFSetErrorHandler(oldError);
    if (!tif) {
        if (error)
            *error = QStringLiteral("cannot read the fax image ") + path;
        return false;
    }
    do {
        uint32_t width = 0, length = 0;
        uint16_t bps = 1, spp = 1, photometric = PHOTOMETRIC_MINISWHITE, unit = RESUNIT_INCH;
        float yres = 196;
        TIFFGetField(tif.get(), TIFFTAG_IMAGEWIDTH, &width);
        TIFFGetField(tif.get(), TIFFTAG_IMAGELENGTH, &length);
        TIFFGetFieldDefaulted(tif.get(), TIFFTAG_BITSPERSAMPLE, &bps);
        TIFFGetFieldDefaulted(tif.get(), TIFFTAG_SAMPLESPERPIXEL, &spp);
        TIFFGetField(tif.get(), TIFFTAG_PHOTOMETRIC, &photometric);
        TIFFGetFieldDefaulted(tif.get(), TIFFTAG_RESOLUTIONUNIT, &unit);
        if (!TIFFGetField(tif.get(), TIFFTAG_YRESOLUTION, &yres))
            yres = 196;
        if (bps != 1 || spp != 1 || width == 0 || length == 0 || length > 20000) {
            if (error)
                *error = QStringLiteral("page %1 of %2 is not a bilevel fax page").arg(m_pages.size() + 1).arg(path);
            return false;
        }
        FaxPageImage page;
        const float linesPerInch = unit == RESUNIT_CENTIMETER ? yres * 2.54f : yres;
        page.fine = linesPerInch > 150;
        page.rows = int(length);
        page.bits = QByteArray(page.rows * FaxPageImage::kRowBytes, '\0');
        std::vector<uchar> line(size_t(TIFFScanlineSize(tif.get())) + 1);
        const int copyBytes = std::min<int>(int(line.size()) - 1, FaxPageImage::kRowBytes);
        const int keepBits = std::min<int>(int(width), FaxPageImage::kWidth);
        for (uint32_t y = 0; y < length; ++y) {
            if (TIFFReadScanline(tif.get(), line.data(), y, 0) < 0) {
                if (error)
                    *error = QStringLiteral("page %1 of %2 cannot be decoded").arg(m_pages.size() + 1).arg(path);
                return false;
            }
            uchar *dst = reinterpret_cast<uchar *>(page.bits.data()) + y * FaxPageImage::kRowBytes;
            std::memcpy(dst, line.data(), size_t(copyBytes));
            if (photometric == PHOTOMETRIC_MINISBLACK)
                for (int i = 0; i < copyBytes; ++i)
                    dst[i] = uchar(~dst[i]);
            // Clear what lies beyond the image's own width: white margin.
            for (int x = keepBits; x < FaxPageImage::kWidth; ++x)
                dst[x >> 3] &= uchar(~(0x80 >> (x & 7)));
        }
        m_pages.append(page);
    } while (TIFFReadDirectory(tif.get()));
    return true;
}

QByteArray FaxDocument::reverseBits(const QByteArray &data)
{
    QByteArray out(data.size(), '\0');
    for (int i = 0; i < data.size(); ++i) {
        uchar b = uchar(data.at(i)), r = 0;
        for (int bit = 0; bit < 8; ++bit)
            r = uchar(r | (((b >> bit) & 1) << (7 - bit)));
        out[i] = char(r);
    }
    return out;
}

QByteArray FaxDocument::encodePage(int i, bool fine, int minBytesPerLine, bool rtc, int k, bool alignEol) const
{
    const FaxPageImage &page = m_pages.at(i);
    const qint64 minBits = qint64(minBytesPerLine) * 8;
    const int eolBits = MhEncoder::kEolBits + (k > 0 ? 1 : 0);
    BitWriter out(true);
    // An EOL, and with 2-D coding its tag: 1 when a 1-D line follows (T.4 4.2.4).
    auto eol = [&](bool oneD) {
        out.put(MhEncoder::kEol, MhEncoder::kEolBits);
        if (k > 0)
            out.put(oneD ? 1 : 0, 1);
    };
    int coded = 0;
    const uchar *reference = nullptr;
    auto codeLine = [&](int y, bool last) {
        const qint64 start = out.bitCount();
        if (k > 0 && coded % k != 0)
            MhEncoder::encodeRow2D(out, page.row(y), reference, FaxPageImage::kWidth);
        else
            MhEncoder::encodeRow(out, page.row(y), FaxPageImage::kWidth);
        reference = page.row(y);
        ++coded;
        // Fill bits make the line last the minimum scan-line time (T.4 4.1.3) and, when asked, end the EOL on an
        // octet.
        qint64 fill = 0;
        while (out.bitCount() - start + fill + eolBits < minBits ||
               (alignEol && (out.bitCount() + fill + MhEncoder::kEolBits) % 8 != 0))
            ++fill;
        out.zeros(int(fill));
        eol(last || k <= 0 || coded % k == 0);
    };
    eol(true);
    const int step = page.fine && !fine ? 2 : 1;   // 7.7 to 3.85 lines/mm: every other line
    const int copies = !page.fine && fine ? 2 : 1; // 3.85 to 7.7 lines/mm: each line twice
    for (int y = 0; y < page.rows; y += step)
        for (int c = 0; c < copies; ++c)
            codeLine(y, y + step >= page.rows && c + 1 == copies);
    if (rtc)
        for (int n = 0; n < 5; ++n) // with the last line's EOL: RTC, six EOLs (tagged 1 with 2-D coding)
            eol(true);
    return out.take();
}

} // namespace osprel
