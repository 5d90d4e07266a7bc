#include "TicketSchedule.h"

namespace osprel {

namespace {
qint64 seconds(qint16 minutes)
{
    return qint64(minutes) * 60;
}
} // namespace

Ticket openTicket(const QString &code, const TicketRule &rule, const QDateTime &now)
{
    Ticket t;
    t.code = code;
    t.rule = rule.bounded();
    t.openedAt = now;
    if (t.rule.RepeatMinutes > 0 && t.rule.RepeatTimes > 0)
        t.nextRepeat = now.addSecs(seconds(t.rule.RepeatMinutes));
    return t;
}

QDateTime escalationDue(const Ticket &ticket)
{
    if (ticket.rule.EscalateMinutes <= 0 || !ticket.openedAt.isValid())
        return QDateTime();
    return ticket.openedAt.addSecs(seconds(ticket.rule.EscalateMinutes));
}

bool repeatDue(const Ticket &ticket, const QDateTime &now)
{
    return ticket.state == TicketState::Open && ticket.nextRepeat.isValid() &&
           ticket.repeats < ticket.rule.RepeatTimes && now >= ticket.nextRepeat;
}

bool escalationIsDue(const Ticket &ticket, const QDateTime &now)
{
    const QDateTime due = escalationDue(ticket);
    return ticket.state == TicketState::Open && !ticket.escalatedAt.isValid() && due.isValid() && now >= due;
}

void noteRepeat(Ticket &ticket, const QDateTime &now)
{
    ++ticket.repeats;
    if (ticket.repeats >= ticket.rule.RepeatTimes || ticket.rule.RepeatMinutes <= 0) {
        ticket.nextRepeat = QDateTime();
        return;
    }
    const qint64 every = seconds(ticket.rule.RepeatMinutes);
    QDateTime next = (ticket.nextRepeat.isValid() ? ticket.nextRepeat : now).addSecs(every);
    if (next <= now)
        next = now.addSecs(every);
    ticket.nextRepeat = next;
}

void noteEscalation(Ticket &ticket, const QDateTime &now)
{
    ticket.escalatedAt = now;
}

} // namespace osprel
