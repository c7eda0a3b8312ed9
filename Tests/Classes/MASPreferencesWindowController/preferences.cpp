// SPDX-License-Identifier: MIT
#include "Support/LoggedTexts.h"
#include "Support/TemporaryFolder.h"

#include <AppKit/NSApplication.h>
#include <AppKit/NSImage.h>
#include <AppKit/NSTextField.h>
#include <Foundation/NSGeometry.h>
#include <Foundation/NSNull.h>
#include <Foundation/NSUserDefaults.h>
#include <ZRUIKit/MASPreferencesWindowController.h>
#include <ZRUIKitHeadless/Headless.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace zr {

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr unsigned kWidthSizable = 2, kHeightSizable = 16;
constexpr double kLargest = std::numeric_limits<double>::max();

std::vector<std::string>& happenings() {
    static std::vector<std::string> list;
    return list;
}
std::vector<std::string> taken() { return std::exchange(happenings(), {}); }

class PreferencesPane : public NSViewController, public MASPreferencesViewController {
public:
    ZR_CLASS(PreferencesPane, NSViewController)
    bool initWithName_size_mask(const std::string& name, const NSSize& size, unsigned mask) {
        name_ = name;
        auto view = make<NSView>(NSRect{NSZeroPoint, size});
        view->setAutoresizingMask(mask);
        view->setIdentifier(name + " view");
        setView(view);
        return true;
    }
    std::string identifier() const override { return name_; }
    std::shared_ptr<NSImage> toolbarItemImage() const override { return image; }
    std::string toolbarItemLabel() const override { return "Label " + name_; }
    void viewWillAppear() override {
        note(view()->window() ? " will appear in the window" : " will appear");
        if (onAppear) onAppear();
    }
    void viewDidDisappear() override {
        note(view()->window() ? " disappeared in the window" : " disappeared");
        if (onDisappear) onDisappear();
    }
    std::optional<NSView*> initialKeyView() override { return keyView; }
    bool commitEditing() override {
        note(" commits");
        return commits;
    }
    void doIt(NSObject*) { note(" does it"); }
    void loadView() override {
        if (!hasNoView) NSViewController::loadView();
    }

    std::optional<NSView*> keyView;
    std::shared_ptr<NSImage> image = make<NSImage>(&NSImage::initWithSize, NSSize{32, 32});
    std::function<void()> onAppear, onDisappear;
    bool commits = true;
    bool hasNoView = false;

private:
    void note(const char* what) { happenings().push_back(name_ + what); }
    std::string name_;
};

ZR_CLASS_TABLE(PreferencesPane, .actions = {actionNamed<&PreferencesPane::doIt>("doIt:")})

// Shows another part of itself than the one at its origin.
class MovedView : public NSView {
public:
    ZR_CLASS(MovedView, NSView)
    using NSView::setBoundsOrigin;
};

ZR_CLASS_TABLE(MovedView)

class WatchedController : public MASPreferencesWindowController {
public:
    ZR_CLASS(WatchedController, MASPreferencesWindowController)
    void windowWillLoad() override { happenings().emplace_back("window will load"); }
};

ZR_CLASS_TABLE(WatchedController)

std::shared_ptr<PreferencesPane> pane(const std::string& name, NSSize size = {400, 300},
                                      unsigned mask = kWidthSizable | kHeightSizable) {
    return make<PreferencesPane>(&PreferencesPane::initWithName_size_mask, name, size, mask);
}

} // namespace

class PreferencesWindow : public testing::Test {
protected:
    PreferencesWindow() { happenings().clear(); }
    static NSUserDefaults& defaults() { return *NSUserDefaults::standardUserDefaults(); }
    static std::optional<std::string> stored(const std::string& key) { return defaults().stringForKey(key); }
    static void store(const std::string& key, const std::string& text) {
        defaults().setObject_forKey(text, key);
    }

    void open(const MASPreferencesWindowController::Controllers& panes,
              const std::optional<std::string>& title = std::nullopt) {
        controller_ = make<MASPreferencesWindowController>(
            &MASPreferencesWindowController::initWithViewControllers_title, panes, title);
        ASSERT_NE(controller_, nullptr);
        posts_ = NSNotificationCenter::defaultCenter().addObserverForName_object_usingBlock(
            MASPreferencesWindowControllerDidChangeViewNotification, controller_.get(),
            [this](const NSNotification&) {
                happenings().push_back("posted " + std::to_string(controller_->indexOfSelectedController()));
            });
        window_ = controller_->window();
        ASSERT_NE(window_, nullptr);
    }
    void show() {
        controller_->showWindow(nullptr);
        platform_.display();
        user_ = platform_.windows().back();
    }
    void select(const std::shared_ptr<NSObject>& pane) { controller_->setSelectedViewController(pane); }
    double top() const { return NSMaxY(window_->frame()); }

