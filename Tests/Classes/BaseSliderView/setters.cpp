// SPDX-License-Identifier: MIT
#include "Support/SliderTest.h"

namespace zr {

using testing::ElementsAre;
using testing::IsEmpty;

class BaseSliderViewSetters : public test::SliderTest<BaseSliderView> {
protected:
    void SetUp() override {
        show();
        messages();
    }
};

TEST_F(BaseSliderViewSetters, CurrentValueRedrawsAndSendsNothing) {
    const int before = drawCount();
    slider_->setDCurValue(300);
    EXPECT_TRUE(slider_->needsDisplay());
    EXPECT_EQ(slider_->dCurValue(), 300.0);
    platform_.display();
    EXPECT_EQ(drawCount(), before + 1);
    EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(BaseSliderViewSetters, CurrentValueSetToWhatItWasRedrawsToo) {
    slider_->setDCurValue(slider_->dCurValue());
    EXPECT_TRUE(slider_->needsDisplay());
    EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(BaseSliderViewSetters, CurrentValueIsNotLimited) {
    slider_->setDCurValue(-5);
    EXPECT_EQ(slider_->dCurValue(), -5.0);
    slider_->setDCurValue(1e9);
    EXPECT_EQ(slider_->dCurValue(), 1e9);
}

TEST_F(BaseSliderViewSetters, PlainFieldsDoNotRedraw) {
    slider_->setDLength(10);
    slider_->setDMinValue(5);
    slider_->setSliderXOffset(1);
    slider_->setSliderYOffset(2);
    slider_->setKnobYOffset(3);
    slider_->setCurRecSliderState(4);
    EXPECT_FALSE(slider_->needsDisplay());
    EXPECT_EQ(slider_->dLength(), 10.0);
    EXPECT_EQ(slider_->dMinValue(), 5.0);
    EXPECT_EQ(slider_->sliderXOffset(), 1.0);
    EXPECT_EQ(slider_->sliderYOffset(), 2.0);
    EXPECT_EQ(slider_->knobYOffset(), 3.0);
    EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(BaseSliderViewSetters, SelectionIsStoredAsGivenAndRedraws) {
    slider_->setSelection_length(-20, 5000);
    EXPECT_EQ(slider_->itemSelection()->dStart(), -20.0);
    EXPECT_EQ(slider_->itemSelection()->dLength(), 5000.0);
    EXPECT_TRUE(slider_->needsDisplay());
    EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(BaseSliderViewSetters, SelectionItemItselfDoesNotRedraw) {
    slider_->itemSelection()->setDLength(100);
    EXPECT_FALSE(slider_->needsDisplay());
}

TEST_F(BaseSliderViewSetters, SeekingRedrawsAndTellsTheDelegate) {
    slider_->seekToValue(500);
    EXPECT_EQ(slider_->dCurValue(), 500.0);
    EXPECT_TRUE(slider_->needsDisplay());
    EXPECT_THAT(messages(), ElementsAre("change 500"));
}

TEST_F(BaseSliderViewSetters, SeekingIsNotLimited) {
    slider_->seekToValue(-70);
    EXPECT_EQ(slider_->dCurValue(), -70.0);
    EXPECT_THAT(messages(), ElementsAre("change -70"));
}

namespace {
class SetterCounter : public BaseSliderView {
public:
    void setDCurValue(double value) override {
        ++calls;
        BaseSliderView::setDCurValue(value);
    }
    int calls = 0;
};
} // namespace

TEST_F(BaseSliderViewSetters, SeekingAndDraggingDoNotRunAnOverriddenSetter) {
    const auto slider = make<SetterCounter>(test::kSliderFrame);
    window_->setContentView(slider);
    platform_.display();
    slider->seekToValue(100);
    slider->mouseDownAt({60, 15});
    slider->mouseDraggedTo({80, 15});
    slider->mouseUpAt({90, 15});
    EXPECT_EQ(slider->calls, 0);
    EXPECT_EQ(slider->dCurValue(), 400.0);
    slider->setDCurValue(1);
    EXPECT_EQ(slider->calls, 1);
}

} // namespace zr
