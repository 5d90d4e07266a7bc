#pragma once
// The Recipients page as the logic sees it: the row shown as selected in the all-contacts list, and the two address
// lists, usable or greyed out as their messaging is switched on or off.

namespace osprel {

class RecipientsPagePort
{
public:
    virtual ~RecipientsPagePort() = default;
    // Shows row (1-based) of lvwMainContacts as selected; 0 clears the selection.
    virtual void selectMainContactRow(int row) = 0;
    // lvwEmailContacts and lvwFaxContacts: usable (window background) or greyed out (scroll-bar colour).
    virtual void setEmailListEnabled(bool enabled) = 0;
    virtual void setFaxListEnabled(bool enabled) = 0;
};

} // namespace osprel
