// SPDX-License-Identifier: MIT
#include "WindowTest.h"

#include <AppKit/NSBezierPath.h>
#include <AppKit/NSColor.h>
#include <AppKit/NSGraphicsContext.h>
#include <AppKit/NSImage.h>
#include <AppKit/NSStringDrawing.h>
#include <ZRUIKitHeadless/RecordingCanvas.h>

#include <stdexcept>

namespace zr {

using testing::ElementsAre;
using testing::IsEmpty;

class DisplayAndLayout : public test::WindowTest {
protected:
    void SetUp() override {
        root_ = probe("root", {{0, 0}, {200, 100}});
        child_ = probe("child", {{10, 20}, {50, 30}});
        root_->addSubview(child_);
    }
    std::shared_ptr<test::Probe> root_, child_;
};

TEST_F(DisplayAndLayout, LayoutComesBeforeTheFirstDrawingSuperviewsFirst) {
    std::vector<std::string> order;
    root_->layouter = [&] { order.push_back("layout root"); };
    child_->layouter = [&] { order.push_back("layout child"); };
    root_->painter = [&] { order.push_back("draw root"); };
    child_->painter = [&] { order.push_back("draw child"); };
    show(root_);
    EXPECT_THAT(order, ElementsAre("layout root", "layout child", "draw root", "draw child"));
}

TEST_F(DisplayAndLayout, ANewSizeLaysOutAtOnceAndDrawsOnce) {
    show(root_);
    const int layouts = root_->layouts, draws = root_->draws;
    root_->layouter = [&] { child_->setFrame({{0, 0}, {root_->bounds().size.width / 2, 30}}); };
    user_->resizeByUser({300, 120});
    EXPECT_EQ(root_->layouts, layouts + 1);
    EXPECT_EQ(root_->draws, draws + 1);
    EXPECT_EQ(child_->frame().size.width, 150.0);
    EXPECT_EQ(root_->frame(), NSMakeRect(0, 0, 300, 120));
}

TEST_F(DisplayAndLayout, AMarkForLayoutIsServedOnce) {
    show(root_);
    const int layouts = child_->layouts;
    child_->setNeedsLayout(true);
    child_->setNeedsLayout(true);
    EXPECT_TRUE(child_->needsLayout());
    EXPECT_EQ(child_->layouts, layouts);
    platform_.display();
    EXPECT_EQ(child_->layouts, layouts + 1);
    platform_.display();
    EXPECT_EQ(child_->layouts, layouts + 1);
}

TEST_F(DisplayAndLayout, AViewAddedLaterIsLaidOutAndDrawn) {
    show(root_);
    const auto later = probe("later", {{0, 0}, {10, 10}});
    root_->addSubview(later);
    platform_.display();
    EXPECT_EQ(later->layouts, 1);
    EXPECT_EQ(later->draws, 1);
}

TEST_F(DisplayAndLayout, SeveralMarksAreOneDrawingOfTheWholeView) {
    show(root_);
    EXPECT_FALSE(child_->needsDisplay());
    const int draws = child_->draws;
    child_->setNeedsDisplay(true);
    child_->setNeedsDisplay(true);
    EXPECT_TRUE(child_->needsDisplay());
    platform_.display();
    EXPECT_EQ(child_->draws, draws + 1);
    EXPECT_EQ(child_->lastDirty, child_->bounds());
    EXPECT_FALSE(child_->needsDisplay());
}

TEST_F(DisplayAndLayout, OnlyWhatIsMarkedIsDrawn) {
    show(root_);
    const int draws = root_->draws;
    child_->setNeedsDisplay(true);
    platform_.display();
    EXPECT_EQ(root_->draws, draws);
}

TEST_F(DisplayAndLayout, AHiddenViewIsNotDrawnUntilItIsShown) {
    child_->setHidden(true);
    show(root_);
    EXPECT_EQ(child_->draws, 0);
    EXPECT_FALSE(user_->frameInContent("child"));
    child_->setHidden(false);
    platform_.display();
    EXPECT_EQ(child_->draws, 1);
}

TEST_F(DisplayAndLayout, AWindowThatIsNotShownDrawsNothing) {
    const auto window = makeWindow(root_);
    platform_.display();
    EXPECT_EQ(root_->draws, 0);
    EXPECT_TRUE(platform_.windows().empty());
    EXPECT_TRUE(root_->needsDisplay());
}

TEST_F(DisplayAndLayout, AppearanceChangesAreToldOnceAndDrawnOnce) {
    show(root_);
    child_->taken();
    const int draws = child_->draws;
    platform_.setDesktopAppearance(Appearance::dark);
    EXPECT_THAT(child_->taken(), ElementsAre("appearance"));
    EXPECT_EQ(child_->draws, draws + 1);
    platform_.setDesktopAppearance(Appearance::dark);
    EXPECT_THAT(child_->taken(), IsEmpty());
    NSApplication::sharedApplication().setAppearance(Appearance::light);
    EXPECT_EQ(NSApplication::sharedApplication().effectiveAppearance(), Appearance::light);
    EXPECT_THAT(child_->taken(), ElementsAre("appearance"));
}

TEST_F(DisplayAndLayout, OutsideOfAPassNothingIsDrawnAndNothingFails) {
    EXPECT_EQ(NSGraphicsContext::currentContext(), nullptr);
    NSColor::labelColor().set();
    NSBezierPath::bezierPathWithRect({{0, 0}, {1, 1}}).fill();
    NSBezierPath::bezierPathWithRect({{0, 0}, {1, 1}}).stroke();
    NSBezierPath::bezierPathWithRect({{0, 0}, {1, 1}}).addClip();
    NSRectFill({{0, 0}, {1, 1}});
    NSGraphicsContext::saveGraphicsState_();
    NSGraphicsContext::restoreGraphicsState_();
    drawAtPoint_withAttributes("x", {0, 0}, {});
    make<NSImage>(&NSImage::initWithSize, NSMakeSize(5, 5))
        ->drawInRect_fromRect_operation_fraction({{0, 0}, {5, 5}}, NSZeroRect, NSCompositingOperationSourceOver,
                                                 1);
}

TEST_F(DisplayAndLayout, StateIsSavedAndRestoredAndFreshEachPass) {
    child_->painter = [] {
        NSRectFill({{0, 0}, {1, 1}}); // black at first
        NSColor::labelColor().set();
        NSGraphicsContext::saveGraphicsState_();
        NSColor::systemRedColor().set();
        NSBezierPath::bezierPathWithRect({{0, 0}, {9, 9}}).addClip();
        NSBezierPath::fillRect({{1, 1}, {1, 1}});
        NSGraphicsContext::restoreGraphicsState_();
        NSGraphicsContext::restoreGraphicsState_(); // one too many
        NSBezierPath::fillRect({{2, 2}, {1, 1}});
        NSGraphicsContext::saveGraphicsState_(); // never restored
    };
    show(root_);
    const std::vector<std::string> lines = {"fill rect {{0, 0}, {1, 1}} rgba(0, 0, 0, 1) operation 1",
                                            "save",
                                            "clip rect {{0, 0}, {9, 9}}",
                                            "fill rect {{1, 1}, {1, 1}} systemRedColor",
                                            "restore",
                                            "fill rect {{2, 2}, {1, 1}} labelColor",
                                            "save",
                                            "restore"};
    EXPECT_EQ(user_->drawing("child"), lines);
    child_->setNeedsDisplay(true);
    platform_.display();
    EXPECT_EQ(user_->drawing("child"), lines);
}

TEST_F(DisplayAndLayout, PathsAreRecordedAsTheyWereBuilt) {
    child_->painter = [] {
        NSColor::labelColor().set();
        auto path = NSBezierPath::bezierPath();
        path.moveToPoint({1, 2});
        path.lineToPoint({3, 4});
        path.closePath();
        path.setLineWidth(2.5);
        path.stroke();
        NSBezierPath::bezierPathWithRoundedRect_xRadius_yRadius({{0, 0}, {10, 4}}, 20, 20)
            .fill(); // radii are limited
        auto rectangle = NSBezierPath::bezierPathWithRect({{0, 0}, {1, 1}});
        rectangle.moveToPoint({5, 5});
        rectangle.lineToPoint({6, 6});
        rectangle.fill();
        drawAtPoint_withAttributes("Hi", {3, 4},
                                   {NSFont::boldSystemFontOfSize(11), NSColor::secondaryLabelColor()});
        drawAtPoint_withAttributes("", {3, 4}, {});
    };
    show(root_);
    EXPECT_THAT(user_->drawing("child"),
                ElementsAre("stroke path move {1, 2} line {3, 4} close labelColor width 2.5",
                            "fill rounded {{0, 0}, {10, 4}} radius {5, 2} labelColor",
                            "fill path move {0, 0} line {1, 0} line {1, 1} line {0, 1} close move {5, 5} line "
                            "{6, 6} labelColor",
                            "text \"Hi\" system bold 11 secondaryLabelColor at {3, 4}"));
}

TEST_F(DisplayAndLayout, ALineWithoutABeginningIsRefused) {
    auto path = NSBezierPath::bezierPath();
    EXPECT_THROW(path.lineToPoint({1, 1}), std::logic_error);
    EXPECT_THROW(path.closePath(), std::logic_error);
    EXPECT_TRUE(path.path().elements.empty());
}

TEST_F(DisplayAndLayout, AnImageIsCutToItselfTogetherWithItsDestination) {
    const auto image = make<NSImage>();
    image->addRepresentation(
        {std::make_shared<headless::NamedBitmap>("picture", CGSize{20, 10}), 2, Appearance::light});
    EXPECT_EQ(image->size(), NSMakeSize(10, 5));
    child_->painter = [&] {
        image->drawInRect_fromRect_operation_fraction({{0, 0}, {10, 5}}, NSZeroRect,
                                                      NSCompositingOperationSourceOver, 2);
        image->drawInRect_fromRect_operation_fraction({{0, 0}, {40, 20}}, {{5, 0}, {10, 5}},
                                                      NSCompositingOperationCopy, 0.5);
        image->drawInRect_fromRect_operation_fraction({{0, 0}, {40, 20}}, {{50, 50}, {10, 5}},
                                                      NSCompositingOperationCopy, 1);
        image->drawInRect_fromRect_operation_fraction(NSZeroRect, NSZeroRect, NSCompositingOperationCopy, 1);
    };
    show(root_);
    EXPECT_THAT(
        user_->drawing("child"),
        ElementsAre("image picture in {{0, 0}, {10, 5}} from {{0, 0}, {10, 5}} operation 2 fraction 1",
                    "image picture in {{0, 0}, {20, 20}} from {{5, 0}, {5, 5}} operation 1 fraction 0.5"));
}

TEST_F(DisplayAndLayout, TheRepresentationFollowsScaleAndAppearance) {
    const auto named = [](const char* name) {
        return std::make_shared<headless::NamedBitmap>(name, CGSize{10, 10});
    };
    const std::vector<port::ImageRepresentation> all = {{named("1"), 1, Appearance::light},
                                                        {named("2"), 2, Appearance::light},
                                                        {named("1 dark"), 1, Appearance::dark}};
    const auto chosen = [&](double scale, Appearance appearance) {
        return dynamic_cast<const headless::NamedBitmap&>(
                   *port::bestRepresentation(all, scale, appearance)->bitmap)
            .name();
    };
    EXPECT_EQ(chosen(1, Appearance::light), "1");
    EXPECT_EQ(chosen(1.5, Appearance::light), "2");
    EXPECT_EQ(chosen(3, Appearance::light), "2");
    EXPECT_EQ(chosen(2, Appearance::dark), "1 dark"); // the appearance counts for more
    EXPECT_EQ(port::bestRepresentation({}, 1, Appearance::light), nullptr);
}

TEST_F(DisplayAndLayout, TextIsMeasuredTheSameEveryTime) {
    EXPECT_EQ(sizeWithAttributes("abcd", {NSFont::systemFontOfSize(10), NSColor::labelColor()}),
              NSMakeSize(20, 10));
    EXPECT_EQ(sizeWithAttributes("", {}), NSMakeSize(0, 12));
    EXPECT_EQ(sizeWithAttributes("日本", {NSFont::systemFontOfSize(10), NSColor::labelColor()}),
              NSMakeSize(20, 10));
}

TEST_F(DisplayAndLayout, ColourComponentsAreLimited) {
    const auto colour = NSColor::colorWithDeviceRed_green_blue_alpha(-1, 2, 0.5, 7).colour();
    EXPECT_EQ(colour, (Colour{SystemColour::none, 0, 1, 0.5, 1}));
    EXPECT_EQ(resolved(NSColor::tertiaryLabelColor().colour(), Appearance::light).alpha, 66 / 255.0);
    EXPECT_EQ(resolved(NSColor::tertiaryLabelColor().colour(), Appearance::dark).red, 1.0);
}

} // namespace zr
