// SPDX-License-Identifier: MIT
// Mistakes of a program: each is one line, or an exception that says what is wrong, and does no harm.
#include "Support/LoggedTexts.h"
#include "Support/WhatIsThrown.h"
#include "WindowTest.h"

#include <AppKit/NSAlert.h>
#include <AppKit/NSButton.h>
#include <AppKit/NSMenu.h>
#include <AppKit/NSOpenPanel.h>
#include <AppKit/NSTableView.h>
#include <AppKit/NSTextField.h>
#include <AppKit/NSToolbar.h>
#include <AppKit/NSWindowController.h>
#include <Foundation/Dispatch.h>

#include <optional>
#include <stdexcept>

namespace zr {

using test::logged;
using test::whatIsThrown;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

std::string withoutAPlatform(const std::string& method) {
    return method + " does nothing: there is no platform (zr::qt::Platform, zr::qt::Application or "
                    "zr::headless::Platform)";
}

class Saver : public NSView {
public:
    ZR_CLASS(Saver, NSView)
    void save(NSObject*) { ++saved; }
    int saved = 0;
};

ZR_CLASS_TABLE(Saver, .actions = {actionNamed<&Saver::save>("save:")})

} // namespace

// Without a platform

TEST(MisuseWithoutAPlatform, AWindowIsNotShown) {
    const auto window = make<NSWindow>();
    EXPECT_THAT(logged([&] { window->makeKeyAndOrderFront(nullptr); }),
                ElementsAre(withoutAPlatform("-[NSWindow makeKeyAndOrderFront:]")));
    EXPECT_THAT(logged([&] { window->orderFront(nullptr); }),
                ElementsAre(withoutAPlatform("-[NSWindow orderFront:]")));
    EXPECT_FALSE(window->isVisible());
}

TEST(MisuseWithoutAPlatform, AnAlertThrowsThatThereIsNoApplication) {
    EXPECT_THAT(whatIsThrown([] { make<NSAlert>()->runModal(); }), HasSubstr("without a platform: make a "));
    EXPECT_THAT(whatIsThrown([] { NSApplication::sharedApplication().run(); }),
                HasSubstr("without a platform: make a "));
}

TEST(MisuseWithoutAPlatform, AnOpenPanelIsCancelledAndAsASheetNeverAnswers) {
    int response = -1;
    EXPECT_THAT(logged([&] { response = NSOpenPanel::openPanel()->runModal(); }),
                ElementsAre(withoutAPlatform("-[NSOpenPanel runModal]")));
    EXPECT_EQ(response, NSModalResponseCancel);
    EXPECT_THAT(logged([&] {
                    NSOpenPanel::openPanel()->beginSheetModalForWindow_completionHandler(
                        nullptr, [&](int answer) { response = answer + 100; });
                }),
                ElementsAre(withoutAPlatform("-[NSOpenPanel beginSheetModalForWindow:completionHandler:]")));
    EXPECT_EQ(response, NSModalResponseCancel);
}

TEST(MisuseWithoutAPlatform, AnApplicationThatIsKeptDoesNothing) {
    std::shared_ptr<NSApplication> kept;
    {
        const headless::Platform platform({.appearance = Appearance::dark});
        kept = retained(&NSApplication::sharedApplication());
        EXPECT_EQ(kept->effectiveAppearance(), Appearance::dark);
    }
    const auto window = make<NSWindow>();
    EXPECT_THAT(logged([&] { kept->run(); }), ElementsAre(withoutAPlatform("-[NSApplication run]")));
    EXPECT_THAT(logged([&] { kept->setAppearance(Appearance::dark); }),
                ElementsAre(withoutAPlatform("-[NSApplication setAppearance:]")));
    EXPECT_THAT(logged([&] { EXPECT_EQ(kept->effectiveAppearance(), Appearance::light); }),
                ElementsAre(withoutAPlatform("-[NSApplication effectiveAppearance]")));
    EXPECT_THAT(logged([&] { kept->setMainMenu(make<NSMenu>()); }),
                ElementsAre(withoutAPlatform("-[NSApplication setMainMenu:]")));
    EXPECT_EQ(kept->mainMenu(), nullptr);
    EXPECT_THAT(logged([&] { EXPECT_EQ(kept->runModalForWindow(*window), NSModalResponseAbort); }),
                ElementsAre(withoutAPlatform("-[NSApplication runModalForWindow:]")));
    EXPECT_THAT(logged([&] {
                    kept->beginSheet_modalForWindow_modalDelegate_didEndSelector_contextInfo(
                        *window, nullptr, nullptr, {}, nullptr);
                }),
                ElementsAre(withoutAPlatform("-[NSApplication beginSheet:modalForWindow:…]")));
    EXPECT_THAT(logged([&] { kept->terminate(nullptr); }), IsEmpty()) << "it has ended";
    EXPECT_FALSE(window->isVisible());
}

