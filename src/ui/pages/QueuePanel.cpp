#include "QueuePanel.h"

#include "FormLists.h"
#include "ListView.h"
#include "Log.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QListView>
#include <QPushButton>
#include <QSplitter>
#include <QVBoxLayout>

namespace osprel {

namespace {
QListView *statusList(QStringListModel *model, const char *name, QWidget *parent)
{
    auto *view = new QListView(parent);
    view->setObjectName(QLatin1String(name));
    view->setModel(model);
    view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    view->setUniformItemSizes(true);
    return view;
}

QPushButton *button(const char *name, const QString &caption, QWidget *parent)
{
    auto *b = new QPushButton(caption, parent);
    b->setObjectName(QLatin1String(name));
    return b;
}
} // namespace

QueuePanel::QueuePanel(FormLists &lists, Log &log, QWidget *parent) : QTabWidget(parent)
{
    setObjectName(QStringLiteral("SSTab2"));

    auto *incoming = new QWidget(this);
    auto *incomingLayout = new QVBoxLayout(incoming);
    fraEmailFaxQue = new QFrame(incoming);
    fraEmailFaxQue->setObjectName(QStringLiteral("fraEmailFaxQue"));
    auto *labels = new QHBoxLayout(fraEmailFaxQue);
    labels->setContentsMargins(0, 0, 0, 0);
    Label1 = new QLabel(tr("Incoming alerts, one taken each second:"), fraEmailFaxQue);
    Label1->setObjectName(QStringLiteral("Label1"));
    labels->addWidget(Label1);
    labels->addStretch(1);
    incomingLayout->addWidget(fraEmailFaxQue);
    incomingLayout->addWidget(lvwMsgQue = new ListView(lists.lvwMsgQue, ListView::Refresh::Coalesced, incoming), 1);
    fraMsgQue = new QFrame(incoming);
    fraMsgQue->setObjectName(QStringLiteral("fraMsgQue"));
    auto *tests = new QHBoxLayout(fraMsgQue);
    tests->setContentsMargins(0, 0, 0, 0);
    Label8 = new QLabel(tr("Service:"), fraMsgQue);
    Label8->setObjectName(QStringLiteral("Label8"));
    tests->addWidget(Label8);
    tests->addWidget(cmdEnableTimer = button("cmdEnableTimer", QStringLiteral("TimerMsgQue OFF"), fraMsgQue));
    tests->addWidget(cmdAddErr = button("cmdAddErr", tr("Test Alarm"), fraMsgQue));
    tests->addWidget(cmdSendFax = button("cmdSendFax", tr("Send Fax"), fraMsgQue));
    tests->addWidget(cmdShutUp = button("cmdShutUp", tr("Speaker Off"), fraMsgQue));
    tests->addStretch(1);
    incomingLayout->addWidget(fraMsgQue);
    addTab(incoming, tr("Incoming"));

    auto *email = new QSplitter(Qt::Vertical, this);
    Label7 = new QLabel(tr("E-mail send queue"), email);
    Label7->setObjectName(QStringLiteral("Label7"));
    email->addWidget(Label7);
    email->addWidget(lvwSendEmailQue = new ListView(lists.lvwSendEmailQue, ListView::Refresh::Coalesced, email));
    email->addWidget(lstEmailStatus = statusList(log.lstEmailStatus(), "lstEmailStatus", email));
    email->addWidget(cmdClearQueue[0] = button("cmdClearQueue(0)", tr("Clear Queue"), email));
    addTab(email, tr("E-mail Queue"));

    auto *fax = new QSplitter(Qt::Vertical, this);
    fax->addWidget(lvwSendFaxQue = new ListView(lists.lvwSendFaxQue, ListView::Refresh::Coalesced, fax));
    fax->addWidget(lstFaxStatus = statusList(log.lstFaxStatus(), "lstFaxStatus", fax));
    fax->addWidget(cmdClearQueue[1] = button("cmdClearQueue(1)", tr("Clear Queue"), fax));
    addTab(fax, tr("Fax Queue"));
}

void QueuePanel::setServiceControlsVisible(bool visible)
{
    for (QWidget *w : std::initializer_list<QWidget *>{Label1, Label7, Label8, cmdEnableTimer, cmdAddErr, cmdSendFax,
                                                       cmdShutUp, lvwMsgQue, lvwSendEmailQue, lvwSendFaxQue})
        w->setVisible(visible);
}

void QueuePanel::showQueues()
{
    for (QWidget *w : std::initializer_list<QWidget *>{this, Label7, Label1, fraEmailFaxQue, lvwSendEmailQue, lvwMsgQue,
                                                       lvwSendFaxQue})
        w->setVisible(true);
}

} // namespace osprel
