#pragma once
// When an open ticket is sent again and when it is escalated. Times are absolute moments kept with the ticket, so a
// restart between two repeats continues the schedule where it stood.

#include "Ticket.h"

namespace osprel {

// A new ticket under `rule`, opened at `now`: its first repeat due one interval later (none when the rule repeats
// never or zero times).
Ticket openTicket(const QString &code, const TicketRule &rule, const QDateTime &now);

// The moment the ticket is due for escalation; invalid when its rule never escalates.
QDateTime escalationDue(const Ticket &ticket);

// What an open ticket needs at `now`. Acknowledged and cleared tickets need nothing.
bool repeatDue(const Ticket &ticket, const QDateTime &now);
bool escalationIsDue(const Ticket &ticket, const QDateTime &now);

// Records a repeat sent at `now`: the next one follows one interval after this one was due, so the rhythm holds;
// after a long stop (the server was down for several intervals) it follows one interval after now, so that missed
// repeats are not sent in a burst. No repeat follows the last one.
void noteRepeat(Ticket &ticket, const QDateTime &now);
void noteEscalation(Ticket &ticket, const QDateTime &now);

} // namespace osprel
