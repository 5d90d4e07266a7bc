#include "MainWindow.h"

#include "ErrorReport.h"
#include "ImageList.h"
#include "ListView.h"
#include "Log.h"
#include "PageScroll.h"
#include "TrayIcon.h"
#include "pages/ActiveAlarmsPage.h"
#include "pages/AdvModemPanel.h"
#include "pages/AlarmSetupPage.h"
#include "pages/CommSetupPage.h"
#include "pages/ContactEditor.h"
#include "pages/HistoryPage.h"
#include "pages/PriorityPage.h"
#include "pages/QueuePanel.h"
#include "pages/RecipientsPage.h"
#include "pages/StatusLine.h"
#include "pages/StatusPanel.h"

#include <QCloseEvent>
#include <QDesktopServices>
#include <QGridLayout>
#include <QLineEdit>
#include <QListView>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QSplitter>
#include <QTabBar>
#include <QUrl>
#include <QVBoxLayout>

namespace osprel {

namespace {
const char *const kTabCaptions[7] = {"Email History", "Fax History",    "Recipients",   "Comm Setup",
                                     "Alarm Setup",   "Alarm Priority", "Active Alarms"};
// Overlay panels open at left 120, top 120 twips over the page.
constexpr int kOverlayOffset = 120 / 15;
} // namespace

MainWindow::MainWindow(FormLists &lists, Log &log, QWidget *parent) : QWidget(parent), m_log(log)
{
    setObjectName(QStringLiteral("frmFaxEmail"));
    setWindowTitle(QStringLiteral("Chamber Osprel"));
    m_SSTab1 = new QTabBar(this);
    m_SSTab1->setObjectName(QStringLiteral("SSTab1"));
    for (const char *caption : kTabCaptions)
        m_SSTab1->addTab(QString::fromLatin1(caption));
    buildPages(lists, log);

    m_queues = new QueuePanel(lists, log, this);
    auto *split = new QSplitter(Qt::Vertical, this);
    auto *top = new QWidget(split);
    auto *topLayout = new QVBoxLayout(top);
    topLayout->setContentsMargins(0, 0, 0, 0);
    topLayout->setSpacing(0);
    topLayout->addWidget(m_SSTab1);
    topLayout->addWidget(m_pageArea, 1);
    split->addWidget(top);
    // The queues scroll too, so that on a small screen the page above keeps most of the height.
    auto *queues = new PageScroll(m_queues, split);
    split->addWidget(queues);
    split->setStretchFactor(0, 3);
    split->setStretchFactor(1, 2);
    split->setCollapsible(0, false);

    m_statusLine = new StatusLine(log, this);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(split, 1);
    layout->addWidget(m_statusLine);

    // Another page, or Escape, leaves an open panel: a panel never stays over the wrong page with no way out.
    connect(m_SSTab1, &QTabBar::currentChanged, this, [this](int index) {
        leaveOverlays();
        TabSet(m_SSTab1->tabText(index));
    });
    connect(new QShortcut(QKeySequence(Qt::Key_Escape), this), &QShortcut::activated, this, &MainWindow::leaveOverlays);
    connect(m_history[0]->cmdStatus, &QPushButton::clicked, this,
            [this] { openOverlay(m_picStatus, m_history[0]->cmdStatus->text()); });
    connect(m_picStatus->cmdStatusClose, &QPushButton::clicked, this, [this] { closeOverlay(m_picStatus); });
    connect(m_history[0]->cmdViewLogFile, &QPushButton::clicked, this, [this] {
        guarded(QStringLiteral("cmdViewLogFile_Click"),
                [this] { QDesktopServices::openUrl(QUrl::fromLocalFile(m_log.logPath())); });
    });
    m_trayIcon = new TrayIcon(this);
    connect(m_trayIcon, &TrayIcon::message, this, &MainWindow::trayMessage);
    connect(m_trayIcon, &TrayIcon::restoreRequested, this, &MainWindow::restoreRequested);
    connect(m_trayIcon, &TrayIcon::exitRequested, this, &MainWindow::exitRequested);
    connect(&log, &Log::appended, this, [this](QStringListModel *model) {
        // The newest entry of a status list stays selected.
        for (QListView *view : {m_picStatus->lstStatus, m_queues->lstEmailStatus, m_queues->lstFaxStatus}) {
            if (view->model() == model && view->isVisible())
                view->setCurrentIndex(model->index(model->rowCount() - 1));
        }
    });
}

MainWindow::~MainWindow()
{
    trayRemove();
}

// The pages and the overlays share one cell; TabSet decides which page shows.
void MainWindow::buildPages(FormLists &lists, Log &log)
{
    m_pageArea = new QWidget(this);
    auto *pages = new QGridLayout(m_pageArea);
    pages->setContentsMargins(0, 0, 0, 0);
    m_Frame1[0] = m_history[0] = new HistoryPage(0, lists, m_pageArea);
    m_Frame1[1] = m_history[1] = new HistoryPage(1, lists, m_pageArea);
    m_Frame1[2] = m_recipients = new RecipientsPage(lists, m_pageArea);
    m_Frame1[3] = m_commSetup = new CommSetupPage(m_pageArea);
    m_Frame1[4] = m_alarmSetup = new AlarmSetupPage(m_pageArea);
    m_Frame1[5] = m_priority = new PriorityPage(m_pageArea);
    m_Frame1[6] = m_activeAlarms = new ActiveAlarmsPage(lists, m_pageArea);
    for (QFrame *frame : m_Frame1)
        pages->addWidget(new PageScroll(frame, m_pageArea), 0, 0);

    m_picStatus = new StatusPanel(log, m_pageArea);
    m_picContacts = new ContactEditor(m_pageArea);
    m_picAdvModemSetup = new AdvModemPanel(*this, m_pageArea);
    m_picControls = overlay("picControls");
    for (QWidget *panel : {static_cast<QWidget *>(m_picStatus), static_cast<QWidget *>(m_picContacts),
                           static_cast<QWidget *>(m_picAdvModemSetup), static_cast<QWidget *>(m_picControls)}) {
        panel->setContentsMargins(kOverlayOffset, kOverlayOffset, 0, 0);
        panel->hide();
        pages->addWidget(new PageScroll(panel, m_pageArea), 0, 0);
    }
}

Ports MainWindow::ports()
{
    return {*this,         *m_commSetup, *m_commSetup,  *m_commSetup,   *m_commSetup,       *m_alarmSetup,
            *m_alarmSetup, *m_priority,  *m_recipients, *m_picContacts, *m_picAdvModemSetup};
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
    if (PageScroll *scroll = PageScroll::of(panel))
        scroll->raise();
    TabSet(caption);
}

void MainWindow::leaveOverlays()
{
    // Each panel is left by its own Cancel or Close, so that what it was editing is put back as stored.
    const std::pair<QWidget *, QPushButton *> exits[] = {
        {m_picContacts, m_picContacts->ui.cmdContactsCancel},
        {m_picAdvModemSetup, m_picAdvModemSetup->ui.cmdCancelModemSetup},
        {m_picStatus, m_picStatus->cmdStatusClose},
    };
    for (const auto &[panel, exit] : exits) {
        if (panel->isVisibleTo(this))
            exit->click();
    }
}

void MainWindow::closeOverlay(QWidget *panel)
{
    panel->hide();
    TabSet(currentTabCaption());
}

void MainWindow::setPlacement(int heightTwips, int widthTwips)
{
    // The design size, where the screen has room for it: a large scale on a small screen gets a window that fits,
    // and the pages scroll.
    QSize minimum(ListView::twipsToPixels(widthTwips), ListView::twipsToPixels(heightTwips));
    QSize preferred(qMax(width(), 1000), qMax(height(), 700));
    if (const QScreen *display = screen()) {
        const QSize room = display->availableGeometry().size() * 0.9;
        minimum = minimum.boundedTo(room / 1.5);
        preferred = preferred.boundedTo(room);
    }
    setMinimumSize(minimum);
    resize(preferred);
}

void MainWindow::setServiceControlsVisible(bool visible)
{
    m_queues->setServiceControlsVisible(visible);
    m_commSetup->setServiceControlsVisible(visible);
}

void MainWindow::appendAppVersion(const QString &text)
{
    m_statusLine->appendAppVersion(text);
}

void MainWindow::frameSetup()
{
    for (int i = 0; i < m_SSTab1->count(); ++i)
        m_Frame1[i]->setFrameShape(QFrame::NoFrame);
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

        struct Target
        {
            const char *control;
            int page;       // -1: no page (an overlay shows)
            QWidget *focus; // null: the focus stays
        };
        const Target targets[] = {
            {"Email History", 0, m_history[0]->lvwHist},
            {"Fax History", 1, m_history[1]->lvwHist},
            {"Recipients", 2, m_recipients->ui.lvwMainContacts},
            {"Comm Setup", 3, m_commSetup->ui.txtMailServer},
            {"New", -1, m_picContacts->ui.txtContactsFName},
            {"Edit", -1, m_picContacts->ui.txtContactsFName},
            {"Status Report", -1, m_picStatus->lstStatus},
            {"Alarm Setup", 4, nullptr},
            {"Setup...", -1, m_picAdvModemSetup->ui.cmdCancelModemSetup},
            {"Alarm Priority", 5, nullptr},
            {"Active Alarms", 6, m_activeAlarms->ui.lvwActiveAlarms},
            {"Form_Load", 0, nullptr},
        };
        for (const Target &target : targets) {
            if (control != QLatin1String(target.control))
                continue;
            if (target.page >= 0) { // enabled first, then shown
                m_Frame1[target.page]->setEnabled(true);
                m_Frame1[target.page]->show();
            }
            if (target.focus)
                target.focus->setFocus();
            return;
        }
    });
}

