#pragma once
// frmFaxEmail: the main window. It composes the pages, the queue panel and the overlay panels, shows the lists
// the server works on, and hands every window event to the server's procedures; it decides nothing itself.

#include "FormPort.h"

#include <QWidget>

class QFrame;
class QLabel;
class QSystemTrayIcon;
class QTabBar;
class QMenu;

namespace osprel {

class AdvModemPanel;
class AlarmSetupPage;
class CommSetupPage;
class ContactEditor;
class EmailFaxServer;
class HistoryPage;
class Log;
class PriorityPage;
class QueuePanel;
class RecipientsPage;
class StatusPanel;

class MainWindow : public QWidget, public FormPort
{
    Q_OBJECT
public:
    MainWindow(EmailFaxServer &server, Log &log, QWidget *parent = nullptr);
    ~MainWindow() override;

    // FormPort
    void setPlacement(int heightTwips, int widthTwips) override;
    void setTestFields(const QString &emailTo, const QString &emailSubject, const QString &emailMessage,
                       const QString &faxName, const QString &faxNumber, const QString &faxMessage) override;
    void setServiceControlsVisible(bool visible) override;
    void appendAppVersion(const QString &text) override;
    void frameSetup() override;
    void TabSet(const QString &control) override;
    void showStartPage() override;
    void setWindowImage(int image) override;
    void setCaption(const QString &caption) override;
    void showWindow() override;
    void hideWindow() override;
    void restoreWindow() override;
    void trayAdd(const QString &tip) override;
    void trayRemove() override;
    void SysTrayUpdate() override;
    void setCategoryCaption(int index, const QString &caption) override;
    // StorePort
    bool chkEnableEmail() const override;
    bool chkEnableFax() const override;
    void setCommSettings(const CommSettings &settings) override;
    void setChkEnableEmail(bool checked) override;
    void setChkEnableFax(bool checked) override;
    QString lblQueuedAlarms(int index) const override;
    void setLblQueuedAlarms(int index, const QString &caption) override;
    // EmailQueuePort and StatusPort
    QString txtFrom() const override;
    QString txtMailServer() const override;
    bool optSMTP() const override;
    QString txtTestEMailTo() const override;
    QString txtTestEMailSubject() const override;
    QString txtTestEMailMessage() const override;
    void setTxtTestEmailProg(const QString &text) override;
    void setTxtTestFaxProg(const QString &text) override;
    void setEmailListEnabled(bool enabled) override;
    void showMessage(const QString &title, const QString &text) override;
    // PriorityPort and PrioritySetupPort
    void selectCategoryLevel(int index, int level) override;
    void showLevelDefinitions(const LevelRecord (&levels)[3]) override;
    int categoryOption(int index) const override;
    LevelFrameValues levelFrame(int level) const override;
    void setSetupPageChanged(SetupPage page, bool changed) override;
    // CommSetupPort
    CommSettings commSettings() const override;
    void setCommSetupChanged(bool changed) override;
    // RecipientsPort
    void showContactEditor() override;
    void hideContactEditor() override;
    ContactFields contactFields() const override;
    void setContactFields(const ContactFields &fields) override;
    void setLblContactErr(const QString &text) override;
    void selectMainContactRow(int row) override;
    QString currentTabCaption() const override;

    // FaxPort
    void setTxtFaxDevice(const QString &text) override;
    void showAdvModemSetup(bool open) override;
    QString txtConStr() const override;
    void setTxtConStr(const QString &text) override;
    int selectedModemClassOption() const override;
    void selectModemClassOption(int option) override;
    void setModemClassCaption(int option, const QString &caption) override;
    void setLblCurrentClass(const QString &text) override;
    void setModemSetupButtonsEnabled(bool enabled) override;
    bool chkDetailModemLogging() const override;
    void setFaxListEnabled(bool enabled) override;
    QString txtTestRcpFName() const override;
    QString txtTestFaxNumber() const override;
    QString txtTestFaxMessage() const override;
    void showPanelMessage(const QString &text) override;

    // The pages, for the wiring of their controls to the server's procedures.
    RecipientsPage *recipientsPage() const { return m_recipients; }
    CommSetupPage *commSetupPage() const { return m_commSetup; }
    AlarmSetupPage *alarmSetupPage() const { return m_alarmSetup; }
    PriorityPage *priorityPage() const { return m_priority; }
    QueuePanel *queuePanel() const { return m_queues; }
    ContactEditor *contactEditor() const { return m_picContacts; }
    AdvModemPanel *advModemPanel() const { return m_picAdvModemSetup; }

    QSystemTrayIcon *tray() const { return m_tray; }

protected:
    void closeEvent(QCloseEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    QFrame *overlay(const char *name);
    void openOverlay(QWidget *panel, const QString &caption);
    void setListEnabled(const char *name, bool enabled);
    void closeOverlay(QWidget *panel);
    void buildTrayMenu();

    EmailFaxServer &m_server;
    Log &m_log;
    QTabBar *m_SSTab1 = nullptr;
    QWidget *m_pageArea = nullptr;
    QFrame *m_Frame1[6] = {};
    HistoryPage *m_history[2] = {};
    RecipientsPage *m_recipients = nullptr;
    CommSetupPage *m_commSetup = nullptr;
    AlarmSetupPage *m_alarmSetup = nullptr;
    PriorityPage *m_priority = nullptr;
    QueuePanel *m_queues = nullptr;
    StatusPanel *m_picStatus = nullptr;
    ContactEditor *m_picContacts = nullptr;
    AdvModemPanel *m_picAdvModemSetup = nullptr;
    QFrame *m_picControls = nullptr;
    QLabel *m_lblAppVersion = nullptr, *m_lblDumpStrFunctErr = nullptr, *m_lblMessagePanel = nullptr;
    QSystemTrayIcon *m_tray = nullptr;
    QMenu *m_mPopupSys = nullptr;
};

} // namespace osprel
