// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Compiler.h>

#include <cstdint>
#include <functional>
#include <mutex>
#include <utility>

namespace zr {

// Grand Central Dispatch, as far as the kit uses it. Blocks hold what they capture until they have run or are
// dropped. From any thread. Without an installed host nothing runs. Null throws std::invalid_argument.
using dispatch_block_t = std::function<void()>;
using dispatch_time_t = std::uint64_t; // nanoseconds of the host's monotonic clock
using dispatch_once_t = std::once_flag;

enum class dispatch_queue_t { main, global };

inline constexpr dispatch_time_t DISPATCH_TIME_NOW = 0;
inline constexpr std::int64_t NSEC_PER_SEC = 1'000'000'000;

// Serial, on the main thread.
constexpr dispatch_queue_t dispatch_get_main_queue() { return dispatch_queue_t::main; }
// Concurrent, off the main thread, no order between blocks. The kit uses the default priority, 0.
constexpr dispatch_queue_t dispatch_get_global_queue(long /*priority*/, unsigned long /*flags*/) {
    return dispatch_queue_t::global;
}

// Stays within what can be told: long before the clock's beginning is "at once", beyond its end is its end.
ZR_EXPORT dispatch_time_t dispatch_time(dispatch_time_t when, std::int64_t nanoseconds);
ZR_EXPORT void dispatch_async(dispatch_queue_t queue, dispatch_block_t block);
// Never before its time. Cannot be cancelled.
ZR_EXPORT void dispatch_after(dispatch_time_t when, dispatch_queue_t queue, dispatch_block_t block);
template <class Block>
void dispatch_once(dispatch_once_t& token, Block&& block) {
    std::call_once(token, std::forward<Block>(block));
}

class ZR_EXPORT NSThread {
public:
    // The thread that runs the application's event loop.
    static bool isMainThread();
};

} // namespace zr
