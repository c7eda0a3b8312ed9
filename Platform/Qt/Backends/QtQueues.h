// SPDX-License-Identifier: MIT
#pragma once

#include <FoundationBackends/Host.h>

#include <map>
#include <memory>
#include <mutex>
#include <thread>

namespace zr::qt {

// The main queue as events of the main thread, in all event loops, modal ones included; the global queue as a
// pool of threads. Blocks are handed over under our own lock. Made and finished on the main thread; any thread
// may be the last to hold the queues.
class QtQueues final : public backend::Queues {
public:
    QtQueues();
    ~QtQueues() override;

    std::uint64_t now() const override;
    void postToMain(std::uint64_t when, std::function<void()> block) override;
    void postToGlobal(std::function<void()> block) override;
    bool isMainThread() const override;

    // Waits for background blocks that are running, and drops all others and those that still come, so that
    // what blocks hold dies on the main thread. What is Qt's goes here.
    void finish();

private:
    class Pump;

    void runDueBlocks();
    void wake();
    void waitForNext();

    const std::thread::id mainThread_ = std::this_thread::get_id();
    std::mutex lock_;
    std::unique_ptr<Pump> pump_;                                 // replaced under lock_; null once finished
    std::multimap<std::uint64_t, std::function<void()>> blocks_; // guarded by lock_
    bool wakePosted_ = false;                                    // guarded by lock_
    bool finishing_ = false;                                     // guarded by lock_
};

} // namespace zr::qt
