#pragma once
// What recipients management needs of the window: the contact editor panel and its fields, the validation label,
// the selection shown in the all-contacts list, and the page switching.

#include <QString>

namespace osprel {

// The editor's boxes as typed: the fax number in its three parts.
struct ContactFields
{
    QString LName, FName, Email, FaxAC, Fax3D, Fax4D, Notes;
};

class RecipientsPort
{
public:
    virtual ~RecipientsPort() = default;
    // picContacts, opened at left 120, top 120 twips over the page, and closed again.
    virtual void showContactEditor() = 0;
    virtual void hideContactEditor() = 0;
    virtual ContactFields contactFields() const = 0;
    virtual void setContactFields(const ContactFields &fields) = 0;
    virtual void setLblContactErr(const QString &text) = 0;
    // Shows row (1-based) of lvwMainContacts as selected; 0 clears the selection.
    virtual void selectMainContactRow(int row) = 0;
    virtual void TabSet(const QString &control) = 0;
    virtual QString currentTabCaption() const = 0;
    virtual void showMessage(const QString &title, const QString &text) = 0;
};

} // namespace osprel
