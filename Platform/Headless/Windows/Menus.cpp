// SPDX-License-Identifier: MIT
#include "Menus.h"

#include <algorithm>
#include <array>
#include <utility>

namespace zr::headless {

namespace {

const port::MenuItem* itemOf(const std::vector<port::MenuItem>& items, const std::string& title) {
    const auto found =
        std::ranges::find_if(items, [&](const auto& item) { return !item.separator && item.title == title; });
    return found == items.end() ? nullptr : &*found;
}

// Opens one menu after the other. Nothing where there is none.
std::vector<port::MenuItem> opened(std::vector<port::MenuItem> items, const std::vector<std::string>& titles) {
    for (const auto& title : titles) {
        const auto* const item = itemOf(items, title);
        items = item && item->enabled && item->submenu ? item->submenu() : std::vector<port::MenuItem>();
    }
    return items;
}

std::string described(const port::MenuItem& item) {
    constexpr std::array<std::pair<NSEventModifierFlags, const char*>, 4> kModifiers = {
        {{NSEventModifierFlagControl, "Control-"},
         {NSEventModifierFlagOption, "Option-"},
         {NSEventModifierFlagShift, "Shift-"},
         {NSEventModifierFlagCommand, "Command-"}}};
    if (item.separator) return "<separator>";
    std::string text = item.title;
    if (item.submenu) text += " >";
    if (!item.key.empty()) {
        text += " [";
        for (const auto& [flag, name] : kModifiers)
            if ((item.modifierFlags & flag) != 0) text += name;
        text += item.key;
        text += "]";
    }
    if (!item.enabled) text += " (disabled)";
    return text;
}

} // namespace

std::vector<std::string> describedMenu(const std::vector<port::MenuItem>& bar,
                                       const std::vector<std::string>& menu) {
    std::vector<std::string> lines;
    for (const auto& item : opened(bar, menu)) lines.push_back(described(item));
    return lines;
}

bool chooseItem(const std::vector<port::MenuItem>& bar, const std::vector<std::string>& titles) {
    if (titles.empty()) return false;
    const auto items = opened(bar, {titles.begin(), titles.end() - 1});
    const auto* const item = itemOf(items, titles.back());
    if (!item || !item->enabled || !item->choose) return false;
    item->choose();
    return true;
}

} // namespace zr::headless
