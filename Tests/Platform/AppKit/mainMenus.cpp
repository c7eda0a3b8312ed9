// SPDX-License-Identifier: MIT
#include <AppKit/NSApplication.h>
#include <AppKit/NSMenu.h>
#include <AppKit/NSView.h>
#include <AppKit/NSWindow.h>
#include <ZRUIKitHeadless/Headless.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace zr {

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class Typist : public NSView {
public:
    ZR_CLASS(Typist, NSView)
    bool acceptsFirstResponder() const override { return true; }
    void cut(NSObject*) { ++cuts; }
    int cuts = 0;
};

ZR_CLASS_TABLE(Typist, .actions = {actionNamed<&Typist::cut>("cut:")})

} // namespace

// A window system that has one menu bar for all windows.
class MainMenus : public testing::Test {
protected:
    void SetUp() override {
        edit_->addItemWithTitle_action_keyEquivalent("Cut", "cut:", "x");
        menu_->addItemWithTitle_action_keyEquivalent("Edit", "", "")->setSubmenu(edit_);
        application().setMainMenu(menu_);
    }
    static NSApplication& application() { return NSApplication::sharedApplication(); }
    static std::shared_ptr<NSWindow> window(const std::shared_ptr<Typist>& typist) {
        auto window = make<NSWindow>(
            &NSWindow::initWithContentRect_styleMask_backing_defer, NSMakeRect(100, 100, 300, 200),
            NSWindowStyleMaskTitled | NSWindowStyleMaskMiniaturizable, NSBackingStoreBuffered, false);
        window->setContentView(typist);
        window->makeFirstResponder(typist.get());
        return window;
    }

    headless::Platform platform_{{.menusInWindows = false}};
    std::shared_ptr<NSMenu> menu_ = make<NSMenu>(), edit_ = make<NSMenu>();
    std::shared_ptr<Typist> first_ = make<Typist>(NSZeroRect), second_ = make<Typist>(NSZeroRect);
};

TEST_F(MainMenus, StandBesideTheWindowsAndTakeNoRoomInThem) {
    const auto shown = window(first_);
    const double height = shown->frame().size.height;
    shown->makeKeyAndOrderFront(nullptr);
    EXPECT_EQ(shown->frame().size.height, height);
    EXPECT_EQ(height, 200 + 22) << "the title bar alone";
    EXPECT_THAT(platform_.windows().front()->menuItems(), IsEmpty());
    EXPECT_THAT(platform_.mainMenuItems(), ElementsAre("Edit >"));
    EXPECT_THAT(platform_.mainMenuItems({"Edit"}), ElementsAre("Cut [Command-x]"));
}

TEST_F(MainMenus, ActInTheKeyWindow) {
    const auto one = window(first_), other = window(second_);
    one->makeKeyAndOrderFront(nullptr);
    other->makeKeyAndOrderFront(nullptr);
    EXPECT_TRUE(platform_.clickMainMenuItem({"Edit", "Cut"}));
    EXPECT_EQ(second_->cuts, 1);
    one->makeKeyAndOrderFront(nullptr);
    EXPECT_TRUE(platform_.clickMainMenuItem({"Edit", "Cut"}));
    EXPECT_EQ(first_->cuts, 1);
    EXPECT_EQ(second_->cuts, 1);
}

TEST_F(MainMenus, DisableWhatNobodyTakes) {
    EXPECT_THAT(platform_.mainMenuItems({"Edit"}), ElementsAre("Cut [Command-x] (disabled)"))
        << "there is no window";
    EXPECT_FALSE(platform_.clickMainMenuItem({"Edit", "Cut"}));
}

TEST_F(MainMenus, AreReplacedAndTakenAway) {
    const auto help = make<NSMenu>();
    help->addItemWithTitle_action_keyEquivalent("Help", "", "")->setSubmenu(make<NSMenu>());
    application().setMainMenu(help);
    EXPECT_THAT(platform_.mainMenuItems(), ElementsAre("Help >"));
    application().setMainMenu(nullptr);
    EXPECT_THAT(platform_.mainMenuItems(), IsEmpty());
}

TEST_F(MainMenus, GetTheirKeysThroughTheWindowOnce) {
    const auto shown = window(first_);
    shown->makeKeyAndOrderFront(nullptr);
    platform_.windows().front()->keyDown(7, "x", NSEventModifierFlagCommand);
    EXPECT_EQ(first_->cuts, 1);
}

} // namespace zr
