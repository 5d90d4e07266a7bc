#include "FaxTextRenderer.h"

#include <QFont>
#include <QFontMetrics>
#include <QPainter>
#include <QRegularExpression>

namespace osprel {

namespace {
constexpr int kLeftMargin = 100; // about half an inch
constexpr int kTopMargin = 98;
constexpr int kLinePitch = 32; // 60 lines in 1920 rows
constexpr int kFontPixels = 26;
constexpr int kThreshold = 150; // grey below this is black: keeps thin strokes whole

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

QImage renderPage(const QStringList &lines, int first)
{
    QImage grey(FaxTextRenderer::kWidth, FaxTextRenderer::kRows, QImage::Format_Grayscale8);
    grey.fill(Qt::white);
    {
        QPainter p(&grey);
        QFont font(QStringLiteral("DejaVu Sans Mono"));
        font.setStyleHint(QFont::TypeWriter);
        font.setFixedPitch(true);
        font.setPixelSize(kFontPixels);
        p.setFont(font);
        p.setPen(Qt::black);
        const int ascent = QFontMetrics(font).ascent();
        const int last = std::min<int>(int(lines.size()), first + FaxTextRenderer::kLinesPerPage);
        for (int i = first; i < last; ++i)
            p.drawText(kLeftMargin, kTopMargin + (i - first) * kLinePitch + ascent, lines.at(i));
    }
    QImage mono(FaxTextRenderer::kWidth, FaxTextRenderer::kRows, QImage::Format_Mono);
    mono.setColor(0, qRgb(255, 255, 255));
    mono.setColor(1, qRgb(0, 0, 0));
    mono.fill(0);
    for (int y = 0; y < grey.height(); ++y) {
        const uchar *src = grey.constScanLine(y);
        uchar *dst = mono.scanLine(y);
        for (int x = 0; x < grey.width(); ++x)
            if (src[x] < kThreshold)
                dst[x >> 3] |= uchar(0x80 >> (x & 7));
    }
    // 204 x 196 dots per inch, in dots per metre.
    mono.setDotsPerMeterX(8031);
    mono.setDotsPerMeterY(7717);
    return mono;
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

QList<QImage> FaxTextRenderer::render(const QStringList &lines)
{
    QList<QImage> pages;
    for (int first = 0; first < lines.size() || pages.isEmpty(); first += kLinesPerPage)
        pages.append(renderPage(lines, first));
    return pages;
}

} // namespace osprel
