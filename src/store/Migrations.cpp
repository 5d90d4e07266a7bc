#include "Migrations.h"

#include "Database.h"
#include "RunError.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

namespace osprel {

namespace {
struct Migration
{
    int version;
    // The statements that take a file from version - 1 to version; an existing table is never altered in a way
    // that loses a row, and no other table is touched.
    QStringList statements;
};

// Ordered: each later issue of the schema adds one entry at the end.
const QList<Migration> &migrations()
{
    static const QList<Migration> list{
        // 1: versions are kept; the classic tables are as they were.
        {1, {}},
        // 2: the incoming, e-mail and fax queues are kept on disk, one row per list row, so that a restart
        // resumes them. Columns holds the list row's columns as a JSON array of strings.
        {2,
         {QStringLiteral("CREATE TABLE IF NOT EXISTS QueueRows (Queue TEXT NOT NULL, Position REAL NOT NULL,"
                         " Columns TEXT NOT NULL)"),
          QStringLiteral("CREATE INDEX IF NOT EXISTS QueueRowsByPosition ON QueueRows (Queue, Position)")}},
        // 3: how the SMTP client reaches the mail server (security, authentication, time-outs); secrets stay out.
        {3,
         {QStringLiteral("CREATE TABLE IF NOT EXISTS MailServerSecurity (Security INTEGER DEFAULT 0, Auth INTEGER "
                         "DEFAULT 0, UserName TEXT, AllowClearAuth INTEGER DEFAULT 0, CaFile TEXT, PinnedSha256 TEXT, "
                         "TokenSource INTEGER DEFAULT 0, TokenUrl TEXT, Tenant TEXT, ClientId TEXT, Scope TEXT, "
                         "TokenCommand TEXT, ConnectTimeout INTEGER DEFAULT 30, ReplyTimeout INTEGER DEFAULT 120, "
                         "DotTimeout INTEGER DEFAULT 600, KillTimeMinutes INTEGER DEFAULT 240)")}},
        // 4: the fax modem's profile beside SetupModem (flow control, reports, bit order, RTC, delays), the ports
        // the device search may probe and those it must not, and the device last used.
        {4,
         {QStringLiteral("CREATE TABLE IF NOT EXISTS SetupModemProfile (FlowControl INTEGER, FlowCmd TEXT, "
                         "ReportParams INTEGER, BitOrder INTEGER, ModemAppendsRTC INTEGER, FrsDelay INTEGER, "
                         "FtsDelay INTEGER, TcfDelay INTEGER, SearchPorts TEXT, NotModemPorts TEXT, "
                         "SearchAllPorts INTEGER, LastPort TEXT, LastClass INTEGER)"),
          QStringLiteral("INSERT INTO SetupModemProfile (FlowControl, FlowCmd, ReportParams, BitOrder, "
                         "ModemAppendsRTC, FrsDelay, FtsDelay, TcfDelay, SearchPorts, NotModemPorts, SearchAllPorts, "
                         "LastPort, LastClass) SELECT 2, '', 1, 0, 1, 7, 8, 0, '', '', 0, '', 0 "
                         "WHERE NOT EXISTS (SELECT 1 FROM SetupModemProfile)")}},
        // 5: the proof of life: a daily status message at a set time, and a check URL fetched while healthy.
        {5,
         {QStringLiteral("CREATE TABLE IF NOT EXISTS ProofOfLife (DailyStatus INTEGER DEFAULT 0, DailyAt TEXT DEFAULT "
                         "'07:00', DailyTo INTEGER DEFAULT 0, PingUrl TEXT, PingMinutes INTEGER DEFAULT 5, "
                         "LastDailyStatus TEXT)")}},
        // 6: acknowledgement, repeat and escalation. Each level's rule (a row per level, none asking for anything
        // until set); who of the contacts is on the escalation list, beside the e-mail and fax flags; the tickets
        // that immediate notifications opened, with their schedule, so that a restart continues it; and every
        // acknowledgement and clear of a ticket.
        {6,
         {QStringLiteral("CREATE TABLE IF NOT EXISTS SetupTicketRule (PriorityID INTEGER PRIMARY KEY,"
                         " AckRequired INTEGER NOT NULL DEFAULT 0 CHECK (AckRequired IN (0, 1)),"
                         " RepeatMinutes INTEGER NOT NULL DEFAULT 0, RepeatTimes INTEGER NOT NULL DEFAULT 0,"
                         " EscalateMinutes INTEGER NOT NULL DEFAULT 0)"),
          QStringLiteral("INSERT OR IGNORE INTO SetupTicketRule (PriorityID) VALUES (0), (1), (2)"),
          QStringLiteral("ALTER TABLE Contacts ADD COLUMN EscalationEnabled INTEGER NOT NULL DEFAULT 0"
                         " CHECK (EscalationEnabled IN (0, 1))"),
          QStringLiteral("CREATE TABLE IF NOT EXISTS Tickets (Code TEXT PRIMARY KEY, Level INTEGER, ChamberName TEXT,"
                         " Category TEXT, AlertNumber TEXT, AlarmMsg TEXT, HistData TEXT, OpenedAt TEXT,"
                         " RepeatMinutes INTEGER, RepeatTimes INTEGER, EscalateMinutes INTEGER,"
                         " Repeats INTEGER NOT NULL DEFAULT 0, NextRepeat TEXT, EscalatedAt TEXT,"
                         " State INTEGER NOT NULL DEFAULT 0, ByFax INTEGER NOT NULL DEFAULT 0)"),
          QStringLiteral("CREATE INDEX IF NOT EXISTS TicketsByState ON Tickets (State)"),
          QStringLiteral("CREATE TABLE IF NOT EXISTS TicketActions (Code TEXT NOT NULL, Action TEXT NOT NULL,"
                         " Who TEXT, How TEXT, Comment TEXT, At TEXT NOT NULL)")}},
    };
    return list;
}

void exec(QSqlQuery &query, const QString &sql)
{
    if (!query.exec(sql))
        raise(Err::ProviderError, query.lastError().text());
}
} // namespace

int currentSchemaVersion()
{
    return migrations().constLast().version;
}

int schemaVersion(QSqlDatabase &database)
{
    QSqlQuery query(database);
    exec(query, QStringLiteral("PRAGMA user_version"));
    return query.next() ? query.value(0).toInt() : 0;
}

void migrate(QSqlDatabase &database)
{
    const int from = schemaVersion(database);
    if (from >= currentSchemaVersion())
        return;
    inTransaction(database, [&] {
        QSqlQuery query(database);
        for (const Migration &migration : migrations()) {
            if (migration.version <= from)
                continue;
            for (const QString &statement : migration.statements)
                exec(query, statement);
        }
        // PRAGMA takes no bound values; the version is a number of this program's own.
        exec(query, QStringLiteral("PRAGMA user_version = ") + QString::number(currentSchemaVersion()));
    });
}

} // namespace osprel
