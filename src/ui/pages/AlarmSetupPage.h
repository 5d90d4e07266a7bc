#pragma once
// Frame1(4): one row per alarm category: its caption (lblErrCata), its level (optHi, optMid, optLow, optIgnore)
// and its count of queued alarms (lblQueuedAlarms).

#include "AlarmSetupPort.h"
#include "QueuedAlarmsPort.h"

#include <QFrame>

class QButtonGroup;
class QLabel;
class QPushButton;
class QRadioButton;

namespace osprel {

class AlarmSetupPage : public QFrame, public AlarmSetupPort, public QueuedAlarmsPort
{
    Q_OBJECT
public:
    explicit AlarmSetupPage(QWidget *parent = nullptr);

    // AlarmSetupPort
    void selectCategoryLevel(int index, int level) override;
    int categoryOption(int index) const override;
    void setAlarmSetupChanged(bool changed) override;
    void setCategoryCaption(int index, const QString &caption) override;
    // QueuedAlarmsPort
    QString lblQueuedAlarms(int index) const override;
    void setLblQueuedAlarms(int index, const QString &caption) override;

    // The page's controls, by the names the system knows them by.
    struct Controls
    {
        QLabel *lblErrCata[8];
        QRadioButton *optHi[8], *optMid[8], *optLow[8], *optIgnore[8];
        QButtonGroup *levelGroup[8];
        QLabel *lblQueuedAlarms[8];
        QPushButton *cmdClearAlmCat[8];
        QPushButton *cmdClearAllAlmCat, *cmdAcceptAlarmSetup, *cmdCancelAlarmSetup;
        QLabel *lblChangeWarning;
    } ui;
};

} // namespace osprel
