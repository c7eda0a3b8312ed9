// SPDX-License-Identifier: MIT
#include "WindowTest.h"

#include <AppKit/NSTextField.h>
#include <AppKit/NSToolbar.h>
#include <Foundation/NSString.h>

namespace zr {

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// Hears of a window as its delegate and by its notifications.
class Hears : public NSWindowDelegate {
public:
    explicit Hears(NSWindow& window) {
        for (const auto& name : {NSWindowDidMoveNotification, NSWindowDidResizeNotification})
            observers_.push_back(NSNotificationCenter::defaultCenter().addObserverForName_object_usingBlock(
                name, &window,
                [this](const NSNotification& notification) { log.push_back(notification.name); }));
    }
    void windowDidResize(NSWindow&) override { log.emplace_back("resized"); }
    void windowDidMove(NSWindow&) override { log.emplace_back("moved"); }
    std::vector<std::string> taken() { return std::exchange(log, {}); }
    std::vector<std::string> log;

private:
    std::vector<std::shared_ptr<NSObject>> observers_;
};

constexpr const char* kMoved = "NSWindowDidMoveNotification";
constexpr const char* kResized = "NSWindowDidResizeNotification";

} // namespace

// Headless has title bars of 22 and toolbars of 56 points, and a screen of 1280 by 800.
class WindowFrames : public test::WindowTest {
protected:
    static std::shared_ptr<NSWindow> window(const NSRect& content) {
        return make<NSWindow>(&NSWindow::initWithContentRect_styleMask_backing_defer, content,
                              NSWindowStyleMaskTitled | NSWindowStyleMaskResizable, NSBackingStoreBuffered,
                              false);
    }
};

TEST_F(WindowFrames, AreTheContentAndWhatIsAboveIt) {
    const auto plain = window(NSMakeRect(196, 240, 480, 160));
    EXPECT_EQ(plain->frame(), NSMakeRect(196, 240, 480, 182));
    EXPECT_EQ(plain->frameRectForContentRect(NSMakeRect(5, 7, 100, 50)), NSMakeRect(5, 7, 100, 72));
    plain->setToolbar(make<NSToolbar>());
    EXPECT_EQ(plain->frameRectForContentRect(NSMakeRect(5, 7, 100, 50)), NSMakeRect(5, 7, 100, 128));
    const auto bare = make<NSWindow>(&NSWindow::initWithContentRect_styleMask_backing_defer,
                                     NSMakeRect(10, 20, 30, 40), 0u, NSBackingStoreBuffered, false);
    EXPECT_EQ(bare->frame(), NSMakeRect(10, 20, 30, 40));
}

TEST_F(WindowFrames, CanBeSetBeforeTheWindowIsShown) {
    const auto made = window(NSMakeRect(0, 0, 200, 100));
    const auto hears = std::make_shared<Hears>(*made);
    made->setDelegate(hears);
    made->setFrame_display_animate(NSMakeRect(300, 400, 250, 122), true, false);
    EXPECT_EQ(made->frame(), NSMakeRect(300, 400, 250, 122));
    EXPECT_EQ(made->contentSize(), NSMakeSize(250, 100));
    EXPECT_THAT(hears->taken(), ElementsAre("moved", kMoved, "resized", kResized));
    made->setFrameTopLeftPoint({320, 700});
    EXPECT_EQ(made->frame(), NSMakeRect(320, 578, 250, 122));
    EXPECT_THAT(hears->taken(), ElementsAre("moved", kMoved));
    made->setFrame_display_animate(NSMakeRect(320, 578, 250, 122), true, true);
    made->setFrameTopLeftPoint({320, 700});
    EXPECT_THAT(hears->taken(), IsEmpty()) << "nothing has changed";

    made->makeKeyAndOrderFront(nullptr);
    EXPECT_EQ(made->frame(), NSMakeRect(320, 578, 250, 122));
    EXPECT_EQ(made->convertRectToScreen(NSMakeRect(0, 0, 1, 1)), NSMakeRect(320, 578, 1, 1));
}

TEST_F(WindowFrames, CanBeSetWhileItIsShown) {
    const auto made = window(NSMakeRect(0, 0, 200, 100));
    made->makeKeyAndOrderFront(nullptr);
    const auto hears = std::make_shared<Hears>(*made);
    made->setDelegate(hears);
    made->setFrame_display_animate(NSMakeRect(300, 400, 250, 122), true, false);
    EXPECT_EQ(made->frame(), NSMakeRect(300, 400, 250, 122));
    EXPECT_THAT(hears->taken(), ElementsAre("moved", kMoved, "resized", kResized));
    EXPECT_EQ(made->convertRectToScreen(NSMakeRect(0, 0, 1, 1)), NSMakeRect(300, 400, 1, 1));
    // The limits are the user's.
    made->setContentMinSize({240, 90});
    made->setContentMaxSize({1.7976931348623157e308, 1.7976931348623157e308});
    EXPECT_EQ(made->contentMaxSize().width, 1.7976931348623157e308);
    made->setFrame_display_animate(NSMakeRect(300, 400, 100, 52), true, false);
    EXPECT_EQ(made->contentSize(), NSMakeSize(100, 30));
}

