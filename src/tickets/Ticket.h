#pragma once
// One ticket: an immediate notification of a level that asks for acknowledgement, with the rule it was opened under,
// how far its repeats and escalation have gone, and whether somebody has acknowledged or cleared it.

#include "TicketRule.h"

#include <QDateTime>
#include <QString>

namespace osprel {

enum class TicketState : qint16 { Open = 0, Acknowledged = 1, Cleared = 2 };

struct Ticket
{
    QString code; // "4821-QX"
    qint16 level = 0;
    QString chamberName, category, alertNumber; // category: its name alone ("CHAMBER_ALARM")
    QString message;                            // the first notification's text, ticket line included
    QString histData; // the first notification's summary line (its category field names the ticket)
    QDateTime openedAt;
    // The level's rule as it stood when the ticket opened: a later change of the level leaves open tickets alone.
    TicketRule rule;
    int repeats = 0;
    QDateTime nextRepeat;  // invalid: no repeat to come
    QDateTime escalatedAt; // invalid: not escalated
    TicketState state = TicketState::Open;
    bool byFax = false; // the first notification went by fax too: acknowledgements go into the fax history as well
};

} // namespace osprel
