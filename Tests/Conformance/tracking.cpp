// SPDX-License-Identifier: MIT
#include "Adaptor.h"

#include <Foundation/Dispatch.h>

namespace zr::conformance {

using testing::ElementsAre;

// A view that follows the pointer from the press to the release in one go.
class ConformanceTracking : public Conformance {
protected:
    static constexpr NSEventMask kDragOrUp = NSEventMaskLeftMouseDragged | NSEventMaskLeftMouseUp;

    void SetUp() override {
        root_ = probe("root", NSMakeRect(0, 0, 200, 100));
        view_ = probe("view", NSMakeRect(10, 10, 80, 80));
        root_->addSubview(view_);
        show(root_);
        taken();
        view_->onMouseDown = [this](const NSEvent&) { pull(); };
    }
    void pull() {
        const auto window = window_;
        while (const auto event = window->nextEventMatchingMask(kDragOrUp)) {
            log_.push_back(stringWithFormat("pulled %d at %g %g", int(event->type()),
                                            event->locationInWindow().x, event->locationInWindow().y));
            if (onPulled) onPulled();
            if (event->type() == NSEventTypeLeftMouseUp) return;
        }
        log_.emplace_back("nothing more");
    }
    using Step = std::function<void()>;
    Step dragTo(double x, double y) {
        return [this, x, y] { adaptor_->drag(*window_, {x, y}); };
    }
    Step releaseAt(double x, double y) {
        return [this, x, y] { adaptor_->release(*window_, {x, y}); };
    }
    Step typing(Key key) {
        return [this, key] { adaptor_->type(*window_, key); };
    }
    // The press does not return before the pull has ended.
    void pressDuring(std::vector<Step> steps) {
        adaptor_->during(std::move(steps));
        adaptor_->press(*window_, {20, 50});
    }
    std::shared_ptr<Probe> root_, view_;
    std::function<void()> onPulled;
};

TEST_F(ConformanceTracking, DragsAndTheReleaseComeToTheCallerAlsoFromOutside) {
    pressDuring({dragTo(60, 50), dragTo(1500, -700), dragTo(30, 40), releaseAt(30, 40)});
    EXPECT_THAT(taken(), ElementsAre("view down 10 40", "pulled 6 at 60 50", "pulled 6 at 1500 -700",
                                     "pulled 6 at 30 40", "pulled 2 at 30 40"));
    adaptor_->settle();
    EXPECT_TRUE(taken().empty()) << "the view gets none of it a second time";
}

TEST_F(ConformanceTracking, KeysAndWheelWaitAndComeAfterwardsInTheirOrder) {
    view_->acceptsFocus = true;
    window_->makeFirstResponder(view_.get());
    taken();
    pressDuring({typing(Key::a), dragTo(60, 50), typing(Key::b), releaseAt(60, 50)});
    adaptor_->settle();
    EXPECT_THAT(taken(), ElementsAre("view down 10 40", "pulled 6 at 60 50", "pulled 2 at 60 50", "view key a",
                                     "view key b"));
}

TEST_F(ConformanceTracking, QueuesDelaysAndDrawingGoOn) {
    bool hopped = false, delayed = false;
    view_->draws = 0;
    pressDuring({[&] {
                     dispatch_async(dispatch_get_main_queue(), [&] { hopped = true; });
                     dispatch_after(dispatch_time(DISPATCH_TIME_NOW, 1'000'000), dispatch_get_main_queue(),
                                    [&] {
                                        delayed = true;
                                        view_->setNeedsDisplay(true);
                                    });
                 },
                 [&] { adaptor_->passUntil([&] { return delayed && view_->draws > 0; }); }, releaseAt(20, 50)});
    EXPECT_TRUE(hopped);
    EXPECT_TRUE(delayed);
    EXPECT_GT(view_->draws, 0);
}

TEST_F(ConformanceTracking, ASlowCallerGetsTheLastOfSeveralDrags) {
    bool slow = true;
    onPulled = [&] {
        if (!std::exchange(slow, false)) return;
        // These come while the caller is still busy with the first.
        for (const double x : {70.0, 80.0, 90.0}) adaptor_->drag(*window_, {x, 50});
    };
    pressDuring({dragTo(60, 50), releaseAt(90, 50)});
    EXPECT_THAT(taken(),
                ElementsAre("view down 10 40", "pulled 6 at 60 50", "pulled 6 at 90 50", "pulled 2 at 90 50"));
}

TEST_F(ConformanceTracking, ItEndsWhenTheUserClosesTheWindow) {
    pressDuring({dragTo(60, 50), [&] { adaptor_->close(*window_); }});
    EXPECT_EQ(taken().back(), "nothing more");
    EXPECT_FALSE(window_->isVisible());
}

TEST_F(ConformanceTracking, ItEndsWhenTheProgramHidesOrClosesTheWindow) {
    pressDuring({[&] { window_->orderOut(nullptr); }});
    EXPECT_EQ(taken().back(), "nothing more");
    window_->makeKeyAndOrderFront(nullptr);
    adaptor_->settle();
    pressDuring({[&] { window_->close(); }});
    EXPECT_EQ(taken().back(), "nothing more");
}

TEST_F(ConformanceTracking, ItEndsWhenTheWindowClosesAndIsShownAgainAtOnce) {
    pressDuring({[&] {
        window_->close();
        window_->makeKeyAndOrderFront(nullptr);
    }});
    EXPECT_EQ(taken().back(), "nothing more");
    EXPECT_TRUE(window_->isVisible());
}

TEST_F(ConformanceTracking, ItEndsWhenTheRealWindowVanishes) {
    pressDuring({[&] { adaptor_->takeAway(*window_); }});
    EXPECT_EQ(taken().back(), "nothing more");
}

TEST_F(ConformanceTracking, ItEndsWhenAModalDialogOpens) {
    pressDuring({dragTo(60, 50), [&] { adaptor_->blockByDialog(*window_); }});
    EXPECT_EQ(taken().back(), "nothing more");
    EXPECT_TRUE(window_->isVisible());
}

TEST_F(ConformanceTracking, ItEndsWhenTheViewLeavesOrIsHidden) {
    pressDuring({[&] { view_->removeFromSuperview(); }});
    EXPECT_EQ(taken().back(), "nothing more");
    root_->addSubview(view_);
    adaptor_->settle();
    adaptor_->release(*window_, {20, 50});
    taken();
    pressDuring({[&] { root_->setHidden(true); }});
    EXPECT_EQ(taken().back(), "nothing more");
}

TEST_F(ConformanceTracking, ItEndsWhenTheApplicationQuits) {
    bool another = true;
    dispatch_async(dispatch_get_main_queue(), [&] {
        pressDuring({dragTo(60, 50), [&] { NSApplication::sharedApplication().terminate(nullptr); }});
        another = window_->nextEventMatchingMask(kDragOrUp).has_value();
    });
    NSApplication::sharedApplication().run();
    EXPECT_THAT(taken(), ElementsAre("view down 10 40", "pulled 6 at 60 50", "nothing more"));
    EXPECT_FALSE(another) << "nor does another begin";
}

TEST_F(ConformanceTracking, EventsOfAnotherWindowWaitForItsEnd) {
    const auto other = probe("other", NSMakeRect(0, 0, 100, 100));
    const auto otherWindow = makeWindow("the other window", other, {100, 100});
    otherWindow->orderFront(nullptr);
    adaptor_->settle();
    pressDuring({[&] { adaptor_->wheel(*otherWindow, {50, 50}, 1); }, releaseAt(20, 50)});
    adaptor_->settle();
    EXPECT_THAT(taken(), ElementsAre("view down 10 40", "pulled 2 at 20 50", "other wheel 50 50"));
    otherWindow->close();
}

TEST_F(ConformanceTracking, WithoutAVisibleWindowThereIsNothingToWaitFor) {
    window_->orderOut(nullptr);
    EXPECT_EQ(window_->nextEventMatchingMask(kDragOrUp), std::nullopt);
}

} // namespace zr::conformance
