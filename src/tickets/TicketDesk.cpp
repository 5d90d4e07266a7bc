#include "TicketDesk.h"

#include "AlertLink.h"
#include "Clock.h"
#include "Database.h"
#include "ErrorReport.h"
#include "FormLists.h"
#include "Globals.h"
#include "History.h"
#include "Log.h"
#include "PriorityStore.h"
#include "QueueRoutines.h"
#include "SendSwitches.h"
#include "TicketCode.h"
#include "TicketMessages.h"
#include "TicketSchedule.h"
#include "TicketStore.h"
#include "TimeScale.h"
#include "clsAlertCls.h"

namespace osprel {

namespace {
enum Column {
    CodeColumn = 1,
    ChamberColumn,
    CategoryColumn,
    FirstSentColumn,
    RepeatsColumn,
    EscalatedColumn,
    StateColumn
};

QString stamp(const QDateTime &when)
{
    return when.isValid() ? when.toString(QStringLiteral("MM/dd/yyyy  HH:mm:ss")) : QString();
}

QString stateText(TicketState state)
{
    switch (state) {
    case TicketState::Open:
        return QStringLiteral("Open");
    case TicketState::Acknowledged:
        return QStringLiteral("Acknowledged");
    case TicketState::Cleared:
        return QStringLiteral("Cleared");
    }
    return QString();
}
} // namespace

QString cleanTicketText(const QString &text, int limit)
{
    QString clean;
    clean.reserve(qMin<qsizetype>(text.size(), limit + 1));
    for (const QChar c : text) {
        if (clean.size() > limit)
            break;
        clean += c == u'|' ? u'/' : (c.category() == QChar::Other_Control || c.isSpace()) ? u' ' : c;
    }
    clean = clean.simplified();
    if (clean.size() > limit)
        clean.truncate(limit);
    // A cut may split a surrogate pair; its half is dropped rather than stored.
    if (!clean.isEmpty() && clean.back().isHighSurrogate())
        clean.chop(1);
    return clean;
}

QString TicketDesk::howText(How how)
{
    switch (how) {
    case ByWindow:
        return QStringLiteral("window");
    case ByBus:
        return QStringLiteral("bus");
    case ByCommandLine:
        return QStringLiteral("command line");
    }
    return QString();
}

TicketDesk::TicketDesk(const Database &database, FormLists &lists, FormTimers &timers, const SendSwitches &switches,
                       const PriorityStore &priorities, AlertLink &link, QObject *parent)
    : QObject(parent), m_database(database), m_lists(lists), m_timers(timers), m_switches(switches),
      m_priorities(priorities), m_link(link)
{
    setupTimer(m_timer, QStringLiteral("TimerTickets"), kTickMs, false);
    connect(&m_timer, &QTimer::timeout, this, &TicketDesk::TimerTickets_Timer);
}

void TicketDesk::load()
{
    guarded(QStringLiteral("DBInitTickets"), [&] {
        m_tickets = loadActiveTickets(m_database);
        m_lists.lvwActiveAlarms.clear();
        for (int i = 0; i < m_tickets.size(); ++i)
            showRow(i);
    });
}

int TicketDesk::indexOf(const QString &code) const
{
    for (int i = 0; i < m_tickets.size(); ++i) {
        if (m_tickets.at(i).code == code)
            return i;
    }
    return -1;
}

void TicketDesk::showRow(int index)
{
    const Ticket &t = m_tickets.at(index);
    const QStringList columns{t.code,
                              t.chamberName,
                              t.category,
                              stamp(t.openedAt),
                              QString::number(t.repeats),
                              stamp(t.escalatedAt),
                              stateText(t.state)};
    ListStore &list = m_lists.lvwActiveAlarms;
    const int row = index + 1;
    if (row > list.count()) {
        list.add(columns);
        return;
    }
    for (int column = CodeColumn; column <= StateColumn; ++column) {
        if (list.text(row, column) != columns.at(column - 1))
            list.setText(row, column, columns.at(column - 1));
    }
}

void TicketDesk::immediateAlert(qint16 level, SendJob &job)
{
    if (level < LevelHigh || level > LevelLow || !m_priorities.ticketRule(level).AckRequired)
        return;
    // A ticket that cannot be stored is not opened: the alert still goes out, without one.
    guarded(QStringLiteral("OpenTicket"), [&] {
        const QString code =
            newTicketCode([this](const QString &c) { return indexOf(c) >= 0 || ticketCodeTaken(m_database, c); });
        Ticket t = openTicket(code, m_priorities.ticketRule(level), Clock::now());
        t.level = level;
        t.chamberName = job.chamberName;
        t.category = job.categoryName;
        t.alertNumber = job.alertNumber;
        SendJob marked = job;
        markFirstNotification(marked, code);
        t.message = marked.message;
        t.histData = marked.histData;
        t.byFax = m_switches.chkEnableFax() && !m_lists.lvwFaxContacts.isEmpty();
        insertTicket(m_database, t);
        job = marked;
        m_tickets.append(t);
        showRow(int(m_tickets.size()) - 1);
        DumpStr(QStringLiteral("Ticket ") + code + QStringLiteral(" opened for alert ") + t.alertNumber +
                QStringLiteral(" (") + t.chamberName + QStringLiteral(", ") + t.category + QStringLiteral(")."));
    });
}

void TicketDesk::TimerTickets_Timer()
{
    const QDateTime now = Clock::now();
    if (m_pausedUntil.isValid() && now < m_pausedUntil)
        return;
    m_pausedUntil = QDateTime();
    const bool ok = guarded(QStringLiteral("TimerTickets_Timer"), [&] {
        for (int i = 0; i < m_tickets.size(); ++i) {
            Ticket &t = m_tickets[i];
            if (t.state != TicketState::Open)
                continue;
            const bool repeatNow = repeatDue(t, now), escalateNow = escalationIsDue(t, now);
            if (repeatNow)
                repeat(t, now);
            if (escalateNow)
                escalate(t, now);
            if (repeatNow || escalateNow)
                showRow(i);
        }
    });
    // A database that cannot be written would fail every tick: the desk tries again in a minute.
    if (!ok)
        m_pausedUntil = now.addSecs(60);
}

// The count is stored before the jobs are queued: a failure sends nothing, rather than the same repeat every tick.
void TicketDesk::repeat(Ticket &t, const QDateTime &now)
{
    const SendJob job = repeatJob(t);
    Ticket next = t;
    noteRepeat(next, now);
    saveTicketProgress(m_database, next);
    queueSendJobs(m_lists, m_timers, m_switches, job);
    t = next;
    DumpStr(QStringLiteral("Ticket ") + t.code + QStringLiteral(" not acknowledged: repeat ") +
            QString::number(t.repeats) + QStringLiteral(" of ") + QString::number(t.rule.RepeatTimes) + u'.');
}

void TicketDesk::escalate(Ticket &t, const QDateTime &now)
{
    QString emailTo;
    QList<RecipientRec> faxTo;
    const ListStore &people = m_lists.lvwEscalationContacts;
    for (int row = 1; row <= people.count(); ++row) {
        if (!people.text(row, 3).isEmpty())
            emailTo += people.text(row, 3) + QStringLiteral("; ");
        RecipientRec person;
        person.LastName = people.text(row, 1);
        person.FirstName = people.text(row, 2);
        person.FaxNumber = people.text(row, 4);
        if (!person.FaxNumber.isEmpty())
            faxTo.append(person);
    }
    Ticket next = t;
    noteEscalation(next, now);
    saveTicketProgress(m_database, next);
    const int jobs = queueOwnRecipientJobs(m_lists, m_timers, m_switches, escalationJob(t), emailTo, faxTo);
    t = next;
    const QString head = QStringLiteral("Ticket ") + t.code + QStringLiteral(" not acknowledged within ") +
                         QString::number(t.rule.EscalateMinutes) + QStringLiteral(" minutes: ");
    if (jobs == 0)
        DumpStr(head + QStringLiteral("nobody on the escalation list can be reached (") +
                (people.isEmpty() ? QStringLiteral("the list is empty") : QStringLiteral("e-mail and fax are off")) +
                QStringLiteral(")."));
    else
        DumpStr(head + QStringLiteral("escalated (") + QString::number(jobs) + QStringLiteral(" message(s))."));
}

bool TicketDesk::acknowledge(const QString &typed, const QString &whoTyped, const QString &commentTyped, How how)
{
    bool result = false;
    guarded(QStringLiteral("Acknowledge"), [&] {
        const QString code = normalTicketCode(typed);
        const int index = code.isEmpty() ? -1 : indexOf(code);
        const QString shown = cleanTicketText(typed, 20);
        if (index < 0) {
            DumpStr(QStringLiteral("Acknowledge: no open ticket '") + shown + QStringLiteral("'."));
            return;
        }
        const QString who = cleanTicketText(whoTyped, kMaxNameLength);
        const QString comment = cleanTicketText(commentTyped, kMaxCommentLength);
        if (who.isEmpty()) {
            DumpStr(QStringLiteral("Acknowledge: ticket ") + code +
                    QStringLiteral(" needs the name of who acknowledges."));
            return;
        }
        if (m_tickets.at(index).state != TicketState::Open) {
            DumpStr(QStringLiteral("Acknowledge: ticket ") + code + QStringLiteral(" is already acknowledged."));
            return;
        }
        Ticket t = m_tickets.at(index);
        t.state = TicketState::Acknowledged;
        const QDateTime now = Clock::now();
        saveTicketProgress(m_database, t);
        recordTicketAction(m_database, code, QStringLiteral("Acknowledged"), who, howText(how), comment, now);
        m_tickets[index] = t;
        showRow(index);
        m_lists.lvwActiveAlarms.setNote(index + 1,
                                        QStringLiteral("Acknowledged by ") + who + QStringLiteral(" (") + howText(how) +
                                            QStringLiteral(") ") + stamp(now) +
                                            (comment.isEmpty() ? QString() : QStringLiteral(": ") + comment));
        writeHistory(t, QStringLiteral("Acknowledged"), who, how, comment);
        DumpStr(QStringLiteral("Ticket ") + code + QStringLiteral(" acknowledged by ") + who + QStringLiteral(" (") +
                howText(how) + u')' + (comment.isEmpty() ? QString() : QStringLiteral(": ") + comment));
        if (g.gblnServerLinked && m_link.server())
            m_link.server()->SendAlarmAcknowledged(code, who);
        result = true;
    });
    return result;
}

bool TicketDesk::clear(const QString &typed, const QString &whoTyped, How how)
{
    bool result = false;
    guarded(QStringLiteral("Clear"), [&] {
        const QString code = normalTicketCode(typed);
        const int index = code.isEmpty() ? -1 : indexOf(code);
        if (index < 0) {
            DumpStr(QStringLiteral("Clear: no open ticket '") + cleanTicketText(typed, 20) + QStringLiteral("'."));
            return;
        }
        const QString who = cleanTicketText(whoTyped, kMaxNameLength);
        Ticket t = m_tickets.at(index);
        t.state = TicketState::Cleared;
        saveTicketProgress(m_database, t);
        recordTicketAction(m_database, code, QStringLiteral("Cleared"), who, howText(how), QString(), Clock::now());
        m_tickets.removeAt(index);
        m_lists.lvwActiveAlarms.remove(index + 1);
        writeHistory(t, QStringLiteral("Cleared"), who, how, QString());
        DumpStr(QStringLiteral("Ticket ") + code + QStringLiteral(" cleared") +
                (who.isEmpty() ? QString() : QStringLiteral(" by ") + who) + QStringLiteral(" (") + howText(how) +
                QStringLiteral(")."));
        result = true;
    });
    return result;
}

// The row goes into the e-mail history, and into the fax history too when the ticket went out by fax.
void TicketDesk::writeHistory(const Ticket &t, const QString &action, const QString &who, How how,
                              const QString &comment)
{
    const QString address = (who.isEmpty() ? QString() : who + u' ') + u'(' + howText(how) + u')';
    for (int histIndex : {0, 1}) {
        if (histIndex == 1 && !t.byFax)
            continue;
        addDeliveryRow(m_lists, histIndex, action, address, actionHistData(t, comment));
        DBAddHistLvw(m_database, m_lists, histIndex);
    }
}

} // namespace osprel
