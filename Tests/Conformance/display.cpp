// SPDX-License-Identifier: MIT
#include "Adaptor.h"

#include <AppKit/NSColor.h>
#include <AppKit/NSGraphicsContext.h>

namespace zr::conformance {

using testing::ElementsAre;

class ConformanceDisplay : public Conformance {
protected:
    void SetUp() override {
        root_ = probe("root", NSMakeRect(0, 0, 200, 100));
        child_ = probe("child", NSMakeRect(10, 10, 100, 50));
        root_->addSubview(child_);
    }
    void showAndForget() {
        show(root_);
        taken();
        for (const auto& view : {root_, child_}) view->draws = view->layouts = 0;
    }
    std::shared_ptr<Probe> root_, child_;
};

TEST_F(ConformanceDisplay, LayoutComesBeforeTheFirstDrawingSuperviewsFirst) {
    root_->traces = child_->traces = true;
    show(root_);
    EXPECT_THAT(taken(), ElementsAre("root layout", "child layout", "root draw", "child draw"));
    EXPECT_FALSE(root_->needsLayout());
    EXPECT_FALSE(root_->needsDisplay());
    EXPECT_EQ(child_->lastDirty, child_->bounds());
}

TEST_F(ConformanceDisplay, WhatLayoutPlacesIsNeverDrawnElsewhere) {
    NSRect drawnAt;
    root_->layouter = [&] { child_->setFrame(NSMakeRect(50, 20, 40, 30)); };
    child_->painter = [&] { drawnAt = child_->frame(); };
    show(root_);
    EXPECT_EQ(drawnAt, NSMakeRect(50, 20, 40, 30));
    EXPECT_EQ(child_->draws, 1);
    EXPECT_EQ(adaptor_->place(*window_, "child"), CGRect(NSMakeRect(50, 50, 40, 30)));
}

TEST_F(ConformanceDisplay, ManyMarksInOneEventAreOneLayoutAndOneDrawing) {
    showAndForget();
    root_->onMouseDown = [&](const NSEvent&) {
        for (int i = 0; i < 5; ++i) {
            child_->setNeedsDisplay(true);
            child_->setNeedsLayout(true);
        }
        EXPECT_EQ(child_->draws, 0) << "not within the event";
    };
    adaptor_->press(*window_, {150, 80});
    adaptor_->settle();
    EXPECT_EQ(child_->draws, 1);
    EXPECT_EQ(child_->layouts, 1);
    EXPECT_EQ(root_->layouts, 0);
    adaptor_->release(*window_, {150, 80});
    adaptor_->settle();
    EXPECT_EQ(child_->draws, 1);
}

TEST_F(ConformanceDisplay, OnlyWhatIsMarkedIsDrawn) {
    showAndForget();
    child_->setNeedsDisplay(true);
    EXPECT_TRUE(child_->needsDisplay());
    adaptor_->settle();
    EXPECT_EQ(child_->draws, 1);
    EXPECT_EQ(root_->draws, 0);
    adaptor_->settle();
    EXPECT_EQ(child_->draws, 1);
}

TEST_F(ConformanceDisplay, NothingIsDrawnThatWasNotMarked) {
    child_->acceptsFocus = true;
    showAndForget();
    adaptor_->press(*window_, {20, 20}); // the keyboard comes, too
    adaptor_->settle();
    adaptor_->drag(*window_, {60, 40});
    adaptor_->release(*window_, {60, 40});
    adaptor_->settle();
    window_->makeFirstResponder(nullptr);
    window_->setTitle("window under test");
    adaptor_->move(*window_, {30, 40});
    adaptor_->settle();
    root_->addSubview(child_); // in front of its siblings again
    adaptor_->settle();
    EXPECT_EQ(child_->draws, 0);
    EXPECT_EQ(root_->draws, 0);
}

TEST_F(ConformanceDisplay, ANewSizeLaysOutAndDrawsAndANewPlaceDoesNot) {
    showAndForget();
    child_->setFrameOrigin({20, 20});
    adaptor_->settle();
    EXPECT_EQ(child_->draws, 0);
    child_->setFrameSize({90, 40});
    adaptor_->settle();
    EXPECT_EQ(child_->draws, 1);
    EXPECT_EQ(child_->layouts, 1);
    EXPECT_EQ(child_->lastDirty, NSMakeRect(0, 0, 90, 40));
}

TEST_F(ConformanceDisplay, AHiddenViewIsDrawnWhenItIsShown) {
    showAndForget();
    child_->setHidden(true);
    child_->setNeedsDisplay(true);
    adaptor_->settle();
    EXPECT_EQ(child_->draws, 0);
    child_->setHidden(false);
    adaptor_->settle();
    EXPECT_EQ(child_->draws, 1);
}

TEST_F(ConformanceDisplay, ASubviewOfAHiddenViewIsDrawnWhenThatIsShown) {
    showAndForget();
    root_->setHidden(true);
    adaptor_->settle();
    child_->draws = 0;
    child_->setNeedsDisplay(true);
    adaptor_->settle();
    EXPECT_EQ(child_->draws, 0);
    root_->setHidden(false);
    adaptor_->settle();
    EXPECT_EQ(child_->draws, 1);
}

TEST_F(ConformanceDisplay, AViewThatComesIsLaidOutAndDrawnAndOneThatLeftIsNot) {
    showAndForget();
    const auto late = probe("late", NSMakeRect(0, 0, 20, 20));
    root_->addSubview(late);
    adaptor_->settle();
    EXPECT_EQ(late->layouts, 1);
    EXPECT_EQ(late->draws, 1);
    late->removeFromSuperview();
    late->setNeedsDisplay(true);
    adaptor_->settle();
    EXPECT_EQ(late->draws, 1);
    EXPECT_EQ(adaptor_->place(*window_, "late"), std::nullopt);
}

TEST_F(ConformanceDisplay, MarkingInALayoutIsServedInTheSameTurnOrTheNext) {
    showAndForget();
    root_->layouter = [&] {
        if (root_->layouts == 1) child_->setNeedsLayout(true);
        child_->setNeedsDisplay(true);
    };
    root_->setNeedsLayout(true);
    adaptor_->settle();
    EXPECT_EQ(child_->layouts, 1);
    EXPECT_EQ(child_->draws, 1);
}

TEST_F(ConformanceDisplay, AViewMayLeaveWhileItIsLaidOutOrDrawn) {
    showAndForget();
    child_->painter = [&] { child_->removeFromSuperview(); };
    child_->setNeedsDisplay(true);
    adaptor_->settle();
    EXPECT_EQ(child_->draws, 1);
    EXPECT_EQ(child_->superview(), nullptr);
    child_->painter = nullptr;
    child_->layouter = [&] { child_->removeFromSuperview(); };
    child_->setNeedsLayout(true);
    root_->addSubview(child_);
    adaptor_->settle();
    EXPECT_EQ(child_->superview(), nullptr);
    EXPECT_EQ(child_->draws, 1);
}

TEST_F(ConformanceDisplay, TheAppearanceIsToldOnceToEachViewAndEachIsDrawn) {
    showAndForget();
    adaptor_->setDesktopAppearance(Appearance::light);
    adaptor_->settle();
    taken();
    root_->draws = child_->draws = 0;
    adaptor_->setDesktopAppearance(Appearance::dark);
    adaptor_->settle();
    EXPECT_EQ(NSApplication::sharedApplication().effectiveAppearance(), Appearance::dark);
    EXPECT_THAT(taken(), ElementsAre("root appearance", "child appearance"));
    EXPECT_EQ(root_->draws, 1);
    EXPECT_EQ(child_->draws, 1);
    // The program's own choice comes before the desktop's, until it is taken back.
    NSApplication::sharedApplication().setAppearance(Appearance::light);
    adaptor_->settle();
    EXPECT_EQ(NSApplication::sharedApplication().effectiveAppearance(), Appearance::light);
    EXPECT_EQ(taken().size(), 2u);
    NSApplication::sharedApplication().setAppearance(std::nullopt);
    adaptor_->settle();
    EXPECT_EQ(NSApplication::sharedApplication().effectiveAppearance(), Appearance::dark);
}

TEST_F(ConformanceDisplay, SystemColoursFollowTheAppearance) {
    adaptor_->setDesktopAppearance(Appearance::light);
    child_->painter = [] {
        NSColor::controlBackgroundColor().set();
        NSRectFill(NSMakeRect(0, 0, 100, 50));
    };
    show(root_);
    const std::vector<std::string> lines = {"fill rect {{0, 0}, {100, 50}} controlBackgroundColor operation 1"};
    expectDrawing(*child_, lines, {{{50, 25}, {SystemColour::none, 1, 1, 1, 1}}});
    adaptor_->setDesktopAppearance(Appearance::dark);
    expectDrawing(*child_, lines, {{{50, 25}, {SystemColour::none, 30 / 255.0, 30 / 255.0, 30 / 255.0, 1}}});
}

} // namespace zr::conformance
