// SPDX-License-Identifier: MIT
#include "Adaptor.h"

#include <AppKit/NSButton.h>
#include <AppKit/NSTextField.h>

#include <cmath>

namespace zr::conformance {

using testing::ElementsAre;

class ConformanceGeometry : public Conformance {
protected:
    // Where the view must be seen, from what the view says of itself.
    CGRect placeOf(const NSView& view) const {
        const NSRect inWindow = view.convertRect_toView(view.bounds(), nullptr);
        return {{inWindow.origin.x, window_->contentSize().height - NSMaxY(inWindow)}, inWindow.size};
    }
};

TEST_F(ConformanceGeometry, AViewIsSeenAndHitWhereItSaysInEveryNestingOfFlippedViews) {
    for (int nesting = 0; nesting < 8; ++nesting) {
        const auto outer = probe("outer", NSMakeRect(0, 0, 200, 100), (nesting & 1) != 0);
        const auto middle = probe("middle", NSMakeRect(20, 10, 150, 70), (nesting & 2) != 0);
        const auto inner = probe("inner", NSMakeRect(30, 5, 40, 20), (nesting & 4) != 0);
        outer->addSubview(middle);
        middle->addSubview(inner);
        show(outer);
        for (const auto& view : {outer, middle, inner})
            EXPECT_EQ(adaptor_->place(*window_, view->identifier()), placeOf(*view))
                << nesting << view->identifier();
        // The same point of the inner view, by its own coordinates.
        const NSPoint inWindow = inner->convertPoint_toView({10, 4}, nullptr);
        taken();
        adaptor_->press(*window_, inWindow);
        adaptor_->release(*window_, inWindow);
        EXPECT_THAT(taken(), ElementsAre("inner down 10 4", "inner up 10 4")) << nesting;
        window_->close();
        adaptor_->settle();
    }
}

TEST_F(ConformanceGeometry, TheFlipOfASuperviewHoldsForItsSubviewsFrames) {
    const auto flipped = probe("flipped", NSMakeRect(0, 0, 200, 100), true);
    const auto inFlipped = probe("in flipped", NSMakeRect(10, 20, 30, 40));
    flipped->addSubview(inFlipped);
    show(flipped);
    EXPECT_EQ(adaptor_->place(*window_, "in flipped"), CGRect(NSMakeRect(10, 20, 30, 40)));
    const auto unflipped = probe("unflipped", NSMakeRect(50, 0, 100, 100));
    const auto inUnflipped = probe("in unflipped", NSMakeRect(10, 20, 30, 40), true);
    flipped->addSubview(unflipped);
    unflipped->addSubview(inUnflipped);
    adaptor_->settle();
    EXPECT_EQ(adaptor_->place(*window_, "in unflipped"), CGRect(NSMakeRect(60, 40, 30, 40)));
}

TEST_F(ConformanceGeometry, SubviewsOfAnUnflippedViewHangFromItsBottomWhenItGrows) {
    const auto root = probe("root", NSMakeRect(0, 0, 200, 100), true);
    const auto box = probe("box", NSMakeRect(0, 0, 100, 50));
    const auto child = probe("child", NSMakeRect(5, 5, 10, 10));
    root->addSubview(box);
    box->addSubview(child);
    show(root);
    EXPECT_EQ(adaptor_->place(*window_, "child"), CGRect(NSMakeRect(5, 35, 10, 10)));
    box->setFrameSize({100, 80});
    adaptor_->settle();
    EXPECT_EQ(child->frame(), NSMakeRect(5, 5, 10, 10));
    EXPECT_EQ(adaptor_->place(*window_, "child"), CGRect(NSMakeRect(5, 65, 10, 10)));
}

TEST_F(ConformanceGeometry, NothingIsResizedOrMovedByTheWindowSystemItself) {
    const auto root = probe("root", NSMakeRect(0, 0, 200, 100), true);
    const auto field = make<NSTextField>(NSMakeRect(10, 10, 80, 24));
    const auto button = make<NSButton>(NSMakeRect(10, 40, 80, 30));
    const auto box = probe("box", NSMakeRect(100, 10, 50, 50), true);
    const auto inner = probe("inner", NSMakeRect(5, 5, 20, 20));
    field->setIdentifier("field");
    button->setIdentifier("button");
    button->setTitle("A title that needs more room than there is");
    for (const auto& view : std::vector<std::shared_ptr<NSView>>{field, button, box}) root->addSubview(view);
    box->addSubview(inner);
    show(root);
    const auto placesAreKept = [&] {
        for (const auto& view : std::vector<std::shared_ptr<NSView>>{field, button, box, inner})
            EXPECT_EQ(adaptor_->place(*window_, view->identifier()), placeOf(*view)) << view->identifier();
        EXPECT_EQ(field->frame(), NSMakeRect(10, 10, 80, 24));
        EXPECT_EQ(button->frame(), NSMakeRect(10, 40, 80, 30));
        EXPECT_EQ(inner->frame(), NSMakeRect(5, 5, 20, 20));
    };
    placesAreKept();
    adaptor_->resize(*window_, {300, 160});
    adaptor_->settle();
    placesAreKept();
    box->setFrame(NSMakeRect(120, 20, 70, 80));
    adaptor_->settle();
    placesAreKept();
    field->setStringValue("A text that is much too long for the field in which it stands");
    adaptor_->settle();
    placesAreKept();
}

TEST_F(ConformanceGeometry, FractionsStayInTheViewAndEdgesAreRoundedOnTheScreen) {
    const auto root = probe("root", NSMakeRect(0, 0, 200, 100), true);
    const auto child = probe("child", NSMakeRect(10.4, 20.6, 30.3, 40.3), true);
    root->addSubview(child);
    show(root);
    EXPECT_EQ(child->frame(), NSMakeRect(10.4, 20.6, 30.3, 40.3));
    const auto place = adaptor_->place(*window_, "child");
    ASSERT_TRUE(place.has_value());
    EXPECT_LE(std::abs(NSMinX(*place) - 10.4), 0.5);
    EXPECT_LE(std::abs(NSMinY(*place) - 20.6), 0.5);
    EXPECT_LE(std::abs(NSMaxX(*place) - 40.7), 0.5);
    EXPECT_LE(std::abs(NSMaxY(*place) - 60.9), 0.5);
    taken();
    adaptor_->press(*window_, {30, 50});
    EXPECT_EQ(taken().at(0), stringWithFormat("child down %g %g", 30 - 10.4, 50 - 20.6));
}

TEST_F(ConformanceGeometry, AutoresizingFollowsTheUsersResizingByEveryMask) {
    for (unsigned mask = 0; mask < 64; ++mask) {
        const auto root = probe("root", NSMakeRect(0, 0, 200, 100));
        const auto child = probe("child", NSMakeRect(20, 10, 100, 40));
        child->setAutoresizingMask(mask);
        root->addSubview(child);
        show(root);
        adaptor_->resize(*window_, {240, 160});
        adaptor_->settle();
        EXPECT_EQ(root->frame().size, (NSSize{240, 160}));
        // Margins and size share the change in proportion to what they were.
        const auto axis = [&](double before, double size, double after, double change, unsigned low,
                              unsigned mid, unsigned high) {
            const double flexible = ((mask & low) != 0 ? before : 0) + ((mask & mid) != 0 ? size : 0) +
                                    ((mask & high) != 0 ? after : 0);
            const auto grown = [&](double part, unsigned bit) {
                return (mask & bit) != 0 ? part + change * part / flexible : part;
            };
            return std::pair(grown(before, low), grown(size, mid));
        };
        const auto [x, width] = axis(20, 100, 80, 40, NSViewMinXMargin, NSViewWidthSizable, NSViewMaxXMargin);
        const auto [y, height] = axis(10, 40, 50, 60, NSViewMinYMargin, NSViewHeightSizable, NSViewMaxYMargin);
        EXPECT_NEAR(child->frame().origin.x, x, 1e-9) << mask;
        EXPECT_NEAR(child->frame().size.width, width, 1e-9) << mask;
        EXPECT_NEAR(child->frame().origin.y, y, 1e-9) << mask;
        EXPECT_NEAR(child->frame().size.height, height, 1e-9) << mask;
        const auto place = adaptor_->place(*window_, "child");
        ASSERT_TRUE(place.has_value());
        EXPECT_NEAR(place->origin.y, placeOf(*child).origin.y, 0.5) << mask;
        window_->close();
        adaptor_->settle();
    }
}

TEST_F(ConformanceGeometry, ScreenCoordinatesFollowTheWindowAndRunUp) {
    const auto root = probe("root", NSMakeRect(0, 0, 200, 100));
    show(root);
    adaptor_->move(*window_, {100, 120});
    adaptor_->settle();
    const NSRect before = window_->convertRectToScreen(NSMakeRect(10, 20, 30, 40));
    EXPECT_EQ(before.size, (NSSize{30, 40}));
    adaptor_->move(*window_, {150, 100});
    adaptor_->settle();
    const NSRect after = window_->convertRectToScreen(NSMakeRect(10, 20, 30, 40));
    EXPECT_EQ(after.origin.x - before.origin.x, 50);
    EXPECT_EQ(after.origin.y - before.origin.y, 20) << "up, where the window went";
}

TEST_F(ConformanceGeometry, AViewMovesBetweenWindowsWithItsSubviews) {
    const auto first = probe("first", NSMakeRect(0, 0, 200, 100));
    const auto box = probe("box", NSMakeRect(10, 10, 100, 50));
    const auto child = probe("child", NSMakeRect(5, 5, 10, 10));
    first->addSubview(box);
    box->addSubview(child);
    show(first);
    const auto second = probe("second", NSMakeRect(0, 0, 300, 200));
    const auto other = makeWindow("the other window", second, {300, 200});
    other->orderFront(nullptr);
    second->addSubview(box);
    adaptor_->settle();
    EXPECT_EQ(adaptor_->place(*window_, "box"), std::nullopt);
    EXPECT_EQ(adaptor_->place(*other, "child"), CGRect(NSMakeRect(15, 200 - 15 - 10, 10, 10)));
    EXPECT_EQ(child->window(), other.get());
    taken();
    adaptor_->press(*other, {18, 18});
    EXPECT_THAT(taken(), ElementsAre("child down 3 3"));
    adaptor_->release(*other, {18, 18});
    other->close();
}

} // namespace zr::conformance
