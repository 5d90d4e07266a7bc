#pragma once
// The words a ticket adds to its notifications: the ticket line of the first one, and the first lines of a repeat
// and an escalation. Repeats and escalations begin with "#", as the server's own messages do, so that they carry
// no alert number back to the chamber program a second time.

#include "QueueRoutines.h"
#include "Ticket.h"

namespace osprel {

// The first notification: its category and history line name the ticket, its text starts with the ticket line.
void markFirstNotification(SendJob &job, const QString &code);
SendJob repeatJob(const Ticket &ticket);
SendJob escalationJob(const Ticket &ticket);
// The history line of an acknowledgement or clear: the ticket's line with the comment as the chamber error.
QString actionHistData(const Ticket &ticket, const QString &comment);

} // namespace osprel
