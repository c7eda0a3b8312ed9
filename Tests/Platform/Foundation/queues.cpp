// SPDX-License-Identifier: MIT
#include <Foundation/Dispatch.h>
#include <FoundationBackends/Host.h>
#include <ZRUIKitHeadless/Headless.h>
#include <ZRUIKitHeadless/HeadlessQueues.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <limits>
#include <memory>
#include <stdexcept>
#include <thread>

namespace zr {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr auto kMain = dispatch_get_main_queue();
constexpr auto kGlobal = dispatch_get_global_queue(0, 0);

class StoppedQueues : public testing::Test {
protected:
    void post(const std::string& name) {
        dispatch_async(kMain, [this, name] { ran.push_back(name); });
    }
    void postAfter(std::int64_t nanoseconds, const std::string& name) {
        dispatch_after(dispatch_time(DISPATCH_TIME_NOW, nanoseconds), kMain,
                       [this, name] { ran.push_back(name); });
    }

    headless::Platform platform;
    std::vector<std::string> ran;
};

// Foundation on queues of the test's own, so that the clock can be read to the nanosecond.
class ClockTest : public testing::Test {
protected:
    void SetUp() override {
        backend::Host host;
        host.queues = queues;
        backend::install(std::move(host));
    }
    void TearDown() override { backend::uninstall(); }

    const std::shared_ptr<headless::Queues> queues = std::make_shared<headless::Queues>(false);
};

// Tells when it goes, like an object that a block holds.
struct Held {
    explicit Held(std::function<void()> atEnd) : end(std::move(atEnd)) {}
    ~Held() { end(); }
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;
    std::function<void()> end;
};

headless::Options withWorker() {
    headless::Options options;
    options.workerThread = true;
    return options;
}

} // namespace

using DispatchOrder = StoppedQueues;
using DispatchTime = ClockTest;
using BackgroundBlocks = StoppedQueues;

TEST_F(DispatchOrder, PostingRunsNothingYet) {
    post("a");
    dispatch_async(kGlobal, [this] { ran.push_back("b"); });
    EXPECT_THAT(ran, IsEmpty());
}

TEST_F(DispatchOrder, TheMainQueueKeepsItsOrder) {
    for (const auto* name : {"a", "b", "c"}) post(name);
    EXPECT_EQ(platform.runMainQueue(), 3u);
    EXPECT_THAT(ran, ElementsAre("a", "b", "c"));
    EXPECT_EQ(platform.runMainQueue(), 0u);
}

TEST_F(DispatchOrder, ABlockPostedFromABlockRunsAfterThoseThatWait) {
    dispatch_async(kMain, [this] {
        ran.push_back("a");
        post("posted");
        ran.push_back("a ends");
    });
    post("b");
    platform.runMainQueue();
    EXPECT_THAT(ran, ElementsAre("a", "a ends", "b", "posted"));
}

TEST_F(DispatchOrder, DelayedBlocksRunInTheOrderOfTheirTimes) {
    postAfter(2 * NSEC_PER_SEC, "two");
    postAfter(1 * NSEC_PER_SEC, "one");
    postAfter(2 * NSEC_PER_SEC, "two again");
    post("at once");
    platform.advance(5);
    EXPECT_THAT(ran, ElementsAre("at once", "one", "two", "two again"));
}

TEST_F(DispatchOrder, ABlockPostedAtATimeGoesBehindWhatIsDueThen) {
    dispatch_after(dispatch_time(DISPATCH_TIME_NOW, NSEC_PER_SEC), kMain, [this] {
        ran.push_back("first");
        post("posted");
    });
    postAfter(NSEC_PER_SEC, "second");
    postAfter(NSEC_PER_SEC + 1, "later");
    platform.advance(2);
    EXPECT_THAT(ran, ElementsAre("first", "second", "posted", "later"));
}

TEST_F(DispatchOrder, ADelayInThePastOvertakesNothing) {
    platform.advance(10);
    post("a");
    dispatch_after(DISPATCH_TIME_NOW, kMain, [this] { ran.push_back("now"); });
    dispatch_after(dispatch_time(DISPATCH_TIME_NOW, -5 * NSEC_PER_SEC), kMain,
                   [this] { ran.push_back("past"); });
    postAfter(std::numeric_limits<std::int64_t>::min(), "long past");
    post("b");
    platform.runMainQueue();
    EXPECT_THAT(ran, ElementsAre("a", "now", "past", "long past", "b"));
}

