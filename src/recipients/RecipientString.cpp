#include "RecipientString.h"

#include "ErrorReport.h"
#include "FormLists.h"
#include "Globals.h"

namespace osprel {

void CopyEmailToRecipientStr(const FormLists &lists)
{
    guarded(QStringLiteral("CopyEmailToRecipientStr"), [&] {
        g.gstrEmailRecipients.clear();
        const ListStore &recipients = lists.lvwEmailContacts;
        for (int row = 1; row <= recipients.count(); ++row)
            g.gstrEmailRecipients += recipients.text(row, 3) + QStringLiteral("; ");
    });
}

} // namespace osprel
