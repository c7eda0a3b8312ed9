// SPDX-License-Identifier: MIT
#include "HeadlessQueues.h"

#include <algorithm>
#include <utility>

namespace zr::headless {

Queues::Queues(bool withWorker) {
    if (withWorker) worker_ = std::thread([this] { work(); });
}

Queues::~Queues() { dropAll(); }

std::uint64_t Queues::now() const {
    const std::lock_guard guard(lock_);
    return now_;
}

void Queues::postToMain(std::uint64_t when, std::function<void()> block) {
    const std::lock_guard guard(lock_);
    main_.emplace(std::max(when, now_), std::move(block));
}

void Queues::postToGlobal(std::function<void()> block) {
    {
        const std::lock_guard guard(lock_);
        global_.push_back(std::move(block));
    }
    changed_.notify_all();
}

bool Queues::isMainThread() const { return std::this_thread::get_id() == mainThread_ && !playingBackground_; }

std::size_t Queues::runMain(std::uint64_t until) {
    std::size_t count = 0;
    while (true) {
        std::function<void()> block;
        {
            const std::lock_guard guard(lock_);
            const auto first = main_.begin();
            if (first == main_.end() || first->first > until) {
                now_ = std::max(now_, until);
                return count;
            }
            now_ = std::max(now_, first->first);
            block = std::move(first->second);
            main_.erase(first);
        }
        block();
        ++count;
    }
}

std::size_t Queues::runGlobal() {
    if (worker_.joinable()) {
        std::unique_lock guard(lock_);
        changed_.wait(guard, [this] { return global_.empty() && !working_; });
        return std::exchange(finished_, 0);
    }
    struct Background {
        explicit Background(bool& flag) : playing(flag), before(std::exchange(flag, true)) {}
        ~Background() { playing = before; }
        bool& playing;
        bool before;
    };
    std::size_t count = 0;
    for (std::size_t waiting = waitingForGlobal(); waiting > 0; --waiting, ++count) {
        const Background background(playingBackground_);
        std::function<void()> block; // what it holds goes in the background, too
        {
            const std::lock_guard guard(lock_);
            if (global_.empty()) break; // the last block ran or dropped the rest
            block = std::move(global_.front());
            global_.pop_front();
        }
        block();
    }
    return count;
}

void Queues::work() {
    std::unique_lock guard(lock_);
    while (true) {
        changed_.wait(guard, [this] { return ending_ || !global_.empty(); });
        if (ending_) return;
        auto block = std::move(global_.front());
        global_.pop_front();
        working_ = true;
        guard.unlock();
        block();
        block = nullptr; // what it holds goes before it counts as done
        guard.lock();
        working_ = false;
        ++finished_;
        changed_.notify_all();
    }
}

std::optional<std::uint64_t> Queues::nextOnMain() const {
    const std::lock_guard guard(lock_);
    return main_.empty() ? std::nullopt : std::optional(main_.begin()->first);
}

std::size_t Queues::waitingForGlobal() const {
    const std::lock_guard guard(lock_);
    return global_.size();
}

void Queues::dropAll() {
    {
        const std::lock_guard guard(lock_);
        ending_ = true;
    }
    changed_.notify_all();
    // Here and not only at the end of life: a block may hold the last reference to the queues.
    if (worker_.joinable()) worker_.join();
    decltype(main_) main;
    decltype(global_) global;
    const std::lock_guard guard(lock_);
    main.swap(main_);
    global.swap(global_);
}

} // namespace zr::headless
