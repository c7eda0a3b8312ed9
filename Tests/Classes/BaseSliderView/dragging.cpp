// SPDX-License-Identifier: MIT
#include "Support/SliderTest.h"

namespace zr {

using testing::ElementsAre;
using testing::IsEmpty;

class BaseSliderViewDragging : public test::SliderTest<BaseSliderView> {
protected:
    void SetUp() override { show(); }
};

TEST_F(BaseSliderViewDragging, APressOnTheTrackMovesTheValueAndBeginsADrag) {
    slider_->mouseDownAt({110, 15});
    EXPECT_TRUE(slider_->bDraggingKnob());
    EXPECT_EQ(slider_->dCurValue(), 500.0);
    EXPECT_THAT(messages(), ElementsAre("begin 500"));
    EXPECT_FALSE(slider_->needsDisplay());
}

TEST_F(BaseSliderViewDragging, APressFourPointsBelowTheTrackBeginsADrag) {
    slider_->mouseDownAt({110, 9.5});
    EXPECT_TRUE(slider_->bDraggingKnob());
    EXPECT_THAT(messages(), ElementsAre("begin 500"));
}

TEST_F(BaseSliderViewDragging, APressSixPointsBelowTheTrackOnlyClearsTheDrag) {
    slider_->mouseDownAt({110, 15});
    messages();
    slider_->mouseDownAt({60, 7.5});
    EXPECT_FALSE(slider_->bDraggingKnob());
    EXPECT_EQ(slider_->dCurValue(), 500.0);
    EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(BaseSliderViewDragging, TheHitAreaIsHalfOpen) {
    // The track grown by five points: x from 5 to 215, y from 8.5 to 21.5.
    const auto hits = [&](NSPoint point) {
        slider_->mouseDownAt(point);
        return slider_->bDraggingKnob();
    };
    EXPECT_TRUE(hits({5, 15}));
    EXPECT_FALSE(hits({4.999, 15}));
    EXPECT_TRUE(hits({214.999, 15}));
    EXPECT_FALSE(hits({215, 15}));
    EXPECT_TRUE(hits({110, 8.5}));
    EXPECT_FALSE(hits({110, 8.499}));
    EXPECT_TRUE(hits({110, 21.499}));
    EXPECT_FALSE(hits({110, 21.5}));
}

TEST_F(BaseSliderViewDragging, APressInTheMarginIsLimitedToTheRange) {
    slider_->mouseDownAt({5, 15});
    EXPECT_EQ(slider_->dCurValue(), 0.0);
    slider_->mouseDownAt({214, 15});
    EXPECT_EQ(slider_->dCurValue(), 1000.0);
}

TEST_F(BaseSliderViewDragging, BeforeTheFirstPassOnlyTheOriginIsNearTheTrack) {
    const auto slider = make<BaseSliderView>(test::kSliderFrame);
    slider->mouseDownAt({110, 15});
    EXPECT_FALSE(slider->bDraggingKnob());
}

TEST_F(BaseSliderViewDragging, StepsFollowThePointerAndTheReleaseEndsTheDrag) {
    slider_->mouseDownAt({110, 15});
    slider_->mouseDraggedTo({60, 300});
    EXPECT_EQ(slider_->dCurValue(), 250.0);
    slider_->mouseDraggedTo({-900, 15});
    slider_->mouseDraggedTo({900, 15});
    EXPECT_EQ(slider_->dCurValue(), 1000.0);
    slider_->mouseUpAt({160, -50});
    EXPECT_FALSE(slider_->bDraggingKnob());
    EXPECT_EQ(slider_->dCurValue(), 750.0);
    EXPECT_THAT(messages(), ElementsAre("begin 500", "change 250", "change 0", "change 1000", "end 750"));
    EXPECT_FALSE(slider_->needsDisplay());
}

TEST_F(BaseSliderViewDragging, WithoutAPressNothingIsDragged) {
    slider_->mouseDraggedTo({60, 15});
    slider_->mouseUpAt({60, 15});
    EXPECT_EQ(slider_->dCurValue(), 0.0);
    EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(BaseSliderViewDragging, ADisabledSliderIgnoresAPress) {
    slider_->mouseDownAt({110, 15});
    messages();
    slider_->setEnabled(false);
    slider_->mouseDownAt({60, 100}); // would clear the drag
    EXPECT_TRUE(slider_->bDraggingKnob());
    slider_->mouseDownAt({60, 15});
    EXPECT_EQ(slider_->dCurValue(), 500.0);
    EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(BaseSliderViewDragging, DisabledInTheMiddleTheDragStaysUntilTheNextPress) {
    slider_->mouseDownAt({110, 15});
    messages();
    slider_->setEnabled(false);
    slider_->mouseDraggedTo({60, 15});
    slider_->mouseUpAt({60, 15});
    EXPECT_TRUE(slider_->bDraggingKnob());
    EXPECT_EQ(slider_->dCurValue(), 500.0);
    EXPECT_THAT(messages(), IsEmpty());
    slider_->setEnabled(true);
    slider_->mouseDraggedTo({60, 15});
    EXPECT_THAT(messages(), ElementsAre("change 250"));
    slider_->mouseDownAt({60, 0});
    EXPECT_FALSE(slider_->bDraggingKnob());
}

TEST_F(BaseSliderViewDragging, UsedDirectlyItDoesNotReactToTheMouse) {
    EXPECT_FALSE(user_->mouseDown({110, 15})); // nobody took it
    EXPECT_FALSE(user_->mouseDragged({60, 15}));
    EXPECT_FALSE(user_->mouseUp({60, 15}));
    EXPECT_EQ(slider_->dCurValue(), 0.0);
    EXPECT_FALSE(slider_->bDraggingKnob());
    EXPECT_THAT(messages(), IsEmpty());
}

namespace {

struct OnlyEnd : SliderViewDelegate {
    void sliderView_endDragAt(BaseSliderView&, double value) override { ends.push_back(value); }
    std::vector<double> ends;
};

// Lets go of the slider, and of itself, in the first message.
struct Leaver : SliderViewDelegate {
    void sliderView_beginDragAt(BaseSliderView&, double) override {
        slider->reset();
        self.reset();
    }
    std::shared_ptr<BaseSliderView>* slider = nullptr;
    std::shared_ptr<Leaver> self;
};

} // namespace

TEST_F(BaseSliderViewDragging, ADelegateGetsOnlyWhatItImplements) {
    const auto delegate = std::make_shared<OnlyEnd>();
    slider_->setDelegate(delegate);
    slider_->mouseDownAt({110, 15});
    slider_->mouseDraggedTo({60, 15});
    slider_->seekToValue(3);
    slider_->mouseUpAt({160, 15});
    EXPECT_THAT(delegate->ends, ElementsAre(750.0));
}

TEST_F(BaseSliderViewDragging, WithoutADelegateNothingFails) {
    slider_->setDelegate({});
    slider_->mouseDownAt({110, 15});
    slider_->mouseDraggedTo({60, 15});
    slider_->mouseUpAt({160, 15});
    slider_->seekToValue(3);
    EXPECT_EQ(slider_->dCurValue(), 3.0);
}

TEST_F(BaseSliderViewDragging, ADelegateThatVanishedReadsAsNone) {
    slider_->mouseDownAt({110, 15});
    EXPECT_EQ(slider_->delegate(), recorder_);
    recorder_.reset();
    EXPECT_FALSE(slider_->delegate());
    slider_->mouseDraggedTo({60, 15});
    slider_->mouseUpAt({160, 15});
    EXPECT_EQ(slider_->dCurValue(), 750.0);
}

TEST_F(BaseSliderViewDragging, TheSliderDoesNotKeepItsDelegate) {
    const std::weak_ptr<SliderViewDelegate> watched = recorder_;
    recorder_.reset();
    EXPECT_TRUE(watched.expired());
}

TEST_F(BaseSliderViewDragging, ADelegateMayLetGoOfItselfInAMessage) {
    auto leaver = std::make_shared<Leaver>();
    auto slider = slider_;
    leaver->self = leaver;
    leaver->slider = &slider;
    slider_->setDelegate(leaver);
    const std::weak_ptr<Leaver> watched = std::exchange(leaver, nullptr);
    slider_->mouseDownAt({110, 15});
    EXPECT_TRUE(watched.expired());
    EXPECT_EQ(slider_->dCurValue(), 500.0);
}

} // namespace zr
