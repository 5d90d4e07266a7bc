#pragma once
// Frame1(2): everybody, the e-mail recipients and the fax recipients, with the buttons that add, edit and delete
// people and move them onto and off the two address lists.

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
        ListView *lvwMainContacts, *lvwEmailContacts, *lvwFaxContacts;
        QPushButton *cmdNew, *cmdEdit, *cmdDelete;
        QPushButton *cmdAddEmailAdr, *cmdRemEmailAdr, *cmdAddFaxAdr, *cmdRemFaxAdr;
    } ui;
};

} // namespace osprel
