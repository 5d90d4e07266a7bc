#include "Globals.h"

namespace osprel {

Globals g;

void resetGlobals()
{
    g = Globals();
}

bool IsSendInProgress()
{
    return g.gintEmailSendState != 0 || g.gintFaxSendState != 0;
}

qint16 reportedEmailState()
{
    return g.gblnStoreFailed ? qint16(-1) : g.gintEmailSendState;
}

qint16 reportedFaxState()
{
    return g.gblnStoreFailed ? qint16(-1) : g.gintFaxSendState;
}

} // namespace osprel
