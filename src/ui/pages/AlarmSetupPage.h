#pragma once
// Frame1(4): one row per alarm category: its caption (lblErrCata), its level (optHi, optMid, optLow, optIgnore)
// and its count of queued alarms (lblQueuedAlarms).

#include <QFrame>

class QButtonGroup;
class QLabel;
class QPushButton;
class QRadioButton;

namespace osprel {

class AlarmSetupPage : public QFrame
{
    Q_OBJECT
public:
    explicit AlarmSetupPage(QWidget *parent = nullptr);

    // Selects the button of a level: 0 High, 1 Mid, 2 Low, anything else Ignore.
    void selectLevel(int index, int level);

    QLabel *lblErrCata[8];
    QRadioButton *optHi[8], *optMid[8], *optLow[8], *optIgnore[8];
    QButtonGroup *levelGroup[8];
    QLabel *lblQueuedAlarms[8];
    QPushButton *cmdClearAlmCat[8];
    QPushButton *cmdClearAllAlmCat, *cmdAcceptAlarmSetup, *cmdCancelAlarmSetup;
    QLabel *lblChangeWarning;
};

} // namespace osprel
