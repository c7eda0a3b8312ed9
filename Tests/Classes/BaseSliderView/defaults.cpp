// SPDX-License-Identifier: MIT
#include "Support/FrameArchive.h"
#include "Support/SliderTest.h"

#include <type_traits>

namespace zr {

namespace {

void expectDefaults(const BaseSliderView& slider) {
    EXPECT_EQ(slider.curRecSliderState(), 0);
    EXPECT_EQ(slider.eumCurSliderState(), 0);
    EXPECT_EQ(slider.dLength(), 1000.0);
    EXPECT_EQ(slider.dMinValue(), 0.0);
    EXPECT_EQ(slider.dCurValue(), 0.0);
    ASSERT_TRUE(slider.itemSelection());
    EXPECT_EQ(slider.itemSelection()->dStart(), 0.0);
    EXPECT_EQ(slider.itemSelection()->dLength(), -1.0);
    EXPECT_EQ(slider.sliderXOffset(), 10.0);
    EXPECT_EQ(slider.sliderYOffset(), 10.0);
    EXPECT_EQ(slider.knobYOffset(), 7.0);
    EXPECT_EQ(slider.rcSlider(), NSZeroRect);
    EXPECT_EQ(slider.rcKnob(), NSZeroRect);
    EXPECT_FALSE(slider.bDraggingKnob());
    EXPECT_FALSE(slider.delegate());
    EXPECT_TRUE(slider.isEnabled());
    EXPECT_FALSE(slider.isFlipped());
}

} // namespace

TEST(BaseSliderViewDefaults, MadeWithAFrame) {
    const auto slider = make<BaseSliderView>(test::kSliderFrame);
    ASSERT_TRUE(slider);
    expectDefaults(*slider);
    EXPECT_EQ(slider->frame(), test::kSliderFrame);
}

TEST(BaseSliderViewDefaults, MadeFromAnArchive) {
    test::FrameArchive archive(NSMakeRect(3, 4, 220, 30));
    const auto slider = make<BaseSliderView>(archive);
    ASSERT_TRUE(slider);
    expectDefaults(*slider);
    EXPECT_EQ(slider->frame(), NSMakeRect(3, 4, 220, 30));
}

TEST(BaseSliderViewDefaults, EachSliderHasItsOwnSelection) {
    const auto one = make<BaseSliderView>(test::kSliderFrame);
    const auto other = make<BaseSliderView>(test::kSliderFrame);
    EXPECT_NE(one->itemSelection(), other->itemSelection());
}

TEST(BaseSliderViewDefaults, TheSelectionGoesWithTheSlider) {
    auto slider = make<BaseSliderView>(test::kSliderFrame);
    const std::weak_ptr<SliderSelectionItem> selection = slider->itemSelection();
    slider.reset();
    EXPECT_TRUE(selection.expired());
}

TEST(BaseSliderViewDefaults, TheStateNumberIsKeptForTheHost) {
    const auto slider = make<BaseSliderView>(test::kSliderFrame);
    slider->setCurRecSliderState(-2147483647 - 1);
    EXPECT_EQ(slider->curRecSliderState(), -2147483647 - 1);
    EXPECT_EQ(slider->eumCurSliderState(), -2147483647 - 1);
    static_assert(std::is_same_v<decltype(slider->curRecSliderState()), std::int32_t>);
}

} // namespace zr
