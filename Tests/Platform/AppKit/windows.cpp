// SPDX-License-Identifier: MIT
#include "WindowTest.h"

#include <AppKit/NSScreen.h>

#include <stdexcept>

namespace zr {

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

struct Recorder : NSWindowDelegate {
    std::optional<bool> windowShouldClose(NSWindow&) override {
        log.push_back("should close");
        return answer;
    }
    void windowWillClose(NSWindow&) override { log.push_back("will close"); }
    void windowDidResize(NSWindow& window) override {
        log.push_back(stringWithFormat("resized %g", window.contentSize().width));
    }
    void windowDidMove(NSWindow&) override { log.push_back("moved"); }
    void windowDidBecomeKey(NSWindow&) override { log.push_back("key"); }
    void windowDidResignKey(NSWindow&) override { log.push_back("not key"); }
    std::vector<std::string> taken() { return std::exchange(log, {}); }
    std::optional<bool> answer;
    std::vector<std::string> log;
};

struct Quitter : NSApplicationDelegate {
    std::optional<bool> applicationShouldTerminateAfterLastWindowClosed(NSApplication&) override {
        return answer;
    }
    void applicationWillTerminate(NSApplication&) override { ++terminated; }
    std::optional<bool> answer = true;
    int terminated = 0;
};

} // namespace

class Windows : public test::WindowTest {
protected:
    std::shared_ptr<Recorder> recorder_ = std::make_shared<Recorder>();
};

TEST_F(Windows, ANewWindowIsNotShownAndHasAnEmptyContent) {
    const auto window = makeWindow(nullptr);
    EXPECT_FALSE(window->isVisible());
    EXPECT_FALSE(window->isKeyWindow());
    ASSERT_TRUE(window->contentView());
    EXPECT_EQ(window->contentView()->frame(), NSMakeRect(0, 0, 200, 100));
    EXPECT_EQ(window->firstResponder(), window.get());
    EXPECT_EQ(window->title(), "");
    EXPECT_TRUE(platform_.windows().empty());
}

TEST_F(Windows, ShowingRealisesAndClosingUnrealises) {
    const auto content = probe("content", {{0, 0}, {1, 1}});
    show(content);
    EXPECT_TRUE(window_->isVisible());
    EXPECT_TRUE(window_->isKeyWindow());
    EXPECT_EQ(content->frame(), NSMakeRect(0, 0, 200, 100));
    EXPECT_THAT(NSApplication::sharedApplication().windows(), ElementsAre(window_));
    EXPECT_EQ(NSApplication::sharedApplication().keyWindow(), window_.get());
    window_->setTitle("Title");
    EXPECT_EQ(user_->title(), "Title");
    window_->close();
    EXPECT_FALSE(window_->isVisible());
    EXPECT_THAT(NSApplication::sharedApplication().windows(), IsEmpty());
    EXPECT_TRUE(platform_.windows().empty());
    EXPECT_EQ(content->window(), window_.get()); // a view without a real one
    window_->makeKeyAndOrderFront(nullptr);
    platform_.display();
    EXPECT_EQ(platform_.windows().size(), 1u);
    EXPECT_EQ(content->draws, 2);
}

TEST_F(Windows, TheUserClosesWhereTheDelegateLetsHim) {
    show(nullptr);
    window_->setDelegate(recorder_);
    recorder_->answer = false;
    EXPECT_FALSE(user_->closeByUser());
    EXPECT_THAT(recorder_->taken(), ElementsAre("should close"));
    recorder_->answer = std::nullopt; // does not say: it may
    EXPECT_TRUE(user_->closeByUser());
    EXPECT_THAT(recorder_->taken(), ElementsAre("should close", "will close", "not key"));
}

TEST_F(Windows, CloseDoesNotAskAndPerformCloseDoes) {
    show(nullptr);
    window_->setDelegate(recorder_);
    recorder_->answer = false;
    window_->performClose(nullptr);
    EXPECT_TRUE(window_->isVisible());
    recorder_->taken();
    window_->close();
    EXPECT_THAT(recorder_->taken(), ElementsAre("will close", "not key"));
    window_->close(); // is closed
    EXPECT_THAT(recorder_->taken(), IsEmpty());
}

TEST_F(Windows, AVanishedRealWindowCountsAsClosed) {
    show(nullptr);
    window_->setDelegate(recorder_);
    user_->destroy();
    EXPECT_FALSE(window_->isVisible());
    EXPECT_THAT(recorder_->taken(), ElementsAre("will close", "not key"));
}

