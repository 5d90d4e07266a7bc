#include "PriorityStore.h"

#include "AlarmSetupPort.h"
#include "Conversions.h"
#include "Database.h"
#include "ErrorReport.h"
#include "PriorityPagePort.h"
#include "Values.h"

#include <QSqlQuery>
#include <QVariant>

namespace osprel {

namespace {
bool yesNo(const QSqlQuery &row, const char *column)
{
    const QVariant value = row.value(QLatin1String(column));
    if (value.isNull())
        raise(Err::InvalidUseOfNull);
    return value.toLongLong() != 0;
}

qint16 int16Of(const QSqlQuery &row, const char *column)
{
    return strictInt(textOf(row, column));
}
} // namespace

PriorityStore::PriorityStore(const Database &database, AlarmSetupPort &alarmSetup, PriorityPagePort &priorityPage)
    : m_database(database), m_alarmSetup(alarmSetup), m_priorityPage(priorityPage)
{
}

void PriorityStore::DBInitAlarmCatSetup()
{
    guarded(QStringLiteral("DBInitAlarmCatSetup"), [&] {
        QSqlQuery rows = m_database.run(QStringLiteral("SELECT PLevelID FROM SetupPriority ORDER BY rowid"));
        // A short table leaves the later categories as they are; a level that is no number ends the load there.
        for (int i = 0; i < kCategoryCount && rows.next(); ++i) {
            m_categoryLevels[i] = textOf(rows, "PLevelID");
            m_alarmSetup.selectCategoryLevel(i, strictInt(m_categoryLevels[i]));
        }
    });
}

void PriorityStore::DBInitAlarmPriSetup()
{
    guarded(QStringLiteral("DBInitAlarmPriSetup"), [&] {
        for (LevelRecord &level : m_levels)
            level = LevelRecord();
        QSqlQuery rows = m_database.run(QStringLiteral("SELECT * FROM SetupPriorityDef ORDER BY rowid"));
        for (int level = 0; level < 3 && rows.next(); ++level) {
            LevelRecord &r = m_levels[level];
            r.Immediate = yesNo(rows, "Immediate");
            r.OnceEvery = CLng(strictInt(textOf(rows, "OnceEvery")));
            r.OnceEveryHourMin = int16Of(rows, "OnceEveryHourMin");
            r.OnceEveryDayHour = int16Of(rows, "OnceEveryDayHour");
            r.OnceEveryWeekDay = int16Of(rows, "OnceEveryWeekDay");
            r.SendFirstEnabled = yesNo(rows, "SendFirstEnabled");
            r.SendFirst = int16Of(rows, "SendFirst");
            r.SendAfterEnabled = yesNo(rows, "SendAfterEnabled");
            r.SendAfter = int16Of(rows, "SendAfter");
            r.ResetHour = int16Of(rows, "ResetHour");
            r.ResetDay = int16Of(rows, "ResetDay");
        }
        rows.finish();
        m_priorityPage.showLevelDefinitions(m_levels);
    });
    DBInitTicketRules();
}

void PriorityStore::DBInitTicketRules()
{
    guarded(QStringLiteral("DBInitTicketRules"), [&] {
        for (TicketRule &rule : m_ticketRules)
            rule = TicketRule();
        QSqlQuery rows = m_database.run(QStringLiteral("SELECT PriorityID, AckRequired, RepeatMinutes, RepeatTimes,"
                                                       " EscalateMinutes FROM SetupTicketRule"));
        while (rows.next()) {
            const int level = rows.value(0).toInt();
            if (level < LevelHigh || level > LevelLow)
                continue;
            TicketRule r;
            r.AckRequired = rows.value(1).toLongLong() != 0;
            r.RepeatMinutes = qint16(qBound(0LL, rows.value(2).toLongLong(), qint64(TicketRule::kMaxMinutes)));
            r.RepeatTimes = qint16(qBound(0LL, rows.value(3).toLongLong(), qint64(TicketRule::kMaxTimes)));
            r.EscalateMinutes = qint16(qBound(0LL, rows.value(4).toLongLong(), qint64(TicketRule::kMaxMinutes)));
            m_ticketRules[level] = r;
        }
        rows.finish();
        m_priorityPage.showTicketRules(m_ticketRules);
    });
}

void PriorityStore::DBAddTicketRule(qint16 level)
{
    guarded(QStringLiteral("DBAddTicketRule"), [&] {
        if (level < LevelHigh || level > LevelLow)
            raise(Err::SubscriptOutOfRange);
        const TicketRule &r = m_ticketRules[level];
        // One row per level: written whole, made when missing.
        m_database.run(QStringLiteral("INSERT OR REPLACE INTO SetupTicketRule (PriorityID, AckRequired, RepeatMinutes,"
                                      " RepeatTimes, EscalateMinutes) VALUES (?, ?, ?, ?, ?)"),
                       {int(level), int(r.AckRequired), r.RepeatMinutes, r.RepeatTimes, r.EscalateMinutes});
    });
}

void PriorityStore::DBAddCatPriority()
{
    guarded(QStringLiteral("DBAddCatPriority"), [&] {
        QSqlQuery rows = m_database.run(QStringLiteral("SELECT rowid FROM SetupPriority ORDER BY rowid LIMIT 8"));
        QList<qint64> ids;
        while (rows.next())
            ids.append(rows.value(0).toLongLong());
        rows.finish();
        // Rows missing at the end are not created.
        for (int i = 0; i < ids.size(); ++i)
            m_database.run(QStringLiteral("UPDATE SetupPriority SET PLevelID = ? WHERE rowid = ?"),
                           {m_categoryLevels[i], ids.at(i)});
    });
}

void PriorityStore::DBAddPriority(const LevelRecord &d, const QString &Key)
{
    guarded(QStringLiteral("DBAddPriority"), [&] {
        const int id = Key == QLatin1String("HighPri")  ? 0
                       : Key == QLatin1String("MidPri") ? 1
                       : Key == QLatin1String("LowPri") ? 2
                                                        : -1;
        if (id < 0)
            raise(Err::CommandTextNotSet); // an unknown key leaves the query without text
        QSqlQuery row = m_database.run(
            QStringLiteral("SELECT rowid FROM SetupPriorityDef WHERE PriorityID = ? ORDER BY rowid LIMIT 1"), {id});
        if (!row.next())
            return; // no row is inserted
        const qint64 rowid = row.value(0).toLongLong();
        row.finish();
        m_database.run(QStringLiteral("UPDATE SetupPriorityDef SET Immediate = ?, OnceEvery = ?, OnceEveryHourMin = ?,"
                                      " OnceEveryDayHour = ?, OnceEveryWeekDay = ?, SendFirstEnabled = ?,"
                                      " SendFirst = ?, SendAfterEnabled = ?, SendAfter = ?, ResetHour = ?,"
                                      " ResetDay = ? WHERE rowid = ?"),
                       {int(d.Immediate), d.OnceEvery, d.OnceEveryHourMin, d.OnceEveryDayHour, d.OnceEveryWeekDay,
                        int(d.SendFirstEnabled), d.SendFirst, int(d.SendAfterEnabled), d.SendAfter, d.ResetHour,
                        d.ResetDay, rowid});
    });
}

qint16 PriorityStore::GetPriotiryLevel(const QString &CategoryName)
{
    qint16 level = LevelHigh;
    guarded(QStringLiteral("GetPriotiryLevel"), [&] {
        for (int i = 0; i < kCategoryCount; ++i) {
            if (CategoryName == GetCatName(i)) {
                level = strictInt(m_categoryLevels[i]);
                return;
            }
        }
        // An unknown category is handled as High, so that nothing unknown goes unsent.
    });
    return level;
}

void PriorityStore::GetPriotiryLevelInfo(LevelRecord &Definition, qint16 Level)
{
    guarded(QStringLiteral("GetPriotiryLevelInfo"), [&] {
        if (Level >= LevelHigh && Level <= LevelLow)
            Definition = m_levels[Level];
    });
}

} // namespace osprel
