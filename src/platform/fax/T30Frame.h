#pragma once
// A T.30 HDLC control frame as a Class 1 host sends and receives it (T.30, T.31 +FTH / +FRH): address, control,
// facsimile control field (FCF) and information field, without the frame check sequence.

#include <QByteArray>
#include <QString>

namespace osprel {

namespace Fcf {
// T.30 facsimile control field codings, as the octets arrive from the modem (bit 1 first transmitted = least
// significant bit). The lowest bit is the X bit: set in the frames of the station that received a valid DIS (T.30),
// that is ours.
constexpr quint8 DIS = 0x80, CSI = 0x40, NSF = 0x20;
constexpr quint8 DCS = 0x82, TSI = 0x42, CFR = 0x84, FTT = 0x44;
constexpr quint8 EOM = 0x8e, MPS = 0x4e, EOP = 0x2e;
constexpr quint8 MCF = 0x8c, RTP = 0xcc, RTN = 0x4c, PIP = 0xac, PIN = 0x2c;
constexpr quint8 DCN = 0xfa, CRP = 0x1a;
constexpr quint8 XBit = 0x01;
} // namespace Fcf

class T30Frame
{
public:
    static constexpr quint8 kAddress = 0xff;
    static constexpr quint8 kControlMore = 0x03;  // another frame follows
    static constexpr quint8 kControlFinal = 0x13; // last frame of the message (T.30)

    T30Frame() = default;
    // A frame we send: X bit set, final or not.
    static T30Frame command(quint8 fcf, const QByteArray &info = QByteArray(), bool final = true);
    // A frame as the modem delivered it; strips the two FCS octets that T.31 passes on. Invalid when too short or
    // not addressed 0xFF.
    static T30Frame fromReceived(const QByteArray &data);

    bool isValid() const { return m_valid; }
    bool isFinal() const { return m_control == kControlFinal; }
    // The FCF without the X bit, to compare against Fcf constants.
    quint8 fcf() const { return quint8(m_fcf & ~Fcf::XBit); }
    const QByteArray &info() const { return m_info; }
    // What the modem is given: address, control, FCF, information (T.31 computes the FCS).
    QByteArray encoded() const;

    static const char *fcfName(quint8 fcf);
    // CSI / TSI information field: 20 characters, the last one sent first (T.30 CSI / TSI).
    static QByteArray encodeIdent(const QString &id);
    static QString decodeIdent(const QByteArray &info);

private:
    bool m_valid = false;
    quint8 m_control = kControlFinal;
    quint8 m_fcf = 0;
    QByteArray m_info;
};

} // namespace osprel