    headless::Platform platform_;
    std::shared_ptr<MASPreferencesWindowController> controller_;
    std::shared_ptr<NSWindow> window_;
    std::shared_ptr<NSObject> posts_;
    headless::Window* user_ = nullptr;
    std::shared_ptr<PreferencesPane> a_ = pane("A"), b_ = pane("B", {250, 500}, 0);
};

TEST_F(PreferencesWindow, LoadsNothingBeforeItsWindowIsAskedFor) {
    const auto controller =
        make<MASPreferencesWindowController>(&MASPreferencesWindowController::initWithViewControllers,
                                             MASPreferencesWindowController::Controllers{a_});
    EXPECT_FALSE(controller->isWindowLoaded());
    EXPECT_EQ(controller->selectedViewController(), nullptr);
    EXPECT_EQ(controller->title(), std::nullopt);
    EXPECT_THAT(controller->viewControllers(), ElementsAre(a_));
    EXPECT_EQ(controller->windowNibName(), "MASPreferencesWindow");
    EXPECT_EQ(controller->indexOfSelectedController(), 9223372036854775807u);
    EXPECT_THAT(controller->minimumViewRects(), IsEmpty());
    EXPECT_THAT(happenings(), IsEmpty());
}

TEST_F(PreferencesWindow, ShowsTheFirstPaneWhenNothingIsStored) {
    open({NSNull::null(), a_, b_});
    EXPECT_EQ(controller_->selectedViewController(), a_);
    EXPECT_EQ(stored("MASPreferences Selected Identifier View"), "A");
    EXPECT_EQ(window_->title(), "Label A");
    EXPECT_EQ(window_->contentView(), a_->view().get());
    EXPECT_EQ(window_->contentSize(), NSMakeSize(400, 300));
    EXPECT_THAT(taken(), ElementsAre("A will appear", "posted 1"));
    EXPECT_TRUE(window_->delegate());
    EXPECT_EQ(window_->toolbar()->delegate(), controller_);
}

TEST_F(PreferencesWindow, ShowsThePaneThatIsStored) {
    store("MASPreferences Selected Identifier View", "B");
    open({a_, b_});
    EXPECT_EQ(controller_->selectedViewController(), b_);
    EXPECT_EQ(window_->contentSize(), NSMakeSize(250, 500));
}

TEST_F(PreferencesWindow, AStoredPaneThatIsNotThereFallsBackToTheFirst) {
    store("MASPreferences Selected Identifier View", "gone");
    open({a_, b_});
    EXPECT_EQ(controller_->selectedViewController(), a_);
    EXPECT_EQ(stored("MASPreferences Selected Identifier View"), "A");
}

TEST_F(PreferencesWindow, WithoutPanesItIsEmptyAndStillPutBack) {
    store("MASPreferences Frame Top Left", "{300, 700}");
    open({});
    EXPECT_EQ(controller_->selectedViewController(), nullptr);
    EXPECT_EQ(window_->title(), "Preferences");
    EXPECT_EQ(window_->frame().origin.x, 300);
    EXPECT_EQ(top(), 700);
    EXPECT_EQ(controller_->windowShouldClose(*window_), true);
}

TEST(PreferencesInAnyLanguage, AreCalledAsTheApplicationCallsThem) {
    const test::TemporaryFolder folder;
    folder.write("de.lproj/Localizable.strings", R"("Preferences" = "Einstellungen";)");
    headless::Options options;
    options.preferredLanguages = {"de"};
    options.mainBundle = folder.path();
    const headless::Platform platform(options);
    const auto controller =
        make<MASPreferencesWindowController>(&MASPreferencesWindowController::initWithViewControllers,
                                             MASPreferencesWindowController::Controllers{});
    EXPECT_EQ(controller->window()->title(), "Einstellungen");
}

TEST_F(PreferencesWindow, ItsPlaceComesBackAfterTheFirstPaneHasSizedIt) {
    store("MASPreferences Frame Top Left", "{300, 700}");
    open({b_});
    EXPECT_EQ(window_->frame(), NSMakeRect(300, 700 - 500 - 22 - 56, 250, 578));
    show();
    EXPECT_EQ(window_->frame(), NSMakeRect(300, 122, 250, 578));
}

