// SPDX-License-Identifier: MIT
// Whoever is called may drop, remove, close or re-enter everything. The address sanitizer looks on.
#include "Support/LoggedTexts.h"
#include "Support/TableTest.h"
#include "WindowTest.h"

#include <AppKit/NSTextField.h>

#include <algorithm>
#include <stdexcept>

namespace zr {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// Does something when the field that it is the delegate of ends, or is asked.
struct Editor : NSTextFieldDelegate {
    std::optional<bool> control_textShouldEndEditing(NSControl&, NSTextField&) override {
        if (onAsked) onAsked();
        return std::nullopt;
    }
    void controlTextDidEndEditing(const NSNotification&) override {
        if (onEnd) onEnd();
    }
    std::function<void()> onAsked, onEnd;
};

// Does something when it comes into a window.
class Mover : public NSView {
public:
    ZR_CLASS(Mover, NSView)
    void viewDidMoveToWindow() override {
        if (window() && onArrival) onArrival();
    }
    std::function<void()> onArrival;
};
ZR_CLASS_TABLE(Mover)

} // namespace

class Lives : public test::WindowTest {
protected:
    // A window with a box, and in it a field that is being edited.
    void SetUp() override {
        root_ = probe("root", NSMakeRect(0, 0, 200, 100));
        box_ = make<NSView>(NSMakeRect(0, 0, 100, 100));
        field_ = make<NSTextField>(NSMakeRect(10, 10, 80, 24));
        field_->setIdentifier("field");
        field_->setDelegate(editor_);
        box_->addSubview(field_);
        root_->addSubview(box_);
        show(root_);
        window_->makeFirstResponder(field_.get());
        user_->type("a");
    }
    // The last references to the view and to what is in it go.
    void dropField() {
        field_->removeFromSuperview();
        field_.reset();
    }

    std::shared_ptr<Editor> editor_ = std::make_shared<Editor>();
    std::shared_ptr<test::Probe> root_;
    std::shared_ptr<NSView> box_;
    std::shared_ptr<NSTextField> field_;
};

TEST_F(Lives, AFieldMayGoWhenItIsSwitchedOff) {
    NSTextField& field = *field_;
    std::weak_ptr<NSTextField> watched = field_;
    editor_->onEnd = [this] { dropField(); };
    field.setEnabled(false);
    EXPECT_TRUE(watched.expired());
}

TEST_F(Lives, AFieldThatIsSwitchedOnAgainWhileItIsSwitchedOffStaysOn) {
    editor_->onEnd = [this] { field_->setEnabled(true); };
    field_->setEnabled(false);
    EXPECT_TRUE(field_->isEnabled());
    EXPECT_THAT(user_->traits("field"), testing::Not(testing::Contains("disabled"))) << "nor is its peer";
    editor_->onEnd = nullptr;
    field_->setEnabled(false);
    EXPECT_THAT(user_->traits("field"), testing::Contains("disabled"));
}

TEST_F(Lives, ABoxMayGoWhenItIsHidden) {
    NSView& box = *box_;
    std::weak_ptr<NSView> watched = box_;
    editor_->onEnd = [this] {
        box_->removeFromSuperview();
        box_.reset();
    };
    box.setHidden(true);
    EXPECT_TRUE(watched.expired());
    EXPECT_TRUE(root_->subviews().empty());
}

TEST_F(Lives, ABoxThatIsShownAgainWhileItIsHiddenStaysShown) {
    editor_->onEnd = [this] { box_->setHidden(false); };
    box_->setHidden(true);
    EXPECT_FALSE(box_->isHidden());
    EXPECT_TRUE(user_->frameInContent("field")) << "on the screen, too";
}

TEST_F(Lives, AViewThatLeavesAsItArrivesHasNoPeer) {
    const auto mover = make<Mover>(NSMakeRect(100, 0, 50, 50));
    mover->setIdentifier("mover");
    mover->onArrival = [&] { mover->removeFromSuperview(); };
    root_->addSubview(mover);
    EXPECT_FALSE(mover->superview());
    EXPECT_FALSE(mover->window());
    EXPECT_THAT(user_->viewNames(), testing::Not(testing::Contains("mover")));

    // So it is with one deeper down, and with one that comes back at once.
    const auto outer = make<NSView>(NSMakeRect(100, 0, 50, 50));
    outer->addSubview(mover);
    root_->addSubview(outer);
    EXPECT_FALSE(mover->window());
    EXPECT_THAT(user_->viewNames(), testing::Not(testing::Contains("mover")));
    mover->onArrival = [&] {
        mover->onArrival = nullptr;
        mover->removeFromSuperview();
        outer->addSubview(mover);
    };
    outer->addSubview(mover);
    EXPECT_EQ(mover->window(), window_.get());
    const auto names = user_->viewNames();
    EXPECT_EQ(std::ranges::count(names, "mover"), 1);
}

