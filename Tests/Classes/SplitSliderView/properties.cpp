// SPDX-License-Identifier: MIT
#include "SplitSliderTest.h"

#include <cmath>
#include <random>

namespace zr {

// What must hold for any geometry with a track wider than zero.
class SplitSliderViewProperties : public test::SplitSliderTest {
protected:
    double part() { return std::uniform_real_distribution<double>(0, 1)(random_); }

    // Another size, range and clip inside the range; both handles can be hit without touching each other's
    // middle.
    void shuffle() {
        const double width = 60 + part() * 2000;
        const double handle = 4 + part() * 30;
        slider_->setTrimLeftImg(test::picture("left", {handle, 20}));
        slider_->setTrimRightImg(test::picture("right", {handle, 20}));
        slider_->setFrame({{0, 0}, {width, 61}});
        slider_->setSliderXOffset(part() * width * 0.45);
        slider_->setDMinValue((part() - 0.5) * 2e5);
        slider_->setDLength(10 + part() * 1e5);
        const double length = 5 + part() * (slider_->dLength() - 5);
        slider_->setSelection_length(slider_->dMinValue() + part() * (slider_->dLength() - length), length);
        draw();
        ASSERT_GT(slider_->rcSlider().size.width, 0.0);
    }
    void draw() { slider_->drawRect(slider_->bounds()); }
    void send(NSEventType type, NSPoint point) {
        const NSEvent event({.type = type, .location = {point.x, 61 - point.y}}, 61);
        if (type == NSEventTypeLeftMouseDown)
            slider_->mouseDown(event);
        else if (type == NSEventTypeLeftMouseDragged)
            slider_->mouseDragged(event);
        else
            slider_->mouseUp(event);
    }
    double end() const { return start() + length(); }
    // One part in a thousand million of the range, and of the numbers that stand for it.
    double tolerance() const { return 1e-9 * (slider_->dLength() + std::abs(slider_->dMinValue())); }

    std::mt19937_64 random_{19580131};
};

TEST_F(SplitSliderViewProperties, APressWithoutMovementKeepsAClipOfFiveOrLonger) {
    for (int round = 0; round < 1000; ++round) {
        shuffle();
        const double startBefore = start(), lengthBefore = length();
        const bool left = part() < 0.5;
        const NSRect handle = left ? slider_->rcClipLeft() : slider_->rcClipRight();
        const NSPoint press = {handle.origin.x + part() * handle.size.width * 0.999,
                               handle.origin.y + 5 + part() * 14};
        send(NSEventTypeLeftMouseDown, press);
        ASSERT_TRUE(slider_->bDraggingLeftClip() || slider_->bDraggingRightClip());
        EXPECT_NEAR(start(), startBefore, tolerance());
        EXPECT_NEAR(length(), lengthBefore, tolerance());
        send(NSEventTypeLeftMouseUp, press);
        EXPECT_NEAR(start(), startBefore, tolerance());
        EXPECT_NEAR(length(), lengthBefore, tolerance());
    }
}

TEST_F(SplitSliderViewProperties, ADragOfAHandleLeavesFiveUnitsOrMore) {
    for (int round = 0; round < 500; ++round) {
        shuffle();
        const bool left = part() < 0.5;
        const NSRect handle = left ? slider_->rcClipLeft() : slider_->rcClipRight();
        send(NSEventTypeLeftMouseDown, {handle.origin.x + 1, handle.origin.y + 10});
        for (int step = 0; step < 8; ++step) {
            send(NSEventTypeLeftMouseDragged, {(part() * 3 - 1) * slider_->bounds().size.width, part() * 61});
            EXPECT_GE(length(), 5.0);
        }
        send(NSEventTypeLeftMouseUp, {0, 0});
        EXPECT_GE(length(), 5.0);
    }
}

TEST_F(SplitSliderViewProperties, DraggingTheLeftHandleKeepsTheEnd) {
    for (int round = 0; round < 500; ++round) {
        shuffle();
        const double endBefore = end();
        const NSRect handle = slider_->rcClipLeft();
        send(NSEventTypeLeftMouseDown, {handle.origin.x + 1, handle.origin.y + 10});
        for (int step = 0; step < 8; ++step) {
            send(NSEventTypeLeftMouseDragged, {(part() * 3 - 1) * slider_->bounds().size.width, 30});
            EXPECT_NEAR(end(), endBefore, tolerance());
            EXPECT_GE(start(), slider_->dMinValue() - tolerance());
        }
        send(NSEventTypeLeftMouseUp, {0, 0});
    }
}

TEST_F(SplitSliderViewProperties, DraggingTheRightHandleKeepsTheStart) {
    for (int round = 0; round < 500; ++round) {
        shuffle();
        const double startBefore = start();
        const NSRect handle = slider_->rcClipRight();
        // Where the handles overlap the left one would win.
        send(NSEventTypeLeftMouseDown, {handle.origin.x + handle.size.width - 0.5, handle.origin.y + 10});
        if (!slider_->bDraggingRightClip()) continue;
        for (int step = 0; step < 8; ++step) {
            send(NSEventTypeLeftMouseDragged, {(part() * 3 - 1) * slider_->bounds().size.width, 30});
            EXPECT_EQ(start(), startBefore);
        }
        send(NSEventTypeLeftMouseUp, {0, 0});
    }
}

} // namespace zr