TEST_F(PreferencesWindow, RemembersItsUpperLeftCornerWithAndWithoutAPane) {
    open({a_});
    show();
    user_->moveByUser({150, 250}); // of the content: its upper edge is at 800 - 250, the frame's 78 above
    EXPECT_EQ(stored("MASPreferences Frame Top Left"), "{150, 628}");
    select(nullptr);
    user_->moveByUser({160, 250});
    EXPECT_EQ(stored("MASPreferences Frame Top Left"), "{160, 628}");
}

TEST_F(PreferencesWindow, RemembersTheSizeOfThePaneThatIsShown) {
    open({a_, b_});
    show();
    user_->resizeByUser({450, 320});
    EXPECT_EQ(stored("MASPreferences A Frame"), "{{0, 0}, {450, 320}}");
    EXPECT_EQ(stored("MASPreferences B Frame"), std::nullopt);
    select(nullptr);
    user_->resizeByUser({460, 330});
    EXPECT_EQ(stored("MASPreferences A Frame"), "{{0, 0}, {450, 320}}") << "with no pane nothing is written";
    select(a_);
    EXPECT_EQ(window_->contentSize(), NSMakeSize(450, 320));
}

TEST_F(PreferencesWindow, RemembersPlaceAndSizeAlsoForAnotherDelegate) {
    open({a_});
    show();
    window_->setDelegate(std::weak_ptr<NSWindowDelegate>());
    user_->moveByUser({150, 250});
    EXPECT_EQ(stored("MASPreferences Frame Top Left"), "{150, 628}");
    user_->resizeByUser({450, 320});
    EXPECT_EQ(stored("MASPreferences A Frame"), "{{0, 0}, {450, 320}}");
}

TEST_F(PreferencesWindow, AnotherWindowsPlaceIsNotItsOwn) {
    open({a_});
    show();
    const auto other =
        make<NSWindow>(&NSWindow::initWithContentRect_styleMask_backing_defer, NSMakeRect(0, 0, 100, 100),
                       NSWindowStyleMaskTitled, NSBackingStoreBuffered, false);
    other->makeKeyAndOrderFront(nullptr);
    user_->moveByUser({150, 250});
    platform_.windows().back()->moveByUser({1, 2});
    EXPECT_EQ(stored("MASPreferences Frame Top Left"), "{150, 628}");
}

TEST_F(PreferencesWindow, RemembersThePartThatThePanesViewShows) {
    const auto view = make<MovedView>(NSMakeRect(0, 0, 400, 300));
    view->setAutoresizingMask(kWidthSizable | kHeightSizable);
    view->setBoundsOrigin({5, 6});
    a_->setView(view);
    open({a_});
    show();
    user_->resizeByUser({450, 320});
    EXPECT_EQ(stored("MASPreferences A Frame"), "{{5, 6}, {450, 320}}");
}

TEST_F(PreferencesWindow, RemembersNoSizeThatIsNotTheUsers) {
    open({a_, b_});
    show();
    select(b_);
    EXPECT_EQ(stored("MASPreferences A Frame"), std::nullopt);
    EXPECT_EQ(stored("MASPreferences B Frame"), std::nullopt);
}

TEST_F(PreferencesWindow, ATitleStaysOffTheWindow) {
    open({a_, b_}, "My title");
    EXPECT_EQ(controller_->title(), "My title");
    EXPECT_EQ(window_->title(), "Preferences");
    select(b_);
    EXPECT_EQ(window_->title(), "Preferences");
}

TEST_F(PreferencesWindow, AnEmptyTitleIsNone) {
    open({a_, b_}, "");
    EXPECT_EQ(window_->title(), "Label A");
    select(b_);
    EXPECT_EQ(window_->title(), "Label B");
}

TEST_F(PreferencesWindow, SelectingThePaneThatIsShownDoesNothing) {
    open({a_, b_});
    taken();
    select(a_);
    EXPECT_THAT(taken(), IsEmpty());
    select(nullptr);
    EXPECT_THAT(taken(), ElementsAre("A commits", "A disappeared"));
    select(nullptr);
    EXPECT_THAT(taken(), IsEmpty());
}

