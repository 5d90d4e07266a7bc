#include "AdvModemPanel.h"

#include "ErrorReport.h"
#include "OverlayHost.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
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
    layout->addLayout(form);
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

} // namespace osprel
