// SPDX-License-Identifier: MIT
#include "DragRecorder.h"
#include "QtTest.h"
#include "Support/LoggedTexts.h"

#include <AppKit/NSBezierPath.h>
#include <AppKit/NSButton.h>
#include <AppKit/NSColor.h>
#include <AppKit/NSGraphicsContext.h>
#include <AppKit/NSScreen.h>
#include <AppKit/NSTextField.h>
#include <ZRUIKit/ProgressSliderView.h>
#include <ZRUIKit/SplitSliderView.h>
#include <ZRUIKitQt/Hosting.h>

#include <QDialog>
#include <QDockWidget>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QStackedWidget>
#include <QVBoxLayout>
#include <QWheelEvent>

namespace zr {

using qt::embed;
using qt::viewOf;
using qt::windowOf;
using test::DragRecorder;
using test::IsColour;
using test::logged;
using testing::ElementsAre;

namespace {

// Draws a red mark at its origin, and writes down what it gets.
class Pad : public NSView {
public:
    ZR_CLASS(Pad, NSView)
    bool isFlipped() const override { return flipped; }
    bool acceptsFirstResponder() const override { return accepts; }
    bool becomeFirstResponder() override {
        events.emplace_back("become");
        return true;
    }
    bool resignFirstResponder() override {
        events.emplace_back("resign");
        return resigns;
    }
    void drawRect(const NSRect&) override {
        ++drawings;
        laidOutWhenDrawn = laidOutWhenDrawn && !needsLayout();
        NSColor::colorWithDeviceRed_green_blue_alpha(1, 0, 0, 1).set();
        NSRectFill({{0, 0}, {10, 10}});
    }
    void layout() override {
        ++layouts;
        laidOutFor = frame().size;
        if (onLayout) onLayout();
    }
    void mouseDown(const NSEvent& event) override { note("down", event); }
    void mouseDragged(const NSEvent& event) override { note("drag", event); }
    void mouseUp(const NSEvent& event) override { note("up", event); }
    void keyDown(const NSEvent& event) override { events.push_back("key " + event.characters()); }
    void viewDidMoveToWindow() override { ++moves; }
    void viewDidChangeEffectiveAppearance() override { ++appearanceChanges; }
    void dealloc() override {
        if (died) *died = true;
        NSView::dealloc();
    }

    std::vector<std::string> taken() { return std::exchange(events, {}); }

    bool flipped = false, accepts = false, resigns = true, laidOutWhenDrawn = true;
    int drawings = 0, layouts = 0, moves = 0, appearanceChanges = 0;
    NSSize laidOutFor{};
    bool* died = nullptr;
    std::function<void()> onLayout;
    std::vector<std::string> events;

private:
    void note(const char* what, const NSEvent& event) {
        const auto point = convertPoint_fromView(event.locationInWindow(), nullptr);
        events.push_back(stringWithFormat("%s %g %g", what, point.x, point.y));
    }
};
ZR_CLASS_TABLE(Pad)

class Keeper : public NSWindowDelegate {
public:
    std::optional<bool> windowShouldClose(NSWindow&) override { return add("should close"), mayClose; }
    void windowWillClose(NSWindow&) override { add("will close"); }
    void windowDidResize(NSWindow& window) override {
        add(stringWithFormat("resize %g %g", window.contentSize().width, window.contentSize().height));
    }
    void windowDidMove(NSWindow&) override { add("move"); }
    void windowDidBecomeKey(NSWindow&) override { add("key"); }
    void windowDidResignKey(NSWindow&) override { add("not key"); }

    std::vector<std::string> taken() { return std::exchange(events, {}); }
    bool mayClose = true;
    std::vector<std::string> events;

private:
    void add(std::string event) { events.push_back(std::move(event)); }
};

// A host whose own handling of closing counts.
class HostMainWindow : public QMainWindow {
public:
    bool mayClose = true;
    int closings = 0;
    std::function<void()> onClose;

protected:
    void closeEvent(QCloseEvent* event) override {
        ++closings;
        if (onClose) onClose();
        event->setAccepted(mayClose);
    }
};

const QColor kRed(255, 0, 0);

// In the kit's screen coordinates, by Qt's own account.
NSRect onScreen(QWidget* widget) {
    const QPoint corner = widget->mapToGlobal(QPoint(0, 0));
    const double height = QGuiApplication::primaryScreen()->size().height();
    return NSMakeRect(corner.x(), height - corner.y() - widget->height(), widget->width(), widget->height());
}

// In the coordinates of the kit's window of its top level, by Qt's own account.
NSRect inWindow(QWidget* widget) {
    const QPoint corner = widget->mapTo(widget->window(), QPoint(0, 0));
    return NSMakeRect(corner.x(), widget->window()->height() - corner.y() - widget->height(), widget->width(),
                      widget->height());
}

NSRect inWindow(NSView* view) { return view->convertRect_toView(view->bounds(), nullptr); }
NSRect onScreen(NSView* view) { return view->window()->convertRectToScreen(inWindow(view)); }

} // namespace

// A plain window of Qt's, 300 by 200, with a layout in it.
class QtHosting : public test::QtTest {
protected:
    void SetUp() override {
        host_->setWindowTitle("window under test");
        host_->resize(300, 200);
        host_->setCentralWidget(new QWidget);
        layout_ = new QVBoxLayout(host_->centralWidget());
        layout_->setContentsMargins(0, 0, 0, 0);
        layout_->setSpacing(0);
    }
    void TearDown() override {
        QtTest::TearDown();
        delete host_;
        settle();
    }

    void showHost() {
        host_->show();
        host_->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(host_));
        settle();
        window_ = retained(windowOf(host_));
        ASSERT_TRUE(window_);
    }
    static std::shared_ptr<Pad> pad(double width = 100, double height = 50) {
        auto view = make<Pad>(NSMakeRect(0, 0, width, height));
        view->setIdentifier("pad");
        return view;
    }
    // In the middle of a view, in window coordinates.
    static NSPoint middleOf(NSView& view) {
        const NSRect rect = inWindow(&view);
        return {NSMidX(rect), NSMidY(rect)};
    }
    // Towards the user. Qt hands on only what comes from the window system.
    static void turnWheel(QPoint inHost) {
        QWheelEvent event(inHost, handle()->mapToGlobal(inHost), {}, QPoint(0, -120), Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QSpontaneKeyEvent::setSpontaneous(&event);
        qApp->notify(handle(), &event);
    }
    static void type(Qt::Key key) { QTest::keyClick(handle(), key); }

    QPointer<HostMainWindow> host_ = new HostMainWindow;
    QVBoxLayout* layout_ = nullptr;
};

// embed

TEST_F(QtHosting, AnEmbeddedViewFillsItsPlaceInTheLayout) {
    const auto view = pad();
    auto* const top = new QLabel("above");
    top->setFixedHeight(40);
    QWidget* const slot = embed(view);
    layout_->addWidget(top);
    layout_->addWidget(slot);
    showHost();
    EXPECT_EQ(slot->geometry(), QRect(0, 40, 300, 160));
    EXPECT_EQ(view->frame(), NSMakeRect(0, 0, 300, 160));
    EXPECT_EQ(inWindow(view.get()), inWindow(slot));
    EXPECT_EQ(view->window(), window_.get());
    ASSERT_TRUE(widget("pad"));
    EXPECT_EQ(widget("pad")->geometry(), QRect(0, 0, 300, 160));
    host_->resize(420, 260);
    EXPECT_EQ(view->frame(), NSMakeRect(0, 0, 420, 220));
    EXPECT_EQ(view->laidOutFor, NSMakeSize(420, 220)); // at once
    settle();
    EXPECT_EQ(inWindow(view.get()), inWindow(slot));
    slot->resize(77, 66);
    EXPECT_EQ(view->laidOutFor, NSMakeSize(77, 66)); // nor does this wait
    top->setFixedHeight(60);
    settle();
    EXPECT_EQ(view->frame(), NSMakeRect(0, 0, 420, 200));
    EXPECT_EQ(inWindow(view.get()), inWindow(slot));
}

TEST_F(QtHosting, TheSizeHintIsTheViewsSizeAndThePolicyItsMask) {
    const auto plain = pad(123, 45);
    const std::unique_ptr<QWidget> first(embed(plain));
    EXPECT_EQ(first->sizeHint(), QSize(123, 45));
    EXPECT_EQ(first->sizePolicy(), QSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred));
    const auto wide = pad(10, 20);
    wide->setAutoresizingMask(NSViewWidthSizable);
    const std::unique_ptr<QWidget> second(embed(wide));
    EXPECT_EQ(second->sizePolicy(), QSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred));
    const auto tall = pad(10, 20);
    tall->setAutoresizingMask(NSViewHeightSizable | NSViewMaxXMargin);
    const std::unique_ptr<QWidget> third(embed(tall));
    EXPECT_EQ(third->sizePolicy(), QSizePolicy(QSizePolicy::Preferred, QSizePolicy::Expanding));
}