TEST_F(PreferencesWindow, ShowingTakesItsStepsInOrder) {
    open({a_, b_});
    show();
    taken();
    const double before = top();
    a_->onDisappear = [&] {
        EXPECT_EQ(controller_->selectedViewController(), a_) << "not cleared yet";
        EXPECT_NE(window_->contentView(), a_->view().get());
        EXPECT_THAT(window_->contentView()->subviews(), IsEmpty());
        EXPECT_EQ(stored("MASPreferences Selected Identifier View"), "A");
    };
    b_->onAppear = [&] {
        EXPECT_EQ(window_->title(), "Label B");
        EXPECT_EQ(window_->toolbar()->selectedItemIdentifier(), "B");
        EXPECT_EQ(stored("MASPreferences Selected Identifier View"), "B");
        EXPECT_EQ(controller_->selectedViewController(), b_);
        EXPECT_EQ(window_->contentSize(), NSMakeSize(250, 500)) << "sized before it appears";
        EXPECT_EQ(window_->contentMinSize(), NSMakeSize(250, 500));
        EXPECT_EQ(window_->contentMaxSize(), NSMakeSize(250, 500));
        EXPECT_FALSE(window_->showsResizeIndicator());
        EXPECT_NE(window_->nextResponder(), b_.get());
    };
    const auto posts = NSNotificationCenter::defaultCenter().addObserverForName_object_usingBlock(
        MASPreferencesWindowControllerDidChangeViewNotification, nullptr, [&](const NSNotification&) {
            EXPECT_EQ(window_->contentView(), b_->view().get());
            EXPECT_EQ(window_->nextResponder(), b_.get());
        });
    bool wasResized = false;
    const auto sizes = NSNotificationCenter::defaultCenter().addObserverForName_object_usingBlock(
        NSWindowDidResizeNotification, window_.get(), [&](const NSNotification&) {
            EXPECT_EQ(window_->contentMaxSize(), NSMakeSize(250, 500)) << "which the window has to allow";
            wasResized = true;
        });
    select(b_);
    EXPECT_TRUE(wasResized);
    EXPECT_THAT(taken(), ElementsAre("A commits", "A disappeared", "B will appear", "posted 1"));
    EXPECT_EQ(window_->contentView(), b_->view().get());
    EXPECT_EQ(top(), before);
    EXPECT_EQ(user_->selectedToolbarItem(), "Label B");
}

TEST_F(PreferencesWindow, APaneThatCannotCommitKeepsItsPlace) {
    open({a_, b_});
    show();
    taken();
    a_->commits = false;
    EXPECT_TRUE(user_->clickToolbarItem("Label B"));
    EXPECT_THAT(taken(), ElementsAre("A commits"));
    EXPECT_EQ(user_->selectedToolbarItem(), "Label A") << "snaps back";
    EXPECT_EQ(controller_->selectedViewController(), a_);
    EXPECT_EQ(window_->contentView(), a_->view().get());
    EXPECT_EQ(stored("MASPreferences Selected Identifier View"), "A");
    EXPECT_FALSE(user_->closeByUser());
    EXPECT_TRUE(window_->isVisible());
    a_->commits = true;
    EXPECT_TRUE(user_->closeByUser());
    EXPECT_THAT(taken(), ElementsAre("A commits", "A commits"));
}

TEST_F(PreferencesWindow, NothingEmptiesTheWindowAndPostsNothing) {
    open({a_});
    show();
    const NSRect frame = window_->frame();
    taken();
    select(nullptr);
    EXPECT_THAT(taken(), ElementsAre("A commits", "A disappeared"));
    EXPECT_EQ(controller_->selectedViewController(), nullptr);
    EXPECT_NE(window_->contentView(), a_->view().get());
    EXPECT_EQ(window_->frame(), frame);
    EXPECT_EQ(controller_->windowShouldClose(*window_), true);
    EXPECT_THAT(taken(), IsEmpty());
}

TEST_F(PreferencesWindow, WhatIsNoPaneEmptiesTheWindow) {
    open({a_, NSNull::null()});
    controller_->selectControllerAtIndex(1);
    EXPECT_EQ(controller_->selectedViewController(), nullptr);
    select(a_);
    select(make<NSViewController>());
    EXPECT_EQ(controller_->selectedViewController(), nullptr);
}

TEST_F(PreferencesWindow, LivesUntilItHasShownThePane) {
    open({a_, b_});
    posts_.reset();
    const std::weak_ptr<MASPreferencesWindowController> weak = controller_;
    b_->onAppear = [&] {
        controller_.reset();
        EXPECT_FALSE(weak.expired());
    };
    auto* const controller = controller_.get();
    controller->setSelectedViewController(b_);
    EXPECT_TRUE(weak.expired());
}

