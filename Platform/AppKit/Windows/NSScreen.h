// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Compiler.h>
#include <Base/Geometry.h>

#include <vector>

namespace zr {

// Points, y up, origin at the lower left of the primary screen.
class ZR_EXPORT NSScreen {
public:
    static NSScreen mainScreen();           // the primary one; an empty one while no window system is installed
    static std::vector<NSScreen> screens(); // the primary one first

    // A rectangle whose origin is at the top left of the primary screen, with y down, and back: the place where
    // screen coordinates turn over.
    static NSRect turnedOver(const NSRect& rect);
    static NSPoint turnedOverPoint(const NSPoint& point) { return turnedOver({point, NSZeroSize}).origin; }

    const NSRect& frame() const { return frame_; }
    const NSRect& visibleFrame() const { return visibleFrame_; } // without the desktop's own bars

private:
    NSRect frame_, visibleFrame_;
};

} // namespace zr
