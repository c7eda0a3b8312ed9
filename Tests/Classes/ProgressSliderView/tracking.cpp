// SPDX-License-Identifier: MIT
#include "Support/SliderTest.h"

#include <AppKit/NSApplication.h>
#include <ZRUIKit/KitFoundation.h>
#include <ZRUIKit/ProgressSliderView.h>

#include <functional>
#include <stdexcept>
#include <utility>
#include <vector>

namespace zr {

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// Writes down what the slider hands on.
class Parent : public NSView {
public:
    void mouseDown(const NSEvent&) override { log.push_back("down"); }
    void mouseDragged(const NSEvent& event) override {
        log.push_back("drag " + test::written(event.locationInWindow().x));
    }
    void mouseUp(const NSEvent& event) override {
        log.push_back("up " + test::written(event.locationInWindow().x));
    }
    void keyDown(const NSEvent& event) override { log.push_back("key " + event.characters()); }
    bool acceptsFirstResponder() const override { return true; }
    std::vector<std::string> log;
};

} // namespace

class ProgressSliderViewTracking : public test::SliderTest<ProgressSliderView> {
protected:
    void SetUp() override {
        show();
        // Between window and slider, to see what goes on along the chain.
        parent_ = make<Parent>(test::kSliderFrame);
        window_->setContentView(parent_);
        parent_->addSubview(slider_);
        platform_.display();
    }
    double barLength() const { return slider_->itemSelection()->dLength(); }
    // The user's next doings, one for each wait of the slider.
    template <class... Steps>
    void then(Steps... steps) {
        (platform_.script(steps), ...);
    }
    auto dragTo(NSPoint point) {
        return [this, point] { user_->mouseDragged(point); };
    }
    auto letGoAt(NSPoint point) {
        return [this, point] { user_->mouseUp(point); };
    }

    std::shared_ptr<Parent> parent_;
};

TEST_F(ProgressSliderViewTracking, APressWithoutMovementSeeks) {
    then(letGoAt({150, 15}));
    EXPECT_TRUE(user_->mouseDown({150, 15}));
    EXPECT_EQ(slider_->dCurValue(), 700.0);
    EXPECT_EQ(barLength(), 700.0);
    EXPECT_FALSE(slider_->bDraggingKnob());
    EXPECT_THAT(messages(), ElementsAre("begin 700", "end 700"));
    EXPECT_THAT(parent_->log, ElementsAre("up 150"));
}

TEST_F(ProgressSliderViewTracking, TheBarFollowsTheDragAndNotTheRelease) {
    std::vector<double> bars;
    then(
        dragTo({60, 15}),
        [&] {
            bars.push_back(barLength());
            EXPECT_TRUE(slider_->needsDisplay());
            user_->mouseDragged({110, 300});
        },
        [&] {
            bars.push_back(barLength());
            user_->mouseUp({210, 15});
        });
    user_->mouseDown({150, 15});
    EXPECT_THAT(bars, ElementsAre(250, 500));
    EXPECT_EQ(slider_->dCurValue(), 1000.0);
    EXPECT_EQ(barLength(), 500.0);
    EXPECT_THAT(messages(), ElementsAre("begin 700", "change 250", "change 500", "end 1000"));
    EXPECT_THAT(parent_->log, ElementsAre("drag 60", "drag 110", "up 210"));
}

TEST_F(ProgressSliderViewTracking, TheReleaseAsksForNoDrawing) {
    then([&] {
        platform_.display();
        EXPECT_FALSE(slider_->needsDisplay());
        user_->mouseUp({210, 15});
    });
    user_->mouseDown({150, 15});
    const int drawings = drawCount();
    platform_.display();
    EXPECT_EQ(drawCount(), drawings);
    EXPECT_EQ(slider_->dCurValue(), 1000.0);
}

TEST_F(ProgressSliderViewTracking, BeyondTheWindowTheDragGoesOn) {
    then(dragTo({-500, -500}), dragTo({5000, 5000}), letGoAt({5000, 0}));
    user_->mouseDown({150, 15});
    EXPECT_THAT(messages(), ElementsAre("begin 700", "change 0", "change 1000", "end 1000"));
}