TEST_F(WindowFrames, FollowTheUser) {
    show(probe("root", NSMakeRect(0, 0, 200, 100)));
    const auto hears = std::make_shared<Hears>(*window_);
    window_->setDelegate(hears);
    user_->moveByUser({400, 300}); // of the content, from the top left
    EXPECT_EQ(window_->frame(), NSMakeRect(400, 400, 200, 122));
    EXPECT_THAT(hears->taken(), ElementsAre("moved", kMoved));
    user_->resizeByUser({200, 150});
    EXPECT_EQ(window_->frame(), NSMakeRect(400, 350, 200, 172)) << "the upper edge stays";
    EXPECT_THAT(hears->taken(), ElementsAre("resized", kResized)) << "which is no move";
    user_->resizeByUser({220, 150});
    EXPECT_THAT(hears->taken(), ElementsAre("resized", kResized));
}

TEST_F(WindowFrames, AResizeIndicatorIsOnlyRemembered) {
    const auto made = window(NSZeroRect);
    EXPECT_TRUE(made->showsResizeIndicator());
    made->setShowsResizeIndicator(false);
    EXPECT_FALSE(made->showsResizeIndicator());
}

TEST_F(WindowFrames, TheKeyViewLoopFollowsThePlaces) {
    const auto root = probe("root", NSMakeRect(0, 0, 200, 100));
    std::vector<std::shared_ptr<NSTextField>> fields;
    // Upper right, lower, upper left; the last one cannot take the keyboard.
    for (const auto& rect : {NSMakeRect(100, 60, 50, 20), NSMakeRect(0, 10, 50, 20), NSMakeRect(0, 60, 50, 20),
                             NSMakeRect(0, 35, 50, 20)})
        root->addSubview(fields.emplace_back(make<NSTextField>(rect)));
    fields[3]->setSelectable(false);
    show(root);
    window_->recalculateKeyViewLoop();
    EXPECT_EQ(fields[2]->nextKeyView(), fields[0].get());
    EXPECT_EQ(fields[0]->nextKeyView(), fields[3].get());
    EXPECT_EQ(fields[3]->nextKeyView(), fields[1].get());
    EXPECT_EQ(fields[1]->nextKeyView(), root.get());
    EXPECT_EQ(root->nextKeyView(), fields[2].get());
    // Over the one that cannot take the keyboard.
    window_->makeFirstResponder(fields[0].get());
    window_->selectKeyViewFollowingView(fields[0].get());
    EXPECT_EQ(window_->firstResponder(), fields[1].get());
    window_->selectKeyViewFollowingView(root.get());
    EXPECT_EQ(window_->firstResponder(), fields[2].get());
}

namespace {

class Tools : public NSToolbarDelegate {
public:
    std::vector<std::string> toolbarDefaultItemIdentifiers(NSToolbar&) override {
        log.emplace_back("default");
        return {"a", NSToolbarFlexibleSpaceItemIdentifier, "b", "missing", NSToolbarSpaceItemIdentifier};
    }
    std::optional<std::vector<std::string>> toolbarSelectableItemIdentifiers(NSToolbar&) override {
        log.emplace_back("selectable");
        return selectable;
    }
    std::shared_ptr<NSToolbarItem>
    toolbar_itemForItemIdentifier_willBeInsertedIntoToolbar(NSToolbar&, const std::string& identifier,
                                                            bool inserted) override {
        log.push_back(identifier + (inserted ? " inserted" : ""));
        if (identifier == "missing") return nullptr;
        auto item = make<NSToolbarItem>(&NSToolbarItem::initWithItemIdentifier, identifier);
        item->setLabel("Item " + identifier);
        item->setTarget(target);
        item->setAction("clicked:");
        return item;
    }
    std::optional<std::vector<std::string>> selectable = std::vector<std::string>{"a", "b"};
    std::shared_ptr<NSObject> target;
    std::vector<std::string> log;
};

class ClickedItems : public NSObject {
public:
    ZR_CLASS(ClickedItems, NSObject)
    void clicked(NSObject* sender) {
        const auto* const item = dynamic_cast<NSToolbarItem*>(sender);
        identifiers.push_back(item ? item->itemIdentifier() : "?");
    }
    std::vector<std::string> identifiers;
};

ZR_CLASS_TABLE(ClickedItems, .actions = {actionNamed<&ClickedItems::clicked>("clicked:")})

} // namespace

