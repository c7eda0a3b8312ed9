// SPDX-License-Identifier: MIT
#pragma once

#include <FoundationBackends/Host.h>

#include <QObject>
#include <QThreadPool>
#include <QTimer>

#include <map>
#include <mutex>

namespace zr::qt {

// The main queue as events of the main thread, in all event loops, modal ones included; the global queue as a
// pool of threads. Blocks are handed over under our own lock.
class QtQueues final : public QObject, public backend::Queues {
public:
    QtQueues();
    ~QtQueues() override;

    std::uint64_t now() const override;
    void postToMain(std::uint64_t when, std::function<void()> block) override;
    void postToGlobal(std::function<void()> block) override;
    bool isMainThread() const override;

    // Waits for background blocks that are running, and drops all others, so that what blocks hold dies on the
    // main thread.
    void finish();

protected:
    bool event(QEvent* event) override;

private:
    void runDueBlocks();
    void wake();
    void waitForNext();

    QTimer timer_;
    QThreadPool pool_;
    std::mutex lock_;
    std::multimap<std::uint64_t, std::function<void()>> blocks_; // guarded by lock_
    bool wakePosted_ = false;                                    // guarded by lock_
};

} // namespace zr::qt
