// SPDX-License-Identifier: MIT
#include "Support/SliderTest.h"

#include <cmath>

namespace zr {

using test::kTrackLine;
using testing::ElementsAre;

namespace {

// A little more than a thousandth: the nearest number of single precision.
constexpr double kThreshold = 0.0010000000474974513;

constexpr const char* kKnobAtStart = "fill oval {{10, 9}, {12, 12}} rgba(0.118, 0.663, 0.337, 1)";

} // namespace

class BaseSliderViewDrawing : public test::SliderTest<BaseSliderView> {
protected:
    void SetUp() override { show(); }
};

TEST_F(BaseSliderViewDrawing, ANewSliderShowsTrackAndKnobAndNoSelection) {
    EXPECT_THAT(drawing(), ElementsAre(kTrackLine, kKnobAtStart));
    EXPECT_EQ(slider_->rcSlider(), NSMakeRect(10, 13.5, 200, 3));
    EXPECT_EQ(slider_->rcKnob(), NSMakeRect(10, 9, 12, 12));
}

TEST_F(BaseSliderViewDrawing, TrackThenSelectionThenKnob) {
    slider_->setSelection_length(250, 500);
    slider_->setDCurValue(1000);
    EXPECT_THAT(
        drawing(),
        ElementsAre(kTrackLine,
                    "fill rounded {{60, 13.5}, {100, 3}} radius {1.5, 1.5} rgba(0.118, 0.663, 0.337, 1)",
                    "fill oval {{198, 9}, {12, 12}} rgba(0.118, 0.663, 0.337, 1)"));
    EXPECT_EQ(slider_->rcKnob(), NSMakeRect(198, 9, 12, 12));
}

TEST_F(BaseSliderViewDrawing, TheKnobStaysOnTheTrackAtItsEnds) {
    slider_->setDCurValue(0);
    drawing();
    EXPECT_EQ(slider_->rcKnob(), NSMakeRect(10, 9, 12, 12));
    slider_->setDCurValue(1000);
    drawing();
    EXPECT_EQ(slider_->rcKnob(), NSMakeRect(198, 9, 12, 12));
    slider_->setDCurValue(500);
    drawing();
    EXPECT_EQ(slider_->rcKnob().origin.x, 104.0); // not the 110 of curXValueWithProgress
}

TEST_F(BaseSliderViewDrawing, AValueOutsideTheRangeDrawsTheKnobBeyondTheTrack) {
    slider_->setDCurValue(-500);
    drawing();
    EXPECT_EQ(slider_->rcKnob(), NSMakeRect(-84, 9, 12, 12));
    slider_->setDCurValue(1500);
    drawing();
    EXPECT_EQ(slider_->rcKnob(), NSMakeRect(292, 9, 12, 12));
}

TEST_F(BaseSliderViewDrawing, ASelectionOutsideTheRangeDrawsOutsideTheTrack) {
    slider_->setSelection_length(-100, 1500);
    EXPECT_EQ(drawing().at(1),
              "fill rounded {{-10, 13.5}, {300, 3}} radius {1.5, 1.5} rgba(0.118, 0.663, 0.337, 1)");
}

TEST_F(BaseSliderViewDrawing, ASelectionBelowTheThresholdIsNotDrawn) {
    for (const double length : {std::nextafter(kThreshold, 0.0), 0.001, 0.0, -1.0, -1000.0}) {
        slider_->setSelection_length(0, length);
        EXPECT_THAT(drawing(), ElementsAre(kTrackLine, kKnobAtStart)) << length;
    }
}

TEST_F(BaseSliderViewDrawing, ASelectionOfExactlyTheThresholdIsDrawn) {
    slider_->setSelection_length(0, kThreshold);
    EXPECT_EQ(drawing().size(), 3u);
}

TEST_F(BaseSliderViewDrawing, ARangeBelowTheThresholdShowsTheTrackAlone) {
    slider_->setSelection_length(0, 10);
    slider_->setDLength(std::nextafter(kThreshold, 0.0));
    slider_->setDCurValue(5);
    drawing();
    const NSRect knob = slider_->rcKnob();
    EXPECT_THAT(drawing(), ElementsAre(kTrackLine));
    EXPECT_EQ(slider_->rcKnob(), knob);
    EXPECT_EQ(knob, NSMakeRect(10, 9, 12, 12)); // from the pass before

    slider_->setDLength(kThreshold);
    slider_->setNeedsDisplay(true);
    EXPECT_EQ(drawing().size(), 3u);
}

TEST_F(BaseSliderViewDrawing, ANegativeRangeShowsTheTrackAlone) {
    slider_->setSelection_length(0, 10);
    slider_->setDLength(-1000);
    slider_->setNeedsDisplay(true);
    EXPECT_THAT(drawing(), ElementsAre(kTrackLine));
}

TEST_F(BaseSliderViewDrawing, TheTrackFollowsSizeAndOffset) {
    slider_->setSliderXOffset(20);
    slider_->setFrame({{0, 0}, {140, 61}});
    EXPECT_EQ(drawing().at(0), "fill rounded {{20, 29}, {100, 3}} radius {1.5, 1.5} tertiaryLabelColor");
    EXPECT_EQ(slider_->rcSlider(), NSMakeRect(20, 29, 100, 3));
    EXPECT_EQ(slider_->rcKnob(), NSMakeRect(20, 24.5, 12, 12));
}

TEST_F(BaseSliderViewDrawing, TheTrackRectangleIsStaleUntilTheNextPass) {
    slider_->setSliderXOffset(20);
    EXPECT_EQ(slider_->rcSlider(), NSMakeRect(10, 13.5, 200, 3));
    EXPECT_FALSE(slider_->needsDisplay());
}

TEST_F(BaseSliderViewDrawing, TheOtherOffsetsMoveNothing) {
    slider_->setSliderYOffset(3);
    slider_->setKnobYOffset(25);
    slider_->setNeedsDisplay(true);
    EXPECT_THAT(drawing(), ElementsAre(kTrackLine, kKnobAtStart));
}

TEST_F(BaseSliderViewDrawing, ARangeThatDoesNotBeginAtZero) {
    slider_->setDMinValue(100);
    slider_->setDLength(200);
    slider_->setDCurValue(200);
    slider_->setSelection_length(150, 100);
    const auto& lines = drawing();
    EXPECT_EQ(lines.at(1),
              "fill rounded {{60, 13.5}, {100, 3}} radius {1.5, 1.5} rgba(0.118, 0.663, 0.337, 1)");
    EXPECT_EQ(slider_->rcKnob().origin.x, 104.0);
}

namespace {
class Steps : public BaseSliderView {
public:
    void draw() override {
        steps.push_back("draw");
        BaseSliderView::draw();
    }
    void drawSlider() override { steps.push_back("slider"); }
    void drawSelections() override { steps.push_back("selections"); }
    void drawKnob() override { steps.push_back("knob"); }
    std::vector<std::string> steps;
};
} // namespace

TEST_F(BaseSliderViewDrawing, OverriddenStepsTakeEffect) {
    const auto slider = make<Steps>(test::kSliderFrame);
    slider->drawRect(test::kSliderFrame);
    EXPECT_THAT(slider->steps, ElementsAre("draw", "slider", "selections", "knob"));
}

TEST_F(BaseSliderViewDrawing, OutsideOfAPassTheRectanglesAreStillComputed) {
    const auto slider = make<BaseSliderView>(test::kSliderFrame);
    slider->draw(); // no context: nothing is painted, nothing fails
    EXPECT_EQ(slider->rcSlider(), NSMakeRect(10, 13.5, 200, 3));
    EXPECT_EQ(slider->rcKnob(), NSMakeRect(10, 9, 12, 12));
}

TEST_F(BaseSliderViewDrawing, TheDarkAppearanceRedrawsByItself) {
    const int before = drawCount();
    platform_.setDesktopAppearance(Appearance::dark);
    EXPECT_EQ(drawCount(), before + 1);
    EXPECT_THAT(drawing(),
                ElementsAre(kTrackLine, kKnobAtStart)); // by name: its components are the canvas's business
}

TEST_F(BaseSliderViewDrawing, ADisabledSliderLooksTheSame) {
    slider_->setEnabled(false);
    EXPECT_THAT(drawing(), ElementsAre(kTrackLine, kKnobAtStart));
}

} // namespace zr
