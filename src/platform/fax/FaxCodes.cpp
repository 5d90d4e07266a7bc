#include "FaxCodes.h"

#include <QHash>

namespace osprel {

QString faxStatusText(int statusCode)
{
    static const char *const names[] = {"Idle",     "Initializing", "Dialing",      "Negotiating",
                                        "Training", "Sending page", "Page confirm", "Disconnecting"};
    static_assert(sizeof names / sizeof names[0] == FaxStatus::Last + 1, "one text per status");
    if (statusCode < 0 || statusCode > FaxStatus::Last)
        return QStringLiteral("Status %1").arg(statusCode);
    return QLatin1String(names[statusCode]);
}

QString faxErrorText(int errorCode)
{
    // T.32's hang-up status codes for those a sending station can meet; the rest are this engine's own.
    static const QHash<int, QString> texts = {
        {0, QStringLiteral("Normal end of connection")},
        {1, QStringLiteral("Ring detected without successful handshake")},
        {2, QStringLiteral("Call aborted")},
        {3, QStringLiteral("No loop current")},
        {4, QStringLiteral("Ringback detected, no answer (timeout)")},
        {5, QStringLiteral("Ringback detected, answer without CED")},
        {10, QStringLiteral("Unspecified phase A error")},
        {11, QStringLiteral("No answer (T.30 T1 timeout)")},
        {20, QStringLiteral("Unspecified transmit phase B error")},
        {21, QStringLiteral("Remote cannot receive or send")},
        {22, QStringLiteral("COMREC error in transmit phase B")},
        {23, QStringLiteral("COMREC invalid command received")},
        {24, QStringLiteral("RSPREC error")},
        {25, QStringLiteral("DCS sent three times without response")},
        {26, QStringLiteral("DIS/DTC received 3 times; DCS not recognized")},
        {27, QStringLiteral("Failure to train at 2400 bit/s or +FMS value")},
        {28, QStringLiteral("RSPREC invalid response received")},
        {40, QStringLiteral("Unspecified transmit phase C error")},
        {43, QStringLiteral("Send fax data underflow")},
        {50, QStringLiteral("Unspecified transmit phase D error")},
        {51, QStringLiteral("RSPREC error")},
        {52, QStringLiteral("No response to MPS repeated 3 times")},
        {53, QStringLiteral("Invalid response to MPS")},
        {54, QStringLiteral("No response to EOP repeated 3 times")},
        {55, QStringLiteral("Invalid response to EOP")},
        {56, QStringLiteral("No response to EOM repeated 3 times")},
        {57, QStringLiteral("Invalid response to EOM")},
        {58, QStringLiteral("Unable to continue after PIN or PIP")},
        {FaxError::Busy, QStringLiteral("Busy")},
        {FaxError::NoAnswer, QStringLiteral("No answer")},
        {FaxError::NoDialTone, QStringLiteral("No dial tone")},
        {FaxError::NoCarrier, QStringLiteral("No carrier")},
        {FaxError::ModemError, QStringLiteral("Modem error")},
        {FaxError::NoResponse, QStringLiteral("Timeout: the modem does not respond")},
        {FaxError::DeviceError, QStringLiteral("Device error")},
        {FaxError::FileError, QStringLiteral("Cannot read the fax image")},
        {FaxError::PageRejected, QStringLiteral("Page rejected by the remote station (RTN)")},
        {FaxError::NoCommonModulation, QStringLiteral("No modulation common to the modem and the remote station")},
        {FaxError::EngineError, QStringLiteral("Internal error of the fax engine")},
    };
    const auto it = texts.constFind(errorCode);
    if (it != texts.constEnd())
        return *it;
    if (errorCode > 0 && errorCode < 100)
        return QStringLiteral("Remote hung up with code %1").arg(errorCode);
    return QStringLiteral("Fax error %1").arg(errorCode);
}

} // namespace osprel
