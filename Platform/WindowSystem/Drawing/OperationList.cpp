// SPDX-License-Identifier: MIT
#include <WindowSystem/Drawing.h>

#include <algorithm>

namespace zr::port {

namespace {

constexpr double kSmear = 1; // points

std::optional<Rect> boundsOf(const Operation& operation) {
    return std::visit([](const auto& one) { return one.bounds(); }, operation);
}

// Outside of which nothing changes when the operation comes or goes.
std::optional<Rect> areaOf(const Operation& operation) {
    const bool inParts = std::visit(
        [](const auto& one) {
            if constexpr (requires { one.paintsInParts(); })
                return one.paintsInParts();
            else
                return true;
        },
        operation);
    return inParts ? boundsOf(operation) : std::nullopt;
}

// Where the operation was and where the next one is, unless it knows better.
bool addDifference(const Operation& was, const Operation& is, DamagedAreas& areas) {
    const bool added = std::visit(
        [&]<class T>(const T& one) {
            if constexpr (requires { one.addDifference(one, areas); })
                if (const auto* const next = std::get_if<T>(&is)) return one.addDifference(*next, areas);
            return false;
        },
        was);
    if (added) return true;
    const auto before = areaOf(was), after = areaOf(is);
    if (!before || !after) return false;
    areas.add(*before);
    areas.add(*after);
    return true;
}

} // namespace

void DamagedAreas::add(const Rect& area) {
    constexpr std::size_t kMost = 8; // then everything becomes one
    Rect whole = NSInsetRect(area, -kSmear, -kSmear);
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

bool OperationList::touches(const Operation& operation, const Rect& part) const {
    const auto painted = nests_ ? std::nullopt : boundsOf(operation);
    return !painted || !NSIsEmptyRect(NSIntersectionRect(NSInsetRect(*painted, -kSmear, -kSmear), part));
}

bool OperationList::touches(const Rect& part) const {
    return std::ranges::any_of(operations_, [&](const auto& operation) { return touches(operation, part); });
}

// Where a list clips, smooth edges come out a little different when only a part is painted.
bool OperationList::compare(const OperationList& next, DamagedAreas& areas) const {
    const auto &was = operations_, &is = next.operations_;
    std::size_t begin = 0, wasEnd = was.size(), isEnd = is.size();
    while (begin < wasEnd && begin < isEnd && was[begin] == is[begin]) ++begin;
    while (wasEnd > begin && isEnd > begin && was[wasEnd - 1] == is[isEnd - 1]) --wasEnd, --isEnd;
    if (begin == wasEnd && begin == isEnd) return true;
    if (nests_ || next.nests_) return false;
    if (wasEnd == isEnd) {
        for (std::size_t i = begin; i < wasEnd; ++i)
            if (was[i] != is[i] && !addDifference(was[i], is[i], areas)) return false;
        return true;
    }
    const auto addAll = [&](const std::vector<Operation>& operations, std::size_t end) {
        for (std::size_t i = begin; i < end; ++i) {
            const auto painted = areaOf(operations[i]);
            if (!painted) return false;
            areas.add(*painted);
        }
        return true;
    };
    return addAll(was, wasEnd) && addAll(is, isEnd);
}

} // namespace zr::port
