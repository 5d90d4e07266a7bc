#include "SendStatus.h"

#include "ErrorReport.h"

namespace osprel {

void SendStatus::SendStatUpdate()
{
    if (gblnStatusUpdating)
        return;
    gblnStatusUpdating = true;
    guarded(QStringLiteral("SendStatUpdate"), [&] { update(); });
    gblnStatusUpdating = false; // also after a reported error: the guard must never stay set
}

void SendStatus::update()
{
    // The e-mail and fax outcomes are recorded here as their delivery paths arrive.
}

} // namespace osprel