TEST(MisuseWithoutAPlatform, AKeyThatNoViewTakesIsNotTaken) {
    InputEvent event;
    event.type = NSEventTypeKeyDown;
    event.characters = event.charactersIgnoringModifiers = "a";
    const auto window = make<NSWindow>();
    EXPECT_THAT(logged([&] { window->sendEvent(NSEvent(event)); }), IsEmpty());
    event.modifierFlags = NSEventModifierFlagCommand;
    EXPECT_THAT(logged([&] { window->sendEvent(NSEvent(event)); }), IsEmpty());
}

TEST(MisuseOfPlatforms, ASecondOneIsRefusedAndTheFirstGoesOn) {
    headless::Platform first;
    EXPECT_EQ(whatIsThrown([] { const headless::Platform second; }),
              "there is a platform already: the one before must go first");
    bool ran = false;
    dispatch_async(dispatch_get_main_queue(), [&] { ran = true; });
    first.runMainQueue();
    EXPECT_TRUE(ran);
}

// Actions

class MisuseOfActions : public test::WindowTest {
protected:
    void SetUp() override {
        show(probe("root", NSMakeRect(0, 0, 200, 100)));
        window_->contentView()->addSubview(button_);
    }
    std::vector<std::string> click() {
        return logged([&] { button_->performClick(nullptr); });
    }
    std::shared_ptr<NSButton> button_ = NSButton::buttonWithTitle_target_action("Save", nullptr, "save:");
};

TEST_F(MisuseOfActions, ThatNobodyTakesAreNamedWithTheReason) {
    EXPECT_THAT(click(),
                ElementsAre("Nobody takes save: of NSButton: nobody along the responder chain has it"));
    auto target = make<NSView>();
    button_->setTarget(target);
    EXPECT_THAT(click(), ElementsAre("Nobody takes save: of NSButton: its target, NSView, does not have it"));
    target.reset();
    EXPECT_THAT(click(), ElementsAre("Nobody takes save: of NSButton: its target is gone"));
}

TEST_F(MisuseOfActions, ThatSomebodyTakesAreNotNamed) {
    const auto saver = make<Saver>();
    button_->setTarget(saver);
    EXPECT_THAT(click(), IsEmpty());
    EXPECT_EQ(saver->saved, 1);
    button_->setAction("");
    EXPECT_THAT(click(), IsEmpty()) << "there is none to send";
}

TEST_F(MisuseOfActions, OfAMenuItemAreLookedAtWhenItGetsItsTarget) {
    const auto menu = make<NSMenu>();
    const auto item = menu->addItemWithTitle_action_keyEquivalent("Save", "save:", "s");
    const auto saver = make<Saver>(), view = make<Saver>();
    EXPECT_THAT(logged([&] { item->setTarget(saver); }), IsEmpty());
    EXPECT_THAT(
        logged([&] { item->setTarget(window_); }),
        ElementsAre("-[NSMenuItem setTarget:]: nobody takes save: of \"Save\": NSWindow does not have it"));
    EXPECT_FALSE(item->perform());
    EXPECT_THAT(logged([&] { item->setTarget(nullptr); }), IsEmpty());
}

