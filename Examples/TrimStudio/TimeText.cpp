// SPDX-License-Identifier: MIT
#include "TimeText.h"

#include <Foundation/NSString.h>

#include <algorithm>
#include <cmath>

namespace trimstudio {

std::string timeText(double seconds) {
    const long milliseconds = std::lround(std::max(0.0, seconds) * 1000);
    const long hours = milliseconds / 3'600'000, minutes = milliseconds / 60'000 % 60;
    const long rest = milliseconds % 60'000;
    if (hours > 0) return zr::stringWithFormat("%d:%02d:%02d.%03d", hours, minutes, rest / 1000, rest % 1000);
    return zr::stringWithFormat("%d:%02d.%03d", minutes, rest / 1000, rest % 1000);
}

} // namespace trimstudio
