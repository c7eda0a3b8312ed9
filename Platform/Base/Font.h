// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace zr {

// A font as it is asked for. An empty family is the window system's own font.
struct FontDescription {
    std::string family;
    double size = 13; // points
    bool bold = false;
    bool monospacedDigits = false;
    bool operator==(const FontDescription&) const = default;
};

struct TextSize {
    double width = 0;
    double ascent = 0;
    double descent = 0; // positive, below the baseline
};

enum NSLineBreakMode {
    NSLineBreakByWordWrapping = 0,
    NSLineBreakByCharWrapping = 1,
    NSLineBreakByClipping = 2,
    NSLineBreakByTruncatingHead = 3,
    NSLineBreakByTruncatingTail = 4,
    NSLineBreakByTruncatingMiddle = 5,
};

enum NSTextAlignment { NSTextAlignmentLeft = 0, NSTextAlignmentRight = 1, NSTextAlignmentCenter = 2 };

} // namespace zr