TEST_F(MisuseOfActions, OfAToolbarItemAreNamedWhenItIsClicked) {
    struct Items : NSToolbarDelegate {
        std::vector<NSToolbarItemIdentifier> toolbarDefaultItemIdentifiers(NSToolbar&) override {
            return {"save"};
        }
        std::shared_ptr<NSToolbarItem>
        toolbar_itemForItemIdentifier_willBeInsertedIntoToolbar(NSToolbar&, const NSToolbarItemIdentifier& name,
                                                                bool) override {
            auto item = make<NSToolbarItem>(&NSToolbarItem::initWithItemIdentifier, name);
            item->setLabel("Save");
            item->setAction("save:");
            return item;
        }
    };
    const auto items = std::make_shared<Items>();
    const auto toolbar = make<NSToolbar>();
    toolbar->setDelegate(items);
    window_->setToolbar(toolbar);
    EXPECT_THAT(logged([&] { user_->clickToolbarItem("Save"); }),
                ElementsAre("Nobody takes save: of the toolbar item \"save\""));
}

// Views in places where they cannot be

class MisuseOfViews : public test::WindowTest {
protected:
    void SetUp() override {
        content_ = probe("content", NSMakeRect(0, 0, 200, 100));
        show(content_);
    }
    std::shared_ptr<test::Probe> content_;
};

TEST_F(MisuseOfViews, NullAndAViewThatWouldContainItselfAreNotAdded) {
    const auto inner = make<NSView>();
    content_->addSubview(inner);
    EXPECT_THAT(logged([&] { inner->addSubview(nullptr); }),
                ElementsAre("-[NSView addSubview:]: the view is null"));
    EXPECT_THAT(logged([&] { inner->addSubview(content_); }),
                ElementsAre("-[NSView addSubview:]: the view would contain itself"));
    EXPECT_THAT(inner->subviews(), IsEmpty());
    EXPECT_EQ(window_->contentView(), content_.get());
}

TEST_F(MisuseOfViews, TheContentOfAWindowThatIsAddedElsewhereLeavesIt) {
    const auto other = makeWindow(nullptr);
    other->makeKeyAndOrderFront(nullptr);
    EXPECT_THAT(
        logged([&] { other->contentView()->addSubview(content_); }),
        ElementsAre("A view is put elsewhere while it is the content of a window, which gets an empty one"));
    EXPECT_EQ(content_->window(), other.get());
    EXPECT_NE(window_->contentView(), content_.get());
    EXPECT_EQ(window_->contentView()->frame().size, NSMakeSize(200, 100));
    window_->setContentSize({50, 50});
    window_->close();
    platform_.display();
    EXPECT_EQ(content_->window(), other.get());
    EXPECT_EQ(content_->frame().size, NSMakeSize(200, 100));
}

TEST_F(MisuseOfViews, TheContentOfAWindowThatBecomesAnothersLeavesIt) {
    const auto other = makeWindow(nullptr, {80, 40});
    other->makeKeyAndOrderFront(nullptr);
    EXPECT_THAT(logged([&] { other->setContentView(content_); }), SizeIs(1));
    EXPECT_EQ(other->contentView(), content_.get());
    EXPECT_EQ(content_->window(), other.get());
    EXPECT_NE(window_->contentView(), content_.get());
    window_->close();
    platform_.display();
    EXPECT_EQ(content_->frame().size, NSMakeSize(80, 40));
}

TEST_F(MisuseOfViews, AViewOfAnotherWindowDoesNotBecomeFirstResponder) {
    const auto other = makeWindow(nullptr);
    const auto field = make<NSTextField>(NSMakeRect(0, 0, 50, 20));
    other->contentView()->addSubview(field);
    EXPECT_THAT(logged([&] { window_->makeFirstResponder(field.get()); }),
                ElementsAre("-[NSWindow makeFirstResponder:]: NSTextField is not in the window"));
    EXPECT_EQ(window_->firstResponder(), window_.get());
}

TEST_F(MisuseOfViews, AColumnIsInOneTable) {
    const auto first = make<NSTableView>(), second = make<NSTableView>();
    const auto column = make<NSTableColumn>();
    first->addTableColumn(column);
    EXPECT_THAT(logged([&] { second->addTableColumn(column); }),
                ElementsAre("-[NSTableView addTableColumn:]: the column is in a table already"));
    EXPECT_THAT(logged([&] { second->addTableColumn(nullptr); }),
                ElementsAre("-[NSTableView addTableColumn:]: the column is null"));
    EXPECT_EQ(second->numberOfColumns(), 0);
}

