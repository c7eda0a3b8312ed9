// SPDX-License-Identifier: MIT
#include "QtTest.h"

#include <AppKit/NSBezierPath.h>
#include <AppKit/NSButton.h>
#include <AppKit/NSColor.h>
#include <AppKit/NSGraphicsContext.h>
#include <AppKit/NSStringDrawing.h>
#include <AppKit/NSTextField.h>
#include <Foundation/NSString.h>

#include <QLabel>
#include <QPushButton>
#include <QWheelEvent>

namespace zr {

using test::IsColour;
using testing::ElementsAre;

namespace {

// Draws what the test gives it, and writes down the events it gets.
class Probe : public NSView {
public:
    ZR_CLASS(Probe, NSView)
    bool isFlipped() const override { return flipped; }
    bool acceptsFirstResponder() const override { return true; }
    void drawRect(const NSRect& dirty) override {
        if (painter) painter(dirty);
    }
    void mouseDown(const NSEvent& event) override { note("down", event); }
    void mouseDragged(const NSEvent& event) override { note("drag", event); }
    void mouseUp(const NSEvent& event) override { note("up", event); }
    void rightMouseDown(const NSEvent& event) override { note("right", event); }
    void scrollWheel(const NSEvent& event) override {
        if (!takesWheel) return NSView::scrollWheel(event);
        events.push_back(stringWithFormat("wheel %g %g", event.scrollingDeltaX(), event.scrollingDeltaY()));
    }
    void keyDown(const NSEvent& event) override {
        if (event.characters().empty() && event.keyCode() == kKeyCodeUnknown) return; // a modifier by itself
        events.push_back(
            stringWithFormat("key %d %@ %d", event.keyCode(), event.characters(), event.modifierFlags() >> 16));
    }
    void viewDidChangeEffectiveAppearance() override { ++appearanceChanges; }

    bool flipped = false;
    bool takesWheel = true;
    int appearanceChanges = 0;
    std::function<void(const NSRect&)> painter;
    std::vector<std::string> events;

private:
    void note(const char* what, const NSEvent& event) {
        const auto point = convertPoint_fromView(event.locationInWindow(), nullptr);
        events.push_back(stringWithFormat("%s %g %g x%d", what, point.x, point.y, event.clickCount()));
    }
};
ZR_CLASS_TABLE(Probe)

NSColor red() { return NSColor::colorWithDeviceRed_green_blue_alpha(1, 0, 0, 1); }
const QColor kRed(255, 0, 0);

} // namespace

class QtViews : public test::QtTest {
protected:
    void SetUp() override {
        root_ = make<NSView>(NSMakeRect(0, 0, 200, 100));
        probe_ = make<Probe>(NSMakeRect(20, 10, 100, 60));
        probe_->setIdentifier("probe");
        root_->addSubview(probe_);
    }
    void showAll() { show(root_, {200, 100}); }

