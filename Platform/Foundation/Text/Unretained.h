// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Compiler.h>

#include <concepts>
#include <cstddef>
#include <memory>
#include <string_view>

namespace zr {

namespace detail {
ZR_EXPORT void logHeldByNobody(std::string_view setter);
}

// What setters of delegates, data sources and targets take: null, or an object that somebody else holds, as a
// shared or a weak pointer. They do not retain it: an object that nobody else holds, because it is given by the
// only pointer there is or is gone already, is named in one log line and counts as gone.
template <class T>
class Unretained {
public:
    using element_type = T;

    Unretained() = default;
    Unretained(std::nullptr_t) {}
    template <class U>
    requires std::convertible_to<U*, T*> Unretained(const std::shared_ptr<U>& object)
        : object_(object), given_(object != nullptr), held_(object.use_count() > 0) {}
    // A temporary, or one that was moved here, holds it no longer than the call.
    template <class U>
    requires std::convertible_to<U*, T*> Unretained(std::shared_ptr<U>&& object)
        : object_(object), given_(object != nullptr), held_(object.use_count() > 1) {}
    template <class U>
    requires std::convertible_to<U*, T*> Unretained(const std::weak_ptr<U>& object)
        : object_(object), given_(isSet(object)), held_(!object.expired()) {}

    // Whether it is an object, be it gone, rather than null.
    bool isGiven() const { return given_; }
    bool isHeld() const { return held_; } // by somebody else
    // What the setter, "-[Class setDelegate:]", is to keep.
    const std::weak_ptr<T>& givenTo(std::string_view setter) const {
        if (given_ && !held_) detail::logHeldByNobody(setter);
        return object_;
    }

private:
    template <class U>
    static bool isSet(const std::weak_ptr<U>& object) {
        const std::weak_ptr<U> never;
        return object.owner_before(never) || never.owner_before(object);
    }

    std::weak_ptr<T> object_;
    bool given_ = false;
    bool held_ = false;
};

} // namespace zr
