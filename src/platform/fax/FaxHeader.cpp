#include "FaxHeader.h"

#include "FaxDocument.h"
#include "GlyphCache.h"

#include <cstring>

namespace osprel {

namespace {
bool isNumberChar(QChar c)
{
    return c.isDigit() || c == u'+' || c == u' ' || c == u'-' || c == u'(' || c == u')' || c == u'.';
}

int numberLength(const QString &station)
{
    int n = 0;
    while (n < station.size() && isNumberChar(station.at(n)))
        ++n;
    return n;
}
} // namespace

QString FaxHeader::number(const QString &station)
{
    const QString s = station.trimmed();
    QString out;
    for (QChar c : s.left(numberLength(s)))
        if (c.isDigit() || c == u'+' || c == u' ')
            out += c;
    return out.simplified().left(20);
}

QString FaxHeader::name(const QString &station)
{
    const QString s = station.trimmed();
    return s.mid(numberLength(s)).trimmed();
}

QString FaxHeader::text(const QString &station, const QDateTime &when, int page, int pageCount)
{
    QString line = when.toString(QStringLiteral("MM/dd/yyyy hh:mm"));
    if (!name(station).isEmpty())
        line += QStringLiteral("  From: ") + name(station);
    if (!number(station).isEmpty())
        line += QStringLiteral("  Fax: ") + number(station);
    return line + QStringLiteral("  Page %1 of %2").arg(page).arg(pageCount);
}

void FaxHeader::stamp(FaxPageImage &page, const QString &text, GlyphCache &glyphs)
{
    constexpr int rowBytes = FaxPageImage::kRowBytes;
    QByteArray band(kBandRows * rowBytes, '\0');
    const int top = (kBandRows - glyphs.height()) / 2;
    glyphs.draw(reinterpret_cast<uchar *>(band.data()), rowBytes, kBandRows, kLeft, top, text);
    // At 3.85 lines/mm the band is every other row of the one drawn at 7.7.
    const int step = page.fine ? 1 : 2;
    const int rows = qMin(page.rows, kBandRows / step);
    for (int y = 0; y < rows; ++y)
        std::memcpy(page.bits.data() + qint64(y) * rowBytes, band.constData() + qint64(y) * step * rowBytes,
                    size_t(rowBytes));
}

} // namespace osprel
