#pragma once
// The program's version as major.minor.revision, as the window and the test e-mail show it.

#include <QString>

namespace osprel {

inline QString versionText()
{
    return QString::number(OSPREL_VERSION_MAJOR) + u'.' + QString::number(OSPREL_VERSION_MINOR) + u'.' +
           QString::number(OSPREL_VERSION_PATCH);
}

} // namespace osprel
