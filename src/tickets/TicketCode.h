#pragma once
// Ticket codes: four digits, a dash and two letters ("4821-QX"), short enough to read out on the phone and type on
// a command line. Letters that look like digits (I, O) are left out.

#include <QString>
#include <functional>

namespace osprel {

// A code for which `taken` says no; raises when none is found in many tries (the space holds 5.76 million).
QString newTicketCode(const std::function<bool(const QString &)> &taken);
// The code a person typed, in its one stored form (blanks trimmed, letters upper-cased); empty when it is not a
// code at all.
QString normalTicketCode(const QString &typed);

} // namespace osprel
