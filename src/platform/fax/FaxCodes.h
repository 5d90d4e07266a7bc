#pragma once
// The fax engine's status and error numbers, kept in one place with their texts.

#include <QString>

namespace osprel {

// Progress of a call (FaxEvent::statusCode).
namespace FaxStatus {
constexpr int Idle = 0;
constexpr int Initializing = 1;
constexpr int Dialing = 2;
constexpr int Negotiating = 3; // T.30 phase B
constexpr int Training = 4;
constexpr int SendingPage = 5;   // phase C
constexpr int PageConfirm = 6;   // phase D
constexpr int Disconnecting = 7; // phase E
constexpr int Last = Disconnecting;
} // namespace FaxStatus

// Why a fax failed (FaxEvent::errorCode; 0 = sent). 1-99 are the hang-up status codes of ITU-T T.32
// (EIA-592 +FHNG): a Class 2 or 2.0 modem reports them itself, the Class 1 driver reports the same condition with
// the same number. 101 and up are failures before or outside the fax session.
namespace FaxError {
constexpr int None = 0;
constexpr int CallAborted = 2;          // T.32: call aborted (our stop())
constexpr int NoAnswerT1 = 11;          // T.32: no answer, T.30 T1 timeout
constexpr int PhaseBError = 20;         // T.32: unspecified transmit phase B error
constexpr int RemoteCannotReceive = 21; // T.32: remote cannot receive or send
constexpr int DcsNoResponse = 25;       // T.32: DCS sent three times without response
constexpr int DisRepeated = 26;         // T.32: DIS/DTC received 3 times; DCS not recognized
constexpr int TrainingFailed = 27;      // T.32: failure to train at 2400 bit/s
constexpr int PhaseCError = 40;         // T.32: unspecified transmit phase C error
constexpr int PhaseDError = 50;         // T.32: unspecified transmit phase D error
constexpr int MpsNoResponse = 52;       // T.32: no response to MPS repeated 3 times
constexpr int MpsInvalidResponse = 53;  // T.32: invalid response to MPS
constexpr int EopNoResponse = 54;       // T.32: no response to EOP repeated 3 times
constexpr int EopInvalidResponse = 55;  // T.32: invalid response to EOP
constexpr int Busy = 101;
constexpr int NoAnswer = 102;
constexpr int NoDialTone = 103;
constexpr int NoCarrier = 104;
constexpr int ModemError = 105;   // the modem answered ERROR to a command it needs to take
constexpr int NoResponse = 106;   // the modem did not answer in time
constexpr int DeviceError = 107;  // the port cannot be opened, or the line broke
constexpr int FileError = 108;    // the fax image cannot be read
constexpr int PageRejected = 109; // the remote kept asking for the page again (RTN)
constexpr int NoCommonModulation = 110;
constexpr int EngineError = 111; // an internal error of the engine (reported through the error convention)
} // namespace FaxError

QString faxStatusText(int statusCode);
QString faxErrorText(int errorCode);

} // namespace osprel
