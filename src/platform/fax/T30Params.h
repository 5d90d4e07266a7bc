#pragma once
// The T.30 session parameters of a sending Class 1 host: what the answering terminal's DIS offers (T.30 Table 2),
// the modulations both sides share (T.31 +FTM codes) and the DCS we answer with.

#include <QByteArray>
#include <QList>
#include <QString>

namespace osprel {

// One rung of the fall-back ladder: a modulation with its T.31 carrier codes and its DCS rate bits.
struct FaxModulation
{
    int bitRate;
    int trainingCode; // AT+FTM value for TCF (long training)
    int pageCode;     // AT+FTM value for page data (V.17 may use short training after TCF)
    quint8 dcsBits;   // bits 11-14 of DCS in octet 2 (T.30 Table 2)
    char family;      // '7' V.17, '9' V.29, '2' V.27 ter
};

struct RemoteCapabilities
{
    bool valid = false;
    bool canReceive = false;                    // bit 10
    bool v27 = false, v29 = false, v17 = false; // V.27 ter at 4800 bit/s; 2400 bit/s is always offered
    bool fine = false;                          // bit 15: 7.7 lines/mm
    bool twoD = false;                          // bit 16: two-dimensional coding (T.4 MR)
    int minScanMs = 20;                         // bits 21-23 at 3.85 lines/mm
    bool halfAtFine = false;                    // bits 21-23: T7.7 = 1/2 T3.85

    static RemoteCapabilities fromDis(const QByteArray &info);
    // The minimum scan line time in ms for pages sent at the given resolution.
    int minScanMsFor(bool fine) const;
    QString describe() const;
};

class T30Params
{
public:
    // The ladder from the fastest modulation down, as T.30 falls back after FTT.
    static const QList<FaxModulation> &ladder();
    // Parses an AT+FTM=? answer ("24,48,72,73,74,96,97,98,121,122,145,146") into carrier codes.
    static QList<int> parseCarrierList(const QByteArray &line);
    // The fastest rung both the modem (its carrier codes) and the remote support, at or below maxBitRate; null if
    // there is none.
    static const FaxModulation *choose(const QList<int> &modemCodes, const RemoteCapabilities &remote,
                                       int maxBitRate = 14400);
    // DCS information field: receive, the modulation, resolution, 1-D or 2-D coding, 215 mm width, A4 length, scan
    // time.
    static QByteArray dcs(const FaxModulation &mod, bool fine, int minScanMs, bool twoD = false);
    // Zero-filled bytes of the scan line time for a bit rate: every coded line lasts at least this long (T.4 4.1.2).
    static int minBytesPerLine(int bitRate, int minScanMs);
};

} // namespace osprel
