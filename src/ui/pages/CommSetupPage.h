#pragma once
// Frame1(3): the mail server and sender, the fax station and device, and the test messages.

#include <QFrame>

class QCheckBox;
class QLineEdit;

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
};

} // namespace osprel
