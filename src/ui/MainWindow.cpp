#include "MainWindow.h"

#include "EmailFaxServer.h"
#include "EmailQueue.h"
#include "ErrorReport.h"
#include "FormWiring.h"
#include "ImageList.h"
#include "ListView.h"
#include "Log.h"
#include "PrioritySetup.h"
#include "SendStatus.h"
#include "pages/AdvModemPanel.h"
#include "pages/AlarmSetupPage.h"
#include "pages/CommSetupPage.h"
#include "pages/ContactEditor.h"
#include "pages/HistoryPage.h"
#include "pages/LevelFrame.h"
#include "pages/PriorityPage.h"
#include "pages/QueuePanel.h"
#include "pages/RecipientsPage.h"
#include "pages/SetupButtons.h"
#include "pages/StatusPanel.h"

#include <QApplication>
#include <QButtonGroup>
#include <QCheckBox>
#include <QCloseEvent>
#include <QDesktopServices>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QSplitter>
#include <QSystemTrayIcon>
#include <QTabBar>
#include <QUrl>
#include <QVBoxLayout>

namespace osprel {

namespace {
const char *const kTabCaptions[6] = {"Email History", "Fax History", "Recipients",
                                     "Comm Setup",    "Alarm Setup", "Alarm Priority"};
// Overlay panels open at left 120, top 120 twips over the page.
constexpr int kOverlayOffset = 120 / 15;
} // namespace

MainWindow::MainWindow(EmailFaxServer &server, Log &log, QWidget *parent)
    : QWidget(parent), m_server(server), m_log(log)
{
    setObjectName(QStringLiteral("frmFaxEmail"));
    setWindowTitle(QStringLiteral("Chamber Osprel"));
    FormLists &lists = server.lists();

    m_SSTab1 = new QTabBar(this);
    m_SSTab1->setObjectName(QStringLiteral("SSTab1"));
    for (const char *caption : kTabCaptions)
        m_SSTab1->addTab(QString::fromLatin1(caption));

    // The pages and the overlays share one cell; TabSet decides which page shows.
    m_pageArea = new QWidget(this);
    auto *pages = new QGridLayout(m_pageArea);
    pages->setContentsMargins(0, 0, 0, 0);
    m_Frame1[0] = m_history[0] = new HistoryPage(0, lists, m_pageArea);
    m_Frame1[1] = m_history[1] = new HistoryPage(1, lists, m_pageArea);
    m_Frame1[2] = m_recipients = new RecipientsPage(lists, m_pageArea);
    m_Frame1[3] = m_commSetup = new CommSetupPage(m_pageArea);
    m_Frame1[4] = m_alarmSetup = new AlarmSetupPage(m_pageArea);
    m_Frame1[5] = m_priority = new PriorityPage(m_pageArea);
    for (QFrame *frame : m_Frame1)
        pages->addWidget(frame, 0, 0);

    m_picStatus = new StatusPanel(log, m_pageArea);
    m_picContacts = new ContactEditor(m_pageArea);
    m_picAdvModemSetup = new AdvModemPanel(m_pageArea);
    m_picControls = overlay("picControls");
    for (QWidget *panel : {static_cast<QWidget *>(m_picStatus), static_cast<QWidget *>(m_picContacts),
                           static_cast<QWidget *>(m_picAdvModemSetup), static_cast<QWidget *>(m_picControls)}) {
        pages->addWidget(panel, 0, 0);
        panel->setContentsMargins(kOverlayOffset, kOverlayOffset, 0, 0);
        panel->hide();
    }

    m_queues = new QueuePanel(lists, log, this);
    auto *split = new QSplitter(Qt::Vertical, this);
    auto *top = new QWidget(split);
    auto *topLayout = new QVBoxLayout(top);
    topLayout->setContentsMargins(0, 0, 0, 0);
    topLayout->setSpacing(0);
    topLayout->addWidget(m_SSTab1);
    topLayout->addWidget(m_pageArea, 1);
    split->addWidget(top);
    split->addWidget(m_queues);
    split->setStretchFactor(0, 3);
    split->setStretchFactor(1, 2);

    m_lblAppVersion = new QLabel(tr("Version"), this);
    m_lblAppVersion->setObjectName(QStringLiteral("lblAppVersion"));
    m_lblDumpStrFunctErr = new QLabel(this);
    m_lblDumpStrFunctErr->setObjectName(QStringLiteral("lblDumpStrFunctErr"));
    m_lblDumpStrFunctErr->setStyleSheet(QStringLiteral("color: #b00000"));
    m_lblMessagePanel = new QLabel(this);
    m_lblMessagePanel->setObjectName(QStringLiteral("lblMessagePanel"));
    m_lblMessagePanel->setWordWrap(true);
    m_lblMessagePanel->setStyleSheet(QStringLiteral("color: #004080"));
    auto *status = new QHBoxLayout;
    status->addWidget(m_lblMessagePanel, 2);
    status->addWidget(m_lblDumpStrFunctErr, 1);
    status->addWidget(m_lblAppVersion);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(split, 1);
    layout->addLayout(status);

    connect(m_SSTab1, &QTabBar::currentChanged, this, [this](int index) { TabSet(m_SSTab1->tabText(index)); });
    connect(m_history[0]->cmdStatus, &QPushButton::clicked, this,
            [this] { openOverlay(m_picStatus, m_history[0]->cmdStatus->text()); });
    connect(m_picStatus->cmdStatusClose, &QPushButton::clicked, this, [this] { closeOverlay(m_picStatus); });
    connect(m_history[0]->cmdViewLogFile, &QPushButton::clicked, this, [this] {
        guarded(QStringLiteral("cmdViewLogFile_Click"),
                [this] { QDesktopServices::openUrl(QUrl::fromLocalFile(m_log.logPath())); });
    });
    for (int i = 0; i < 2; ++i) {
        connect(m_history[i]->cmdClear, &QPushButton::clicked, this,
                [this, i] { m_server.sendStatus().cmdClear_Click(i); });
        connect(m_queues->cmdClearQueue[i], &QPushButton::clicked, this,
                [this, i] { m_server.sendStatus().cmdClearQueue_Click(i); });
    }
    wireForm(*this, m_server);
    connect(&log, &Log::functErrChanged, m_lblDumpStrFunctErr, &QLabel::setText);
    connect(&log, &Log::appended, this, [this](QStringListModel *model) {
        // The newest entry of a status list stays selected.
        for (QListView *view : {m_picStatus->lstStatus, m_queues->lstEmailStatus, m_queues->lstFaxStatus}) {
            if (view->model() == model && view->isVisible()) {
                view->setCurrentIndex(model->index(model->rowCount() - 1));
            }
        }
    });
}

MainWindow::~MainWindow()
{
    trayRemove();
}

QFrame *MainWindow::overlay(const char *name)
{
    auto *panel = new QFrame(m_pageArea);
    panel->setObjectName(QLatin1String(name));
    panel->setFrameShape(QFrame::Panel);
    panel->setFrameShadow(QFrame::Raised);
    panel->setAutoFillBackground(true);
    new QVBoxLayout(panel);
    return panel;
}

void MainWindow::openOverlay(QWidget *panel, const QString &caption)
{
    panel->show();
    panel->raise();
    TabSet(caption);
}

void MainWindow::closeOverlay(QWidget *panel)
{
    panel->hide();
    TabSet(m_SSTab1->tabText(m_SSTab1->currentIndex()));
}

void MainWindow::setPlacement(int heightTwips, int widthTwips)
{
    setMinimumSize(ListView::twipsToPixels(widthTwips), ListView::twipsToPixels(heightTwips));
    resize(qMax(width(), 1000), qMax(height(), 700));
}

void MainWindow::setTestFields(const QString &emailTo, const QString &emailSubject, const QString &emailMessage,
                               const QString &faxName, const QString &faxNumber, const QString &faxMessage)
{
    m_commSetup->txtTestEMailTo->setText(emailTo);
    m_commSetup->txtTestEMailSubject->setText(emailSubject);
    m_commSetup->txtTestEMailMessage->setText(emailMessage);
    m_commSetup->txtTestRcpFName->setText(faxName);
    m_commSetup->txtTestFaxNumber->setText(faxNumber);
    m_commSetup->txtTestFaxMessage->setText(faxMessage);
}

void MainWindow::setServiceControlsVisible(bool visible)
{
    for (QWidget *w : std::initializer_list<QWidget *>{
             m_queues->Label1, m_queues->Label7, m_queues->Label8, m_queues->cmdEnableTimer, m_queues->cmdAddErr,
             m_queues->cmdSendFax, m_queues->cmdShutUp, m_commSetup->optSMTP, m_commSetup->optMAPI, m_queues->lvwMsgQue,
             m_queues->lvwSendEmailQue, m_queues->lvwSendFaxQue})
        w->setVisible(visible);
}

void MainWindow::appendAppVersion(const QString &text)
{
    m_lblAppVersion->setText(m_lblAppVersion->text() + text);
}

void MainWindow::frameSetup()
{
    for (int i = 0; i < m_SSTab1->count(); ++i) {
        m_Frame1[i]->setFrameShape(QFrame::NoFrame);
    }
}

void MainWindow::TabSet(const QString &control)
{
    guarded(QStringLiteral("TabSet"), QStringLiteral(", Control = ") + control, [&] {
        for (int i = 0; i < m_SSTab1->count(); ++i) {
            m_Frame1[i]->setEnabled(false);
            m_Frame1[i]->hide();
        }
        m_queues->fraMsgQue->setEnabled(false);
        m_queues->fraEmailFaxQue->setEnabled(false);

        auto showPage = [this](int i) {
            m_Frame1[i]->setEnabled(true);
            m_Frame1[i]->show();
        };
        auto focus = [this](const char *name) {
            if (QWidget *w = findChild<QWidget *>(QLatin1String(name)))
                w->setFocus();
        };
        if (control == QLatin1String("Email History")) {
            showPage(0);
            focus("lvwHist(0)");
        } else if (control == QLatin1String("Fax History")) {
            showPage(1);
            focus("lvwHist(1)");
        } else if (control == QLatin1String("Recipients")) {
            showPage(2);
            focus("lvwMainContacts");
        } else if (control == QLatin1String("Comm Setup")) {
            showPage(3);
            focus("txtMailServer");
        } else if (control == QLatin1String("New") || control == QLatin1String("Edit")) {
            focus("txtContactsFName");
        } else if (control == QLatin1String("Status Report")) {
            focus("lstStatus");
        } else if (control == QLatin1String("Alarm Setup")) {
            showPage(4);
        } else if (control == QLatin1String("Setup...")) {
            focus("cmdCancelModemSetup");
        } else if (control == QLatin1String("Alarm Priority")) {
            showPage(5);
        } else if (control == QLatin1String("Form_Load")) {
            showPage(0);
        }
    });
}

void MainWindow::showStartPage()
{
    if (m_SSTab1->currentIndex() != 0)
        m_SSTab1->setCurrentIndex(0);
    for (QWidget *w :
         std::initializer_list<QWidget *>{m_queues, m_queues->Label7, m_queues->Label1, m_queues->fraEmailFaxQue,
                                          m_queues->lvwSendEmailQue, m_queues->lvwMsgQue, m_queues->lvwSendFaxQue})
        w->setVisible(true);
    m_picContacts->lblContactErr->clear();
}

void MainWindow::setWindowImage(int image)
{
    setWindowIcon(imageListIcon(image));
}

void MainWindow::setCaption(const QString &caption)
{
    setWindowTitle(caption);
}

void MainWindow::showWindow()
{
    show();
}

void MainWindow::hideWindow()
{
    hide();
}

void MainWindow::restoreWindow()
{
    setWindowState(windowState() & ~(Qt::WindowMinimized | Qt::WindowMaximized));
    show();
    raise();
    activateWindow();
}

void MainWindow::trayAdd(const QString &tip)
{
    // Where the desktop has no notification area the server runs without a tray icon.
    if (m_tray || !QSystemTrayIcon::isSystemTrayAvailable())
        return;
    m_tray = new QSystemTrayIcon(windowIcon(), this);
    m_tray->setObjectName(QStringLiteral("trayIcon"));
    m_tray->setToolTip(tip);
    buildTrayMenu();
    connect(m_tray, &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
        if (reason == QSystemTrayIcon::Trigger)
            m_server.Form_MouseMove(514, 0);
        else if (reason == QSystemTrayIcon::DoubleClick)
            m_server.Form_MouseMove(515, 0);
    });
    m_tray->show();
}

