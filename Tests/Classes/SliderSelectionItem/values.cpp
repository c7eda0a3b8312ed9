// SPDX-License-Identifier: MIT
#include <ZRUIKit/SliderSelectionItem.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace zr {

TEST(SliderSelectionItem, StartsAtZeroWithoutLength) {
    const auto item = make<SliderSelectionItem>();
    EXPECT_EQ(item->dStart(), 0.0);
    EXPECT_EQ(item->dLength(), 0.0);
}

TEST(SliderSelectionItem, KeepsAnyValueAsItIsGiven) {
    const auto item = make<SliderSelectionItem>();
    item->setDStart(-17.25);
    item->setDLength(-1);
    EXPECT_EQ(item->dStart(), -17.25);
    EXPECT_EQ(item->dLength(), -1.0);
    item->setDLength(std::numeric_limits<double>::infinity());
    EXPECT_TRUE(std::isinf(item->dLength()));
}

} // namespace zr
