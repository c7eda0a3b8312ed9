// SPDX-License-Identifier: MIT
#include "SplitSliderTest.h"
#include "Support/FrameArchive.h"

namespace zr {

namespace {

void expectDefaults(const SplitSliderView& slider) {
    EXPECT_FALSE(slider.bDraggingLeftClip());
    EXPECT_FALSE(slider.bDraggingRightClip());
    EXPECT_EQ(slider.rcClipLeft(), NSZeroRect);
    EXPECT_EQ(slider.rcClipRight(), NSZeroRect);
    EXPECT_EQ(slider.dDragXoffset(), 0.0);
    EXPECT_FALSE(slider.shouldDrawKnob());
    EXPECT_EQ(slider.dMinValue(), 0.0);
    EXPECT_EQ(slider.dLength(), 1000.0);
    EXPECT_EQ(slider.dCurValue(), 0.0);
    EXPECT_EQ(slider.selectionItem()->dStart(), 0.0);
    EXPECT_EQ(slider.selectionItem()->dLength(), 1000.0);
}

} // namespace

TEST(SplitSliderViewDefaults, MadeWithAFrame) {
    const headless::Platform platform;
    const auto slider = make<SplitSliderView>(test::kSliderFrame);
    ASSERT_TRUE(slider);
    expectDefaults(*slider);
}

TEST(SplitSliderViewDefaults, MadeFromAnArchive) {
    const headless::Platform platform;
    test::FrameArchive archive(test::kSliderFrame);
    const auto slider = make<SplitSliderView>(archive);
    ASSERT_TRUE(slider);
    expectDefaults(*slider);
    EXPECT_EQ(slider->frame(), test::kSliderFrame);
    EXPECT_TRUE(slider->trimLeftImg());
}

TEST(SplitSliderViewDefaults, TheHandlesComeFromTheKitsBundle) {
    const headless::Platform platform;
    const auto slider = make<SplitSliderView>(test::kSliderFrame);
    ASSERT_TRUE(slider->trimLeftImg());
    ASSERT_TRUE(slider->trimRightImg());
    EXPECT_NE(slider->trimLeftImg(), slider->trimRightImg());
    EXPECT_EQ(slider->trimLeftImg()->size().width, 24.0);
    EXPECT_EQ(slider->trimLeftImg()->size(), slider->trimRightImg()->size());
}

TEST(SplitSliderViewDefaults, SlidersShareTheirPictures) {
    const headless::Platform platform;
    const auto one = make<SplitSliderView>(test::kSliderFrame);
    const auto other = make<SplitSliderView>(test::kSliderFrame);
    EXPECT_EQ(one->trimLeftImg(), other->trimLeftImg());
}

TEST(SplitSliderViewDefaults, WithoutAWindowSystemThereAreNoPicturesAndAllElseWorks) {
    const auto slider = make<SplitSliderView>(test::kSliderFrame);
    ASSERT_TRUE(slider);
    expectDefaults(*slider);
    EXPECT_FALSE(slider->trimLeftImg());
    slider->drawRect(test::kSliderFrame);
    EXPECT_EQ(slider->rcSlider(), NSMakeRect(10, 13.5, 200, 3));
    EXPECT_EQ(slider->rcClipLeft(), NSMakeRect(10, 16.5, 0, 0));
}

namespace {
// A host's subclass: its bundle is not the kit's.
class HostSlider : public SplitSliderView {
public:
    ZR_CLASS(HostSlider, SplitSliderView)
    void setTrimLeftImg(const std::shared_ptr<NSImage>& image) override {
        ++stored;
        SplitSliderView::setTrimLeftImg(image);
    }
    void setTrimRightImg(const std::shared_ptr<NSImage>& image) override {
        ++stored;
        SplitSliderView::setTrimRightImg(image);
    }
    int stored = 0;
};
ZR_CLASS_TABLE(HostSlider)
} // namespace

TEST(SplitSliderViewDefaults, AHostsSubclassGetsTheKitsPicturesThroughItsSetters) {
    const headless::Platform platform;
    const auto slider = make<HostSlider>(test::kSliderFrame);
    EXPECT_EQ(slider->stored, 2);
    EXPECT_TRUE(slider->trimLeftImg());
}

TEST(SplitSliderViewDefaults, TheSelectionIsTheLiveObject) {
    const headless::Platform platform;
    const auto slider = make<SplitSliderView>(test::kSliderFrame);
    slider->selectionItem()->setDStart(77);
    EXPECT_EQ(slider->itemSelection()->dStart(), 77.0);
    slider->setSelection_length(1, 2);
    EXPECT_EQ(slider->selectionItem()->dLength(), 2.0);
}

} // namespace zr
