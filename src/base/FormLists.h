#pragma once
// The main window's list views as storage: the incoming queue, the two send queues, the two history lists and the
// three contact lists, with their fixed columns.

#include "ListStore.h"

namespace osprel {

class FormLists
{
public:
    FormLists();

    ListStore lvwMainContacts{QStringLiteral("lvwMainContacts")};
    ListStore lvwEmailContacts{QStringLiteral("lvwEmailContacts")};
    ListStore lvwFaxContacts{QStringLiteral("lvwFaxContacts")};
    ListStore lvwMsgQue{QStringLiteral("lvwMsgQue")};
    ListStore lvwSendEmailQue{QStringLiteral("lvwSendEmailQue")};
    ListStore lvwSendFaxQue{QStringLiteral("lvwSendFaxQue")};
    ListStore lvwHist[2]{ListStore(QStringLiteral("lvwHist(0)")), ListStore(QStringLiteral("lvwHist(1)"))};

    // Adds every column, caption and width, in the fixed order. Called once at load, before any row is added.
    void InitColHeaders();
};

} // namespace osprel
