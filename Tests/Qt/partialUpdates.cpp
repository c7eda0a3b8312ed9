// SPDX-License-Identifier: MIT
#include "QtTest.h"

#include <AppKit/NSBezierPath.h>
#include <AppKit/NSColor.h>
#include <AppKit/NSGraphicsContext.h>
#include <AppKit/NSImage.h>
#include <AppKit/NSStringDrawing.h>
#include <ZRUIKit/KitFoundation.h>
#include <ZRUIKit/ProgressSliderView.h>
#include <ZRUIKit/SplitSliderView.h>

#include <QBackingStore>
#include <QPaintEvent>
#include <QTimer>

#include <functional>
#include <random>

namespace zr {

namespace {

constexpr NSSize kSize = {400, 61};

// Where Qt has a widget painted.
class PaintedRegion final : public QObject {
public:
    explicit PaintedRegion(QWidget* widget) { widget->installEventFilter(this); }
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint) region += static_cast<QPaintEvent*>(event)->region();
        return false;
    }
    QRegion region;
};

// Draws what it is told.
class Painting : public NSView {
public:
    std::function<void()> paint = [] {};
    int drawings = 0;
    std::vector<std::string> order;
    void drawRect(const NSRect&) override {
        ++drawings;
        order.emplace_back("draw");
        paint();
    }
    void layout() override { order.emplace_back("layout"); }
};

} // namespace

// These run at the ratios 1, 1.5 and 2.
class PartialUpdatePixels : public test::QtTest {
protected:
    // What stands on the screen, as opposed to what the widgets would paint now.
    static QImage screen() {
        settle();
        const auto* image = dynamic_cast<QImage*>(topLevel()->backingStore()->paintDevice());
        return image ? image->convertToFormat(QImage::Format_RGB32) : QImage();
    }
    // How many pixels differ between the screen and a picture of everything painted anew.
    static int differences() {
        const QImage shown = screen(), whole = picture();
        if (shown.size() != whole.size()) return -1;
        int count = 0;
        for (int y = 0; y < shown.height(); ++y)
            for (int x = 0; x < shown.width(); ++x)
                if (shown.pixel(x, y) != whole.pixel(x, y)) ++count;
        return count;
    }
    // Without it, comparing the screen with itself would prove nothing.
    static bool screenHasContent() {
        const QImage shown = screen();
        return !shown.isNull() &&
               shown.pixelColor(0, 0) != shown.pixelColor(shown.width() / 2, shown.height() / 2);
    }

    std::mt19937 random_{42};
    double anywhere(double from, double to) { return std::uniform_real_distribution(from, to)(random_); }
};

TEST_F(PartialUpdatePixels, TheScreenIsRightAfterAnySeriesOfDragsOfTheClip) {
    const auto slider = make<SplitSliderView>(NSRect{NSZeroPoint, kSize});
    slider->setShouldDrawKnob(true);
    slider->setSelection_length(200, 500);
    show(slider, kSize);
    ASSERT_TRUE(screenHasContent());
    for (int round = 0; round < 12; ++round) {
        settle();
        const NSRect handle = round % 3 == 0 ? slider->rcClipLeft() : slider->rcClipRight();
        const NSPoint from =
            round % 3 == 2 ? NSPoint{anywhere(10, 390), 30.5} : NSPoint{NSMidX(handle), NSMidY(handle)};
        press(from);
        for (int step = 0; step < 8; ++step) {
            drag({anywhere(-20, 420), 30});
            ASSERT_EQ(differences(), 0) << "round " << round << " step " << step;
        }
        release({anywhere(0, 400), 30});
        ASSERT_EQ(differences(), 0) << "round " << round;
    }
}

TEST_F(PartialUpdatePixels, TheScreenIsRightAfterAnySeriesOfPositions) {
    const auto slider = make<ProgressSliderView>(NSRect{NSZeroPoint, kSize});
    slider->setDMinValue(100);
    show(slider, kSize);
    for (int step = 0; step < 60; ++step) {
        const double value = anywhere(0, 1200);
        if (step % 5 == 4)
            slider->seekToValue(value); // the bar stays
        else
            slider->setDCurValue(value);
        ASSERT_EQ(differences(), 0) << "step " << step << " value " << value;
    }
    ASSERT_TRUE(screenHasContent());
}

