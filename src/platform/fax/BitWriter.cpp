#include "BitWriter.h"

namespace osprel {

void BitWriter::put(quint32 code, int bits)
{
    for (int i = bits - 1; i >= 0; --i) {
        if (m_fill == 0) {
            m_bytes.append('\0');
        }
        if (code & (1u << i)) {
            const int pos = m_lsbFirst ? m_fill : 7 - m_fill;
            m_bytes.data()[m_bytes.size() - 1] |= char(1 << pos);
        }
        m_fill = (m_fill + 1) & 7;
    }
}

void BitWriter::zeros(int bits)
{
    while (bits > 0 && m_fill != 0) {
        put(0, 1);
        --bits;
    }
    if (bits >= 8) {
        m_bytes.append(QByteArray(bits / 8, '\0'));
        bits %= 8;
    }
    if (bits > 0)
        put(0, bits);
}

QByteArray BitWriter::take()
{
    m_fill = 0;
    QByteArray out;
    out.swap(m_bytes);
    return out;
}

} // namespace osprel
