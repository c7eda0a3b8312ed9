// SPDX-License-Identifier: MIT
#pragma once

#include <FoundationBackends/Host.h>

#include <condition_variable>
#include <deque>
#include <map>
#include <mutex>
#include <optional>
#include <thread>

namespace zr::headless {

// Queues under a virtual clock. Background blocks wait for runGlobal(), which runs them on the calling thread
// but as if they were not on the main one, or, with a worker, run at once on a thread of their own.
class Queues final : public backend::Queues {
public:
    explicit Queues(bool withWorker);
    ~Queues() override;

    std::uint64_t now() const override;
    void postToMain(std::uint64_t when, std::function<void()> block) override;
    void postToGlobal(std::function<void()> block) override;
    bool isMainThread() const override;

    // Runs blocks of the main queue in order, the clock moving on from each to the next, then sets it to
    // `until`. Answers how many have run.
    std::size_t runMain(std::uint64_t until);
    // Runs what waits for the background now; with a worker, waits until it has nothing left. Answers how many
    // have run.
    std::size_t runGlobal();
    std::optional<std::uint64_t> nextOnMain() const;
    std::size_t waitingForGlobal() const;
    // The end: waits for the block that runs on the worker, if there is one, and drops all others.
    void dropAll();

private:
    void work();

    const std::thread::id mainThread_ = std::this_thread::get_id();
    mutable std::mutex lock_;
    std::condition_variable changed_;
    std::uint64_t now_ = 1'000'000'000; // guarded by lock_, like all that follows
    std::multimap<std::uint64_t, std::function<void()>> main_;
    std::deque<std::function<void()>> global_;
    std::size_t finished_ = 0;
    bool working_ = false;
    bool ending_ = false;
    bool playingBackground_ = false; // main thread only
    std::thread worker_;
};

} // namespace zr::headless
