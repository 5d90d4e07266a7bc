#include "SendStates.h"

#include "EmailQueue.h"
#include "FaxQueue.h"
#include "Globals.h"

namespace osprel {

namespace {
enum SendState : qint16 { Sending = 1 };
} // namespace

void clearSendStates()
{
    g.gintEmailSendState = 0;
    g.gintFaxSendState = 0;
}

void recordEmailSending()
{
    g.gintEmailSendState = Sending;
}

void recordEmailOutcome(const SendOutcome &outcome)
{
    g.gintEmailSendState = outcome.result;
}

void recordFaxSending()
{
    g.gintFaxSendState = Sending;
}

void recordFaxOutcome(const SendOutcome &outcome)
{
    g.gintFaxSendState = outcome.result;
}

void recordSendStates(EmailQueue &emailQueue, FaxQueue &faxQueue)
{
    QObject::connect(&emailQueue, &EmailQueue::sendingStarted, &emailQueue, &recordEmailSending);
    QObject::connect(&faxQueue, &FaxQueue::sendingStarted, &faxQueue, &recordFaxSending);
    QObject::connect(&faxQueue, &FaxQueue::finished, &faxQueue, &recordFaxOutcome);
}

} // namespace osprel
