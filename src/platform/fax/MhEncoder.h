#pragma once
// T.4 one-dimensional Modified Huffman coding (ITU-T T.4 4.1): scan lines into run-length code words, written to a
// bit stream in either bit order.

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
};

} // namespace osprel
