#pragma once
// Every port the server's logic talks to the window through, each implemented by the page or panel that shows it.
// The window (or a headless stand-in in tests) hands these to the server when it is made.

#include "AlarmSetupPort.h"
#include "CommSetupPort.h"
#include "ContactEditorPort.h"
#include "EmailQueuePort.h"
#include "FaxPagePort.h"
#include "FormPort.h"
#include "ModemPanelPort.h"
#include "PriorityPagePort.h"
#include "QueuedAlarmsPort.h"
#include "RecipientsPagePort.h"
#include "StatusPort.h"

namespace osprel {

struct Ports
{
    FormPort &form;                     // the window itself
    CommSetupPort &commSetup;           // Comm Setup page
    EmailQueuePort &email;              // Comm Setup page
    FaxPagePort &faxPage;               // Comm Setup page
    StatusPort &status;                 // Comm Setup page
    QueuedAlarmsPort &queuedAlarms;     // Alarm Setup page
    AlarmSetupPort &alarmSetup;         // Alarm Setup page
    PriorityPagePort &priorityPage;     // Alarm Priority page
    RecipientsPagePort &recipientsPage; // Recipients page
    ContactEditorPort &contactEditor;   // the recipient editor panel
    ModemPanelPort &modemPanel;         // the advanced modem panel
};

} // namespace osprel