QString MainWindow::currentTabCaption() const
{
    return m_SSTab1->tabText(m_SSTab1->currentIndex());
}

void MainWindow::showStartPage()
{
    if (m_SSTab1->currentIndex() != 0)
        m_SSTab1->setCurrentIndex(0);
    m_queues->showQueues();
    m_picContacts->setLblContactErr(QString());
}

void MainWindow::setWindowImage(int image)
{
    setWindowIcon(imageListIcon(image));
}

void MainWindow::hideWindow()
{
    // Without a notification area a hidden window could not be brought back: it is minimised instead.
    if (m_trayIcon->icon())
        hide();
    else
        showMinimized();
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
    m_trayIcon->add(windowIcon(), tip);
}

void MainWindow::trayRemove()
{
    m_trayIcon->remove();
}

void MainWindow::SysTrayUpdate()
{
    guarded(QStringLiteral("SysTrayUpdate"), [&] { m_trayIcon->update(windowIcon(), windowTitle()); });
}

void MainWindow::showPanelMessage(const QString &text)
{
    m_statusLine->showPanelMessage(text);
}

void MainWindow::showMessage(const QString &title, const QString &text)
{
    // Modeless to the event loop: timers, the bus and the sockets go on while the box is up.
    auto *box = new QMessageBox(QMessageBox::Warning, title, text, QMessageBox::Ok, this);
    box->setObjectName(QStringLiteral("messageBox"));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

void MainWindow::confirm(const QString &title, const QString &question, const std::function<void()> &action)
{
    auto *box = new QMessageBox(QMessageBox::Question, title, question, QMessageBox::Yes | QMessageBox::No, this);
    box->setObjectName(QStringLiteral("confirmBox"));
    box->setDefaultButton(QMessageBox::No);
    box->setAttribute(Qt::WA_DeleteOnClose);
    connect(box, &QMessageBox::finished, this, [action](int result) {
        if (result == QMessageBox::Yes)
            action();
    });
    box->open();
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    event->accept();
    Q_EMIT closeRequested(event);
}

void MainWindow::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    Q_EMIT resized();
}

void MainWindow::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange)
        Q_EMIT resized();
}

} // namespace osprel
