// SPDX-License-Identifier: MIT
#include "Support/SliderTest.h"

#include <cmath>

namespace zr {

// Results that another order of the same operations would not give.
class BaseSliderViewArithmetic : public test::SliderTest<BaseSliderView> {
protected:
    void SetUp() override { show(); }
};

TEST_F(BaseSliderViewArithmetic, PositionToValue) {
    slider_->setDLength(333);
    EXPECT_EQ(slider_->curProgressWithXValue(111.3), 168.66449999999998);
}

TEST_F(BaseSliderViewArithmetic, ValueToPosition) {
    EXPECT_EQ(slider_->curXValueWithProgress(926), 195.20000000000002);
}

TEST_F(BaseSliderViewArithmetic, TheSelectionsPlaceAndWidth) {
    slider_->setSelection_length(702, 464);
    EXPECT_THAT(drawing().at(1),
                testing::StartsWith("fill rounded {{150.39999999999998, 13.5}, {92.80000000000001, 3}}"));
}

TEST_F(BaseSliderViewArithmetic, TheKnobsPlace) {
    slider_->setDCurValue(833);
    drawing();
    EXPECT_EQ(slider_->rcKnob().origin.x, 166.60399999999998);
}

TEST_F(BaseSliderViewArithmetic, ANegativeRangeIsLimitedFromBelowFirst) {
    slider_->setDLength(-100);
    EXPECT_EQ(slider_->curXValueWithProgress(-50), 210.0);
    EXPECT_EQ(slider_->curXValueWithProgress(50), 210.0);
}

TEST_F(BaseSliderViewArithmetic, BeforeTheFirstPassAPressAtTheOriginSetsAValueThatIsNoNumber) {
    const auto slider = make<BaseSliderView>(test::kSliderFrame);
    slider->setDelegate(recorder_);
    slider->mouseDownAt({2, 2}); // within five points of a track that is not there yet
    EXPECT_TRUE(slider->bDraggingKnob());
    EXPECT_TRUE(std::isnan(slider->dCurValue()));
    const auto told = messages();
    ASSERT_EQ(told.size(), 1u);
    EXPECT_THAT(told[0], testing::HasSubstr("nan"));
}

TEST_F(BaseSliderViewArithmetic, TheKnobIsNoHitArea) {
    slider_->setDCurValue(1050); // drawn from 207.4 to 219.4
    drawing();
    slider_->mouseDownAt({217, 15});
    EXPECT_FALSE(slider_->bDraggingKnob());
}

} // namespace zr
