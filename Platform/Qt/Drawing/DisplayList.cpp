#include "DisplayList.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace zr::qt {

namespace {
constexpr double kSmear = 1; // points
}

void DamagedAreas::add(const CGRect& area) {
    constexpr std::size_t kMost = 8; // then everything becomes one
    CGRect whole = NSInsetRect(area, -kSmear, -kSmear);
    for (std::size_t i = 0; i < areas_.size();) {
        if (areas_.size() < kMost && NSIsEmptyRect(NSIntersectionRect(areas_[i], whole))) {
            ++i;
            continue;
        }
        whole = NSUnionRect(areas_[i], whole);
        areas_[i] = areas_.back();
        areas_.pop_back();
        i = 0;
    }
    areas_.push_back(whole);
}

void DisplayList::clear() {
    operations_.clear();
    pictures_.clear();
    outlines_.clear();
    texts_.clear();
    nests_ = false;
}

DisplayList::Operation& DisplayList::add(Kind kind) {
    nests_ = nests_ || kind == Kind::save || kind == Kind::restore || kind == Kind::clip;
    auto& operation = operations_.emplace_back();
    operation.kind = kind;
    return operation;
}

DisplayList::Operation& DisplayList::addPath(Kind kind, const Path& path) {
    auto& operation = add(kind);
    operation.shape = path.shape;
    operation.bounds = path.bounds;
    operation.xRadius = path.xRadius;
    operation.yRadius = path.yRadius;
    if (path.shape == PathShape::elements || kind == Kind::stroke) {
        operation.detail = static_cast<std::uint32_t>(outlines_.size());
        outlines_.push_back({path.elements, 0});
    }
    return operation;
}

void DisplayList::fill(const Path& path, const Colour& colour, NSCompositingOperation compositing) {
    auto& operation = addPath(Kind::fill, path);
    operation.colour = colour;
    operation.compositing = compositing;
}

void DisplayList::stroke(const Path& path, const Colour& colour, const port::StrokeStyle& style) {
    addPath(Kind::stroke, path).colour = colour;
    outlines_.back().lineWidth = style.lineWidth;
}

void DisplayList::image(const port::ImageRepresentations& representations, CGSize imageSize,
                        const CGRect& destination, const CGRect& source, NSCompositingOperation compositing,
                        double fraction) {
    auto& operation = add(Kind::image);
    operation.compositing = compositing;
    operation.bounds = destination;
    operation.detail = static_cast<std::uint32_t>(pictures_.size());
    pictures_.push_back({representations, imageSize, source, fraction});
}

void DisplayList::text(std::string_view text, const FontDescription& font, const Colour& colour,
                       CGPoint origin) {
    auto& operation = add(Kind::text);
    operation.colour = colour;
    operation.bounds.origin = origin;
    operation.detail = static_cast<std::uint32_t>(texts_.size());
    texts_.push_back({std::string(text), font});
}

std::optional<CGRect> DisplayList::area(const Operation& operation) {
    const bool known = operation.kind == Kind::image ||
                       (operation.kind == Kind::fill && operation.shape != PathShape::elements);
    const CGRect& r = operation.bounds;
    const std::array<double, 4> numbers = {r.origin.x, r.origin.y, r.size.width, r.size.height};
    if (!known || !std::ranges::all_of(numbers, [](double number) { return std::isfinite(number); }))
        return std::nullopt;
    return CGRect{{std::min(r.origin.x, NSMaxX(r)), std::min(r.origin.y, NSMaxY(r))},
                  {std::abs(r.size.width), std::abs(r.size.height)}};
}

bool DisplayList::same(const Operation& own, const DisplayList& next, const Operation& theirs) const {
    if (own.kind != theirs.kind || own.shape != theirs.shape || own.compositing != theirs.compositing ||
        own.bounds != theirs.bounds || own.xRadius != theirs.xRadius || own.yRadius != theirs.yRadius ||
        own.colour != theirs.colour)
        return false;
    if (own.kind == Kind::image) return pictures_[own.detail] == next.pictures_[theirs.detail];
    if (own.kind == Kind::text) return texts_[own.detail] == next.texts_[theirs.detail];
    const bool outlined = own.shape == PathShape::elements || own.kind == Kind::stroke;
    return !outlined || outlines_.empty() || outlines_[own.detail] == next.outlines_[theirs.detail];
}

