#pragma once
// Frame1(4): one row per alarm category, with its caption (lblErrCata) and its count of queued alarms
// (lblQueuedAlarms).

#include <QFrame>

class QLabel;

namespace osprel {

class AlarmSetupPage : public QFrame
{
    Q_OBJECT
public:
    explicit AlarmSetupPage(QWidget *parent = nullptr);

    QLabel *lblErrCata[8];
    QLabel *lblQueuedAlarms[8];
};

} // namespace osprel
