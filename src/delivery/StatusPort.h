#pragma once
// What the send-status refresh writes on the Comm Setup page: the progress of a test e-mail and a test fax.

#include <QString>

namespace osprel {

class StatusPort
{
public:
    virtual ~StatusPort() = default;
    virtual void setTxtTestEmailProg(const QString &text) = 0;
    virtual void setTxtTestFaxProg(const QString &text) = 0;
};

} // namespace osprel
