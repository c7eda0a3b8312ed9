// SPDX-License-Identifier: MIT
#include "SplitSliderTest.h"

#include <cmath>

namespace zr {

using testing::IsEmpty;

class SplitSliderViewSplitting : public test::SplitSliderTest {
protected:
    bool canSplitAt(double value) {
        slider_->setDCurValue(value);
        return slider_->canBeSplited();
    }
};

TEST_F(SplitSliderViewSplitting, CanBeSplitMoreThanTwoUnitsInsideTheClip) {
    setClip(100, 100);
    EXPECT_FALSE(canSplitAt(102));
    EXPECT_FALSE(canSplitAt(198));
    EXPECT_TRUE(canSplitAt(102.5));
    EXPECT_TRUE(canSplitAt(197.5));
    EXPECT_TRUE(canSplitAt(std::nextafter(102.0, 200.0)));
    EXPECT_FALSE(canSplitAt(50));
    EXPECT_FALSE(canSplitAt(500));
}

TEST_F(SplitSliderViewSplitting, AClipOfFourUnitsCannotBeSplit) {
    setClip(100, 4);
    EXPECT_FALSE(canSplitAt(102));
}

TEST_F(SplitSliderViewSplitting, AtTheCurrentPointThePartBeforeItIsKept) {
    setClip(100, 100);
    slider_->setDCurValue(150);
    platform_.display();
    messages();
    slider_->splitAtCurPoint();
    EXPECT_EQ(slider_->dLength(), 50.0);
    EXPECT_EQ(start(), 100.0); // left as it was
    EXPECT_EQ(length(), 50.0);
    EXPECT_EQ(slider_->dMinValue(), 0.0);
    EXPECT_EQ(slider_->dCurValue(), 0.0);
    EXPECT_FALSE(slider_->needsDisplay());
    EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(SplitSliderViewSplitting, TheMarginOfTwoDoesNotCountForTheSplitItself) {
    setClip(100, 100);
    slider_->setDCurValue(100.5);
    EXPECT_FALSE(slider_->canBeSplited());
    slider_->splitAtCurPoint();
    EXPECT_EQ(slider_->dLength(), 0.5);
}

TEST_F(SplitSliderViewSplitting, OutsideTheClipNothingChanges) {
    setClip(100, 100);
    for (const double value : {0.0, 99.0, 100.0, 200.0, 201.0, 1000.0}) {
        slider_->setDCurValue(value);
        slider_->splitAtCurPoint();
        EXPECT_EQ(slider_->dLength(), 1000.0) << value;
        EXPECT_EQ(start(), 100.0);
        EXPECT_EQ(length(), 100.0);
        EXPECT_EQ(slider_->dCurValue(), value);
    }
}

TEST_F(SplitSliderViewSplitting, AClipWithoutLengthIsNotSplit) {
    setClip(100, 0);
    slider_->setDCurValue(100);
    slider_->splitAtCurPoint();
    EXPECT_EQ(slider_->dLength(), 1000.0);
    EXPECT_EQ(slider_->dCurValue(), 100.0);
}

namespace {
class SetterCounter : public SplitSliderView {
public:
    void setDCurValue(double value) override {
        ++calls;
        SplitSliderView::setDCurValue(value);
    }
    int calls = 0;
};
} // namespace

TEST_F(SplitSliderViewSplitting, TheCurrentValueIsStoredWithoutItsSetter) {
    const auto slider = make<SetterCounter>(test::kSliderFrame);
    slider->seekToValue(500);
    slider->splitAtCurPoint();
    EXPECT_EQ(slider->dCurValue(), 0.0);
    EXPECT_EQ(slider->dLength(), 500.0);
    EXPECT_EQ(slider->calls, 0);
}

TEST_F(SplitSliderViewSplitting, SplitAtPointMakesTheClipTheWholeRange) {
    setClip(250, 500);
    slider_->setDCurValue(300);
    platform_.display();
    messages();
    slider_->splitAtPoint(123456);
    EXPECT_EQ(slider_->dLength(), 500.0);
    EXPECT_EQ(start(), 0.0);
    EXPECT_EQ(length(), 500.0);
    EXPECT_EQ(slider_->dCurValue(), 300.0);
    EXPECT_TRUE(slider_->needsDisplay());
    EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(SplitSliderViewSplitting, SplitAtPointLeavesTheRangesStart) {
    slider_->setDMinValue(100);
    setClip(250, 500);
    slider_->splitAtPoint(0);
    EXPECT_EQ(slider_->dMinValue(), 100.0);
    EXPECT_EQ(start(), 0.0);
}

} // namespace zr
