#pragma once
// The rules an e-mail address must meet before it is stored or sent: whatever would let it break out of an SMTP
// command or a header line is refused.

#include <QString>

namespace osprel {

// The address as it is stored and sent: blanks around it and one pair of enclosing angle brackets ("<a@b>", as
// copied from a mail program) removed.
QString normalizeAddress(const QString &text);

// Why a (normalized) address cannot be used, in words for a message box or the log; empty when it can. Refused:
// an empty address, line breaks and other control characters, angle brackets, blanks inside, and ";" or ","
// (which separate addresses). A domain without a dot, as user@localhost, is accepted.
QString addressProblem(const QString &address);

} // namespace osprel
