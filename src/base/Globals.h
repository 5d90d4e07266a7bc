#pragma once
// Process-wide state of the server, under the names the log and the operators know it by.

#include <QString>

namespace osprel {

class ServerForm;

struct Globals
{
    qint16 gintAlertClsCount = 0;  // live alert objects
    QString gstrLinkedForm;        // form name of the linked chamber program; empty when nobody is linked
    bool gblnServerLinked = false; // a chamber program holds the link (or the user closed the window)
    ServerForm *gfrmServerForm = nullptr;
    QString gstrHeaderWord;        // word put before " Name" and " Error" in list headings
    bool gblnRawAlerts = false;    // when set, the incoming list's category column is not filled
    QString gstrAlertLabels[22];   // alert field labels handed in by the chamber program
    qint16 gintEmailSendState = 0; // 0 idle, 1 sending, 3 sent, 4 failed
    qint16 gintFaxSendState = 0;
    qint16 gintStatusWord = 0;    // cleared at load
    bool gblnEmailTest = false;   // a test e-mail is on its way
    bool gblnFaxTest = false;     // a test fax is on its way
    qint32 glngEmailAttempts = 0; // failed attempts of the e-mail at the head of its queue
    qint32 glngEmailTicks = 0;    // status refreshes while an e-mail is being sent
    qint32 glngFaxTicks = 0;      // status refreshes while a fax is being sent
    qint16 gintFlashMode = 0;     // tray flashing: 0 none, 1 sent, 2 failed
    qint16 gintIconState = 0;     // tray alert state: 0 normal, 1 sent, 2 failed
    QString gstrEmailRecipients;  // every e-mail recipient's address, each followed by "; "
    QString gstrAppPath;          // the data folder, without a trailing separator
    bool gblnStoreFailed = false; // the database cannot be written: alerts are refused until it can
};

extern Globals g;

// Puts every global back to its state before start-up (tests).
void resetGlobals();

// True while an e-mail or a fax is being sent or its outcome is not yet recorded.
bool IsSendInProgress();

// The send states as ServerStatus reports them: both -1 while the database cannot be written, so that the chamber
// program knows the server is not keeping what it is given.
qint16 reportedEmailState();
qint16 reportedFaxState();

} // namespace osprel
