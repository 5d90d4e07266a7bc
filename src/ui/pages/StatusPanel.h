#pragma once
// picStatus: the status report overlay, every message of the log since start (lstStatus).

#include <QFrame>

class QListView;
class QPushButton;

namespace osprel {

class Log;

class StatusPanel : public QFrame
{
    Q_OBJECT
public:
    StatusPanel(Log &log, QWidget *parent = nullptr);

    QListView *lstStatus;
    QPushButton *cmdStatusClose, *cmdStatusClear;
};

} // namespace osprel
