#pragma once
// The priority settings in memory: the level of each of the eight alarm categories and the definition of each of
// the three sending levels, loaded at start and saved when the screens accept a change.

#include "LevelRecord.h"
#include "TicketRule.h"

#include <QString>

namespace osprel {

class Database;
class AlarmSetupPort;
class PriorityPagePort;

class PriorityStore
{
public:
    PriorityStore(const Database &database, AlarmSetupPort &alarmSetup, PriorityPagePort &priorityPage);

    void DBInitAlarmCatSetup();
    void DBInitAlarmPriSetup();
    void DBAddCatPriority();
    void DBAddPriority(const LevelRecord &Definition, const QString &Key);
    // The levels' acknowledgement, repeat and escalation rules (SetupTicketRule, one row per level): loaded with
    // the level definitions, saved with them by the priority page's Accept.
    void DBInitTicketRules();
    void DBAddTicketRule(qint16 level);

    qint16 GetPriotiryLevel(const QString &CategoryName);
    void GetPriotiryLevelInfo(LevelRecord &Definition, qint16 Level);

    // The category levels as stored (decimal text), index 0..7.
    QString &categoryLevel(int index) { return m_categoryLevels[index]; }
    const LevelRecord &level(int index) const { return m_levels[index]; }
    LevelRecord &level(int index) { return m_levels[index]; }
    const TicketRule &ticketRule(int index) const { return m_ticketRules[index]; }
    TicketRule &ticketRule(int index) { return m_ticketRules[index]; }

private:
    const Database &m_database;
    AlarmSetupPort &m_alarmSetup;
    PriorityPagePort &m_priorityPage;
    QString m_categoryLevels[8];
    LevelRecord m_levels[3];
    TicketRule m_ticketRules[3];
};

} // namespace osprel
