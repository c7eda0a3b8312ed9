// SPDX-License-Identifier: MIT
#include "Adaptor.h"

#include <Foundation/Dispatch.h>

#include <atomic>

namespace zr::conformance {

using testing::ElementsAre;

class ConformanceQueues : public Conformance {
protected:
    static dispatch_time_t in(double milliseconds) {
        return dispatch_time(DISPATCH_TIME_NOW, static_cast<std::int64_t>(milliseconds * 1'000'000));
    }
    void later(double milliseconds, const char* what) {
        dispatch_after(in(milliseconds), dispatch_get_main_queue(), [this, what] { log_.emplace_back(what); });
    }
};

TEST_F(ConformanceQueues, TheMainQueueKeepsItsOrderAndNeverRunsAtOnce) {
    for (int i = 0; i < 5; ++i)
        dispatch_async(dispatch_get_main_queue(), [this, i] { log_.push_back(std::to_string(i)); });
    EXPECT_TRUE(log_.empty());
    ASSERT_TRUE(adaptor_->passUntil([&] { return log_.size() == 5; }));
    EXPECT_THAT(taken(), ElementsAre("0", "1", "2", "3", "4"));
}

TEST_F(ConformanceQueues, ABlockPostedByABlockComesAfterThoseThatWait) {
    dispatch_async(dispatch_get_main_queue(), [&] {
        log_.emplace_back("first");
        dispatch_async(dispatch_get_main_queue(), [&] { log_.emplace_back("posted"); });
    });
    dispatch_async(dispatch_get_main_queue(), [&] { log_.emplace_back("second"); });
    ASSERT_TRUE(adaptor_->passUntil([&] { return log_.size() == 3; }));
    EXPECT_THAT(taken(), ElementsAre("first", "second", "posted"));
}

TEST_F(ConformanceQueues, DelaysEndInTheOrderOfTheirTimes) {
    later(30, "30");
    later(10, "10");
    later(20, "20");
    later(0, "0");
    ASSERT_TRUE(adaptor_->passUntil([&] { return log_.size() == 4; }));
    EXPECT_THAT(taken(), ElementsAre("0", "10", "20", "30"));
}

TEST_F(ConformanceQueues, DelaysOfOneTimeKeepTheirOrderAndATimeThatIsPastIsNow) {
    const dispatch_time_t when = in(5);
    for (const char* const name : {"a", "b", "c"})
        dispatch_after(when, dispatch_get_main_queue(), [this, name] { log_.emplace_back(name); });
    dispatch_after(dispatch_time(DISPATCH_TIME_NOW, -1'000'000'000), dispatch_get_main_queue(),
                   [this] { log_.emplace_back("past"); });
    ASSERT_TRUE(adaptor_->passUntil([&] { return log_.size() == 4; }));
    EXPECT_THAT(taken(), ElementsAre("past", "a", "b", "c"));
}

TEST_F(ConformanceQueues, ADelayIsNeverShorterThanItSays) {
    const dispatch_time_t begun = dispatch_time(DISPATCH_TIME_NOW, 0);
    dispatch_time_t ended = 0;
    dispatch_after(in(40), dispatch_get_main_queue(), [&] { ended = dispatch_time(DISPATCH_TIME_NOW, 0); });
    ASSERT_TRUE(adaptor_->passUntil([&] { return ended != 0; }));
    EXPECT_GE(ended - begun, 40'000'000u);
}

TEST_F(ConformanceQueues, BackgroundWorkIsNotOnTheMainThreadAndComesBackToIt) {
    std::atomic<bool> wasMain = true;
    bool cameBackToMain = false, done = false;
    dispatch_async(dispatch_get_global_queue(0, 0), [&] {
        wasMain = NSThread::isMainThread();
        dispatch_async(dispatch_get_main_queue(), [&] {
            cameBackToMain = NSThread::isMainThread();
            done = true;
        });
    });
    ASSERT_TRUE(adaptor_->passUntil([&] { return done; }));
    EXPECT_FALSE(wasMain);
    EXPECT_TRUE(cameBackToMain);
    EXPECT_TRUE(NSThread::isMainThread());
}

TEST_F(ConformanceQueues, DelayedBackgroundWorkIsDoneInTheBackground) {
    std::atomic<int> state = 0;
    dispatch_after(in(5), dispatch_get_global_queue(0, 0), [&] { state = NSThread::isMainThread() ? 1 : 2; });
    ASSERT_TRUE(adaptor_->passUntil([&] { return state != 0; }));
    EXPECT_EQ(state, 2);
}

} // namespace zr::conformance