TEST_F(QtHosting, FlippedAndUnflippedViewsDrawAndHitWhereTheyShould) {
    const auto up = pad(), down = pad();
    down->flipped = true;
    layout_->addWidget(embed(up), 1);
    layout_->addWidget(embed(down), 1);
    showHost();
    const QImage image = picture();
    EXPECT_THAT(pixel(image, 5 * ratio(), 95 * ratio()), IsColour(kRed)); // the upper one's lower left
    EXPECT_THAT(pixel(image, 5 * ratio(), 5 * ratio()), IsColour(background()));
    EXPECT_THAT(pixel(image, 5 * ratio(), 105 * ratio()), IsColour(kRed)); // the lower one's upper left
    EXPECT_THAT(pixel(image, 5 * ratio(), 195 * ratio()), IsColour(background()));
    press({7, 120});
    release({7, 120});
    press({8, 70});
    drag({9, 130}); // over the other: the press keeps it
    release({9, 130});
    EXPECT_THAT(up->events, ElementsAre("down 7 20", "up 7 20"));
    EXPECT_THAT(down->events, ElementsAre("down 8 30", "drag 9 -30", "up 9 -30"));
}

TEST_F(QtHosting, AnEmbeddedViewWithoutAWindowAnswersEverything) {
    const auto view = pad();
    const std::unique_ptr<QWidget> slot(embed(view));
    EXPECT_FALSE(view->window());
    EXPECT_EQ(view->frame(), NSMakeRect(0, 0, 100, 50));
    view->setNeedsDisplay(true);
    view->setNeedsLayout(true);
    settle();
    EXPECT_EQ(view->drawings, 0);
    EXPECT_FALSE(slot->findChild<QWidget*>("pad"));
}

TEST_F(QtHosting, AnEmbeddedViewCanBeATopLevelByItself) {
    const auto view = pad(120, 80);
    const std::unique_ptr<QWidget> slot(embed(view));
    slot->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(slot.get()));
    settle();
    EXPECT_EQ(view->window(), windowOf(slot.get()));
    EXPECT_EQ(view->frame(), NSMakeRect(0, 0, 120, 80));
    QTest::mousePress(slot->windowHandle(), Qt::LeftButton, {}, QPoint(10, 10));
    QTest::mouseRelease(slot->windowHandle(), Qt::LeftButton, {}, QPoint(10, 10));
    EXPECT_THAT(view->events, ElementsAre("down 10 70", "up 10 70"));
    // Then it goes into a layout.
    showHost();
    layout_->addWidget(slot.get());
    settle();
    EXPECT_EQ(view->window(), window_.get());
    EXPECT_EQ(inWindow(view.get()), inWindow(slot.get()));
    EXPECT_TRUE(slot->isVisible());
    EXPECT_GT(view->drawings, 0);
}

TEST_F(QtHosting, AWidgetAddedToAShownWindowIsShownAndDrawn) {
    showHost();
    const auto view = pad();
    QWidget* const slot = embed(view);
    layout_->addWidget(slot);
    settle();
    EXPECT_TRUE(slot->isVisible());
    EXPECT_GT(view->drawings, 0);
    EXPECT_TRUE(view->laidOutWhenDrawn);
    EXPECT_FALSE(view->isHiddenOrHasHiddenAncestor());
    EXPECT_THAT(pixel(picture(), 5 * ratio(), 195 * ratio()), IsColour(kRed));
}

TEST_F(QtHosting, AWindowBuiltFromTheInsideOutIsTheOneTheViewEndsIn) {
    const auto view = pad();
    auto* const inner = new QWidget;
    (new QVBoxLayout(inner))->addWidget(embed(view));
    auto* const outer = new QWidget;
    (new QVBoxLayout(outer))->addWidget(inner);
    layout_->addWidget(outer);
    showHost();
    EXPECT_EQ(view->window(), window_.get());
    EXPECT_EQ(inWindow(view.get()), inWindow(inner->layout()->itemAt(0)->widget()));
    press(middleOf(*view));
    EXPECT_EQ(view->events.size(), 1u);
}

TEST_F(QtHosting, AWidgetMovedToAnotherWindowTakesItsViewAlong) {
    const auto view = pad();
    view->accepts = true;
    QWidget* const slot = embed(view);
    layout_->addWidget(slot);
    showHost();
    press(middleOf(*view));
    release(middleOf(*view));
    EXPECT_EQ(window_->firstResponder(), view.get());
    const int moves = view->moves;
    QWidget other;
    QVBoxLayout otherLayout(&other);
    otherLayout.addWidget(slot);
    other.resize(200, 150);
    other.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&other));
    settle();
    EXPECT_EQ(view->window(), windowOf(&other));
    EXPECT_NE(view->window(), window_.get());
    EXPECT_GT(view->moves, moves);
    EXPECT_EQ(window_->firstResponder(), window_.get());
    EXPECT_EQ(inWindow(view.get()), inWindow(slot));
    EXPECT_EQ(view->frame().size, NSMakeSize(slot->width(), slot->height()));
    view->taken();
    const QPoint inside = slot->mapTo(&other, QPoint(3, 4));
    QTest::mousePress(other.windowHandle(), Qt::LeftButton, {}, inside);
    QTest::mouseRelease(other.windowHandle(), Qt::LeftButton, {}, inside);
    EXPECT_THAT(view->taken(),
                ElementsAre("become", stringWithFormat("down 3 %g", view->frame().size.height - 4),
                            stringWithFormat("up 3 %g", view->frame().size.height - 4)));
    EXPECT_EQ(slot->findChildren<QWidget*>("pad").size(), 1); // realised once
    layout_->addWidget(slot);
    settle();
    EXPECT_EQ(view->window(), window_.get());
    EXPECT_EQ(slot->findChildren<QWidget*>("pad").size(), 1);
}

TEST_F(QtHosting, AParentMovedToAnotherWindowTakesTheViewAlong) {
    const auto view = pad();
    auto* const box = new QWidget;
    auto* const boxLayout = new QVBoxLayout(box);
    QWidget* const slot = embed(view);
    boxLayout->addWidget(slot);
    layout_->addWidget(box);
    showHost();
    box->setParent(nullptr); // becomes a window itself
    box->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(box));
    settle();
    EXPECT_EQ(view->window(), windowOf(box));
    EXPECT_EQ(inWindow(view.get()), inWindow(slot));
    const std::weak_ptr<NSWindow> boxWindow = retained(windowOf(box));
    layout_->addWidget(box); // and no window any more
    settle();
    EXPECT_EQ(view->window(), window_.get());
    EXPECT_EQ(inWindow(view.get()), inWindow(slot));
    EXPECT_TRUE(boxWindow.expired());
    EXPECT_THAT(NSApplication::sharedApplication().windows(), ElementsAre(window_));
}

TEST_F(QtHosting, ADockThatFloatsIsAWindowOfItsOwnMeanwhile) {
    const auto view = pad();
    auto* const dock = new QDockWidget("dock");
    QWidget* const slot = embed(view);
    dock->setWidget(slot);
    host_->addDockWidget(Qt::LeftDockWidgetArea, dock);
    showHost();
    EXPECT_EQ(view->window(), window_.get());
    EXPECT_EQ(inWindow(view.get()), inWindow(slot));
    dock->setFloating(true);
    settle();
    ASSERT_TRUE(dock->isWindow());
    EXPECT_EQ(view->window(), windowOf(dock));
    EXPECT_NE(view->window(), window_.get());
    EXPECT_EQ(inWindow(view.get()), inWindow(slot));
    dock->setFloating(false);
    settle();
    EXPECT_EQ(view->window(), window_.get());
    EXPECT_EQ(inWindow(view.get()), inWindow(slot));
    EXPECT_THAT(NSApplication::sharedApplication().windows(), ElementsAre(window_));
}

