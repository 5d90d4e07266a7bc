#pragma once
// The fax device as the send-status refresh sees it: whether a call is under way, and a way to end it.

namespace osprel {

class FaxLine
{
public:
    virtual ~FaxLine() = default;
    // 2 while a call is under way.
    virtual int faxStatus() const = 0;
    virtual void endCall() = 0;
};

} // namespace osprel
