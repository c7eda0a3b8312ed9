// SPDX-License-Identifier: MIT
#include <Foundation/NSNotification.h>
#include <ZRUIKitHeadless/Headless.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace zr {

using testing::ElementsAre;

class Notifications : public testing::Test {
protected:
    NSNotificationCenter::Block note(const char* what) {
        return [this, what](const NSNotification& notification) {
            log_.push_back(what + (":" + notification.name));
        };
    }
    std::vector<std::string> taken() { return std::exchange(log_, {}); }

    headless::Platform platform_;
    NSNotificationCenter& center_ = NSNotificationCenter::defaultCenter();
    std::vector<std::string> log_;
};

TEST_F(Notifications, GoToWhoAskedForTheirNameOrObjectInTheOrderOfAsking) {
    const auto about = make<NSNotificationCenter>(), other = make<NSNotificationCenter>();
    const auto named = center_.addObserverForName_object_usingBlock("a", nullptr, note("named"));
    const auto any = center_.addObserverForName_object_usingBlock(std::nullopt, nullptr, note("any"));
    const auto ofObject =
        center_.addObserverForName_object_usingBlock(std::nullopt, about.get(), note("object"));
    const auto twice = center_.addObserverForName_object_usingBlock("a", nullptr, note("again"));
    center_.postNotificationName_object("a", nullptr);
    EXPECT_THAT(taken(), ElementsAre("named:a", "any:a", "again:a"));
    center_.postNotificationName_object("b", about.get());
    EXPECT_THAT(taken(), ElementsAre("any:b", "object:b"));
    center_.postNotificationName_object("b", other.get());
    EXPECT_THAT(taken(), ElementsAre("any:b"));
}

TEST_F(Notifications, EndWithTheRegistrationOrItsRemoval) {
    auto dropped = center_.addObserverForName_object_usingBlock("a", nullptr, note("dropped"));
    const auto removed = center_.addObserverForName_object_usingBlock("a", nullptr, note("removed"));
    dropped = nullptr;
    center_.removeObserver(removed);
    center_.removeObserver(removed);
    center_.postNotificationName_object("a", nullptr);
    EXPECT_TRUE(taken().empty());
}

TEST_F(Notifications, MayChangeWhoIsToldWhileTheyAreHandedOut) {
    std::shared_ptr<NSObject> later, added;
    const auto first = center_.addObserverForName_object_usingBlock("a", nullptr, [&](const NSNotification&) {
        log_.emplace_back("first");
        center_.removeObserver(later);
        added = center_.addObserverForName_object_usingBlock("a", nullptr, note("added"));
    });
    later = center_.addObserverForName_object_usingBlock("a", nullptr, note("later"));
    center_.postNotificationName_object("a", nullptr);
    EXPECT_THAT(taken(), ElementsAre("first")) << "neither the removed nor the added one";
    center_.removeObserver(first);
    center_.postNotificationName_object("a", nullptr);
    EXPECT_THAT(taken(), ElementsAre("added:a"));
}

TEST_F(Notifications, NestCompletely) {
    const auto outer = center_.addObserverForName_object_usingBlock("a", nullptr, [&](const NSNotification&) {
        center_.postNotificationName_object("b", nullptr);
        log_.emplace_back("after");
    });
    const auto inner = center_.addObserverForName_object_usingBlock("b", nullptr, note("inner"));
    center_.postNotificationName_object("a", nullptr);
    EXPECT_THAT(taken(), ElementsAre("inner:b", "after"));
}

TEST(NotificationCenters, AreNewWithEachHost) {
    std::shared_ptr<NSObject> registration;
    int count = 0;
    {
        headless::Platform platform;
        registration = NSNotificationCenter::defaultCenter().addObserverForName_object_usingBlock(
            "a", nullptr, [&](const NSNotification&) { ++count; });
        NSNotificationCenter::defaultCenter().postNotificationName_object("a", nullptr);
    }
    headless::Platform platform;
    NSNotificationCenter::defaultCenter().postNotificationName_object("a", nullptr);
    EXPECT_EQ(count, 1);
}

} // namespace zr
