#pragma once
// The recipients of every queued e-mail: each address of the e-mail recipient list followed by "; ".

namespace osprel {

class FormLists;

// Rebuilds the process-wide recipient string from lvwEmailContacts.
void CopyEmailToRecipientStr(const FormLists &lists);

} // namespace osprel