// Menus, panels and windows

TEST_F(MisuseOfViews, MenusTakeNeitherNullNorThemselves) {
    const auto menu = make<NSMenu>(), inner = make<NSMenu>();
    const auto item = menu->addItemWithTitle_action_keyEquivalent("Recent", "", "");
    item->setSubmenu(inner);
    EXPECT_THAT(logged([&] { menu->addItem(nullptr); }), ElementsAre("-[NSMenu addItem:]: the item is null"));
    EXPECT_THAT(logged([&] { inner->addItem(item); }),
                ElementsAre("-[NSMenu addItem:]: \"Recent\" would contain itself"));
    EXPECT_THAT(logged([&] { item->setSubmenu(menu); }),
                ElementsAre("-[NSMenuItem setSubmenu:]: \"Recent\" would contain itself"));
    EXPECT_EQ(item->submenu(), inner);
    EXPECT_THAT(menu->itemArray(), ElementsAre(item));
    EXPECT_THAT(inner->itemArray(), IsEmpty());
    NSApplication::sharedApplication().setMainMenu(menu);
    EXPECT_FALSE(user_->keyDown(0, "a"));
}

TEST_F(MisuseOfViews, AnOpenPanelIsShownOnceAtATime) {
    const auto panel = NSOpenPanel::openPanel();
    std::vector<int> answers;
    const auto note = [&](int answer) { answers.push_back(answer); };
    panel->beginSheetModalForWindow_completionHandler(window_.get(), note);
    EXPECT_THAT(logged([&] { EXPECT_EQ(panel->runModal(), NSModalResponseCancel); }),
                ElementsAre("-[NSOpenPanel runModal] does nothing: the panel is shown already"));
    EXPECT_THAT(
        logged([&] { panel->beginSheetModalForWindow_completionHandler(window_.get(), note); }),
        ElementsAre(
            "-[NSOpenPanel beginSheetModalForWindow:completionHandler:] does nothing: the panel is shown "
            "already"));
    EXPECT_THAT(answers, IsEmpty());
    window_->close();
    EXPECT_THAT(answers, ElementsAre(NSModalResponseCancel));
}

TEST_F(MisuseOfViews, AWindowIsNoSheetOverItself) {
    EXPECT_THAT(
        logged([&] {
            NSApplication::sharedApplication()
                .beginSheet_modalForWindow_modalDelegate_didEndSelector_contextInfo(*window_, window_.get(),
                                                                                    nullptr, {}, nullptr);
        }),
        ElementsAre("-[NSApplication beginSheet:modalForWindow:…]: NSWindow is to be a sheet over itself"));
    EXPECT_FALSE(window_->isSheet());
}

TEST_F(MisuseOfViews, AWindowControllerWithoutAWindowShowsNone) {
    const auto controller = make<NSWindowController>();
    EXPECT_THAT(logged([&] { controller->showWindow(nullptr); }),
                ElementsAre("-[NSWindowController showWindow:]: NSWindowController has no window"));
}

// Blocks

TEST_F(MisuseOfViews, BlocksThatAreNullThrowWhereTheyAreGiven) {
    for (const auto queue : {dispatch_get_main_queue(), dispatch_get_global_queue(0, 0)}) {
        EXPECT_EQ(whatIsThrown([&] { dispatch_async(queue, nullptr); }), "dispatch: the block is null");
        EXPECT_EQ(whatIsThrown([&] { dispatch_after(DISPATCH_TIME_NOW, queue, nullptr); }),
                  "dispatch: the block is null");
    }
    auto& center = NSNotificationCenter::defaultCenter();
    EXPECT_EQ(whatIsThrown([&] {
                  static_cast<void>(center.addObserverForName_object_usingBlock("name", nullptr, nullptr));
              }),
              "addObserverForName:object:usingBlock: the block is null");
}

} // namespace zr