TEST_F(PreferencesWindow, AnItemThatMatchesNoPaneEmptiesTheWindow) {
    open({a_});
    controller_->toolbarItemDidClick(
        make<NSToolbarItem>(&NSToolbarItem::initWithItemIdentifier, std::string("?")).get());
    EXPECT_EQ(controller_->selectedViewController(), nullptr);
    select(a_);
    controller_->toolbarItemDidClick(a_.get());
    controller_->toolbarItemDidClick(nullptr);
    EXPECT_EQ(controller_->selectedViewController(), a_) << "senders that are no items do nothing";
}

TEST_F(PreferencesWindow, APaneThatCannotGrowHasTheSizeItWasFirstShownWith) {
    store("MASPreferences B Frame", "{{0, 0}, {900, 900}}");
    open({b_, a_});
    EXPECT_EQ(window_->contentSize(), NSMakeSize(250, 500));
    EXPECT_EQ(window_->contentMinSize(), NSMakeSize(250, 500));
    EXPECT_EQ(window_->contentMaxSize(), NSMakeSize(250, 500));
    EXPECT_FALSE(window_->showsResizeIndicator());
    EXPECT_THAT(controller_->minimumViewRects(), ElementsAre(std::pair("B", "{{0, 0}, {250, 500}}")));
    select(a_);
    select(b_);
    EXPECT_EQ(window_->contentSize(), NSMakeSize(250, 500));
}

TEST_F(PreferencesWindow, APaneThatGrowsInWidthComesBackNoNarrowerThanItBegan) {
    for (const auto& [saved, shown] :
         {std::pair{"{{0, 0}, {300, 900}}", 400.}, {"{{0, 0}, {500, 100}}", 500.}}) {
        store("MASPreferences W Frame", saved);
        open({pane("W", {400, 300}, kWidthSizable)});
        EXPECT_EQ(window_->contentSize(), NSMakeSize(shown, 300));
        EXPECT_EQ(window_->contentMinSize(), NSMakeSize(400, 300));
        EXPECT_EQ(window_->contentMaxSize(), NSMakeSize(kLargest, 300));
        EXPECT_TRUE(window_->showsResizeIndicator());
    }
}

TEST_F(PreferencesWindow, APaneThatGrowsInHeightComesBackNoLowerThanItBegan) {
    for (const auto& [saved, shown] :
         {std::pair{"{{0, 0}, {900, 200}}", 300.}, {"{{0, 0}, {100, 350}}", 350.}}) {
        store("MASPreferences H Frame", saved);
        open({pane("H", {400, 300}, kHeightSizable)});
        EXPECT_EQ(window_->contentSize(), NSMakeSize(400, shown));
        EXPECT_EQ(window_->contentMaxSize(), NSMakeSize(400, kLargest));
        EXPECT_TRUE(window_->showsResizeIndicator());
    }
}

TEST_F(PreferencesWindow, ASavedSizeThatIsNoneIsTheLeast) {
    store("MASPreferences A Frame", "nonsense");
    open({a_});
    EXPECT_EQ(window_->contentSize(), NSMakeSize(400, 300));
}

TEST_F(PreferencesWindow, WhereAPanesViewStoodBeforeDoesNotCount) {
    a_->view()->setFrameOrigin({30, 40});
    a_->onAppear = [&] { EXPECT_EQ(a_->view()->frame(), NSMakeRect(0, 0, 400, 300)); };
    open({b_, a_});
    const double left = window_->frame().origin.x;
    select(a_);
    EXPECT_EQ(window_->frame().origin.x, left);
    EXPECT_EQ(controller_->minimumViewRects().at("A"), "{{0, 0}, {400, 300}}");
}

TEST_F(PreferencesWindow, APaneHasItsSizeBeforeItAppears) {
    store("MASPreferences A Frame", "{{7, 9}, {420, 310}}");
    a_->onAppear = [&] { EXPECT_EQ(a_->view()->frame(), NSMakeRect(7, 9, 420, 310)); };
    open({a_});
    EXPECT_THAT(taken(), testing::Contains("A will appear"));
}

TEST_F(PreferencesWindow, ASavedOriginMovesTheWindowSideways) {
    store("MASPreferences A Frame", "{{7, 9}, {420, 310}}");
    open({b_, a_});
    const double before = top(), left = window_->frame().origin.x;
    select(a_);
    EXPECT_EQ(top(), before);
    EXPECT_EQ(window_->frame().origin.x, left + 7) << "the frame that is needed begins at the view's origin";
    EXPECT_EQ(window_->contentSize(), NSMakeSize(420, 310));
}

