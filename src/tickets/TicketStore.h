#pragma once
// The tickets in the database (Tickets) and what was done to them (TicketActions). Every change joins the batch of
// the queue rows it goes with, so a repeat's jobs and its count are stored together.

#include "Ticket.h"

#include <QList>

namespace osprel {

class Database;

// Each raises a run-time error when the statement fails.
bool ticketCodeTaken(const Database &database, const QString &code);
void insertTicket(const Database &database, const Ticket &ticket);
// Repeats, next repeat, escalation and state.
void saveTicketProgress(const Database &database, const Ticket &ticket);
// The tickets not cleared, oldest first.
QList<Ticket> loadActiveTickets(const Database &database);
// action: "Acknowledged" or "Cleared"; how: "window", "bus" or "command line".
void recordTicketAction(const Database &database, const QString &code, const QString &action, const QString &who,
                        const QString &how, const QString &comment, const QDateTime &at);

} // namespace osprel
