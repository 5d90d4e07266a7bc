#include "Schema.h"

#include "Database.h"
#include "RunError.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

namespace osprel {

namespace {
// Yes/no columns hold 1 and 0, so that the queries' TRUE and FALSE match them.
const char *const kTables[] = {
    "CREATE TABLE Contacts (LastName TEXT, FirstName TEXT,"
    " EMailEnabled INTEGER NOT NULL DEFAULT 0 CHECK (EMailEnabled IN (0, 1)),"
    " FaxEnabled INTEGER NOT NULL DEFAULT 0 CHECK (FaxEnabled IN (0, 1)),"
    " EmailName TEXT, FaxNumber TEXT, Notes TEXT)",
    "CREATE TABLE EmailHistory (Time TEXT, Status TEXT, ChamberName TEXT, Address TEXT, AlarmMsg TEXT,"
    " AlarmCatagory TEXT, AlarmOccurred TEXT, AlarmID TEXT)",
    "CREATE TABLE FaxHistory (Time TEXT, Status TEXT, ChamberName TEXT, Address TEXT, AlarmMsg TEXT,"
    " AlarmCatagory TEXT, AlarmOccurred TEXT, AlarmID TEXT)",
    "CREATE TABLE SetupComm (EmailServer TEXT, EmailReturnAddress TEXT, EmailReturnName TEXT, FaxStation TEXT,"
    " EmailEnabledAtBoot INTEGER, FaxEnabledAtBoot INTEGER)",
    "CREATE TABLE SetupModem (DevInitStr TEXT, ClassOptBtn INTEGER)",
    "CREATE TABLE SetupPriority (PLevelID TEXT)",
    "CREATE TABLE SetupPriorityDef (PriorityID INTEGER,"
    " Immediate INTEGER NOT NULL DEFAULT 0 CHECK (Immediate IN (0, 1)), OnceEvery INTEGER,"
    " OnceEveryHourMin INTEGER, OnceEveryDayHour INTEGER, OnceEveryWeekDay INTEGER,"
    " SendFirstEnabled INTEGER NOT NULL DEFAULT 0 CHECK (SendFirstEnabled IN (0, 1)), SendFirst INTEGER,"
    " SendAfterEnabled INTEGER NOT NULL DEFAULT 0 CHECK (SendAfterEnabled IN (0, 1)), SendAfter INTEGER,"
    " ResetHour INTEGER, ResetDay INTEGER)",
    "CREATE TABLE AlarmMsgs (EntryDate TEXT, ErrID TEXT, OverWrite INTEGER NOT NULL CHECK (OverWrite IN (0, 1)),"
    " Priority INTEGER, Catagory INTEGER, AlarmString TEXT, HistData TEXT)",
    // Finding a free slot and a level's pending alarms stays cheap however full the pool is.
    "CREATE INDEX AlarmMsgsByState ON AlarmMsgs (OverWrite, Priority)",
};

// The delivered levels: the alarms that can cost samples go out at once, the rest in summaries.
//                                    COMM CONTROLLER APPLICATION RESPONSE PARSE CHAMBER PROGRAM STATUS
const char *const kCategoryLevels[8] = {"0", "0", "1", "2", "2", "0", "1", "2"};

struct LevelDefault
{
    int immediate, onceEvery, hourMin, dayHour, weekDay;
};
// High: at once. Mid: at once, and an hourly summary on the hour. Low: a daily summary at 08:00.
const LevelDefault kLevels[3] = {{1, -1, 0, 1, 0}, {1, 1, 0, 1, 0}, {0, 2, 0, 8, 0}};
} // namespace

const QStringList &historyColumns()
{
    static const QStringList columns{QStringLiteral("Time"),          QStringLiteral("Status"),
                                     QStringLiteral("ChamberName"),   QStringLiteral("Address"),
                                     QStringLiteral("AlarmMsg"),      QStringLiteral("AlarmCatagory"),
                                     QStringLiteral("AlarmOccurred"), QStringLiteral("AlarmID")};
    return columns;
}

void createSchema(QSqlDatabase &database, int poolSize)
{
    inTransaction(database, [&] {
        QSqlQuery query(database);
        for (const char *sql : kTables)
            execBound(query, QString::fromLatin1(sql));
        execBound(query,
                  QStringLiteral("INSERT INTO SetupComm (EmailServer, EmailReturnAddress, EmailReturnName, FaxStation,"
                                 " EmailEnabledAtBoot, FaxEnabledAtBoot) VALUES (?, ?, ?, ?, ?, ?)"),
                  {QStringLiteral("localhost"), QStringLiteral("emailfax@localhost"), QStringLiteral("Osprel EmailFax"),
                   QStringLiteral("Osprel"), 1, 0});
        execBound(query, QStringLiteral("INSERT INTO SetupModem (DevInitStr, ClassOptBtn) VALUES (?, ?)"),
                  {QStringLiteral("AT&FE0V1&C1&D2S0=0"), 0});
        for (const char *level : kCategoryLevels)
            execBound(query, QStringLiteral("INSERT INTO SetupPriority (PLevelID) VALUES (?)"),
                      {QString::fromLatin1(level)});
        for (int id = 0; id < 3; ++id) {
            const LevelDefault &d = kLevels[id];
            execBound(
                query,
                QStringLiteral("INSERT INTO SetupPriorityDef (PriorityID, Immediate, OnceEvery, OnceEveryHourMin,"
                               " OnceEveryDayHour, OnceEveryWeekDay, SendFirstEnabled, SendFirst, SendAfterEnabled,"
                               " SendAfter, ResetHour, ResetDay) VALUES (?, ?, ?, ?, ?, ?, 0, 0, 0, 0, 1, 0)"),
                {id, d.immediate, d.onceEvery, d.hourMin, d.dayHour, d.weekDay});
        }
        if (!query.prepare(QStringLiteral("INSERT INTO AlarmMsgs (OverWrite) VALUES (1)")))
            raise(Err::ProviderError, query.lastError().text());
        for (int i = 0; i < poolSize; ++i) {
            if (!query.exec())
                raise(Err::ProviderError, query.lastError().text());
        }
    });
}

} // namespace osprel
