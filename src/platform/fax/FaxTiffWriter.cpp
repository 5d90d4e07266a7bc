#include "FaxTiffWriter.h"

#include <QFile>
#include <cstring>
#include <memory>
#include <tiffio.h>
#include <vector>

namespace osprel {

bool FaxTiffWriter::write(const QString &path, const QList<FaxPageImage> &pages, QString *error)
{
    for (int n = 0; n < pages.size(); ++n) {
        if (pages.at(n).rows <= 0 || pages.at(n).bits.size() < qsizetype(pages.at(n).rows) * FaxPageImage::kRowBytes) {
            if (error)
                *error = QStringLiteral("page %1 has no rows").arg(n + 1);
            return false;
        }
    }
    return write(
        path, int(pages.size()), pages.isEmpty() || pages.first().fine, [&](int n) { return pages.at(n).rows; },
        [&](int n, int y) { return pages.at(n).row(y); }, error);
}

bool FaxTiffWriter::write(const QString &path, int pageCount, bool fine, const std::function<int(int)> &rows,
                          const std::function<const uchar *(int, int)> &row, QString *error)
{
    auto fail = [&](const QString &why) {
        if (error)
            *error = why;
        return false;
    };
    if (pageCount <= 0)
        return fail(QStringLiteral("no pages to write"));
    TIFF *tif = TIFFOpen(QFile::encodeName(path).constData(), "w");
    if (!tif)
        return fail(QStringLiteral("cannot create ") + path);
    std::unique_ptr<TIFF, void (*)(TIFF *)> closer(tif, TIFFClose);
    // libtiff takes a non-const row and leaves it as it was.
    std::vector<uchar> buffer(FaxPageImage::kRowBytes);
    for (int n = 0; n < pageCount; ++n) {
        const int count = rows(n);
        if (count <= 0)
            return fail(QStringLiteral("page %1 has no rows").arg(n + 1));
        TIFFSetField(tif, TIFFTAG_SUBFILETYPE, FILETYPE_PAGE);
        TIFFSetField(tif, TIFFTAG_IMAGEWIDTH, uint32_t(FaxPageImage::kWidth));
        TIFFSetField(tif, TIFFTAG_IMAGELENGTH, uint32_t(count));
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
        TIFFSetField(tif, TIFFTAG_YRESOLUTION, fine ? 196.0f : 98.0f);
        TIFFSetField(tif, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
        TIFFSetField(tif, TIFFTAG_ROWSPERSTRIP, uint32_t(count));
        TIFFSetField(tif, TIFFTAG_PAGENUMBER, uint16_t(n), uint16_t(pageCount));
        TIFFSetField(tif, TIFFTAG_SOFTWARE, "Osprel EmailFax");
        for (int y = 0; y < count; ++y) {
            std::memcpy(buffer.data(), row(n, y), buffer.size());
            if (TIFFWriteScanline(tif, buffer.data(), uint32_t(y), 0) < 0)
                return fail(QStringLiteral("cannot write page %1 of ").arg(n + 1) + path);
        }
        if (!TIFFWriteDirectory(tif))
            return fail(QStringLiteral("cannot write page %1 of ").arg(n + 1) + path);
    }
    return true;
}

} // namespace osprel