TEST_F(QtHosting, AHiddenWidgetsViewIsHidden) {
    const auto view = pad();
    view->accepts = true;
    QWidget* const slot = embed(view);
    layout_->addWidget(slot);
    showHost();
    window_->makeFirstResponder(view.get());
    slot->hide();
    EXPECT_TRUE(view->isHiddenOrHasHiddenAncestor());
    EXPECT_FALSE(view->isHidden()); // by itself it is not
    EXPECT_EQ(window_->firstResponder(), window_.get());
    slot->show();
    EXPECT_FALSE(view->isHiddenOrHasHiddenAncestor());
    host_->centralWidget()->hide();
    EXPECT_TRUE(view->isHiddenOrHasHiddenAncestor());
    host_->centralWidget()->show();
    EXPECT_FALSE(view->isHiddenOrHasHiddenAncestor());
    // With its whole window, a view keeps what it has.
    window_->makeFirstResponder(view.get());
    host_->hide();
    EXPECT_FALSE(view->isHiddenOrHasHiddenAncestor());
    EXPECT_EQ(window_->firstResponder(), view.get());
}

TEST_F(QtHosting, DeletingTheWidgetLetsGoOfTheView) {
    bool died = false;
    auto view = pad();
    view->died = &died;
    const std::weak_ptr<NSView> watched = view;
    QWidget* const slot = embed(view);
    layout_->addWidget(slot);
    showHost();
    const auto* const kept = view.get();
    view.reset();
    EXPECT_EQ(watched.lock().get(), kept); // the widget holds it
    delete slot;
    settle();
    EXPECT_TRUE(died);
    EXPECT_TRUE(window_->contentView()->subviews().empty());

    const auto other = pad();
    QWidget* const otherSlot = embed(other, host_->centralWidget());
    otherSlot->show();
    settle();
    ASSERT_TRUE(other->window());
    delete otherSlot;
    settle();
    EXPECT_FALSE(other->window());
    EXPECT_FALSE(other->superview());
    EXPECT_FALSE(widget("pad"));
    other->setFrameSize({5, 5});
    other->setNeedsDisplay(true);
}

TEST_F(QtHosting, AViewTakenOutByTheKitLeavesAnEmptyWidget) {
    const auto view = pad();
    QWidget* const slot = embed(view);
    layout_->addWidget(slot);
    showHost();
    view->removeFromSuperview();
    settle();
    EXPECT_FALSE(widget("pad"));
    host_->resize(320, 220);
    settle();
    EXPECT_EQ(view->frame(), NSMakeRect(0, 0, 300, 200));
    // Embedded anew it goes there.
    layout_->addWidget(embed(view));
    settle();
    EXPECT_EQ(view->window(), window_.get());
    EXPECT_TRUE(widget("pad"));
}

TEST_F(QtHosting, ScrollingMovesTheViewAndAWheelItDoesNotTakeScrolls) {
    const auto view = pad(200, 600);
    auto* const area = new QScrollArea;
    area->setWidget(embed(view));
    layout_->addWidget(area);
    showHost();
    QWidget* const slot = area->widget();
    EXPECT_EQ(slot->size(), QSize(200, 600));
    EXPECT_EQ(inWindow(view.get()), inWindow(slot));
    area->verticalScrollBar()->setValue(120);
    EXPECT_EQ(inWindow(view.get()), inWindow(slot));
    const QPoint inside = area->viewport()->mapTo(host_, QPoint(50, 50));
    turnWheel(inside);
    EXPECT_GT(area->verticalScrollBar()->value(), 120);
    EXPECT_EQ(inWindow(view.get()), inWindow(slot));
    QTest::mousePress(handle(), Qt::LeftButton, {}, inside);
    const double fromTop = 50 + area->verticalScrollBar()->value();
    EXPECT_THAT(view->events, ElementsAre(stringWithFormat("down 50 %g", 600 - fromTop)));
}

TEST_F(QtHosting, ASliderInAScrollAreaLetsTheWheelThrough) {
    auto* const area = new QScrollArea;
    area->setWidget(embed(make<ProgressSliderView>(NSMakeRect(0, 0, 200, 600))));
    layout_->addWidget(area);
    showHost();
    const QPoint inside = area->viewport()->mapTo(host_, QPoint(50, 50));
    turnWheel(inside);
    EXPECT_GT(area->verticalScrollBar()->value(), 0);
}

// The frame of a view that is scrolled reaches beyond what is seen of it, over its neighbour's.
TEST_F(QtHosting, TheViewThatIsSeenAtThePointIsHit) {
    const auto below = pad(), scrolled = pad(200, 600);
    auto* const area = new QScrollArea;
    area->setWidget(embed(scrolled));
    layout_->addWidget(embed(below), 1);
    layout_->addWidget(area, 1);
    showHost();
    area->verticalScrollBar()->setValue(300);
    press({50, 150});
    release({50, 150});
    EXPECT_EQ(below->taken().size(), 2u);
    press({50, 50});
    release({50, 50});
    EXPECT_EQ(scrolled->taken().size(), 2u);
    EXPECT_TRUE(below->taken().empty());
}

TEST_F(QtHosting, OnlyTheShownPageOfAStackIsHit) {
    const auto first = pad(), second = pad();
    auto* const stack = new QStackedWidget;
    stack->addWidget(embed(first));
    stack->addWidget(embed(second));
    layout_->addWidget(stack);
    showHost();
    EXPECT_FALSE(first->isHiddenOrHasHiddenAncestor());
    EXPECT_TRUE(second->isHiddenOrHasHiddenAncestor());
    press({50, 50});
    release({50, 50});
    EXPECT_EQ(first->taken().size(), 2u);
    stack->setCurrentIndex(1);
    settle();
    EXPECT_TRUE(first->isHiddenOrHasHiddenAncestor());
    EXPECT_FALSE(second->isHiddenOrHasHiddenAncestor());
    EXPECT_EQ(inWindow(second.get()), inWindow(stack->currentWidget()));
    press({50, 50});
    release({50, 50});
    EXPECT_TRUE(first->taken().empty());
    EXPECT_EQ(second->taken().size(), 2u);
}

TEST_F(QtHosting, ClicksThatNobodyTakesGoOnToTheHost) {
    class Catcher : public QWidget {
    public:
        int presses = 0;

    protected:
        void mousePressEvent(QMouseEvent*) override { ++presses; }
    };
    auto* const catcher = new Catcher;
    (new QVBoxLayout(catcher))->addWidget(embed(make<NSView>(NSMakeRect(0, 0, 50, 50))));
    layout_->addWidget(catcher);
    showHost();
    press({150, 100});
    EXPECT_EQ(catcher->presses, 1);
}

TEST_F(QtHosting, LayoutComesBeforeDrawingAndEndsAlthoughItAsksAgain) {
    const auto view = pad();
    QWidget* const slot = embed(view);
    layout_->addWidget(slot);
    // A layout that changes what the host's layout follows, which sizes the view again.
    view->onLayout = [&] {
        const int height = view->frame().size.width > 200 ? 80 : 90;
        if (slot->minimumHeight() != height) slot->setMinimumHeight(height);
    };
    showHost();
    EXPECT_EQ(view->laidOutFor, view->frame().size);
    EXPECT_TRUE(view->laidOutWhenDrawn);
    int layouts = view->layouts;
    view->setNeedsLayout(true);
    settle();
    EXPECT_EQ(view->layouts, layouts + 1);
    layouts = view->layouts;
    host_->resize(180, 200);
    settle();
    EXPECT_EQ(slot->minimumHeight(), 90);
    EXPECT_EQ(view->laidOutFor, view->frame().size);
    EXPECT_LE(view->layouts, layouts + 3);
    EXPECT_TRUE(view->laidOutWhenDrawn);
    // Asking in the layout itself is another turn, not an endless one.
    int asked = 0;
    view->onLayout = [&] {
        if (++asked < 3) view->setNeedsLayout(true);
    };
    view->setNeedsLayout(true);
    settle();
    EXPECT_EQ(asked, 3);
}

