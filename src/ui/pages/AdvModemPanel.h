#pragma once
// picAdvModemSetup: the fax modem's initialisation string and fax class, opened over the page by "Setup...".

#include "ModemPanelPort.h"

#include <QFrame>

class QButtonGroup;
class QCheckBox;
class QComboBox;
class QSpinBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

namespace osprel {

class OverlayHost;

class AdvModemPanel : public QFrame, public ModemPanelPort
{
    Q_OBJECT
public:
    AdvModemPanel(OverlayHost &host, QWidget *parent = nullptr);

    // ModemPanelPort
    void showAdvModemSetup(bool open) override;
    QString txtConStr() const override;
    void setTxtConStr(const QString &text) override;
    int selectedModemClassOption() const override;
    void selectModemClassOption(int option) override;
    void setModemClassCaption(int option, const QString &caption) override;
    void setLblCurrentClass(const QString &text) override;
    void setModemSetupButtonsEnabled(bool enabled) override;
    bool chkDetailModemLogging() const override;
    ModemProfile modemProfile() const override;
    void setModemProfile(const ModemProfile &profile) override;
    SearchPolicy searchPolicy() const override;
    void setSearchPolicy(const SearchPolicy &policy) override;

    // The page's controls, by the names the system knows them by.
    struct Controls
    {
        QLineEdit *txtConStr;
        QRadioButton *optModemClass[4]; // 0 automatic, 1 Class 1, 2 Class 2, 3 Class 2.0
        QButtonGroup *modemClass;
        QLabel *lblCurrentClass;
        QCheckBox *chkDetailModemLogging;
        QPushButton *cmdDefaultInitStr, *cmdTalkToMe, *cmdAcceptModemSetup, *cmdCancelModemSetup;
        // The modem profile.
        QComboBox *cboFlowControl, *cboBitOrder;
        QLineEdit *txtFlowCmd;
        QCheckBox *chkReportParams, *chkModemAppendsRtc;
        QSpinBox *spnFrsDelay, *spnFtsDelay, *spnTcfDelay;
        // The device search.
        QLineEdit *txtSearchPorts, *txtNotModemPorts;
        QCheckBox *chkSearchAllPorts;
    } ui;

Q_SIGNALS:
    // A profile or search setting was edited by the user.
    void settingsEdited();

private:
    OverlayHost &m_host;
};

} // namespace osprel
