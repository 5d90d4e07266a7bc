#pragma once
// The pages of a fax image file (a TIFF of bilevel pages, any compression libtiff reads), held as 1728-pel scan
// lines and coded on demand as T.4 one-dimensional data for the line.

#include <QByteArray>
#include <QList>
#include <QString>

namespace osprel {

struct FaxPageImage
{
    static constexpr int kWidth = 1728; // pels on a 215 mm line (T.4)
    static constexpr int kRowBytes = kWidth / 8;
    bool fine = true; // 7.7 lines/mm, else 3.85
    int rows = 0;
    QByteArray bits; // rows * kRowBytes, 1 = black, most significant bit first

    const uchar *row(int y) const { return reinterpret_cast<const uchar *>(bits.constData()) + y * kRowBytes; }
};

class FaxDocument
{
public:
    bool open(const QString &path, QString *error);
    int pageCount() const { return int(m_pages.size()); }
    const FaxPageImage &page(int i) const { return m_pages.at(i); }
    FaxPageImage &page(int i) { return m_pages[i]; }

    // T.4 MH data of page i as the modem sends it (first bit in the lowest bit of each octet): an EOL, each line
    // padded with fill bits to minBytesPerLine (T.4 4.1.3) and ended by an EOL, then RTC (six EOLs, T.4 4.1.4; left
    // out with rtc false, for modems that append it). A page is thinned or doubled to the negotiated vertical
    // resolution. With k > 0 the lines are coded two-dimensionally (T.4 4.2, MR): every k-th line 1-D, the others
    // against the line before, each EOL followed by a tag bit that says which follows. With alignEol each EOL ends
    // on an octet boundary (what Class 2 modems are given); without, no fill beyond the minimum, which saves about
    // four bits a line on the line (Class 1, where the host's bits go out as they are).
    QByteArray encodePage(int i, bool fine, int minBytesPerLine, bool rtc = true, int k = 0,
                          bool alignEol = true) const;
    // The octets with their bit order reversed (for a modem set to reversed bit order).
    static QByteArray reverseBits(const QByteArray &data);

private:
    QList<FaxPageImage> m_pages;
};

} // namespace osprel
