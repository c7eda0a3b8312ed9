// SPDX-License-Identifier: MIT
#include "WindowTest.h"

#include <AppKit/NSApplication.h>
#include <AppKit/NSMenu.h>
#include <AppKit/NSTextField.h>
#include <AppKit/NSToolbar.h>

namespace zr {

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class Editor : public NSView {
public:
    ZR_CLASS(Editor, NSView)
    void cut(NSObject* sender) { log.push_back("cut by " + dynamic_cast<NSMenuItem&>(*sender).title()); }
    bool acceptsFirstResponder() const override { return true; }
    std::vector<std::string> log;
};

ZR_CLASS_TABLE(Editor, .actions = {actionNamed<&Editor::cut>("cut:")})

constexpr unsigned kDocument = NSWindowStyleMaskTitled | NSWindowStyleMaskClosable |
                               NSWindowStyleMaskMiniaturizable | NSWindowStyleMaskResizable;
constexpr double kMenuBar = 24; // of Headless

} // namespace

class MenuBars : public testing::Test {
protected:
    void SetUp() override {
        edit_ = make<NSMenu>(&NSMenu::initWithTitle, std::string("Edit"));
        menu_->addItemWithTitle_action_keyEquivalent("Edit", "", "")->setSubmenu(edit_);
        cut_ = edit_->addItemWithTitle_action_keyEquivalent("Cut", "cut:", "x");
        edit_->addItem(NSMenuItem::separatorItem());
        const auto more = make<NSMenu>();
        edit_->addItemWithTitle_action_keyEquivalent("More", "", "")->setSubmenu(more);
        more->addItemWithTitle_action_keyEquivalent("Nobody's", "nobodyTakesThis:", "");
        more->addItemWithTitle_action_keyEquivalent("Cut Out", "cut:", "c")
            ->setKeyEquivalentModifierMask(NSEventModifierFlagShift | NSEventModifierFlagCommand);
        application().setMainMenu(menu_);
    }
    static NSApplication& application() { return NSApplication::sharedApplication(); }
    static std::shared_ptr<NSWindow> window(unsigned mask = kDocument) {
        return make<NSWindow>(&NSWindow::initWithContentRect_styleMask_backing_defer,
                              NSMakeRect(100, 100, 300, 200), mask, NSBackingStoreBuffered, false);
    }
    // A window with an editor that has the keyboard.
    std::pair<std::shared_ptr<NSWindow>, std::shared_ptr<Editor>> document() {
        auto shown = window();
        auto editor = make<Editor>(NSZeroRect);
        shown->setContentView(editor);
        shown->makeFirstResponder(editor.get());
        shown->makeKeyAndOrderFront(nullptr);
        return {shown, editor};
    }
    headless::Window& user(std::size_t index = 0) const { return *platform_.windows().at(index); }

    headless::Platform platform_;
    std::shared_ptr<NSMenu> menu_ = make<NSMenu>(), edit_;
    std::shared_ptr<NSMenuItem> cut_;
};

TEST_F(MenuBars, ShowTheMenusAsTheyAreWhenTheyOpen) {
    const auto [window, editor] = document();
    EXPECT_THAT(user().menuItems(), ElementsAre("Edit >"));
    EXPECT_THAT(user().menuItems({"Edit"}), ElementsAre("Cut [Command-x]", "<separator>", "More >"));
    EXPECT_THAT(user().menuItems({"Edit", "More"}),
                ElementsAre("Nobody's (disabled)", "Cut Out [Shift-Command-c]"));
    cut_->setTitle("Cut Away");
    cut_->setEnabled(false);
    edit_->addItemWithTitle_action_keyEquivalent("Paste", "paste:", "");
    EXPECT_THAT(user().menuItems({"Edit"}),
                ElementsAre("Cut Away [Command-x] (disabled)", "<separator>", "More >", "Paste (disabled)"));
    window->makeFirstResponder(nullptr);
    EXPECT_THAT(user().menuItems({"Edit", "More"}),
                ElementsAre("Nobody's (disabled)", "Cut Out [Shift-Command-c] (disabled)"))
        << "nobody takes it now";
}

