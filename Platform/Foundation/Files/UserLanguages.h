// SPDX-License-Identifier: MIT
#pragma once

#include <FoundationBackends/InstalledHost.h>

#include <string>
#include <vector>

// Private to Foundation.
namespace zr {

// The languages that the user prefers, best first, as "zh-Hans-CN": those that the host names, or else those of
// the environment.
std::vector<std::string> userLanguages(const backend::InstalledHost& installed);

} // namespace zr
