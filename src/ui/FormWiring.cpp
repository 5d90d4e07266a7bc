#include "FormWiring.h"

#include "EmailFaxServer.h"
#include "ListView.h"
#include "MainWindow.h"
#include "pages/ActiveAlarmsPage.h"
#include "pages/AdvModemPanel.h"
#include "pages/AlarmSetupPage.h"
#include "pages/CommSetupPage.h"
#include "pages/ContactEditor.h"
#include "pages/HistoryPage.h"
#include "pages/LevelFrame.h"
#include "pages/MailSecurityPanel.h"
#include "pages/ProofOfLifePanel.h"
#include "pages/PriorityPage.h"
#include "pages/QueuePanel.h"
#include "pages/RecipientsPage.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QCloseEvent>
#include <QItemSelectionModel>
#include <QLineEdit>
#include <QPushButton>

namespace osprel {

namespace {
template <typename Handler> void onClick(QPushButton *button, MainWindow &window, Handler handler)
{
    QObject::connect(button, &QPushButton::clicked, &window, handler);
}

void wireWindow(MainWindow &window, EmailFaxServer &server)
{
    QObject::connect(&window, &MainWindow::closeRequested, &server, [&server](QCloseEvent *event) {
        if (server.Form_QueryUnload(EmailFaxServer::CloseBox))
            event->ignore();
        else
            server.unload(EmailFaxServer::ByCode); // the settings window alone: the program ends
    });
    QObject::connect(&window, &MainWindow::resized, &server, &EmailFaxServer::Form_Resize);
    QObject::connect(&window, &MainWindow::trayMessage, &server,
                     [&server](int message) { server.Form_MouseMove(message, 0); });
    QObject::connect(&window, &MainWindow::restoreRequested, &server, &EmailFaxServer::mPopRestore_Click);
    QObject::connect(&window, &MainWindow::exitRequested, &server, &EmailFaxServer::mPopExit_Click);
    for (int i = 0; i < 2; ++i) {
        onClick(window.historyPage(i)->cmdClear, window, [&window, &server, i] {
            const int rows = server.lists().lvwHist[i].count();
            if (rows == 0)
                return;
            window.confirm(QStringLiteral("Clear History"),
                           QStringLiteral("Delete all %1 rows of the %2 history? They cannot be brought back.")
                               .arg(rows)
                               .arg(i == 0 ? QStringLiteral("e-mail") : QStringLiteral("fax")),
                           [&server, i] { server.sendStatus().cmdClear_Click(i); });
        });
        onClick(window.queuePanel()->cmdClearQueue[i], window,
                [&server, i] { server.sendStatus().cmdClearQueue_Click(i); });
    }
}

void wireCommSetup(MainWindow &window, EmailFaxServer &server)
{
    const CommSetupPage::Controls &page = window.commSetupPage()->ui;
    onClick(page.cmdTestEmail, window, [&server] { server.emailQueue().cmdTestEmail_Click(); });
    QObject::connect(page.chkEnableEmail, &QCheckBox::clicked, &window,
                     [&server] { server.emailQueue().chkEnableEmail_Click(); });
    for (QLineEdit *box : {page.txtMailServer, page.txtFrom, page.txtFromName, page.txtFaxStation})
        QObject::connect(box, &QLineEdit::textEdited, &window, [&server] { server.commSetup().SetCommSetupChanged(); });
    QObject::connect(page.fraMailSecurity, &MailSecurityPanel::edited, &window,
                     [&server] { server.commSetup().SetCommSetupChanged(); });
    QObject::connect(page.fraProofOfLife, &ProofOfLifePanel::edited, &window,
                     [&server] { server.commSetup().SetCommSetupChanged(); });
    QObject::connect(&server.proofOfLife(), &ProofOfLife::settingsChanged, page.fraProofOfLife,
                     &ProofOfLifePanel::setSettings);
    // The mail fields are checked first: a server or sender that cannot be used is refused, and nothing is stored.
    // The proof of life settings next, the same way.
    onClick(page.cmdAcceptCommSetup, window, [&server, &window, panel = page.fraProofOfLife] {
        if (!server.mailSetup().accept())
            return;
        const QString problem = server.proofOfLife().accept(panel->settings());
        if (!problem.isEmpty()) {
            window.showMessage(QStringLiteral("Proof of life"), problem);
            return;
        }
        server.commSetup().cmdAcceptCommSetup_Click();
    });
    onClick(page.cmdCancelCommSetup, window, [&server, panel = page.fraProofOfLife] {
        server.mailSetup().cancel();
        panel->setSettings(server.proofOfLife().settings());
        server.commSetup().cmdCancelCommSetup_Click();
    });
}

void wireFax(MainWindow &window, EmailFaxServer &server)
{
    const CommSetupPage::Controls &page = window.commSetupPage()->ui;
    onClick(page.cmdFindDevice, window, [&server] { server.faxDevice().FindDevice(); });
    onClick(page.cmdAdvSetup, window, [&server] { server.faxDevice().cmdAdvSetup_Click(); });
    onClick(page.cmdTestFax, window, [&server] { server.faxQueue().cmdTestFax_Click(); });
    QObject::connect(page.chkEnableFax, &QCheckBox::clicked, &window,
                     [&server] { server.faxQueue().chkEnableFax_Click(); });
    const AdvModemPanel::Controls &panel = window.advModemPanel()->ui;
    onClick(panel.cmdDefaultInitStr, window, [&server] { server.faxDevice().cmdDefaultInitStr_Click(); });
    onClick(panel.cmdAcceptModemSetup, window, [&server] { server.faxDevice().cmdAcceptModemSetup_Click(); });
    onClick(panel.cmdCancelModemSetup, window, [&server] { server.faxDevice().cmdCancelModemSetup_Click(); });
    onClick(panel.cmdTalkToMe, window, [&server] { server.faxDevice().cmdTalkToMe_Click(); });
    QObject::connect(panel.modemClass, &QButtonGroup::idClicked, &window,
                     [&server] { server.faxDevice().modemSetupChanged(); });
    QObject::connect(window.advModemPanel(), &AdvModemPanel::settingsEdited, &window,
                     [&server] { server.faxDevice().modemSetupChanged(); });
    QObject::connect(panel.txtConStr, &QLineEdit::textEdited, &window,
                     [&server] { server.faxDevice().modemSetupChanged(); });
}

void wireAlarmSetup(MainWindow &window, EmailFaxServer &server)
{
    const AlarmSetupPage::Controls &page = window.alarmSetupPage()->ui;
    for (int i = 0; i < 8; ++i) {
        QObject::connect(page.levelGroup[i], &QButtonGroup::idClicked, &window,
                         [&server] { server.prioritySetup().SetAlarmSetupChanged(); });
        onClick(page.cmdClearAlmCat[i], window, [&server, i] { server.prioritySetup().cmdClearAlmCat_Click(i); });
    }
    onClick(page.cmdClearAllAlmCat, window, [&server] { server.prioritySetup().cmdClearAllAlmCat_Click(); });
    onClick(page.cmdAcceptAlarmSetup, window, [&server] { server.prioritySetup().cmdAcceptAlarmSetup_Click(); });
    onClick(page.cmdCancelAlarmSetup, window, [&server] { server.prioritySetup().cmdCancelAlarmSetup_Click(); });

    const PriorityPage::Controls &priority = window.priorityPage()->ui;
    for (LevelFrame *frame : priority.fraPriorityDef)
        QObject::connect(frame, &LevelFrame::changed, &window,
                         [&server] { server.prioritySetup().SetPrioritySetupChanged(); });
    onClick(priority.cmdAcceptPriority, window, [&server] { server.prioritySetup().cmdAcceptPriority_Click(); });
    onClick(priority.cmdCancelPriority, window, [&server] { server.prioritySetup().cmdCancelPriority_Click(); });
}

void wireRecipients(MainWindow &window, EmailFaxServer &server)
{
    const RecipientsPage::Controls &page = window.recipientsPage()->ui;
    Recipients &recipients = server.recipients();
    onClick(page.cmdNew, window, [&recipients] { recipients.cmdNew_Click(); });
    onClick(page.cmdEdit, window, [&recipients] { recipients.cmdEdit_Click(); });
    onClick(page.cmdDelete, window, [&window, &server, &recipients] {
        const int row = recipients.gintSelMainContact;
        if (row < 1 || row > server.lists().lvwMainContacts.count())
            return;
        const QString name =
            server.lists().lvwMainContacts.text(row, 2) + u' ' + server.lists().lvwMainContacts.text(row, 1);
        window.confirm(QStringLiteral("Delete Contact"),
                       QStringLiteral("Delete %1 from the contacts, and from the e-mail and fax lists?").arg(name),
                       [&recipients] { recipients.cmdDelete_Click(); });
    });
    onClick(page.cmdAddEmailAdr, window, [&recipients] { recipients.cmdAddEmailAdr_Click(); });
    onClick(page.cmdRemEmailAdr, window, [&recipients] { recipients.cmdRemEmailAdr_Click(); });
    onClick(page.cmdAddFaxAdr, window, [&recipients] { recipients.cmdAddFaxAdr_Click(); });
    onClick(page.cmdRemFaxAdr, window, [&recipients] { recipients.cmdRemFaxAdr_Click(); });
    onClick(page.cmdAddEscalation, window, [&recipients] { recipients.cmdAddEscalation_Click(); });
    onClick(page.cmdRemEscalation, window, [&recipients] { recipients.cmdRemEscalation_Click(); });
    QObject::connect(
        page.lvwMainContacts, &QAbstractItemView::clicked, &window,
        [&recipients](const QModelIndex &index) { recipients.lvwMainContacts_ItemClick(index.row() + 1); });
    // The selected row counts too when it moves by keyboard.
    QObject::connect(page.lvwMainContacts->selectionModel(), &QItemSelectionModel::currentRowChanged, &window,
                     [&recipients](const QModelIndex &current) {
                         if (current.isValid())
                             recipients.lvwMainContacts_ItemClick(current.row() + 1);
                     });
    QObject::connect(page.lvwEmailContacts, &QAbstractItemView::clicked, &window,
                     [&recipients](const QModelIndex &i) { recipients.lvwEmailContacts_ItemClick(i.row() + 1); });
    QObject::connect(page.lvwFaxContacts, &QAbstractItemView::clicked, &window,
                     [&recipients](const QModelIndex &i) { recipients.lvwFaxContacts_ItemClick(i.row() + 1); });
    QObject::connect(page.lvwEscalationContacts, &QAbstractItemView::clicked, &window,
                     [&recipients](const QModelIndex &i) { recipients.lvwEscalationContacts_ItemClick(i.row() + 1); });
    const ContactEditor::Controls &editor = window.contactEditor()->ui;
    onClick(editor.cmdContactsOK, window, [&recipients] { recipients.cmdContactsOK_Click(); });
    onClick(editor.cmdContactsCancel, window, [&recipients] { recipients.cmdContactsCancel_Click(); });
}

void wireActiveAlarms(MainWindow &window, EmailFaxServer &server)
{
    ActiveAlarmsPage *page = window.activeAlarmsPage();
    auto noTicket = [&window] {
        window.showMessage(QStringLiteral("No Alarm Selected"), QStringLiteral("Select an alarm in the list first."));
    };
    onClick(page->ui.cmdAcknowledge, window, [&window, &server, page, noTicket] {
        const QString ticket = page->selectedTicket();
        if (ticket.isEmpty())
            return noTicket();
        if (page->ui.txtAckName->text().trimmed().isEmpty()) {
            window.showMessage(QStringLiteral("Name Needed"),
                               QStringLiteral("Enter your name to acknowledge the alarm."));
            return;
        }
        if (server.tickets().acknowledge(ticket, page->ui.txtAckName->text(), page->ui.txtAckComment->text(),
                                         TicketDesk::ByWindow))
            page->ui.txtAckComment->clear();
    });
    onClick(page->ui.cmdClearAlarm, window, [&window, &server, page, noTicket] {
        const QString ticket = page->selectedTicket();
        if (ticket.isEmpty())
            return noTicket();
        window.confirm(QStringLiteral("Clear Alarm"),
                       QStringLiteral("Clear ticket %1? It leaves the list and is sent no more.").arg(ticket),
                       [&server, page, ticket] {
                           server.tickets().clear(ticket, page->ui.txtAckName->text(), TicketDesk::ByWindow);
                       });
    });
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
    wireWindow(window, server);
    wireCommSetup(window, server);
    wireFax(window, server);
    wireAlarmSetup(window, server);
    wireRecipients(window, server);
    wireActiveAlarms(window, server);
    wireServiceButtons(window, server);
}

} // namespace osprel
