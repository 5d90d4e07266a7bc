#include "Class20Session.h"

namespace osprel {

const Class2Session::Names &Class20Session::names() const
{
    static const Names n = {"2.0", "+FLI", "+FIS", "+FCO", "+FCI", "+FCS", "+FHS", "+FPS", "+FBO"};
    return n;
}

QByteArray Class20Session::pageTerminator(bool lastPage) const
{
    // T.32: the page data ends in-band with what follows it, instead of EIA-592's DLE ETX and +FET.
    return lastPage ? QByteArray("\x10.", 2) : QByteArray("\x10,", 2);
}

QByteArray Class20Session::reportCommand() const
{
    // T.32 +FNR=<rpr>,<tpr>,<idr>,<nsr>: report the remote's capabilities (+FIS), the negotiated session (+FCS) and
    // its identification (+FCI); no non-standard frames.
    return job().profile.reportParameters ? QByteArray("AT+FNR=1,1,1,0") : QByteArray();
}

} // namespace osprel
