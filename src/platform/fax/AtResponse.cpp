#include "AtResponse.h"

namespace osprel {

const char *atResponseName(AtResponse r)
{
    static const char *const names[] = {"Nothing",   "OK",   "CONNECT",  "NO CARRIER", "ERROR",   "BUSY", "NO DIALTONE",
                                        "NO ANSWER", "RING", "+FCERROR", "empty line", "timeout", "XON",  "other"};
    static_assert(sizeof names / sizeof names[0] == int(AtResponse::Other) + 1, "one name per response");
    return names[int(r)];
}

AtResponse classifyAtLine(const QByteArray &raw)
{
    const QByteArray line = raw.trimmed();
    if (line.isEmpty())
        return AtResponse::Empty;
    if (line == "OK")
        return AtResponse::Ok;
    if (line == "CONNECT" || line.startsWith("CONNECT "))
        return AtResponse::Connect;
    if (line == "NO CARRIER")
        return AtResponse::NoCarrier;
    if (line == "ERROR")
        return AtResponse::Error;
    if (line == "BUSY")
        return AtResponse::Busy;
    if (line == "NO DIALTONE" || line == "NO DIAL TONE")
        return AtResponse::NoDialTone;
    if (line == "NO ANSWER")
        return AtResponse::NoAnswer;
    if (line == "RING")
        return AtResponse::Ring;
    if (line == "+FCERROR" || line == "+F4")
        return AtResponse::FcError;
    return AtResponse::Other;
}

bool isFinalResponse(AtResponse r)
{
    switch (r) {
    case AtResponse::Ok:
    case AtResponse::Connect:
    case AtResponse::NoCarrier:
    case AtResponse::Error:
    case AtResponse::Busy:
    case AtResponse::NoDialTone:
    case AtResponse::NoAnswer:
    case AtResponse::FcError:
        return true;
    default:
        return false;
    }
}

QByteArray AtReply::line(const char *prefix) const
{
    for (const QByteArray &l : lines)
        if (l.startsWith(prefix))
            return l;
    return QByteArray();
}

} // namespace osprel
