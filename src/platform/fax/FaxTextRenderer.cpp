#include "FaxTextRenderer.h"

#include "FaxTiffWriter.h"
#include "GlyphCache.h"

namespace osprel {

namespace {
constexpr int kLeftMargin = 100; // about half an inch
constexpr int kFontPixels = 26;

QString expandTabs(const QString &line)
{
    QString out;
    for (const QChar c : line) {
        if (c == QLatin1Char('\t'))
            out += QString(FaxTextRenderer::kTabWidth - out.size() % FaxTextRenderer::kTabWidth, QLatin1Char(' '));
        else if (c.isPrint())
            out += c;
    }
    return out;
}

GlyphCache &pageGlyphs()
{
    static GlyphCache glyphs(kFontPixels); // made on first use, once the GUI application exists
    return glyphs;
}
} // namespace

QStringList FaxTextRenderer::splitLines(const QString &text)
{
    QString t = text;
    t.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(QLatin1Char('\r'), QLatin1Char('\n'));
    if (t.endsWith(QLatin1Char('\n')))
        t.chop(1);
    QStringList lines = t.isEmpty() ? QStringList() : t.split(QLatin1Char('\n'));
    for (QString &l : lines)
        l = expandTabs(l);
    return lines;
}

int FaxTextRenderer::pageRows(int lines)
{
    return qMin(kRows, kTopMargin + qBound(0, lines, kLinesPerPage) * kLinePitch + kBottomMargin);
}

QList<FaxPageImage> FaxTextRenderer::render(const QStringList &lines)
{
    GlyphCache &glyphs = pageGlyphs();
    QList<FaxPageImage> pages;
    for (int first = 0; first < lines.size() || pages.isEmpty(); first += kLinesPerPage) {
        const int count = qMin<int>(kLinesPerPage, int(lines.size()) - first);
        FaxPageImage page;
        page.fine = true;
        page.rows = pageRows(count);
        page.bits = QByteArray(qsizetype(page.rows) * FaxPageImage::kRowBytes, '\0');
        uchar *bits = reinterpret_cast<uchar *>(page.bits.data());
        for (int i = 0; i < count; ++i)
            glyphs.draw(bits, FaxPageImage::kRowBytes, page.rows, kLeftMargin, kTopMargin + i * kLinePitch,
                        lines.at(first + i));
        pages.append(page);
    }
    return pages;
}

bool FaxTextRenderer::write(const QString &path, const QStringList &lines, QString *error)
{
    GlyphCache &glyphs = pageGlyphs();
    const int total = int(lines.size());
    const int pageCount = qMax(1, (total + kLinesPerPage - 1) / kLinesPerPage);
    auto linesOn = [&](int n) { return qBound(0, total - n * kLinesPerPage, kLinesPerPage); };
    static const QByteArray white(FaxPageImage::kRowBytes, '\0');
    QByteArray band(kLinePitch * FaxPageImage::kRowBytes, '\0');
    int bandPage = -1, bandLine = -1;
    const auto row = [&](int n, int y) -> const uchar * {
        const int offset = y - kTopMargin;
        if (offset < 0 || offset >= linesOn(n) * kLinePitch)
            return reinterpret_cast<const uchar *>(white.constData());
        const int line = offset / kLinePitch;
        if (n != bandPage || line != bandLine) {
            band.fill('\0');
            glyphs.draw(reinterpret_cast<uchar *>(band.data()), FaxPageImage::kRowBytes, kLinePitch, kLeftMargin, 0,
                        lines.at(n * kLinesPerPage + line));
            bandPage = n;
            bandLine = line;
        }
        return reinterpret_cast<const uchar *>(band.constData()) + (offset % kLinePitch) * FaxPageImage::kRowBytes;
    };
    return FaxTiffWriter::write(
        path, pageCount, true, [&](int n) { return pageRows(linesOn(n)); }, row, error);
}

} // namespace osprel
