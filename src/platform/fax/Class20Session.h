#pragma once
// The Class 2.0 driver (ITU-T T.32): Class 2 with the T.32 command and response names, and pages ended in the data
// itself (DLE , for another page, DLE . for the last) instead of by +FET.

#include "Class2Session.h"

namespace osprel {

class Class20Session : public Class2Session
{
    Q_OBJECT
public:
    using Class2Session::Class2Session;

protected:
    const Names &names() const override;
    QString className() const override { return QStringLiteral("Class 2.0"); }
    QByteArray pageTerminator(bool lastPage) const override;
    bool usesPostPageCommand() const override { return false; }
    QByteArray reportCommand() const override;
};

} // namespace osprel