TEST_F(MenuBars, AnItemThatIsChosenSendsItsActionOnce) {
    const auto [window, editor] = document();
    EXPECT_TRUE(user().clickMenuItem({"Edit", "Cut"}));
    EXPECT_TRUE(user().clickMenuItem({"Edit", "More", "Cut Out"}));
    EXPECT_THAT(editor->log, ElementsAre("cut by Cut", "cut by Cut Out"));
    EXPECT_FALSE(user().clickMenuItem({"Edit", "More", "Nobody's"}));
    EXPECT_FALSE(user().clickMenuItem({"Edit", "More"}));
    EXPECT_FALSE(user().clickMenuItem({"Edit", ""}));
    cut_->setEnabled(false);
    EXPECT_FALSE(user().clickMenuItem({"Edit", "Cut"}));
    EXPECT_EQ(editor->log.size(), 2u);
}

TEST_F(MenuBars, SendToTheWindowThatTheyStandIn) {
    const auto [first, editor] = document();
    const auto [second, other] = document();
    ASSERT_TRUE(second->isKeyWindow());
    EXPECT_TRUE(user(0).clickMenuItem({"Edit", "Cut"}));
    EXPECT_THAT(editor->log, ElementsAre("cut by Cut"));
    EXPECT_THAT(other->log, IsEmpty());
}

TEST_F(MenuBars, AnItemWithATargetIsItsAffair) {
    const auto [window, editor] = document();
    const auto target = make<Editor>(NSZeroRect);
    cut_->setTarget(target);
    window->makeFirstResponder(nullptr);
    EXPECT_TRUE(user().clickMenuItem({"Edit", "Cut"}));
    EXPECT_THAT(target->log, ElementsAre("cut by Cut"));
    cut_->setTarget(make<NSView>(NSZeroRect));
    EXPECT_FALSE(user().clickMenuItem({"Edit", "Cut"}));
}

TEST_F(MenuBars, StandInTitledWindowsThatCanBeMinimised) {
    const auto hasBar = [&](unsigned mask, bool auxiliary) {
        const auto each = window(mask);
        each->setAuxiliary(auxiliary);
        each->orderFront(nullptr);
        const bool has = !platform_.windows().back()->menuItems().empty();
        each->close();
        return has;
    };
    EXPECT_TRUE(hasBar(kDocument, false));
    EXPECT_TRUE(hasBar(NSWindowStyleMaskTitled | NSWindowStyleMaskMiniaturizable, false));
    EXPECT_FALSE(hasBar(kDocument, true));
    EXPECT_FALSE(hasBar(NSWindowStyleMaskTitled | NSWindowStyleMaskClosable, false));
    EXPECT_FALSE(hasBar(NSWindowStyleMaskMiniaturizable, false));
}

TEST_F(MenuBars, NoneStandsInASheetOrAModalWindow) {
    const auto [parent, editor] = document();
    const auto over = window();
    over->orderFront(nullptr);
    EXPECT_THAT(user(1).menuItems(), ElementsAre("Edit >"));
    application().beginSheet_modalForWindow_modalDelegate_didEndSelector_contextInfo(*over, parent.get(),
                                                                                     nullptr, {}, nullptr);
    EXPECT_THAT(user(1).menuItems(), IsEmpty());
    application().setMainMenu(menu_);
    EXPECT_THAT(user(1).menuItems(), IsEmpty());
    application().endSheet(*over);
    over->close();

    const auto modal = window();
    platform_.script([&] {
        EXPECT_THAT(user(1).menuItems(), IsEmpty());
        application().setMainMenu(menu_);
        EXPECT_THAT(user(1).menuItems(), IsEmpty());
        application().stopModal();
    });
    application().runModalForWindow(*modal);
    modal->makeKeyAndOrderFront(nullptr);
    EXPECT_THAT(user(1).menuItems(), ElementsAre("Edit >")) << "it is a window like others again";
}

TEST_F(MenuBars, CountInTheFrameAndLeaveTheContentItsSize) {
    const auto shown = window();
    const NSRect before = shown->frame();
    EXPECT_EQ(before.size.height, 200 + 22 + kMenuBar);
    EXPECT_EQ(shown->frameRectForContentRect(NSMakeRect(0, 0, 50, 60)).size.height, 60 + 22 + kMenuBar);
    shown->makeKeyAndOrderFront(nullptr);
    EXPECT_EQ(shown->frame().size, before.size);
    EXPECT_EQ(shown->contentSize(), NSMakeSize(300, 200));
    shown->setFrame_display_animate(NSMakeRect(10, 20, 400, 300), true, false);
    EXPECT_EQ(shown->contentSize(), NSMakeSize(400, 300 - 22 - kMenuBar));
    EXPECT_EQ(shown->frame(), NSMakeRect(10, 20, 400, 300));

    application().setMainMenu(nullptr);
    EXPECT_THAT(user().menuItems(), IsEmpty());
    EXPECT_EQ(shown->contentSize(), NSMakeSize(400, 300 - 22 - kMenuBar));
    EXPECT_EQ(shown->frame().size.height, 300 - kMenuBar);
    application().setMainMenu(menu_);
    EXPECT_EQ(shown->frame().size.height, 300);
}