TEST_F(QtHosting, AppearanceChangesReachEmbeddedViews) {
    const auto view = pad(), child = pad(10, 10);
    child->setIdentifier("child");
    view->addSubview(child);
    layout_->addWidget(embed(view));
    showHost();
    const int drawings = view->drawings;
    auto& application = NSApplication::sharedApplication();
    application.setAppearance(Appearance::dark);
    settle();
    EXPECT_EQ(view->appearanceChanges, 1);
    EXPECT_EQ(child->appearanceChanges, 1);
    EXPECT_GT(view->drawings, drawings);
    application.setAppearance(std::nullopt);
    settle();
    EXPECT_EQ(view->appearanceChanges, 2);
}

namespace {
class PressCounter : public NSObject {
public:
    ZR_CLASS(PressCounter, NSObject)
    void pressed(NSObject*) { ++presses; }
    int presses = 0;
};
ZR_CLASS_TABLE(PressCounter, .actions = {actionNamed<&PressCounter::pressed>("pressed:")})
} // namespace

TEST_F(QtHosting, LabelsAndButtonsInAnEmbeddedViewWork) {
    const auto target = make<PressCounter>();
    const auto view = pad(300, 200);
    const auto button = NSButton::buttonWithTitle_target_action("Press", target, "pressed:");
    button->setIdentifier("button");
    button->setFrame({{20, 30}, {80, 30}});
    const auto label = NSTextField::labelWithString("Text");
    label->setIdentifier("label");
    label->setFrameOrigin({20, 100});
    view->addSubview(button);
    view->addSubview(label);
    layout_->addWidget(embed(view));
    showHost();
    auto* const real = dynamic_cast<QPushButton*>(widget("button"));
    ASSERT_TRUE(real);
    EXPECT_EQ(inWindow(button.get()), inWindow(real));
    EXPECT_EQ(inWindow(label.get()), inWindow(widget("label")));
    press(middleOf(*button));
    release(middleOf(*button));
    EXPECT_EQ(target->presses, 1);
    EXPECT_EQ(window_->firstResponder(), button.get());
    host_->resize(300, 260); // they hang from the bottom
    settle();
    EXPECT_EQ(inWindow(button.get()), NSMakeRect(20, 30, 80, 30));
    EXPECT_EQ(inWindow(button.get()), inWindow(real));
    type(Qt::Key_Space);
    EXPECT_EQ(target->presses, 2);
}

TEST_F(QtHosting, ViewsSwitchedOffByTheHostGetNothing) {
    const auto view = pad();
    QWidget* const slot = embed(view);
    layout_->addWidget(slot);
    showHost();
    slot->setEnabled(false);
    press(middleOf(*view));
    release(middleOf(*view));
    EXPECT_TRUE(view->events.empty());
}

TEST_F(QtHosting, NothingToEmbedIsAnEmptyWidget) {
    QWidget* slot = nullptr;
    EXPECT_THAT(logged([&] { slot = embed(nullptr); }),
                ElementsAre("zr::qt::embed: the view is null, and the widget stays empty"));
    layout_->addWidget(slot);
    showHost();
    EXPECT_FALSE(viewOf(slot));
    slot->setFocus();
    press({50, 50});
    delete slot;
}

TEST_F(QtHosting, AViewThatIsEmbeddedAgainMovesToTheNewWidget) {
    const auto view = pad();
    QWidget* const first = embed(view);
    QWidget* second = nullptr;
    layout_->addWidget(first);
    showHost();
    EXPECT_THAT(logged([&] { second = embed(view); }),
                ElementsAre("zr::qt::embed: Pad is embedded already; it moves to the new widget"));
    layout_->addWidget(second);
    settle();
    EXPECT_FALSE(viewOf(first));
    EXPECT_EQ(viewOf(second), view);
    view->accepts = true;
    first->setFocus();
    EXPECT_NE(windowOf(host_)->firstResponder(), view.get());
    delete first;
    settle();
    EXPECT_EQ(view->window(), windowOf(host_));
    delete second;
    EXPECT_FALSE(view->window());
    std::unique_ptr<QWidget> third;
    EXPECT_THAT(logged([&] { third.reset(embed(view)); }), testing::IsEmpty()) << "the one before has gone";
}

TEST_F(QtHosting, AViewThatWasPutElsewhereIsNoMoreThatOfItsWidget) {
    const auto view = pad();
    QWidget* const first = embed(view);
    layout_->addWidget(first);
    showHost();
    const auto box = make<NSView>(NSMakeRect(0, 0, 100, 100));
    box->addSubview(view);
    EXPECT_FALSE(viewOf(first));
    EXPECT_EQ(first->sizeHint(), QSize());
    QWidget* const second = embed(view);
    layout_->addWidget(second);
    settle();
    EXPECT_FALSE(viewOf(first));
    EXPECT_EQ(viewOf(second), view);
    view->accepts = true;
    first->setFocus();
    EXPECT_NE(windowOf(host_)->firstResponder(), view.get());
}

TEST_F(QtHosting, TheContentOfAWindowOfTheKitThatIsEmbeddedLeavesIt) {
    const auto view = pad();
    window_ = make<NSWindow>();
    window_->setContentView(view);
    window_->makeKeyAndOrderFront(nullptr);
    settle();
    std::unique_ptr<QWidget> slot;
    EXPECT_THAT(
        logged([&] { slot.reset(embed(view)); }),
        ElementsAre("A view is put elsewhere while it is the content of a window, which gets an empty one"));
    EXPECT_NE(window_->contentView(), view.get());
    window_->close();
    EXPECT_EQ(viewOf(slot.get()), view);
}

TEST_F(QtHosting, TheContentOfAHostsWindowStays) {
    showHost();
    const auto content = viewOf(host_);
    std::unique_ptr<QWidget> slot;
    EXPECT_THAT(
        logged([&] { slot.reset(embed(content)); }),
        ElementsAre("A view is put elsewhere while it is the content of a window, which is the host's and "
                    "keeps it"));
    EXPECT_EQ(windowOf(host_)->contentView(), content.get());
    slot.reset();
    EXPECT_EQ(content->window(), windowOf(host_));
}

// The keyboard

class QtHostingFocus : public QtHosting {
protected:
    void SetUp() override {
        QtHosting::SetUp();
        view_->accepts = true;
        layout_->addWidget(field_);
        layout_->addWidget(slot_, 1);
        showHost();
        view_->taken();
    }
    void clickField() {
        const QPoint middle = field_->mapTo(host_, field_->rect().center());
        QTest::mouseClick(handle(), Qt::LeftButton, {}, middle);
    }
    void clickView() {
        press(middleOf(*view_));
        release(middleOf(*view_));
        view_->taken();
    }

    std::shared_ptr<Pad> view_ = pad();
    QLineEdit* field_ = new QLineEdit;
    QWidget* slot_ = embed(view_);
};

TEST_F(QtHostingFocus, PressingAViewTakesTheKeyboardAndAClickIntoAFieldGivesItBack) {
    clickField();
    ASSERT_TRUE(field_->hasFocus());
    press(middleOf(*view_));
    release(middleOf(*view_));
    EXPECT_EQ(view_->events.at(0), "become");
    EXPECT_FALSE(field_->hasFocus());
    EXPECT_EQ(window_->firstResponder(), view_.get());
    view_->taken();
    type(Qt::Key_A);
    EXPECT_THAT(view_->taken(), ElementsAre("key a"));
    EXPECT_EQ(field_->text(), "");
    clickField();
    EXPECT_TRUE(field_->hasFocus());
    EXPECT_EQ(window_->firstResponder(), window_.get());
    EXPECT_THAT(view_->taken(), ElementsAre("resign"));
    type(Qt::Key_B);
    type(Qt::Key_F5); // which a field does not take
    settle();
    EXPECT_EQ(field_->text(), "b");
    EXPECT_TRUE(field_->hasFocus());
    EXPECT_TRUE(view_->taken().empty());
}

TEST_F(QtHostingFocus, TheHostsFieldGetsTheKeyboardWhateverTheViewSays) {
    clickView();
    view_->resigns = false;
    clickField();
    settle();
    EXPECT_TRUE(field_->hasFocus());
    EXPECT_EQ(window_->firstResponder(), window_.get());
}

TEST_F(QtHostingFocus, AViewThatDoesNotAcceptLeavesTheKeyboardWhereItIs) {
    view_->accepts = false;
    clickField();
    clickView();
    EXPECT_TRUE(field_->hasFocus());
    type(Qt::Key_A);
    EXPECT_EQ(field_->text(), "a");
}

