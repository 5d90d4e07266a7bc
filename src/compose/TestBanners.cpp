#include "TestBanners.h"

#include "Log.h"
#include "LogBanner.h"

namespace osprel {

namespace {
void banner(const QString &title, const QString &message, qint16 list)
{
    const QString stars = starLine();
    for (const QString &line : {stars, title, stars, message, stars, QString(), QString()})
        DumpStr(line, list);
}
} // namespace

void DumpTestEmailBanner(const QString &message)
{
    banner(QStringLiteral("****             Test Email                ****"), message, Log::EmailList);
}

void DumpTestFaxBanner(const QString &message)
{
    banner(QStringLiteral("****             Test Fax                  ****"), message, Log::FaxList);
}

} // namespace osprel
