#pragma once
// Frame1(3): the mail server and sender, the fax station and device, and the test messages.

#include <QFrame>

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

namespace osprel {

class CommSetupPage : public QFrame
{
    Q_OBJECT
public:
    explicit CommSetupPage(QWidget *parent = nullptr);

    QLineEdit *txtMailServer, *txtFrom, *txtFromName, *txtFaxStation, *txtFaxDevice;
    QCheckBox *chkEnableEmail, *chkEnableFax;
    QLineEdit *txtTestEMailTo, *txtTestEMailSubject, *txtTestEMailMessage;
    QLineEdit *txtTestRcpFName, *txtTestFaxNumber, *txtTestFaxMessage;
    QLineEdit *txtTestEmailProg, *txtTestFaxProg;
    QPushButton *cmdTestEmail, *cmdTestFax;
    QRadioButton *optSMTP, *optMAPI; // the mail transport: the server's own SMTP client or the system's mail
    QPushButton *cmdAcceptCommSetup, *cmdCancelCommSetup, *cmdFindDevice, *cmdAdvSetup;
    QLabel *lblChangeWarning;
};

} // namespace osprel