TEST_F(Windows, ResizingByTheUserHoldsTheLimits) {
    show(nullptr);
    window_->setDelegate(recorder_);
    window_->setContentMinSize({150, 80});
    window_->setContentMaxSize({400, 300});
    user_->resizeByUser({10, 10});
    EXPECT_EQ(window_->contentSize(), NSMakeSize(150, 80));
    user_->resizeByUser({1000, 1000});
    EXPECT_EQ(window_->contentView()->frame(), NSMakeRect(0, 0, 400, 300));
    EXPECT_THAT(recorder_->taken(), ElementsAre("resized 150", "resized 400"));
    window_->setContentSize({222, 111});
    EXPECT_EQ(user_->contentSize(), NSMakeSize(222, 111));
    EXPECT_THAT(recorder_->taken(), ElementsAre("resized 222"));
}

TEST_F(Windows, TheProgramsSizesHoldTheLimitsToo) {
    const auto window = makeWindow(nullptr);
    window->setContentMinSize({150, 80});
    window->setContentSize({50, 200});
    EXPECT_EQ(window->contentSize(), NSMakeSize(150, 200));
}

TEST_F(Windows, ADelegateMayCloseTheWindowThatIsClosing) {
    struct Closer : NSWindowDelegate {
        void windowWillClose(NSWindow& window) override {
            ++closed;
            window.close();
        }
        int closed = 0;
    };
    const auto closer = std::make_shared<Closer>();
    show(nullptr);
    window_->setDelegate(closer);
    window_->close();
    EXPECT_EQ(closer->closed, 1);
    EXPECT_FALSE(window_->isVisible());
}

TEST_F(Windows, TerminatedBeforeItRunsTheApplicationDoesNotRun) {
    auto& application = NSApplication::sharedApplication();
    application.terminate(nullptr);
    application.run();
}

TEST_F(Windows, OneWindowIsKey) {
    show(nullptr);
    window_->setDelegate(recorder_);
    const auto other = makeWindow(nullptr);
    other->makeKeyAndOrderFront(nullptr);
    EXPECT_FALSE(window_->isKeyWindow());
    EXPECT_TRUE(other->isKeyWindow());
    EXPECT_THAT(recorder_->taken(), ElementsAre("not key"));
    const auto third = makeWindow(nullptr);
    third->orderFront(nullptr);
    EXPECT_TRUE(other->isKeyWindow());
}

TEST_F(Windows, AWindowOrderedOutIsHeldAndComesBack) {
    show(nullptr);
    window_->orderOut(nullptr);
    EXPECT_FALSE(window_->isVisible());
    EXPECT_EQ(NSApplication::sharedApplication().windows().size(), 1u);
    window_->orderFront(nullptr);
    EXPECT_TRUE(window_->isVisible());
}

TEST_F(Windows, AWindowThatIsNotClosableIsNotClosedByTheUser) {
    const auto window =
        make<NSWindow>(&NSWindow::initWithContentRect_styleMask_backing_defer, NSMakeRect(0, 0, 100, 50),
                       unsigned{NSWindowStyleMaskTitled}, NSBackingStoreBuffered, false);
    window->makeKeyAndOrderFront(nullptr);
    window->setDelegate(recorder_);
    EXPECT_FALSE(platform_.windows().back()->closeByUser());
    window->performClose(nullptr);
    EXPECT_TRUE(window->isVisible());
    EXPECT_THAT(recorder_->taken(), IsEmpty());
    window->close();
    EXPECT_FALSE(window->isVisible());
}

TEST_F(Windows, AWindowComesOntoTheScreenWhenItIsShown) {
    // The screen is 1280 x 800 points.
    const auto shownAt = [](const NSRect& frame, unsigned style = NSWindowStyleMaskTitled) {
        const auto window = make<NSWindow>(&NSWindow::initWithContentRect_styleMask_backing_defer, NSZeroRect,
                                           style, NSBackingStoreBuffered, false);
        window->setFrame_display_animate(frame, false, false);
        window->orderFront(nullptr);
        const NSRect shown = window->frame();
        window->close();
        EXPECT_EQ(shown.size.width, frame.size.width);
        return NSPoint{shown.origin.x, NSMaxY(shown)};
    };
    for (const NSPoint topLeft : {NSPoint{0, 800}, {-340, 800}, {1220, 22}, {500, 400}})
        EXPECT_EQ(shownAt({{topLeft.x, topLeft.y - 300}, {400, 300}}), topLeft)
            << topLeft.x << " " << topLeft.y;
    EXPECT_EQ(shownAt({{200, 900}, {400, 300}}), (NSPoint{200, 800}));
    EXPECT_EQ(shownAt({{200, -300}, {400, 300}}), (NSPoint{200, 300}));
    EXPECT_EQ(shownAt({{200, -279}, {400, 300}}), (NSPoint{200, 300}));
    EXPECT_EQ(shownAt({{-341, 100}, {400, 300}}), (NSPoint{0, 400}));
    EXPECT_EQ(shownAt({{1221, 100}, {400, 300}}), (NSPoint{880, 400}));
    EXPECT_EQ(shownAt({{3000, 3000}, {1400, 900}}), (NSPoint{0, 800})) << "larger than the screen";
    EXPECT_EQ(shownAt({{3000, 3000}, {400, 300}}, 0), (NSPoint{3000, 3300})) << "without a title bar";
}

