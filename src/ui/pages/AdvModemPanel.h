#pragma once
// picAdvModemSetup: the fax modem's initialisation string and fax class, opened over the page by "Setup...".

#include <QFrame>

class QButtonGroup;
class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

namespace osprel {

class AdvModemPanel : public QFrame
{
    Q_OBJECT
public:
    explicit AdvModemPanel(QWidget *parent = nullptr);

    QLineEdit *txtConStr;
    QRadioButton *optModemClass[4]; // 0 automatic, 1 Class 1, 2 Class 2, 3 Class 2.0
    QButtonGroup *modemClass;
    QLabel *lblCurrentClass;
    QCheckBox *chkDetailModemLogging;
    QPushButton *cmdDefaultInitStr, *cmdTalkToMe, *cmdAcceptModemSetup, *cmdCancelModemSetup;
};

} // namespace osprel