TEST_F(QtHostingFocus, TheKitMovesTheKeyboardByItself) {
    clickField();
    EXPECT_TRUE(window_->makeFirstResponder(view_.get()));
    EXPECT_FALSE(field_->hasFocus());
    type(Qt::Key_A);
    EXPECT_THAT(view_->taken(), ElementsAre("become", "key a"));
    EXPECT_TRUE(window_->makeFirstResponder(nullptr));
    EXPECT_EQ(window_->firstResponder(), window_.get());
    EXPECT_FALSE(QApplication::focusWidget());
    view_->taken();
    type(Qt::Key_A);
    EXPECT_TRUE(view_->taken().empty());
    // Where the host has it, no longer having a first responder changes nothing.
    field_->setFocus();
    EXPECT_TRUE(window_->makeFirstResponder(nullptr));
    EXPECT_TRUE(field_->hasFocus());
}

TEST_F(QtHostingFocus, AHostGivesTheKeyboardToTheViewThroughItsWidget) {
    clickField();
    slot_->setFocus();
    EXPECT_EQ(window_->firstResponder(), view_.get());
    view_->taken();
    type(Qt::Key_A);
    EXPECT_THAT(view_->taken(), ElementsAre("key a"));
}

TEST_F(QtHostingFocus, TabStopsAtTheViewWhereItsWidgetSaysSo) {
    auto* const last = new QLineEdit;
    layout_->addWidget(last);
    settle();
    clickField();
    type(Qt::Key_Tab);
    EXPECT_TRUE(last->hasFocus());
    slot_->setFocusPolicy(Qt::TabFocus);
    clickField();
    view_->taken();
    type(Qt::Key_Tab);
    EXPECT_EQ(window_->firstResponder(), view_.get());
    type(Qt::Key_A);
    EXPECT_THAT(view_->taken(), ElementsAre("become", "key a"));
    type(Qt::Key_Tab);
    EXPECT_TRUE(last->hasFocus());
    EXPECT_EQ(window_->firstResponder(), window_.get());
    type(Qt::Key_Backtab);
    EXPECT_EQ(window_->firstResponder(), view_.get());
    type(Qt::Key_Backtab);
    EXPECT_TRUE(field_->hasFocus());
    EXPECT_EQ(window_->firstResponder(), window_.get());
}

TEST_F(QtHostingFocus, TabStopsAtFieldsAndButtonsInAViewInTheOrderInWhichTheyCameIn) {
    const auto name = make<NSTextField>(NSMakeRect(10, 40, 80, 24));
    const auto drawn = pad(20, 20);
    drawn->accepts = true;
    const auto button = NSButton::buttonWithTitle_target_action("Press", nullptr, "");
    button->setFrame({{10, 10}, {80, 24}});
    view_->addSubview(button);
    view_->addSubview(drawn);
    view_->addSubview(name);
    name->setNextKeyView(button);
    settle();
    clickField();
    type(Qt::Key_Tab);
    EXPECT_EQ(window_->firstResponder(), button.get());
    type(Qt::Key_Tab);
    EXPECT_EQ(window_->firstResponder(), name.get());
    type(Qt::Key_Tab);
    EXPECT_TRUE(field_->hasFocus());
    type(Qt::Key_Backtab);
    EXPECT_EQ(window_->firstResponder(), name.get());
}

TEST_F(QtHostingFocus, TheKitCanGiveTheKeyboardToAHostsWidget) {
    clickView();
    const auto anchor = viewOf(field_);
    EXPECT_TRUE(window_->makeFirstResponder(anchor.get()));
    EXPECT_TRUE(field_->hasFocus());
    type(Qt::Key_A);
    EXPECT_EQ(field_->text(), "a");
}

TEST_F(QtHostingFocus, AnotherWindowInFrontLeavesTheFirstResponder) {
    clickView();
    QWidget other;
    other.show();
    other.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    EXPECT_EQ(window_->firstResponder(), view_.get());
    EXPECT_FALSE(window_->isKeyWindow());
    host_->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(host_));
    EXPECT_TRUE(window_->isKeyWindow());
    view_->taken();
    type(Qt::Key_A);
    EXPECT_THAT(view_->taken(), ElementsAre("key a"));
}

TEST_F(QtHostingFocus, WhatTheHostFocusedInABackgroundWindowStaysSo) {
    clickView();
    QWidget other;
    other.show();
    other.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    field_->setFocus();
    slot_->hide(); // whereupon the view resigns
    EXPECT_EQ(window_->firstResponder(), window_.get());
    EXPECT_EQ(host_->focusWidget(), field_);
    host_->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(host_));
    EXPECT_TRUE(field_->hasFocus());
}

TEST_F(QtHostingFocus, KeysThatTheViewPassesOnReachTheHost) {
    class Catcher : public QWidget {
    public:
        int keys = 0;

    protected:
        void keyPressEvent(QKeyEvent* event) override {
            if (event->key() == Qt::Key_A) ++keys;
        }
    };
    class Passer : public NSView {
    public:
        bool acceptsFirstResponder() const override { return true; }
        void keyDown(const NSEvent& event) override {
            ++keys;
            NSView::keyDown(event);
        }
        int keys = 0;
    };
    const auto passer = make<Passer>(NSMakeRect(0, 0, 50, 50));
    auto* const catcher = new Catcher;
    (new QVBoxLayout(catcher))->addWidget(embed(passer));
    layout_->addWidget(catcher);
    settle();
    window_->makeFirstResponder(passer.get());
    type(Qt::Key_A);
    EXPECT_EQ(passer->keys, 1);
    EXPECT_EQ(catcher->keys, 1);
}

// windowOf

TEST_F(QtHosting, AHostsWindowIsOneWindowOfTheKit) {
    EXPECT_FALSE(windowOf(nullptr));
    NSWindow* const window = windowOf(host_);
    ASSERT_TRUE(window);
    EXPECT_EQ(windowOf(host_->centralWidget()), window);
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(window->title(), "window under test");
    EXPECT_EQ(window->contentSize(), NSMakeSize(300, 200));
    EXPECT_TRUE(NSApplication::sharedApplication().windows().empty());
    showHost();
    EXPECT_EQ(windowOf(host_), window);
    EXPECT_TRUE(window->isVisible());
    EXPECT_TRUE(window->isKeyWindow());
    EXPECT_EQ(NSApplication::sharedApplication().keyWindow(), window);
    EXPECT_THAT(NSApplication::sharedApplication().windows(), ElementsAre(window_));
    EXPECT_EQ(window->contentView(), viewOf(host_).get());
    EXPECT_EQ(window->backingScaleFactor(), ratio());
    EXPECT_EQ(window->convertRectToScreen({NSZeroPoint, window->contentSize()}), onScreen(host_));
    QWidget other;
    EXPECT_NE(windowOf(&other), window);
}

TEST_F(QtHosting, TheKitsOwnWindowsAreNoHosts) {
    host_->setWindowTitle("host");
    show(make<NSView>(NSMakeRect(0, 0, 50, 50)), {50, 50});
    for (QWidget* top : QApplication::topLevelWidgets())
        if (top != host_) {
            EXPECT_FALSE(windowOf(top));
        }
    EXPECT_FALSE(windowOf(topLevel()));
    window_->close();
}

TEST_F(QtHosting, TheWindowTellsWhatHappensToIt) {
    showHost();
    const auto keeper = std::make_shared<Keeper>();
    window_->setDelegate(keeper);
    host_->resize(350, 250);
    EXPECT_THAT(keeper->taken(), ElementsAre("resize 350 250"));
    EXPECT_EQ(window_->contentView()->frame(), NSMakeRect(0, 0, 350, 250));
    host_->move(70, 60);
    settle();
    EXPECT_THAT(keeper->taken(), testing::Contains("move"));
    EXPECT_EQ(window_->convertRectToScreen({NSZeroPoint, window_->contentSize()}), onScreen(host_));
    host_->setWindowTitle("other");
    EXPECT_EQ(window_->title(), "other");
    host_->setWindowTitle("window under test");
    QWidget other;
    other.show();
    other.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    EXPECT_THAT(keeper->taken(), ElementsAre("not key"));
    EXPECT_FALSE(window_->isKeyWindow());
    host_->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(host_));
    EXPECT_THAT(keeper->taken(), ElementsAre("key"));
    host_->hide();
    EXPECT_THAT(keeper->taken(), ElementsAre("not key"));
    EXPECT_FALSE(window_->isVisible());
    host_->show();
    EXPECT_TRUE(window_->isVisible());
    settle();
    keeper->taken();
    host_->close();
    EXPECT_EQ(keeper->taken().front(), "will close"); // the host was not kept from it by asking
    EXPECT_FALSE(window_->isVisible());
    EXPECT_TRUE(NSApplication::sharedApplication().windows().empty());
    host_->show();
    EXPECT_TRUE(window_->isVisible());
    EXPECT_THAT(NSApplication::sharedApplication().windows(), ElementsAre(window_));
}

