#include "AdvModemPanel.h"

#include "ErrorReport.h"
#include "ModemSettings.h"
#include "OverlayHost.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QVBoxLayout>

namespace osprel {

namespace {
template <typename T> T *named(T *widget, const QString &name)
{
    widget->setObjectName(name);
    return widget;
}
} // namespace

AdvModemPanel::AdvModemPanel(OverlayHost &host, QWidget *parent) : QFrame(parent), m_host(host)
{
    setObjectName(QStringLiteral("picAdvModemSetup"));
    setFrameShape(QFrame::Panel);
    setFrameShadow(QFrame::Raised);
    setAutoFillBackground(true);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(tr("<b>Fax modem</b>"), this));
    auto *form = new QFormLayout;
    auto *init = new QHBoxLayout;
    init->addWidget(ui.txtConStr = named(new QLineEdit(this), QStringLiteral("txtConStr")), 1);
    init->addWidget(ui.cmdDefaultInitStr =
                        named(new QPushButton(tr("Default"), this), QStringLiteral("cmdDefaultInitStr")));
    form->addRow(tr("Initialisation string:"), init);
    auto *classes = new QVBoxLayout;
    ui.modemClass = new QButtonGroup(this);
    const char *captions[4] = {"Automatic", "Class 1", "Class 2", "Class 2.0"};
    for (int option = 0; option < 4; ++option) {
        ui.optModemClass[option] = named(new QRadioButton(QString::fromLatin1(captions[option]), this),
                                         QStringLiteral("optModemClass(%1)").arg(option));
        ui.modemClass->addButton(ui.optModemClass[option], option);
        classes->addWidget(ui.optModemClass[option]);
    }
    form->addRow(tr("Fax class:"), classes);
    form->addRow(tr("Class in use:"), ui.lblCurrentClass = named(new QLabel(this), QStringLiteral("lblCurrentClass")));
    ui.chkDetailModemLogging =
        named(new QCheckBox(tr("Log the modem dialogue"), this), QStringLiteral("chkDetailModemLogging"));
    form->addRow(ui.chkDetailModemLogging);

    ui.cboFlowControl = named(new QComboBox(this), QStringLiteral("cboFlowControl"));
    ui.cboFlowControl->addItems({tr("None"), tr("XON/XOFF"), tr("RTS/CTS (hardware)")});
    ui.txtFlowCmd = named(new QLineEdit(this), QStringLiteral("txtFlowCmd"));
    ui.txtFlowCmd->setPlaceholderText(tr("the class's own (AT+IFC / AT+FLO)"));
    auto *flow = new QHBoxLayout;
    flow->addWidget(ui.cboFlowControl);
    flow->addWidget(ui.txtFlowCmd, 1);
    form->addRow(tr("Flow control:"), flow);
    ui.cboBitOrder = named(new QComboBox(this), QStringLiteral("cboBitOrder"));
    ui.cboBitOrder->addItems({tr("Direct"), tr("Reversed")});
    form->addRow(tr("Class 2 bit order:"), ui.cboBitOrder);
    ui.chkReportParams = named(new QCheckBox(tr("Class 2.0: ask the modem to report the session (AT+FNR)"), this),
                               QStringLiteral("chkReportParams"));
    form->addRow(ui.chkReportParams);
    ui.chkModemAppendsRtc = named(new QCheckBox(tr("Class 2 / 2.0: the modem ends each page itself (RTC)"), this),
                                  QStringLiteral("chkModemAppendsRtc"));
    form->addRow(ui.chkModemAppendsRtc);
    auto delay = [this](const char *name) {
        auto *box = named(new QSpinBox(this), QString::fromLatin1(name));
        box->setRange(0, 255);
        box->setSuffix(tr(" x 10 ms"));
        return box;
    };
    auto *delays = new QHBoxLayout;
    delays->addWidget(new QLabel(tr("+FRS"), this));
    delays->addWidget(ui.spnFrsDelay = delay("spnFrsDelay"));
    delays->addWidget(new QLabel(tr("+FTS"), this));
    delays->addWidget(ui.spnFtsDelay = delay("spnFtsDelay"));
    delays->addWidget(new QLabel(tr("before TCF"), this));
    delays->addWidget(ui.spnTcfDelay = delay("spnTcfDelay"));
    form->addRow(tr("Class 1 pauses:"), delays);

    ui.txtSearchPorts = named(new QLineEdit(this), QStringLiteral("txtSearchPorts"));
    ui.txtSearchPorts->setPlaceholderText(tr("/dev/ttyUSB0 /dev/ttyS1"));
    form->addRow(tr("Modem ports:"), ui.txtSearchPorts);
    ui.txtNotModemPorts = named(new QLineEdit(this), QStringLiteral("txtNotModemPorts"));
    ui.txtNotModemPorts->setPlaceholderText(tr("chamber controllers and other devices"));
    form->addRow(tr("Not a modem:"), ui.txtNotModemPorts);
    ui.chkSearchAllPorts =
        named(new QCheckBox(tr("Search all serial ports"), this), QStringLiteral("chkSearchAllPorts"));
    const QString allPorts =
        tr("Find Device also writes AT+FCLASS=? to every /dev/ttyS*, ttyUSB* and ttyACM* port that is not listed "
           "as not a modem. A chamber controller on one of those ports receives that text.");
    ui.chkSearchAllPorts->setToolTip(allPorts);
    auto *allPortsNote = new QLabel(allPorts, this);
    allPortsNote->setWordWrap(true);
    form->addRow(ui.chkSearchAllPorts);
    form->addRow(allPortsNote);
    layout->addLayout(form);

