// SPDX-License-Identifier: MIT
#include <Base/Geometry.h>

#include <gtest/gtest.h>

#include <cmath>

namespace zr {

TEST(Geometry, InsetsArePlainArithmetic) {
    EXPECT_EQ(NSInsetRect(NSMakeRect(10, 20, 30, 40), 5, 6), NSMakeRect(15, 26, 20, 28));
    EXPECT_EQ(NSInsetRect(NSMakeRect(10, 20, 30, 40), -5, -5), NSMakeRect(5, 15, 40, 50));
    EXPECT_EQ(NSInsetRect(NSMakeRect(0, 0, 4, 4), 5, 5), NSMakeRect(5, 5, -6, -6));
}

TEST(Geometry, OffsetMovesTheOriginOnly) {
    EXPECT_EQ(NSOffsetRect(NSMakeRect(1, 2, 3, 4), -1, 5), NSMakeRect(0, 7, 3, 4));
}

TEST(Geometry, APointBelongsToTheLeftAndBottomEdges) {
    const NSRect rect = NSMakeRect(10, 20, 30, 40);
    EXPECT_TRUE(NSPointInRect({10, 20}, rect));
    EXPECT_FALSE(NSPointInRect({40, 30}, rect));
    EXPECT_FALSE(NSPointInRect({20, 60}, rect));
    EXPECT_TRUE(NSPointInRect({39.999, 59.999}, rect));
    EXPECT_FALSE(NSPointInRect({10, 20}, NSMakeRect(10, 20, 0, 5)));
    EXPECT_FALSE(NSPointInRect({NAN, 30}, rect));
}

TEST(Geometry, ThePointerBelongsToTheTopEdgeWhereYRunsUp) {
    const NSRect rect = NSMakeRect(0, 0, 10, 10);
    EXPECT_TRUE(NSMouseInRect({5, 10}, rect, false));
    EXPECT_FALSE(NSMouseInRect({5, 0}, rect, false));
    EXPECT_TRUE(NSMouseInRect({5, 0}, rect, true));
    EXPECT_FALSE(NSMouseInRect({5, 10}, rect, true));
}

TEST(Geometry, IntersectionOfTouchingRectanglesIsZero) {
    EXPECT_EQ(NSIntersectionRect(NSMakeRect(0, 0, 10, 10), NSMakeRect(5, 5, 10, 10)), NSMakeRect(5, 5, 5, 5));
    EXPECT_EQ(NSIntersectionRect(NSMakeRect(0, 0, 10, 10), NSMakeRect(10, 0, 10, 10)), NSZeroRect);
}

TEST(Geometry, AUnionIgnoresAnEmptyRectangle) {
    EXPECT_EQ(NSUnionRect(NSMakeRect(0, 0, 1, 1), NSMakeRect(5, 5, 1, 1)), NSMakeRect(0, 0, 6, 6));
    EXPECT_EQ(NSUnionRect(NSMakeRect(3, 3, 1, 1), NSMakeRect(50, 50, 0, 9)), NSMakeRect(3, 3, 1, 1));
    EXPECT_EQ(NSUnionRect(NSMakeRect(1, 1, 0, 0), NSMakeRect(2, 2, -1, 4)), NSZeroRect);
}

} // namespace zr
