// SPDX-License-Identifier: MIT
#include "Support/SliderTest.h"

#include <cmath>
#include <random>

namespace zr {

class BaseSliderViewMapping : public test::SliderTest<BaseSliderView> {
protected:
    void SetUp() override { show(); }
};

TEST_F(BaseSliderViewMapping, PositionsBecomeValuesWithinTheRange) {
    EXPECT_EQ(slider_->curProgressWithXValue(110), 500.0);
    EXPECT_EQ(slider_->curProgressWithXValue(0), 0.0);
    EXPECT_EQ(slider_->curProgressWithXValue(-1e9), 0.0);
    EXPECT_EQ(slider_->curProgressWithXValue(10), 0.0);
    EXPECT_EQ(slider_->curProgressWithXValue(210), 1000.0);
    EXPECT_EQ(slider_->curProgressWithXValue(400), 1000.0);
}

TEST_F(BaseSliderViewMapping, ValuesBecomePositionsWithinTheTrack) {
    EXPECT_EQ(slider_->curXValueWithProgress(250), 60.0);
    EXPECT_EQ(slider_->curXValueWithProgress(-5), 10.0);
    EXPECT_EQ(slider_->curXValueWithProgress(0), 10.0);
    EXPECT_EQ(slider_->curXValueWithProgress(1000), 210.0);
    EXPECT_EQ(slider_->curXValueWithProgress(5000), 210.0);
}

TEST_F(BaseSliderViewMapping, ARangeThatDoesNotBeginAtZero) {
    slider_->setDMinValue(-50);
    slider_->setDLength(100);
    EXPECT_EQ(slider_->curProgressWithXValue(110), 0.0);
    EXPECT_EQ(slider_->curProgressWithXValue(60), -25.0);
    EXPECT_EQ(slider_->curXValueWithProgress(-25), 60.0);
    EXPECT_EQ(slider_->curXValueWithProgress(-60), 10.0);
    EXPECT_EQ(slider_->curXValueWithProgress(60), 210.0);
}

TEST_F(BaseSliderViewMapping, TheLowerBoundIsTheOffsetAndTheUpperOneTheTrackLastDrawn) {
    slider_->setSliderXOffset(30); // not drawn yet
    EXPECT_EQ(slider_->curProgressWithXValue(20), 0.0);
    EXPECT_EQ(slider_->curProgressWithXValue(1000), 900.0); // (210 - 30) / 200
}

TEST_F(BaseSliderViewMapping, BeforeTheFirstPassAPositionHasNoFiniteValue) {
    const auto slider = make<BaseSliderView>(test::kSliderFrame);
    EXPECT_FALSE(std::isfinite(slider->curProgressWithXValue(110)));
    EXPECT_FALSE(std::isfinite(slider->curProgressWithXValue(0)));
    EXPECT_EQ(slider->curXValueWithProgress(500), 10.0); // a track without width
}

TEST_F(BaseSliderViewMapping, ATrackWithoutWidthHasNoFiniteValue) {
    slider_->setSliderXOffset(110);
    slider_->setNeedsDisplay(true);
    drawing();
    EXPECT_EQ(slider_->rcSlider().size.width, 0.0);
    EXPECT_FALSE(std::isfinite(slider_->curProgressWithXValue(50)));
}

TEST_F(BaseSliderViewMapping, ARangeWithoutLengthDividesByZero) {
    slider_->setDLength(0);
    EXPECT_FALSE(std::isfinite(slider_->curXValueWithProgress(0)));
    EXPECT_EQ(slider_->curProgressWithXValue(110), 0.0);
}

TEST_F(BaseSliderViewMapping, InsideTheRangeTheMappingsAreInverseToWithinRounding) {
    std::mt19937_64 random(20240607);
    std::uniform_real_distribution<double> part(0, 1);
    for (int round = 0; round < 2000; ++round) {
        const double width = 1 + part(random) * 3000;
        const double offset = part(random) * width * 0.4;
        slider_->setFrame({{0, 0}, {width, 20 + part(random) * 200}});
        slider_->setSliderXOffset(offset);
        slider_->setDMinValue((part(random) - 0.5) * 1e6);
        slider_->setDLength(0.01 + part(random) * 1e6);
        slider_->draw();
        ASSERT_GT(slider_->rcSlider().size.width, 0.0);

        const double value = slider_->dMinValue() + part(random) * slider_->dLength();
        const double back = slider_->curProgressWithXValue(slider_->curXValueWithProgress(value));
        const double scale = std::abs(slider_->dMinValue()) + slider_->dLength();
        EXPECT_NEAR(back, value, 1e-9 * scale);

        const double x = offset + part(random) * slider_->rcSlider().size.width;
        EXPECT_NEAR(slider_->curXValueWithProgress(slider_->curProgressWithXValue(x)), x,
                    1e-9 * width * scale / slider_->dLength());
    }
}

} // namespace zr