TEST_F(QtHosting, WhatTheKitDoesToTheWindowTheHostsDoes) {
    const auto view = pad();
    layout_->addWidget(embed(view));
    window_ = retained(windowOf(host_));
    const auto keeper = std::make_shared<Keeper>();
    window_->makeKeyAndOrderFront(nullptr);
    ASSERT_TRUE(QTest::qWaitForWindowActive(host_));
    settle();
    EXPECT_TRUE(host_->isVisible());
    EXPECT_TRUE(window_->isKeyWindow());
    window_->setDelegate(keeper);
    window_->setTitle("from the kit");
    EXPECT_EQ(host_->windowTitle(), "from the kit");
    EXPECT_EQ(window_->title(), "from the kit");
    window_->setTitle("window under test");
    window_->setContentSize({320, 240});
    EXPECT_EQ(host_->size(), QSize(320, 240));
    EXPECT_EQ(window_->contentSize(), NSMakeSize(320, 240));
    EXPECT_THAT(keeper->taken(), ElementsAre("resize 320 240"));
    host_->setMinimumSize(200, 150);
    window_->setContentSize({10, 10});
    EXPECT_EQ(window_->contentSize(), NSMakeSize(200, 150)); // what it became
    window_->orderOut(nullptr);
    EXPECT_FALSE(host_->isVisible());
    EXPECT_FALSE(window_->isVisible());
    window_->orderFront(nullptr);
    EXPECT_TRUE(host_->isVisible());
    EXPECT_FALSE(host_->testAttribute(Qt::WA_ShowWithoutActivating));
    EXPECT_EQ(host_->closings, 0);
    keeper->taken();
    window_->close();
    EXPECT_EQ(host_->closings, 1);
    EXPECT_FALSE(host_->isVisible());
    EXPECT_THAT(keeper->taken(), testing::Contains("will close"));
    EXPECT_EQ(view->window(), window_.get());
    // The content is the host's.
    NSView* const content = window_->contentView();
    window_->setContentView(pad());
    EXPECT_EQ(window_->contentView(), content);
}

TEST_F(QtHosting, TheHostDecidesAboutClosing) {
    showHost();
    const auto keeper = std::make_shared<Keeper>();
    window_->setDelegate(keeper);
    host_->mayClose = false;
    window_->close();
    EXPECT_EQ(host_->closings, 1);
    EXPECT_TRUE(host_->isVisible());
    EXPECT_TRUE(window_->isVisible());
    EXPECT_THAT(keeper->taken(), testing::IsEmpty());
    settle();
    host_->hide(); // later, and for another reason
    EXPECT_THAT(keeper->taken(), ElementsAre("not key"));
    host_->show();
    settle();
    // The host asks its user first.
    host_->mayClose = true;
    host_->onClose = [] {
        QEventLoop question;
        QTimer::singleShot(1, &question, &QEventLoop::quit);
        question.exec();
    };
    keeper->taken();
    // From an event, as the user does it.
    QMetaObject::invokeMethod(
        host_, [this] { host_->close(); }, Qt::QueuedConnection);
    settle();
    EXPECT_THAT(keeper->taken(), testing::Contains("will close"));
    // Performing it asks the kit's delegate before.
    host_->onClose = nullptr;
    host_->show();
    settle();
    const int closings = host_->closings;
    keeper->mayClose = false;
    window_->performClose(nullptr);
    EXPECT_EQ(host_->closings, closings);
    keeper->mayClose = true;
    window_->performClose(nullptr);
    EXPECT_EQ(host_->closings, closings + 1);
    EXPECT_FALSE(host_->isVisible());
}

TEST_F(QtHosting, DeletingTheHostsWindowClosesTheKits) {
    const auto view = pad();
    layout_->addWidget(embed(view));
    showHost();
    const auto keeper = std::make_shared<Keeper>();
    window_->setDelegate(keeper);
    const auto content = retained(window_->contentView());
    delete host_;
    settle();
    EXPECT_THAT(keeper->taken(), testing::Contains("will close"));
    EXPECT_FALSE(window_->isVisible());
    EXPECT_FALSE(view->window());
    EXPECT_TRUE(NSApplication::sharedApplication().windows().empty());
    // What is left does nothing.
    window_->makeKeyAndOrderFront(nullptr);
    window_->setTitle("gone");
    window_->setContentSize({10, 10});
    window_->orderOut(nullptr);
    window_->close();
    EXPECT_FALSE(window_->isVisible());
    EXPECT_FALSE(window_->nextEventMatchingMask(NSEventMaskLeftMouseUp));
    EXPECT_EQ(window_->backingScaleFactor(), 1);
}

TEST_F(QtHosting, AWindowThatWasClosedIsToldOnceWhenItIsDeleted) {
    showHost();
    const auto keeper = std::make_shared<Keeper>();
    window_->setDelegate(keeper);
    host_->setAttribute(Qt::WA_DeleteOnClose);
    host_->close();
    settle();
    EXPECT_FALSE(host_);
    EXPECT_EQ(std::ranges::count(keeper->events, "will close"), 1);
}

namespace {
class Taker : public NSView {
public:
    ZR_CLASS(Taker, NSView)
    void take(NSObject*) { ++taken; }
    int taken = 0;
};
ZR_CLASS_TABLE(Taker, .actions = {actionNamed<&Taker::take>("take:")})
} // namespace

TEST_F(QtHosting, ActionsWithoutATargetGoAlongTheKeyWindowsResponders) {
    const auto taker = make<Taker>(NSMakeRect(0, 0, 100, 50));
    const auto inner = pad();
    inner->accepts = true;
    taker->addSubview(inner);
    layout_->addWidget(embed(taker));
    showHost();
    auto& application = NSApplication::sharedApplication();
    EXPECT_FALSE(application.sendAction_to_from("take:", nullptr, nullptr));
    window_->makeFirstResponder(inner.get());
    EXPECT_TRUE(application.sendAction_to_from("take:", nullptr, nullptr));
    EXPECT_EQ(taker->taken, 1);
    EXPECT_TRUE(application.sendAction_to_from("performClose:", nullptr, nullptr));
    EXPECT_FALSE(host_->isVisible());
    EXPECT_FALSE(application.sendAction_to_from("take:", nullptr, nullptr));
}

TEST_F(QtHosting, AProgramThatEndsWithItsLastWindowStillDoes) {
    showHost();
    QTimer::singleShot(0, host_, [this] { host_->close(); });
    QTimer deadline;
    QObject::connect(&deadline, &QTimer::timeout, [] { QCoreApplication::exit(1); });
    deadline.start(20000);
    EXPECT_EQ(QApplication::exec(), 0);
}

// viewOf

