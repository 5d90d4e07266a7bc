#pragma once
// Turns the e-mail and fax send states into what the user sees and into their consequences for the queues and the
// history. One procedure, guarded against being re-entered from an event handled while it runs.

namespace osprel {

class SendStatus
{
public:
    void SendStatUpdate();

    bool isUpdating() const { return gblnStatusUpdating; }

private:
    void update();

    bool gblnStatusUpdating = false;
};

} // namespace osprel
