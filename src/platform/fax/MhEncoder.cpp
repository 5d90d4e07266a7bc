#include "MhEncoder.h"

namespace osprel {

namespace {
struct Code
{
    quint16 bits;
    quint8 len;
};

// T.4 Table 2: terminating code words, run lengths 0-63.
const Code kWhiteTerm[64] = {{0x35, 8}, {0x07, 6}, {0x07, 4}, {0x08, 4}, {0x0b, 4}, {0x0c, 4}, {0x0e, 4}, {0x0f, 4},
                             {0x13, 5}, {0x14, 5}, {0x07, 5}, {0x08, 5}, {0x08, 6}, {0x03, 6}, {0x34, 6}, {0x35, 6},
                             {0x2a, 6}, {0x2b, 6}, {0x27, 7}, {0x0c, 7}, {0x08, 7}, {0x17, 7}, {0x03, 7}, {0x04, 7},
                             {0x28, 7}, {0x2b, 7}, {0x13, 7}, {0x24, 7}, {0x18, 7}, {0x02, 8}, {0x03, 8}, {0x1a, 8},
                             {0x1b, 8}, {0x12, 8}, {0x13, 8}, {0x14, 8}, {0x15, 8}, {0x16, 8}, {0x17, 8}, {0x28, 8},
                             {0x29, 8}, {0x2a, 8}, {0x2b, 8}, {0x2c, 8}, {0x2d, 8}, {0x04, 8}, {0x05, 8}, {0x0a, 8},
                             {0x0b, 8}, {0x52, 8}, {0x53, 8}, {0x54, 8}, {0x55, 8}, {0x24, 8}, {0x25, 8}, {0x58, 8},
                             {0x59, 8}, {0x5a, 8}, {0x5b, 8}, {0x4a, 8}, {0x4b, 8}, {0x32, 8}, {0x33, 8}, {0x34, 8}};

const Code kBlackTerm[64] = {
    {0x37, 10}, {0x02, 3},  {0x03, 2},  {0x02, 2},  {0x03, 3},  {0x03, 4},  {0x02, 4},  {0x03, 5},
    {0x05, 6},  {0x04, 6},  {0x04, 7},  {0x05, 7},  {0x07, 7},  {0x04, 8},  {0x07, 8},  {0x18, 9},
    {0x17, 10}, {0x18, 10}, {0x08, 10}, {0x67, 11}, {0x68, 11}, {0x6c, 11}, {0x37, 11}, {0x28, 11},
    {0x17, 11}, {0x18, 11}, {0xca, 12}, {0xcb, 12}, {0xcc, 12}, {0xcd, 12}, {0x68, 12}, {0x69, 12},
    {0x6a, 12}, {0x6b, 12}, {0xd2, 12}, {0xd3, 12}, {0xd4, 12}, {0xd5, 12}, {0xd6, 12}, {0xd7, 12},
    {0x6c, 12}, {0x6d, 12}, {0xda, 12}, {0xdb, 12}, {0x54, 12}, {0x55, 12}, {0x56, 12}, {0x57, 12},
    {0x64, 12}, {0x65, 12}, {0x52, 12}, {0x53, 12}, {0x24, 12}, {0x37, 12}, {0x38, 12}, {0x27, 12},
    {0x28, 12}, {0x58, 12}, {0x59, 12}, {0x2b, 12}, {0x2c, 12}, {0x5a, 12}, {0x66, 12}, {0x67, 12}};

// T.4 Table 3: make-up code words, run lengths 64, 128, ... 1728.
const Code kWhiteMakeup[27] = {{0x1b, 5}, {0x12, 5}, {0x17, 6}, {0x37, 7}, {0x36, 8}, {0x37, 8}, {0x64, 8},
                               {0x65, 8}, {0x68, 8}, {0x67, 8}, {0xcc, 9}, {0xcd, 9}, {0xd2, 9}, {0xd3, 9},
                               {0xd4, 9}, {0xd5, 9}, {0xd6, 9}, {0xd7, 9}, {0xd8, 9}, {0xd9, 9}, {0xda, 9},
                               {0xdb, 9}, {0x98, 9}, {0x99, 9}, {0x9a, 9}, {0x18, 6}, {0x9b, 9}};

const Code kBlackMakeup[27] = {{0x0f, 10}, {0xc8, 12}, {0xc9, 12}, {0x5b, 12}, {0x33, 12}, {0x34, 12}, {0x35, 12},
                               {0x6c, 13}, {0x6d, 13}, {0x4a, 13}, {0x4b, 13}, {0x4c, 13}, {0x4d, 13}, {0x72, 13},
                               {0x73, 13}, {0x74, 13}, {0x75, 13}, {0x76, 13}, {0x77, 13}, {0x52, 13}, {0x53, 13},
                               {0x54, 13}, {0x55, 13}, {0x5a, 13}, {0x5b, 13}, {0x64, 13}, {0x65, 13}};

void putRun(BitWriter &out, int run, bool black)
{
    const Code *term = black ? kBlackTerm : kWhiteTerm;
    const Code *makeup = black ? kBlackMakeup : kWhiteMakeup;
    // Runs longer than 1728 do not occur on a 1728-pel line; longer lines repeat the largest make-up code.
    while (run >= 1792) {
        out.put(makeup[26].bits, makeup[26].len);
        run -= 1728;
    }
    if (run >= 64) {
        const Code &m = makeup[run / 64 - 1];
        out.put(m.bits, m.len);
        run %= 64;
    }
    out.put(term[run].bits, term[run].len);
}

inline bool pel(const uchar *row, int x)
{
    return row[x >> 3] & (0x80 >> (x & 7));
}
// The first pel at or after x whose colour is not colour, or width; whole octets of that colour are skipped at once
// (most of a text page is white).
int findOther(const uchar *row, int x, int width, bool colour)
{
    const uchar same = colour ? 0xff : 0x00;
    while (x < width) {
        if ((x & 7) == 0) {
            while (x + 8 <= width && row[x >> 3] == same)
                x += 8;
            if (x >= width)
                break;
        }
        if (pel(row, x) != colour)
            return x;
        ++x;
    }
    return width;
}

// The first changing element after position a (a pel whose colour differs from the one before it; the pel before
// the line is white), or width when there is none. With colour >= 0 only elements that turn to that colour count.
int nextChange(const uchar *row, int a, int width, int colour = -1)
{
    int x = a + 1;
    bool before = x > 0 && x <= width && pel(row, x - 1);
    while (x < width) {
        x = findOther(row, x, width, before);
        if (x >= width)
            break;
        before = !before;
        if (colour < 0 || int(before) == colour)
            return x;
        ++x;
    }
    return width;
}
} // namespace

void MhEncoder::encodeRow2D(BitWriter &out, const uchar *row, const uchar *ref, int width)
{
    // T.4 Table 4: the vertical mode code words for a1 - b1 = -3 .. 3.
    static const Code kVertical[7] = {{0x02, 7}, {0x02, 6}, {0x02, 3}, {0x01, 1}, {0x03, 3}, {0x03, 6}, {0x03, 7}};
    int a0 = -1;
    bool black = false; // the colour of a0
    while (a0 < width) {
        const int a1 = nextChange(row, a0, width);
        const int b1 = nextChange(ref, a0, width, black ? 0 : 1);
        const int b2 = nextChange(ref, b1, width);
        if (b2 < a1) { // pass mode: the reference line's run ends before the coding line changes
            out.put(0x1, 4);
            a0 = b2;
            continue;
        }
        if (a1 - b1 >= -3 && a1 - b1 <= 3) {
            const Code &v = kVertical[a1 - b1 + 3];
            out.put(v.bits, v.len);
            a0 = a1;
            black = !black;
            continue;
        }
        const int a2 = nextChange(row, a1, width);
        out.put(0x1, 3); // horizontal mode: the two runs a0a1 and a1a2 in MH code words
        putRun(out, a1 - qMax(a0, 0), black);
        putRun(out, a2 - a1, !black);
        a0 = a2;
    }
}

void MhEncoder::encodeRow(BitWriter &out, const uchar *row, int width)
{
    int x = 0;
    bool black = false;
    while (x < width) {
        int run = 0;
        while (x < width && pel(row, x) == black) {
            ++x;
            ++run;
        }
        putRun(out, run, black);
        black = !black;
    }
    if (width == 0)
        putRun(out, 0, false);
}

} // namespace osprel