TEST_F(QtHosting, AHostsWidgetIsAViewInItsPlace) {
    auto* const box = new QWidget;
    auto* const boxLayout = new QHBoxLayout(box);
    boxLayout->setContentsMargins(13, 7, 5, 3);
    auto* const button = new QPushButton("anchor");
    boxLayout->addWidget(button);
    auto* const above = new QLabel("above");
    above->setFixedHeight(30);
    layout_->addWidget(above);
    layout_->addWidget(box);
    const auto view = viewOf(button);
    ASSERT_TRUE(view);
    EXPECT_TRUE(dynamic_cast<NSControl*>(view.get()));
    EXPECT_EQ(viewOf(button), view);
    showHost();
    EXPECT_EQ(viewOf(button), view);
    EXPECT_EQ(view->window(), window_.get());
    EXPECT_EQ(view->superview(), window_->contentView());
    const auto expectInPlace = [&] {
        EXPECT_EQ(inWindow(view.get()), inWindow(button));
        EXPECT_EQ(onScreen(view.get()), onScreen(button));
    };
    expectInPlace();
    host_->move(40, 30);
    settle();
    expectInPlace();
    host_->resize(400, 333);
    settle();
    expectInPlace();
    above->setFixedHeight(77); // moves the parent alone
    settle();
    expectInPlace();
    box->move(3, 50); // and nothing else does
    expectInPlace();
    above->hide();
    settle();
    expectInPlace();
    boxLayout->setContentsMargins(0, 20, 40, 0);
    settle();
    expectInPlace();
    EXPECT_FALSE(view->isHidden());
    box->hide();
    EXPECT_TRUE(view->isHidden());
    box->show();
    EXPECT_FALSE(view->isHidden());
    button->setEnabled(false);
    EXPECT_FALSE(dynamic_cast<NSControl&>(*view).isEnabled());
    host_->centralWidget()->setEnabled(false);
    button->setEnabled(true);
    EXPECT_FALSE(dynamic_cast<NSControl&>(*view).isEnabled());
    host_->centralWidget()->setEnabled(true);
    EXPECT_TRUE(dynamic_cast<NSControl&>(*view).isEnabled());
    // The frame is the host's.
    const QRect geometry = button->geometry();
    view->setFrame({{1, 2}, {3, 4}});
    view->setHidden(true);
    EXPECT_EQ(button->geometry(), geometry);
    EXPECT_TRUE(button->isVisible());
    host_->resize(401, 333);
    settle();
    expectInPlace();
    // In another window.
    QWidget other;
    QVBoxLayout otherLayout(&other);
    otherLayout.addWidget(box);
    other.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&other));
    settle();
    EXPECT_EQ(view->window(), windowOf(&other));
    expectInPlace();
    EXPECT_EQ(viewOf(button), view);
}

TEST_F(QtHosting, AViewOutlivesItsWidgetOutsideOfAnyWindow) {
    auto* const button = new QPushButton("anchor");
    layout_->addWidget(button);
    showHost();
    const auto view = viewOf(button);
    const std::weak_ptr<NSView> forgotten = viewOf(host_->centralWidget());
    EXPECT_FALSE(forgotten.expired()); // the widget holds it
    delete button;
    EXPECT_FALSE(view->window());
    EXPECT_FALSE(view->superview());
    view->setFrame({{1, 2}, {3, 4}});
    view->setNeedsDisplay(true);
    view->setHidden(true);
    EXPECT_EQ(view->convertRect_toView(view->bounds(), nullptr), NSMakeRect(1, 2, 3, 4));
    window_->contentView()->addSubview(view); // nobody drives it any more
    EXPECT_EQ(window_->contentView()->subviews().back(), view);
    delete host_->takeCentralWidget();
    EXPECT_TRUE(forgotten.expired());
}

TEST_F(QtHosting, TheViewOfAWidgetWithoutAWindowHasNone) {
    const std::unique_ptr<QPushButton> button(new QPushButton("alone"));
    button->setParent(nullptr);
    auto* const child = new QPushButton("child", button.get());
    EXPECT_FALSE(viewOf(nullptr));
    const auto view = viewOf(child);
    showHost();
    child->setParent(nullptr);
    EXPECT_FALSE(view->window());
    layout_->addWidget(child);
    settle();
    EXPECT_EQ(view->window(), window_.get());
    EXPECT_EQ(inWindow(view.get()), inWindow(child));
}

TEST_F(QtHosting, TheViewOfAnEmbeddingWidgetIsTheOneEmbedded) {
    const auto view = pad();
    QWidget* const slot = embed(view);
    EXPECT_EQ(viewOf(slot), view);
    layout_->addWidget(slot);
    showHost();
    EXPECT_EQ(viewOf(slot), view);
}

TEST_F(QtHosting, AnAnchorAroundAnEmbeddedViewDoesNotTakeItsEvents) {
    const auto view = pad();
    layout_->addWidget(embed(view));
    showHost();
    const auto anchor = viewOf(host_->centralWidget());
    press(middleOf(*view));
    EXPECT_EQ(view->events.size(), 1u);
    EXPECT_EQ(anchor->frame(), NSMakeRect(0, 0, 300, 200));
}

// A modal drag

class QtHostingDrag : public QtHosting {
protected:
    void SetUp() override {
        QtHosting::SetUp();
        auto* const above = new QLabel("above");
        above->setFixedHeight(100);
        layout_->addWidget(above);
        slider_->setDelegate(recorder_);
        slot_ = embed(slider_);
        slot_->setFixedSize(220, 31);
        layout_->addWidget(slot_);
        layout_->addWidget(field_);
        layout_->addStretch();
        showHost();
    }
    NSPoint at(double value) const {
        const NSRect rect = inWindow(slider_.get());
        return {NSMinX(rect) + 10 + value / 5, NSMidY(rect)};
    }

    std::shared_ptr<DragRecorder> recorder_ = std::make_shared<DragRecorder>();
    std::shared_ptr<ProgressSliderView> slider_ = make<ProgressSliderView>(NSMakeRect(0, 0, 220, 31));
    QPointer<QWidget> slot_;
    QLineEdit* field_ = new QLineEdit;
};

TEST_F(QtHostingDrag, ARealDragHappensInsideThePress) {
    bool returned = false;
    then([&] { drag(at(250)); });
    then([&] { drag({2000, -700}); });
    then([&] {
        EXPECT_FALSE(returned);
        release(at(500));
    });
    press(at(700));
    returned = true;
    ASSERT_GE(recorder_->log.size(), 4u);
    EXPECT_EQ(recorder_->log[0], "begin 700");
    EXPECT_EQ(recorder_->log[1], "change 250");
    EXPECT_EQ(recorder_->log[2], "change 1000");
    EXPECT_EQ(recorder_->log.back(), "end 500");
    EXPECT_EQ(slider_->dCurValue(), 500.0);
}

TEST_F(QtHostingDrag, TheHostsKeysComeAfterwards) {
    field_->setFocus();
    then([&] { QTest::keyClick(handle(), Qt::Key_A); });
    then([&] {
        EXPECT_EQ(field_->text(), "");
        release(at(700));
    });
    press(at(700));
    settle();
    EXPECT_EQ(field_->text(), "a");
}

TEST_F(QtHostingDrag, ResizingGoesOnMeanwhile) {
    then([&] { slot_->setFixedSize(120, 31); });
    then([&] {
        settle();
        EXPECT_EQ(slider_->frame().size.width, 120.0);
        release({NSMinX(inWindow(slider_.get())) + 60, NSMidY(inWindow(slider_.get()))});
    });
    press(at(700));
    EXPECT_EQ(recorder_->log.back(), "end 500");
}

// What ends a drag halfway: nothing is reported as its end, and the program goes on.
class QtHostingDragEnd : public QtHostingDrag {
protected:
    void endedBy(std::function<void()> step) {
        then(std::move(step));
        press(at(700));
        EXPECT_THAT(recorder_->log, ElementsAre("begin 700"));
        settle();
        EXPECT_THAT(recorder_->log, ElementsAre("begin 700"));
    }
};

TEST_F(QtHostingDragEnd, ClosingTheHostsWindow) {
    endedBy([&] { host_->close(); });
    EXPECT_FALSE(window_->isVisible());
}

TEST_F(QtHostingDragEnd, HidingTheHostsWindow) {
    endedBy([&] { host_->hide(); });
    EXPECT_FALSE(window_->isVisible());
}

TEST_F(QtHostingDragEnd, HidingTheHostsWindowByTheKit) {
    endedBy([&] { window_->orderOut(nullptr); });
    EXPECT_FALSE(host_->isVisible());
}

TEST_F(QtHostingDragEnd, DeletingTheHostsWindow) {
    endedBy([&] { delete host_; });
    EXPECT_FALSE(slider_->window());
}

TEST_F(QtHostingDragEnd, TakingTheWidgetOutOfItsParent) {
    endedBy([&] { slot_->setParent(nullptr); });
    EXPECT_FALSE(slider_->window());
    delete slot_;
}

TEST_F(QtHostingDragEnd, MovingTheWidgetToAnotherWindow) {
    QWidget other;
    other.show();
    endedBy([&] { slot_->setParent(&other); });
    EXPECT_EQ(slider_->window(), windowOf(&other));
}

TEST_F(QtHostingDragEnd, DeletingTheWidget) {
    endedBy([&] { delete slot_; });
    EXPECT_FALSE(slider_->window());
}

TEST_F(QtHostingDragEnd, HidingTheWidget) {
    endedBy([&] { slot_->hide(); });
    EXPECT_TRUE(slider_->isHiddenOrHasHiddenAncestor());
}

