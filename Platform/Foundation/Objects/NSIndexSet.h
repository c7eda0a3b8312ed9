// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <limits>
#include <set>
#include <stdexcept>
#include <utility>
#include <vector>

namespace zr {

// Places in a list, in order.
using NSIndexSet = std::set<std::size_t>;

inline constexpr auto NSNotFound = static_cast<std::size_t>(std::numeric_limits<std::ptrdiff_t>::max());

inline std::size_t firstIndex(const NSIndexSet& indexes) {
    return indexes.empty() ? NSNotFound : *indexes.begin();
}

// The indexes mean places before the removal; what stays keeps its order. Throws std::out_of_range, the list
// unchanged, when one of them lies beyond the end.
template <class Element>
void removeObjectsAtIndexes(std::vector<Element>& list, const NSIndexSet& indexes) {
    if (indexes.empty()) return;
    if (*indexes.rbegin() >= list.size()) throw std::out_of_range("an index beyond the end of the list");
    auto removed = indexes.begin();
    std::size_t kept = *removed;
    for (std::size_t i = kept; i < list.size(); ++i) {
        if (removed != indexes.end() && *removed == i)
            ++removed;
        else
            list[kept++] = std::move(list[i]);
    }
    list.erase(list.begin() + static_cast<std::ptrdiff_t>(kept), list.end());
}

} // namespace zr
