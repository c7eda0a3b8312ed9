// SPDX-License-Identifier: MIT
#include "QtQueues.h"

#include <QCoreApplication>
#include <QEvent>
#include <QThread>

#include <algorithm>
#include <chrono>
#include <utility>

#ifdef __linux__
#include <pthread.h>
#endif

namespace zr::qt {

namespace {
const auto kWakeEvent = static_cast<QEvent::Type>(QEvent::registerEventType());

// Debuggers and profilers tell the queue's threads from those of Qt's own pools.
void nameThisThread() {
#ifdef __linux__
    thread_local bool named = false;
    if (!std::exchange(named, true)) pthread_setname_np(pthread_self(), "ZRUIKit queue");
#endif
}

} // namespace

QtQueues::QtQueues() {
    // Blocks that wait for the disk must not keep others from running.
    constexpr int kFewestThreads = 8;
    pool_.setMaxThreadCount(std::max(kFewestThreads, QThread::idealThreadCount()));
    timer_.setSingleShot(true);
    timer_.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer_, &QTimer::timeout, this, [this] { runDueBlocks(); });
}

QtQueues::~QtQueues() { finish(); }

void QtQueues::finish() {
    pool_.clear();
    pool_.waitForDone();
    decltype(blocks_) dropped;
    const std::lock_guard guard(lock_);
    dropped.swap(blocks_);
}

std::uint64_t QtQueues::now() const {
    const auto time = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::nanoseconds>(time).count());
}

void QtQueues::postToMain(std::uint64_t when, std::function<void()> block) {
    const std::lock_guard guard(lock_);
    const bool first = blocks_.empty() || when < blocks_.begin()->first;
    blocks_.emplace(when, std::move(block));
    if (first) wake();
}

void QtQueues::postToGlobal(std::function<void()> block) {
    pool_.start([block = std::move(block)] {
        nameThisThread();
        block();
    });
}

bool QtQueues::isMainThread() const { return QThread::currentThread() == thread(); }

bool QtQueues::event(QEvent* event) {
    if (event->type() != kWakeEvent) return QObject::event(event);
    {
        const std::lock_guard guard(lock_);
        wakePosted_ = false;
    }
    runDueBlocks();
    return true;
}

void QtQueues::wake() {
    if (std::exchange(wakePosted_, true)) return;
    QCoreApplication::postEvent(this, new QEvent(kWakeEvent));
}

void QtQueues::runDueBlocks() {
    // What is posted meanwhile waits for the next event, so that input and drawing get their turn.
    std::size_t due = 0;
    {
        const std::lock_guard guard(lock_);
        due = static_cast<std::size_t>(std::distance(blocks_.begin(), blocks_.upper_bound(now())));
    }
    for (; due > 0; --due) {
        std::function<void()> block;
        {
            const std::lock_guard guard(lock_);
            // A block may run an event loop of its own, in which others ran.
            if (blocks_.empty() || blocks_.begin()->first > now()) break;
            block = std::move(blocks_.begin()->second);
            blocks_.erase(blocks_.begin());
            // An event loop that the block runs must go on with the rest.
            if (!blocks_.empty()) wake();
        }
        block();
    }
    waitForNext();
}

void QtQueues::waitForNext() {
    const std::lock_guard guard(lock_);
    if (blocks_.empty()) return;
    const std::uint64_t when = blocks_.begin()->first, time = now();
    if (when <= time) {
        wake();
        return;
    }
    constexpr std::uint64_t kMillisecond = 1'000'000;
    const std::uint64_t milliseconds = (when - time + kMillisecond - 1) / kMillisecond;
    timer_.start(static_cast<int>(std::min<std::uint64_t>(milliseconds, 1'000'000'000)));
}

} // namespace zr::qt