TEST_F(Windows, TheApplicationHoldsAShownWindowUntilItCloses) {
    show(nullptr);
    const std::weak_ptr<NSWindow> watched = window_;
    window_.reset();
    EXPECT_FALSE(watched.expired());
    user_->closeByUser();
    EXPECT_TRUE(watched.expired());
}

TEST_F(Windows, ScreenCoordinatesRunUpFromTheLowerLeft) {
    show(nullptr);
    window_->setDelegate(recorder_);
    user_->moveByUser({300, 50});
    EXPECT_THAT(recorder_->taken(), ElementsAre("moved"));
    EXPECT_EQ(NSScreen::mainScreen().frame(), NSMakeRect(0, 0, 1280, 800));
    EXPECT_EQ(NSScreen::mainScreen().visibleFrame(), NSMakeRect(0, 0, 1280, 800));
    EXPECT_EQ(NSScreen::screens().size(), 1u);
    EXPECT_EQ(window_->convertRectToScreen(NSMakeRect(10, 20, 5, 6)), NSMakeRect(310, 800 - 150 + 20, 5, 6));
    EXPECT_EQ(window_->backingScaleFactor(), 1.0);
}

TEST_F(Windows, ReplacingTheContentResetsTheFirstResponder) {
    const auto content = probe("content", {{0, 0}, {1, 1}});
    show(content);
    window_->makeFirstResponder(content.get());
    const auto next = probe("next", {{0, 0}, {1, 1}});
    window_->setContentView(next);
    EXPECT_EQ(window_->firstResponder(), window_.get());
    EXPECT_EQ(content->window(), nullptr);
    EXPECT_EQ(content->nextResponder(), nullptr);
    EXPECT_EQ(next->nextResponder(), window_.get());
    platform_.display();
    EXPECT_EQ(next->draws, 1);
    EXPECT_THAT(user_->viewNames(), ElementsAre("next"));
}

TEST_F(Windows, TheLoopEndsWithTheLastWindowWhereTheDelegateWantsThat) {
    const auto quitter = std::make_shared<Quitter>();
    auto& application = NSApplication::sharedApplication();
    application.setDelegate(quitter);
    show(nullptr);
    const auto other = makeWindow(nullptr);
    other->makeKeyAndOrderFront(nullptr);
    other->close();
    EXPECT_EQ(quitter->terminated, 0);
    quitter->answer = false;
    window_->close();
    EXPECT_EQ(quitter->terminated, 0);
    quitter->answer = true;
    window_->makeKeyAndOrderFront(nullptr);
    window_->close();
    EXPECT_EQ(quitter->terminated, 1);
}

TEST_F(Windows, RunningEndsByItselfWhenNothingIsLeftToDo) {
    NSApplication::sharedApplication().run();
    NSApplication::sharedApplication().terminate(nullptr);
}

TEST(WithoutAPlatform, TheApplicationIsAnErrorAndWindowsAreJustObjects) {
    EXPECT_THROW(NSApplication::sharedApplication(), std::logic_error);
    const auto window = make<NSWindow>(&NSWindow::initWithContentRect_styleMask_backing_defer,
                                       NSMakeRect(0, 0, 10, 10), 1u, NSBackingStoreBuffered, false);
    window->makeKeyAndOrderFront(nullptr);
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(NSScreen::mainScreen().frame(), NSZeroRect);
    EXPECT_THAT(NSScreen::screens(), IsEmpty());
}

TEST(WithoutAPlatform, EveryPlatformHasItsOwnApplication) {
    std::weak_ptr<NSObject> first;
    {
        const headless::Platform platform;
        first = retained(&NSApplication::sharedApplication());
        EXPECT_THROW(headless::Platform(), std::logic_error);
    }
    EXPECT_TRUE(first.expired());
    const headless::Platform platform;
    EXPECT_TRUE(NSApplication::sharedApplication().windows().empty());
}

} // namespace zr