TEST_F(PartialUpdatePixels, TheScreenIsRightWhateverAViewDraws) {
    const auto view = make<Painting>(NSRect{NSZeroPoint, kSize});
    const auto picture = KitImage("SliderTrimLeft");
    const auto drawn = make<NSImage>(&NSImage::initWithSize, NSSize{30, 20});
    drawn->lockFocus();
    NSColor::systemRedColor().set();
    NSBezierPath::bezierPathWithOvalInRect(NSMakeRect(0.5, 0.5, 29, 19)).stroke();
    drawn->unlockFocus();
    view->setIdentifier("view");
    show(view, kSize);
    PaintedRegion painted(widget("view"));
    int partly = 0;
    const std::vector<std::function<void()>> operations = {
        [&] {
            NSRectFillUsingOperation(NSMakeRect(anywhere(0, 300), anywhere(0, 50), 80, 9.5),
                                     NSCompositingOperationSourceOver);
        },
        [&] {
            NSBezierPath::bezierPathWithOvalInRect(NSMakeRect(anywhere(0, 350), anywhere(0, 40), 21.3, 18))
                .fill();
        },
        [&] {
            NSBezierPath::bezierPathWithRoundedRect_xRadius_yRadius(
                NSMakeRect(anywhere(0, 50), 10, anywhere(1, 300), 13), 5, 5)
                .fill();
        },
        [&] {
            NSBezierPath::bezierPathWithRoundedRect_xRadius_yRadius(NSMakeRect(20, 30, anywhere(5, 300), 3),
                                                                    1.5, 1.5)
                .fill();
        },
        [&] { NSBezierPath::bezierPathWithOvalInRect(NSMakeRect(anywhere(0, 200), 0, 180, 60)).stroke(); },
        [&] {
            auto path = NSBezierPath::bezierPathWithRoundedRect_xRadius_yRadius(
                NSMakeRect(anywhere(0, 300), anywhere(10, 30), anywhere(0, 60), 20), 4, anywhere(0, 10));
            path.setLineWidth(anywhere(0, 9));
            path.stroke();
        },
        [&] {
            // A corner as sharp as it comes, so that its mitre reaches far.
            NSBezierPath path;
            const NSPoint tip = {anywhere(50, 350), anywhere(20, 40)};
            path.moveToPoint({tip.x - 50, tip.y + anywhere(-6, 6)});
            path.lineToPoint(tip);
            path.lineToPoint({tip.x - 50, tip.y + anywhere(-6, 6)});
            path.setLineWidth(anywhere(0, 12));
            path.stroke();
        },
        [&] {
            auto path = NSBezierPath::bezierPathWithRect(NSMakeRect(0, 0, 1, 1));
            path.moveToPoint({anywhere(0, 400), 0});
            path.lineToPoint({anywhere(0, 400), 60});
            path.lineToPoint({anywhere(0, 400), 30});
            path.closePath();
            path.fill();
        },
        [&] {
            picture->drawInRect_fromRect_operation_fraction(
                NSMakeRect(anywhere(0, 370), anywhere(0, 30), 24, 28), NSZeroRect,
                NSCompositingOperationSourceOver, anywhere(0.3, 1));
        },
        [&] {
            drawn->drawInRect_fromRect_operation_fraction(NSMakeRect(anywhere(0, 370), anywhere(0, 30), 30, 20),
                                                          NSZeroRect, NSCompositingOperationSourceOver, 1);
        },
        [&] {
            drawAtPoint_withAttributes(std::to_string(random_() % 1000), {anywhere(0, 350), anywhere(0, 40)},
                                       {});
        },
    };
    // A list changes by one operation, a few, its length, or by clipping.
    std::vector<std::pair<std::size_t, std::uint32_t>> list;
    bool clips = false;
    for (int step = 0; step < 300; ++step) {
        const auto choice = random_() % 6;
        if (choice == 0 && !list.empty()) list.erase(list.begin() + long(random_() % list.size()));
        if (choice >= 1 || list.empty())
            list.insert(list.begin() + long(random_() % (list.size() + 1)),
                        {random_() % operations.size(), std::uint32_t(random_())});
        if (choice == 2) list[random_() % list.size()].second = std::uint32_t(random_());
        if (list.size() > 7) list.erase(list.begin());
        if (random_() % (clips ? 3 : 12) == 0) clips = !clips;
        const auto state = random_;
        view->paint = [&] {
            if (clips) {
                NSGraphicsContext::saveGraphicsState_();
                NSBezierPath::bezierPathWithOvalInRect(NSMakeRect(30, 5, 300, 50)).addClip();
            }
            for (const auto& [operation, seed] : list) {
                random_.seed(seed);
                NSColor::colorWithDeviceRed_green_blue_alpha(anywhere(0, 1), anywhere(0, 1), 0.5,
                                                             anywhere(0.3, 1))
                    .set();
                operations[operation]();
            }
            if (clips) NSGraphicsContext::restoreGraphicsState_();
        };
        painted.region = {};
        view->setNeedsDisplay(true);
        settle();
        random_ = state;
        if (painted.region != QRegion(widget("view")->rect())) ++partly;
        ASSERT_EQ(differences(), 0) << "step " << step;
    }
    ASSERT_GT(view->drawings, 299);
    ASSERT_GT(partly, 50);
}

