#pragma once
// Small operations on the send queues and the history lists that the delivery code shares.

#include <QString>

namespace osprel {

class FormLists;

struct RecipientRec
{
    QString LastName, FirstName, EmailName, FaxNumber, Notes;
    qint16 ListType = 0; // 0 all contacts, 1 e-mail list, 2 fax list
};

// The person of the fax at the head of the fax queue: last and first name and the number dialled.
RecipientRec LVWGetFirstFaxQueContact(const FormLists &lists);
// Appends a copy of the fax queue's first row at its end (the caller then removes the first).
void LVWSendFirstFaxQueueToLast(FormLists &lists);
// Takes the 50 oldest rows off a history list that holds more than 100 (the newest are at the top).
void LVWClearHistoryHalf(FormLists &lists, int histIndex);

} // namespace osprel