TEST_F(Lives, AViewThatASiblingTakesOutAsItArrivesIsInNoWindow) {
    const auto outer = make<NSView>(NSMakeRect(100, 0, 50, 50)), later = make<NSView>(NSZeroRect);
    const auto mover = make<Mover>(NSZeroRect);
    outer->addSubview(mover);
    outer->addSubview(later);
    mover->onArrival = [&] { later->removeFromSuperview(); };
    root_->addSubview(outer);
    EXPECT_FALSE(later->superview());
    EXPECT_FALSE(later->window());
}

TEST_F(Lives, WhatAddsAViewMayBeResetMeanwhile) {
    const auto other = make<NSView>(NSMakeRect(100, 0, 100, 100));
    root_->addSubview(other);
    NSView* const box = box_.get();
    editor_->onEnd = [this] { box_.reset(); };
    other->addSubview(box_);
    EXPECT_FALSE(box_);
    EXPECT_THAT(other->subviews(), ElementsAre(testing::Property(&std::shared_ptr<NSView>::get, box)));
}

TEST_F(Lives, AViewIsNeverPutIntoItself) {
    const auto other = make<NSView>(NSMakeRect(100, 0, 100, 100));
    root_->addSubview(other);
    editor_->onEnd = [&] { box_->addSubview(other); };
    other->addSubview(box_);
    EXPECT_EQ(other->superview(), box_.get());
    EXPECT_NE(box_->superview(), other.get());
    other->removeFromSuperview();
}

TEST_F(Lives, WhereAViewWasPutMeanwhileItStays) {
    const auto other = make<NSView>(NSMakeRect(100, 0, 50, 100)),
               third = make<NSView>(NSMakeRect(150, 0, 50, 100));
    root_->addSubview(other);
    root_->addSubview(third);
    editor_->onEnd = [&] {
        editor_->onEnd = nullptr;
        third->addSubview(box_);
    };
    other->addSubview(box_);
    EXPECT_EQ(box_->superview(), third.get());
    EXPECT_THAT(other->subviews(), IsEmpty());
    EXPECT_THAT(third->subviews(), ElementsAre(box_));
}

TEST_F(Lives, AContentThatIsReplacedMeanwhileIsNotPutBack) {
    const auto first = probe("first", NSZeroRect), second = probe("second", NSZeroRect);
    editor_->onEnd = [&] {
        editor_->onEnd = nullptr;
        window_->setContentView(second);
    };
    window_->setContentView(first);
    EXPECT_EQ(window_->contentView(), second.get());
    EXPECT_FALSE(first->window());
    EXPECT_FALSE(root_->window());
    EXPECT_THAT(user_->viewNames(), ElementsAre("second"));
}

TEST_F(Lives, AWindowMayCloseWhileItsContentIsReplaced) {
    const std::weak_ptr<NSWindow> watched = window_;
    editor_->onEnd = [this] {
        window_->close();
        window_.reset();
    };
    window_->setContentView(make<NSView>(NSZeroRect));
    EXPECT_TRUE(watched.expired());
}

TEST_F(Lives, ADocumentThatItsClipViewStandsInIsNotKept) {
    std::weak_ptr<NSView> document, clip;
    {
        const auto view = make<NSView>(NSMakeRect(0, 0, 50, 50));
        const auto around = make<NSClipView>(NSMakeRect(0, 0, 50, 50));
        around->setDocumentView(view);
        EXPECT_EQ(around->documentView(), view);
        view->removeFromSuperview();
        view->addSubview(around);
        document = view;
        clip = around;
    }
    EXPECT_TRUE(document.expired());
    EXPECT_TRUE(clip.expired());
}

namespace {

// Takes all rows away when it is asked which may be selected.
struct Shrinking : test::Rows {
    std::optional<bool> tableView_shouldSelectRow(NSTableView& table, long row) override {
        if (row < left) return true;
        count = left;
        table.reloadData();
        return true;
    }
    long left = 0;
};

} // namespace

