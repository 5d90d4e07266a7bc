#pragma once
// Text for fax pages without a canvas: each character of a monospace font is rasterised once into a 1-bit cell, and
// lines of text are stamped into packed bilevel rows (1 = black, most significant bit first) by OR-ing those cells.

#include <QChar>
#include <QHash>
#include <QString>
#include <vector>

namespace osprel {

class GlyphCache
{
public:
    // pixelSize: the font's height in pels. Needs the GUI application (fonts come from Qt GUI).
    explicit GlyphCache(int pixelSize);

    int advance() const { return m_advance; } // pels from one character to the next
    int ascent() const { return m_ascent; }
    int height() const { return m_height; } // rows of a cell: ascent + descent

    // Draws text with its cells' top row at row top and its first cell at pel x; what falls outside the rows
    // [0, rowCount) or past rowBytes * 8 pels is cut off.
    void draw(uchar *bits, int rowBytes, int rowCount, int x, int top, const QString &text);

private:
    struct Glyph
    {
        std::vector<quint64> rows; // the cell's pels, first pel in bit 63
        bool blank = true;
    };
    const Glyph &glyph(QChar c);

    int m_pixelSize;
    int m_advance = 0, m_ascent = 0, m_height = 0;
    QHash<QChar, Glyph> m_glyphs;
};

} // namespace osprel
