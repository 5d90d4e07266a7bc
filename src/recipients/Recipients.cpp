#include "Recipients.h"

#include "MailAddress.h"

#include "Database.h"
#include "ErrorReport.h"
#include "FormLists.h"
#include "Notices.h"
#include "PageSwitch.h"
#include "RecipientDb.h"
#include "RecipientString.h"
#include "RecipientsPagePort.h"
#include "Values.h"

namespace osprel {

namespace {
enum ListType : qint16 { AllContacts = 0, EmailList = 1, FaxList = 2, EscalationList = 3 };
const QString kAlreadyExists = QStringLiteral("Contact already exists.");

int findRow(const ListStore &list, const QString &last, const QString &first)
{
    for (int row = 1; row <= list.count(); ++row) {
        if (list.text(row, 1) == last && list.text(row, 2) == first)
            return row;
    }
    return 0;
}
} // namespace

Recipients::Recipients(FormLists &lists, const Database &database, RecipientsPagePort &page, ContactEditorPort &editor,
                       PageSwitch &pages, Notices &notices)
    : m_lists(lists), m_database(database), m_page(page), m_editor(editor), m_pages(pages), m_notices(notices)
{
}

// One contact list's row: last and first name, then the columns given (0 for none) for address and fax number.
RecipientRec Recipients::readRow(const QString &procedure, const ListStore &list, int index, int emailColumn,
                                 int faxColumn)
{
    RecipientRec rec;
    guarded(procedure, [&] {
        rec.LastName = list.text(index, 1);
        rec.FirstName = list.text(index, 2);
        if (emailColumn)
            rec.EmailName = list.text(index, emailColumn);
        if (faxColumn)
            rec.FaxNumber = list.text(index, faxColumn);
    });
    return rec;
}

RecipientRec Recipients::LVWGetSelectedMainContact(int index)
{
    return readRow(QStringLiteral("LVWGetSelectedMainContact"), m_lists.lvwMainContacts, index, 3, 4);
}

RecipientRec Recipients::LVWGetSelectedEmailContact(int index)
{
    return readRow(QStringLiteral("LVWGetSelectedEmailContact"), m_lists.lvwEmailContacts, index, 3, 0);
}

RecipientRec Recipients::LVWGetSelectedFaxContact(int index)
{
    return readRow(QStringLiteral("LVWGetSelectedFaxContact"), m_lists.lvwFaxContacts, index, 0, 3);
}

void Recipients::LVWAddEMailContact(const RecipientRec &rec)
{
    guarded(QStringLiteral("LVWAddEMailContact"), [&] {
        m_lists.lvwEmailContacts.add(QStringList{rec.LastName, rec.FirstName, rec.EmailName});
    });
}

void Recipients::LVWAddFaxContact(const RecipientRec &rec)
{
    guarded(QStringLiteral("LVWAddFaxContact"), [&] {
        m_lists.lvwFaxContacts.add(QStringList{rec.LastName, rec.FirstName, rec.FaxNumber});
    });
}

void Recipients::LVWAddEscalationContact(const RecipientRec &rec)
{
    guarded(QStringLiteral("LVWAddEscalationContact"), [&] {
        m_lists.lvwEscalationContacts.add(QStringList{rec.LastName, rec.FirstName, rec.EmailName, rec.FaxNumber});
    });
}

bool Recipients::LVWDupCheck(const RecipientRec &rec)
{
    bool found = false;
    guarded(QStringLiteral("LVWDupCheck"), [&] {
        const ListStore &list = rec.ListType == EmailList        ? m_lists.lvwEmailContacts
                                : rec.ListType == FaxList        ? m_lists.lvwFaxContacts
                                : rec.ListType == EscalationList ? m_lists.lvwEscalationContacts
                                                                 : m_lists.lvwMainContacts;
        found = findRow(list, rec.LastName, rec.FirstName) != 0; // names compare exactly: case counts
    });
    return found;
}

void Recipients::lvwMainContacts_ItemClick(int index)
{
    gintSelMainContact = qint16(index);
}

void Recipients::cmdNew_Click()
{
    guarded(QStringLiteral("cmdNew_Click"), [&] {
        m_editor.showContactEditor();
        m_editor.setContactFields(ContactFields());
        gintContactEditMode = 0;
        m_pages.TabSet(QStringLiteral("New"));
    });
}

void Recipients::cmdEdit_Click()
{
    guarded(QStringLiteral("cmdEdit_Click"), [&] {
        if (gintSelMainContact == 0) {
            m_notices.showMessage(QStringLiteral("No Contact Selected"),
                                  QStringLiteral("You must select a contact before editing."));
            return;
        }
        const RecipientRec rec = LVWGetSelectedMainContact(gintSelMainContact);
        ContactFields fields;
        fields.LName = rec.LastName;
        fields.FName = rec.FirstName;
        fields.Email = rec.EmailName;
        fields.FaxAC = rec.FaxNumber.left(3);
        fields.Fax3D = rec.FaxNumber.mid(3, 3);
        fields.Fax4D = rec.FaxNumber.mid(6, 4);
        fields.Notes = contactNotes(m_database, rec.LastName, rec.FirstName);
        m_editor.showContactEditor();
        m_editor.setContactFields(fields);
        gintContactEditMode = 1;
        gstrContactEditKey = QString::number(gintSelMainContact) + u';' + rec.LastName + u';' + rec.FirstName;
        m_pages.TabSet(QStringLiteral("Edit"));
    });
}

QString Recipients::validate(const ContactFields &f) const
{
    // A domain without a dot (user@localhost, a lab's own mail host) is an address like any other.
    const QString email = normalizeAddress(f.Email);
    if (!email.isEmpty()) {
        if (!email.contains(u'@'))
            return QStringLiteral("The email address must contain an '@' symbol.");
        const QString problem = addressProblem(email);
        if (!problem.isEmpty())
            return QStringLiteral("The email address cannot be used: ") + problem + u'.';
    }
    const QString ac = Trim(f.FaxAC), middle = Trim(f.Fax3D), last = Trim(f.Fax4D);
    if (!ac.isEmpty() || !middle.isEmpty() || !last.isEmpty()) {
        if (ac.size() != 3 || middle.size() != 3 || last.size() != 4)
            return QStringLiteral("The fax number must have the numeric format ### ### ####.");
    }
    if (Trim(f.LName).isEmpty() || Trim(f.FName).isEmpty())
        return QStringLiteral("Both first and last name fields must be completed.");
    return QString();
}

void Recipients::cmdContactsOK_Click()
{
    guarded(QStringLiteral("cmdContactsOK_Click"), [&] {
        const ContactFields f = m_editor.contactFields();
        RecipientRec rec;
        rec.LastName = Trim(f.LName);
        rec.FirstName = Trim(f.FName);
        rec.EmailName = normalizeAddress(f.Email); // "<a@b>" is stored as a@b
        rec.FaxNumber = Trim(f.FaxAC) + Trim(f.Fax3D) + Trim(f.Fax4D);
        rec.Notes = Trim(f.Notes);
        const QString problem = validate(f);
        if (!problem.isEmpty()) {
            m_editor.setLblContactErr(problem);
            return;
        }
        if (!(gintContactEditMode == 0 ? addContact(rec) : editContact(rec)))
            return; // the editor stays open with its message
        gintSelMainContact = m_lists.lvwMainContacts.isEmpty() ? 0 : 1;
        m_page.selectMainContactRow(gintSelMainContact);
        m_editor.setLblContactErr(QString());
        closeEditor();
    });
}

bool Recipients::addContact(const RecipientRec &rec)
{
    if (LVWDupCheck(rec)) { // ListType 0: the all-contacts list
        m_editor.setLblContactErr(kAlreadyExists);
        gintSelMainContact = 0;
        return false;
    }
    if (!DBAddEditMainContact(m_database, QString(), QString(), rec))
        return false;
    m_lists.lvwMainContacts.add(QStringList{rec.LastName, rec.FirstName, rec.EmailName, rec.FaxNumber});
    return true;
}

bool Recipients::editContact(const RecipientRec &rec)
{
    const QStringList key = Split(gstrContactEditKey, QStringLiteral(";"));
    const int row = CInt(Val(element(key, 0)));
    const QString oldLast = element(key, 1), oldFirst = element(key, 2);
    if (!findContact(m_database, oldLast, oldFirst)) {
        m_editor.setLblContactErr(QStringLiteral("Contact no longer exists in database.  Press Cancel to exit."));
        return false;
    }
    const bool renamed = rec.LastName != oldLast || rec.FirstName != oldFirst;
    if (renamed && LVWDupCheck(rec)) {
        m_editor.setLblContactErr(kAlreadyExists);
        return false;
    }
    gintSelEmailContact = qint16(findRow(m_lists.lvwEmailContacts, oldLast, oldFirst));
    gintSelFaxContact = qint16(findRow(m_lists.lvwFaxContacts, oldLast, oldFirst));
    if (!DBAddEditMainContact(m_database, oldLast, oldFirst, rec))
        return false;
    ListStore &all = m_lists.lvwMainContacts;
    const QStringList columns{rec.LastName, rec.FirstName, rec.EmailName, rec.FaxNumber};
    for (int column = 1; column <= 4; ++column)
        all.setText(row, column, columns.at(column - 1));
    const bool filed = refileAddress(EmailList, oldLast, oldFirst, rec) &&
                       refileAddress(FaxList, oldLast, oldFirst, rec) && refileEscalation(oldLast, oldFirst, rec);
    gintSelEmailContact = 0; // the rows found by the old names were filed again
    gintSelFaxContact = 0;
    CopyEmailToRecipientStr(m_lists);
    return filed;
}

// An edit keeps the person's place on the e-mail and fax lists: somebody on a list is filed again there under the
// new names and address (and leaves it when the address was emptied); somebody who was not on it stays off.
bool Recipients::refileAddress(int listType, const QString &oldLast, const QString &oldFirst, const RecipientRec &rec)
{
    ListStore &list = listType == EmailList ? m_lists.lvwEmailContacts : m_lists.lvwFaxContacts;
    const QString &address = listType == EmailList ? rec.EmailName : rec.FaxNumber;
    const int old = findRow(list, oldLast, oldFirst);
    if (!old)
        return true;
    list.remove(old);
    if (address.isEmpty()) {
        DBEditRecipient(m_database, listType == EmailList ? DisableEmail : DisableFax, rec);
        return true;
    }
    RecipientRec filed = rec;
    filed.ListType = qint16(listType);
    if (LVWDupCheck(filed)) {
        m_editor.setLblContactErr(kAlreadyExists);
        return false;
    }
    if (listType == EmailList)
        LVWAddEMailContact(filed);
    else
        LVWAddFaxContact(filed);
    return DBEditRecipient(m_database, listType == EmailList ? EnableEmail : EnableFax, filed);
}

// Somebody on the escalation list stays there under the new names and addresses, unless both addresses were emptied.
bool Recipients::refileEscalation(const QString &oldLast, const QString &oldFirst, const RecipientRec &rec)
{
    ListStore &list = m_lists.lvwEscalationContacts;
    const int old = findRow(list, oldLast, oldFirst);
    if (!old)
        return true;
    list.remove(old);
    if (rec.EmailName.isEmpty() && rec.FaxNumber.isEmpty())
        return DBEditRecipient(m_database, DisableEscalation, rec);
    RecipientRec filed = rec;
    filed.ListType = EscalationList;
    if (LVWDupCheck(filed)) {
        m_editor.setLblContactErr(kAlreadyExists);
        return false;
    }
    LVWAddEscalationContact(filed);
    return true; // the flag travelled with the row
}

void Recipients::cmdContactsCancel_Click()
{
    guarded(QStringLiteral("cmdContactsCancel_Click"), [&] { closeEditor(); });
}

void Recipients::closeEditor()
{
    m_editor.hideContactEditor();
    m_pages.TabSet(m_pages.currentTabCaption());
}

void Recipients::cmdDelete_Click()
{
    guarded(QStringLiteral("cmdDelete_Click"), [&] {
        if (gintSelMainContact == 0)
            return;
        const RecipientRec rec = LVWGetSelectedMainContact(gintSelMainContact);
        // Off the address lists first, so that the table's flags and the recipient string follow.
        if (const int row = findRow(m_lists.lvwEmailContacts, rec.LastName, rec.FirstName)) {
            gintSelEmailContact = qint16(row);
            cmdRemEmailAdr_Click();
        }
        if (const int row = findRow(m_lists.lvwFaxContacts, rec.LastName, rec.FirstName)) {
            gintSelFaxContact = qint16(row);
            cmdRemFaxAdr_Click();
        }
        if (const int row = findRow(m_lists.lvwEscalationContacts, rec.LastName, rec.FirstName)) {
            gintSelEscalationContact = qint16(row);
            cmdRemEscalation_Click();
        }
        if (!DBDeleteMainContact(m_database, rec))
            return;
        m_lists.lvwMainContacts.remove(gintSelMainContact);
        gintSelMainContact = 0;
        if (!m_lists.lvwMainContacts.isEmpty())
            gintSelMainContact = 1;
        m_page.selectMainContactRow(gintSelMainContact);
    });
}

void Recipients::cmdAddEmailAdr_Click()
{
    guarded(QStringLiteral("cmdAddEmailAdr_Click"), [&] {
        if (gintSelMainContact == 0)
            return;
        RecipientRec rec = LVWGetSelectedMainContact(gintSelMainContact);
        rec.ListType = EmailList;
        // A person without an e-mail address is not added, without a word.
        if (!LVWDupCheck(rec) && !rec.LastName.isEmpty() && !rec.FirstName.isEmpty() && !rec.EmailName.isEmpty()) {
            if (DBEditRecipient(m_database, EnableEmail, rec))
                LVWAddEMailContact(rec);
        }
        CopyEmailToRecipientStr(m_lists);
    });
}

void Recipients::cmdAddFaxAdr_Click()
{
    guarded(QStringLiteral("cmdAddFaxAdr_Click"), [&] {
        if (gintSelMainContact == 0)
            return;
        RecipientRec rec = LVWGetSelectedMainContact(gintSelMainContact);
        rec.ListType = FaxList;
        if (!LVWDupCheck(rec) && !rec.LastName.isEmpty() && !rec.FirstName.isEmpty() && !rec.FaxNumber.isEmpty()) {
            if (DBEditRecipient(m_database, EnableFax, rec))
                LVWAddFaxContact(rec);
        }
    });
}

void Recipients::cmdRemEmailAdr_Click()
{
    guarded(QStringLiteral("cmdRemEmailAdr_Click"), [&] {
        if (gintSelEmailContact == 0)
            return;
        const RecipientRec rec = LVWGetSelectedEmailContact(gintSelEmailContact);
        if (DBEditRecipient(m_database, DisableEmail, rec))
            m_lists.lvwEmailContacts.remove(gintSelEmailContact);
        gintSelEmailContact = 0;
        CopyEmailToRecipientStr(m_lists);
    });
}

void Recipients::cmdRemFaxAdr_Click()
{
    guarded(QStringLiteral("cmdRemFaxAdr_Click"), [&] {
        if (gintSelFaxContact == 0)
            return;
        const RecipientRec rec = LVWGetSelectedFaxContact(gintSelFaxContact);
        if (DBEditRecipient(m_database, DisableFax, rec))
            m_lists.lvwFaxContacts.remove(gintSelFaxContact);
        gintSelFaxContact = 0;
    });
}

void Recipients::cmdAddEscalation_Click()
{
    guarded(QStringLiteral("cmdAddEscalation_Click"), [&] {
        if (gintSelMainContact == 0)
            return;
        RecipientRec rec = LVWGetSelectedMainContact(gintSelMainContact);
        rec.ListType = EscalationList;
        // Somebody who can be reached neither way is not added, as on the other lists.
        if (!LVWDupCheck(rec) && !rec.LastName.isEmpty() && !rec.FirstName.isEmpty() &&
            !(rec.EmailName.isEmpty() && rec.FaxNumber.isEmpty())) {
            if (DBEditRecipient(m_database, EnableEscalation, rec))
                LVWAddEscalationContact(rec);
        }
    });
}

void Recipients::cmdRemEscalation_Click()
{
    guarded(QStringLiteral("cmdRemEscalation_Click"), [&] {
        if (gintSelEscalationContact == 0)
            return;
        RecipientRec rec;
        rec.LastName = m_lists.lvwEscalationContacts.text(gintSelEscalationContact, 1);
        rec.FirstName = m_lists.lvwEscalationContacts.text(gintSelEscalationContact, 2);
        if (DBEditRecipient(m_database, DisableEscalation, rec))
            m_lists.lvwEscalationContacts.remove(gintSelEscalationContact);
        gintSelEscalationContact = 0;
    });
}

} // namespace osprel
