#pragma once
// T.4 coding of scan lines: one-dimensional Modified Huffman (ITU-T T.4 4.1) and two-dimensional Modified READ
// (T.4 4.2), written to a bit stream in either bit order.

#include "BitWriter.h"

namespace osprel {

class MhEncoder
{
public:
    static constexpr quint32 kEol = 0x001; // 000000000001 (T.4 4.1.2)
    static constexpr int kEolBits = 12;

    // Codes one scan line of width pels; row holds the pels packed 8 per octet, most significant first, 1 = black.
    // Every line begins with a white run, of length 0 if the line starts black (T.4 4.1.1).
    static void encodeRow(BitWriter &out, const uchar *row, int width);
    // Codes one scan line two-dimensionally against the line above it, ref (T.4 4.2, Modified READ): pass,
    // vertical and horizontal modes.
    static void encodeRow2D(BitWriter &out, const uchar *row, const uchar *ref, int width);
};

} // namespace osprel
