// SPDX-License-Identifier: MIT
#pragma once

#include <utility>

namespace zr {

// Gives a variable another value while it lives, also where an exception ends that. Whoever has the variable is
// held longer.
template <class T>
class ValueGuard {
public:
    ValueGuard(T& place, T value) : place_(place), before_(std::exchange(place, std::move(value))) {}
    ~ValueGuard() { place_ = std::move(before_); }
    ValueGuard(const ValueGuard&) = delete;
    ValueGuard& operator=(const ValueGuard&) = delete;

private:
    T& place_;
    T before_;
};

} // namespace zr
