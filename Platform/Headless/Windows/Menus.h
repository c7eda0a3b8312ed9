// SPDX-License-Identifier: MIT
#pragma once

#include <WindowSystem/Windows.h>

#include <string>
#include <vector>

namespace zr::headless {

// The items of the menu that these titles lead to, each opened in turn, as lines; empty where there is none.
std::vector<std::string> describedMenu(const std::vector<port::MenuItem>& bar,
                                       const std::vector<std::string>& menu);
// False where there is none, or it cannot be chosen.
bool chooseItem(const std::vector<port::MenuItem>& bar, const std::vector<std::string>& titles);

} // namespace zr::headless
