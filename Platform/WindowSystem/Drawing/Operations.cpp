// SPDX-License-Identifier: MIT
#include <WindowSystem/Drawing.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace zr::port {

namespace {

template <std::size_t count>
bool areFinite(const std::array<double, count>& numbers) {
    return std::ranges::all_of(numbers, [](double number) { return std::isfinite(number); });
}

std::optional<Rect> finite(const Rect& r) {
    if (!areFinite<4>({NSMinX(r), NSMinY(r), NSMaxX(r), NSMaxY(r)})) return std::nullopt;
    return r;
}

// The same rectangle, its size not negative.
Rect upright(const Rect& r) {
    return {{std::min(r.origin.x, NSMaxX(r)), std::min(r.origin.y, NSMaxY(r))},
            {std::abs(r.size.width), std::abs(r.size.height)}};
}

// A curve stays between its points.
std::optional<Rect> around(const std::vector<PathElement>& elements) {
    bool any = false;
    Point least, most;
    for (const auto& element : elements)
        for (std::size_t i = 0; i < pointCount(element.kind); ++i) {
            const Point& point = element.points[i];
            if (!areFinite<2>({point.x, point.y})) return std::nullopt;
            if (!std::exchange(any, true)) least = most = point;
            least = {std::min(least.x, point.x), std::min(least.y, point.y)};
            most = {std::max(most.x, point.x), std::max(most.y, point.y)};
        }
    return finite({least, {most.x - least.x, most.y - least.y}});
}

// Whether the corners of a rounded rectangle stay within it.
bool cornersFit(const Path& path) {
    const Rect r = upright(path.bounds);
    return path.xRadius >= 0 && path.xRadius <= r.size.width / 2 && path.yRadius >= 0 &&
           path.yRadius <= r.size.height / 2;
}

std::optional<Rect> around(const Path& path) {
    if (path.shape == PathShape::elements) return around(path.elements);
    const Rect r = upright(path.bounds);
    if (path.shape != PathShape::roundedRectangle || cornersFit(path)) return finite(r);
    return finite(NSInsetRect(r, -std::abs(path.xRadius), -std::abs(path.yRadius)));
}

// How far a stroke reaches from its path.
double reach(const Stroke& stroke) {
    constexpr double kMostOfAMitre = 10; // widths
    const double width = std::max(std::abs(stroke.style.lineWidth), 1.0);
    const Rect r = upright(stroke.path.bounds);
    // A simple shape has no sharp corner, unless it is thinner than the line.
    const bool blunt = stroke.path.shape != PathShape::elements &&
                       std::min(r.size.width, r.size.height) >= width &&
                       (stroke.path.shape != PathShape::roundedRectangle || cornersFit(stroke.path));
    return blunt ? width / 2 : kMostOfAMitre * width;
}

// Of a short one, the ends are not painted apart from each other.
bool isBar(const Path& path) {
    constexpr double kShort = 8;
    const bool straight = path.shape == PathShape::rectangle || path.shape == PathShape::roundedRectangle;
    return straight && path.xRadius >= 0 && path.bounds.size.width >= 2 * path.xRadius + kShort &&
           path.bounds.size.height >= 0;
}

} // namespace

std::optional<Rect> Fill::bounds() const { return around(path); }

bool Fill::addDifference(const Fill& next, DamagedAreas& areas) const {
    const Rect &r = path.bounds, &s = next.path.bounds;
    if (!isBar(path) || !isBar(next.path) || !finite(r) || !finite(s)) return false;
    Fill asLong = next;
    asLong.path.bounds.origin.x = r.origin.x;
    asLong.path.bounds.size.width = r.size.width;
    if (asLong != *this) return false;
    const auto addEnd = [&](double from, double to) {
        areas.add({{from, r.origin.y}, {to - from, r.size.height}});
    };
    if (NSMinX(r) != NSMinX(s))
        addEnd(std::min(NSMinX(r), NSMinX(s)), std::max(NSMinX(r), NSMinX(s)) + path.xRadius);
    if (NSMaxX(r) != NSMaxX(s))
        addEnd(std::min(NSMaxX(r), NSMaxX(s)) - path.xRadius, std::max(NSMaxX(r), NSMaxX(s)));
    return true;
}

std::optional<Rect> Stroke::bounds() const {
    const auto outline = around(path);
    if (!outline || !std::isfinite(style.lineWidth)) return std::nullopt;
    const double distance = reach(*this);
    return finite(NSInsetRect(*outline, -distance, -distance));
}

std::optional<Rect> Image::bounds() const { return finite(upright(destination)); }

} // namespace zr::port
