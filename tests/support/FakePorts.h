#pragma once
// The window's controls as plain values, for driving the store, the priorities and the dispatcher headless.

#include "PriorityPort.h"
#include "StorePort.h"

#include <QStringList>

class FakeStorePort : public osprel::StorePort, public osprel::PriorityPort
{
public:
    bool chkEnableEmail() const override { return email; }
    bool chkEnableFax() const override { return fax; }
    void setCommSettings(const osprel::CommSettings &s) override { settings = s; }
    void setChkEnableEmail(bool checked) override { email = checked; }
    void setChkEnableFax(bool checked) override { fax = checked; }
    QString lblQueuedAlarms(int index) const override { return counters.at(index); }
    void setLblQueuedAlarms(int index, const QString &caption) override { counters[index] = caption; }
    void selectCategoryLevel(int index, int level) override { levels[index] = level; }
    void showLevelDefinitions(const osprel::LevelRecord (&defs)[3]) override
    {
        ++definitionsShown;
        Q_UNUSED(defs);
    }

    bool email = true;
    bool fax = true;
    osprel::CommSettings settings;
    QStringList counters = QStringList(8, QStringLiteral("0"));
    int levels[8] = {-1, -1, -1, -1, -1, -1, -1, -1};
    int definitionsShown = 0;
};