void MainWindow::buildTrayMenu()
{
    m_mPopupSys = new QMenu(QStringLiteral("&SysTray"), this);
    m_mPopupSys->setObjectName(QStringLiteral("mPopupSys"));
    QAction *restore = m_mPopupSys->addAction(QStringLiteral("&Restore"));
    restore->setObjectName(QStringLiteral("mPopRestore"));
    connect(restore, &QAction::triggered, &m_server, &EmailFaxServer::mPopRestore_Click);
    QAction *exit = m_mPopupSys->addAction(QStringLiteral("&Exit"));
    exit->setObjectName(QStringLiteral("mPopExit"));
    connect(exit, &QAction::triggered, &m_server, &EmailFaxServer::mPopExit_Click);
    m_tray->setContextMenu(m_mPopupSys);
}

void MainWindow::trayRemove()
{
    delete m_tray;
    m_tray = nullptr;
}

void MainWindow::SysTrayUpdate()
{
    guarded(QStringLiteral("SysTrayUpdate"), [&] {
        if (!m_tray)
            return;
        m_tray->setIcon(windowIcon());
        m_tray->setToolTip(windowTitle());
    });
}

void MainWindow::setCategoryCaption(int index, const QString &caption)
{
    if (index < 0 || index > 7)
        osprel::raise(Err::IndexOutOfBounds);
    m_alarmSetup->lblErrCata[index]->setText(caption);
}

