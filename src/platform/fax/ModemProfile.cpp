#include "ModemProfile.h"

namespace osprel {

QByteArray ModemProfile::flowCommandFor(int faxClass) const
{
    if (!flowCommand.trimmed().isEmpty())
        return flowCommand.trimmed().toLatin1();
    const int flow = flowControl >= NoFlow && flowControl <= RtsCts ? flowControl : RtsCts;
    if (faxClass == 1) {
        // V.250 +IFC=<DCE by DTE>,<DTE by DCE>. With XON/XOFF only the modem stops us: our data is binary, and a
        // DC3 in it must not stop the modem.
        static const char *const ifc[] = {"AT+IFC=0,0", "AT+IFC=0,1", "AT+IFC=2,2"};
        return ifc[flow];
    }
    // EIA-592 / T.32 +FLO: 0 none, 1 DC1/DC3, 2 RTS/CTS.
    return "AT+FLO=" + QByteArray::number(flow);
}

} // namespace osprel
