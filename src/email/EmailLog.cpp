#include "EmailLog.h"

#include "Log.h"

#include <string_view>

namespace osprel {

namespace {
constexpr char kStars[] = "***********************************************";
constexpr char kSending[] = "****         Sending New EMail             ****";
constexpr char kCompleted[] = "****         Completed EMail               ****";
static_assert(std::string_view(kStars).size() == 47 && std::string_view(kSending).size() == 47 &&
                  std::string_view(kCompleted).size() == 47,
              "the banners are 47 characters wide");
} // namespace

void emailLog(const QString &text)
{
    DumpStr(text, Log::EmailList);
}

void logSendingBanner()
{
    emailLog(QString());
    emailLog(QLatin1String(kStars));
    emailLog(QLatin1String(kSending));
    emailLog(QLatin1String(kStars));
}

void logCompletedBanner(bool sent)
{
    emailLog(QLatin1String(kStars));
    emailLog(QLatin1String(kCompleted));
    emailLog(QLatin1String(kStars));
    emailLog(sent ? QStringLiteral("*** E-Mail sent successfully.") : QStringLiteral("*** E-Mail send failed."));
    emailLog(QLatin1String(kStars));
    emailLog(QString());
}

} // namespace osprel
