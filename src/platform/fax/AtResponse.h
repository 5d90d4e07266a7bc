#pragma once
// The responses a fax modem gives on its command line, classified; a timeout and an empty line are ordinary values.

#include <QByteArray>
#include <QList>

namespace osprel {

enum class AtResponse {
    Nothing,    // no response yet
    Ok,         // OK
    Connect,    // CONNECT (with or without a rate after it)
    NoCarrier,  // NO CARRIER
    Error,      // ERROR
    Busy,       // BUSY
    NoDialTone, // NO DIALTONE / NO DIAL TONE
    NoAnswer,   // NO ANSWER
    Ring,       // RING
    FcError,    // +FCERROR: T.31, a carrier other than the one asked for
    Empty,      // an empty line
    Timeout,    // the modem said nothing in time
    Xon,        // XON (DC1): EIA-592 / T.32, the modem is ready for page data
    Other,      // any other line: an information text such as "0,1,1.0" or "+FHNG:0"
};

const char *atResponseName(AtResponse r);

// Classifies one response line (without its CR LF).
AtResponse classifyAtLine(const QByteArray &line);

// True for the result codes that end a command (T.31 / V.250 final result codes).
bool isFinalResponse(AtResponse r);

// What an exchange with the modem brought back: the response that ended it, the information lines before it and,
// for a data reception, the unstuffed data.
struct AtReply
{
    AtResponse result = AtResponse::Nothing;
    QList<QByteArray> lines;
    QByteArray data;
    bool dataComplete = false; // the data ended with DLE ETX

    bool is(AtResponse r) const { return result == r; }
    // The first information line that starts with prefix (such as "+FHNG:"), or an empty array.
    QByteArray line(const char *prefix) const;
};

} // namespace osprel
