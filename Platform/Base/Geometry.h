// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Compiler.h>

namespace zr {

// Points, sizes and rectangles in points, double precision. Who uses them says where the origin is.
struct Point {
    double x = 0;
    double y = 0;
    bool operator==(const Point&) const = default;
};

struct Size {
    double width = 0;
    double height = 0;
    bool operator==(const Size&) const = default;
};

struct Rect {
    Point origin;
    Size size;
    bool operator==(const Rect&) const = default;
};

// As the layer and the kit call them. Below the layer they have the plain names alone, so that an adaptor to a
// platform with types of these names can tell its own from ours.
using CGPoint = Point;
using CGSize = Size;
using CGRect = Rect;
using NSPoint = Point;
using NSSize = Size;
using NSRect = Rect;

inline constexpr NSPoint NSZeroPoint{};
inline constexpr NSSize NSZeroSize{};
inline constexpr NSRect NSZeroRect{};

constexpr NSPoint NSMakePoint(double x, double y) { return {x, y}; }
constexpr NSSize NSMakeSize(double width, double height) { return {width, height}; }
constexpr NSRect NSMakeRect(double x, double y, double width, double height) {
    return {{x, y}, {width, height}};
}

constexpr double NSMinX(const NSRect& r) { return r.origin.x; }
constexpr double NSMinY(const NSRect& r) { return r.origin.y; }
constexpr double NSMaxX(const NSRect& r) { return r.origin.x + r.size.width; }
constexpr double NSMaxY(const NSRect& r) { return r.origin.y + r.size.height; }
constexpr double NSMidX(const NSRect& r) { return r.origin.x + r.size.width / 2; }
constexpr double NSMidY(const NSRect& r) { return r.origin.y + r.size.height / 2; }

// Moves each side inwards; negative distances grow the rectangle. Plain arithmetic, sizes may become negative.
constexpr NSRect NSInsetRect(const NSRect& r, double dx, double dy) {
    return {{r.origin.x + dx, r.origin.y + dy}, {r.size.width - 2 * dx, r.size.height - 2 * dy}};
}
constexpr NSRect NSOffsetRect(const NSRect& r, double dx, double dy) {
    return {{r.origin.x + dx, r.origin.y + dy}, r.size};
}

constexpr bool NSIsEmptyRect(const NSRect& r) { return !(r.size.width > 0 && r.size.height > 0); }

// minX <= x < maxX and minY <= y < maxY. No point lies in an empty rectangle; NaN lies nowhere.
constexpr bool NSPointInRect(const NSPoint& p, const NSRect& r) {
    return p.x >= NSMinX(r) && p.x < NSMaxX(r) && p.y >= NSMinY(r) && p.y < NSMaxY(r);
}

// The hit test of a pointer: in unflipped coordinates the top edge belongs to the rectangle and the bottom edge
// does not, so that the topmost row of pixels of a view is part of it.
constexpr bool NSMouseInRect(const NSPoint& p, const NSRect& r, bool flipped) {
    if (flipped) return NSPointInRect(p, r);
    return p.x >= NSMinX(r) && p.x < NSMaxX(r) && p.y > NSMinY(r) && p.y <= NSMaxY(r);
}

// The common part; NSZeroRect when there is none. Touching edges do not overlap.
ZR_EXPORT NSRect NSIntersectionRect(const NSRect& a, const NSRect& b);
// The smallest rectangle around both; an empty one is ignored.
ZR_EXPORT NSRect NSUnionRect(const NSRect& a, const NSRect& b);

} // namespace zr
