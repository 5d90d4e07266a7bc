#pragma once
// What the send-status refresh writes on the window besides the lists: the progress of a test message, and the
// fax device it asks whether a call is still under way.

#include <QString>

namespace osprel {

class StatusPort
{
public:
    virtual ~StatusPort() = default;
    virtual void setTxtTestEmailProg(const QString &text) = 0;
    virtual void setTxtTestFaxProg(const QString &text) = 0;
};

// The fax device as the refresh sees it.
class FaxLine
{
public:
    virtual ~FaxLine() = default;
    // 2 while a call is under way.
    virtual int faxStatus() const = 0;
    virtual void endCall() = 0;
};

} // namespace osprel
