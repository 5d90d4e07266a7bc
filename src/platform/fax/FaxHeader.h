#pragma once
// The line at the top of every page sent (47 U.S.C. 227(d): date and time of sending, the sender, the sending
// number, "Page n of m"), and the station identification that goes out as TSI / +FLID.

#include <QDateTime>
#include <QString>

namespace osprel {

class GlyphCache;
struct FaxPageImage;

class FaxHeader
{
public:
    static constexpr int kBandRows = 48; // at 7.7 lines/mm; the page's text begins below it
    static constexpr int kFontPixels = 20;
    static constexpr int kLeft = 100;

    // The fax station as the user typed it, "+1 555 0100 Osprel Lab": the number (what T.30 allows in an
    // identification: digits, "+" and blanks, at most 20) and the name after it.
    static QString number(const QString &station);
    static QString name(const QString &station);
    // "11/23/2026 10:15  From: Osprel Lab  Fax: +1 555 0100  Page 1 of 2"
    static QString text(const QString &station, const QDateTime &when, int page, int pageCount);
    // Clears the band at the top of the page and writes text into it, at the page's own resolution.
    static void stamp(FaxPageImage &page, const QString &text, GlyphCache &glyphs);
};

} // namespace osprel
