#pragma once
// The window as plain values: every control the server's procedures read or write, each port of each page in one
// object, for running the server's logic headless.

#include "Ports.h"

#include <QStringList>

class HeadlessWindow : public osprel::FormPort,
                       public osprel::CommSetupPort,
                       public osprel::EmailQueuePort,
                       public osprel::FaxPagePort,
                       public osprel::StatusPort,
                       public osprel::QueuedAlarmsPort,
                       public osprel::AlarmSetupPort,
                       public osprel::PriorityPagePort,
                       public osprel::RecipientsPagePort,
                       public osprel::ContactEditorPort,
                       public osprel::ModemPanelPort
{
public:
    osprel::Ports ports() { return {*this, *this, *this, *this, *this, *this, *this, *this, *this, *this, *this}; }

    // SendSwitches and CommSetupPort
    bool chkEnableEmail() const override { return email; }
    bool chkEnableFax() const override { return fax; }
    osprel::CommSettings commSettings() const override { return settings; }
    void setCommSettings(const osprel::CommSettings &s) override { settings = s; }
    void setChkEnableEmail(bool c) override { email = c; }
    void setChkEnableFax(bool c) override { fax = c; }
    void setCommSetupChanged(bool changed) override { pageChanged[0] = changed; }
    // QueuedAlarmsPort and AlarmSetupPort
    QString lblQueuedAlarms(int i) const override { return counters.at(i); }
    void setLblQueuedAlarms(int i, const QString &c) override { counters[i] = c; }
    void selectCategoryLevel(int i, int l) override { levels[i] = l; }
    int categoryOption(int i) const override { return levels[i]; }
    void setAlarmSetupChanged(bool changed) override { pageChanged[1] = changed; }
    void setCategoryCaption(int, const QString &) override {}
    // PriorityPagePort
    void showLevelDefinitions(const osprel::LevelRecord (&)[3]) override { ++definitionsShown; }
    void showTicketRules(const osprel::TicketRule (&)[3]) override {}
    osprel::LevelFrameValues levelFrame(int level) const override { return frames[level]; }
    void setPrioritySetupChanged(bool changed) override { pageChanged[2] = changed; }
    // ContactEditorPort and RecipientsPagePort
    void showContactEditor() override { editorOpen = true; }
    void hideContactEditor() override { editorOpen = false; }
    osprel::ContactFields contactFields() const override { return contact; }
    void setContactFields(const osprel::ContactFields &f) override { contact = f; }
    void setLblContactErr(const QString &t) override { contactErr = t; }
    void selectMainContactRow(int row) override { selectedMainRow = row; }
    void setEmailListEnabled(bool e) override { emailListEnabled = e; }
    void setFaxListEnabled(bool e) override { faxListEnabled = e; }
    // EmailQueuePort and StatusPort
    QString txtFrom() const override { return settings.txtFrom; }
    QString txtMailServer() const override { return settings.txtMailServer; }
    osprel::MailSettings mailSettings() const override { return mail; }
    void setMailSettings(const osprel::MailSettings &settings) override { mail = settings; }
    bool optSMTP() const override { return smtp; }
    QString txtTestEMailTo() const override { return testTo; }
    QString txtTestEMailSubject() const override { return testSubject; }
    QString txtTestEMailMessage() const override { return testMessage; }
    void setTxtTestEmailProg(const QString &t) override { testEmailProg = t; }
    void setTestEmailFields(const QString &to, const QString &subject, const QString &message) override
    {
        testTo = to;
        testSubject = subject;
        testMessage = message;
    }
    void setTxtTestFaxProg(const QString &t) override { testFaxProg = t; }
    // FaxPagePort and ModemPanelPort
    void setTxtFaxDevice(const QString &t) override { faxDevice = t; }
    QString txtTestRcpFName() const override { return testFaxName; }
    QString txtTestFaxNumber() const override { return testFaxNumber; }
    QString txtTestFaxMessage() const override { return testFaxMessage; }
    void setTestFaxFields(const QString &, const QString &, const QString &) override {}
    void showAdvModemSetup(bool open) override { advModemOpen = open; }
    QString txtConStr() const override { return initString; }
    void setTxtConStr(const QString &t) override { initString = t; }
    int selectedModemClassOption() const override { return classOption; }
    void selectModemClassOption(int option) override { classOption = option; }
    void setModemClassCaption(int option, const QString &caption) override { classCaptions[option] = caption; }
    void setLblCurrentClass(const QString &t) override { currentClass = t; }
    void setModemSetupButtonsEnabled(bool e) override { modemButtonsEnabled = e; }
    bool chkDetailModemLogging() const override { return detailLogging; }
    osprel::ModemProfile modemProfile() const override { return profile; }
    void setModemProfile(const osprel::ModemProfile &p) override { profile = p; }
    osprel::SearchPolicy searchPolicy() const override { return search; }
    void setSearchPolicy(const osprel::SearchPolicy &p) override { search = p; }
    // FormPort: TrayPort, PageSwitch, Notices and the window itself
    void setWindowImage(int i) override { image = i; }
    void setCaption(const QString &c) override { caption = c; }
    void SysTrayUpdate() override { ++trayUpdates; }
    void TabSet(const QString &) override {}
    QString currentTabCaption() const override { return QStringLiteral("Recipients"); }
    void showMessage(const QString &title, const QString &text) override { messages << title + u'|' + text; }
    void showPanelMessage(const QString &t) override { panelMessage = t; }
    void setPlacement(int, int) override {}
    void setServiceControlsVisible(bool) override {}
    void appendAppVersion(const QString &) override {}
    void frameSetup() override {}
    void showStartPage() override {}
    void showWindow() override { visible = true; }
    void hideWindow() override { visible = false; }
    void restoreWindow() override { visible = true; }
    void trayAdd(const QString &) override {}
    void trayRemove() override {}

    bool email = true, fax = true, smtp = true, emailListEnabled = true, visible = false;
    osprel::CommSettings settings;
    osprel::MailSettings mail;
    QStringList counters = QStringList(8, QStringLiteral("0"));
    int levels[8] = {-1, -1, -1, -1, -1, -1, -1, -1};
    int definitionsShown = 0;
    QString testTo, testSubject, testMessage, testEmailProg, testFaxProg, caption;
    QStringList messages;
    QString faxDevice, initString, classCaptions[4], currentClass, testFaxName, testFaxNumber, testFaxMessage,
        panelMessage;
    int classOption = 0;
    osprel::ModemProfile profile;
    osprel::SearchPolicy search;
    bool advModemOpen = false, modemButtonsEnabled = false, detailLogging = false, faxListEnabled = true;
    osprel::LevelFrameValues frames[3];
    bool pageChanged[3] = {};
    bool editorOpen = false;
    osprel::ContactFields contact;
    QString contactErr;
    int selectedMainRow = 0;
    int image = 0, trayUpdates = 0;
};
