#include "QueueRoutines.h"

#include "ErrorReport.h"
#include "FormLists.h"

namespace osprel {

RecipientRec LVWGetFirstFaxQueContact(const FormLists &lists)
{
    RecipientRec rec;
    guarded(QStringLiteral("LVWGetFirstFaxQueContact"), [&] {
        const ListStore &queue = lists.lvwSendFaxQue;
        rec.LastName = queue.text(1, 8);
        rec.FirstName = queue.text(1, 9);
        rec.FaxNumber = queue.text(1, 4);
    });
    return rec;
}

void LVWSendFirstFaxQueueToLast(FormLists &lists)
{
    guarded(QStringLiteral("LVWSendFirstFaxQueueToLast"), [&] { lists.lvwSendFaxQue.add(lists.lvwSendFaxQue.row(1)); });
}

void LVWClearHistoryHalf(FormLists &lists, int histIndex)
{
    guarded(QStringLiteral("LVWClearHistoryHalf"), [&] {
        if (histIndex != 0 && histIndex != 1)
            raise(Err::SubscriptOutOfRange);
        ListStore &history = lists.lvwHist[histIndex];
        // A fixed 50 (100 / 2), not half of what is there.
        if (history.count() > 100) {
            for (int i = 0; i < 50; ++i)
                history.remove(history.count());
        }
    });
}

} // namespace osprel
