#pragma once
// Writes fax pages to a TIFF file the way fax software exchanges them (TIFF Class F): one directory per page,
// 1728 pels wide, T.4 one-dimensional coding (COMPRESSION_CCITTFAX3), 204 x 196 dpi.

#include <QImage>
#include <QList>
#include <QString>

namespace osprel {

class FaxTiffWriter
{
public:
    // pages are QImage::Format_Mono images with colour index 1 black; their width must be 1728.
    static bool write(const QString &path, const QList<QImage> &pages, QString *error);
};

} // namespace osprel
