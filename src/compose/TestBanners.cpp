#include "TestBanners.h"

#include "Log.h"

namespace osprel {

namespace {
const QString kStars = QStringLiteral("***********************************************");

void banner(const QString &title, const QString &message, qint16 list)
{
    for (const QString &line : {kStars, title, kStars, message, kStars, QString(), QString()})
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