TEST_F(PreferencesWindow, TheLeastSizeIsThatOfTheFirstShowingOnly) {
    open({a_, b_});
    show();
    user_->resizeByUser({600, 450});
    select(b_);
    select(a_);
    EXPECT_EQ(window_->contentSize(), NSMakeSize(600, 450));
    EXPECT_EQ(window_->contentMinSize(), NSMakeSize(400, 300));
    EXPECT_EQ(controller_->minimumViewRects().at("A"), "{{0, 0}, {400, 300}}");
}

TEST_F(PreferencesWindow, TheToolbarHasAnItemForEachEntry) {
    open({a_, NSNull::null(), b_});
    EXPECT_THAT(controller_->toolbarItemIdentifiers(),
                ElementsAre("A", NSToolbarFlexibleSpaceItemIdentifier, "B"));
    auto& bar = *window_->toolbar();
    EXPECT_EQ(controller_->toolbarAllowedItemIdentifiers(bar), controller_->toolbarItemIdentifiers());
    EXPECT_EQ(controller_->toolbarDefaultItemIdentifiers(bar), controller_->toolbarItemIdentifiers());
    EXPECT_EQ(controller_->toolbarSelectableItemIdentifiers(bar), controller_->toolbarItemIdentifiers());
    show();
    EXPECT_THAT(user_->toolbarItems(), ElementsAre("Label A", "<flexible space>", "Label B"));

    const auto item = controller_->toolbar_itemForItemIdentifier_willBeInsertedIntoToolbar(bar, "B", true);
    EXPECT_EQ(item->image(), b_->image);
    EXPECT_EQ(item->label(), "Label B");
    EXPECT_EQ(item->target(), controller_);
    EXPECT_EQ(item->action(), "toolbarItemDidClick:");
    const auto bare = controller_->toolbar_itemForItemIdentifier_willBeInsertedIntoToolbar(bar, "?", true);
    EXPECT_EQ(bare->itemIdentifier(), "?");
    EXPECT_EQ(bare->label(), "");
    EXPECT_EQ(bare->target(), nullptr);
}

TEST_F(PreferencesWindow, AClickOnAnItemShowsItsPane) {
    open({a_, b_});
    show();
    EXPECT_TRUE(user_->clickToolbarItem("Label B"));
    EXPECT_EQ(controller_->selectedViewController(), b_);
    EXPECT_EQ(controller_->indexOfSelectedController(), 1u);
}

TEST_F(PreferencesWindow, StepsRoundAndOverSpaces) {
    open({a_, NSNull::null(), b_});
    controller_->goNextTab(nullptr);
    EXPECT_EQ(controller_->selectedViewController(), b_);
    controller_->goNextTab(nullptr);
    EXPECT_EQ(controller_->selectedViewController(), a_);
    controller_->goPreviousTab(nullptr);
    EXPECT_EQ(controller_->selectedViewController(), b_);
    controller_->goPreviousTab(nullptr);
    EXPECT_EQ(controller_->selectedViewController(), a_);
}

TEST_F(PreferencesWindow, WithNothingSelectedStepsBeginAtTheLargestNumber) {
    // 2^63 - 1 is 1 modulo 3 and 2 modulo 5.
    const auto c = pane("C"), d = pane("D"), e = pane("E");
    for (const auto& [panes, next, previous] :
         {std::tuple{MASPreferencesWindowController::Controllers{a_, b_, c}, 2, 0},
          std::tuple{MASPreferencesWindowController::Controllers{a_, b_, c, d, e}, 3, 1}}) {
        open(panes);
        select(nullptr);
        controller_->goNextTab(nullptr);
        EXPECT_EQ(controller_->indexOfSelectedController(), next);
        select(nullptr);
        controller_->goPreviousTab(nullptr);
        EXPECT_EQ(controller_->indexOfSelectedController(), previous);
        select(nullptr);
    }
}

TEST_F(PreferencesWindow, IndexesBeyondTheEndDoNothing) {
    open({a_, b_});
    taken();
    controller_->selectControllerAtIndex(2);
    controller_->selectControllerAtIndex(std::numeric_limits<std::uint64_t>::max());
    EXPECT_THAT(taken(), IsEmpty());
    controller_->selectControllerAtIndex(1);
    EXPECT_EQ(controller_->selectedViewController(), b_);
}

TEST_F(PreferencesWindow, FindsPanesByIdentifier) {
    open({NSNull::null(), b_, a_});
    EXPECT_EQ(controller_->firstViewController(), b_);
    EXPECT_EQ(controller_->viewControllerForIdentifier("A"), a_);
    EXPECT_EQ(controller_->viewControllerForIdentifier("a"), nullptr);
    select(pane("C"));
    EXPECT_EQ(controller_->indexOfSelectedController(), 9223372036854775807u) << "it is not listed";
    select(nullptr);
    open({b_, a_, pane("A")});
    EXPECT_EQ(controller_->viewControllerForIdentifier("A"), a_) << "the first of them";
    select(nullptr);
    open({NSNull::null()});
    EXPECT_EQ(controller_->firstViewController(), nullptr);
}