class Toolbars : public test::WindowTest {
protected:
    void SetUp() override {
        tools_->target = target_;
        show(probe("root", NSMakeRect(0, 0, 200, 100)));
    }
    void attach() {
        toolbar_ = make<NSToolbar>(&NSToolbar::initWithIdentifier, std::string("bar"));
        toolbar_->setDelegate(tools_);
        window_->setToolbar(toolbar_);
    }
    std::shared_ptr<ClickedItems> target_ = make<ClickedItems>();
    std::shared_ptr<Tools> tools_ = std::make_shared<Tools>();
    std::shared_ptr<NSToolbar> toolbar_;
};

TEST_F(Toolbars, AskTheirDelegateForTheirItemsOnce) {
    attach();
    EXPECT_THAT(tools_->log,
                ElementsAre("default", "a inserted", "b inserted", "missing inserted", "selectable"));
    EXPECT_THAT(user_->toolbarItems(), ElementsAre("Item a", "<flexible space>", "Item b", "<space>"));
    EXPECT_EQ(toolbar_->items().size(), 4u);
    EXPECT_EQ(toolbar_->identifier(), "bar");
    window_->orderOut(nullptr);
    window_->makeKeyAndOrderFront(nullptr);
    EXPECT_EQ(tools_->log.size(), 5u);
}

TEST_F(Toolbars, TheContentKeepsItsSizeUnderThem) {
    const NSRect before = window_->frame();
    attach();
    EXPECT_EQ(window_->contentSize(), NSMakeSize(200, 100));
    EXPECT_EQ(window_->frame().size.height, before.size.height + 56);
    window_->setToolbar(nullptr);
    EXPECT_THAT(user_->toolbarItems(), IsEmpty());
    EXPECT_EQ(window_->frame().size.height, before.size.height);
}

TEST_F(Toolbars, AClickMarksTheItemAndThenSendsItsAction) {
    attach();
    EXPECT_EQ(user_->selectedToolbarItem(), "");
    EXPECT_TRUE(user_->clickToolbarItem("Item b"));
    EXPECT_EQ(user_->selectedToolbarItem(), "Item b");
    EXPECT_EQ(toolbar_->selectedItemIdentifier(), "b");
    EXPECT_THAT(target_->identifiers, ElementsAre("b"));
}

TEST_F(Toolbars, WithoutSelectableItemsAClickMarksNone) {
    tools_->selectable = std::nullopt;
    attach();
    EXPECT_TRUE(user_->clickToolbarItem("Item b"));
    EXPECT_EQ(user_->selectedToolbarItem(), "");
    EXPECT_THAT(target_->identifiers, ElementsAre("b"));
}

TEST_F(Toolbars, MarkingByTheProgramSendsNothing) {
    attach();
    toolbar_->setSelectedItemIdentifier("a");
    EXPECT_EQ(user_->selectedToolbarItem(), "Item a");
    toolbar_->setSelectedItemIdentifier("unknown");
    EXPECT_EQ(user_->selectedToolbarItem(), "");
    toolbar_->setSelectedItemIdentifier("b");
    toolbar_->setSelectedItemIdentifier(std::nullopt);
    EXPECT_EQ(user_->selectedToolbarItem(), "");
    EXPECT_THAT(target_->identifiers, IsEmpty());
}

TEST_F(Toolbars, AnItemWithoutATargetAsksTheResponderChain) {
    tools_->target = nullptr;
    attach();
    EXPECT_TRUE(user_->clickToolbarItem("Item a"));
    EXPECT_THAT(target_->identifiers, IsEmpty());
    window_->setNextResponder(nullptr);
    EXPECT_EQ(user_->selectedToolbarItem(), "Item a");
}

TEST_F(Toolbars, AreThereWhenTheWindowIsShownLater) {
    const auto later = makeWindow(nullptr);
    toolbar_ = make<NSToolbar>();
    later->setToolbar(toolbar_);
    EXPECT_THAT(toolbar_->items(), IsEmpty());
    toolbar_->setDelegate(tools_);
    toolbar_->setSelectedItemIdentifier("b");
    later->makeKeyAndOrderFront(nullptr);
    EXPECT_THAT(platform_.windows().back()->toolbarItems(), testing::SizeIs(4));
    EXPECT_EQ(platform_.windows().back()->selectedToolbarItem(), "Item b");
}

} // namespace zr
