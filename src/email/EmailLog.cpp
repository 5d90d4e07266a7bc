#include "EmailLog.h"

#include "Log.h"
#include "LogBanner.h"

namespace osprel {

namespace {
constexpr char kSending[] = "****         Sending New EMail             ****";
constexpr char kCompleted[] = "****         Completed EMail               ****";
static_assert(isBannerWidth(kSending) && isBannerWidth(kCompleted));
} // namespace

void emailLog(const QString &text)
{
    DumpStr(text, Log::EmailList);
}

void logSendingBanner()
{
    emailLog(QString());
    emailLog(starLine());
    emailLog(QLatin1String(kSending));
    emailLog(starLine());
}

void logCompletedBanner(bool sent)
{
    emailLog(starLine());
    emailLog(QLatin1String(kCompleted));
    emailLog(starLine());
    emailLog(sent ? QStringLiteral("*** E-Mail sent successfully.") : QStringLiteral("*** E-Mail send failed."));
    emailLog(starLine());
    emailLog(QString());
}

} // namespace osprel