TEST_F(ProgressSliderViewTracking, APressAwayFromTheTrackRunsTheLoopAndTellsNothing) {
    slider_->seekToValue(400);
    messages();
    bool waited = false;
    then(dragTo({60, 28}), [&] {
        waited = true;
        user_->mouseUp({60, 28});
    });
    user_->mouseDown({150, 28});
    EXPECT_TRUE(waited);
    EXPECT_EQ(slider_->dCurValue(), 400.0);
    EXPECT_EQ(barLength(), 400.0); // set to the unchanged value
    EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(ProgressSliderViewTracking, ASwitchedOffSliderRunsTheLoopAndSetsTheBarAlone) {
    slider_->seekToValue(400);
    slider_->setEnabled(false);
    messages();
    platform_.display();
    const int drawings = drawCount();
    bool waited = false;
    then(dragTo({60, 15}), [&] {
        waited = true;
        user_->mouseUp({60, 15});
    });
    user_->mouseDown({150, 15});
    EXPECT_TRUE(waited);
    EXPECT_EQ(slider_->dCurValue(), 400.0);
    EXPECT_EQ(barLength(), 400.0);
    EXPECT_GT(drawCount(), drawings);
    EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(ProgressSliderViewTracking, KeysWaitUntilTheDragIsOver) {
    window_->makeFirstResponder(parent_.get());
    then([&] { user_->keyDown(kKeyCodeUnknown, "a"); }, dragTo({60, 15}),
         [&] { user_->keyDown(kKeyCodeUnknown, "b"); }, letGoAt({60, 15}));
    user_->mouseDown({150, 15});
    EXPECT_THAT(parent_->log, ElementsAre("drag 60", "up 60", "key a", "key b"));
}

TEST_F(ProgressSliderViewTracking, StepsThatComeTogetherBecomeOne) {
    then(
        [&] {
            user_->mouseDragged({60, 15});
            user_->mouseDragged({70, 15});
            user_->mouseDragged({110, 15});
        },
        letGoAt({110, 15}));
    user_->mouseDown({150, 15});
    EXPECT_THAT(messages(), ElementsAre("begin 700", "change 500", "end 500"));
}

TEST_F(ProgressSliderViewTracking, ASecondDragThatCameDuringTheFirstIsFollowedToItsEnd) {
    then([&] {
        user_->mouseUp({110, 15});
        user_->mouseDown({60, 15});
        user_->mouseDragged({70, 15});
        user_->mouseUp({80, 15});
        user_->mouseDown({160, 15});
        user_->mouseUp({160, 15});
    });
    user_->mouseDown({150, 15});
    EXPECT_THAT(messages(), ElementsAre("begin 700", "end 500", "begin 250", "change 300", "end 350",
                                        "begin 750", "end 750"));
}

TEST_F(ProgressSliderViewTracking, QueuesAndTimeGoOnMeanwhile) {
    std::vector<std::string> log;
    OnMainQueue([&] { log.push_back("posted"); });
    AfterDelay(5, [&] {
        log.push_back("after five seconds");
        user_->mouseUp({150, 15});
    });
    const double before = platform_.now();
    user_->mouseDown({150, 15});
    EXPECT_THAT(log, ElementsAre("posted", "after five seconds"));
    EXPECT_NEAR(platform_.now() - before, 5, 1e-6);
    EXPECT_THAT(messages(), ElementsAre("begin 700", "end 700"));
}

TEST_F(ProgressSliderViewTracking, WithNothingToComeTheLoopEnds) {
    user_->mouseDown({150, 15});
    EXPECT_TRUE(platform_.starved());
    EXPECT_TRUE(slider_->bDraggingKnob()); // nobody let go
    EXPECT_THAT(messages(), ElementsAre("begin 700"));
}

TEST_F(ProgressSliderViewTracking, TheLoopEndsWhenTheWindowCloses) {
    then(
        dragTo({60, 15}), [&] { window_->close(); }, [&] { FAIL() << "still waiting"; });
    user_->mouseDown({150, 15});
    EXPECT_THAT(messages(), ElementsAre("begin 700", "change 250"));
}

TEST_F(ProgressSliderViewTracking, TheLoopEndsWhenTheWindowIsHidden) {
    then([&] { window_->orderOut(nullptr); }, [&] { FAIL() << "still waiting"; });
    user_->mouseDown({150, 15});
}

TEST_F(ProgressSliderViewTracking, AWindowClosedAndShownAgainEndsTheLoopToo) {
    then(
        [&] {
            window_->close();
            window_->makeKeyAndOrderFront(nullptr);
        },
        [&] { FAIL() << "still waiting"; });
    user_->mouseDown({150, 15});
    EXPECT_TRUE(window_->isVisible());
}

TEST_F(ProgressSliderViewTracking, TheLoopEndsWhenTheRealWindowVanishes) {
    then([&] { user_->destroy(); }, [&] { FAIL() << "still waiting"; });
    user_->mouseDown({150, 15});
}

TEST_F(ProgressSliderViewTracking, TheLoopEndsWhenAModalDialogOpens) {
    then([&] { user_->blockByModalDialog(); }, [&] { FAIL() << "still waiting"; });
    user_->mouseDown({150, 15});
}

TEST_F(ProgressSliderViewTracking, TheLoopEndsWhenTheSliderLeavesItsWindow) {
    then(
        dragTo({60, 15}), [&] { slider_->removeFromSuperview(); }, [&] { FAIL() << "still waiting"; });
    user_->mouseDown({150, 15});
    EXPECT_THAT(messages(), ElementsAre("begin 700", "change 250"));
}

TEST_F(ProgressSliderViewTracking, TheLoopEndsWhenTheApplicationEnds) {
    then([&] { NSApplication::sharedApplication().terminate(nullptr); }, [&] { FAIL() << "still waiting"; });
    user_->mouseDown({150, 15});
}

namespace {

// Does something in the middle of a message.
struct Interrupter : test::SliderRecorder {
    void sliderView_beginDragAt(BaseSliderView& view, double value) override {
        SliderRecorder::sliderView_beginDragAt(view, value);
        if (const auto act = std::exchange(onBegin, nullptr)) act();
    }
    void sliderView_didChangeValue(BaseSliderView& view, double value) override {
        SliderRecorder::sliderView_didChangeValue(view, value);
        if (const auto act = std::exchange(onChange, nullptr)) act();
    }
    std::function<void()> onBegin, onChange;
};

} // namespace

// What ends a press within a message of the delegate ends the loop when it goes on; the next press is whole.
TEST_F(ProgressSliderViewTracking, WhatEndsThePressWithinAMessageEndsTheLoop) {
    const auto other =
        make<NSWindow>(&NSWindow::initWithContentRect_styleMask_backing_defer, test::kSliderFrame,
                       NSWindowStyleMaskTitled | NSWindowStyleMaskClosable, NSBackingStoreBuffered, false);
    window_->setTitle("main");
    other->makeKeyAndOrderFront(nullptr);
    const auto mainWindow = [&]() -> headless::Window& {
        for (auto* const window : platform_.windows())
            if (window->title() == "main") return *window;
        throw std::logic_error("no main window");
    };
    const std::vector<std::pair<const char*, std::function<void()>>> endings = {
        {"hidden and shown",
         [&] {
             slider_->setHidden(true);
             slider_->setHidden(false);
         }},
        {"taken out and added again",
         [&] {
             slider_->removeFromSuperview();
             parent_->addSubview(slider_);
         }},
        {"moved to another window", [&] { other->contentView()->addSubview(slider_); }},
        {"its window closed and shown",
         [&] {
             window_->close();
             window_->makeKeyAndOrderFront(nullptr);
         }},
        {"a dialog", [&] {
             platform_.script([&] { NSApplication::sharedApplication().stopModal(); });
             const auto dialog = make<NSWindow>(&NSWindow::initWithContentRect_styleMask_backing_defer,
                                                NSMakeRect(0, 0, 50, 50), NSWindowStyleMaskTitled,
                                                NSBackingStoreBuffered, false);
             NSApplication::sharedApplication().runModalForWindow(*dialog);
             dialog->close();
         }}};
    for (const bool atBegin : {true, false}) {
        for (const auto& [name, ending] : endings) {
            SCOPED_TRACE(std::string(name) + (atBegin ? " at the beginning" : " in a step"));
            const auto interrupter = std::make_shared<Interrupter>();
            slider_->setDelegate(interrupter);
            (atBegin ? interrupter->onBegin : interrupter->onChange) = ending;
            if (!atBegin) then([&] { mainWindow().mouseDragged({60, 15}); });
            mainWindow().mouseDown({150, 15});
            EXPECT_FALSE(platform_.starved()) << "it waits for a release that never comes";

            if (slider_->window() != window_.get()) parent_->addSubview(slider_);
            mainWindow().mouseUp({150, 15});
            interrupter->taken();
            then([&] { mainWindow().mouseDragged({60, 15}); }, [&] { mainWindow().mouseUp({60, 15}); });
            mainWindow().mouseDown({150, 15});
            EXPECT_THAT(interrupter->taken(), ElementsAre("begin 700", "change 250", "end 250"));
        }
    }
}

TEST_F(ProgressSliderViewTracking, APressWhoseReleaseWentElsewhereEndsWithTheNextPress) {
    then([&] {
        user_->mouseDragged({60, 15});
        user_->mouseDown({110, 15}); // no release came
        user_->mouseUp({110, 15});
    });
    user_->mouseDown({150, 15});
    EXPECT_THAT(messages(), ElementsAre("begin 700", "change 250", "begin 500", "end 500"));
}

namespace {
// Takes the slider out of its window, and lets go of it, at the press.
struct Remover : SliderViewDelegate {
    void sliderView_beginDragAt(BaseSliderView& view, double) override {
        view.removeFromSuperview();
        slider->reset();
    }
    std::shared_ptr<ProgressSliderView>* slider = nullptr;
};
} // namespace

TEST_F(ProgressSliderViewTracking, ASliderWithoutAWindowDoesNotWait) {
    const auto remover = std::make_shared<Remover>();
    remover->slider = &slider_;
    slider_->setDelegate(remover);
    const std::weak_ptr<ProgressSliderView> watched = slider_;
    user_->mouseDown({150, 15});
    EXPECT_TRUE(watched.expired());
}

TEST_F(ProgressSliderViewTracking, OutsideOfAnyEventAPullTakesEventsToo) {
    then(letGoAt({60, 15}));
    slider_->mouseDown(NSEvent({.type = NSEventTypeLeftMouseDown, .location = {150, 15}}, 30));
    EXPECT_THAT(messages(), ElementsAre("begin 700", "end 250"));
    platform_.runMainQueue();
    then(letGoAt({110, 15}));
    user_->mouseDown({150, 15}); // events are delivered again
    EXPECT_THAT(messages(), ElementsAre("begin 700", "end 500"));
}

TEST_F(ProgressSliderViewTracking, APullInsideAPullTakesTheEventsFirst) {
    std::vector<double> inner;
    then(
        [&] {
            // As from a block that runs while the slider waits.
            while (const auto event = window_->nextEventMatchingMask(NSEventMaskLeftMouseDragged)) {
                inner.push_back(event->locationInWindow().x);
                if (inner.size() == 2) break;
            }
        },
        dragTo({60, 15}), dragTo({80, 15}), letGoAt({110, 15}));
    user_->mouseDown({150, 15});
    EXPECT_THAT(inner, ElementsAre(60, 80));
    EXPECT_THAT(messages(), ElementsAre("begin 700", "end 500"));
}

} // namespace zr
