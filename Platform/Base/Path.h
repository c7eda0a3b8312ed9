// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Compiler.h>
#include <Base/Geometry.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace zr {

enum class PathShape : std::uint8_t { elements, rectangle, roundedRectangle, oval };

struct PathElement {
    enum class Kind { move = 0, line = 1, curve = 2, close = 3 };
    Kind kind = Kind::move;
    // move and line use the first point; curve uses two control points and then the end point.
    std::array<Point, 3> points{};
    bool operator==(const PathElement&) const = default;
};

// How many points of an element of that kind are used.
constexpr std::size_t pointCount(PathElement::Kind kind) {
    return kind == PathElement::Kind::curve ? 3 : kind == PathElement::Kind::close ? 0 : 1;
}

// An outline. The simple shapes keep their parameters, so that they can be painted directly; any other
// outline is a list of elements. Coordinates are those of the view that draws.
struct Path {
    PathShape shape = PathShape::elements;
    Rect bounds;        // of rectangle, rounded rectangle and oval
    double xRadius = 0; // of the corners of a rounded rectangle, at most half its width
    double yRadius = 0; // likewise, at most half its height
    std::vector<PathElement> elements{};
    bool operator==(const Path&) const = default;
};

// The outline as elements, whatever its shape.
ZR_EXPORT std::vector<PathElement> elementsOf(const Path& path);

} // namespace zr
