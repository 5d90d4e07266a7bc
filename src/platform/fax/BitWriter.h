#pragma once
// A bit stream for T.4 coded data: bits collected in transmission order and packed into octets in either bit order.

#include <QByteArray>

namespace osprel {

// Collects bits in transmission order and packs them into octets, first bit in the least significant position (as
// a fax modem sends them, T.31 / T.32 +FBO=0) or in the most significant one (TIFF FillOrder 1).
class BitWriter
{
public:
    explicit BitWriter(bool lsbFirst) : m_lsbFirst(lsbFirst) {}

    void put(quint32 code, int bits);
    void zeros(int bits);
    qint64 bitCount() const { return qint64(m_bytes.size()) * 8 - (m_fill ? 8 - m_fill : 0); }
    // Pads with zero bits to the next octet and returns the octets.
    QByteArray take();

private:
    bool m_lsbFirst;
    QByteArray m_bytes;
    int m_fill = 0; // bits used in the last octet (0 = none open)
};

} // namespace osprel