TEST_F(PreferencesWindow, ThePaneFollowsTheWindowInTheResponderChain) {
    open({a_, b_});
    EXPECT_EQ(window_->nextResponder(), a_.get());
    EXPECT_EQ(a_->nextResponder(), controller_.get());
    select(b_);
    EXPECT_EQ(window_->nextResponder(), b_.get());
    EXPECT_EQ(b_->nextResponder(), controller_.get());
    EXPECT_EQ(a_->nextResponder(), nullptr);
    controller_->patchResponderChain();
    EXPECT_EQ(window_->nextResponder(), b_.get());
    EXPECT_EQ(b_->nextResponder(), controller_.get());
    controller_->clearResponderChain();
    EXPECT_EQ(window_->nextResponder(), controller_.get());
    EXPECT_EQ(b_->nextResponder(), nullptr);
    controller_->clearResponderChain();
    EXPECT_EQ(window_->nextResponder(), controller_.get()) << "what is no pane stays";
    controller_->patchResponderChain();
    select(nullptr);
    EXPECT_EQ(window_->nextResponder(), b_.get()) << "until the chain is mended";
    controller_->patchResponderChain();
    EXPECT_EQ(window_->nextResponder(), controller_.get());
}

TEST_F(PreferencesWindow, WhatFollowedTheWindowFollowsThePane) {
    open({a_, b_});
    controller_->clearResponderChain();
    const auto other = make<NSViewController>();
    window_->setNextResponder(other.get());
    controller_->patchResponderChain();
    EXPECT_EQ(window_->nextResponder(), a_.get());
    EXPECT_EQ(a_->nextResponder(), other.get());
    select(b_);
    EXPECT_EQ(b_->nextResponder(), other.get());
    controller_->clearResponderChain();
    EXPECT_EQ(window_->nextResponder(), other.get());
}

TEST_F(PreferencesWindow, ActionsReachThePane) {
    open({a_, b_});
    show();
    taken();
    EXPECT_TRUE(NSApplication::sharedApplication().sendAction_to_from("doIt:", nullptr, nullptr));
    EXPECT_THAT(taken(), ElementsAre("A does it"));
    EXPECT_TRUE(NSApplication::sharedApplication().sendAction_to_from("goNextTab:", nullptr, nullptr));
    EXPECT_EQ(controller_->selectedViewController(), b_) << "and the controller behind it";
}

TEST_F(PreferencesWindow, TheInitialKeyViewGetsTheKeyboard) {
    const auto first = make<NSTextField>(NSMakeRect(0, 200, 100, 24)),
               second = make<NSTextField>(NSMakeRect(0, 100, 100, 24));
    a_->view()->addSubview(second);
    a_->view()->addSubview(first);
    open({b_, a_});
    select(a_);
    EXPECT_EQ(window_->firstResponder(), first.get()) << "without an answer the uppermost";
    select(b_);
    EXPECT_EQ(window_->firstResponder(), window_.get());
    a_->keyView = second.get();
    select(a_);
    EXPECT_EQ(window_->firstResponder(), second.get());
    select(b_);
    a_->keyView = nullptr;
    select(a_);
    EXPECT_EQ(window_->firstResponder(), window_.get()) << "no view is an answer, too";
}

TEST_F(PreferencesWindow, APaneMaySelectAnotherWhenItIsToAppear) {
    const auto c = pane("C");
    open({a_, b_, c});
    b_->onAppear = [&] { select(c); };
    select(b_);
    EXPECT_EQ(controller_->selectedViewController(), c);
    EXPECT_EQ(window_->contentView(), c->view().get());
    EXPECT_EQ(window_->toolbar()->selectedItemIdentifier(), std::optional<std::string>("C"));
    EXPECT_EQ(window_->nextResponder(), c.get());
    EXPECT_EQ(std::ranges::count(happenings(), "posted 2"), 1);
    EXPECT_EQ(std::ranges::count(happenings(), "posted 1"), 0);
}

