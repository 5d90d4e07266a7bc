#pragma once
// Renders a plain text page into fax pages: 1728 pels wide at 204 x 196 dpi, a monospace font, 60 lines a page.
// Characters come from a 1-bit glyph cache and only the rows that hold text are drawn; a page ends a margin below
// its last line, so that blank paper costs no time on the line.

#include "FaxDocument.h"

#include <QList>
#include <QStringList>

namespace osprel {

class FaxTextRenderer
{
public:
    static constexpr int kWidth = 1728;
    static constexpr int kRows = 2156; // the longest page: 11 inches at 196 lines per inch (US Letter)
    static constexpr int kLinesPerPage = 60;
    static constexpr int kTabWidth = 8;
    static constexpr int kTopMargin = 98; // half an inch; the header line sits in it
    static constexpr int kLinePitch = 32; // 60 lines in 1920 rows
    static constexpr int kBottomMargin = 98;

    // Splits text into lines (CR LF, LF or CR) with tabs expanded; a trailing line break adds no empty line.
    static QStringList splitLines(const QString &text);
    // The rows of a page holding lines lines of text.
    static int pageRows(int lines);
    // One page per 60 lines, at least one. Needs the GUI application (fonts).
    static QList<FaxPageImage> render(const QStringList &lines);
    // The same pages written straight to a TIFF file: each text line drawn into one band of rows as libtiff takes
    // the rows, blank rows from one white row; no page is held whole.
    static bool write(const QString &path, const QStringList &lines, QString *error);
};

} // namespace osprel
