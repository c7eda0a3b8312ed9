// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Compiler.h>

#include <string_view>

namespace zr {

enum class Appearance { light, dark };

// Colours that follow the appearance. They travel by name and get their components when they are painted.
enum class SystemColour {
    none,
    label,
    secondaryLabel,
    tertiaryLabel,
    controlBackground,
    windowBackground,
    separator,
    systemRed,
    quaternaryLabel,
    placeholderText,
    text,
    textBackground,
    control,
    controlText,
    disabledControlText,
};

// Components between 0 and 1, sRGB, alpha not premultiplied. With a system colour the components are unused.
struct Colour {
    SystemColour system = SystemColour::none;
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;
    bool operator==(const Colour&) const = default;
};

// The name by which AppKit's programmers know the colour, such as "tertiaryLabelColor"; empty for none.
ZR_EXPORT std::string_view nameOf(SystemColour colour);
// None for a name that no colour has.
ZR_EXPORT SystemColour systemColourNamed(std::string_view name);

// The components the colour has under the appearance.
ZR_EXPORT Colour resolved(const Colour& colour, Appearance appearance);

} // namespace zr
