// SPDX-License-Identifier: MIT
#include "SplitSliderTest.h"

namespace zr {

using testing::ElementsAre;

class SplitSliderViewArithmetic : public test::SplitSliderTest {};

TEST_F(SplitSliderViewArithmetic, TheMarginIsTakenFromAndAddedToTheCurrentValue) {
    setClip(31.2, 100);
    slider_->setDCurValue(33.2);
    EXPECT_TRUE(slider_->canBeSplited());
    setClip(44, 84.8);
    slider_->setDCurValue(126.8);
    EXPECT_FALSE(slider_->canBeSplited());
}

TEST_F(SplitSliderViewArithmetic, TheLeftEndIsMovedByItsDistance) {
    slider_->setDLength(200);
    setClip(6.4, 300);
    user_->mouseDown({slider_->rcClipLeft().origin.x + 4, 25}); // four points from the inner edge
    user_->mouseDragged({129, 25});
    EXPECT_EQ(length(), 183.4);
}

TEST_F(SplitSliderViewArithmetic, HandlesOfAClipOutsideTheRangeBringItIn) {
    setClip(-100, 1200);
    user_->mouseDown({6, 25});
    user_->mouseUp({6, 25});
    EXPECT_EQ(start(), 0.0);
    EXPECT_EQ(length(), 1100.0);
    setClip(-100, 1200);
    user_->mouseDown({214, 25});
    EXPECT_TRUE(slider_->bDraggingRightClip());
    EXPECT_EQ(start(), -100.0);
    EXPECT_EQ(length(), 1100.0);
}

TEST_F(SplitSliderViewArithmetic, ASplitLeavesARangesStartThatIsNotZero) {
    slider_->setDMinValue(40);
    setClip(100, 100);
    slider_->setDCurValue(150);
    slider_->splitAtCurPoint();
    EXPECT_EQ(slider_->dMinValue(), 40.0);
    EXPECT_EQ(slider_->dLength(), 50.0);
    EXPECT_EQ(start(), 100.0);
}

TEST_F(SplitSliderViewArithmetic, TheOffsetStaysAfterTheRelease) {
    user_->mouseDown({6, 25});
    user_->mouseUp({6, 25});
    EXPECT_EQ(slider_->dDragXoffset(), 4.0);
}

namespace {
struct Onlooker : SliderViewDelegate {
    void splitSliderViewEndDragClip_bLeftClip(SplitSliderView& view, bool left) override {
        stillDragging.push_back(left ? view.bDraggingLeftClip() : view.bDraggingRightClip());
    }
    std::vector<bool> stillDragging;
};
} // namespace

TEST_F(SplitSliderViewArithmetic, TheEndIsToldBeforeTheFlagsAreCleared) {
    const auto onlooker = std::make_shared<Onlooker>();
    slider_->setDelegate(onlooker);
    user_->mouseDown({6, 25});
    user_->mouseUp({6, 25});
    user_->mouseDown({214, 25});
    user_->mouseUp({214, 25});
    EXPECT_THAT(onlooker->stillDragging, ElementsAre(true, true));
    EXPECT_FALSE(slider_->bDraggingLeftClip());
    EXPECT_FALSE(slider_->bDraggingRightClip());
}

TEST_F(SplitSliderViewArithmetic, EveryKindOfStepIsDrawnAndNoRelease) {
    for (const NSPoint point : {NSPoint{214, 25}, NSPoint{110, 15}}) { // the right handle, the knob
        user_->mouseDown(point);
        const int count = drawCount();
        user_->mouseDragged({point.x - 10, point.y});
        EXPECT_EQ(drawCount(), count + 1);
        user_->mouseUp({point.x - 10, point.y});
        EXPECT_EQ(drawCount(), count + 1);
    }
}

TEST_F(SplitSliderViewArithmetic, SwitchedOffAndOnAgainADragGoesOn) {
    user_->mouseDown({214, 25});
    slider_->setEnabled(false);
    user_->mouseDragged({114, 25});
    EXPECT_EQ(length(), 1000.0);
    slider_->setEnabled(true);
    user_->mouseDragged({114, 25});
    EXPECT_EQ(length(), 500.0);
    user_->mouseUp({114, 25});
    EXPECT_FALSE(slider_->bDraggingRightClip());
}

TEST_F(SplitSliderViewArithmetic, TheKnobSwitchSetToWhatItWasIsDrawnAgain) {
    slider_->setShouldDrawKnob(false);
    EXPECT_TRUE(slider_->needsDisplay());
}

} // namespace zr
