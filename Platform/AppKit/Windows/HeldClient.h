// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/NSLog.h>
#include <Foundation/NSObject.h>

#include <exception>
#include <functional>
#include <type_traits>

namespace zr {

// Does it for the object. What a delegate throws meanwhile ends here, in the log: the window system knows
// nothing of it, and goes on.
template <class Act>
auto contained(const NSObject& object, const Act& act) -> std::invoke_result_t<Act> {
    const auto log = [&](const char* what) {
        NSLog("%@: an event ends with what was thrown while it was handled: %@", object.class_().name, what);
    };
    try {
        return act();
    } catch (const std::exception& thrown) {
        log(thrown.what());
    } catch (...) {
        log("no exception");
    }
    return std::invoke_result_t<Act>();
}

// What the port sees of an object. Whoever is called in turn may let go of the object, so it is held for every
// call, here and nowhere else.
template <class Object, class... Interfaces>
class HeldClient : public Interfaces... {
public:
    explicit HeldClient(Object& owner) : self(owner) {}

protected:
    // A call from below.
    template <class Act>
    std::invoke_result_t<Act> entered(const Act& act) const {
        const auto held = retained(&self);
        return contained(self, act);
    }
    // (By std::invoke: a call through a captured pointer is miscompiled by g++ 12 under the sanitizers.)
    template <class Result, class... Parameters, class... Arguments>
    Result entered(Result (Object::*act)(Parameters...), const Arguments&... arguments) const {
        return entered([&]() -> Result { return std::invoke(act, self, arguments...); });
    }

    template <class Act>
    auto holding(const Act& act) const {
        const auto held = retained(&self);
        return act();
    }

    Object& self;
};

} // namespace zr
