// SPDX-License-Identifier: MIT
#include "WindowTest.h"

#include <Foundation/NSCoder.h>

namespace zr {

using testing::ElementsAre;

class ViewGeometry : public test::WindowTest {};

TEST_F(ViewGeometry, BoundsStartAtZeroAndHaveTheFramesSize) {
    const auto view = make<NSView>(NSMakeRect(5, 6, 70, 80));
    EXPECT_EQ(view->frame(), NSMakeRect(5, 6, 70, 80));
    EXPECT_EQ(view->bounds(), NSMakeRect(0, 0, 70, 80));
    view->setFrameOrigin({1, 2});
    view->setFrameSize({3, 4});
    EXPECT_EQ(view->frame(), NSMakeRect(1, 2, 3, 4));
    EXPECT_FALSE(view->isFlipped());
}

TEST_F(ViewGeometry, AViewFromAnArchiveHasItsFrameAndMask) {
    struct Archive : NSCoder {
        std::optional<NSRect> decodeRectForKey(std::string_view key) const override {
            return key == "NSFrame" ? std::optional(NSMakeRect(1, 2, 3, 4)) : std::nullopt;
        }
        std::optional<double> decodeDoubleForKey(std::string_view key) const override {
            return key == "NSAutoresizingMask" ? std::optional(18.0) : std::nullopt;
        }
        std::optional<bool> decodeBoolForKey(std::string_view) const override { return std::nullopt; }
    } archive;
    const auto view = make<NSView>(archive);
    EXPECT_EQ(view->frame(), NSMakeRect(1, 2, 3, 4));
    EXPECT_EQ(view->autoresizingMask(), unsigned(NSViewWidthSizable | NSViewHeightSizable));
}

TEST_F(ViewGeometry, PointsAreConvertedThroughEveryNestingOfFlippedViews) {
    for (int nesting = 0; nesting < 8; ++nesting) {
        const bool a = nesting & 1, b = nesting & 2, c = nesting & 4;
        const auto root = probe("root", {{0, 0}, {200, 100}}, a);
        const auto middle = probe("middle", {{50, 20}, {100, 60}}, b);
        const auto leaf = probe("leaf", {{5, 7}, {20, 10}}, c);
        root->addSubview(middle);
        middle->addSubview(leaf);
        // The leaf's lower left corner, worked out by hand from the tops.
        const double rootTop = 100;
        const double middleTop = a ? rootTop - 20 : 20 + 60;                // in the window
        const double leafTop = b ? middleTop - 7 : middleTop - 60 + 7 + 10; // in the window
        const NSPoint corner = leaf->convertPoint_toView(c ? NSPoint{0, 10} : NSPoint{0, 0}, nullptr);
        EXPECT_EQ(corner, NSMakePoint(55, leafTop - 10)) << nesting;
        EXPECT_EQ(leaf->convertPoint_fromView({55, leafTop - 10}, nullptr),
                  (c ? NSPoint{0, 10} : NSPoint{0, 0}))
            << nesting;
        EXPECT_EQ(leaf->convertRect_toView(leaf->bounds(), nullptr), NSMakeRect(55, leafTop - 10, 20, 10))
            << nesting;
        EXPECT_EQ(leaf->convertRect_fromView({{55, leafTop - 10}, {20, 10}}, nullptr), leaf->bounds())
            << nesting;
        EXPECT_EQ(middle->convertRect_fromView(leaf->bounds(), leaf.get()), leaf->frame()) << nesting;
        EXPECT_EQ(leaf->convertRect_toView(leaf->bounds(), middle.get()), leaf->frame()) << nesting;
    }
}

TEST_F(ViewGeometry, AFlippedViewInAnUnflippedWindow) {
    const auto root = make<NSView>(NSMakeRect(0, 0, 300, 300));
    const auto flipped = probe("flipped", {{50, 60}, {100, 80}}, true);
    const auto inner = make<NSView>(NSMakeRect(5, 7, 20, 10));
    root->addSubview(flipped);
    flipped->addSubview(inner);
    EXPECT_EQ(inner->convertRect_toView(inner->bounds(), root.get()), NSMakeRect(55, 123, 20, 10));
    EXPECT_EQ(flipped->convertPoint_fromView({60, 70}, nullptr), NSMakePoint(10, 70));
}

TEST_F(ViewGeometry, AutoresizingSharesTheChangeAmongTheFlexibleParts) {
    const auto resized = [](unsigned mask) {
        const auto parent = make<NSView>(NSMakeRect(0, 0, 100, 100));
        const auto child = make<NSView>(NSMakeRect(10, 20, 30, 40));
        child->setAutoresizingMask(mask);
        parent->addSubview(child);
        parent->setFrameSize({150, 130});
        return child->frame();
    };
    EXPECT_EQ(resized(NSViewNotSizable), NSMakeRect(10, 20, 30, 40));
    EXPECT_EQ(resized(18), NSMakeRect(10, 20, 80, 70));
    EXPECT_EQ(resized(NSViewMinXMargin), NSMakeRect(60, 20, 30, 40));
    EXPECT_EQ(resized(NSViewMinYMargin), NSMakeRect(10, 50, 30, 40));
    EXPECT_NEAR(resized(NSViewMinXMargin | NSViewMaxXMargin).origin.x, 10 + 50 * 10.0 / 70, 1e-12);
    const NSRect all = resized(NSViewMinXMargin | NSViewWidthSizable | NSViewMaxXMargin);
    EXPECT_NEAR(all.origin.x, 15, 1e-12);
    EXPECT_NEAR(all.size.width, 45, 1e-12);
}

TEST_F(ViewGeometry, AutoresizingFromNothingIsNotLost) {
    const auto parent = make<NSView>(NSMakeRect(0, 0, 0, 0));
    const auto child = make<NSView>(NSMakeRect(0, 0, 0, 0));
    child->setAutoresizingMask(NSViewWidthSizable | NSViewHeightSizable);
    parent->addSubview(child);
    parent->setFrameSize({150, 130});
    EXPECT_EQ(child->frame(), NSMakeRect(0, 0, 150, 130));
}

TEST_F(ViewGeometry, PeersHangFromTheTop) {
    const auto root = make<NSView>(NSMakeRect(0, 0, 200, 100));
    const auto low = probe("low", {{10, 0}, {30, 20}});
    const auto box = probe("box", {{100, 10}, {80, 60}}, true);
    const auto inner = probe("inner", {{5, 7}, {20, 10}});
    root->addSubview(low);
    root->addSubview(box);
    box->addSubview(inner);
    show(root);
    EXPECT_EQ(user_->frameInContent("low"), NSMakeRect(10, 80, 30, 20));
    EXPECT_EQ(user_->frameInContent("box"), NSMakeRect(100, 30, 80, 60));
    EXPECT_EQ(user_->frameInContent("inner"), NSMakeRect(105, 37, 20, 10));
    user_->resizeByUser({200, 150}); // no frame changes, but all that hangs from an unflipped view moves
    EXPECT_EQ(low->frame(), NSMakeRect(10, 0, 30, 20));
    EXPECT_EQ(user_->frameInContent("low"), NSMakeRect(10, 130, 30, 20));
    EXPECT_EQ(user_->frameInContent("inner"), NSMakeRect(105, 87, 20, 10));
}

TEST_F(ViewGeometry, TheDeepestVisibleViewInFrontIsHit) {
    const auto root = make<NSView>(NSMakeRect(0, 0, 200, 100));
    const auto back = probe("back", {{10, 10}, {80, 80}});
    const auto front = probe("front", {{50, 10}, {80, 80}}, true);
    const auto inner = probe("inner", {{0, 0}, {20, 20}}); // at the top left of the flipped view
    root->addSubview(back);
    root->addSubview(front);
    front->addSubview(inner);
    EXPECT_EQ(root->hitTest({20, 50}), back.get());
    EXPECT_EQ(root->hitTest({60, 30}), front.get());
    EXPECT_EQ(root->hitTest({55, 85}), inner.get());
    EXPECT_EQ(root->hitTest({5, 5}), root.get());
    EXPECT_EQ(root->hitTest({300, 50}), nullptr);
    front->setHidden(true);
    EXPECT_EQ(root->hitTest({60, 30}), back.get());
    EXPECT_TRUE(inner->isHiddenOrHasHiddenAncestor());
    EXPECT_FALSE(inner->isHidden());
    // The top row of pixels belongs to a view, the row below its bottom does not.
    EXPECT_EQ(root->hitTest({20, 90}), back.get());
    EXPECT_EQ(root->hitTest({20, 10}), root.get());
}

TEST_F(ViewGeometry, SubviewsAreMovedReorderedAndLetGo) {
    const auto root = make<NSView>(NSMakeRect(0, 0, 200, 100));
    const auto other = make<NSView>(NSMakeRect(0, 0, 10, 10));
    const auto a = make<NSView>(NSMakeRect(0, 0, 10, 10));
    const auto b = make<NSView>(NSMakeRect(0, 0, 10, 10));
    root->addSubview(a);
    root->addSubview(b);
    EXPECT_THAT(root->subviews(), ElementsAre(a, b));
    root->addSubview(a);
    EXPECT_THAT(root->subviews(), ElementsAre(b, a));
    other->addSubview(b);
    EXPECT_THAT(root->subviews(), ElementsAre(a));
    EXPECT_EQ(b->superview(), other.get());
    EXPECT_EQ(b->nextResponder(), other.get());
    b->addSubview(other); // would contain itself
    EXPECT_EQ(other->superview(), nullptr);
    b->removeFromSuperview();
    b->removeFromSuperview();
    EXPECT_EQ(b->superview(), nullptr);
    EXPECT_EQ(b->nextResponder(), nullptr);
    root->addSubview(nullptr);
    EXPECT_TRUE(a->isDescendantOf(*root));
}

TEST_F(ViewGeometry, ASuperviewHoldsItsSubviewsAndGoesWithoutThem) {
    auto root = make<NSView>(NSMakeRect(0, 0, 200, 100));
    auto child = make<NSView>(NSMakeRect(0, 0, 10, 10));
    const std::weak_ptr<NSView> watched = child;
    root->addSubview(child);
    child.reset();
    EXPECT_FALSE(watched.expired());
    child = watched.lock();
    root.reset();
    EXPECT_EQ(child->superview(), nullptr);
    EXPECT_EQ(child->nextResponder(), nullptr);
}

TEST_F(ViewGeometry, AViewMayRemoveItselfWhileNobodyElseHoldsIt) {
    const auto root = make<NSView>(NSMakeRect(0, 0, 200, 100));
    auto child = probe("child", {{0, 0}, {10, 10}});
    root->addSubview(child);
    test::Probe* const raw = child.get();
    const std::weak_ptr<NSView> watched = child;
    child.reset();
    raw->removeFromSuperview();
    EXPECT_TRUE(watched.expired());
}

} // namespace zr
