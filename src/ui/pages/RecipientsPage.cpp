#include "RecipientsPage.h"

#include "FormLists.h"
#include "ListView.h"

#include <QApplication>
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
// A list switched off is greyed out, with the scroll-bar colour as its background.
void showListEnabled(QWidget *list, bool enabled)
{
    list->setEnabled(enabled);
    QPalette palette = list->palette();
    palette.setColor(QPalette::Base, enabled ? QApplication::palette().color(QPalette::Base)
                                             : QApplication::palette().color(QPalette::Button));
    list->setPalette(palette);
}
} // namespace

RecipientsPage::RecipientsPage(FormLists &lists, QWidget *parent) : QFrame(parent)
{
    setObjectName(QStringLiteral("Frame1(2)"));
    auto *layout = new QGridLayout(this);
    layout->addWidget(new QLabel(tr("All contacts"), this), 0, 0);
    layout->addWidget(ui.lvwMainContacts = new ListView(lists.lvwMainContacts, ListView::Refresh::Immediate, this), 1,
                      0, 5, 1);
    ui.cmdAddEmailAdr = button(this, "cmdAddEmailAdr", QStringLiteral(">"), tr("Send e-mail to the selected contact"));
    ui.cmdRemEmailAdr =
        button(this, "cmdRemEmailAdr", QStringLiteral("<"), tr("Stop e-mail to the selected recipient"));
    ui.cmdAddFaxAdr = button(this, "cmdAddFaxAdr", QStringLiteral(">"), tr("Send faxes to the selected contact"));
    ui.cmdRemFaxAdr = button(this, "cmdRemFaxAdr", QStringLiteral("<"), tr("Stop faxes to the selected recipient"));
    layout->addLayout(arrows(ui.cmdAddEmailAdr, ui.cmdRemEmailAdr), 1, 1);
    layout->addLayout(arrows(ui.cmdAddFaxAdr, ui.cmdRemFaxAdr), 3, 1);
    ui.cmdAddEscalation = button(this, "cmdAddEscalation", QStringLiteral(">"),
                                 tr("Tell the selected contact of alarms nobody acknowledges"));
    ui.cmdRemEscalation =
        button(this, "cmdRemEscalation", QStringLiteral("<"), tr("Take the selected person off the escalation list"));
    layout->addLayout(arrows(ui.cmdAddEscalation, ui.cmdRemEscalation), 5, 1);
    layout->addWidget(new QLabel(tr("E-mail recipients"), this), 0, 2);
    layout->addWidget(ui.lvwEmailContacts = new ListView(lists.lvwEmailContacts, ListView::Refresh::Immediate, this), 1,
                      2);
    layout->addWidget(new QLabel(tr("Fax recipients"), this), 2, 2);
    layout->addWidget(ui.lvwFaxContacts = new ListView(lists.lvwFaxContacts, ListView::Refresh::Immediate, this), 3, 2);
    layout->addWidget(new QLabel(tr("Escalation"), this), 4, 2);
    layout->addWidget(
        ui.lvwEscalationContacts = new ListView(lists.lvwEscalationContacts, ListView::Refresh::Immediate, this), 5, 2);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(ui.cmdNew = button(this, "cmdNew", QStringLiteral("New")));
    buttons->addWidget(ui.cmdEdit = button(this, "cmdEdit", QStringLiteral("Edit")));
    buttons->addWidget(ui.cmdDelete = button(this, "cmdDelete", QStringLiteral("Delete")));
    buttons->addStretch(1);
    layout->addLayout(buttons, 6, 0, 1, 3);
    layout->setColumnStretch(0, 3);
    layout->setColumnStretch(2, 2);
    setTabOrder(ui.lvwMainContacts, ui.cmdAddEmailAdr);
    setTabOrder(ui.cmdAddEmailAdr, ui.cmdRemEmailAdr);
    setTabOrder(ui.cmdRemEmailAdr, ui.lvwEmailContacts);
    setTabOrder(ui.lvwEmailContacts, ui.cmdAddFaxAdr);
    setTabOrder(ui.cmdAddFaxAdr, ui.cmdRemFaxAdr);
    setTabOrder(ui.cmdRemFaxAdr, ui.lvwFaxContacts);
    setTabOrder(ui.lvwFaxContacts, ui.cmdAddEscalation);
    setTabOrder(ui.cmdAddEscalation, ui.cmdRemEscalation);
    setTabOrder(ui.cmdRemEscalation, ui.lvwEscalationContacts);
    setTabOrder(ui.lvwEscalationContacts, ui.cmdNew);
    setTabOrder(ui.cmdNew, ui.cmdEdit);
    setTabOrder(ui.cmdEdit, ui.cmdDelete);
}

void RecipientsPage::selectMainContactRow(int row)
{
    QAbstractItemView *list = ui.lvwMainContacts;
    if (row <= 0)
        list->clearSelection();
    else
        list->setCurrentIndex(list->model()->index(row - 1, 0));
}

void RecipientsPage::setEmailListEnabled(bool enabled)
{
    showListEnabled(ui.lvwEmailContacts, enabled);
}

void RecipientsPage::setFaxListEnabled(bool enabled)
{
    showListEnabled(ui.lvwFaxContacts, enabled);
}

} // namespace osprel
