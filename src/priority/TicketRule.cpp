#include "TicketRule.h"

namespace osprel {

TicketRule TicketRule::bounded() const
{
    TicketRule r = *this;
    r.RepeatMinutes = qBound<qint16>(0, RepeatMinutes, kMaxMinutes);
    r.RepeatTimes = qBound<qint16>(0, RepeatTimes, kMaxTimes);
    r.EscalateMinutes = qBound<qint16>(0, EscalateMinutes, kMaxMinutes);
    return r;
}

bool TicketRule::operator==(const TicketRule &o) const
{
    return AckRequired == o.AckRequired && RepeatMinutes == o.RepeatMinutes && RepeatTimes == o.RepeatTimes &&
           EscalateMinutes == o.EscalateMinutes;
}

} // namespace osprel