TEST_F(DispatchOrder, ADelayedBlockIsNeverEarly) {
    postAfter(NSEC_PER_SEC / 2, "half");
    platform.advance(0.25);
    platform.advance(0.125);
    EXPECT_THAT(ran, IsEmpty());
    platform.advance(0.125);
    EXPECT_THAT(ran, ElementsAre("half"));
}

TEST_F(DispatchOrder, ADelayMayLeadToTheGlobalQueue) {
    bool main = true;
    dispatch_after(dispatch_time(DISPATCH_TIME_NOW, NSEC_PER_SEC), kGlobal,
                   [&] { main = NSThread::isMainThread(); });
    platform.runUntilIdle();
    EXPECT_EQ(platform.waitingForGlobalQueue(), 0u);
    platform.advance(1);
    EXPECT_EQ(platform.waitingForGlobalQueue(), 1u);
    EXPECT_EQ(platform.runGlobalQueue(), 1u);
    EXPECT_FALSE(main);
}

TEST_F(DispatchTime, IsTheClockAndADistance) {
    const auto now = queues->now();
    EXPECT_EQ(dispatch_time(DISPATCH_TIME_NOW, 0), now);
    EXPECT_EQ(dispatch_time(DISPATCH_TIME_NOW, 300'000'000), now + 300'000'000);
    EXPECT_EQ(dispatch_time(dispatch_time(DISPATCH_TIME_NOW, 5), 7), now + 12);
    EXPECT_EQ(dispatch_time(now, -5), now - 5);
    queues->runMain(now + 42);
    EXPECT_EQ(dispatch_time(DISPATCH_TIME_NOW, 0), now + 42);
}

TEST_F(DispatchTime, StaysWithinTheClock) {
    constexpr auto end = std::numeric_limits<dispatch_time_t>::max();
    EXPECT_EQ(dispatch_time(5, -4), 1u);
    for (const std::int64_t distance :
         {std::int64_t{-5}, std::int64_t{-6}, std::numeric_limits<std::int64_t>::min()})
        EXPECT_EQ(dispatch_time(5, distance), 1u) << distance; // long ago, and not DISPATCH_TIME_NOW
    EXPECT_EQ(dispatch_time(end - 5, 5), end);
    EXPECT_EQ(dispatch_time(end - 5, 6), end);
    EXPECT_EQ(dispatch_time(end, std::numeric_limits<std::int64_t>::max()), end);
}

TEST_F(DispatchTime, ABlockRunsExactlyAtItsTime) {
    const auto due = dispatch_time(DISPATCH_TIME_NOW, 300'000'000);
    std::uint64_t ranAt = 0;
    dispatch_after(due, kMain, [&] { ranAt = queues->now(); });
    EXPECT_EQ(queues->nextOnMain(), due);
    EXPECT_EQ(queues->runMain(due - 1), 0u);
    EXPECT_EQ(ranAt, 0u);
    EXPECT_EQ(queues->runMain(due + 1000), 1u);
    EXPECT_EQ(ranAt, due);
    EXPECT_EQ(queues->now(), due + 1000);
}

TEST_F(DispatchTime, TheClockNeverGoesBack) {
    const auto now = queues->now();
    EXPECT_EQ(queues->runMain(now - 100), 0u);
    EXPECT_EQ(queues->now(), now);
}

TEST_F(BackgroundBlocks, KnowThatTheyAreNotOnTheMainThread) {
    std::vector<bool> main = {NSThread::isMainThread()};
    dispatch_async(kGlobal, [&] {
        main.push_back(NSThread::isMainThread());
        dispatch_async(kMain, [&] { main.push_back(NSThread::isMainThread()); });
    });
    platform.runUntilIdle();
    main.push_back(NSThread::isMainThread());
    EXPECT_THAT(main, ElementsAre(true, false, true, true));
}

