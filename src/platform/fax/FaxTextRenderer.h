#pragma once
// Renders a plain text page into fax pages: 1728 pels wide at 204 x 196 dpi, a monospace font, 60 lines a page,
// thresholded to black and white.

#include <QImage>
#include <QList>
#include <QStringList>

namespace osprel {

class FaxTextRenderer
{
public:
    static constexpr int kWidth = 1728;
    static constexpr int kRows = 2156; // 11 inches at 196 lines per inch (US Letter)
    static constexpr int kLinesPerPage = 60;
    static constexpr int kTabWidth = 8;

    // Splits text into lines (CR LF, LF or CR) with tabs expanded; a trailing line break adds no empty line.
    static QStringList splitLines(const QString &text);
    // One QImage::Format_Mono image per page (index 1 = black), at least one page.
    static QList<QImage> render(const QStringList &lines);
};

} // namespace osprel
