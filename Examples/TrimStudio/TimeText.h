// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace trimstudio {

// "1:02:03.456" or "2:03.456": to the millisecond, hours only where there are some. Seconds; negative ones
// count as 0.
std::string timeText(double seconds);

} // namespace trimstudio