TEST_F(MenuBars, AreBlockedByASheetAndByAModalSession) {
    const auto [parent, editor] = document();
    const auto [second, other] = document();
    const auto target = make<Editor>(NSZeroRect);
    cut_->setTarget(target);
    const auto over = window(NSWindowStyleMaskTitled);
    application().beginSheet_modalForWindow_modalDelegate_didEndSelector_contextInfo(*over, parent.get(),
                                                                                     nullptr, {}, nullptr);
    EXPECT_FALSE(user(0).clickMenuItem({"Edit", "Cut"}));
    EXPECT_TRUE(user(1).clickMenuItem({"Edit", "Cut"})) << "a sheet blocks its window alone";
    application().endSheet(*over);
    over->close();

    const auto modal = window(NSWindowStyleMaskTitled);
    platform_.script([&] {
        EXPECT_THAT(user(0).menuItems({"Edit"}),
                    ElementsAre("Cut [Command-x] (disabled)", "<separator>", "More >"));
        EXPECT_FALSE(user(0).clickMenuItem({"Edit", "Cut"}));
        application().stopModal();
    });
    application().runModalForWindow(*modal);
    EXPECT_THAT(target->log, ElementsAre("cut by Cut"));
}

TEST_F(MenuBars, AKeyWithoutCommandActsWhenNobodyElseWantsIt) {
    const auto key = [&](unsigned mask, const std::string& character) {
        edit_->addItemWithTitle_action_keyEquivalent("Item", "cut:", character)
            ->setKeyEquivalentModifierMask(mask);
    };
    key(0, "b");
    key(NSEventModifierFlagOption, "a");
    key(NSEventModifierFlagControl, "d");
    const auto [window, editor] = document();
    user().keyDown(kKeyCodeUnknown, "b");
    EXPECT_THAT(editor->log, ElementsAre("cut by Item"));
    user().keyDown(kKeyCodeUnknown, "a", NSEventModifierFlagOption);
    user().keyDown(kKeyCodeUnknown, "d", NSEventModifierFlagControl);
    EXPECT_EQ(editor->log.size(), 3u);
    user().keyDown(kKeyCodeUnknown, "b", NSEventModifierFlagOption);
    EXPECT_EQ(editor->log.size(), 3u);

    const auto field = make<NSTextField>(NSMakeRect(0, 0, 100, 24));
    field->setIdentifier("field");
    editor->addSubview(field);
    window->makeFirstResponder(field.get());
    user().type("b");
    EXPECT_EQ(editor->log.size(), 3u);
    EXPECT_EQ(user().labelText("field"), "b");

    window->makeFirstResponder(editor.get());
    platform_.script([&] {
        user().keyDown(kKeyCodeUnknown, "b");
        application().stopModal();
    });
    application().runModalForWindow(*MenuBars::window(NSWindowStyleMaskTitled));
    EXPECT_EQ(editor->log.size(), 3u) << "none acts in a modal session";
}

TEST_F(MenuBars, AnItemMayCloseItsWindow) {
    edit_->addItemWithTitle_action_keyEquivalent("Close", "performClose:", "w");
    document();
    EXPECT_TRUE(user().clickMenuItem({"Edit", "Close"}));
    EXPECT_THAT(platform_.windows(), IsEmpty());
}

TEST_F(MenuBars, AnAuxiliaryWindowDoesNotKeepTheApplication) {
    class Quits : public NSApplicationDelegate {
    public:
        std::optional<bool> applicationShouldTerminateAfterLastWindowClosed(NSApplication&) override {
            return true;
        }
        void applicationWillTerminate(NSApplication&) override { ended = true; }
        bool ended = false;
    };
    const auto quits = std::make_shared<Quits>();
    application().setDelegate(quits);
    const auto [main, editor] = document();
    const auto beside = window();
    beside->setAuxiliary(true);
    beside->makeKeyAndOrderFront(nullptr);
    beside->close();
    EXPECT_FALSE(quits->ended);
    beside->makeKeyAndOrderFront(nullptr);
    main->close();
    EXPECT_TRUE(quits->ended);
}

} // namespace zr