TEST_F(PartialUpdatePixels, TheScreenIsRightAfterResizingHidingAndDarkness) {
    const auto slider = make<SplitSliderView>(NSRect{NSZeroPoint, kSize});
    slider->setShouldDrawKnob(true);
    const auto content = make<NSView>(NSRect{NSZeroPoint, kSize});
    show(content, kSize);
    content->addSubview(slider);
    for (const double width : {399.5, 250.25, 400.0}) {
        slider->setFrame(NSMakeRect(0.4, 0, width, 60.7));
        EXPECT_EQ(differences(), 0) << width;
        slider->setDCurValue(width);
        EXPECT_EQ(differences(), 0) << width;
    }
    slider->setHidden(true);
    slider->setDCurValue(700);
    EXPECT_EQ(differences(), 0);
    slider->setHidden(false);
    EXPECT_EQ(differences(), 0);
    EXPECT_TRUE(screenHasContent());
    NSApplication::sharedApplication().setAppearance(Appearance::dark);
    EXPECT_EQ(differences(), 0);
    slider->setDCurValue(100);
    EXPECT_EQ(differences(), 0);
    NSApplication::sharedApplication().setAppearance(std::nullopt);
    EXPECT_EQ(differences(), 0);
}

class QtDrawing : public PartialUpdatePixels {};

TEST_F(QtDrawing, AStepOfADragPaintsOnlyWhatDiffers) {
    const auto slider = make<ProgressSliderView>(NSRect{NSZeroPoint, kSize});
    slider->setIdentifier("slider");
    show(slider, kSize);
    slider->setDCurValue(500);
    settle();
    PaintedRegion painted(widget("slider"));
    slider->setDCurValue(505);
    settle();
    EXPECT_FALSE(painted.region.isEmpty());
    EXPECT_LT(painted.region.boundingRect().width(), 24);
    EXPECT_LT(painted.region.boundingRect().height(), 20);
    painted.region = {};
    slider->setDCurValue(505);
    settle();
    EXPECT_TRUE(painted.region.isEmpty()) << "nothing differs";
}

TEST_F(QtDrawing, ExposingAViewDoesNotAskItToDraw) {
    const auto view = make<Painting>(NSRect{NSZeroPoint, kSize});
    view->setIdentifier("view");
    show(view, kSize);
    settle();
    const int before = view->drawings;
    EXPECT_EQ(before, 1);
    PaintedRegion painted(widget("view"));
    widget("view")->update(10, 10, 50, 20);
    settle();
    EXPECT_EQ(painted.region.boundingRect(), QRect(10, 10, 50, 20));
    widget("view")->repaint();
    EXPECT_EQ(view->drawings, before);
}

TEST_F(QtDrawing, ManyRequestsInOneEventLeadToOneDrawingAfterLayout) {
    const auto view = make<Painting>(NSRect{NSZeroPoint, kSize});
    show(view, kSize);
    settle();
    view->order.clear();
    QTimer::singleShot(1, [&] {
        for (int i = 0; i < 3; ++i) {
            view->setNeedsDisplay(true);
            view->setNeedsLayout(true);
        }
    });
    EXPECT_TRUE(QTest::qWaitFor([&] { return !view->order.empty(); }));
    settle();
    EXPECT_THAT(view->order, testing::ElementsAre("layout", "draw"));
}

TEST_F(QtDrawing, AViewThatAsksForDrawingWhileItDrawsIsDrawnAgain) {
    const auto view = make<Painting>(NSRect{NSZeroPoint, kSize});
    view->paint = [&] {
        if (view->drawings < 3) view->setNeedsDisplay(true);
    };
    show(view, kSize);
    EXPECT_TRUE(QTest::qWaitFor([&] { return view->drawings == 3; }));
    settle();
    EXPECT_EQ(view->drawings, 3);
}

TEST_F(QtDrawing, AHiddenViewIsDrawnWhenItIsShownAgain) {
    const auto view = make<Painting>(NSRect{NSZeroPoint, kSize});
    const auto content = make<NSView>(NSRect{NSZeroPoint, kSize});
    show(content, kSize);
    content->addSubview(view);
    settle();
    view->setHidden(true);
    view->drawings = 0;
    view->setNeedsDisplay(true);
    settle();
    EXPECT_EQ(view->drawings, 0);
    view->setHidden(false);
    settle();
    EXPECT_EQ(view->drawings, 1);
}

TEST_F(QtDrawing, AViewMayLeaveItsWindowWhileItDraws) {
    const auto content = make<NSView>(NSRect{NSZeroPoint, kSize});
    const auto view = make<Painting>(NSRect{NSZeroPoint, kSize});
    show(content, kSize);
    view->paint = [&] {
        NSColor::labelColor().set();
        NSRectFill(NSMakeRect(0, 0, 10, 10));
        view->removeFromSuperview();
    };
    content->addSubview(view);
    settle();
    EXPECT_EQ(view->window(), nullptr);
    EXPECT_EQ(view->drawings, 1);
    EXPECT_EQ(differences(), 0);
}

} // namespace zr