bool MainWindow::chkEnableEmail() const
{
    return m_commSetup->chkEnableEmail->isChecked();
}

bool MainWindow::chkEnableFax() const
{
    return m_commSetup->chkEnableFax->isChecked();
}

void MainWindow::setCommSettings(const CommSettings &settings)
{
    m_commSetup->txtMailServer->setText(settings.txtMailServer);
    m_commSetup->txtFrom->setText(settings.txtFrom);
    m_commSetup->txtFromName->setText(settings.txtFromName);
    m_commSetup->txtFaxStation->setText(settings.txtFaxStation);
}

void MainWindow::setChkEnableEmail(bool checked)
{
    m_commSetup->chkEnableEmail->setChecked(checked);
}

void MainWindow::setChkEnableFax(bool checked)
{
    m_commSetup->chkEnableFax->setChecked(checked);
}

QString MainWindow::lblQueuedAlarms(int index) const
{
    if (index < 0 || index > 7)
        osprel::raise(Err::IndexOutOfBounds);
    return m_alarmSetup->lblQueuedAlarms[index]->text();
}

void MainWindow::setLblQueuedAlarms(int index, const QString &caption)
{
    if (index < 0 || index > 7)
        osprel::raise(Err::IndexOutOfBounds);
    m_alarmSetup->lblQueuedAlarms[index]->setText(caption);
}

