// SPDX-License-Identifier: MIT
#include "Adaptor.h"

#include <AppKit/NSMenu.h>
#include <AppKit/NSToolbar.h>

namespace zr::conformance {

using testing::ElementsAre;

namespace {

class OneItem : public NSToolbarDelegate {
public:
    std::vector<NSToolbarItemIdentifier> toolbarDefaultItemIdentifiers(NSToolbar&) override { return {"one"}; }
    std::shared_ptr<NSToolbarItem> toolbar_itemForItemIdentifier_willBeInsertedIntoToolbar(
        NSToolbar&, const NSToolbarItemIdentifier& identifier, bool) override {
        auto item = make<NSToolbarItem>(&NSToolbarItem::initWithItemIdentifier, identifier);
        item->setLabel("One");
        return item;
    }
};

class Taker : public NSView {
public:
    ZR_CLASS(Taker, NSView)
    bool acceptsFirstResponder() const override { return true; } // and wants no key
    void act(NSObject*) { ++count; }
    int count = 0;
};

ZR_CLASS_TABLE(Taker, .actions = {actionNamed<&Taker::act>("act:")})

} // namespace

class ConformanceBars : public Conformance {
protected:
    void SetUp() override {
        const auto menu = make<NSMenu>(&NSMenu::initWithTitle, std::string(""));
        edit_ = make<NSMenu>(&NSMenu::initWithTitle, std::string("Edit"));
        menu->addItemWithTitle_action_keyEquivalent("Edit", "", "")->setSubmenu(edit_);
        item_ = edit_->addItemWithTitle_action_keyEquivalent("Act", "act:", "b");
        item_->setKeyEquivalentModifierMask(0);
        NSApplication::sharedApplication().setMainMenu(menu);
        window_ =
            make<NSWindow>(&NSWindow::initWithContentRect_styleMask_backing_defer, NSMakeRect(50, 60, 300, 200),
                           NSWindowStyleMaskTitled | NSWindowStyleMaskClosable |
                               NSWindowStyleMaskMiniaturizable | NSWindowStyleMaskResizable,
                           NSBackingStoreBuffered, false);
        window_->setTitle("window under test");
        window_->setContentView(view_);
    }

    std::shared_ptr<NSMenu> edit_;
    std::shared_ptr<NSMenuItem> item_;
    std::shared_ptr<Taker> view_ = make<Taker>(NSMakeRect(0, 0, 300, 200));
    std::shared_ptr<OneItem> items_ = std::make_shared<OneItem>();
};

TEST_F(ConformanceBars, AFrameIsAsHighBeforeItIsShownAsAfterwards) {
    const NSRect before = window_->frame();
    EXPECT_GT(before.size.height, 200);
    window_->makeKeyAndOrderFront(nullptr);
    adaptor_->settle();
    EXPECT_EQ(window_->frame().size.height, before.size.height);
    EXPECT_EQ(window_->contentSize(), NSMakeSize(300, 200));
}

TEST_F(ConformanceBars, SoIsOneWithAToolbar) {
    const double without = window_->frame().size.height;
    const auto toolbar = make<NSToolbar>(&NSToolbar::initWithIdentifier, std::string("tools"));
    toolbar->setDelegate(items_);
    window_->setToolbar(toolbar);
    const double before = window_->frame().size.height;
    EXPECT_GT(before, without);
    window_->makeKeyAndOrderFront(nullptr);
    adaptor_->settle();
    EXPECT_EQ(window_->frame().size.height, before);
}

TEST_F(ConformanceBars, AMenuIsAskedForWhenItIsOpenedAndNotBefore) {
    window_->makeFirstResponder(view_.get());
    window_->makeKeyAndOrderFront(nullptr);
    adaptor_->settle();
    EXPECT_THAT(adaptor_->openMenu(*window_, ""), ElementsAre("Edit"));
    item_->setTitle("Act Now");
    edit_->addItemWithTitle_action_keyEquivalent("Later", "act:", "");
    EXPECT_THAT(adaptor_->openMenu(*window_, "Edit"), ElementsAre("Act Now", "Later"));
    item_->setTitle("Act Again");
    EXPECT_THAT(adaptor_->openMenu(*window_, "Edit"), ElementsAre("Act Again", "Later"));
}

TEST_F(ConformanceBars, AKeyOfTheMenuActsOnceWhoeverSeesItFirst) {
    window_->makeKeyAndOrderFront(nullptr);
    window_->makeFirstResponder(view_.get());
    adaptor_->settle();
    adaptor_->type(*window_, Key::b);
    adaptor_->settle();
    EXPECT_EQ(view_->count, 1);
    item_->setEnabled(false);
    adaptor_->type(*window_, Key::b);
    adaptor_->settle();
    EXPECT_EQ(view_->count, 1);
}

} // namespace zr::conformance
