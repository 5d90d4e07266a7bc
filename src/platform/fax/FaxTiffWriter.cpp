#include "FaxTiffWriter.h"

#include <QFile>
#include <memory>
#include <tiffio.h>
#include <vector>

namespace osprel {

bool FaxTiffWriter::write(const QString &path, const QList<QImage> &pages, QString *error)
{
    auto fail = [&](const QString &why) {
        if (error)
            *error = why;
        return false;
    };
    if (pages.isEmpty())
        return fail(QStringLiteral("no pages to write"));
    TIFF *tif = TIFFOpen(QFile::encodeName(path).constData(), "w");
    if (!tif)
        return fail(QStringLiteral("cannot create ") + path);
    std::unique_ptr<TIFF, void (*)(TIFF *)> closer(tif, TIFFClose);
    const uint16_t total = uint16_t(pages.size());
    for (int n = 0; n < pages.size(); ++n) {
        const QImage &img = pages.at(n);
        if (img.format() != QImage::Format_Mono || img.width() != 1728)
            return fail(QStringLiteral("page %1 is not a 1728-pel bilevel image").arg(n + 1));
        // Colour index 1 must be black for the bits to go out as they are (MinIsWhite: 1 = black).
        const bool invert = qGray(img.color(1)) > qGray(img.color(0));
        TIFFSetField(tif, TIFFTAG_SUBFILETYPE, FILETYPE_PAGE);
        TIFFSetField(tif, TIFFTAG_IMAGEWIDTH, uint32_t(img.width()));
        TIFFSetField(tif, TIFFTAG_IMAGELENGTH, uint32_t(img.height()));
        TIFFSetField(tif, TIFFTAG_BITSPERSAMPLE, uint16_t(1));
        TIFFSetField(tif, TIFFTAG_SAMPLESPERPIXEL, uint16_t(1));
        TIFFSetField(tif, TIFFTAG_COMPRESSION, COMPRESSION_CCITTFAX3);
        // 1-D coding with EOLs aligned to octets, as TIFF Class F pages usually are.
        TIFFSetField(tif, TIFFTAG_GROUP3OPTIONS, uint32_t(GROUP3OPT_FILLBITS));
        TIFFSetField(tif, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISWHITE);
        TIFFSetField(tif, TIFFTAG_FILLORDER, FILLORDER_MSB2LSB);
        TIFFSetField(tif, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
        TIFFSetField(tif, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
        TIFFSetField(tif, TIFFTAG_XRESOLUTION, 204.0f);
        TIFFSetField(tif, TIFFTAG_YRESOLUTION, 196.0f);
        TIFFSetField(tif, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
        TIFFSetField(tif, TIFFTAG_ROWSPERSTRIP, uint32_t(img.height()));
        TIFFSetField(tif, TIFFTAG_PAGENUMBER, uint16_t(n), total);
        TIFFSetField(tif, TIFFTAG_SOFTWARE, "Osprel EmailFax");
        std::vector<uchar> row(size_t(img.width() / 8));
        for (int y = 0; y < img.height(); ++y) {
            const uchar *src = img.constScanLine(y);
            for (size_t i = 0; i < row.size(); ++i)
                row[i] = invert ? uchar(~src[i]) : src[i];
            if (TIFFWriteScanline(tif, row.data(), uint32_t(y), 0) < 0)
                return fail(QStringLiteral("cannot write page %1 of ").arg(n + 1) + path);
        }
        if (!TIFFWriteDirectory(tif))
            return fail(QStringLiteral("cannot write page %1 of ").arg(n + 1) + path);
    }
    return true;
}

} // namespace osprel