TEST_F(BackgroundBlocks, RunWhenTheyAreStepped) {
    dispatch_async(kGlobal, [this] {
        ran.push_back("a");
        dispatch_async(kGlobal, [this] { ran.push_back("next step"); });
    });
    dispatch_async(kGlobal, [this] { ran.push_back("b"); });
    EXPECT_EQ(platform.waitingForGlobalQueue(), 2u);
    EXPECT_EQ(platform.runGlobalQueue(), 2u);
    EXPECT_EQ(ran.size(), 2u);
    EXPECT_EQ(platform.runGlobalQueue(), 1u);
    EXPECT_EQ(ran.back(), "next step");
}

TEST_F(BackgroundBlocks, MayStepOthers) {
    std::vector<bool> main;
    dispatch_async(kGlobal, [&] {
        platform.runGlobalQueue();
        main.push_back(NSThread::isMainThread());
    });
    dispatch_async(kGlobal, [&] { main.push_back(NSThread::isMainThread()); });
    platform.runGlobalQueue();
    EXPECT_THAT(main, ElementsAre(false, false));
    EXPECT_TRUE(NSThread::isMainThread());
}

TEST_F(BackgroundBlocks, AnExceptionLeavesTheMainThreadTheMainThread) {
    dispatch_async(kGlobal, [] { throw std::runtime_error("mistake"); });
    EXPECT_THROW(platform.runGlobalQueue(), std::runtime_error);
    EXPECT_TRUE(NSThread::isMainThread());
}

TEST_F(BackgroundBlocks, WhatABlockHoldsGoesWithIt) {
    bool main = true;
    dispatch_async(kGlobal, [held = std::make_shared<Held>([&] { main = NSThread::isMainThread(); })] {
        EXPECT_TRUE(held);
    });
    platform.runGlobalQueue();
    EXPECT_FALSE(main);
}

TEST(WorkerThread, RunsBackgroundBlocksOnAnotherThread) {
    headless::Platform platform(withWorker());
    const auto mainThread = std::this_thread::get_id();
    std::thread::id background, hop;
    bool backgroundIsMain = true, hopIsMain = false;
    dispatch_async(kGlobal, [&] {
        background = std::this_thread::get_id();
        backgroundIsMain = NSThread::isMainThread();
        dispatch_async(kMain, [&] {
            hop = std::this_thread::get_id();
            hopIsMain = NSThread::isMainThread();
        });
    });
    EXPECT_TRUE(NSThread::isMainThread());
    EXPECT_EQ(platform.runGlobalQueue(), 1u);
    EXPECT_NE(background, mainThread);
    EXPECT_FALSE(backgroundIsMain);
    EXPECT_EQ(hop, std::thread::id());
    platform.runMainQueue();
    EXPECT_EQ(hop, mainThread);
    EXPECT_TRUE(hopIsMain);
}

TEST(WorkerThread, StepsOneAfterTheOtherAreSeenByTheMainThread) {
    headless::Platform platform(withWorker());
    int sum = 0; // not atomic: the end of the wait publishes it
    for (int i = 1; i <= 100; ++i) dispatch_async(kGlobal, [&sum, i] { sum += i; });
    platform.runGlobalQueue();
    EXPECT_EQ(sum, 5050);
}

TEST(WorkerThread, BlocksComeFromManyThreadsEachInItsOrder) {
    headless::Platform platform(withWorker());
    constexpr int kThreads = 4, kBlocks = 100;
    std::vector<std::vector<int>> ran(kThreads);
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int thread = 0; thread < kThreads; ++thread)
        threads.emplace_back([&ran, thread] {
            for (int i = 0; i < kBlocks; ++i)
                dispatch_async(kMain,
                               [&ran, thread, i] { ran[static_cast<std::size_t>(thread)].push_back(i); });
        });
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(platform.runMainQueue(), static_cast<std::size_t>(kThreads * kBlocks));
    std::vector<int> inOrder(kBlocks);
    for (int i = 0; i < kBlocks; ++i) inOrder[static_cast<std::size_t>(i)] = i;
    EXPECT_THAT(ran, testing::Each(inOrder));
}

TEST(WorkerThread, WhatABlockHoldsIsGoneBeforeItCountsAsDone) {
    headless::Platform platform(withWorker());
    auto held = std::make_shared<int>(1);
    const std::weak_ptr<int> weak = held;
    dispatch_async(kGlobal, [held = std::move(held)] { EXPECT_EQ(*held, 1); });
    platform.runGlobalQueue();
    EXPECT_TRUE(weak.expired());
}

