#pragma once
// Writes fax pages to a TIFF file the way fax software exchanges them (TIFF Class F): one directory per page,
// 1728 pels wide, T.4 one-dimensional coding (COMPRESSION_CCITTFAX3), 204 x 196 dpi.

#include "FaxDocument.h"

#include <QList>
#include <QString>
#include <functional>

namespace osprel {

class FaxTiffWriter
{
public:
    // The pages' rows go to libtiff as they are (1 = black, MinIsWhite).
    static bool write(const QString &path, const QList<FaxPageImage> &pages, QString *error);
    // Streams pageCount pages at fine resolution or not: rows(n) is the row count of page n, and row(n, y) gives its
    // rows in order, kRowBytes octets each, valid until the next call. No page is held whole.
    static bool write(const QString &path, int pageCount, bool fine, const std::function<int(int)> &rows,
                      const std::function<const uchar *(int, int)> &row, QString *error);
};

} // namespace osprel
