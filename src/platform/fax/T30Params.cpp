#include "T30Params.h"

namespace osprel {

namespace {
// Bits of the DIS/DCS information field, numbered as in T.30 Table 2 (bit 1 = lowest bit of the first octet).
bool bit(const QByteArray &info, int n)
{
    const int octet = (n - 1) / 8;
    return octet < info.size() && (quint8(info.at(octet)) & (1 << ((n - 1) % 8)));
}
} // namespace

RemoteCapabilities RemoteCapabilities::fromDis(const QByteArray &info)
{
    RemoteCapabilities c;
    if (info.size() < 3)
        return c;
    c.valid = true;
    c.canReceive = bit(info, 10);
    // Bits 11-14 (T.30 Table 2): 0000 V.27 ter fall-back only, 0100 V.27 ter, 1000 V.29, 1100 both, 1101 with V.17.
    const bool b11 = bit(info, 11), b12 = bit(info, 12), b13 = bit(info, 13), b14 = bit(info, 14);
    c.v27 = b12; // 4800 bit/s; 2400 bit/s is always there
    c.v29 = b11;
    c.v17 = b11 && b12 && !b13 && b14;
    c.fine = bit(info, 15);
    c.twoD = bit(info, 16);
    // Bits 21-23: minimum scan line time at 3.85 l/mm, and whether it halves at 7.7 l/mm.
    const int code = (bit(info, 21) ? 4 : 0) | (bit(info, 22) ? 2 : 0) | (bit(info, 23) ? 1 : 0);
    switch (code) {
    case 0: // 000
        c.minScanMs = 20;
        break;
    case 1: // 001
        c.minScanMs = 40;
        break;
    case 2: // 010
        c.minScanMs = 10;
        break;
    case 4: // 100
        c.minScanMs = 5;
        break;
    case 3: // 011
        c.minScanMs = 10;
        c.halfAtFine = true;
        break;
    case 6: // 110
        c.minScanMs = 20;
        c.halfAtFine = true;
        break;
    case 5: // 101
        c.minScanMs = 40;
        c.halfAtFine = true;
        break;
    default: // 111
        c.minScanMs = 0;
        break;
    }
    return c;
}

int RemoteCapabilities::minScanMsFor(bool fineRes) const
{
    return fineRes && halfAtFine ? minScanMs / 2 : minScanMs;
}

QString RemoteCapabilities::describe() const
{
    QString s = QStringLiteral("receive=%1 V.27ter=%2 V.29=%3 V.17=%4 fine=%5 2-D=%8 scan=%6ms%7")
                    .arg(int(canReceive))
                    .arg(int(v27))
                    .arg(int(v29))
                    .arg(int(v17))
                    .arg(int(fine))
                    .arg(minScanMs)
                    .arg(halfAtFine ? QStringLiteral(" (half at fine)") : QString())
                    .arg(int(twoD));
    return s;
}

const QList<FaxModulation> &T30Params::ladder()
{
    // DCS bits 11-14 in octet 2: bit 11 = 0x04, 12 = 0x08, 13 = 0x10, 14 = 0x20.
    static const QList<FaxModulation> rungs = {
        {14400, 145, 146, 0x20, '7'}, // 0001
        {12000, 121, 122, 0x28, '7'}, // 0101
        {9600, 97, 98, 0x24, '7'},    // 1001
        {9600, 96, 96, 0x04, '9'},    // 1000
        {7200, 73, 74, 0x2c, '7'},    // 1101
        {7200, 72, 72, 0x0c, '9'},    // 1100
        {4800, 48, 48, 0x08, '2'},    // 0100
        {2400, 24, 24, 0x00, '2'},    // 0000
    };
    return rungs;
}

QList<int> T30Params::parseCarrierList(const QByteArray &line)
{
    QList<int> codes;
    QByteArray text = line;
    text.replace('(', ',').replace(')', ',');
    for (const QByteArray &part : text.split(',')) {
        const QByteArray t = part.trimmed();
        const int dash = t.indexOf('-');
        bool ok1 = false, ok2 = false;
        if (dash > 0) {
            const int a = t.left(dash).toInt(&ok1), b = t.mid(dash + 1).toInt(&ok2);
            if (ok1 && ok2 && b - a < 256)
                for (int v = a; v <= b; ++v)
                    codes.append(v);
        } else {
            const int v = t.toInt(&ok1);
            if (ok1)
                codes.append(v);
        }
    }
    return codes;
}

const FaxModulation *T30Params::choose(const QList<int> &modemCodes, const RemoteCapabilities &remote, int maxBitRate)
{
    for (const FaxModulation &m : ladder()) {
        if (m.bitRate > maxBitRate || !modemCodes.contains(m.trainingCode) || !modemCodes.contains(m.pageCode))
            continue;
        const bool remoteHas = m.family == '7'   ? remote.v17
                               : m.family == '9' ? remote.v29
                                                 : remote.v27 || m.bitRate == 2400;
        if (remoteHas)
            return &m;
    }
    return nullptr;
}

QByteArray T30Params::dcs(const FaxModulation &mod, bool fine, int minScanMs, bool twoD)
{
    QByteArray info(3, '\0');
    // Octet 2: bit 10 "receive the document", bits 11-14 the modulation, bit 15 fine, bit 16 2-D (MR) coding.
    info[1] = char(0x02 | mod.dcsBits | (fine ? 0x40 : 0x00) | (twoD ? 0x80 : 0x00));
    // Octet 3: bits 17-18 00 = 215 mm (1728 pels), bits 19-20 00 = A4 length, bits 21-23 scan time, bit 24 clear.
    quint8 scan = 0x00; // 000 = 20 ms
    if (minScanMs <= 0)
        scan = 0x70; // 111
    else if (minScanMs <= 5)
        scan = 0x10; // 100
    else if (minScanMs <= 10)
        scan = 0x20; // 010
    else if (minScanMs <= 20)
        scan = 0x00;
    else
        scan = 0x40; // 001 = 40 ms
    info[2] = char(scan);
    return info;
}

int T30Params::minBytesPerLine(int bitRate, int minScanMs)
{
    return (bitRate * minScanMs + 7999) / 8000;
}

} // namespace osprel