class ShrinkingTables : public test::WindowTest {
protected:
    void SetUp() override {
        rows_->count = 4;
        const auto scroll = test::scrolledTable(NSMakeRect(0, 0, 200, 200), rows_);
        table_ = std::static_pointer_cast<NSTableView>(scroll->documentView());
        table_->setAllowsMultipleSelection(true);
        show(scroll, {200, 200});
    }

    std::shared_ptr<Shrinking> rows_ = std::make_shared<Shrinking>();
    std::shared_ptr<NSTableView> table_;
};

TEST_F(ShrinkingTables, ARowThatGoesWhenItIsAskedForIsNotSelected) {
    for (const unsigned flags :
         {0U, unsigned{NSEventModifierFlagCommand}, unsigned{NSEventModifierFlagShift}}) {
        rows_->count = 4;
        table_->reloadData();
        EXPECT_THAT(test::logged([&] { user_->clickRow("table", 2, flags); }), IsEmpty());
        EXPECT_THAT(table_->selectedRowIndexes(), IsEmpty());
        EXPECT_EQ(table_->numberOfRows(), 0);
    }
}

TEST_F(ShrinkingTables, OfManyRowsThoseThatStayAreSelected) {
    rows_->left = 2;
    user_->clickRow("table", 0);
    EXPECT_THAT(test::logged([&] { user_->clickRow("table", 3, NSEventModifierFlagShift); }), IsEmpty());
    EXPECT_THAT(table_->selectedRowIndexes(), ElementsAre(0, 1));
}

TEST_F(ShrinkingTables, RowsOfTheFormerSourceAreNotReadFromTheNextOne) {
    EXPECT_THAT(user_->visibleRows("table"), testing::SizeIs(4));
    const auto next = std::make_shared<test::Rows>();
    next->count = 1;
    table_->setDataSource(next);
    user_->visibleRows("table"); // before the table has counted again
    EXPECT_EQ(next->lastAsked, -1);
    platform_.display();
    EXPECT_THAT(user_->visibleRows("table"), testing::SizeIs(1));
}

class StackedSheets : public test::WindowTest {
protected:
    void SetUp() override { show(root_); }
    static std::shared_ptr<NSWindow> sheet(const char* title) {
        auto made = makeWindow(make<NSView>(NSZeroRect), {100, 50});
        made->setTitle(title);
        return made;
    }
    static void begin(NSWindow& sheet, NSWindow* over) {
        NSApplication::sharedApplication().beginSheet_modalForWindow_modalDelegate_didEndSelector_contextInfo(
            sheet, over, nullptr, {}, nullptr);
    }
    static void end(NSWindow& sheet) { NSApplication::sharedApplication().endSheet(sheet); }

    std::shared_ptr<test::Probe> root_ = probe("root", NSMakeRect(0, 0, 200, 100));
};

TEST_F(StackedSheets, NoneStandsOverItself) {
    const auto first = sheet("first");
    begin(*first, window_.get());
    const auto lines = test::logged([&] { begin(*window_, first.get()); });
    EXPECT_THAT(lines, ElementsAre(HasSubstr("a sheet over itself")));
    EXPECT_FALSE(window_->isSheet());
    const auto next = sheet("next");
    begin(*next, window_.get());
    EXPECT_EQ(first->attachedSheet(), next.get());
    EXPECT_EQ(next->attachedSheet(), nullptr);
}

TEST_F(StackedSheets, OneThatBeginsOverAnotherWindowLeavesItsFormerOne) {
    const auto other = makeWindow(make<NSView>(NSZeroRect));
    other->setTitle("other");
    other->makeKeyAndOrderFront(nullptr);
    const auto only = sheet("only");
    begin(*only, window_.get());
    begin(*only, other.get());
    EXPECT_EQ(window_->attachedSheet(), nullptr);
    EXPECT_EQ(other->attachedSheet(), only.get());
    end(*only);
    EXPECT_EQ(other->attachedSheet(), nullptr);
}

TEST_F(StackedSheets, TheUpperOneGoesOnOverTheWindowOfTheLowerThatEnds) {
    window_->setTitle("main");
    const auto lower = sheet("lower"), upper = sheet("upper");
    begin(*lower, window_.get());
    begin(*upper, window_.get());
    end(*lower);
    lower->orderOut(nullptr);
    EXPECT_FALSE(lower->isSheet());
    EXPECT_EQ(window_->attachedSheet(), upper.get());
    EXPECT_TRUE(upper->isKeyWindow());
    user_->mouseDown({5, 5});
    EXPECT_THAT(root_->taken(), testing::Not(testing::Contains(HasSubstr("down")))) << "it is blocked still";
    end(*upper);
    upper->orderOut(nullptr);
    EXPECT_EQ(window_->attachedSheet(), nullptr);
    user_->mouseDown({5, 5});
    EXPECT_THAT(root_->taken(), testing::Contains(HasSubstr("down")));
}

