#pragma once
// The 47-character star line that frames each e-mail, fax and test message in the log, and a check that a
// banner's title line is as wide.

#include <QLatin1String>
#include <string_view>

namespace osprel {

constexpr std::string_view kStarLineText = "***********************************************";
static_assert(kStarLineText.size() == 47, "the banners are 47 characters wide");

inline QLatin1String starLine()
{
    return QLatin1String(kStarLineText.data(), qsizetype(kStarLineText.size()));
}

// True when a banner title ("****   Sending New Fax   ****") is as wide as the star line.
constexpr bool isBannerWidth(std::string_view title)
{
    return title.size() == kStarLineText.size();
}

} // namespace osprel
