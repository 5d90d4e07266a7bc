#pragma once
// The eight counters of held alarms on the Alarm Setup page (lblQueuedAlarms, one per category).

#include <QString>

namespace osprel {

class QueuedAlarmsPort
{
public:
    virtual ~QueuedAlarmsPort() = default;
    // The caption of lblQueuedAlarms(index), index 0..7.
    virtual QString lblQueuedAlarms(int index) const = 0;
    virtual void setLblQueuedAlarms(int index, const QString &caption) = 0;
};

} // namespace osprel
