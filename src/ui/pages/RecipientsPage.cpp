#include "RecipientsPage.h"

#include "FormLists.h"
#include "ListView.h"

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace osprel {

namespace {
QPushButton *button(QWidget *parent, const char *name, const QString &caption, const QString &tip = QString())
{
    auto *b = new QPushButton(caption, parent);
    b->setObjectName(QLatin1String(name));
    if (!tip.isEmpty()) {
        b->setToolTip(tip);
        b->setAccessibleName(tip);
    }
    return b;
}

// The add and remove buttons beside one address list.
QVBoxLayout *arrows(QPushButton *add, QPushButton *remove)
{
    auto *column = new QVBoxLayout;
    column->addStretch(1);
    column->addWidget(add);
    column->addWidget(remove);
    column->addStretch(1);
    return column;
}
} // namespace

RecipientsPage::RecipientsPage(FormLists &lists, QWidget *parent) : QFrame(parent)
{
    setObjectName(QStringLiteral("Frame1(2)"));
    auto *layout = new QGridLayout(this);
    layout->addWidget(new QLabel(tr("All contacts"), this), 0, 0);
    layout->addWidget(lvwMainContacts = new ListView(lists.lvwMainContacts, ListView::Refresh::Immediate, this), 1, 0,
                      3, 1);
    cmdAddEmailAdr = button(this, "cmdAddEmailAdr", QStringLiteral(">"), tr("Send e-mail to the selected contact"));
    cmdRemEmailAdr = button(this, "cmdRemEmailAdr", QStringLiteral("<"), tr("Stop e-mail to the selected recipient"));
    cmdAddFaxAdr = button(this, "cmdAddFaxAdr", QStringLiteral(">"), tr("Send faxes to the selected contact"));
    cmdRemFaxAdr = button(this, "cmdRemFaxAdr", QStringLiteral("<"), tr("Stop faxes to the selected recipient"));
    layout->addLayout(arrows(cmdAddEmailAdr, cmdRemEmailAdr), 1, 1);
    layout->addLayout(arrows(cmdAddFaxAdr, cmdRemFaxAdr), 3, 1);
    layout->addWidget(new QLabel(tr("E-mail recipients"), this), 0, 2);
    layout->addWidget(lvwEmailContacts = new ListView(lists.lvwEmailContacts, ListView::Refresh::Immediate, this), 1,
                      2);
    layout->addWidget(new QLabel(tr("Fax recipients"), this), 2, 2);
    layout->addWidget(lvwFaxContacts = new ListView(lists.lvwFaxContacts, ListView::Refresh::Immediate, this), 3, 2);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(cmdNew = button(this, "cmdNew", QStringLiteral("New")));
    buttons->addWidget(cmdEdit = button(this, "cmdEdit", QStringLiteral("Edit")));
    buttons->addWidget(cmdDelete = button(this, "cmdDelete", QStringLiteral("Delete")));
    buttons->addStretch(1);
    layout->addLayout(buttons, 4, 0, 1, 3);
    layout->setColumnStretch(0, 3);
    layout->setColumnStretch(2, 2);
    setTabOrder(lvwMainContacts, cmdAddEmailAdr);
    setTabOrder(cmdAddEmailAdr, cmdRemEmailAdr);
    setTabOrder(cmdRemEmailAdr, lvwEmailContacts);
    setTabOrder(lvwEmailContacts, cmdAddFaxAdr);
    setTabOrder(cmdAddFaxAdr, cmdRemFaxAdr);
    setTabOrder(cmdRemFaxAdr, lvwFaxContacts);
    setTabOrder(lvwFaxContacts, cmdNew);
    setTabOrder(cmdNew, cmdEdit);
    setTabOrder(cmdEdit, cmdDelete);
}

} // namespace osprel
