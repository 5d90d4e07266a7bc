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

} // namespace osprel
