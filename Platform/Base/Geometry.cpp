// SPDX-License-Identifier: MIT
#include <Base/Geometry.h>

#include <algorithm>

namespace zr {

Rect NSIntersectionRect(const Rect& a, const Rect& b) {
    const double minX = std::max(NSMinX(a), NSMinX(b));
    const double minY = std::max(NSMinY(a), NSMinY(b));
    const Rect common = {{minX, minY},
                         {std::min(NSMaxX(a), NSMaxX(b)) - minX, std::min(NSMaxY(a), NSMaxY(b)) - minY}};
    return NSIsEmptyRect(common) ? NSZeroRect : common;
}

Rect NSUnionRect(const Rect& a, const Rect& b) {
    if (NSIsEmptyRect(a)) return NSIsEmptyRect(b) ? NSZeroRect : b;
    if (NSIsEmptyRect(b)) return a;
    const double minX = std::min(NSMinX(a), NSMinX(b));
    const double minY = std::min(NSMinY(a), NSMinY(b));
    return {{minX, minY}, {std::max(NSMaxX(a), NSMaxX(b)) - minX, std::max(NSMaxY(a), NSMaxY(b)) - minY}};
}

} // namespace zr
