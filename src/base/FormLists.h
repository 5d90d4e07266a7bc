#pragma once
// The main window's list views as storage: the incoming queue, the two send queues, the two history lists, the
// four contact lists and the active alarms (open tickets), with their fixed columns.

#include "ListStore.h"

namespace osprel {

class FormLists
{
public:
    FormLists();

    ListStore lvwMainContacts{QStringLiteral("lvwMainContacts")};
    ListStore lvwEmailContacts{QStringLiteral("lvwEmailContacts")};
    ListStore lvwFaxContacts{QStringLiteral("lvwFaxContacts")};
    // Told when nobody acknowledges a ticket in time: last, first, e-mail address, fax number.
    ListStore lvwEscalationContacts{QStringLiteral("lvwEscalationContacts")};
    // The tickets not yet cleared: ticket, chamber, category, first sent, repeats, escalated, state.
    ListStore lvwActiveAlarms{QStringLiteral("lvwActiveAlarms")};
    ListStore lvwMsgQue{QStringLiteral("lvwMsgQue")};
    ListStore lvwSendEmailQue{QStringLiteral("lvwSendEmailQue")};
    ListStore lvwSendFaxQue{QStringLiteral("lvwSendFaxQue")};
    ListStore lvwHist[2]{ListStore(QStringLiteral("lvwHist(0)")), ListStore(QStringLiteral("lvwHist(1)"))};

    // Adds every column, caption and width, in the fixed order. Called once at load, before any row is added.
    void InitColHeaders();
};

} // namespace osprel
