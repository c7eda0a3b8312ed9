// SPDX-License-Identifier: MIT
#include <Foundation/Dispatch.h>
#include <FoundationBackends/InstalledHost.h>

#include <algorithm>
#include <limits>
#include <stdexcept>

namespace zr {

dispatch_time_t dispatch_time(dispatch_time_t when, std::int64_t nanoseconds) {
    if (when == DISPATCH_TIME_NOW) {
        const auto queues = backend::current()->host.queues;
        when = queues ? queues->now() : 0;
    }
    const auto distance = static_cast<std::uint64_t>(nanoseconds);
    constexpr dispatch_time_t earliest = DISPATCH_TIME_NOW + 1,
                              latest = std::numeric_limits<dispatch_time_t>::max();
    if (nanoseconds < 0) return when + distance < when ? std::max(when + distance, earliest) : earliest;
    return distance <= latest - when ? when + distance : latest;
}

namespace {
void demand(const dispatch_block_t& block) {
    if (!block) throw std::invalid_argument("dispatch: the block is null");
}
} // namespace

void dispatch_async(dispatch_queue_t queue, dispatch_block_t block) {
    demand(block);
    const auto queues = backend::current()->host.queues;
    if (!queues) return;
    if (queue == dispatch_queue_t::main)
        queues->postToMain(queues->now(), std::move(block));
    else
        queues->postToGlobal(std::move(block));
}

void dispatch_after(dispatch_time_t when, dispatch_queue_t queue, dispatch_block_t block) {
    demand(block);
    const auto queues = backend::current()->host.queues;
    if (!queues) return;
    when = std::max(when, queues->now()); // what is due already does not overtake what waits
    if (queue == dispatch_queue_t::main) {
        queues->postToMain(when, std::move(block));
        return;
    }
    queues->postToMain(when, [block = std::move(block)]() mutable {
        dispatch_async(dispatch_queue_t::global, std::move(block));
    });
}

bool NSThread::isMainThread() {
    const auto queues = backend::current()->host.queues;
    return !queues || queues->isMainThread();
}

} // namespace zr
