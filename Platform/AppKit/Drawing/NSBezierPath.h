// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Compiler.h>
#include <Base/Path.h>

namespace zr {

// An outline that can be filled, stroked and clipped to. A value. Points are in the coordinates of the view
// that draws.
class ZR_EXPORT NSBezierPath {
public:
    static NSBezierPath bezierPath() { return {}; }
    static NSBezierPath bezierPathWithRect(const NSRect& rect);
    static NSBezierPath bezierPathWithOvalInRect(const NSRect& rect);
    // Corners are quarters of ellipses; radii larger than half the side are limited to half of it.
    static NSBezierPath bezierPathWithRoundedRect_xRadius_yRadius(const NSRect& rect, double xRadius,
                                                                  double yRadius);

    void moveToPoint(const NSPoint& point);
    // Both throw std::logic_error, and change nothing, where the path has no current point.
    void lineToPoint(const NSPoint& point);
    void closePath();

    double lineWidth() const { return lineWidth_; }
    void setLineWidth(double width) { lineWidth_ = width; } // points; 0 is the thinnest line there is

    // With the current colour, in the current context; without one they do nothing.
    void fill() const;
    void stroke() const;
    void addClip() const;
    static void fillRect(const NSRect& rect);

    const Path& path() const { return path_; }

private:
    void becomeElements();

    Path path_;
    double lineWidth_ = 1;
};

} // namespace zr
