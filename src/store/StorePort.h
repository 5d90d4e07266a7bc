#pragma once
// What the store needs of the main window: the communication settings fields, the two enable boxes and the
// eight counters of queued alarms.

#include "SendSwitches.h"

#include <QString>

namespace osprel {

struct CommSettings
{
    QString txtMailServer, txtFrom, txtFromName, txtFaxStation;
};

class StorePort : public virtual SendSwitches
{
public:
    virtual void setCommSettings(const CommSettings &settings) = 0;
    virtual void setChkEnableEmail(bool checked) = 0;
    virtual void setChkEnableFax(bool checked) = 0;
    // The caption of lblQueuedAlarms(index), index 0..7.
    virtual QString lblQueuedAlarms(int index) const = 0;
    virtual void setLblQueuedAlarms(int index, const QString &caption) = 0;
};

} // namespace osprel
