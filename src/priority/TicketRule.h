#pragma once
// What a sending level asks of its immediate notifications beyond sending them: that somebody acknowledges them,
// that they are sent again every so many minutes until then (up to a number of times), and that the escalation
// list is told when nobody has acknowledged within so many minutes. Zero minutes means never.

#include <QtGlobal>

namespace osprel {

struct TicketRule
{
    bool AckRequired = false;
    qint16 RepeatMinutes = 0;   // 0: never repeated
    qint16 RepeatTimes = 0;     // at most this many repeats
    qint16 EscalateMinutes = 0; // 0: never escalated

    // The most any of the three numbers may be: a week of minutes, and a hundred repeats.
    static constexpr qint16 kMaxMinutes = 10080;
    static constexpr qint16 kMaxTimes = 100;

    // The same rule with every number brought into its range (negative to 0, too large to its limit).
    TicketRule bounded() const;
    bool operator==(const TicketRule &other) const;
};

} // namespace osprel
