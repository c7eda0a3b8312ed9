// SPDX-License-Identifier: MIT
#include <Base/Path.h>

namespace zr {

namespace {

// Control distance of a quarter of a unit circle.
constexpr double kQuarterArc = 0.5522847498;

using Kind = PathElement::Kind;

void appendRounded(std::vector<PathElement>& out, const Rect& r, double rx, double ry) {
    const double x0 = NSMinX(r), x1 = NSMaxX(r), y0 = NSMinY(r), y1 = NSMaxY(r);
    const double cx = rx * (1 - kQuarterArc), cy = ry * (1 - kQuarterArc);
    out.push_back({Kind::move, {{{x0 + rx, y1}}}});
    out.push_back({Kind::curve, {{{x0 + cx, y1}, {x0, y1 - cy}, {x0, y1 - ry}}}});
    out.push_back({Kind::line, {{{x0, y0 + ry}}}});
    out.push_back({Kind::curve, {{{x0, y0 + cy}, {x0 + cx, y0}, {x0 + rx, y0}}}});
    out.push_back({Kind::line, {{{x1 - rx, y0}}}});
    out.push_back({Kind::curve, {{{x1 - cx, y0}, {x1, y0 + cy}, {x1, y0 + ry}}}});
    out.push_back({Kind::line, {{{x1, y1 - ry}}}});
    out.push_back({Kind::curve, {{{x1, y1 - cy}, {x1 - cx, y1}, {x1 - rx, y1}}}});
    out.push_back({Kind::close, {}});
}

void appendRectangle(std::vector<PathElement>& out, const Rect& r) {
    out.push_back({Kind::move, {{{NSMinX(r), NSMinY(r)}}}});
    out.push_back({Kind::line, {{{NSMaxX(r), NSMinY(r)}}}});
    out.push_back({Kind::line, {{{NSMaxX(r), NSMaxY(r)}}}});
    out.push_back({Kind::line, {{{NSMinX(r), NSMaxY(r)}}}});
    out.push_back({Kind::close, {}});
}

} // namespace

std::vector<PathElement> elementsOf(const Path& path) {
    std::vector<PathElement> result;
    switch (path.shape) {
    case PathShape::elements:
        return path.elements;
    case PathShape::rectangle:
        appendRectangle(result, path.bounds);
        break;
    case PathShape::roundedRectangle:
        appendRounded(result, path.bounds, path.xRadius, path.yRadius);
        break;
    case PathShape::oval:
        appendRounded(result, path.bounds, path.bounds.size.width / 2, path.bounds.size.height / 2);
        break;
    }
    return result;
}

} // namespace zr
