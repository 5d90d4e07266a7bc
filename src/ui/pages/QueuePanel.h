#pragma once
// SSTab2: the incoming alert queue, the e-mail and fax send queues with their status lists, and the frames of
// developer test buttons.

#include <QTabWidget>

class QFrame;
class QLabel;
class QListView;
class QPushButton;

namespace osprel {

class FormLists;
class ListView;
class Log;

class QueuePanel : public QTabWidget
{
    Q_OBJECT
public:
    QueuePanel(FormLists &lists, Log &log, QWidget *parent = nullptr);

    // The queue lists, their labels and the developer test buttons: hidden in normal use.
    void setServiceControlsVisible(bool visible);
    // The panel, the queue lists and their labels shown, as the start page has them.
    void showQueues();

    ListView *lvwMsgQue, *lvwSendEmailQue, *lvwSendFaxQue;
    QListView *lstEmailStatus, *lstFaxStatus;
    QLabel *Label1, *Label7, *Label8;
    QFrame *fraMsgQue, *fraEmailFaxQue;
    QPushButton *cmdEnableTimer, *cmdAddErr, *cmdSendFax, *cmdShutUp;
    QPushButton *cmdClearQueue[2]; // 0 e-mail, 1 fax
};

} // namespace osprel
