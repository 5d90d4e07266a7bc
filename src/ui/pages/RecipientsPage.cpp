#include "RecipientsPage.h"

#include "FormLists.h"
#include "ListView.h"

#include <QGridLayout>
#include <QLabel>

namespace osprel {

RecipientsPage::RecipientsPage(FormLists &lists, QWidget *parent) : QFrame(parent)
{
    setObjectName(QStringLiteral("Frame1(2)"));
    auto *layout = new QGridLayout(this);
    layout->addWidget(new QLabel(tr("All contacts"), this), 0, 0);
    layout->addWidget(new ListView(lists.lvwMainContacts, ListView::Refresh::Immediate, this), 1, 0, 3, 1);
    layout->addWidget(new QLabel(tr("E-mail recipients"), this), 0, 1);
    layout->addWidget(new ListView(lists.lvwEmailContacts, ListView::Refresh::Immediate, this), 1, 1);
    layout->addWidget(new QLabel(tr("Fax recipients"), this), 2, 1);
    layout->addWidget(new ListView(lists.lvwFaxContacts, ListView::Refresh::Immediate, this), 3, 1);
    layout->setColumnStretch(0, 3);
    layout->setColumnStretch(1, 2);
}

} // namespace osprel
