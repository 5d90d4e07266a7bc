#pragma once
// Frame1(3): the mail server and sender, the fax station and device, and the test messages.

#include "CommSetupPort.h"
#include "EmailQueuePort.h"
#include "FaxPagePort.h"
#include "StatusPort.h"

#include <QFrame>

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

namespace osprel {

class MailSecurityPanel;
class ProofOfLifePanel;

class CommSetupPage : public QFrame, public CommSetupPort, public EmailQueuePort, public FaxPagePort, public StatusPort
{
    Q_OBJECT
public:
    explicit CommSetupPage(QWidget *parent = nullptr);

    // SendSwitches
    bool chkEnableEmail() const override;
    bool chkEnableFax() const override;
    // CommSetupPort
    CommSettings commSettings() const override;
    void setCommSettings(const CommSettings &settings) override;
    void setChkEnableEmail(bool checked) override;
    void setChkEnableFax(bool checked) override;
    void setCommSetupChanged(bool changed) override;
    // EmailQueuePort
    QString txtFrom() const override;
    QString txtMailServer() const override;
    bool optSMTP() const override;
    QString txtTestEMailTo() const override;
    QString txtTestEMailSubject() const override;
    QString txtTestEMailMessage() const override;
    void setTxtTestEmailProg(const QString &text) override;
    void setTestEmailFields(const QString &to, const QString &subject, const QString &message) override;
    MailSettings mailSettings() const override;
    void setMailSettings(const MailSettings &settings) override;
    // FaxPagePort
    void setTxtFaxDevice(const QString &text) override;
    QString txtTestRcpFName() const override;
    QString txtTestFaxNumber() const override;
    QString txtTestFaxMessage() const override;
    void setTxtTestFaxProg(const QString &text) override;
    void setTestFaxFields(const QString &name, const QString &number, const QString &message) override;
    // The mail transport choice is a service control, hidden in normal use.
    void setServiceControlsVisible(bool visible);

    // The page's controls, by the names the system knows them by.
    struct Controls
    {
        QLineEdit *txtMailServer, *txtFrom, *txtFromName, *txtFaxStation, *txtFaxDevice;
        QCheckBox *chkEnableEmail, *chkEnableFax;
        QLineEdit *txtTestEMailTo, *txtTestEMailSubject, *txtTestEMailMessage;
        QLineEdit *txtTestRcpFName, *txtTestFaxNumber, *txtTestFaxMessage;
        QLineEdit *txtTestEmailProg, *txtTestFaxProg;
        QPushButton *cmdTestEmail, *cmdTestFax;
        QRadioButton *optSMTP, *optMAPI; // the mail transport: the server's own SMTP client or the system's mail
        QPushButton *cmdAcceptCommSetup, *cmdCancelCommSetup, *cmdFindDevice, *cmdAdvSetup;
        QLabel *lblChangeWarning;
        MailSecurityPanel *fraMailSecurity;
        ProofOfLifePanel *fraProofOfLife;
    } ui;
};

} // namespace osprel
