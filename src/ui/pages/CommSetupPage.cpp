#include "CommSetupPage.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

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
    chkEnableEmail = new QCheckBox(tr("Enable e-mail messaging"), email);
    chkEnableEmail->setObjectName(QStringLiteral("chkEnableEmail"));
    emailForm->addRow(chkEnableEmail);
    emailForm->addRow(tr("Mail server:"), txtMailServer = lineEdit(email, "txtMailServer"));
    emailForm->addRow(tr("From address:"), txtFrom = lineEdit(email, "txtFrom"));
    emailForm->addRow(tr("From name:"), txtFromName = lineEdit(email, "txtFromName"));
    emailForm->addRow(tr("Test: send to:"), txtTestEMailTo = lineEdit(email, "txtTestEMailTo"));
    emailForm->addRow(tr("Test subject:"), txtTestEMailSubject = lineEdit(email, "txtTestEMailSubject"));
    emailForm->addRow(tr("Test message:"), txtTestEMailMessage = lineEdit(email, "txtTestEMailMessage"));
    cmdTestEmail = new QPushButton(tr("Send Test Email"), email);
    cmdTestEmail->setObjectName(QStringLiteral("cmdTestEmail"));
    emailForm->addRow(cmdTestEmail, txtTestEmailProg = lineEdit(email, "txtTestEmailProg"));
    txtTestEmailProg->setReadOnly(true);
    optSMTP = new QRadioButton(tr("SMTP"), email);
    optSMTP->setObjectName(QStringLiteral("optSMTP"));
    optMAPI = new QRadioButton(tr("System mail"), email);
    optMAPI->setObjectName(QStringLiteral("optMAPI"));
    // The transport is chosen once, at installation: OSPREL_MAIL_TRANSPORT=sendmail hands mail to the system.
    (qEnvironmentVariable("OSPREL_MAIL_TRANSPORT") == QLatin1String("sendmail") ? optMAPI : optSMTP)->setChecked(true);
    auto *transport = new QHBoxLayout;
    transport->addWidget(optSMTP);
    transport->addWidget(optMAPI);
    emailForm->addRow(transport);
    layout->addWidget(email);

    auto *fax = new QGroupBox(tr("Fax"), this);
    auto *faxForm = new QFormLayout(fax);
    chkEnableFax = new QCheckBox(tr("Enable fax messaging"), fax);
    chkEnableFax->setObjectName(QStringLiteral("chkEnableFax"));
    faxForm->addRow(chkEnableFax);
    faxForm->addRow(tr("Fax station:"), txtFaxStation = lineEdit(fax, "txtFaxStation"));
    faxForm->addRow(tr("Fax device:"), txtFaxDevice = lineEdit(fax, "txtFaxDevice"));
    txtFaxDevice->setReadOnly(true);
    auto *device = new QHBoxLayout;
    cmdFindDevice = new QPushButton(tr("Find Device"), fax);
    cmdFindDevice->setObjectName(QStringLiteral("cmdFindDevice"));
    cmdAdvSetup = new QPushButton(QStringLiteral("Setup..."), fax);
    cmdAdvSetup->setObjectName(QStringLiteral("cmdAdvSetup"));
    device->addWidget(cmdFindDevice);
    device->addWidget(cmdAdvSetup);
    device->addStretch(1);
    faxForm->addRow(device);
    faxForm->addRow(tr("Test: name:"), txtTestRcpFName = lineEdit(fax, "txtTestRcpFName"));
    faxForm->addRow(tr("Test: fax number:"), txtTestFaxNumber = lineEdit(fax, "txtTestFaxNumber"));
    faxForm->addRow(tr("Test message:"), txtTestFaxMessage = lineEdit(fax, "txtTestFaxMessage"));
    cmdTestFax = new QPushButton(tr("Send Test Fax"), fax);
    cmdTestFax->setObjectName(QStringLiteral("cmdTestFax"));
    faxForm->addRow(cmdTestFax, txtTestFaxProg = lineEdit(fax, "txtTestFaxProg"));
    txtTestFaxProg->setReadOnly(true);
    layout->addWidget(fax);
    page->addLayout(setupButtons(this, 0, "cmdAcceptCommSetup", "cmdCancelCommSetup", &cmdAcceptCommSetup,
                                 &cmdCancelCommSetup, &lblChangeWarning));
}

} // namespace osprel