    for (QComboBox *box : {ui.cboFlowControl, ui.cboBitOrder})
        connect(box, &QComboBox::activated, this, &AdvModemPanel::settingsEdited);
    for (QLineEdit *box : {ui.txtFlowCmd, ui.txtSearchPorts, ui.txtNotModemPorts})
        connect(box, &QLineEdit::textEdited, this, &AdvModemPanel::settingsEdited);
    for (QCheckBox *box : {ui.chkReportParams, ui.chkModemAppendsRtc, ui.chkSearchAllPorts})
        connect(box, &QCheckBox::clicked, this, &AdvModemPanel::settingsEdited);
    for (QSpinBox *box : {ui.spnFrsDelay, ui.spnFtsDelay, ui.spnTcfDelay})
        connect(box, &QSpinBox::valueChanged, this, [this] {
            if (isVisible())
                Q_EMIT settingsEdited();
        });
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(ui.cmdTalkToMe = named(new QPushButton(tr("Speaker On"), this), QStringLiteral("cmdTalkToMe")));
    buttons->addStretch(1);
    buttons->addWidget(ui.cmdAcceptModemSetup = named(new QPushButton(QStringLiteral("Accept"), this),
                                                      QStringLiteral("cmdAcceptModemSetup")));
    buttons->addWidget(ui.cmdCancelModemSetup = named(new QPushButton(QStringLiteral("Cancel"), this),
                                                      QStringLiteral("cmdCancelModemSetup")));
    layout->addLayout(buttons);
    layout->addStretch(1);
}

void AdvModemPanel::showAdvModemSetup(bool open)
{
    if (open)
        m_host.openOverlay(this, QStringLiteral("Setup..."));
    else if (isVisible())
        m_host.closeOverlay(this);
}

QString AdvModemPanel::txtConStr() const
{
    return ui.txtConStr->text();
}

void AdvModemPanel::setTxtConStr(const QString &text)
{
    ui.txtConStr->setText(text);
}

int AdvModemPanel::selectedModemClassOption() const
{
    return qMax(0, ui.modemClass->checkedId());
}

void AdvModemPanel::selectModemClassOption(int option)
{
    if (option < 0 || option > 3)
        osprel::raise(Err::IndexOutOfBounds);
    ui.optModemClass[option]->setChecked(true);
}

void AdvModemPanel::setModemClassCaption(int option, const QString &caption)
{
    if (option < 0 || option > 3)
        osprel::raise(Err::IndexOutOfBounds);
    ui.optModemClass[option]->setText(caption);
}

void AdvModemPanel::setLblCurrentClass(const QString &text)
{
    ui.lblCurrentClass->setText(text);
}

void AdvModemPanel::setModemSetupButtonsEnabled(bool enabled)
{
    // Cancel is always the way out of the panel; with nothing changed it only closes it.
    ui.cmdAcceptModemSetup->setEnabled(enabled);
    ui.cmdCancelModemSetup->setEnabled(true);
}

bool AdvModemPanel::chkDetailModemLogging() const
{
    return ui.chkDetailModemLogging->isChecked();
}

ModemProfile AdvModemPanel::modemProfile() const
{
    ModemProfile p;
    p.flowControl = qMax(0, ui.cboFlowControl->currentIndex());
    p.flowCommand = ui.txtFlowCmd->text().trimmed();
    p.bitOrder = qMax(0, ui.cboBitOrder->currentIndex());
    p.reportParameters = ui.chkReportParams->isChecked();
    p.modemAppendsRtc = ui.chkModemAppendsRtc->isChecked();
    p.frsDelay = ui.spnFrsDelay->value();
    p.ftsDelay = ui.spnFtsDelay->value();
    p.tcfDelay = ui.spnTcfDelay->value();
    return p;
}

void AdvModemPanel::setModemProfile(const ModemProfile &p)
{
    ui.cboFlowControl->setCurrentIndex(qBound(0, p.flowControl, 2));
    ui.txtFlowCmd->setText(p.flowCommand);
    ui.cboBitOrder->setCurrentIndex(qBound(0, p.bitOrder, 1));
    ui.chkReportParams->setChecked(p.reportParameters);
    ui.chkModemAppendsRtc->setChecked(p.modemAppendsRtc);
    ui.spnFrsDelay->setValue(p.frsDelay);
    ui.spnFtsDelay->setValue(p.ftsDelay);
    ui.spnTcfDelay->setValue(p.tcfDelay);
}

SearchPolicy AdvModemPanel::searchPolicy() const
{
    SearchPolicy p;
    p.ports = ModemSettings::splitPorts(ui.txtSearchPorts->text());
    p.notModems = ModemSettings::splitPorts(ui.txtNotModemPorts->text());
    p.allSerialPorts = ui.chkSearchAllPorts->isChecked();
    return p;
}

void AdvModemPanel::setSearchPolicy(const SearchPolicy &p)
{
    ui.txtSearchPorts->setText(ModemSettings::joinPorts(p.ports));
    ui.txtNotModemPorts->setText(ModemSettings::joinPorts(p.notModems));
    ui.chkSearchAllPorts->setChecked(p.allSerialPorts);
}

} // namespace osprel
