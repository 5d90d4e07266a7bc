#include "TicketStore.h"

#include "Database.h"

#include <QSqlQuery>
#include <QVariant>

namespace osprel {

namespace {
QVariant moment(const QDateTime &when)
{
    return when.isValid() ? QVariant(when.toString(Qt::ISODateWithMs)) : QVariant();
}

QDateTime momentOf(const QVariant &value)
{
    return value.isNull() ? QDateTime() : QDateTime::fromString(value.toString(), Qt::ISODateWithMs);
}

qint16 bounded(const QVariant &value, qint16 limit)
{
    return qint16(qBound(0LL, value.toLongLong(), qint64(limit)));
}
} // namespace

bool ticketCodeTaken(const Database &database, const QString &code)
{
    QSqlQuery row = database.run(QStringLiteral("SELECT 1 FROM Tickets WHERE Code = ?"), {code});
    return row.next();
}

void insertTicket(const Database &database, const Ticket &t)
{
    database.run(QStringLiteral("INSERT INTO Tickets (Code, Level, ChamberName, Category, AlertNumber, AlarmMsg,"
                                " HistData, OpenedAt, RepeatMinutes, RepeatTimes, EscalateMinutes, Repeats, NextRepeat,"
                                " EscalatedAt, State, ByFax) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"),
                 {t.code, t.level, t.chamberName, t.category, t.alertNumber, t.message, t.histData, moment(t.openedAt),
                  t.rule.RepeatMinutes, t.rule.RepeatTimes, t.rule.EscalateMinutes, t.repeats, moment(t.nextRepeat),
                  moment(t.escalatedAt), qint16(t.state), int(t.byFax)});
}

void saveTicketProgress(const Database &database, const Ticket &t)
{
    database.run(QStringLiteral("UPDATE Tickets SET Repeats = ?, NextRepeat = ?, EscalatedAt = ?, State = ?"
                                " WHERE Code = ?"),
                 {t.repeats, moment(t.nextRepeat), moment(t.escalatedAt), qint16(t.state), t.code});
}

QList<Ticket> loadActiveTickets(const Database &database)
{
    QList<Ticket> tickets;
    QSqlQuery rows = database.run(
        QStringLiteral("SELECT Code, Level, ChamberName, Category, AlertNumber, AlarmMsg, HistData, OpenedAt,"
                       " RepeatMinutes, RepeatTimes, EscalateMinutes, Repeats, NextRepeat, EscalatedAt, State, ByFax"
                       " FROM Tickets WHERE State <> ? ORDER BY OpenedAt, rowid"),
        {qint16(TicketState::Cleared)});
    while (rows.next()) {
        Ticket t;
        t.code = rows.value(0).toString();
        t.level = qint16(rows.value(1).toInt());
        t.chamberName = rows.value(2).toString();
        t.category = rows.value(3).toString();
        t.alertNumber = rows.value(4).toString();
        t.message = rows.value(5).toString();
        t.histData = rows.value(6).toString();
        t.openedAt = momentOf(rows.value(7));
        t.rule.AckRequired = true;
        t.rule.RepeatMinutes = bounded(rows.value(8), TicketRule::kMaxMinutes);
        t.rule.RepeatTimes = bounded(rows.value(9), TicketRule::kMaxTimes);
        t.rule.EscalateMinutes = bounded(rows.value(10), TicketRule::kMaxMinutes);
        t.repeats = int(qBound(0LL, rows.value(11).toLongLong(), qint64(TicketRule::kMaxTimes)));
        t.nextRepeat = momentOf(rows.value(12));
        t.escalatedAt = momentOf(rows.value(13));
        t.state =
            rows.value(14).toInt() == int(TicketState::Acknowledged) ? TicketState::Acknowledged : TicketState::Open;
        t.byFax = rows.value(15).toInt() != 0;
        if (!t.openedAt.isValid())
            t.openedAt = QDateTime::fromSecsSinceEpoch(0); // a damaged row still shows, and can be cleared
        tickets.append(t);
    }
    return tickets;
}

void recordTicketAction(const Database &database, const QString &code, const QString &action, const QString &who,
                        const QString &how, const QString &comment, const QDateTime &at)
{
    database.run(QStringLiteral("INSERT INTO TicketActions (Code, Action, Who, How, Comment, At)"
                                " VALUES (?, ?, ?, ?, ?, ?)"),
                 {code, action, who, how, comment, moment(at)});
}

} // namespace osprel
