// SPDX-License-Identifier: MIT
#include "QtQueues.h"

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <QThread>
#include <QThreadPool>
#include <QTimer>

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

// What belongs to the main thread.
class QtQueues::Pump final : public QObject {
public:
    explicit Pump(QtQueues& owner) : owner_(owner) {
        // Blocks that wait for the disk must not keep others from running.
        constexpr int kFewestThreads = 8;
        pool.setMaxThreadCount(std::max(kFewestThreads, QThread::idealThreadCount()));
        timer.setSingleShot(true);
        timer.setTimerType(Qt::PreciseTimer);
        QObject::connect(&timer, &QTimer::timeout, this, [this] { owner_.runDueBlocks(); });
    }

    QTimer timer;
    QThreadPool pool;

protected:
    bool event(QEvent* event) override {
        if (event->type() != kWakeEvent) return QObject::event(event);
        {
            const std::lock_guard guard(owner_.lock_);
            owner_.wakePosted_ = false;
        }
        owner_.runDueBlocks();
        return true;
    }

private:
    QtQueues& owner_;
};

QtQueues::QtQueues() : pump_(std::make_unique<Pump>(*this)) {}

QtQueues::~QtQueues() { finish(); }

void QtQueues::finish() {
    if (!pump_) return;
    {
        const std::lock_guard guard(lock_);
        finishing_ = true;
    }
    pump_->pool.clear();
    pump_->pool.waitForDone();
    std::unique_ptr<Pump> gone;
    decltype(blocks_) dropped;
    const std::lock_guard guard(lock_);
    gone.swap(pump_);
    dropped.swap(blocks_);
}

std::uint64_t QtQueues::now() const {
    const auto time = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::nanoseconds>(time).count());
}

void QtQueues::postToMain(std::uint64_t when, std::function<void()> block) {
    const std::lock_guard guard(lock_);
    if (finishing_) return;
    const bool first = blocks_.empty() || when < blocks_.begin()->first;
    blocks_.emplace(when, std::move(block));
    if (first) wake();
}

void QtQueues::postToGlobal(std::function<void()> block) {
    const std::lock_guard guard(lock_);
    if (finishing_) return;
    pump_->pool.start([block = std::move(block)] {
        nameThisThread();
        block();
    });
}

bool QtQueues::isMainThread() const { return std::this_thread::get_id() == mainThread_; }

void QtQueues::wake() {
    if (std::exchange(wakePosted_, true)) return;
    QCoreApplication::postEvent(pump_.get(), new QEvent(kWakeEvent));
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
    if (blocks_.empty() || !pump_) return;
    const std::uint64_t when = blocks_.begin()->first, time = now();
    if (when <= time) {
        wake();
        return;
    }
    constexpr std::uint64_t kMillisecond = 1'000'000;
    const std::uint64_t milliseconds = (when - time + kMillisecond - 1) / kMillisecond;
    pump_->timer.start(static_cast<int>(std::min<std::uint64_t>(milliseconds, 1'000'000'000)));
}

} // namespace zr::qt