    std::shared_ptr<NSView> root_;
    std::shared_ptr<Probe> probe_;
};

TEST_F(QtViews, AWidgetStandsWhereItsViewDoes) {
    showAll();
    EXPECT_EQ(widget("probe")->geometry(), QRect(20, 30, 100, 60)); // from the top
    probe_->setFrameOrigin({0, 0});
    EXPECT_EQ(widget("probe")->geometry(), QRect(0, 40, 100, 60));
    topLevel()->resize(200, 150);
    settle();
    EXPECT_EQ(widget("probe")->geometry(), QRect(0, 90, 100, 60)); // it hangs from the bottom
    EXPECT_EQ(root_->frame().size.height, 150.0);
}

TEST_F(QtViews, FractionsOfAPointAreRoundedForTheWidgetAndKeptForDrawing) {
    probe_->setFrame({{20.3, 10.3}, {50.4, 20.4}});
    probe_->painter = [](const NSRect&) {
        red().set();
        NSBezierPath::bezierPathWithOvalInRect({{0, 0}, {50.4, 20.4}}).fill();
    };
    showAll();
    EXPECT_EQ(widget("probe")->geometry(),
              QRect(20, 69, 51, 21)); // 20.3 to 70.7, and 69.3 to 89.7 from the top
    press({30.9, 20.9});
    EXPECT_EQ(probe_->events.at(0),
              stringWithFormat("down %g %g x1", 30 - 20.3, 21 - 10.3)); // whole pixels of the pointer
}

TEST_F(QtViews, YRunsUpUnlessAViewIsFlipped) {
    probe_->painter = [](const NSRect&) {
        red().set();
        NSRectFill({{0, 0}, {10, 10}});
    };
    showAll();
    QImage image = picture();
    EXPECT_THAT(pixel(image, 25 * ratio(), 85 * ratio()), IsColour(kRed)); // lower left
    EXPECT_THAT(pixel(image, 25 * ratio(), 35 * ratio()), IsColour(background()));
    probe_->flipped = true;
    probe_->setNeedsDisplay(true);
    image = picture();
    EXPECT_THAT(pixel(image, 25 * ratio(), 35 * ratio()), IsColour(kRed)); // upper left
    EXPECT_THAT(pixel(image, 25 * ratio(), 85 * ratio()), IsColour(background()));
}

TEST_F(QtViews, TheClipAndItsRestoring) {
    probe_->painter = [](const NSRect&) {
        red().set();
        NSGraphicsContext::saveGraphicsState_();
        NSBezierPath::bezierPathWithRect({{0, 0}, {50, 60}}).addClip();
        NSBezierPath::fillRect({{0, 0}, {100, 30}});
        NSGraphicsContext::restoreGraphicsState_();
        NSBezierPath::fillRect({{60, 40}, {20, 20}});
    };
    showAll();
    const QImage image = picture();
    EXPECT_THAT(pixel(image, 40 * ratio(), 80 * ratio()), IsColour(kRed));
    EXPECT_THAT(pixel(image, 90 * ratio(), 80 * ratio()), IsColour(background())); // clipped away
    EXPECT_THAT(pixel(image, 90 * ratio(), 40 * ratio()), IsColour(kRed));
}

TEST_F(QtViews, APathIsFilledAndStroked) {
    probe_->painter = [](const NSRect&) {
        red().set();
        auto triangle = NSBezierPath::bezierPath();
        triangle.moveToPoint({0, 0});
        triangle.lineToPoint({40, 0});
        triangle.lineToPoint({0, 40});
        triangle.closePath();
        triangle.fill();
        auto line = NSBezierPath::bezierPath();
        line.moveToPoint({60, 0});
        line.lineToPoint({60, 60});
        line.setLineWidth(10);
        line.stroke();
    };
    showAll();
    const QImage image = picture();
    EXPECT_THAT(pixel(image, 25 * ratio(), 85 * ratio()), IsColour(kRed));
    EXPECT_THAT(pixel(image, 55 * ratio(), 55 * ratio()), IsColour(background())); // beyond the long side
    EXPECT_THAT(pixel(image, 77 * ratio(), 60 * ratio()), IsColour(kRed));
    EXPECT_THAT(pixel(image, 83 * ratio(), 60 * ratio()), IsColour(kRed));
    EXPECT_THAT(pixel(image, 88 * ratio(), 60 * ratio()), IsColour(background()));
}

TEST_F(QtViews, TextStandsOnItsPoint) {
    probe_->painter = [](const NSRect&) {
        drawAtPoint_withAttributes("MMM", {10, 20}, {NSFont::systemFontOfSize(20), red()});
    };
    showAll();
    const QImage image = picture();
    const NSSize size = sizeWithAttributes("MMM", {NSFont::systemFontOfSize(20), red()});
    int above = 0, inside = 0, below = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QColor colour = image.pixelColor(x, y);
            if (colour.red() < 200 || colour.green() > 80) continue;
            const double up = 100 - y / ratio() - 10; // in the view
            if (up > 20 + size.height)
                ++above;
            else if (up < 20)
                ++below;
            else
                ++inside;
        }
    EXPECT_GT(inside, 50);
    EXPECT_EQ(above + below, 0);
}

TEST_F(QtViews, SeveralMarksAreOneDrawing) {
    int drawings = 0;
    probe_->painter = [&](const NSRect&) { ++drawings; };
    showAll();
    settle();
    drawings = 0;
    for (int i = 0; i < 5; ++i) probe_->setNeedsDisplay(true);
    EXPECT_TRUE(probe_->needsDisplay());
    settle();
    EXPECT_EQ(drawings, 1);
    EXPECT_FALSE(probe_->needsDisplay());
}

TEST_F(QtViews, MouseEventsComeInTheViewsCoordinates) {
    showAll();
    press({30, 40});
    drag({35, 45});
    release({-5, 300});
    // The pointer gets to where it is let go by a move.
    EXPECT_THAT(probe_->events,
                ElementsAre("down 10 30 x1", "drag 15 35 x0", "drag -25 290 x0", "up -25 290 x1"));
}

TEST_F(QtViews, ADoubleClickCountsTwo) {
    showAll();
    QTest::mouseDClick(handle(), Qt::LeftButton, {}, toQt({30, 40}));
    ASSERT_FALSE(probe_->events.empty());
    EXPECT_THAT(probe_->events, testing::Contains("down 10 30 x2"));
}

TEST_F(QtViews, TheRightButtonHasItsOwnMessages) {
    showAll();
    QTest::mousePress(handle(), Qt::RightButton, {}, toQt({30, 40}));
    EXPECT_THAT(probe_->events, ElementsAre("right 10 30 x1"));
}

