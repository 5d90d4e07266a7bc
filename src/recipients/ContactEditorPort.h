#pragma once
// The recipient editor panel (picContacts) as recipients management sees it: shown over the page by New and Edit,
// its boxes, and its validation label.

#include <QString>

namespace osprel {

// The editor's boxes as typed: the fax number in its three parts.
struct ContactFields
{
    QString LName, FName, Email, FaxAC, Fax3D, Fax4D, Notes;
};

class ContactEditorPort
{
public:
    virtual ~ContactEditorPort() = default;
    // picContacts, opened at left 120, top 120 twips over the page, and closed again.
    virtual void showContactEditor() = 0;
    virtual void hideContactEditor() = 0;
    virtual ContactFields contactFields() const = 0;
    virtual void setContactFields(const ContactFields &fields) = 0;
    virtual void setLblContactErr(const QString &text) = 0;
};

} // namespace osprel
