// SPDX-License-Identifier: MIT
#include <Foundation/NSObject.h>
#include <FoundationBackends/Host.h>
#include <ZRUIKit/KitFoundation.h>
#include <ZRUIKitHeadless/Headless.h>
#include <ZRUIKitHeadless/HeadlessQueues.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>
#include <string>
#include <thread>
#include <vector>

namespace zr {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class QueuePatterns : public testing::Test {
protected:
    void add(const std::string& line) {
        lines.push_back(line + (NSThread::isMainThread() ? " main" : " background"));
    }

    // As a method that touches a view does it.
    void update() {
        if (RepostedToMainQueue([this] { update(); })) return;
        add("update");
    }

    headless::Platform platform;
    std::vector<std::string> lines;
};

headless::Options withWorker() {
    headless::Options options;
    options.workerThread = true;
    return options;
}

// An object that must end on the main thread.
class Pane : public NSObject {
public:
    ZR_CLASS(Pane, NSObject)
    bool initWithEnd(std::thread::id& end) {
        end_ = &end;
        return true;
    }
    void dealloc() override {
        *end_ = std::this_thread::get_id();
        NSObject::dealloc();
    }

private:
    std::thread::id* end_ = nullptr;
};
ZR_CLASS_TABLE(Pane)

} // namespace

TEST_F(QueuePatterns, TheHopRunsAfterWhatIsThere) {
    dispatch_async(dispatch_get_main_queue(), [this] { add("first"); });
    OnMainQueue([this] { add("hop"); });
    EXPECT_THAT(lines, IsEmpty());
    platform.runMainQueue();
    EXPECT_THAT(lines, ElementsAre("first main", "hop main"));
}

TEST_F(QueuePatterns, TheHopLeadsFromTheBackgroundToTheMainThread) {
    dispatch_async(dispatch_get_global_queue(0, 0), [this] {
        add("work");
        OnMainQueue([this] { add("hop"); });
    });
    platform.runUntilIdle();
    EXPECT_THAT(lines, ElementsAre("work background", "hop main"));
}

TEST_F(QueuePatterns, TheGuardLetsTheMainThreadGoOn) {
    update();
    EXPECT_THAT(lines, ElementsAre("update main"));
    EXPECT_EQ(platform.runMainQueue(), 0u);
    EXPECT_EQ(lines.size(), 1u);
}

TEST_F(QueuePatterns, TheGuardPostsTheMethodAgainFromTheBackground) {
    dispatch_async(dispatch_get_global_queue(0, 0), [this] {
        update();
        add("returned");
    });
    platform.runGlobalQueue();
    EXPECT_THAT(lines, ElementsAre("returned background"));
    platform.runMainQueue();
    EXPECT_THAT(lines, ElementsAre("returned background", "update main"));
}

TEST_F(QueuePatterns, BackgroundWorkHandsItsResultToTheMainThread) {
    InBackground(
        [this] {
            add("work");
            return std::string("result");
        },
        [this](const std::string& result) { add(result); });
    platform.runMainQueue();
    EXPECT_THAT(lines, IsEmpty());
    platform.runGlobalQueue();
    EXPECT_THAT(lines, ElementsAre("work background"));
    platform.runMainQueue();
    EXPECT_THAT(lines, ElementsAre("work background", "result main"));
}

TEST_F(QueuePatterns, NoWorkIsRefusedAtOnce) {
    EXPECT_THROW(InBackground(std::function<int()>(), [](int) {}), std::invalid_argument);
    EXPECT_THROW(OnMainQueue(nullptr), std::invalid_argument);
    EXPECT_THROW(AfterDelay(1, nullptr), std::invalid_argument);
}

TEST(QueuePatternsWithAWorker, BackgroundWorkHandsItsResultToTheMainThread) {
    headless::Platform platform(withWorker());
    const auto mainThread = std::this_thread::get_id();
    std::thread::id result;
    bool onMain = false;
    InBackground([] { return std::this_thread::get_id(); },
                 [&](std::thread::id worker) {
                     result = worker;
                     onMain = std::this_thread::get_id() == mainThread;
                 });
    platform.runUntilIdle();
    EXPECT_NE(result, std::thread::id());
    EXPECT_NE(result, mainThread);
    EXPECT_TRUE(onMain);
}

TEST(QueuePatternsWithAWorker, TheGuardPostsTheMethodAgain) {
    headless::Platform platform(withWorker());
    bool reposted = false, ran = false;
    dispatch_async(dispatch_get_global_queue(0, 0),
                   [&] { reposted = RepostedToMainQueue([&] { ran = true; }); });
    platform.runGlobalQueue();
    EXPECT_TRUE(reposted);
    EXPECT_FALSE(ran);
    platform.runMainQueue();
    EXPECT_TRUE(ran);
}

TEST(QueuePatternsWithAWorker, WhatTheWorkHoldsEndsOnTheMainThread) {
    headless::Platform platform(withWorker());
    std::thread::id end;
    auto pane = make<Pane>(&Pane::initWithEnd, end);
    InBackground([pane] { return pane ? 1 : 0; }, [](int result) { EXPECT_EQ(result, 1); });
    pane.reset();
    platform.runGlobalQueue();
    EXPECT_EQ(end, std::thread::id()) << "ended before the result was handed over";
    platform.runMainQueue();
    EXPECT_EQ(end, std::this_thread::get_id());
}

TEST_F(QueuePatterns, ADelayIsNeverEarly) {
    for (const double delay : {0.3, 5.0}) {
        lines.clear();
        AfterDelay(delay, [this] { add("start"); });
        platform.runUntilIdle();
        EXPECT_THAT(lines, IsEmpty());
        platform.advance(delay - 1e-6);
        EXPECT_THAT(lines, IsEmpty());
        platform.advance(2e-6);
        EXPECT_THAT(lines, ElementsAre("start main"));
        platform.advance(10 * delay);
        EXPECT_EQ(lines.size(), 1u);
    }
}

TEST(Delays, AreExactToTheNanosecond) {
    const auto queues = std::make_shared<headless::Queues>(false);
    backend::Host host;
    host.queues = queues;
    backend::install(std::move(host));
    // The third and fourth are a little less than written, in binary.
    for (const auto& [seconds, nanoseconds] : {std::pair<double, std::uint64_t>{0.3, 300000000},
                                               {5.0, 5000000000},
                                               {1.001, 1001000000},
                                               {1.003, 1003000000},
                                               {0.0, 0}}) {
        const auto start = queues->now();
        AfterDelay(seconds, [] {});
        EXPECT_EQ(queues->nextOnMain(), start + nanoseconds) << seconds;
        queues->runMain(start + nanoseconds);
    }
    AfterDelay(-1, [] {});
    EXPECT_EQ(queues->nextOnMain(), queues->now());
    backend::uninstall();
}

} // namespace zr
