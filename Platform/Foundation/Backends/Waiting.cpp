// SPDX-License-Identifier: MIT
#include "Waiting.h"

#include <mutex>
#include <utility>
#include <vector>

namespace zr::backend {

namespace {

struct Waiting {
    std::mutex lock;
    bool mayWait = true; // guarded by the lock, like the observers
    std::vector<std::function<void(bool)>> observers;
};

// Leaked on purpose: threads may ask until the process ends.
Waiting& waiting() {
    static auto* const state = new Waiting;
    return *state;
}

} // namespace

void observeWaiting(std::function<void(bool mayWait)> observer) {
    auto& state = waiting();
    const std::lock_guard guard(state.lock);
    observer(state.mayWait);
    state.observers.push_back(std::move(observer));
}

void setMayWait(bool mayWait) {
    auto& state = waiting();
    const std::lock_guard guard(state.lock);
    state.mayWait = mayWait;
    for (const auto& observer : state.observers) observer(mayWait);
}

} // namespace zr::backend
