#include "GlyphCache.h"

#include <QFont>
#include <QFontMetrics>
#include <QImage>
#include <QPainter>

namespace osprel {

namespace {
constexpr int kThreshold = 150; // grey below this is black: keeps thin strokes whole
constexpr int kMaxCell = 64;    // pels of a cell row kept in one quint64

QFont faxFont(int pixelSize)
{
    QFont font(QStringLiteral("DejaVu Sans Mono"));
    font.setStyleHint(QFont::TypeWriter);
    font.setFixedPitch(true);
    font.setPixelSize(pixelSize);
    return font;
}
} // namespace

GlyphCache::GlyphCache(int pixelSize) : m_pixelSize(pixelSize)
{
    const QFontMetrics metrics(faxFont(pixelSize));
    m_advance = qBound(1, metrics.horizontalAdvance(QLatin1Char('M')), kMaxCell);
    m_ascent = metrics.ascent();
    m_height = metrics.ascent() + metrics.descent();
}

const GlyphCache::Glyph &GlyphCache::glyph(QChar c)
{
    auto it = m_glyphs.constFind(c);
    if (it != m_glyphs.constEnd())
        return *it;
    Glyph g;
    g.rows.assign(size_t(m_height), 0);
    if (!c.isSpace()) {
        QImage cell(m_advance, m_height, QImage::Format_Grayscale8);
        cell.fill(Qt::white);
        {
            QPainter p(&cell);
            p.setFont(faxFont(m_pixelSize));
            p.setPen(Qt::black);
            p.drawText(0, m_ascent, QString(c));
        }
        for (int y = 0; y < m_height; ++y) {
            const uchar *src = cell.constScanLine(y);
            quint64 row = 0;
            for (int x = 0; x < m_advance; ++x)
                if (src[x] < kThreshold)
                    row |= quint64(1) << (63 - x);
            g.rows[size_t(y)] = row;
            g.blank = g.blank && row == 0;
        }
    }
    return *m_glyphs.insert(c, std::move(g));
}

void GlyphCache::draw(uchar *bits, int rowBytes, int rowCount, int x, int top, const QString &text)
{
    const int width = rowBytes * 8;
    for (int i = 0; i < text.size(); ++i, x += m_advance) {
        if (x >= width)
            return;
        const Glyph &g = glyph(text.at(i));
        if (g.blank || x < 0)
            continue;
        const int byte = x >> 3, shift = x & 7;
        for (int y = 0; y < m_height; ++y) {
            const int row = top + y;
            if (row < 0 || row >= rowCount || g.rows[size_t(y)] == 0)
                continue;
            // The cell shifted to the pel's place within its first octet, spread over up to nine octets.
            const quint64 cell = g.rows[size_t(y)];
            uchar *dst = bits + qint64(row) * rowBytes;
            const quint64 high = cell >> shift;
            for (int k = 0; k < 8 && byte + k < rowBytes; ++k)
                dst[byte + k] |= uchar(high >> (56 - 8 * k));
            if (shift && byte + 8 < rowBytes)
                dst[byte + 8] |= uchar(cell << (8 - shift));
        }
    }
}

} // namespace osprel
