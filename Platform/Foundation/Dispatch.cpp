#include "HostState.h"

#include <Foundation/Dispatch.h>

namespace zr {

dispatch_time_t dispatch_time(dispatch_time_t when, std::int64_t nanoseconds) {
    if (when == DISPATCH_TIME_NOW) {
        const auto queues = backend::current()->queues;
        when = queues ? queues->now() : 0;
    }
    return when + static_cast<std::uint64_t>(nanoseconds);
}

void dispatch_async(dispatch_queue_t queue, dispatch_block_t block) {
    const auto queues = backend::current()->queues;
    if (!queues) return;
    if (queue == dispatch_queue_t::main)
        queues->postToMain(queues->now(), std::move(block));
    else
        queues->postToGlobal(std::move(block));
}

void dispatch_after(dispatch_time_t when, dispatch_queue_t queue, dispatch_block_t block) {
    const auto queues = backend::current()->queues;
    if (!queues) return;
    if (queue == dispatch_queue_t::main) {
        queues->postToMain(when, std::move(block));
        return;
    }
    queues->postToMain(when, [block = std::move(block)]() mutable {
        dispatch_async(dispatch_queue_t::global, std::move(block));
    });
}

bool NSThread::isMainThread() {
    const auto queues = backend::current()->queues;
    return !queues || queues->isMainThread();
}

} // namespace zr
