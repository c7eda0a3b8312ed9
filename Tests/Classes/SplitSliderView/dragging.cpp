// SPDX-License-Identifier: MIT
#include "SplitSliderTest.h"

namespace zr {

using testing::ElementsAre;
using testing::IsEmpty;

class SplitSliderViewDragging : public test::SplitSliderTest {};

TEST_F(SplitSliderViewDragging, APressOnTheLeftHandleLeavesTheClipAsItIs) {
    EXPECT_TRUE(user_->mouseDown({6, 25}));
    EXPECT_TRUE(slider_->bDraggingLeftClip());
    EXPECT_FALSE(slider_->bDraggingRightClip());
    EXPECT_FALSE(slider_->bDraggingKnob());
    EXPECT_EQ(slider_->dDragXoffset(), 4.0);
    EXPECT_EQ(start(), 0.0);
    EXPECT_EQ(length(), 1000.0);
    EXPECT_THAT(messages(), ElementsAre("begin clip left 0 1000"));
}

TEST_F(SplitSliderViewDragging, TheLeftHandleMovesTheStartAndKeepsTheEnd) {
    user_->mouseDown({6, 25});
    messages();
    user_->mouseDragged({106, 25});
    EXPECT_EQ(start(), 500.0);
    EXPECT_EQ(length(), 500.0);
    EXPECT_THAT(messages(), ElementsAre("drag clip left 500 500"));
}

TEST_F(SplitSliderViewDragging, DraggingTheLeftHandlePastTheEndKeepsFiveUnits) {
    user_->mouseDown({6, 25});
    user_->mouseDragged({106, 25});
    user_->mouseDragged({300, 25});
    EXPECT_EQ(start(), 995.0);
    EXPECT_EQ(length(), 5.0);
    user_->mouseUp({300, 25});
    EXPECT_EQ(start(), 995.0);
    EXPECT_FALSE(slider_->bDraggingLeftClip());
    EXPECT_THAT(messages(), ElementsAre("begin clip left 0 1000", "drag clip left 500 500",
                                        "drag clip left 995 5", "end clip left 995 5"));
}

TEST_F(SplitSliderViewDragging, TheLeftHandleStopsAtTheRangesStart) {
    setClip(500, 200);
    user_->mouseDown({106, 25});
    user_->mouseDragged({-500, 25});
    EXPECT_EQ(start(), 0.0);
    EXPECT_EQ(length(), 700.0);
}

TEST_F(SplitSliderViewDragging, TheRightHandleMovesTheEndAndKeepsTheStart) {
    setClip(250, 500);
    user_->mouseDown({163, 25}); // three points right of its inner edge
    EXPECT_TRUE(slider_->bDraggingRightClip());
    EXPECT_FALSE(slider_->bDraggingLeftClip());
    EXPECT_EQ(slider_->dDragXoffset(), 3.0);
    EXPECT_EQ(length(), 500.0);
    user_->mouseDragged({113, 25});
    EXPECT_EQ(start(), 250.0);
    EXPECT_EQ(length(), 250.0);
    user_->mouseDragged({2000, 25});
    EXPECT_EQ(length(), 750.0);
    user_->mouseUp({2000, 25});
    EXPECT_FALSE(slider_->bDraggingRightClip());
    EXPECT_THAT(messages(), ElementsAre("begin clip right 250 500", "drag clip right 250 250",
                                        "drag clip right 250 750", "end clip right 250 750"));
}

TEST_F(SplitSliderViewDragging, DraggingTheRightHandleToTheFarLeftKeepsFiveUnits) {
    setClip(250, 500);
    user_->mouseDown({163, 25});
    user_->mouseDragged({-1000, 25});
    EXPECT_EQ(start(), 250.0);
    EXPECT_EQ(length(), 5.0);
}

TEST_F(SplitSliderViewDragging, APressOnHandleAndTrackMovesTheValueFirst) {
    slider_->setDCurValue(700);
    user_->mouseDown({6, 20}); // inside the handle and within five points of the track
    EXPECT_EQ(slider_->dCurValue(), 0.0);
    EXPECT_TRUE(slider_->bDraggingKnob());
    EXPECT_TRUE(slider_->bDraggingLeftClip());
    EXPECT_THAT(messages(), ElementsAre("begin 0", "begin clip left 0 1000"));

    user_->mouseDragged({106, 20}); // only the handle moves
    EXPECT_EQ(slider_->dCurValue(), 0.0);
    EXPECT_EQ(start(), 500.0);
    EXPECT_THAT(messages(), ElementsAre("drag clip left 500 500"));

    user_->mouseUp({110, 20}); // the knob's drag ends where the release was
    EXPECT_EQ(slider_->dCurValue(), 500.0);
    EXPECT_EQ(start(), 500.0);
    EXPECT_THAT(messages(), ElementsAre("end 500", "end clip left 500 500"));
    EXPECT_FALSE(slider_->bDraggingKnob());
}

TEST_F(SplitSliderViewDragging, WhereTheHandlesOverlapTheLeftOneWins) {
    setClip(600, -20); // backwards: the right handle begins before the left one ends
    EXPECT_EQ(slider_->rcClipLeft(), NSMakeRect(122, 16.5, 8, 12));
    EXPECT_NEAR(slider_->rcClipRight().origin.x, 126, 1e-9);
    user_->mouseDown({128, 25});
    EXPECT_TRUE(slider_->bDraggingLeftClip());
    EXPECT_FALSE(slider_->bDraggingRightClip());
}

TEST_F(SplitSliderViewDragging, HandlesAreHitByAHalfOpenRectangle) {
    const auto leftHit = [&](NSPoint point) {
        user_->mouseDown(point);
        const bool hit = slider_->bDraggingLeftClip();
        user_->mouseUp(point);
        return hit;
    };
    EXPECT_TRUE(leftHit({2, 25}));
    EXPECT_FALSE(leftHit({1.99, 25}));
    EXPECT_TRUE(leftHit({9.99, 25}));
    EXPECT_FALSE(leftHit({10, 25}));
    EXPECT_TRUE(leftHit({5, 16.5}));
    EXPECT_FALSE(leftHit({5, 16.49}));
    EXPECT_TRUE(leftHit({5, 28.49}));
    EXPECT_FALSE(leftHit({5, 28.5}));
}

TEST_F(SplitSliderViewDragging, APressLengthensAClipShorterThanFive) {
    setClip(500, 2);
    user_->mouseDown({106, 25}); // left: the end stays
    EXPECT_EQ(start(), 497.0);
    EXPECT_EQ(length(), 5.0);
    user_->mouseUp({106, 25});

    setClip(500, 2);
    user_->mouseDown({112, 25}); // right: the start stays
    EXPECT_TRUE(slider_->bDraggingRightClip());
    EXPECT_EQ(start(), 500.0);
    EXPECT_EQ(length(), 5.0);
}

TEST_F(SplitSliderViewDragging, ThePressRedrawsAndSoDoesEveryStepButNotTheRelease) {
    int count = drawCount();
    user_->mouseDown({6, 25});
    EXPECT_EQ(drawCount(), ++count);
    user_->mouseDragged({16, 25});
    EXPECT_EQ(drawCount(), ++count);
    user_->mouseUp({16, 25});
    EXPECT_EQ(drawCount(), count);
    user_->mouseDown({110, 29}); // on nothing
    EXPECT_EQ(drawCount(), ++count);
    user_->mouseDragged({120, 29}); // nothing is dragged
    EXPECT_EQ(drawCount(), ++count);
    user_->mouseUp({120, 29});
    EXPECT_EQ(drawCount(), count);
    EXPECT_EQ(slider_->dCurValue(), 0.0);
}

TEST_F(SplitSliderViewDragging, APressOnTheTrackDragsTheCurrentValue) {
    user_->mouseDown({110, 15});
    user_->mouseDragged({60, 15});
    user_->mouseUp({160, 15});
    EXPECT_EQ(slider_->dCurValue(), 750.0);
    EXPECT_EQ(start(), 0.0);
    EXPECT_EQ(length(), 1000.0);
    EXPECT_THAT(messages(), ElementsAre("begin 500", "change 250", "end 750"));
}

TEST_F(SplitSliderViewDragging, ANewPressClearsBothHandles) {
    user_->mouseDown({6, 25});
    user_->mouseDown({110, 29});
    EXPECT_FALSE(slider_->bDraggingLeftClip());
    EXPECT_FALSE(slider_->bDraggingRightClip());
    user_->mouseUp({110, 29});
    EXPECT_THAT(messages(), ElementsAre("begin clip left 0 1000"));
}

TEST_F(SplitSliderViewDragging, ADisabledSliderDoesNothingAtAll) {
    slider_->setEnabled(false);
    platform_.display();
    const int count = drawCount();
    user_->mouseDown({6, 25});
    user_->mouseDragged({106, 25});
    user_->mouseUp({106, 25});
    user_->mouseDown({110, 15});
    EXPECT_EQ(drawCount(), count);
    EXPECT_FALSE(slider_->bDraggingLeftClip());
    EXPECT_EQ(start(), 0.0);
    EXPECT_EQ(slider_->dCurValue(), 0.0);
    EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(SplitSliderViewDragging, DisabledInTheMiddleTheFlagsStay) {
    user_->mouseDown({6, 25});
    slider_->setEnabled(false);
    user_->mouseDragged({106, 25});
    user_->mouseUp({106, 25});
    EXPECT_TRUE(slider_->bDraggingLeftClip());
    EXPECT_EQ(start(), 0.0);
    EXPECT_THAT(messages(), ElementsAre("begin clip left 0 1000"));
}

TEST_F(SplitSliderViewDragging, BeforeTheFirstPassNoPressHitsAHandle) {
    const auto slider = make<SplitSliderView>(test::kSliderFrame);
    slider->setDelegate(recorder_);
    slider->mouseDown(NSEvent({.type = NSEventTypeLeftMouseDown, .location = {2, 25}}, 30));
    EXPECT_FALSE(slider->bDraggingLeftClip());
    EXPECT_FALSE(slider->bDraggingRightClip());
    EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(SplitSliderViewDragging, WithoutPicturesNoHandleCanBeHit) {
    slider_->setTrimLeftImg(nullptr);
    slider_->setNeedsDisplay(true);
    platform_.display();
    user_->mouseDown({6, 25});
    user_->mouseUp({6, 25});
    user_->mouseDown({212, 25});
    EXPECT_THAT(messages(), IsEmpty());
    user_->mouseDown({110, 15});
    EXPECT_THAT(messages(), ElementsAre("begin 500"));
}

TEST_F(SplitSliderViewDragging, WithoutADelegateTheHandlesMoveAllTheSame) {
    recorder_.reset();
    user_->mouseDown({6, 25});
    user_->mouseDragged({106, 25});
    user_->mouseUp({106, 25});
    EXPECT_EQ(start(), 500.0);
}

TEST_F(SplitSliderViewDragging, ASliderAwayFromTheWindowsOriginConvertsThePoint) {
    const auto root = make<NSView>(NSMakeRect(0, 0, 400, 200));
    window_->setContentSize({400, 200});
    window_->setContentView(root);
    slider_->setFrame({{50, 60}, {220, 30}});
    root->addSubview(slider_);
    platform_.display();
    user_->mouseDown({56, 85});
    EXPECT_TRUE(slider_->bDraggingLeftClip());
    EXPECT_EQ(slider_->dDragXoffset(), 4.0);
    user_->mouseDragged({156, 400});
    EXPECT_EQ(start(), 500.0);
}

namespace {
// Takes the slider out of its window and lets go of it.
struct Remover : SliderViewDelegate {
    void splitSliderViewBeginDragClip_bLeftClip(SplitSliderView& view, bool) override {
        view.removeFromSuperview();
        if (auto* window = view.window()) window->setContentView(nullptr);
        slider->reset();
    }
    std::shared_ptr<SplitSliderView>* slider = nullptr;
};
} // namespace

TEST_F(SplitSliderViewDragging, TheDelegateMayRemoveTheSliderInAMessage) {
    const auto remover = std::make_shared<Remover>();
    remover->slider = &slider_;
    slider_->setDelegate(remover);
    const std::weak_ptr<SplitSliderView> watched = slider_;
    user_->mouseDown({6, 25});
    EXPECT_TRUE(watched.expired());
    user_->mouseDragged({106, 25});
    user_->mouseUp({106, 25});
}

} // namespace zr