// Of a bar that grew, only the end; of anything else, where it was and where it is.
bool DisplayList::addDifference(const Operation& a, const Operation& b, DamagedAreas& areas) {
    const auto areaA = area(a), areaB = area(b);
    if (!areaA || !areaB) return false;
    // Of a short one, the ends are not painted apart from each other.
    constexpr double kShort = 8;
    const auto isBar = [](const Operation& operation) {
        return operation.kind == Kind::fill && operation.shape != PathShape::oval &&
               operation.bounds.size.width >= 2 * operation.xRadius + kShort &&
               operation.bounds.size.height >= 0;
    };
    const CGRect &r = a.bounds, &s = b.bounds;
    if (!isBar(a) || !isBar(b) || a.shape != b.shape || a.compositing != b.compositing ||
        a.colour != b.colour || a.xRadius != b.xRadius || a.yRadius != b.yRadius || r.origin.y != s.origin.y ||
        r.size.height != s.size.height) {
        areas.add(*areaA);
        areas.add(*areaB);
        return true;
    }
    const auto addEnd = [&](double from, double to) {
        areas.add({{from, r.origin.y}, {to - from, r.size.height}});
    };
    if (NSMinX(r) != NSMinX(s))
        addEnd(std::min(NSMinX(r), NSMinX(s)), std::max(NSMinX(r), NSMinX(s)) + a.xRadius);
    if (NSMaxX(r) != NSMaxX(s))
        addEnd(std::min(NSMaxX(r), NSMaxX(s)) - a.xRadius, std::max(NSMaxX(r), NSMaxX(s)));
    return true;
}

bool DisplayList::compare(const DisplayList& next, DamagedAreas& areas) const {
    const auto &was = operations_, &is = next.operations_;
    std::size_t begin = 0, wasEnd = was.size(), isEnd = is.size();
    while (begin < wasEnd && begin < isEnd && same(was[begin], next, is[begin])) ++begin;
    while (wasEnd > begin && isEnd > begin && same(was[wasEnd - 1], next, is[isEnd - 1])) --wasEnd, --isEnd;
    if (begin == wasEnd && begin == isEnd) return true;
    if (nests_ || next.nests_) return false;
    if (wasEnd == isEnd) {
        for (std::size_t i = begin; i < wasEnd; ++i)
            if (!same(was[i], next, is[i]) && !addDifference(was[i], is[i], areas)) return false;
        return true;
    }
    const auto addAll = [&](const std::vector<Operation>& operations, std::size_t end) {
        for (std::size_t i = begin; i < end; ++i) {
            const auto painted = area(operations[i]);
            if (!painted) return false;
            areas.add(*painted);
        }
        return true;
    };
    return addAll(was, wasEnd) && addAll(is, isEnd);
}

void DisplayList::paint(const Operation& operation, port::Canvas& canvas) const {
    const auto path = [&] {
        Path result{operation.shape, operation.bounds, operation.xRadius, operation.yRadius};
        if (operation.shape == PathShape::elements) result.elements = outlines_[operation.detail].elements;
        return result;
    };
    switch (operation.kind) {
    case Kind::save:
        canvas.save();
        break;
    case Kind::restore:
        canvas.restore();
        break;
    case Kind::clip:
        canvas.clip(path());
        break;
    case Kind::fill:
        canvas.fill(path(), operation.colour, operation.compositing);
        break;
    case Kind::stroke:
        canvas.stroke(path(), operation.colour, {outlines_[operation.detail].lineWidth});
        break;
    case Kind::image: {
        const auto& picture = pictures_[operation.detail];
        canvas.image(picture.representations, picture.size, operation.bounds, picture.source,
                     operation.compositing, picture.fraction);
        break;
    }
    case Kind::text: {
        const auto& text = texts_[operation.detail];
        canvas.text(text.text, text.font, operation.colour, operation.bounds.origin);
        break;
    }
    }
}

bool DisplayList::touches(const Operation& operation, const CGRect& part) const {
    const auto painted = nests_ ? std::nullopt : area(operation);
    return !painted || !NSIsEmptyRect(NSIntersectionRect(NSInsetRect(*painted, -kSmear, -kSmear), part));
}

bool DisplayList::touches(const CGRect& part) const {
    return std::ranges::any_of(operations_, [&](const auto& operation) { return touches(operation, part); });
}

void DisplayList::replay(port::Canvas& canvas, const CGRect& part) const {
    for (const auto& operation : operations_)
        if (touches(operation, part)) paint(operation, canvas);
}

} // namespace zr::qt
