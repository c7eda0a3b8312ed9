// SPDX-License-Identifier: MIT
#include "Support/FrameArchive.h"
#include "Support/SliderTest.h"

#include <ZRUIKit/ProgressSliderView.h>

namespace zr {

using test::kTrackLine;
using testing::ElementsAre;
using testing::IsEmpty;

class ProgressSliderViewBar : public test::SliderTest<ProgressSliderView> {
protected:
    void SetUp() override { show(); }
    double barStart() const { return slider_->itemSelection()->dStart(); }
    double barLength() const { return slider_->itemSelection()->dLength(); }
};

TEST_F(ProgressSliderViewBar, ANewSliderHasABarWithoutLength) {
    EXPECT_EQ(barStart(), 0.0);
    EXPECT_EQ(barLength(), 0.0);
    EXPECT_FALSE(slider_->bDraggingLeftClip());
    EXPECT_FALSE(slider_->bDraggingRightClip());
    EXPECT_EQ(slider_->rcClipLeft(), NSZeroRect);
    EXPECT_EQ(slider_->rcClipRight(), NSZeroRect);
    EXPECT_EQ(slider_->dDragXoffset(), 0.0);
    EXPECT_EQ(slider_->dLength(), 1000.0);
    EXPECT_THAT(drawing(),
                ElementsAre(kTrackLine, "fill oval {{10, 9}, {12, 12}} rgba(0.118, 0.663, 0.337, 1)"));
}

TEST_F(ProgressSliderViewBar, FromAnArchiveItKeepsTheBasesSelectionUntilItIsMoved) {
    test::FrameArchive archive(test::kSliderFrame);
    const auto slider = make<ProgressSliderView>(archive);
    EXPECT_EQ(slider->itemSelection()->dStart(), 0.0);
    EXPECT_EQ(slider->itemSelection()->dLength(), -1.0);
    slider->setDCurValue(5);
    EXPECT_EQ(slider->itemSelection()->dLength(), 5.0);
}

TEST_F(ProgressSliderViewBar, TheSetterMovesBarAndKnob) {
    slider_->setDCurValue(300);
    EXPECT_EQ(barStart(), 0.0);
    EXPECT_EQ(barLength(), 300.0);
    EXPECT_TRUE(slider_->needsDisplay());
    EXPECT_THAT(drawing(),
                ElementsAre(kTrackLine,
                            "fill rounded {{10, 13.5}, {60, 3}} radius {1.5, 1.5} rgba(0.118, 0.663, 0.337, 1)",
                            "fill oval {{66.4, 9}, {12, 12}} rgba(0.118, 0.663, 0.337, 1)"));
    EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(ProgressSliderViewBar, SeekingMovesTheKnobAndLeavesTheBar) {
    slider_->setDCurValue(300);
    slider_->seekToValue(500);
    EXPECT_EQ(slider_->dCurValue(), 500.0);
    EXPECT_EQ(barLength(), 300.0);
    EXPECT_THAT(messages(), ElementsAre("change 500"));
}

TEST_F(ProgressSliderViewBar, TheBarsLengthIsTheValueAlsoWhereTheRangeBeginsElsewhere) {
    slider_->setDMinValue(100);
    slider_->setDCurValue(150);
    EXPECT_EQ(barLength(), 150.0);
    // From the position of the value 0, left of the track, to that of 150.
    EXPECT_EQ(drawing().at(1),
              "fill rounded {{-10, 13.5}, {30, 3}} radius {1.5, 1.5} rgba(0.118, 0.663, 0.337, 1)");
}

TEST_F(ProgressSliderViewBar, SplitAtPointMakesTheBarTheRange) {
    slider_->setDCurValue(300);
    slider_->itemSelection()->setDStart(20);
    drawing();
    slider_->splitAtPoint(4711);
    EXPECT_EQ(slider_->dLength(), 300.0);
    EXPECT_EQ(barStart(), 0.0);
    EXPECT_EQ(barLength(), 300.0);
    EXPECT_EQ(slider_->dCurValue(), 300.0);
    EXPECT_TRUE(slider_->needsDisplay());
    EXPECT_THAT(messages(), IsEmpty());
}

} // namespace zr