QString MainWindow::txtFrom() const
{
    return m_commSetup->txtFrom->text();
}

QString MainWindow::txtMailServer() const
{
    return m_commSetup->txtMailServer->text();
}

bool MainWindow::optSMTP() const
{
    return m_commSetup->optSMTP->isChecked();
}

QString MainWindow::txtTestEMailTo() const
{
    return m_commSetup->txtTestEMailTo->text();
}

QString MainWindow::txtTestEMailSubject() const
{
    return m_commSetup->txtTestEMailSubject->text();
}

QString MainWindow::txtTestEMailMessage() const
{
    return m_commSetup->txtTestEMailMessage->text();
}

void MainWindow::setTxtTestEmailProg(const QString &text)
{
    m_commSetup->txtTestEmailProg->setText(text);
}

void MainWindow::setTxtTestFaxProg(const QString &text)
{
    m_commSetup->txtTestFaxProg->setText(text);
}

void MainWindow::setEmailListEnabled(bool enabled)
{
    setListEnabled("lvwEmailContacts", enabled);
}

void MainWindow::setFaxListEnabled(bool enabled)
{
    setListEnabled("lvwFaxContacts", enabled);
}

// A list switched off is greyed out, with the scroll-bar colour as its background.
void MainWindow::setListEnabled(const char *name, bool enabled)
{
    auto *list = findChild<QWidget *>(QLatin1String(name));
    list->setEnabled(enabled);
    QPalette palette = list->palette();
    palette.setColor(QPalette::Base, enabled ? QApplication::palette().color(QPalette::Base)
                                             : QApplication::palette().color(QPalette::Button));
    list->setPalette(palette);
}

void MainWindow::setTxtFaxDevice(const QString &text)
{
    m_commSetup->txtFaxDevice->setText(text);
    m_commSetup->txtFaxDevice->repaint(); // the search that follows blocks the window
}

void MainWindow::showAdvModemSetup(bool open)
{
    if (open)
        openOverlay(m_picAdvModemSetup, QStringLiteral("Setup..."));
    else if (m_picAdvModemSetup->isVisible())
        closeOverlay(m_picAdvModemSetup);
}

QString MainWindow::txtConStr() const
{
    return m_picAdvModemSetup->txtConStr->text();
}

void MainWindow::setTxtConStr(const QString &text)
{
    m_picAdvModemSetup->txtConStr->setText(text);
}

int MainWindow::selectedModemClassOption() const
{
    return qMax(0, m_picAdvModemSetup->modemClass->checkedId());
}

void MainWindow::selectModemClassOption(int option)
{
    if (option < 0 || option > 3)
        osprel::raise(Err::IndexOutOfBounds);
    m_picAdvModemSetup->optModemClass[option]->setChecked(true);
}

