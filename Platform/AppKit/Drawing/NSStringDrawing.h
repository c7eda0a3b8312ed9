// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSColor.h>
#include <AppKit/NSFont.h>
#include <Base/Compiler.h>
#include <Base/Geometry.h>

#include <string>
#include <string_view>
#include <vector>

namespace zr {

// What is not said: 12 points, whatever size controls have.
struct TextAttributes {
    NSFont font = NSFont::systemFontOfSize(12);
    NSColor foregroundColor = NSColor::labelColor();
};

// One line. In an unflipped view the point is the lower left corner of the line, in a flipped one the upper
// left.
ZR_EXPORT void drawAtPoint_withAttributes(std::string_view text, const NSPoint& point,
                                          const TextAttributes& attributes);
// Zero while no window system is installed.
ZR_EXPORT NSSize sizeWithAttributes(std::string_view text, const TextAttributes& attributes);

// The text in lines no wider than that: broken where it says so, then between words, and within a word, or
// between the characters of a script without blanks, only where nothing else fits.
ZR_EXPORT std::vector<std::string> linesOfText(std::string_view text, double width,
                                               const TextAttributes& attributes);

} // namespace zr
