#pragma once
// The banners that mark the outcome of a test e-mail or a test fax in the diagnostic log.

#include <QString>

namespace osprel {

void DumpTestEmailBanner(const QString &message);
void DumpTestFaxBanner(const QString &message);

} // namespace osprel
