// SPDX-License-Identifier: MIT
#include "Adaptor.h"

#include <AppKit/NSBezierPath.h>
#include <AppKit/NSColor.h>
#include <AppKit/NSGraphicsContext.h>
#include <AppKit/NSImage.h>
#include <AppKit/NSStringDrawing.h>

#include <stdexcept>

namespace zr::conformance {

namespace {

constexpr Colour kRed{SystemColour::none, 1, 0, 0, 1};
constexpr Colour kGreen{SystemColour::none, 0, 1, 0, 1};
constexpr Colour kBlue{SystemColour::none, 0, 0, 1, 1};
constexpr Colour kHalfBlue{SystemColour::none, 0, 0, 1, 0.5};

void set(const Colour& colour) {
    NSColor::colorWithDeviceRed_green_blue_alpha(colour.red, colour.green, colour.blue, colour.alpha).set();
}

} // namespace

// Each pass is compared as the lines that were recorded, or by the colours that are seen at points of the view.
class ConformanceDrawing : public Conformance {
protected:
    void paint(std::function<void()> painter, bool flipped = false) {
        view_ = probe("view", NSMakeRect(0, 0, 200, 100), flipped);
        view_->painter = std::move(painter);
        show(view_);
    }
    std::shared_ptr<Probe> view_;
};

TEST_F(ConformanceDrawing, YRunsUpInAnUnflippedViewAndDownInAFlippedOne) {
    const auto corner = [] {
        set(kRed);
        NSRectFill(NSMakeRect(0, 0, 20, 10));
    };
    const std::vector<std::string> lines = {"fill rect {{0, 0}, {20, 10}} rgba(1, 0, 0, 1) operation 1"};
    for (const bool flipped : {false, true}) {
        paint(corner, flipped);
        expectDrawing(*view_, lines,
                      {{{1, 1}, kRed}, {{19, 9}, kRed}, {{19, 11}, background()}, {{21, 9}, background()}});
        // Seen at the bottom of the window, or at its top.
        const auto seen = adaptor_->pixel(*window_, {5, flipped ? 95.0 : 5.0});
        EXPECT_EQ(seen.value_or(kRed).red, 1);
        window_->close();
        adaptor_->settle();
    }
}

TEST_F(ConformanceDrawing, ShapesCoverWhatTheySay) {
    paint([] {
        set(kRed);
        NSBezierPath::bezierPathWithRect(NSMakeRect(10, 10, 40, 20)).fill();
        set(kGreen);
        NSBezierPath::bezierPathWithOvalInRect(NSMakeRect(60, 10, 40, 40)).fill();
        set(kBlue);
        NSBezierPath::bezierPathWithRoundedRect_xRadius_yRadius(NSMakeRect(110, 10, 60, 40), 15, 15).fill();
    });
    expectDrawing(*view_,
                  {"fill rect {{10, 10}, {40, 20}} rgba(1, 0, 0, 1)",
                   "fill oval {{60, 10}, {40, 40}} rgba(0, 1, 0, 1)",
                   "fill rounded {{110, 10}, {60, 40}} radius {15, 15} rgba(0, 0, 1, 1)"},
                  {{{11, 11}, kRed},
                   {{49, 29}, kRed},
                   {{51, 20}, background()},
                   {{80, 30}, kGreen},
                   {{61, 30}, kGreen},
                   {{63, 13}, background()},
                   {{111, 30}, kBlue},
                   {{140, 11}, kBlue},
                   {{112, 12}, background()},
                   {{168, 48}, background()}});
}

TEST_F(ConformanceDrawing, AFreeOutlineIsFilledAndStroked) {
    paint([] {
        NSBezierPath triangle;
        triangle.moveToPoint({10, 10});
        triangle.lineToPoint({90, 10});
        triangle.lineToPoint({10, 90});
        triangle.closePath();
        set(kRed);
        triangle.fill();
        auto frame = NSBezierPath::bezierPathWithRect(NSMakeRect(110, 20, 60, 60));
        frame.setLineWidth(4);
        set(kBlue);
        frame.stroke();
    });
    expectDrawing(*view_,
                  {"fill path move {10, 10} line {90, 10} line {10, 90} close rgba(1, 0, 0, 1)",
                   "stroke rect {{110, 20}, {60, 60}} rgba(0, 0, 1, 1) width 4"},
                  {{{15, 15}, kRed},
                   {{15, 75}, kRed},
                   {{70, 70}, background()},
                   {{110, 50}, kBlue},
                   {{171, 50}, kBlue},
                   {{140, 50}, background()},
                   {{107, 50}, background()}});
}

TEST_F(ConformanceDrawing, HalfTransparentColoursMixOverAndReplaceWhereTheyAreCopied) {
    paint([] {
        set(kRed);
        NSRectFill(NSMakeRect(0, 0, 100, 50));
        set(kHalfBlue);
        NSRectFillUsingOperation(NSMakeRect(0, 0, 50, 50), NSCompositingOperationSourceOver);
    });
    expectDrawing(*view_,
                  {"fill rect {{0, 0}, {100, 50}} rgba(1, 0, 0, 1) operation 1",
                   "fill rect {{0, 0}, {50, 50}} rgba(0, 0, 1, 0.5)"},
                  {{{25, 25}, over(kHalfBlue, kRed)}, {{75, 25}, kRed}});
}

TEST_F(ConformanceDrawing, AClipHoldsUntilItIsRestored) {
    paint([] {
        set(kRed);
        NSGraphicsContext::saveGraphicsState_();
        NSBezierPath::bezierPathWithRect(NSMakeRect(0, 0, 50, 50)).addClip();
        NSBezierPath::bezierPathWithRect(NSMakeRect(30, 0, 100, 100)).addClip(); // both hold
        set(kGreen);
        NSRectFill(NSMakeRect(0, 0, 200, 100));
        NSGraphicsContext::restoreGraphicsState_();
        NSRectFill(NSMakeRect(100, 0, 20, 20)); // the colour came back, too
    });
    expectDrawing(*view_,
                  {"save", "clip rect {{0, 0}, {50, 50}}", "clip rect {{30, 0}, {100, 100}}",
                   "fill rect {{0, 0}, {200, 100}} rgba(0, 1, 0, 1) operation 1", "restore",
                   "fill rect {{100, 0}, {20, 20}} rgba(1, 0, 0, 1) operation 1"},
                  {{{40, 25}, kGreen},
                   {{20, 25}, background()},
                   {{60, 25}, background()},
                   {{40, 60}, background()},
                   {{110, 10}, kRed}});
}

TEST_F(ConformanceDrawing, SubviewsAreDrawnOverTheirSuperviewsAndCutByNobody) {
    view_ = probe("view", NSMakeRect(0, 0, 200, 100));
    const auto child = probe("child", NSMakeRect(50, 20, 40, 40), true);
    view_->painter = [] {
        set(kRed);
        NSRectFill(NSMakeRect(0, 0, 200, 100));
    };
    child->painter = [] {
        set(kGreen);
        NSRectFill(NSMakeRect(0, 0, 40, 10));
    };
    view_->addSubview(child);
    show(view_);
    expectDrawing(*child, {"fill rect {{0, 0}, {40, 10}} rgba(0, 1, 0, 1) operation 1"},
                  {{{20, 5}, kGreen}, {{20, 15}, kRed}});
    expectDrawing(*view_, {"fill rect {{0, 0}, {200, 100}} rgba(1, 0, 0, 1) operation 1"},
                  {{{10, 10}, kRed}, {{70, 55}, kGreen}, {{70, 45}, kRed}});
}

TEST_F(ConformanceDrawing, TextStandsWhereItWasPutInItsColour) {
    TextAttributes attributes;
    attributes.foregroundColor = NSColor::colorWithDeviceRed_green_blue_alpha(1, 0, 0, 1);
    const NSSize size = sizeWithAttributes("MMMM", attributes);
    EXPECT_GT(size.width, 20);
    EXPECT_GT(size.height, 8);
    for (const bool flipped : {false, true}) {
        paint([&] { drawAtPoint_withAttributes("MMMM", {20, 40}, attributes); }, flipped);
        adaptor_->settle();
        if (const auto lines = adaptor_->lines(*window_, "view")) {
            EXPECT_EQ(*lines, std::vector<std::string>{"text \"MMMM\" system 12 rgba(1, 0, 0, 1) at {20, 40}"});
        } else {
            // Red pixels within its box, and none outside.
            int inside = 0, outside = 0;
            for (int y = 0; y < 100; ++y)
                for (int x = 0; x < 200; ++x) {
                    const auto seen =
                        *adaptor_->pixel(*window_, view_->convertPoint_toView({x + 0.5, y + 0.5}, nullptr));
                    if (seen.red - seen.blue < 0.3) continue;
                    const bool within =
                        NSPointInRect({x + 0.5, y + 0.5}, {{19, 39}, {size.width + 2, size.height + 2}});
                    ++(within ? inside : outside);
                }
            EXPECT_GT(inside, 40) << flipped;
            EXPECT_EQ(outside, 0) << flipped;
        }
        window_->close();
        adaptor_->settle();
    }
}

// Red at the lower left quarter, blue at the upper half: lopsided both ways.
std::shared_ptr<NSImage> lopsided() {
    auto image = make<NSImage>(&NSImage::initWithSize, NSSize{40, 20});
    image->lockFocus();
    set(kBlue);
    NSRectFill(NSMakeRect(0, 10, 40, 10));
    set(kRed);
    NSRectFill(NSMakeRect(0, 0, 20, 10));
    image->unlockFocus();
    return image;
}
const std::string kLopsidedLines =
    "[fill rect {{0, 10}, {40, 10}} rgba(0, 0, 1, 1) operation 1; fill rect {{0, 0}, "
    "{20, 10}} rgba(1, 0, 0, 1) operation 1]";

class ConformanceImages : public ConformanceDrawing {};

TEST_F(ConformanceImages, AnImageIsDrawnByLockingItsFocusAndFollowsTheViewsAxis) {
    const auto image = lopsided();
    EXPECT_EQ(image->size(), (NSSize{40, 20}));
    const auto draw = [&] {
        image->drawInRect_fromRect_operation_fraction(NSMakeRect(10, 10, 40, 20), NSZeroRect,
                                                      NSCompositingOperationSourceOver, 1);
    };
    const std::vector<std::string> lines = {
        "image " + kLopsidedLines + " in {{10, 10}, {40, 20}} from {{0, 0}, {40, 20}} operation 2 fraction 1"};
    for (const bool flipped : {false, true}) {
        paint(draw, flipped);
        // By the view's own coordinates it looks the same: in a flipped view it is seen upside down.
        expectDrawing(*view_, lines,
                      {{{20, 15}, kRed},
                       {{40, 15}, background()},
                       {{20, 25}, kBlue},
                       {{40, 25}, kBlue},
                       {{52, 15}, background()}});
        window_->close();
        adaptor_->settle();
    }
}

TEST_F(ConformanceImages, APartIsScaledToItsDestinationAndFaded) {
    const auto image = lopsided();
    paint([&] {
        image->drawInRect_fromRect_operation_fraction(NSMakeRect(0, 0, 80, 40), NSMakeRect(0, 0, 20, 10),
                                                      NSCompositingOperationSourceOver, 0.5);
    });
    expectDrawing(
        *view_,
        {"image " + kLopsidedLines + " in {{0, 0}, {80, 40}} from {{0, 0}, {20, 10}} operation 2 fraction 0.5"},
        {{{20, 20}, over({SystemColour::none, 1, 0, 0, 0.5}, background())},
         {{60, 30}, over({SystemColour::none, 1, 0, 0, 0.5}, background())},
         {{90, 20}, background()}});
}

TEST_F(ConformanceImages, TheColourIsBlackAtFirstAndTheOuterContextComesBack) {
    const auto image = make<NSImage>(&NSImage::initWithSize, NSSize{10, 10});
    EXPECT_EQ(NSGraphicsContext::currentContext(), nullptr);
    paint([&] {
        set(kGreen);
        image->lockFocus();
        NSRectFill(NSMakeRect(0, 0, 10, 10));
        image->unlockFocus();
        NSRectFill(NSMakeRect(0, 0, 20, 20));
        image->drawInRect_fromRect_operation_fraction(NSMakeRect(30, 0, 10, 10), NSZeroRect,
                                                      NSCompositingOperationSourceOver, 1);
    });
    expectDrawing(
        *view_,
        {"fill rect {{0, 0}, {20, 20}} rgba(0, 1, 0, 1) operation 1",
         "image [fill rect {{0, 0}, {10, 10}} rgba(0, 0, 0, 1) operation 1] in {{30, 0}, {10, 10}} from "
         "{{0, 0}, {10, 10}} operation 2 fraction 1"},
        {{{10, 10}, kGreen}, {{35, 5}, {SystemColour::none, 0, 0, 0, 1}}});
    EXPECT_EQ(NSGraphicsContext::currentContext(), nullptr);
}

TEST_F(ConformanceImages, ASecondLockDrawsOverTheFirstAndWhatWasShownStays) {
    const auto image = make<NSImage>(&NSImage::initWithSize, NSSize{20, 10});
    image->lockFocus();
    set(kRed);
    NSRectFill(NSMakeRect(0, 0, 20, 10));
    image->unlockFocus();
    paint([&] {
        image->drawInRect_fromRect_operation_fraction(NSMakeRect(0, 0, 20, 10), NSZeroRect,
                                                      NSCompositingOperationSourceOver, 1);
    });
    adaptor_->settle();
    image->lockFocus();
    set(kBlue);
    NSRectFill(NSMakeRect(0, 0, 10, 10));
    image->unlockFocus();
    EXPECT_EQ(adaptor_->pixel(*window_, {5, 5}).value_or(kRed).red, 1) << "until the view draws again";
    view_->setNeedsDisplay(true);
    expectDrawing(
        *view_,
        {"image [image [fill rect {{0, 0}, {20, 10}} rgba(1, 0, 0, 1) operation 1] in {{0, 0}, {20, 10}} from "
         "{{0, 0}, {20, 10}} operation 1 fraction 1; fill rect {{0, 0}, {10, 10}} rgba(0, 0, 1, 1) operation "
         "1] in {{0, 0}, {20, 10}} from {{0, 0}, {20, 10}} operation 2 fraction 1"},
        {{{5, 5}, kBlue}, {{15, 5}, kRed}});
}

TEST_F(ConformanceImages, LocksOfSeveralImagesNest) {
    const auto outer = make<NSImage>(&NSImage::initWithSize, NSSize{20, 20});
    const auto inner = make<NSImage>(&NSImage::initWithSize, NSSize{10, 10});
    outer->lockFocus();
    set(kRed);
    inner->lockFocus();
    set(kGreen);
    NSRectFill(NSMakeRect(0, 0, 10, 10));
    inner->unlockFocus();
    NSRectFill(NSMakeRect(0, 0, 20, 20)); // red still
    inner->drawInRect_fromRect_operation_fraction(NSMakeRect(10, 10, 10, 10), NSZeroRect,
                                                  NSCompositingOperationSourceOver, 1);
    outer->unlockFocus();
    paint([&] {
        outer->drawInRect_fromRect_operation_fraction(NSMakeRect(0, 0, 20, 20), NSZeroRect,
                                                      NSCompositingOperationSourceOver, 1);
    });
    expectDrawing(
        *view_,
        {"image [fill rect {{0, 0}, {20, 20}} rgba(1, 0, 0, 1) operation 1; image [fill rect {{0, 0}, {10, "
         "10}} rgba(0, 1, 0, 1) operation 1] in {{10, 10}, {10, 10}} from {{0, 0}, {10, 10}} operation 2 "
         "fraction 1] in {{0, 0}, {20, 20}} from {{0, 0}, {20, 20}} operation 2 fraction 1"},
        {{{5, 5}, kRed}, {{15, 15}, kGreen}});
}

TEST_F(ConformanceImages, WhatCannotBeLockedIsRefusedAndNothingIsHurt) {
    const auto empty = make<NSImage>(&NSImage::initWithSize, NSSize{0, 10});
    EXPECT_THROW(empty->lockFocus(), std::logic_error);
    const auto image = lopsided();
    image->unlockFocus(); // nothing was locked
    image->lockFocus();
    EXPECT_THROW(image->lockFocus(), std::logic_error);
    image->unlockFocus();
    EXPECT_EQ(NSGraphicsContext::currentContext(), nullptr);
}

} // namespace zr::conformance
