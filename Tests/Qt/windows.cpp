// SPDX-License-Identifier: MIT
#include "QtTest.h"

#include <AppKit/NSScreen.h>

#include <QPointer>
#include <QScreen>

namespace zr {

namespace {

struct Keeper : NSWindowDelegate {
    std::optional<bool> windowShouldClose(NSWindow&) override {
        ++asked;
        return mayClose;
    }
    void windowWillClose(NSWindow&) override { ++closed; }
    void windowDidResize(NSWindow&) override { ++resized; }
    void windowDidMove(NSWindow&) override { ++moved; }
    bool mayClose = true;
    int asked = 0, closed = 0, resized = 0, moved = 0;
};

struct Quitter : NSApplicationDelegate {
    std::optional<bool> applicationShouldTerminateAfterLastWindowClosed(NSApplication&) override {
        return true;
    }
    void applicationWillTerminate(NSApplication&) override { ++terminated; }
    int terminated = 0;
};

} // namespace

class QtWindows : public test::QtTest {
protected:
    void SetUp() override { show(make<NSView>(NSMakeRect(0, 0, 200, 100)), {200, 100}); }
};

TEST_F(QtWindows, TitleAndSize) {
    EXPECT_EQ(topLevel()->size(), QSize(200, 100));
    EXPECT_TRUE(window_->isVisible());
    QWidget* const real = topLevel();
    window_->setTitle("Other title");
    EXPECT_EQ(real->windowTitle(), "Other title");
    window_->setTitle("window under test");
    window_->setContentSize({260, 140});
    settle();
    EXPECT_EQ(topLevel()->size(), QSize(260, 140));
    EXPECT_EQ(window_->contentView()->frame(), NSMakeRect(0, 0, 260, 140));
}

TEST_F(QtWindows, LimitsHoldForTheUser) {
    window_->setContentMinSize({150, 80});
    window_->setContentMaxSize({400, 300});
    topLevel()->resize(10, 10);
    settle();
    EXPECT_EQ(topLevel()->size(), QSize(150, 80));
    topLevel()->resize(1000, 1000);
    settle();
    EXPECT_EQ(window_->contentSize(), NSMakeSize(400, 300));
}

TEST_F(QtWindows, TheWindowKnowsTheSizeItReallyGot) {
    window_->setContentMinSize({150, 80});
    window_->setContentSize({50, 90.4});
    settle();
    EXPECT_EQ(window_->contentSize(), NSMakeSize(150, 90));
    EXPECT_EQ(topLevel()->size(), QSize(150, 90));
}

TEST_F(QtWindows, LimitsAloneResizeNothingAndProgramsAreNotHeldToThem) {
    const NSSize before = window_->contentSize();
    window_->setContentMinSize({500, 400});
    settle();
    EXPECT_EQ(window_->contentSize(), before);
    EXPECT_EQ(topLevel()->size(), QSize(int(before.width), int(before.height)));
    window_->setFrame_display_animate(window_->frameRectForContentRect(NSMakeRect(0, 0, 90, 80)), true, false);
    settle();
    EXPECT_EQ(topLevel()->size(), QSize(90, 80));
    window_->setContentSize({600, 450});
    settle();
    EXPECT_EQ(topLevel()->minimumSize(), QSize(500, 400)) << "the user is held to them";
}

TEST_F(QtWindows, TheWindowMayCloseInItsOwnResizing) {
    struct Closer : NSWindowDelegate {
        void windowDidResize(NSWindow& window) override { window.close(); }
    };
    const auto closer = std::make_shared<Closer>();
    window_->setDelegate(closer);
    window_->setContentSize({500, 400});
    settle();
    EXPECT_FALSE(window_->isVisible());
    EXPECT_FALSE(topLevel());
}

TEST_F(QtWindows, TheWindowMayGoWhileItIsAskedWhetherItMayClose) {
    struct Asker : NSWindowDelegate {
        std::optional<bool> windowShouldClose(NSWindow& window) override {
            window.close();
            settle();
            return true;
        }
    };
    const auto asker = std::make_shared<Asker>();
    window_->setDelegate(asker);
    topLevel()->close();
    settle();
    EXPECT_FALSE(window_->isVisible());
}

TEST_F(QtWindows, ClosingAsksTheDelegate) {
    const auto keeper = std::make_shared<Keeper>();
    window_->setDelegate(keeper);
    keeper->mayClose = false;
    topLevel()->close();
    EXPECT_EQ(keeper->asked, 1);
    EXPECT_EQ(keeper->closed, 0);
    EXPECT_TRUE(topLevel()->isVisible());
    keeper->mayClose = true;
    topLevel()->close();
    settle();
    EXPECT_EQ(keeper->asked, 2);
    EXPECT_EQ(keeper->closed, 1);
    EXPECT_FALSE(window_->isVisible());
    EXPECT_FALSE(topLevel());
}

TEST_F(QtWindows, ResizingAndMovingByTheUserIsReported) {
    const auto keeper = std::make_shared<Keeper>();
    window_->setDelegate(keeper);
    topLevel()->resize(300, 200);
    settle();
    EXPECT_EQ(keeper->resized, 1);
    topLevel()->move(77, 55);
    settle();
    EXPECT_GE(keeper->moved, 1);
    const NSRect onScreen = window_->convertRectToScreen(NSMakeRect(0, 0, 300, 200));
    const QPoint corner = topLevel()->mapToGlobal(QPoint(0, 0));
    EXPECT_EQ(onScreen.origin.x, corner.x());
    EXPECT_EQ(onScreen.origin.y, QGuiApplication::primaryScreen()->size().height() - corner.y() - 200);
    EXPECT_EQ(NSScreen::mainScreen().frame().size.width, QGuiApplication::primaryScreen()->size().width());
    EXPECT_EQ(window_->backingScaleFactor(), ratio());
}

TEST_F(QtWindows, TheFrameLetsTheUserDoWhatTheStyleSays) {
    const auto flags = [](unsigned style) {
        const auto window = make<NSWindow>(&NSWindow::initWithContentRect_styleMask_backing_defer,
                                           NSMakeRect(0, 0, 100, 50), style, NSBackingStoreBuffered, false);
        window->setTitle("styled");
        window->makeKeyAndOrderFront(nullptr);
        QWidget* found = nullptr;
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (widget->windowTitle() == "styled" && widget->isVisible()) found = widget;
        EXPECT_NE(found, nullptr);
        found->close();
        EXPECT_EQ(window->isVisible(), (style & NSWindowStyleMaskClosable) == 0);
        const auto result = found->windowFlags();
        window->close();
        settle();
        return result;
    };
    const auto bare = flags(NSWindowStyleMaskTitled);
    EXPECT_FALSE(bare & (Qt::WindowCloseButtonHint | Qt::WindowMinimizeButtonHint |
                         Qt::WindowMaximizeButtonHint | Qt::FramelessWindowHint));
    EXPECT_TRUE(bare & Qt::WindowTitleHint);
    EXPECT_TRUE(flags(NSWindowStyleMaskTitled | NSWindowStyleMaskClosable) & Qt::WindowCloseButtonHint);
    EXPECT_TRUE(flags(NSWindowStyleMaskTitled | NSWindowStyleMaskMiniaturizable) &
                Qt::WindowMinimizeButtonHint);
    EXPECT_TRUE(flags(NSWindowStyleMaskTitled | NSWindowStyleMaskResizable) & Qt::WindowMaximizeButtonHint);
    EXPECT_TRUE(flags(0) & Qt::FramelessWindowHint);
}

TEST_F(QtWindows, AMinimisedWindowComesBackWhenItIsToHaveTheKeyboard) {
    topLevel()->showMinimized();
    settle();
    ASSERT_TRUE(topLevel()->isMinimized());
    window_->makeKeyAndOrderFront(nullptr);
    settle();
    EXPECT_FALSE(topLevel()->isMinimized());
    EXPECT_TRUE(topLevel()->isVisible());
}

TEST_F(QtWindows, AWindowComesOntoTheScreenWhenItIsShown) {
    window_->orderOut(nullptr);
    const NSRect visible = NSScreen::mainScreen().visibleFrame();
    EXPECT_EQ(visible.size.width, QGuiApplication::primaryScreen()->availableSize().width());
    window_->setFrameTopLeftPoint({NSMaxX(visible) + 500, NSMinY(visible) - 500});
    window_->makeKeyAndOrderFront(nullptr);
    settle();
    EXPECT_EQ(NSMaxX(window_->frame()), NSMaxX(visible));
    EXPECT_EQ(NSMinY(window_->frame()), NSMinY(visible));
    EXPECT_TRUE(
        QGuiApplication::primaryScreen()->availableGeometry().contains(topLevel()->frameGeometry().topLeft()));
}

TEST_F(QtWindows, AWidgetDeletedBehindTheKitsBackClosesTheWindow) {
    const auto keeper = std::make_shared<Keeper>();
    window_->setDelegate(keeper);
    delete topLevel();
    EXPECT_EQ(keeper->asked, 0);
    EXPECT_EQ(keeper->closed, 1);
    EXPECT_FALSE(window_->isVisible());
}

TEST_F(QtWindows, TheEventLoopEndsWithTheLastWindowWhereTheDelegateWantsThat) {
    const auto quitter = std::make_shared<Quitter>();
    auto& application = NSApplication::sharedApplication();
    application.setDelegate(quitter);
    QMetaObject::invokeMethod(
        topLevel(), [] { topLevel()->close(); }, Qt::QueuedConnection);
    application.run();
    EXPECT_EQ(quitter->terminated, 1);
    EXPECT_TRUE(application.windows().empty());
}

TEST_F(QtWindows, TheApplicationHoldsAShownWindow) {
    const std::weak_ptr<NSWindow> watched = window_;
    window_.reset();
    EXPECT_FALSE(watched.expired());
    topLevel()->close();
    settle();
    EXPECT_TRUE(watched.expired());
}

TEST_F(QtWindows, AWindowOrderedOutCanComeBack) {
    window_->orderOut(nullptr);
    EXPECT_FALSE(window_->isVisible());
    EXPECT_FALSE(topLevel()->isVisible());
    window_->orderFront(nullptr);
    EXPECT_TRUE(topLevel()->isVisible());
}

} // namespace zr
