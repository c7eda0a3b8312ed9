// SPDX-License-Identifier: MIT
#include "SplitSliderTest.h"

namespace zr {

using test::kTrackLine;
using testing::ElementsAre;

namespace {
constexpr const char* kWholeClip =
    "fill rounded {{10, 13.5}, {200, 3}} radius {1.5, 1.5} rgba(0.118, 0.663, 0.337, 1)";
}

class SplitSliderViewDrawing : public test::SplitSliderTest {};

TEST_F(SplitSliderViewDrawing, TrackClipAndHandlesButNoKnob) {
    EXPECT_THAT(
        drawing(),
        ElementsAre(kTrackLine, kWholeClip,
                    "image left in {{2, 16.5}, {8, 12}} from {{0, 0}, {8, 12}} operation 2 fraction 1",
                    "image right in {{210, 16.5}, {8, 12}} from {{0, 0}, {8, 12}} operation 2 fraction 1"));
    EXPECT_EQ(slider_->rcClipLeft(), NSMakeRect(2, 16.5, 8, 12));
    EXPECT_EQ(slider_->rcClipRight(), NSMakeRect(210, 16.5, 8, 12));
    EXPECT_EQ(slider_->rcKnob(), NSZeroRect);
}

TEST_F(SplitSliderViewDrawing, TheKnobOnRequest) {
    slider_->setShouldDrawKnob(true);
    EXPECT_TRUE(slider_->needsDisplay());
    slider_->setDCurValue(1000);
    const auto lines = drawing();
    ASSERT_EQ(lines.size(), 5u);
    EXPECT_EQ(lines[2], "fill oval {{198, 9}, {12, 12}} rgba(0.118, 0.663, 0.337, 1)");
    EXPECT_EQ(slider_->rcKnob(), NSMakeRect(198, 9, 12, 12));

    slider_->setShouldDrawKnob(false);
    slider_->setDCurValue(0);
    EXPECT_EQ(drawing().size(), 4u);
    EXPECT_EQ(slider_->rcKnob(), NSMakeRect(198, 9, 12, 12)); // left as it was
}

TEST_F(SplitSliderViewDrawing, HandlesStandAtTheEndsOfTheClip) {
    setClip(250, 500);
    EXPECT_EQ(slider_->rcClipLeft(), NSMakeRect(52, 16.5, 8, 12));
    EXPECT_EQ(slider_->rcClipRight(), NSMakeRect(160, 16.5, 8, 12));
}

TEST_F(SplitSliderViewDrawing, HandlesOfAClipOutsideTheRangeStandAtTheTracksEnds) {
    setClip(-300, 2000);
    EXPECT_EQ(slider_->rcClipLeft(), NSMakeRect(2, 16.5, 8, 12));
    EXPECT_EQ(slider_->rcClipRight(), NSMakeRect(210, 16.5, 8, 12));
}

TEST_F(SplitSliderViewDrawing, TheRightHandleHasTheLeftPicturesSize) {
    slider_->setTrimRightImg(test::picture("wide", {30, 40}));
    slider_->setNeedsDisplay(true);
    EXPECT_EQ(drawing().at(3),
              "image wide in {{210, 16.5}, {8, 12}} from {{0, 0}, {30, 40}} operation 2 fraction 1");
    EXPECT_EQ(slider_->rcClipRight(), NSMakeRect(210, 16.5, 8, 12));
}

TEST_F(SplitSliderViewDrawing, SettingAPictureDoesNotRedraw) {
    slider_->setTrimLeftImg(test::picture("other", {9, 9}));
    slider_->setTrimRightImg(test::picture("other", {9, 9}));
    EXPECT_FALSE(slider_->needsDisplay());
}

TEST_F(SplitSliderViewDrawing, WithoutALeftPictureNeitherHandleIsSeen) {
    slider_->setTrimLeftImg(nullptr);
    slider_->setNeedsDisplay(true);
    EXPECT_THAT(drawing(), ElementsAre(kTrackLine, kWholeClip));
    EXPECT_EQ(slider_->rcClipLeft(), NSMakeRect(10, 16.5, 0, 0));
    EXPECT_EQ(slider_->rcClipRight(), NSMakeRect(210, 16.5, 0, 0));
}

TEST_F(SplitSliderViewDrawing, AClipTooShortToBeDrawnStillHasHandles) {
    setClip(500, 0);
    EXPECT_THAT(
        drawing(),
        ElementsAre(kTrackLine,
                    "image left in {{102, 16.5}, {8, 12}} from {{0, 0}, {8, 12}} operation 2 fraction 1",
                    "image right in {{110, 16.5}, {8, 12}} from {{0, 0}, {8, 12}} operation 2 fraction 1"));
}

TEST_F(SplitSliderViewDrawing, TheKitsOwnHandlesFollowAppearanceAndScale) {
    const auto slider = make<SplitSliderView>(test::kSliderFrame);
    slider->setIdentifier("slider");
    window_->setContentView(slider);
    EXPECT_EQ(
        drawing().at(2),
        "image SliderTrimLeft.png in {{-14, 16.5}, {24, 28}} from {{0, 0}, {24, 28}} operation 2 fraction 1");
    platform_.setDesktopAppearance(Appearance::dark);
    EXPECT_EQ(drawing().at(3), "image SliderTrimRight~dark.png in {{210, 16.5}, {24, 28}} from {{0, 0}, {24, "
                               "28}} operation 2 fraction 1");
}

namespace {
class Steps : public SplitSliderView {
public:
    void draw() override { steps.push_back("draw"); }
    void draw2Clips() override { steps.push_back("clips"); }
    std::vector<std::string> steps;
};
} // namespace

TEST_F(SplitSliderViewDrawing, TheBasesDrawingComesFirst) {
    const auto slider = make<Steps>(test::kSliderFrame);
    slider->drawRect(test::kSliderFrame);
    EXPECT_THAT(slider->steps, ElementsAre("draw", "clips"));
}

TEST(SplitSliderViewDrawingAtTwice, TheSharperPicturesAreTaken) {
    headless::Platform platform({.scale = 2});
    const auto window =
        make<NSWindow>(&NSWindow::initWithContentRect_styleMask_backing_defer, test::kSliderFrame,
                       NSWindowStyleMaskTitled, NSBackingStoreBuffered, false);
    const auto slider = make<SplitSliderView>(test::kSliderFrame);
    slider->setIdentifier("slider");
    window->setContentView(slider);
    window->makeKeyAndOrderFront(nullptr);
    platform.display();
    EXPECT_THAT(platform.windows().at(0)->drawing("slider").at(2),
                testing::StartsWith("image SliderTrimLeft@2x.png in"));
}

} // namespace zr
