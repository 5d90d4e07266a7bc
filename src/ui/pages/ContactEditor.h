#pragma once
// picContacts: the editor of one recipient, opened over the page by New and Edit. The fax number is typed in three
// boxes that take digits only and move on by themselves when full.

#include "RecipientsPort.h"

#include <QFrame>

class QLabel;
class QLineEdit;
class QPushButton;

namespace osprel {

class ContactEditor : public QFrame
{
    Q_OBJECT
public:
    explicit ContactEditor(QWidget *parent = nullptr);

    ContactFields fields() const;
    void setFields(const ContactFields &fields);

    QLineEdit *txtContactsLName, *txtContactsFName, *txtContactsEmail;
    QLineEdit *txtContactsFaxAC, *txtContactsFax3D, *txtContactsFax4D, *txtContactsNotes;
    QLabel *lblContactErr;
    QPushButton *cmdContactsOK, *cmdContactsCancel;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void advance(QLineEdit *box, int length, QWidget *next, bool trimmed);
};

} // namespace osprel