TEST_F(QtViews, TheWheelCountsInNotches) {
    showAll();
    QWheelEvent event(QPointF(30, 60), handle()->mapToGlobal(QPointF(30, 60)), {}, QPoint(0, 240), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(handle(), &event);
    EXPECT_THAT(probe_->events, ElementsAre("wheel 0 2"));
}

TEST_F(QtViews, WhatNobodyTakesIsLeftToTheHostOnce) {
    probe_->takesWheel = false;
    showAll();
    QWheelEvent event(QPointF(10, 10), QPointF(10, 10), {}, QPoint(0, 120), Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    event.setTimestamp(4711);
    event.accept();
    QCoreApplication::sendEvent(widget("probe"), &event);
    EXPECT_FALSE(event.isAccepted());
}

TEST_F(QtViews, KeysGoToTheFirstResponderThatAClickMade) {
    showAll();
    QTest::keyClick(handle(), Qt::Key_A);
    EXPECT_TRUE(probe_->events.empty());
    press({30, 40});
    EXPECT_EQ(window_->firstResponder(), probe_.get());
    probe_->events.clear();
    QTest::keyClick(handle(), Qt::Key_A);
    QTest::keyClick(handle(), Qt::Key_Left, Qt::ShiftModifier | Qt::ControlModifier);
    QTest::keyClick(handle(), Qt::Key_Backspace);
    ASSERT_EQ(probe_->events.size(), 3u);
    EXPECT_EQ(probe_->events[0], stringWithFormat("key %d a 0", int(kKeyCodeUnknown)));
    EXPECT_EQ(probe_->events[1],
              stringWithFormat("key 123  %d", (NSEventModifierFlagShift | NSEventModifierFlagCommand) >> 16));
    EXPECT_THAT(probe_->events[2], testing::StartsWith("key 51"));
}

TEST_F(QtViews, AFirstResponderMadeBeforeTheWindowIsShownGetsTheKeys) {
    window_ = make<NSWindow>(&NSWindow::initWithContentRect_styleMask_backing_defer, NSMakeRect(0, 0, 200, 100),
                             unsigned(NSWindowStyleMaskTitled), NSBackingStoreBuffered, false);
    window_->setTitle("window under test");
    window_->setContentView(root_);
    window_->makeFirstResponder(probe_.get());
    window_->makeKeyAndOrderFront(nullptr);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(topLevel()));
    settle();
    QTest::keyClick(handle(), Qt::Key_A);
    ASSERT_EQ(probe_->events.size(), 1u);
    EXPECT_THAT(probe_->events[0], testing::HasSubstr(" a "));
}

namespace {
// Passes every key on, and counts them.
class Passer : public NSView {
public:
    bool acceptsFirstResponder() const override { return true; }
    void keyDown(const NSEvent& event) override {
        ++keys;
        NSView::keyDown(event);
    }
    int keys = 0;
};
} // namespace

TEST_F(QtViews, KeysThatNobodyTakesAreEachOfferedOnce) {
    const auto passer = make<Passer>(NSMakeRect(0, 0, 10, 10));
    root_->addSubview(passer);
    showAll();
    window_->makeFirstResponder(passer.get());
    for (const quint64 timestamp : {quint64(0), quint64(77), quint64(77), quint64(77)}) {
        QKeyEvent event(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, "a");
        event.setTimestamp(timestamp);
        QCoreApplication::sendEvent(QApplication::focusWidget(), &event);
        EXPECT_FALSE(event.isAccepted());
    }
    EXPECT_EQ(passer->keys, 4);
}

TEST_F(QtViews, AHiddenViewIsNeitherSeenNorHit) {
    probe_->painter = [](const NSRect&) {
        red().set();
        NSRectFill({{0, 0}, {100, 60}});
    };
    showAll();
    probe_->setHidden(true);
    EXPECT_THAT(pixel(picture(), 60 * ratio(), 60 * ratio()), IsColour(background()));
    press({30, 40});
    EXPECT_TRUE(probe_->events.empty());
    probe_->setHidden(false);
    EXPECT_THAT(pixel(picture(), 60 * ratio(), 60 * ratio()), IsColour(kRed));
}

TEST_F(QtViews, AViewAddedLaterStandsInFront) {
    probe_->painter = [](const NSRect&) {
        red().set();
        NSRectFill({{0, 0}, {100, 60}});
    };
    showAll();
    const auto later = make<Probe>(NSMakeRect(20, 10, 100, 60));
    later->painter = [](const NSRect&) {
        NSColor::colorWithDeviceRed_green_blue_alpha(0, 0, 1, 1).set();
        NSRectFill({{0, 0}, {100, 60}});
    };
    root_->addSubview(later);
    EXPECT_THAT(pixel(picture(), 60 * ratio(), 60 * ratio()), IsColour(QColor(0, 0, 255)));
    root_->addSubview(probe_); // to the front
    EXPECT_THAT(pixel(picture(), 60 * ratio(), 60 * ratio()), IsColour(kRed));
}

TEST_F(QtViews, APaletteChangeIsOneMessageAndOneDrawing) {
    int drawings = 0;
    probe_->painter = [&](const NSRect&) { ++drawings; };
    showAll();
    drawings = 0;
    NSApplication::sharedApplication().setAppearance(Appearance::dark);
    EXPECT_EQ(probe_->appearanceChanges, 1);
    EXPECT_EQ(NSApplication::sharedApplication().effectiveAppearance(), Appearance::dark);
    settle();
    EXPECT_EQ(drawings, 1);
    NSApplication::sharedApplication().setAppearance(std::nullopt);
    EXPECT_EQ(NSApplication::sharedApplication().effectiveAppearance(), Appearance::light);
}

namespace {
class Target : public NSObject {
public:
    ZR_CLASS(Target, NSObject)
    void pressed(NSObject* sender) { senders.push_back(sender); }
    std::vector<NSObject*> senders;
};
ZR_CLASS_TABLE(Target, .actions = {actionNamed<&Target::pressed>("pressed:")})
} // namespace

TEST_F(QtViews, AButtonIsTheWindowSystemsOwnAndSendsItsAction) {
    const auto target = make<Target>();
    const auto button = NSButton::buttonWithTitle_target_action("Cut & Paste", target, "pressed:");
    button->setIdentifier("button");
    button->setFrameOrigin({50, 70});
    root_->addSubview(button);
    showAll();
    auto* const real = dynamic_cast<QPushButton*>(widget("button"));
    ASSERT_TRUE(real);
    EXPECT_EQ(real->text(), "Cut && Paste"); // no shortcut is made of it
    QTest::mouseClick(handle(), Qt::LeftButton, {}, real->geometry().center());
    EXPECT_THAT(target->senders, ElementsAre(button.get()));
    real->setFocus();
    QTest::keyClick(handle(), Qt::Key_Space);
    EXPECT_EQ(target->senders.size(), 2u);
    EXPECT_EQ(window_->firstResponder(), button.get());
    button->setEnabled(false);
    EXPECT_FALSE(real->isEnabled());
    QTest::mouseClick(handle(), Qt::LeftButton, {}, real->geometry().center());
    EXPECT_EQ(target->senders.size(), 2u);
    button->setTitle("Other");
    EXPECT_EQ(real->text(), "Other");
    button->sizeToFit();
    EXPECT_EQ(button->frame().size.width, real->sizeHint().width());
}

TEST_F(QtViews, ALabelShowsItsTextInItsColourAndFollowsTheAppearance) {
    const auto label = NSTextField::labelWithString("<b>plain</b>");
    label->setIdentifier("label");
    root_->addSubview(label);
    showAll();
    auto* const real = dynamic_cast<QLabel*>(widget("label"));
    ASSERT_TRUE(real);
    EXPECT_EQ(real->text(), "<b>plain</b>");
    EXPECT_EQ(real->textFormat(), Qt::PlainText);
    label->setTextColor(NSColor::systemRedColor());
    EXPECT_EQ(real->palette().color(QPalette::WindowText), QColor(255, 59, 48));
    NSApplication::sharedApplication().setAppearance(Appearance::dark);
    settle();
    EXPECT_EQ(real->palette().color(QPalette::WindowText), QColor(255, 69, 58));
    NSApplication::sharedApplication().setAppearance(std::nullopt);
    settle();
    EXPECT_EQ(real->palette().color(QPalette::WindowText), QColor(255, 59, 48));
    label->setAlignment(NSTextAlignmentRight);
    EXPECT_TRUE(real->alignment().testFlag(Qt::AlignRight));
    EXPECT_TRUE(real->alignment().testFlag(Qt::AlignAbsolute)) << "frames are not mirrored, either";
    label->setStringValue("next");
    EXPECT_EQ(real->text(), "next");
}

TEST_F(QtViews, AViewTakenOutLosesItsWidgetAndGetsOneAgain) {
    showAll();
    probe_->removeFromSuperview();
    settle();
    EXPECT_FALSE(widget("probe"));
    EXPECT_FALSE(probe_->window());
    root_->addSubview(probe_);
    EXPECT_TRUE(widget("probe"));
    press({30, 40});
    EXPECT_THAT(probe_->events, ElementsAre("down 10 30 x1"));
}

} // namespace zr
