#pragma once
// Writes fax pages to a TIFF file the way fax software exchanges them (TIFF Class F): one directory per page,
// 1728 pels wide, T.4 one-dimensional coding (COMPRESSION_CCITTFAX3), 204 x 196 dpi.

#include "FaxDocument.h"

#include <QList>
#include <QString>

namespace osprel {

class FaxTiffWriter
{
public:
    // The pages' rows go to libtiff as they are (1 = black, MinIsWhite).
    static bool write(const QString &path, const QList<FaxPageImage> &pages, QString *error);
};

} // namespace osprel
