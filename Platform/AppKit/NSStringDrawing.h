#pragma once

#include <AppKit/NSColor.h>
#include <AppKit/NSFont.h>
#include <Base/Geometry.h>

#include <string_view>

namespace zr {

struct TextAttributes {
    NSFont font = NSFont::systemFontOfSize(0);
    NSColor foregroundColor = NSColor::labelColor();
};

// One line. In an unflipped view the point is the lower left corner of the line, in a flipped one the upper
// left.
void drawAtPoint_withAttributes(std::string_view text, const NSPoint& point, const TextAttributes& attributes);
// Zero while no window system is installed.
NSSize sizeWithAttributes(std::string_view text, const TextAttributes& attributes);

} // namespace zr