TEST_F(StackedSheets, WhenOneEndsItsWindowGetsTheKeyboard) {
    const auto only = sheet("only");
    begin(*only, window_.get());
    EXPECT_TRUE(only->isKeyWindow());
    end(*only);
    EXPECT_TRUE(window_->isKeyWindow());
    EXPECT_TRUE(only->isVisible()) << "it stays until it is ordered out";
}

namespace {

struct Resigner : NSWindowDelegate {
    void windowDidResignKey(NSWindow&) override {
        if (const auto act = std::exchange(onResign, nullptr)) act();
    }
    std::function<void()> onResign;
};

} // namespace

TEST_F(Lives, AWindowMayCloseBeforeItGetsTheKeyboard) {
    const auto resigner = std::make_shared<Resigner>();
    window_->setDelegate(resigner);
    auto next = makeWindow(make<NSView>(NSZeroRect));
    const std::weak_ptr<NSWindow> watched = next;
    resigner->onResign = [&] {
        next->close();
        next.reset();
    };
    next->makeKeyAndOrderFront(nullptr);
    EXPECT_TRUE(watched.expired());
    EXPECT_THAT(platform_.windows(), testing::SizeIs(1));
}

TEST_F(Lives, AWindowMayCloseWhileItIsOrderedOut) {
    const auto resigner = std::make_shared<Resigner>();
    window_->setDelegate(resigner);
    const std::weak_ptr<NSWindow> watched = window_;
    resigner->onResign = [this] {
        window_->close();
        window_.reset();
    };
    NSWindow& window = *window_;
    window.orderOut(nullptr);
    EXPECT_TRUE(watched.expired());
    EXPECT_THAT(platform_.windows(), IsEmpty());
}

TEST_F(Lives, WhatADelegateThrowsEndsTheEventAndNothingElse) {
    editor_->onAsked = [] { throw std::runtime_error("no answer"); };
    EXPECT_THAT(test::logged([&] { user_->keyDown(kKeyCodeReturn, "\r"); }),
                ElementsAre("NSTextField: an event ends with what was thrown while it was handled: no answer"));
    editor_->onAsked = [] { throw 7; };
    EXPECT_THAT(test::logged([&] { user_->keyDown(kKeyCodeTab, "\t"); }),
                ElementsAre(HasSubstr("no exception")));

    // The field is not in the middle of asking for ever.
    bool asked = false;
    editor_->onAsked = [&] { asked = true; };
    EXPECT_TRUE(window_->makeFirstResponder(nullptr));
    EXPECT_TRUE(asked);
    EXPECT_EQ(window_->firstResponder(), window_.get());
}

TEST_F(Lives, WhatAViewThrowsInTheMiddleOfAPressLeavesTheNextOneWhole) {
    root_->onMouseDown = [] { throw std::runtime_error("not now"); };
    EXPECT_THAT(test::logged([&] { user_->mouseDown({150, 50}); }), ElementsAre(HasSubstr("not now")));
    user_->mouseUp({150, 50});
    root_->onMouseDown = nullptr;
    root_->taken();
    user_->mouseDown({150, 50});
    user_->mouseUp({150, 50});
    EXPECT_THAT(root_->taken(), ElementsAre("down 150 50", "up 150 50"));
}

TEST_F(Lives, WhatIsThrownInAnOwnCallReachesTheCaller) {
    editor_->onAsked = [] { throw std::runtime_error("no answer"); };
    EXPECT_THROW(window_->makeFirstResponder(nullptr), std::runtime_error);
    editor_->onAsked = nullptr;
}

TEST_F(Lives, AWindowWhoseDelegateThrowsAsItClosesMayCloseLater) {
    struct Thrower : NSWindowDelegate {
        void windowWillClose(NSWindow&) override {
            if (throws) throw std::runtime_error("not yet");
        }
        bool throws = true;
    };
    const auto thrower = std::make_shared<Thrower>();
    window_->setDelegate(thrower);
    EXPECT_THROW(window_->close(), std::runtime_error);
    EXPECT_TRUE(window_->isVisible());
    thrower->throws = false;
    window_->close();
    EXPECT_FALSE(window_->isVisible());
}

} // namespace zr
