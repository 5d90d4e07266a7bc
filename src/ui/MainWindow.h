#pragma once
// frmFaxEmail: the main window. It composes the pages, the queue panel and the overlay panels, switches pages
// (TabSet), carries the notification-area icon, and hands its own events (close, resize, tray clicks) on as
// signals; each page implements the port of the logic it shows, so the window forwards nothing.

#include "FormPort.h"
#include "OverlayHost.h"
#include "Ports.h"

#include <QWidget>
#include <functional>

class QCloseEvent;
class QFrame;
class QTabBar;

namespace osprel {

class ActiveAlarmsPage;
class AdvModemPanel;
class AlarmSetupPage;
class CommSetupPage;
class ContactEditor;
class FormLists;
class HistoryPage;
class ListView;
class Log;
class PriorityPage;
class QueuePanel;
class RecipientsPage;
class StatusLine;
class StatusPanel;
class TrayIcon;

class MainWindow : public QWidget, public FormPort, public OverlayHost
{
    Q_OBJECT
public:
    MainWindow(FormLists &lists, Log &log, QWidget *parent = nullptr);
    ~MainWindow() override;

    // The window's pages as the ports the server is made with.
    Ports ports();

    // FormPort
    void setPlacement(int heightTwips, int widthTwips) override;
    void setServiceControlsVisible(bool visible) override;
    void appendAppVersion(const QString &text) override;
    void frameSetup() override;
    void TabSet(const QString &control) override;
    QString currentTabCaption() const override;
    void showStartPage() override;
    void setWindowImage(int image) override;
    void setCaption(const QString &caption) override { setWindowTitle(caption); }
    void SysTrayUpdate() override;
    void showWindow() override { show(); }
    void hideWindow() override;
    void restoreWindow() override;
    void trayAdd(const QString &tip) override;
    void trayRemove() override;
    void showMessage(const QString &title, const QString &text) override;
    void showPanelMessage(const QString &text) override;
    // Asks before an action that cannot be undone; runs it when the answer is Yes. The box does not stop the event
    // loop: timers, the bus and the sockets go on while it is up.
    void confirm(const QString &title, const QString &question, const std::function<void()> &action);
    // OverlayHost
    void openOverlay(QWidget *panel, const QString &caption) override;
    void closeOverlay(QWidget *panel) override;
    // Closes every open overlay panel by its Cancel or Close button.
    void leaveOverlays();

    // The pages, for the wiring of their controls to the server's procedures.
    HistoryPage *historyPage(int index) const { return m_history[index]; }
    RecipientsPage *recipientsPage() const { return m_recipients; }
    CommSetupPage *commSetupPage() const { return m_commSetup; }
    AlarmSetupPage *alarmSetupPage() const { return m_alarmSetup; }
    PriorityPage *priorityPage() const { return m_priority; }
    ActiveAlarmsPage *activeAlarmsPage() const { return m_activeAlarms; }
    QueuePanel *queuePanel() const { return m_queues; }
    ContactEditor *contactEditor() const { return m_picContacts; }
    AdvModemPanel *advModemPanel() const { return m_picAdvModemSetup; }

Q_SIGNALS:
    // The close box was used; a handler that cancels the close ignores the event.
    void closeRequested(QCloseEvent *event);
    // The window was resized, minimised or restored.
    void resized();
    // The tray icon's mouse message (514 left button up, 515 double-click), as the tray reports it.
    void trayMessage(int message);
    void restoreRequested(); // mPopRestore
    void exitRequested();    // mPopExit

protected:
    void closeEvent(QCloseEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void buildPages(FormLists &lists, Log &log);
    QFrame *overlay(const char *name);

    Log &m_log;
    QTabBar *m_SSTab1 = nullptr;
    QWidget *m_pageArea = nullptr;
    QFrame *m_Frame1[7] = {};
    HistoryPage *m_history[2] = {};
    RecipientsPage *m_recipients = nullptr;
    CommSetupPage *m_commSetup = nullptr;
    AlarmSetupPage *m_alarmSetup = nullptr;
    PriorityPage *m_priority = nullptr;
    ActiveAlarmsPage *m_activeAlarms = nullptr;
    QueuePanel *m_queues = nullptr;
    StatusPanel *m_picStatus = nullptr;
    ContactEditor *m_picContacts = nullptr;
    AdvModemPanel *m_picAdvModemSetup = nullptr;
    QFrame *m_picControls = nullptr;
    StatusLine *m_statusLine = nullptr;
    TrayIcon *m_trayIcon = nullptr;
};

} // namespace osprel
