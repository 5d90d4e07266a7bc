#include "CommSetupPage.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "MailSecurityPanel.h"
#include "ProofOfLifePanel.h"
#include "SetupButtons.h"

namespace osprel {

namespace {
QLineEdit *lineEdit(QWidget *parent, const char *name)
{
    auto *edit = new QLineEdit(parent);
    edit->setObjectName(QLatin1String(name));
    return edit;
}
} // namespace

CommSetupPage::CommSetupPage(QWidget *parent) : QFrame(parent)
{
    setObjectName(QStringLiteral("Frame1(3)"));
    auto *page = new QVBoxLayout(this);
    auto *layout = new QHBoxLayout;
    page->addLayout(layout, 1);

    auto *email = new QGroupBox(tr("E-mail"), this);
    auto *emailForm = new QFormLayout(email);
    ui.chkEnableEmail = new QCheckBox(tr("Enable e-mail messaging"), email);
    ui.chkEnableEmail->setObjectName(QStringLiteral("chkEnableEmail"));
    emailForm->addRow(ui.chkEnableEmail);
    emailForm->addRow(tr("Mail server:"), ui.txtMailServer = lineEdit(email, "txtMailServer"));
    emailForm->addRow(tr("From address:"), ui.txtFrom = lineEdit(email, "txtFrom"));
    emailForm->addRow(tr("From name:"), ui.txtFromName = lineEdit(email, "txtFromName"));
    emailForm->addRow(tr("Test: send to:"), ui.txtTestEMailTo = lineEdit(email, "txtTestEMailTo"));
    emailForm->addRow(tr("Test subject:"), ui.txtTestEMailSubject = lineEdit(email, "txtTestEMailSubject"));
    emailForm->addRow(tr("Test message:"), ui.txtTestEMailMessage = lineEdit(email, "txtTestEMailMessage"));
    ui.cmdTestEmail = new QPushButton(tr("Send Test Email"), email);
    ui.cmdTestEmail->setObjectName(QStringLiteral("cmdTestEmail"));
    emailForm->addRow(ui.cmdTestEmail, ui.txtTestEmailProg = lineEdit(email, "txtTestEmailProg"));
    ui.txtTestEmailProg->setReadOnly(true);
    ui.optSMTP = new QRadioButton(tr("SMTP"), email);
    ui.optSMTP->setObjectName(QStringLiteral("optSMTP"));
    ui.optMAPI = new QRadioButton(tr("System mail"), email);
    ui.optMAPI->setObjectName(QStringLiteral("optMAPI"));
    // The transport is chosen once, at installation: OSPREL_MAIL_TRANSPORT=sendmail hands mail to the system.
    (qEnvironmentVariable("OSPREL_MAIL_TRANSPORT") == QLatin1String("sendmail") ? ui.optMAPI : ui.optSMTP)
        ->setChecked(true);
    auto *transport = new QHBoxLayout;
    transport->addWidget(ui.optSMTP);
    transport->addWidget(ui.optMAPI);
    emailForm->addRow(transport);
    emailForm->addRow(ui.fraMailSecurity = new MailSecurityPanel(email));
    layout->addWidget(email);

    auto *fax = new QGroupBox(tr("Fax"), this);
    auto *faxForm = new QFormLayout(fax);
    ui.chkEnableFax = new QCheckBox(tr("Enable fax messaging"), fax);
    ui.chkEnableFax->setObjectName(QStringLiteral("chkEnableFax"));
    faxForm->addRow(ui.chkEnableFax);
    faxForm->addRow(tr("Fax station:"), ui.txtFaxStation = lineEdit(fax, "txtFaxStation"));
    faxForm->addRow(tr("Fax device:"), ui.txtFaxDevice = lineEdit(fax, "txtFaxDevice"));
    ui.txtFaxDevice->setReadOnly(true);
    auto *device = new QHBoxLayout;
    ui.cmdFindDevice = new QPushButton(tr("Find Device"), fax);
    ui.cmdFindDevice->setObjectName(QStringLiteral("cmdFindDevice"));
    ui.cmdAdvSetup = new QPushButton(QStringLiteral("Setup..."), fax);
    ui.cmdAdvSetup->setObjectName(QStringLiteral("cmdAdvSetup"));
    device->addWidget(ui.cmdFindDevice);
    device->addWidget(ui.cmdAdvSetup);
    device->addStretch(1);
    faxForm->addRow(device);
    faxForm->addRow(tr("Test: name:"), ui.txtTestRcpFName = lineEdit(fax, "txtTestRcpFName"));
    faxForm->addRow(tr("Test: fax number:"), ui.txtTestFaxNumber = lineEdit(fax, "txtTestFaxNumber"));
    faxForm->addRow(tr("Test message:"), ui.txtTestFaxMessage = lineEdit(fax, "txtTestFaxMessage"));
    ui.cmdTestFax = new QPushButton(tr("Send Test Fax"), fax);
    ui.cmdTestFax->setObjectName(QStringLiteral("cmdTestFax"));
    faxForm->addRow(ui.cmdTestFax, ui.txtTestFaxProg = lineEdit(fax, "txtTestFaxProg"));
    ui.txtTestFaxProg->setReadOnly(true);
    auto *right = new QVBoxLayout;
    right->addWidget(fax);
    right->addWidget(ui.fraProofOfLife = new ProofOfLifePanel(this));
    right->addStretch(1);
    layout->addLayout(right);
    page->addLayout(setupButtons(this, 0, "cmdAcceptCommSetup", "cmdCancelCommSetup", &ui.cmdAcceptCommSetup,
                                 &ui.cmdCancelCommSetup, &ui.lblChangeWarning));
}

bool CommSetupPage::chkEnableEmail() const
{
    return ui.chkEnableEmail->isChecked();
}

bool CommSetupPage::chkEnableFax() const
{
    return ui.chkEnableFax->isChecked();
}

CommSettings CommSetupPage::commSettings() const
{
    return {ui.txtMailServer->text(), ui.txtFrom->text(), ui.txtFromName->text(), ui.txtFaxStation->text()};
}

void CommSetupPage::setCommSettings(const CommSettings &settings)
{
    ui.txtMailServer->setText(settings.txtMailServer);
    ui.txtFrom->setText(settings.txtFrom);
    ui.txtFromName->setText(settings.txtFromName);
    ui.txtFaxStation->setText(settings.txtFaxStation);
}

void CommSetupPage::setChkEnableEmail(bool checked)
{
    ui.chkEnableEmail->setChecked(checked);
}

void CommSetupPage::setChkEnableFax(bool checked)
{
    ui.chkEnableFax->setChecked(checked);
}

void CommSetupPage::setCommSetupChanged(bool changed)
{
    showSetupChanged(ui.cmdAcceptCommSetup, ui.cmdCancelCommSetup, ui.lblChangeWarning, changed);
}

QString CommSetupPage::txtFrom() const
{
    return ui.txtFrom->text();
}

QString CommSetupPage::txtMailServer() const
{
    return ui.txtMailServer->text();
}

bool CommSetupPage::optSMTP() const
{
    return ui.optSMTP->isChecked();
}

QString CommSetupPage::txtTestEMailTo() const
{
    return ui.txtTestEMailTo->text();
}

QString CommSetupPage::txtTestEMailSubject() const
{
    return ui.txtTestEMailSubject->text();
}

QString CommSetupPage::txtTestEMailMessage() const
{
    return ui.txtTestEMailMessage->text();
}

void CommSetupPage::setTxtTestEmailProg(const QString &text)
{
    ui.txtTestEmailProg->setText(text);
}

void CommSetupPage::setTestEmailFields(const QString &to, const QString &subject, const QString &message)
{
    ui.txtTestEMailTo->setText(to);
    ui.txtTestEMailSubject->setText(subject);
    ui.txtTestEMailMessage->setText(message);
}

MailSettings CommSetupPage::mailSettings() const
{
    return ui.fraMailSecurity->settings();
}

void CommSetupPage::setMailSettings(const MailSettings &settings)
{
    ui.fraMailSecurity->setSettings(settings);
}

void CommSetupPage::setTxtFaxDevice(const QString &text)
{
    ui.txtFaxDevice->setText(text);
    ui.txtFaxDevice->repaint(); // the search that follows blocks the window
}

QString CommSetupPage::txtTestRcpFName() const
{
    return ui.txtTestRcpFName->text();
}

QString CommSetupPage::txtTestFaxNumber() const
{
    return ui.txtTestFaxNumber->text();
}

QString CommSetupPage::txtTestFaxMessage() const
{
    return ui.txtTestFaxMessage->text();
}

void CommSetupPage::setTxtTestFaxProg(const QString &text)
{
    ui.txtTestFaxProg->setText(text);
}

void CommSetupPage::setTestFaxFields(const QString &name, const QString &number, const QString &message)
{
    ui.txtTestRcpFName->setText(name);
    ui.txtTestFaxNumber->setText(number);
    ui.txtTestFaxMessage->setText(message);
}

void CommSetupPage::setServiceControlsVisible(bool visible)
{
    ui.optSMTP->setVisible(visible);
    ui.optMAPI->setVisible(visible);
}

} // namespace osprel
