#include "T30Frame.h"

#include <algorithm>

namespace osprel {

T30Frame T30Frame::command(quint8 fcf, const QByteArray &info, bool final)
{
    T30Frame f;
    f.m_valid = true;
    f.m_control = final ? kControlFinal : kControlMore;
    f.m_fcf = quint8(fcf | Fcf::XBit);
    f.m_info = info;
    return f;
}

T30Frame T30Frame::fromReceived(const QByteArray &data)
{
    T30Frame f;
    // Address, control, FCF and the two FCS octets at least.
    if (data.size() < 5 || quint8(data.at(0)) != kAddress)
        return f;
    f.m_control = quint8(data.at(1));
    f.m_fcf = quint8(data.at(2));
    f.m_info = data.mid(3, data.size() - 5);
    f.m_valid = f.m_control == kControlFinal || f.m_control == kControlMore;
    return f;
}

QByteArray T30Frame::encoded() const
{
    QByteArray out;
    out += char(kAddress);
    out += char(m_control);
    out += char(m_fcf);
    out += m_info;
    return out;
}

const char *T30Frame::fcfName(quint8 fcf)
{
    switch (quint8(fcf & ~Fcf::XBit)) {
    case Fcf::DIS:
        return "DIS";
    case Fcf::CSI:
        return "CSI";
    case Fcf::NSF:
        return "NSF";
    case Fcf::DCS:
        return "DCS";
    case Fcf::TSI:
        return "TSI";
    case Fcf::CFR:
        return "CFR";
    case Fcf::FTT:
        return "FTT";
    case Fcf::EOM:
        return "EOM";
    case Fcf::MPS:
        return "MPS";
    case Fcf::EOP:
        return "EOP";
    case Fcf::MCF:
        return "MCF";
    case Fcf::RTP:
        return "RTP";
    case Fcf::RTN:
        return "RTN";
    case Fcf::PIP:
        return "PIP";
    case Fcf::PIN:
        return "PIN";
    case Fcf::DCN:
        return "DCN";
    case Fcf::CRP:
        return "CRP";
    default:
        return "unknown";
    }
}

QByteArray T30Frame::encodeIdent(const QString &id)
{
    QByteArray text = id.toLatin1().left(20);
    text.append(QByteArray(20 - text.size(), ' '));
    std::reverse(text.begin(), text.end());
    return text;
}

QString T30Frame::decodeIdent(const QByteArray &info)
{
    QByteArray text = info.left(20);
    std::reverse(text.begin(), text.end());
    return QString::fromLatin1(text).trimmed();
}

} // namespace osprel
