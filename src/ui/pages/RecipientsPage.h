#pragma once
// Frame1(2): everybody, the e-mail recipients and the fax recipients, with the buttons that add, edit and delete
// people and move them onto and off the two address lists.

#include <QFrame>

class QPushButton;

namespace osprel {

class FormLists;
class ListView;

class RecipientsPage : public QFrame
{
    Q_OBJECT
public:
    RecipientsPage(FormLists &lists, QWidget *parent = nullptr);

    ListView *lvwMainContacts, *lvwEmailContacts, *lvwFaxContacts;
    QPushButton *cmdNew, *cmdEdit, *cmdDelete;
    QPushButton *cmdAddEmailAdr, *cmdRemEmailAdr, *cmdAddFaxAdr, *cmdRemFaxAdr;
};

} // namespace osprel
