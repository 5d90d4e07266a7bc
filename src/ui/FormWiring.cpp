#include "FormWiring.h"

#include "CommSetup.h"
#include "Dispatcher.h"
#include "EmailFaxServer.h"
#include "EmailQueue.h"
#include "FaxDevice.h"
#include "FaxQueue.h"
#include "ListView.h"
#include "MainWindow.h"
#include "PrioritySetup.h"
#include "Recipients.h"
#include "pages/AdvModemPanel.h"
#include "pages/AlarmSetupPage.h"
#include "pages/CommSetupPage.h"
#include "pages/ContactEditor.h"
#include "pages/LevelFrame.h"
#include "pages/PriorityPage.h"
#include "pages/QueuePanel.h"
#include "pages/RecipientsPage.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QItemSelectionModel>
#include <QLineEdit>
#include <QPushButton>

namespace osprel {

namespace {
// Every handler is reached through the server when the control is used: the procedures exist by then.
template <typename Handler> void onClick(QPushButton *button, MainWindow &window, Handler handler)
{
    QObject::connect(button, &QPushButton::clicked, &window, handler);
}

void wireCommSetup(MainWindow &window, EmailFaxServer &server)
{
    CommSetupPage *page = window.commSetupPage();
    onClick(page->cmdTestEmail, window, [&server] { server.emailQueue().cmdTestEmail_Click(); });
    QObject::connect(page->chkEnableEmail, &QCheckBox::clicked, &window,
                     [&server] { server.emailQueue().chkEnableEmail_Click(); });
    for (QLineEdit *box : {page->txtMailServer, page->txtFrom, page->txtFromName, page->txtFaxStation})
        QObject::connect(box, &QLineEdit::textEdited, &window, [&server] { server.commSetup().SetCommSetupChanged(); });
    onClick(page->cmdAcceptCommSetup, window, [&server] { server.commSetup().cmdAcceptCommSetup_Click(); });
    onClick(page->cmdCancelCommSetup, window, [&server] { server.commSetup().cmdCancelCommSetup_Click(); });
}

void wireFax(MainWindow &window, EmailFaxServer &server)
{
    CommSetupPage *page = window.commSetupPage();
    onClick(page->cmdFindDevice, window, [&server] { server.faxDevice().FindDevice(); });
    onClick(page->cmdAdvSetup, window, [&server] { server.faxDevice().cmdAdvSetup_Click(); });
    onClick(page->cmdTestFax, window, [&server] { server.faxQueue().cmdTestFax_Click(); });
    QObject::connect(page->chkEnableFax, &QCheckBox::clicked, &window,
                     [&server] { server.faxQueue().chkEnableFax_Click(); });
    AdvModemPanel *panel = window.advModemPanel();
    onClick(panel->cmdDefaultInitStr, window, [&server] { server.faxDevice().cmdDefaultInitStr_Click(); });
    onClick(panel->cmdAcceptModemSetup, window, [&server] { server.faxDevice().cmdAcceptModemSetup_Click(); });
    onClick(panel->cmdCancelModemSetup, window, [&server] { server.faxDevice().cmdCancelModemSetup_Click(); });
    onClick(panel->cmdTalkToMe, window, [&server] { server.faxDevice().cmdTalkToMe_Click(); });
    QObject::connect(panel->modemClass, &QButtonGroup::idClicked, &window,
                     [&server] { server.faxDevice().modemSetupChanged(); });
    QObject::connect(panel->txtConStr, &QLineEdit::textEdited, &window,
                     [&server] { server.faxDevice().modemSetupChanged(); });
}

void wireAlarmSetup(MainWindow &window, EmailFaxServer &server)
{
    AlarmSetupPage *page = window.alarmSetupPage();
    for (int i = 0; i < 8; ++i) {
        QObject::connect(page->levelGroup[i], &QButtonGroup::idClicked, &window,
                         [&server] { server.prioritySetup().SetAlarmSetupChanged(); });
        onClick(page->cmdClearAlmCat[i], window, [&server, i] { server.prioritySetup().cmdClearAlmCat_Click(i); });
    }
    onClick(page->cmdClearAllAlmCat, window, [&server] { server.prioritySetup().cmdClearAllAlmCat_Click(); });
    onClick(page->cmdAcceptAlarmSetup, window, [&server] { server.prioritySetup().cmdAcceptAlarmSetup_Click(); });
    onClick(page->cmdCancelAlarmSetup, window, [&server] { server.prioritySetup().cmdCancelAlarmSetup_Click(); });

    PriorityPage *priority = window.priorityPage();
    for (LevelFrame *frame : priority->fraPriorityDef)
        QObject::connect(frame, &LevelFrame::changed, &window,
                         [&server] { server.prioritySetup().SetPrioritySetupChanged(); });
    onClick(priority->cmdAcceptPriority, window, [&server] { server.prioritySetup().cmdAcceptPriority_Click(); });
    onClick(priority->cmdCancelPriority, window, [&server] { server.prioritySetup().cmdCancelPriority_Click(); });
}

void wireRecipients(MainWindow &window, EmailFaxServer &server)
{
    RecipientsPage *page = window.recipientsPage();
    onClick(page->cmdNew, window, [&server] { server.recipients().cmdNew_Click(); });
    onClick(page->cmdEdit, window, [&server] { server.recipients().cmdEdit_Click(); });
    onClick(page->cmdDelete, window, [&server] { server.recipients().cmdDelete_Click(); });
    onClick(page->cmdAddEmailAdr, window, [&server] { server.recipients().cmdAddEmailAdr_Click(); });
    onClick(page->cmdRemEmailAdr, window, [&server] { server.recipients().cmdRemEmailAdr_Click(); });
    onClick(page->cmdAddFaxAdr, window, [&server] { server.recipients().cmdAddFaxAdr_Click(); });
    onClick(page->cmdRemFaxAdr, window, [&server] { server.recipients().cmdRemFaxAdr_Click(); });
    QObject::connect(page->lvwMainContacts, &QAbstractItemView::clicked, &window, [&server](const QModelIndex &index) {
        server.recipients().lvwMainContacts_ItemClick(index.row() + 1);
    });
    // The selected row counts too when it moves by keyboard.
    QObject::connect(page->lvwMainContacts->selectionModel(), &QItemSelectionModel::currentRowChanged, &window,
                     [&server](const QModelIndex &current) {
                         if (current.isValid())
                             server.recipients().lvwMainContacts_ItemClick(current.row() + 1);
                     });
    QObject::connect(page->lvwEmailContacts, &QAbstractItemView::clicked, &window, [&server](const QModelIndex &index) {
        server.recipients().lvwEmailContacts_ItemClick(index.row() + 1);
    });
    QObject::connect(page->lvwFaxContacts, &QAbstractItemView::clicked, &window, [&server](const QModelIndex &index) {
        server.recipients().lvwFaxContacts_ItemClick(index.row() + 1);
    });
    ContactEditor *editor = window.contactEditor();
    onClick(editor->cmdContactsOK, window, [&server] { server.recipients().cmdContactsOK_Click(); });
    onClick(editor->cmdContactsCancel, window, [&server] { server.recipients().cmdContactsCancel_Click(); });
}

void wireServiceButtons(MainWindow &window, EmailFaxServer &server)
{
    QueuePanel *panel = window.queuePanel();
    onClick(panel->cmdEnableTimer, window,
            [&server, panel] { panel->cmdEnableTimer->setText(server.dispatcher().cmdEnableTimer_Click()); });
    onClick(panel->cmdAddErr, window, [&server] { server.prioritySetup().cmdAddErr_Click(); });
    onClick(panel->cmdSendFax, window, [&server] { server.faxQueue().SendFax(); });
    onClick(panel->cmdShutUp, window, [&server] { server.faxDevice().cmdShutUp_Click(); });
}
} // namespace

void wireForm(MainWindow &window, EmailFaxServer &server)
{
    wireCommSetup(window, server);
    wireFax(window, server);
    wireAlarmSetup(window, server);
    wireRecipients(window, server);
    wireServiceButtons(window, server);
}

} // namespace osprel