TEST_F(PreferencesWindow, AViewThatTookTheKeyboardBeforeKeepsIt) {
    const auto field = make<NSTextField>(NSMakeRect(0, 200, 100, 24)),
               other = make<NSTextField>(NSMakeRect(0, 0, 1, 1));
    b_->view()->addSubview(field);
    b_->view()->addSubview(other);
    b_->keyView = other.get();
    open({a_, b_});
    // Within the new content before the keyboard is given: the window asks for it at once.
    b_->onAppear = [&] {
        window_->setContentView(b_->view());
        window_->makeFirstResponder(field.get());
    };
    select(b_);
    EXPECT_EQ(window_->firstResponder(), field.get());
}

TEST_F(PreferencesWindow, IsNotLoadedWhenItsControllerGoes) {
    make<WatchedController>(&MASPreferencesWindowController::initWithViewControllers,
                            MASPreferencesWindowController::Controllers{a_});
    EXPECT_THAT(happenings(), IsEmpty());
}

TEST_F(PreferencesWindow, TakesAnyDelegateFromTheWindowWhenItGoes) {
    open({a_});
    const auto delegate = std::make_shared<NSWindowDelegate>();
    window_->setDelegate(delegate);
    posts_.reset();
    controller_.reset();
    EXPECT_EQ(window_->delegate(), nullptr);
}

TEST_F(PreferencesWindow, LeavesTheWindowInPeaceWhenItGoes) {
    open({a_});
    show();
    const auto window = window_;
    store("MASPreferences Frame Top Left", "untouched");
    posts_.reset();
    controller_.reset();
    EXPECT_EQ(window->delegate(), nullptr);
    window->setFrameTopLeftPoint({1, 2});
    EXPECT_EQ(stored("MASPreferences Frame Top Left"), "untouched");
}

// Mistakes of a host

TEST_F(PreferencesWindow, EntriesThatAreNoPanesAreNamedWhenTheyAreGiven) {
    const auto general = pane("general");
    const auto controller = make<NSViewController>();
    EXPECT_THAT(
        test::logged([&] {
            open({general, NSNull::null(), nullptr, make<NSView>(), controller});
        }),
        ElementsAre("-[MASPreferencesWindowController initWithViewControllers:title:]: (null) is no pane",
                    "-[MASPreferencesWindowController initWithViewControllers:title:]: NSView is no pane",
                    "-[MASPreferencesWindowController initWithViewControllers:title:]: NSViewController "
                    "is no pane"));
    EXPECT_EQ(controller_->selectedViewController(), general);
    EXPECT_THAT(test::logged([&] {
                    for (std::uint64_t i = 1; i < 5; ++i) controller_->selectControllerAtIndex(i);
                }),
                IsEmpty())
        << "they have been named";
    EXPECT_EQ(controller_->selectedViewController(), nullptr);
    controller_->goPreviousTab(nullptr);
    controller_->goNextTab(nullptr);
}

TEST_F(PreferencesWindow, WhatIsNoPaneIsNamedWhenItIsSelectedAndEmptiesTheWindow) {
    open({pane("general")});
    EXPECT_THAT(
        test::logged([&] { controller_->setSelectedViewController(make<NSViewController>()); }),
        ElementsAre("-[MASPreferencesWindowController setSelectedViewController:]: NSViewController is no "
                    "pane"));
    EXPECT_EQ(controller_->selectedViewController(), nullptr);
    EXPECT_THAT(test::logged([&] { controller_->setSelectedViewController(nullptr); }), IsEmpty());
}

TEST_F(PreferencesWindow, APaneWithoutAViewIsNamedAndNotShown) {
    const auto viewless = pane("viewless");
    viewless->setView(nullptr);
    viewless->hasNoView = true;
    open({pane("general"), viewless});
    taken();
    EXPECT_THAT(
        test::logged([&] { controller_->selectControllerAtIndex(1); }),
        ElementsAre("-[MASPreferencesWindowController setSelectedViewController:]: PreferencesPane has no "
                    "view"));
    EXPECT_EQ(controller_->selectedViewController(), nullptr);
    EXPECT_THAT(taken(), ElementsAre("general commits", "general disappeared"));
}

TEST_F(PreferencesWindow, WithoutPanesThereIsNoneToGoTo) {
    for (const auto& panes : {MASPreferencesWindowController::Controllers{},
                              MASPreferencesWindowController::Controllers{NSNull::null(), NSNull::null()}}) {
        open(panes);
        for (const auto step :
             {&MASPreferencesWindowController::goNextTab, &MASPreferencesWindowController::goPreviousTab})
            EXPECT_THAT(test::logged([&] { (controller_.get()->*step)(nullptr); }),
                        ElementsAre("A MASPreferencesWindowController is to show another pane, and has none"));
        EXPECT_EQ(controller_->selectedViewController(), nullptr);
    }
}

} // namespace zr
