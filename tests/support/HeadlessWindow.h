#pragma once
// The window as plain values: every control the server's procedures read or write, for running the server's
// logic headless.

#include "FormPort.h"

#include <QStringList>

class HeadlessWindow : public osprel::FormPort
{
public:
    // SendSwitches and StorePort
    bool chkEnableEmail() const override { return email; }
    bool chkEnableFax() const override { return fax; }
    void setCommSettings(const osprel::CommSettings &s) override { settings = s; }
    void setChkEnableEmail(bool c) override { email = c; }
    void setChkEnableFax(bool c) override { fax = c; }
    QString lblQueuedAlarms(int i) const override { return counters.at(i); }
    void setLblQueuedAlarms(int i, const QString &c) override { counters[i] = c; }
    // PriorityPort and PrioritySetupPort
    void selectCategoryLevel(int i, int l) override { levels[i] = l; }
    void showLevelDefinitions(const osprel::LevelRecord (&)[3]) override {}
    int categoryOption(int i) const override { return levels[i]; }
    osprel::LevelFrameValues levelFrame(int level) const override { return frames[level]; }
    void setSetupPageChanged(osprel::SetupPage page, bool changed) override { pageChanged[int(page)] = changed; }
    // CommSetupPort
    osprel::CommSettings commSettings() const override { return settings; }
    void setCommSetupChanged(bool changed) override { pageChanged[0] = changed; }
    // RecipientsPort
    void showContactEditor() override { editorOpen = true; }
    void hideContactEditor() override { editorOpen = false; }
    osprel::ContactFields contactFields() const override { return contact; }
    void setContactFields(const osprel::ContactFields &f) override { contact = f; }
    void setLblContactErr(const QString &t) override { contactErr = t; }
    void selectMainContactRow(int row) override { selectedMainRow = row; }
    QString currentTabCaption() const override { return QStringLiteral("Recipients"); }
    // EmailQueuePort and StatusPort
    QString txtFrom() const override { return settings.txtFrom; }
    QString txtMailServer() const override { return settings.txtMailServer; }
    bool optSMTP() const override { return smtp; }
    QString txtTestEMailTo() const override { return testTo; }
    QString txtTestEMailSubject() const override { return testSubject; }
    QString txtTestEMailMessage() const override { return testMessage; }
    void setTxtTestEmailProg(const QString &t) override { testEmailProg = t; }
    void setTxtTestFaxProg(const QString &t) override { testFaxProg = t; }
    void setEmailListEnabled(bool e) override { emailListEnabled = e; }
    void showMessage(const QString &title, const QString &text) override { messages << title + u'|' + text; }
    // FaxPort
    void setTxtFaxDevice(const QString &t) override { faxDevice = t; }
    void showAdvModemSetup(bool open) override { advModemOpen = open; }
    QString txtConStr() const override { return initString; }
    void setTxtConStr(const QString &t) override { initString = t; }
    int selectedModemClassOption() const override { return classOption; }
    void selectModemClassOption(int option) override { classOption = option; }
    void setModemClassCaption(int option, const QString &caption) override { classCaptions[option] = caption; }
    void setLblCurrentClass(const QString &t) override { currentClass = t; }
    void setModemSetupButtonsEnabled(bool e) override { modemButtonsEnabled = e; }
    bool chkDetailModemLogging() const override { return detailLogging; }
    void setFaxListEnabled(bool e) override { faxListEnabled = e; }
    QString txtTestRcpFName() const override { return testFaxName; }
    QString txtTestFaxNumber() const override { return testFaxNumber; }
    QString txtTestFaxMessage() const override { return testFaxMessage; }
    void showPanelMessage(const QString &t) override { panelMessage = t; }
    // TrayPort
    void setWindowImage(int i) override { image = i; }
    void setCaption(const QString &c) override { caption = c; }
    void SysTrayUpdate() override { ++trayUpdates; }
    // FormPort
    void setPlacement(int, int) override {}
    void setTestFields(const QString &to, const QString &subject, const QString &message, const QString &,
                       const QString &, const QString &) override
    {
        testTo = to;
        testSubject = subject;
        testMessage = message;
    }
    void setServiceControlsVisible(bool) override {}
    void appendAppVersion(const QString &) override {}
    void frameSetup() override {}
    void TabSet(const QString &) override {}
    void showStartPage() override {}
    void showWindow() override { visible = true; }
    void hideWindow() override { visible = false; }
    void restoreWindow() override { visible = true; }
    void trayAdd(const QString &) override {}
    void trayRemove() override {}
    void setCategoryCaption(int, const QString &) override {}

    bool email = true, fax = true, smtp = true, emailListEnabled = true, visible = false;
    osprel::CommSettings settings;
    QStringList counters = QStringList(8, QStringLiteral("0"));
    int levels[8] = {-1, -1, -1, -1, -1, -1, -1, -1};
    QString testTo, testSubject, testMessage, testEmailProg, testFaxProg, caption;
    QStringList messages;
    QString faxDevice, initString, classCaptions[4], currentClass, testFaxName, testFaxNumber, testFaxMessage,
        panelMessage;
    int classOption = 0;
    bool advModemOpen = false, modemButtonsEnabled = false, detailLogging = false, faxListEnabled = true;
    osprel::LevelFrameValues frames[3];
    bool pageChanged[3] = {};
    bool editorOpen = false;
    osprel::ContactFields contact;
    QString contactErr;
    int selectedMainRow = 0;
    int image = 0, trayUpdates = 0;
};