TEST_F(QtHostingDragEnd, HidingAParentOfTheWidget) {
    endedBy([&] { host_->centralWidget()->hide(); });
}

TEST_F(QtHostingDragEnd, DeletingAParentOfTheWidget) {
    endedBy([&] { delete host_->takeCentralWidget(); });
    EXPECT_FALSE(slot_);
}

TEST_F(QtHostingDragEnd, AModalDialog) {
    QDialog dialog(host_);
    dialog.setModal(true);
    endedBy([&] { dialog.show(); });
    EXPECT_TRUE(dialog.isVisible());
    dialog.close();
}

TEST_F(QtHostingDragEnd, AModalDialogOfAWindowShownAnew) {
    host_->hide();
    host_->setWindowFlag(Qt::WindowStaysOnTopHint); // which replaces the platform's window
    host_->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(host_));
    settle();
    QDialog dialog(host_);
    dialog.setWindowModality(Qt::WindowModal);
    endedBy([&] { dialog.show(); });
    dialog.close();
}

TEST_F(QtHostingDragEnd, Quitting) {
    then([&] { press(at(700)); });
    then([] { QCoreApplication::quit(); });
    EXPECT_EQ(QApplication::exec(), 0);
    EXPECT_THAT(recorder_->log, ElementsAre("begin 700"));
}

TEST_F(QtHostingDragEnd, LeavingAllEventLoops) {
    then([&] { press(at(700)); });
    then([] { QCoreApplication::exit(3); });
    EXPECT_EQ(QApplication::exec(), 3);
    EXPECT_THAT(recorder_->log, ElementsAre("begin 700"));
}

TEST_F(QtHostingDrag, TwoSlidersInOneWindowAreDraggedOneAfterTheOther) {
    const auto second = make<ProgressSliderView>(NSMakeRect(0, 0, 220, 31));
    const auto secondRecorder = std::make_shared<DragRecorder>();
    second->setDelegate(secondRecorder);
    QWidget* const slot = embed(second);
    slot->setFixedSize(220, 31);
    layout_->insertWidget(0, slot);
    settle();
    EXPECT_EQ(inWindow(slider_.get()), inWindow(slot_));
    EXPECT_EQ(inWindow(second.get()), inWindow(slot));
    then([&] { release(at(250)); });
    press(at(700));
    EXPECT_THAT(recorder_->log, testing::Contains("end 250"));
    EXPECT_TRUE(secondRecorder->log.empty());
    const NSRect rect = inWindow(second.get());
    then([&] { release({NSMinX(rect) + 110, NSMidY(rect)}); });
    press({NSMinX(rect) + 50, NSMidY(rect)});
    EXPECT_EQ(secondRecorder->log.front(), "begin 200");
    EXPECT_EQ(secondRecorder->log.back(), "end 500");
    EXPECT_EQ(recorder_->log.back(), "end 250");
}

// The order in which hosts make and end things

class QtHostingLife : public testing::Test {
protected:
    static void settle() {
        for (int i = 0; i < 3; ++i) {
            QCoreApplication::sendPostedEvents();
            QCoreApplication::processEvents();
        }
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    static std::shared_ptr<Pad> pad() {
        auto view = make<Pad>(NSMakeRect(0, 0, 100, 50));
        view->setIdentifier("pad");
        return view;
    }
    void SetUp() override { (new QVBoxLayout(&top_)); }
    void showTop() {
        top_.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&top_));
        settle();
    }

    QWidget top_; // outlives what a test makes
};

TEST_F(QtHostingLife, AWidgetOutlivesThePlatform) {
    bool died = false;
    std::shared_ptr<NSView> anchor;
    QWidget* slot = nullptr;
    {
        const qt::Platform platform;
        auto view = pad();
        view->died = &died;
        view->accepts = true;
        slot = embed(view);
        top_.layout()->addWidget(slot);
        showTop();
        anchor = viewOf(&top_);
        view->window()->makeFirstResponder(view.get());
        EXPECT_TRUE(top_.findChild<QWidget*>("pad"));
    }
    EXPECT_TRUE(top_.isVisible()); // the host's windows stay
    EXPECT_FALSE(top_.findChild<QWidget*>("pad"));
    EXPECT_FALSE(died);
    EXPECT_FALSE(windowOf(&top_));
    EXPECT_FALSE(viewOf(&top_));
    const auto view = viewOf(slot);
    EXPECT_FALSE(view->window());
    view->setNeedsDisplay(true);
    top_.resize(333, 222);
    settle();
    QTest::mouseClick(top_.windowHandle(), Qt::LeftButton, {}, QPoint(50, 50));
    slot->setFocus();
    top_.hide();
    top_.show();
    settle();
    top_.setWindowTitle("after the end");
    top_.close();
    delete slot;
    EXPECT_FALSE(died);
}

TEST_F(QtHostingLife, AHiddenWindowOutlivesThePlatform) {
    std::shared_ptr<NSWindow> window;
    {
        const qt::Platform platform;
        top_.layout()->addWidget(embed(pad()));
        showTop();
        window = retained(windowOf(&top_));
        top_.hide();
    }
    top_.show();
    settle();
    EXPECT_FALSE(window->isVisible());
    window->makeKeyAndOrderFront(nullptr);
    window->close();
    EXPECT_TRUE(top_.isVisible());
}

TEST_F(QtHostingLife, ThePlatformsEndClosesTheKitsWindowAndNotTheHosts) {
    const auto keeper = std::make_shared<Keeper>();
    {
        const qt::Platform platform;
        showTop();
        windowOf(&top_)->setDelegate(keeper);
    }
    EXPECT_EQ(std::ranges::count(keeper->events, "will close"), 1);
    EXPECT_EQ(std::ranges::count(keeper->events, "should close"), 0);
    EXPECT_TRUE(top_.isVisible());
}

TEST_F(QtHostingLife, EverythingOfTheHostsMayGoBeforeThePlatform) {
    const qt::Platform platform;
    auto view = pad();
    {
        QWidget other;
        (new QVBoxLayout(&other))->addWidget(embed(view));
        auto* const button = new QPushButton;
        other.layout()->addWidget(button);
        viewOf(button);
        other.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&other));
        settle();
        EXPECT_TRUE(view->window());
    }
    EXPECT_FALSE(view->window());
    EXPECT_TRUE(NSApplication::sharedApplication().windows().empty());
}

TEST_F(QtHostingLife, WhatWasEmbeddedBeforeThePlatformComesToLifeWhenItIsShown) {
    const auto view = pad();
    QWidget* const slot = embed(view);
    top_.layout()->addWidget(slot);
    auto* const button = new QPushButton;
    top_.layout()->addWidget(button);
    const auto anchor = viewOf(button);
    EXPECT_FALSE(windowOf(&top_));
    EXPECT_FALSE(view->window());
    {
        const qt::Platform platform;
        showTop();
        EXPECT_TRUE(view->window());
        EXPECT_EQ(inWindow(view.get()), inWindow(slot));
        EXPECT_EQ(inWindow(anchor.get()), inWindow(button));
        EXPECT_GT(view->drawings, 0);
    }
    EXPECT_FALSE(view->window());
    EXPECT_FALSE(anchor->window());
    top_.hide();
    {
        const qt::Platform next;
        view->drawings = 0;
        showTop();
        EXPECT_TRUE(view->window());
        EXPECT_GT(view->drawings, 0);
        EXPECT_EQ(viewOf(button), anchor);
        EXPECT_EQ(anchor->window(), windowOf(&top_));
    }
}

TEST_F(QtHostingLife, AViewThatLeavesItsWindowMayDeleteTheWidgets) {
    class Deleter : public NSView {
    public:
        void viewDidMoveToWindow() override {
            if (!window() && onLeaving) std::exchange(onLeaving, nullptr)();
        }
        std::function<void()> onLeaving;
    };
    const qt::Platform platform;
    const auto view = make<Deleter>(NSMakeRect(0, 0, 10, 10));
    QPointer<QWidget> slot = embed(view);
    top_.layout()->addWidget(slot);
    showTop();
    view->onLeaving = [slot] { slot->deleteLater(); };
    slot->setParent(nullptr);
    settle();
    EXPECT_FALSE(slot);
    EXPECT_FALSE(view->window());
}

} // namespace zr
