#include "FaxTiffWriter.h"

#include <QFile>
#include <cstring>
#include <memory>
#include <tiffio.h>
#include <vector>

namespace osprel {

bool FaxTiffWriter::write(const QString &path, const QList<FaxPageImage> &pages, QString *error)
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
        const FaxPageImage &page = pages.at(n);
        if (page.rows <= 0 || page.bits.size() < qsizetype(page.rows) * FaxPageImage::kRowBytes)
            return fail(QStringLiteral("page %1 has no rows").arg(n + 1));
        TIFFSetField(tif, TIFFTAG_SUBFILETYPE, FILETYPE_PAGE);
        TIFFSetField(tif, TIFFTAG_IMAGEWIDTH, uint32_t(FaxPageImage::kWidth));
        TIFFSetField(tif, TIFFTAG_IMAGELENGTH, uint32_t(page.rows));
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
        TIFFSetField(tif, TIFFTAG_YRESOLUTION, page.fine ? 196.0f : 98.0f);
        TIFFSetField(tif, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
        TIFFSetField(tif, TIFFTAG_ROWSPERSTRIP, uint32_t(page.rows));
        TIFFSetField(tif, TIFFTAG_PAGENUMBER, uint16_t(n), total);
        TIFFSetField(tif, TIFFTAG_SOFTWARE, "Osprel EmailFax");
        // libtiff takes a non-const row and leaves it as it was.
        std::vector<uchar> row(FaxPageImage::kRowBytes);
        for (int y = 0; y < page.rows; ++y) {
            std::memcpy(row.data(), page.row(y), row.size());
            if (TIFFWriteScanline(tif, row.data(), uint32_t(y), 0) < 0)
                return fail(QStringLiteral("cannot write page %1 of ").arg(n + 1) + path);
        }
        if (!TIFFWriteDirectory(tif))
            return fail(QStringLiteral("cannot write page %1 of ").arg(n + 1) + path);
    }
    return true;
}

} // namespace osprel
