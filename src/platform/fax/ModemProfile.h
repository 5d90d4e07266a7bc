#pragma once
// How one fax modem wants to be driven beyond its initialisation string: flow control, parameter reports, bit
// order, who appends RTC, and the pauses between received frames and our transmissions.

#include <QByteArray>
#include <QString>

namespace osprel {

struct ModemProfile
{
    enum Flow { NoFlow = 0, XonXoff = 1, RtsCts = 2 };

    int flowControl = RtsCts;
    // The command that sets the flow control; empty: the class's own (AT+IFC for Class 1, AT+FLO for 2 and 2.0).
    QString flowCommand;
    // Class 2.0: AT+FNR=1,1,1,0, without which T.32 modems report neither the negotiated parameters (+FCS) nor the
    // remote identification (+FCI).
    bool reportParameters = true;
    // Class 2 / 2.0 +FBOR / +FBO: 0 direct order (the first bit on the line is the low-order bit of each octet, as
    // T.31 sends it), 1 reversed.
    int bitOrder = 0;
    // Class 2 / 2.0 modems end each page with RTC themselves (T.32 8.3.3); the host then sends only the lines.
    bool modemAppendsRtc = true;
    // Class 1, in units of 10 ms: AT+FRS before we answer a received frame (T.30: 75 ms +-20 ms after it ends; 0 sends
    // none), AT+FTS before page data and post-page messages, and AT+FTS between DCS and TCF: T.30 wants TCF 75 ms
    // +-20 ms after DCS, and the round trip of +FTM adds to the pause, so it is shorter than the others.
    int frsDelay = 7;
    int ftsDelay = 8;
    int tcfDelay = 6;

    // The flow-control command for a fax class (1, 2, 3 = 2.0).
    QByteArray flowCommandFor(int faxClass) const;
    bool softwareFlow() const { return flowControl == XonXoff; }
};

} // namespace osprel
