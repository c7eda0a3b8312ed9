// SPDX-License-Identifier: MIT
#include "Adaptor.h"

#include <AppKit/NSButton.h>

namespace zr::conformance {

using testing::ElementsAre;

ZR_CLASS_TABLE(Probe)

class ConformanceEvents : public Conformance {
protected:
    void SetUp() override {
        root_ = probe("root", NSMakeRect(0, 0, 200, 100));
        left_ = probe("left", NSMakeRect(10, 10, 80, 80));
        right_ = probe("right", NSMakeRect(70, 10, 80, 80)); // covers the edge of the left one
        root_->addSubview(left_);
        root_->addSubview(right_);
        show(root_);
        taken();
    }
    std::shared_ptr<Probe> root_, left_, right_;
};

TEST_F(ConformanceEvents, TheViewInFrontIsHitAndTheLastAddedIsInFront) {
    adaptor_->press(*window_, {80, 50});
    adaptor_->release(*window_, {80, 50});
    EXPECT_THAT(taken(), ElementsAre("right down 10 40", "right up 10 40"));
    root_->addSubview(left_);
    adaptor_->settle();
    adaptor_->press(*window_, {80, 50});
    adaptor_->release(*window_, {80, 50});
    EXPECT_THAT(taken(), ElementsAre("left down 70 40", "left up 70 40"));
}

TEST_F(ConformanceEvents, HiddenAndRemovedViewsAreNotHit) {
    right_->setHidden(true);
    adaptor_->settle();
    adaptor_->press(*window_, {80, 50});
    adaptor_->release(*window_, {80, 50});
    left_->removeFromSuperview();
    adaptor_->settle();
    adaptor_->press(*window_, {80, 50});
    adaptor_->release(*window_, {80, 50});
    EXPECT_THAT(taken(), ElementsAre("left down 70 40", "left up 70 40", "root down 80 50", "root up 80 50"));
}

TEST_F(ConformanceEvents, TheTopmostRowOfAViewBelongsToItAndTheLineBelowItDoesNot) {
    adaptor_->press(*window_, {20, 90}); // 10 + 80
    adaptor_->release(*window_, {20, 90});
    adaptor_->press(*window_, {20, 10});
    adaptor_->release(*window_, {20, 10});
    EXPECT_THAT(taken(), ElementsAre("left down 10 80", "left up 10 80", "root down 20 10", "root up 20 10"));
}

TEST_F(ConformanceEvents, DragAndReleaseGoToTheViewThatGotThePress) {
    adaptor_->press(*window_, {20, 50});
    adaptor_->drag(*window_, {100, 50});
    adaptor_->drag(*window_, {900, -400});
    adaptor_->release(*window_, {900, -400});
    EXPECT_THAT(taken(),
                ElementsAre("left down 10 40", "left drag 90 40", "left drag 890 -410", "left up 890 -410"));
}

TEST_F(ConformanceEvents, OtherButtonsHaveTheirOwnMessages) {
    adaptor_->press(*window_, {20, 50}, Button::right);
    adaptor_->drag(*window_, {100, 50}, Button::right);
    adaptor_->release(*window_, {100, 50}, Button::right);
    adaptor_->press(*window_, {20, 50}, Button::other);
    adaptor_->release(*window_, {20, 50}, Button::other);
    EXPECT_THAT(taken(), ElementsAre("left right down 10 40", "left right drag 90 40", "left right up 90 40",
                                     "left other down 10 40", "left other up 10 40"));
}

TEST_F(ConformanceEvents, ModifiersAndTheSecondClickAreTold) {
    std::vector<std::pair<unsigned, int>> seen;
    left_->onMouseDown = [&](const NSEvent& event) {
        seen.emplace_back(event.modifierFlags(), event.clickCount());
    };
    adaptor_->press(*window_, {20, 50}, Button::left,
                    {NSEventModifierFlagShift | NSEventModifierFlagCommand, 1});
    adaptor_->release(*window_, {20, 50});
    EXPECT_EQ(seen.at(0), std::pair(unsigned{NSEventModifierFlagShift | NSEventModifierFlagCommand}, 1));
    adaptor_->press(*window_, {120, 50}); // elsewhere: no click of a series
    adaptor_->release(*window_, {120, 50});
    adaptor_->press(*window_, {20, 50}, Button::left, {0, 2});
    adaptor_->release(*window_, {20, 50});
    EXPECT_EQ(seen.back(), std::pair(0u, 2));
}

TEST_F(ConformanceEvents, WhatAViewDoesNotTakeGoesToItsSuperviewThenOnce) {
    left_->takesMouse = false;
    adaptor_->wheel(*window_, {20, 50}, 2);
    EXPECT_THAT(taken(), ElementsAre("root wheel 20 50"));
    adaptor_->press(*window_, {20, 50});
    adaptor_->release(*window_, {20, 50});
    EXPECT_EQ(taken().at(0), "root down 20 50");
}

TEST_F(ConformanceEvents, TheWheelGoesToTheViewUnderThePointer) {
    adaptor_->wheel(*window_, {120, 50}, -1);
    EXPECT_THAT(taken(), ElementsAre("right wheel 50 40"));
}

TEST_F(ConformanceEvents, APressMakesAViewThatWantsItFirstResponderAndKeysFollow) {
    left_->acceptsFocus = true;
    adaptor_->press(*window_, {20, 50});
    adaptor_->release(*window_, {20, 50});
    EXPECT_EQ(window_->firstResponder(), left_.get());
    adaptor_->type(*window_, Key::a);
    EXPECT_THAT(taken(), ElementsAre("left become", "left down 10 40", "left up 10 40", "left key a"));
    // A view that does not want it leaves it where it is.
    adaptor_->press(*window_, {120, 50});
    adaptor_->release(*window_, {120, 50});
    EXPECT_EQ(window_->firstResponder(), left_.get());
}

TEST_F(ConformanceEvents, AFirstResponderThatDoesNotResignKeepsThePressFromOthers) {
    left_->acceptsFocus = right_->acceptsFocus = true;
    left_->resigns = false;
    EXPECT_TRUE(window_->makeFirstResponder(left_.get()));
    taken();
    adaptor_->press(*window_, {120, 50});
    adaptor_->drag(*window_, {125, 50});
    adaptor_->release(*window_, {125, 50});
    EXPECT_EQ(window_->firstResponder(), left_.get());
    EXPECT_THAT(taken(), ElementsAre("left resign"));
    adaptor_->type(*window_, Key::b);
    EXPECT_THAT(taken(), ElementsAre("left key b"));
}

TEST_F(ConformanceEvents, TheFirstResponderChangesStepByStep) {
    left_->acceptsFocus = right_->acceptsFocus = true;
    EXPECT_TRUE(window_->makeFirstResponder(left_.get()));
    EXPECT_TRUE(window_->makeFirstResponder(right_.get()));
    EXPECT_TRUE(window_->makeFirstResponder(nullptr));
    EXPECT_EQ(window_->firstResponder(), window_.get());
    EXPECT_THAT(taken(), ElementsAre("left become", "left resign", "right become", "right resign"));
    adaptor_->type(*window_, Key::a);
    EXPECT_TRUE(taken().empty());
}

TEST_F(ConformanceEvents, AFirstResponderThatLeavesOrIsHiddenResigns) {
    left_->acceptsFocus = right_->acceptsFocus = true;
    window_->makeFirstResponder(left_.get());
    left_->removeFromSuperview();
    EXPECT_EQ(window_->firstResponder(), window_.get());
    window_->makeFirstResponder(right_.get());
    root_->setHidden(true);
    EXPECT_EQ(window_->firstResponder(), window_.get());
    EXPECT_THAT(taken(), ElementsAre("left become", "left resign", "right become", "right resign"));
}

TEST_F(ConformanceEvents, AViewRemovedInItsPressGetsNothingMore) {
    left_->onMouseDown = [&](const NSEvent&) { left_->removeFromSuperview(); };
    adaptor_->press(*window_, {20, 50});
    adaptor_->drag(*window_, {30, 50});
    adaptor_->release(*window_, {30, 50});
    EXPECT_EQ(taken().front(), "left down 10 40");
    for (const auto& line : taken()) EXPECT_THAT(line, testing::Not(testing::StartsWith("left")));
}

TEST_F(ConformanceEvents, TheWindowMayCloseInAPress) {
    left_->onMouseDown = [&](const NSEvent&) { window_->close(); };
    adaptor_->press(*window_, {20, 50});
    adaptor_->settle();
    EXPECT_FALSE(window_->isVisible());
    EXPECT_TRUE(NSApplication::sharedApplication().windows().empty());
}

TEST_F(ConformanceEvents, AButtonSendsItsActionWhenItIsClicked) {
    const auto button = NSButton::buttonWithTitle_target_action("Press", nullptr, "performClose:");
    button->setFrame(NSMakeRect(20, 20, 60, 30));
    button->setTarget(window_);
    root_->addSubview(button);
    adaptor_->settle();
    adaptor_->press(*window_, {50, 35});
    adaptor_->release(*window_, {50, 35});
    adaptor_->settle();
    EXPECT_FALSE(window_->isVisible());
}

class ClosingDelegate : public NSWindowDelegate {
public:
    std::optional<bool> windowShouldClose(NSWindow&) override {
        log.emplace_back("should");
        return lets;
    }
    void windowWillClose(NSWindow&) override { log.emplace_back("will"); }
    void windowDidResize(NSWindow&) override { log.emplace_back("resized"); }
    bool lets = false;
    std::vector<std::string> log;
};

TEST_F(ConformanceEvents, TheUserClosesAWindowWhereTheDelegateLetsHim) {
    const auto delegate = std::make_shared<ClosingDelegate>();
    window_->setDelegate(delegate);
    adaptor_->close(*window_);
    EXPECT_TRUE(window_->isVisible());
    delegate->lets = true;
    adaptor_->close(*window_);
    EXPECT_FALSE(window_->isVisible());
    EXPECT_THAT(delegate->log, ElementsAre("should", "should", "will"));
}

TEST_F(ConformanceEvents, ARealWindowThatVanishesCountsAsClosed) {
    const auto delegate = std::make_shared<ClosingDelegate>();
    window_->setDelegate(delegate);
    adaptor_->takeAway(*window_);
    EXPECT_FALSE(window_->isVisible());
    EXPECT_THAT(delegate->log, ElementsAre("will"));
    window_->makeKeyAndOrderFront(nullptr); // and it can be shown again
    adaptor_->settle();
    EXPECT_TRUE(window_->isVisible());
    adaptor_->press(*window_, {20, 50});
    EXPECT_EQ(taken().back(), "left down 10 40");
}

TEST_F(ConformanceEvents, TheUsersResizingIsToldAfterTheViewsHaveFollowed) {
    const auto delegate = std::make_shared<ClosingDelegate>();
    window_->setDelegate(delegate);
    window_->setContentMinSize({150, 80});
    adaptor_->resize(*window_, {100, 300});
    adaptor_->settle();
    EXPECT_EQ(window_->contentSize(), (NSSize{150, 300}));
    EXPECT_EQ(root_->frame().size, (NSSize{150, 300}));
    EXPECT_THAT(delegate->log, ElementsAre("resized"));
}

} // namespace zr::conformance
