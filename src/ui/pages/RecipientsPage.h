#pragma once
// Frame1(2): everybody, the e-mail recipients, the fax recipients and the escalation list, with the buttons that
// add, edit and delete people and move them onto and off the three lists.

#include "RecipientsPagePort.h"

#include <QFrame>

class QPushButton;

namespace osprel {

class FormLists;
class ListView;

class RecipientsPage : public QFrame, public RecipientsPagePort
{
    Q_OBJECT
public:
    RecipientsPage(FormLists &lists, QWidget *parent = nullptr);

    // RecipientsPagePort
    void selectMainContactRow(int row) override;
    void setEmailListEnabled(bool enabled) override;
    void setFaxListEnabled(bool enabled) override;

    // The page's controls, by the names the system knows them by.
    struct Controls
    {
        ListView *lvwMainContacts, *lvwEmailContacts, *lvwFaxContacts, *lvwEscalationContacts;
        QPushButton *cmdNew, *cmdEdit, *cmdDelete;
        QPushButton *cmdAddEmailAdr, *cmdRemEmailAdr, *cmdAddFaxAdr, *cmdRemFaxAdr;
        QPushButton *cmdAddEscalation, *cmdRemEscalation;
    } ui;
};

} // namespace osprel
