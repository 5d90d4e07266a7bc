#pragma once
// Frame1(2): everybody, the e-mail recipients and the fax recipients.

#include <QFrame>

namespace osprel {

class FormLists;

class RecipientsPage : public QFrame
{
    Q_OBJECT
public:
    RecipientsPage(FormLists &lists, QWidget *parent = nullptr);
};

} // namespace osprel
