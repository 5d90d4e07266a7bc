#include "AdvModemPanel.h"

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

AdvModemPanel::AdvModemPanel(QWidget *parent) : QFrame(parent)
{
    setObjectName(QStringLiteral("picAdvModemSetup"));
    setFrameShape(QFrame::Panel);
    setFrameShadow(QFrame::Raised);
    setAutoFillBackground(true);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(tr("<b>Fax modem</b>"), this));
    auto *form = new QFormLayout;
    auto *init = new QHBoxLayout;
    init->addWidget(txtConStr = named(new QLineEdit(this), QStringLiteral("txtConStr")), 1);
    init->addWidget(cmdDefaultInitStr =
                        named(new QPushButton(tr("Default"), this), QStringLiteral("cmdDefaultInitStr")));
    form->addRow(tr("Initialisation string:"), init);
    auto *classes = new QVBoxLayout;
    modemClass = new QButtonGroup(this);
    const char *captions[4] = {"Automatic", "Class 1", "Class 2", "Class 2.0"};
    for (int option = 0; option < 4; ++option) {
        optModemClass[option] = named(new QRadioButton(QString::fromLatin1(captions[option]), this),
                                      QStringLiteral("optModemClass(%1)").arg(option));
        modemClass->addButton(optModemClass[option], option);
        classes->addWidget(optModemClass[option]);
    }
    form->addRow(tr("Fax class:"), classes);
    form->addRow(tr("Class in use:"), lblCurrentClass = named(new QLabel(this), QStringLiteral("lblCurrentClass")));
    chkDetailModemLogging =
        named(new QCheckBox(tr("Log the modem dialogue"), this), QStringLiteral("chkDetailModemLogging"));
    form->addRow(chkDetailModemLogging);
    layout->addLayout(form);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(cmdTalkToMe = named(new QPushButton(tr("Speaker On"), this), QStringLiteral("cmdTalkToMe")));
    buttons->addStretch(1);
    buttons->addWidget(cmdAcceptModemSetup = named(new QPushButton(QStringLiteral("Accept"), this),
                                                   QStringLiteral("cmdAcceptModemSetup")));
    buttons->addWidget(cmdCancelModemSetup = named(new QPushButton(QStringLiteral("Cancel"), this),
                                                   QStringLiteral("cmdCancelModemSetup")));
    layout->addLayout(buttons);
    layout->addStretch(1);
}

} // namespace osprel
