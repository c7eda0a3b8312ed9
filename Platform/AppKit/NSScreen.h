#pragma once

#include <Base/Geometry.h>

namespace zr {

// The primary screen. Points, origin at the lower left.
class NSScreen {
public:
    static NSScreen mainScreen(); // an empty one while no window system is installed
    const NSRect& frame() const { return frame_; }

private:
    NSRect frame_;
};

} // namespace zr
