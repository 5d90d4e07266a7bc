#pragma once
// picContacts: the editor of one recipient, opened over the page by New and Edit. The fax number is typed in three
// boxes that take digits only and move on by themselves when full.

#include "ContactEditorPort.h"

#include <QFrame>

class QLabel;
class QLineEdit;
class QPushButton;

namespace osprel {

class ContactEditor : public QFrame, public ContactEditorPort
{
    Q_OBJECT
public:
    explicit ContactEditor(QWidget *parent = nullptr);

    // ContactEditorPort
    void showContactEditor() override;
    void hideContactEditor() override;
    ContactFields contactFields() const override;
    void setContactFields(const ContactFields &fields) override;
    void setLblContactErr(const QString &text) override;

    // The page's controls, by the names the system knows them by.
    struct Controls
    {
        QLineEdit *txtContactsLName, *txtContactsFName, *txtContactsEmail;
        QLineEdit *txtContactsFaxAC, *txtContactsFax3D, *txtContactsFax4D, *txtContactsNotes;
        QLabel *lblContactErr;
        QPushButton *cmdContactsOK, *cmdContactsCancel;
    } ui;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void advance(QLineEdit *box, int length, QWidget *next, bool trimmed);
};

} // namespace osprel
