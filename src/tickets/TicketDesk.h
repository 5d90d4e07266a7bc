#pragma once
// The tickets of the running server. An immediate notification of a level that asks for acknowledgement opens a
// ticket; until somebody acknowledges or clears it, TimerTickets sends it again as its level says and, when nobody
// has acknowledged it in time, sends it to the escalation list. Repeats and escalations go through the send queues
// like any notification. Every acknowledgement and clear is stored, written into the history and, for an
// acknowledgement, told to the linked chamber program.

#include "Ticket.h"

#include <QList>
#include <QObject>
#include <QTimer>

namespace osprel {

class AlertLink;
class Database;
class FormLists;
class FormTimers;
class PriorityStore;
class SendSwitches;
struct SendJob;

class TicketDesk : public QObject
{
    Q_OBJECT
public:
    // How an acknowledgement or clear arrived; stored and shown with it.
    enum How { ByWindow, ByBus, ByCommandLine };
    static QString howText(How how);

    // Design interval of TimerTickets: due times are checked once a second.
    static constexpr int kTickMs = 1000;
    // The longest name and comment kept; longer ones are cut.
    static constexpr int kMaxNameLength = 80;
    static constexpr int kMaxCommentLength = 500;

    TicketDesk(const Database &database, FormLists &lists, FormTimers &timers, const SendSwitches &switches,
               const PriorityStore &priorities, AlertLink &link, QObject *parent = nullptr);

    // Brings the tickets not yet cleared back from the database onto the Active Alarms list.
    void load();
    void start() { m_timer.start(); }
    void stop() { m_timer.stop(); }
    QTimer &timer() { return m_timer; }

    // The dispatcher's hook: an alert of `level` is about to be sent at once; when the level asks for
    // acknowledgement a ticket opens and the job carries its code.
    void immediateAlert(qint16 level, SendJob &job);
    void TimerTickets_Timer();

    // Each returns false, with a log line saying why, for a code that is no open ticket, a missing name, or a
    // ticket already acknowledged; nothing a caller sends can make them fail otherwise.
    bool acknowledge(const QString &code, const QString &who, const QString &comment, How how);
    bool clear(const QString &code, const QString &who, How how);

    const QList<Ticket> &tickets() const { return m_tickets; }

private:
    int indexOf(const QString &code) const;
    void showRow(int index);
    void repeat(Ticket &ticket, const QDateTime &now);
    void escalate(Ticket &ticket, const QDateTime &now);
    void writeHistory(const Ticket &ticket, const QString &action, const QString &who, How how, const QString &comment);

    const Database &m_database;
    FormLists &m_lists;
    FormTimers &m_timers;
    const SendSwitches &m_switches;
    const PriorityStore &m_priorities;
    AlertLink &m_link;
    QTimer m_timer;
    QList<Ticket> m_tickets; // in the order of the Active Alarms rows
    QDateTime m_pausedUntil; // after a failed tick the desk waits a minute before trying again
};

// A name or comment as it is kept: one line, no "|" (the history's field separator), blanks trimmed, cut at `limit`.
QString cleanTicketText(const QString &text, int limit);

} // namespace osprel