void MainWindow::setModemClassCaption(int option, const QString &caption)
{
    if (option < 0 || option > 3)
        osprel::raise(Err::IndexOutOfBounds);
    m_picAdvModemSetup->optModemClass[option]->setText(caption);
}

void MainWindow::setLblCurrentClass(const QString &text)
{
    m_picAdvModemSetup->lblCurrentClass->setText(text);
}

void MainWindow::setModemSetupButtonsEnabled(bool enabled)
{
    m_picAdvModemSetup->cmdAcceptModemSetup->setEnabled(enabled);
    m_picAdvModemSetup->cmdCancelModemSetup->setEnabled(enabled);
}

bool MainWindow::chkDetailModemLogging() const
{
    return m_picAdvModemSetup->chkDetailModemLogging->isChecked();
}

QString MainWindow::txtTestRcpFName() const
{
    return m_commSetup->txtTestRcpFName->text();
}

QString MainWindow::txtTestFaxNumber() const
{
    return m_commSetup->txtTestFaxNumber->text();
}

QString MainWindow::txtTestFaxMessage() const
{
    return m_commSetup->txtTestFaxMessage->text();
}

void MainWindow::showPanelMessage(const QString &text)
{
    m_lblMessagePanel->setText(text);
}

void MainWindow::showMessage(const QString &title, const QString &text)
{
    // Modeless to the event loop: timers, the bus and the sockets go on while the box is up.
    auto *box = new QMessageBox(QMessageBox::Warning, title, text, QMessageBox::Ok, this);
    box->setObjectName(QStringLiteral("messageBox"));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

void MainWindow::selectCategoryLevel(int index, int level)
{
    if (index < 0 || index > 7)
        osprel::raise(Err::IndexOutOfBounds);
    m_alarmSetup->selectLevel(index, level);
}

void MainWindow::showLevelDefinitions(const LevelRecord (&levels)[3])
{
    for (int level = 0; level < 3; ++level)
        m_priority->fraPriorityDef[level]->showRecord(levels[level]);
}

int MainWindow::categoryOption(int index) const
{
    if (index < 0 || index > 7)
        osprel::raise(Err::IndexOutOfBounds);
    return m_alarmSetup->levelGroup[index]->checkedId();
}

LevelFrameValues MainWindow::levelFrame(int level) const
{
    if (level < 0 || level > 2)
        osprel::raise(Err::IndexOutOfBounds);
    return m_priority->fraPriorityDef[level]->values();
}

void MainWindow::setSetupPageChanged(SetupPage page, bool changed)
{
    if (page == SetupPage::AlarmSetup)
        showSetupChanged(m_alarmSetup->cmdAcceptAlarmSetup, m_alarmSetup->cmdCancelAlarmSetup,
                         m_alarmSetup->lblChangeWarning, changed);
    else if (page == SetupPage::Priority)
        showSetupChanged(m_priority->cmdAcceptPriority, m_priority->cmdCancelPriority, m_priority->lblChangeWarning,
                         changed);
    else
        setCommSetupChanged(changed);
}

CommSettings MainWindow::commSettings() const
{
    return {m_commSetup->txtMailServer->text(), m_commSetup->txtFrom->text(), m_commSetup->txtFromName->text(),
            m_commSetup->txtFaxStation->text()};
}

void MainWindow::setCommSetupChanged(bool changed)
{
    showSetupChanged(m_commSetup->cmdAcceptCommSetup, m_commSetup->cmdCancelCommSetup, m_commSetup->lblChangeWarning,
                     changed);
}

void MainWindow::showContactEditor()
{
    m_picContacts->show();
    m_picContacts->raise();
}

void MainWindow::hideContactEditor()
{
    m_picContacts->hide();
}

ContactFields MainWindow::contactFields() const
{
    return m_picContacts->fields();
}

void MainWindow::setContactFields(const ContactFields &fields)
{
    m_picContacts->setFields(fields);
}

void MainWindow::setLblContactErr(const QString &text)
{
    m_picContacts->lblContactErr->setText(text);
}

void MainWindow::selectMainContactRow(int row)
{
    QAbstractItemView *list = m_recipients->lvwMainContacts;
    if (row <= 0)
        list->clearSelection();
    else
        list->setCurrentIndex(list->model()->index(row - 1, 0));
}

QString MainWindow::currentTabCaption() const
{
    return m_SSTab1->tabText(m_SSTab1->currentIndex());
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    if (m_server.Form_QueryUnload(EmailFaxServer::CloseBox))
        event->ignore();
    else
        event->accept();
}

void MainWindow::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    m_server.Form_Resize();
}

void MainWindow::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange)
        m_server.Form_Resize();
}

} // namespace osprel
