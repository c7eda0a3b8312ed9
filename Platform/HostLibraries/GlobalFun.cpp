// SPDX-License-Identifier: MIT
#include <HostLibraries/GlobalFun.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace zr {

void GlobalFun::getHour_minite_second_withTime(std::int32_t& hour, std::int32_t& minute, std::int32_t& second,
                                               double seconds) {
    constexpr double kSecondsPerHour = 3600, kSecondsPerMinute = 60;
    const double whole = std::isnan(seconds) ? 0 : std::trunc(seconds);
    const double hours = std::trunc(whole / kSecondsPerHour);
    const double rest = std::isinf(whole) ? 0 : std::fmod(whole, kSecondsPerHour);
    hour = static_cast<std::int32_t>(std::clamp(hours, double(std::numeric_limits<std::int32_t>::min()),
                                                double(std::numeric_limits<std::int32_t>::max())));
    minute = static_cast<std::int32_t>(rest / kSecondsPerMinute);
    second = static_cast<std::int32_t>(std::fmod(rest, kSecondsPerMinute));
}

std::optional<NSData> GlobalFun::BookmarkDataForURL(const NSURL& url) { return url.bookmarkData(); }

} // namespace zr
