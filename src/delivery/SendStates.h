#pragma once
// The two global send states (gintEmailSendState, gintFaxSendState) are written here and by the send-status
// refresh, nowhere else: the queues say when a message goes out, the transports report how it ended, and these
// turn that into the states the refresh, the tray and ServerStatus read.

#include "SendOutcome.h"

namespace osprel {

class EmailQueue;
class FaxQueue;

// Both idle, as at start-up.
void clearSendStates();
void recordEmailSending();
void recordEmailOutcome(const SendOutcome &outcome);
void recordFaxSending();
void recordFaxOutcome(const SendOutcome &outcome);

// Connects the queues' "sending" and the fax queue's outcome to the records above. (The e-mail outcome is taken by
// the send-status refresh itself, which records it and runs at once.)
void recordSendStates(EmailQueue &emailQueue, FaxQueue &faxQueue);

} // namespace osprel
