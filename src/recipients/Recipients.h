#pragma once
// Recipients management: the people who receive notifications, who of them gets e-mail and who fax, and who is told
// when an alarm goes unacknowledged (the escalation list). Every change goes to the Contacts table at once, and the
// contact lists are kept in step with it.

#include "ContactEditorPort.h"
#include "QueueRoutines.h"

#include <QString>

namespace osprel {

class Database;
class FormLists;
class ListStore;
class Notices;
class PageSwitch;
class RecipientsPagePort;

class Recipients
{
public:
    Recipients(FormLists &lists, const Database &database, RecipientsPagePort &page, ContactEditorPort &editor,
               PageSwitch &pages, Notices &notices);

    // Selection: the 1-based row last clicked in each list, 0 for none.
    qint16 gintSelMainContact = 0;
    qint16 gintSelEmailContact = 0;
    qint16 gintSelFaxContact = 0;
    qint16 gintSelEscalationContact = 0;
    // The editor: 0 adds a person, 1 edits one; the key of the edited row is "index;last;first".
    qint16 gintContactEditMode = 0;
    QString gstrContactEditKey;

    RecipientRec LVWGetSelectedMainContact(int index);
    RecipientRec LVWGetSelectedEmailContact(int index);
    RecipientRec LVWGetSelectedFaxContact(int index);
    void LVWAddEMailContact(const RecipientRec &rec);
    void LVWAddFaxContact(const RecipientRec &rec);
    void LVWAddEscalationContact(const RecipientRec &rec);
    bool LVWDupCheck(const RecipientRec &rec);

    void cmdNew_Click();
    void cmdEdit_Click();
    void cmdDelete_Click();
    void cmdContactsOK_Click();
    void cmdContactsCancel_Click();
    void cmdAddEmailAdr_Click();
    void cmdRemEmailAdr_Click();
    void cmdAddFaxAdr_Click();
    void cmdRemFaxAdr_Click();
    // The escalation list takes anybody with an e-mail address or a fax number.
    void cmdAddEscalation_Click();
    void cmdRemEscalation_Click();
    void lvwMainContacts_ItemClick(int index);
    void lvwEmailContacts_ItemClick(int index) { gintSelEmailContact = qint16(index); }
    void lvwFaxContacts_ItemClick(int index) { gintSelFaxContact = qint16(index); }
    void lvwEscalationContacts_ItemClick(int index) { gintSelEscalationContact = qint16(index); }

private:
    static RecipientRec readRow(const QString &procedure, const ListStore &list, int index, int emailColumn,
                                int faxColumn);
    // The first validation message the editor's contents fail, or an empty text.
    QString validate(const ContactFields &fields) const;
    bool addContact(const RecipientRec &rec);
    bool editContact(const RecipientRec &rec);
    // Takes the person (by the names the lists know) out of one address list, and back in when the address is there.
    bool refileAddress(int listType, const QString &oldLast, const QString &oldFirst, const RecipientRec &rec);
    bool refileEscalation(const QString &oldLast, const QString &oldFirst, const RecipientRec &rec);
    void closeEditor();

    FormLists &m_lists;
    const Database &m_database;
    RecipientsPagePort &m_page;
    ContactEditorPort &m_editor;
    PageSwitch &m_pages;
    Notices &m_notices;
};

} // namespace osprel
