// SPDX-License-Identifier: MIT
#include "QtTest.h"

#include <ZRUIKit/KitFoundation.h>

#include <QElapsedTimer>
#include <QEventLoop>

#include <atomic>
#include <thread>

namespace zr {

using testing::ElementsAre;

class QtQueueing : public test::QtTest {
protected:
    // Runs an event loop until a block ends it.
    void run() { loop_.exec(); }
    QEventLoop loop_;
};

TEST_F(QtQueueing, BlocksRunInTheOrderTheyCameAndNotAtOnce) {
    std::vector<int> order;
    OnMainQueue([&] {
        order.push_back(1);
        OnMainQueue([&] {
            order.push_back(3);
            loop_.quit();
        });
    });
    OnMainQueue([&] { order.push_back(2); });
    EXPECT_TRUE(order.empty());
    run();
    EXPECT_THAT(order, ElementsAre(1, 2, 3));
}

TEST_F(QtQueueing, ADelayedBlockIsNeverEarly) {
    QElapsedTimer timer;
    timer.start();
    qint64 took = 0;
    std::vector<int> order;
    AfterDelay(0.05, [&] {
        order.push_back(2);
        took = timer.nsecsElapsed();
        loop_.quit();
    });
    AfterDelay(0.01, [&] { order.push_back(1); });
    run();
    EXPECT_GE(took, 50'000'000);
    EXPECT_THAT(order, ElementsAre(1, 2));
}

TEST_F(QtQueueing, BackgroundWorkRunsElsewhereAndItsResultHere) {
    std::thread::id worker;
    bool doneOnMain = false, workOnMain = true;
    InBackground(
        [&] {
            worker = std::this_thread::get_id();
            workOnMain = NSThread::isMainThread();
            return 42;
        },
        [&](int result) {
            EXPECT_EQ(result, 42);
            doneOnMain = NSThread::isMainThread();
            loop_.quit();
        });
    run();
    EXPECT_NE(worker, std::this_thread::get_id());
    EXPECT_FALSE(workOnMain);
    EXPECT_TRUE(doneOnMain);
}

TEST_F(QtQueueing, ABlockThatRunsAnEventLoopDoesNotHoldUpTheOthers) {
    std::vector<int> order;
    OnMainQueue([&] {
        order.push_back(1);
        QEventLoop inner;
        OnMainQueue([&] { inner.quit(); });
        inner.exec();
        order.push_back(3);
        loop_.quit();
    });
    OnMainQueue([&] { order.push_back(2); });
    run();
    EXPECT_THAT(order, ElementsAre(1, 2, 3));
}

TEST_F(QtQueueing, BlocksFromManyThreadsAllRunOnTheMainThread) {
    std::atomic<int> left = 400;
    std::vector<std::thread> threads;
    threads.reserve(4);
    int here = 0;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            for (int k = 0; k < 100; ++k)
                OnMainQueue([&] {
                    here += NSThread::isMainThread();
                    if (--left == 0) loop_.quit();
                });
        });
    run();
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(here, 400);
}

TEST(QtQueues, WhatIsLeftAtTheEndIsDroppedAndLetsGoOfWhatItHolds) {
    const auto held = std::make_shared<int>(1);
    bool ran = false;
    {
        const zr::qt::Platform platform;
        AfterDelay(1000, [held, &ran] { ran = true; });
        dispatch_async(dispatch_get_global_queue(0, 0), [held] { OnMainQueue([held] {}); });
    }
    EXPECT_FALSE(ran);
    EXPECT_EQ(held.use_count(), 1);
}

} // namespace zr