TEST(WorkerThread, HasEndedWhenTheQueuesAreDropped) {
    const auto queues = std::make_shared<headless::Queues>(true);
    std::promise<void> started, go;
    bool finished = false, dropped = false;
    queues->postToGlobal([&, own = queues] {
        started.set_value();
        go.get_future().wait();
        finished = true;
    });
    queues->postToGlobal([held = std::make_shared<Held>([&] { dropped = true; })] {});
    started.get_future().wait();
    go.set_value();
    queues->dropAll();
    EXPECT_TRUE(finished);
    EXPECT_TRUE(dropped);
    EXPECT_EQ(queues.use_count(), 1);
}

// Tokens of a test live no longer than it.
// NOLINTBEGIN(clang-analyzer-osx.API)
TEST(DispatchOnce, RunsOnceForEachToken) {
    dispatch_once_t one, other;
    int runs = 0;
    for (int i = 0; i < 3; ++i) dispatch_once(one, [&] { ++runs; });
    EXPECT_EQ(runs, 1);
    dispatch_once(other, [&] { ++runs; });
    EXPECT_EQ(runs, 2);
}

TEST(DispatchOnce, OtherThreadsWaitUntilItIsDone) {
    for (int round = 0; round < 20; ++round) {
        dispatch_once_t token;
        int value = 0, runs = 0;
        std::atomic<int> right = 0;
        std::vector<std::thread> threads;
        threads.reserve(8);
        for (int thread = 0; thread < 8; ++thread)
            threads.emplace_back([&] {
                dispatch_once(token, [&] {
                    ++runs;
                    std::this_thread::yield();
                    value = 42;
                });
                if (value == 42) ++right;
            });
        for (auto& thread : threads) thread.join();
        EXPECT_EQ(runs, 1);
        EXPECT_EQ(right, 8);
    }
}
// NOLINTEND(clang-analyzer-osx.API)

TEST(TheEndOfTheHost, DropsBlocksAndWhatTheyHold) {
    for (const bool worker : {false, true}) {
        int ended = 0, ran = 0;
        {
            headless::Options options;
            options.workerThread = worker;
            headless::Platform platform(options);
            const auto block = [&](int& runs) {
                return [&runs, held = std::make_shared<Held>([&] { ++ended; })] { ++runs; };
            };
            dispatch_async(kMain, block(ran));
            dispatch_after(dispatch_time(DISPATCH_TIME_NOW, NSEC_PER_SEC), kMain, block(ran));
            dispatch_after(dispatch_time(DISPATCH_TIME_NOW, NSEC_PER_SEC), kGlobal, block(ran));
            if (!worker) dispatch_async(kGlobal, block(ran));
            EXPECT_EQ(ended, 0);
        }
        EXPECT_EQ(ran, 0);
        EXPECT_EQ(ended, worker ? 3 : 4);
    }
}

TEST(TheEndOfTheHost, WhatADroppedBlockHeldMayStillPost) {
    int ended = 0, ran = 0;
    {
        headless::Platform platform;
        for (const auto queue : {kMain, kGlobal})
            dispatch_async(queue, [held = std::make_shared<Held>([&] {
                                       dispatch_async(kMain, [&] { ++ran; });
                                       dispatch_async(kGlobal, [&] { ++ran; });
                                       ++ended;
                                   })] {});
    }
    EXPECT_EQ(ended, 2);
    EXPECT_EQ(ran, 0);
}

TEST(WithoutAHost, NothingRunsAndNothingIsKept) {
    backend::uninstall();
    int ended = 0, ran = 0;
    const auto block = [&] { return [&ran, held = std::make_shared<Held>([&] { ++ended; })] { ++ran; }; };
    dispatch_async(kMain, block());
    dispatch_async(kGlobal, block());
    dispatch_after(dispatch_time(DISPATCH_TIME_NOW, 1), kMain, block());
    dispatch_after(DISPATCH_TIME_NOW, kGlobal, block());
    EXPECT_EQ(ended, 4);
    EXPECT_EQ(ran, 0);
    EXPECT_TRUE(NSThread::isMainThread());
    EXPECT_EQ(dispatch_time(DISPATCH_TIME_NOW, 7), 7u);
    { const headless::Platform platform; }
    EXPECT_EQ(ran, 0);
}

} // namespace zr
