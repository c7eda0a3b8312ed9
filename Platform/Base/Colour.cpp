// SPDX-License-Identifier: MIT
#include <Base/Colour.h>

#include <algorithm>
#include <array>

namespace zr {

namespace {

struct SystemColourEntry {
    std::string_view name;
    Colour light;
    Colour dark;
};

constexpr Colour rgb(int red, int green, int blue, int alpha = 255) {
    return {SystemColour::none, red / 255.0, green / 255.0, blue / 255.0, alpha / 255.0};
}

constexpr std::array<SystemColourEntry, 15> kSystemColours = {{
    {"", rgb(0, 0, 0), rgb(0, 0, 0)},
    {"labelColor", rgb(0, 0, 0, 216), rgb(255, 255, 255, 216)},
    {"secondaryLabelColor", rgb(0, 0, 0, 127), rgb(255, 255, 255, 140)},
    {"tertiaryLabelColor", rgb(0, 0, 0, 66), rgb(255, 255, 255, 63)},
    {"controlBackgroundColor", rgb(255, 255, 255), rgb(30, 30, 30)},
    {"windowBackgroundColor", rgb(236, 236, 236), rgb(50, 50, 50)},
    {"separatorColor", rgb(0, 0, 0, 25), rgb(255, 255, 255, 25)},
    {"systemRedColor", rgb(255, 59, 48), rgb(255, 69, 58)},
    {"quaternaryLabelColor", rgb(0, 0, 0, 25), rgb(255, 255, 255, 25)},
    {"placeholderTextColor", rgb(0, 0, 0, 63), rgb(255, 255, 255, 63)},
    {"textColor", rgb(0, 0, 0), rgb(255, 255, 255)},
    {"textBackgroundColor", rgb(255, 255, 255), rgb(30, 30, 30)},
    {"controlColor", rgb(255, 255, 255), rgb(255, 255, 255, 63)},
    {"controlTextColor", rgb(0, 0, 0, 216), rgb(255, 255, 255, 216)},
    {"disabledControlTextColor", rgb(0, 0, 0, 63), rgb(255, 255, 255, 63)},
}};

const SystemColourEntry& entryOf(SystemColour colour) {
    return kSystemColours.at(static_cast<std::size_t>(colour));
}

} // namespace

std::string_view nameOf(SystemColour colour) { return entryOf(colour).name; }

SystemColour systemColourNamed(std::string_view name) {
    const auto found = std::ranges::find(kSystemColours, name, &SystemColourEntry::name);
    return found == kSystemColours.end() ? SystemColour::none
                                         : static_cast<SystemColour>(found - kSystemColours.begin());
}

Colour resolved(const Colour& colour, Appearance appearance) {
    if (colour.system == SystemColour::none) return colour;
    const auto& entry = entryOf(colour.system);
    return appearance == Appearance::dark ? entry.dark : entry.light;
}

} // namespace zr
