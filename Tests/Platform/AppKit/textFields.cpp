// SPDX-License-Identifier: MIT
#include "WindowTest.h"

#include <AppKit/NSButton.h>
#include <AppKit/NSTextField.h>

namespace zr {

using testing::ElementsAre;

namespace {

class Life : public NSTextFieldDelegate {
public:
    std::optional<bool> control_textShouldBeginEditing(NSControl&, NSTextField&) override { return begins; }
    void controlTextDidBeginEditing(const NSNotification&) override {
        log.emplace_back("began");
        if (onBegan) onBegan();
    }
    void controlTextDidChange(const NSNotification&) override { log.emplace_back("changed"); }
    std::optional<bool> control_textShouldEndEditing(NSControl&, NSTextField&) override {
        log.emplace_back("may end");
        if (onMayEnd) onMayEnd();
        return ends;
    }
    void controlTextDidEndEditing(const NSNotification&) override {
        log.emplace_back("ended");
        if (onEnded) onEnded();
    }
    std::vector<std::string> taken() { return std::exchange(log, {}); }
    std::vector<std::string> log;
    std::function<void()> onBegan, onMayEnd, onEnded;
    bool begins = true, ends = true;
};

} // namespace

// What a delegate may do while it is told, and what becomes of an editing that is cut short.
class TextFields : public test::WindowTest {
protected:
    void SetUp() override {
        root_ = probe("root", NSMakeRect(0, 0, 200, 100));
        for (auto* field : {&first_, &second_}) {
            *field = make<NSTextField>(NSMakeRect(10, field == &first_ ? 60 : 20, 100, 24));
            (*field)->setIdentifier(field == &first_ ? "first" : "second");
            (*field)->setDelegate(life_);
            root_->addSubview(*field);
        }
        first_->setStringValue("one");
        show(root_);
    }
    void begin() {
        user_->mouseDown({50, 70});
        user_->type("x");
        ASSERT_TRUE(first_->isEditing());
        life_->taken();
    }

    std::shared_ptr<Life> life_ = std::make_shared<Life>();
    std::shared_ptr<test::Probe> root_;
    std::shared_ptr<NSTextField> first_, second_;
};

TEST_F(TextFields, HaveThePlatformsDefaults) {
    const auto field = make<NSTextField>(NSMakeRect(0, 0, 100, 24));
    EXPECT_TRUE(field->isEditable());
    EXPECT_TRUE(field->isSelectable());
    EXPECT_TRUE(field->isBezeled());
    EXPECT_TRUE(field->drawsBackground());
    EXPECT_EQ(field->stringValue(), "");
    field->setSelectable(false);
    EXPECT_FALSE(field->isEditable());
    field->setEditable(true);
    EXPECT_TRUE(field->isSelectable());
    field->setEditable(false);
    EXPECT_TRUE(field->isSelectable());
    field->setStringValue(" 12.5 apples");
    EXPECT_EQ(field->doubleValue(), 12.5);
    EXPECT_EQ(field->floatValue(), 12.5f);
    EXPECT_EQ(field->intValue(), 12);
    EXPECT_FALSE(NSTextField::labelWithString("label")->isEditable());
}

TEST_F(TextFields, TheDelegateMayMoveTheFocusWhenAnEditingHasEnded) {
    begin();
    life_->onEnded = [&] { window_->makeFirstResponder(second_.get()); };
    user_->keyDown(kKeyCodeReturn, "\r");
    EXPECT_THAT(life_->taken(), ElementsAre("may end", "ended"));
    EXPECT_EQ(window_->firstResponder(), second_.get());
}

TEST_F(TextFields, TheDelegateMayRemoveHideOrDisableTheFieldWhenAnEditingHasEnded) {
    const std::vector<std::function<void()>> deeds = {[&] { first_->removeFromSuperview(); },
                                                      [&] { first_->setHidden(true); },
                                                      [&] { first_->setEnabled(false); }};
    for (const auto& deed : deeds) {
        begin();
        life_->onEnded = deed;
        user_->keyDown(kKeyCodeReturn, "\r");
        EXPECT_THAT(life_->taken(), ElementsAre("may end", "ended"));
        EXPECT_NE(window_->firstResponder(), first_.get());
        life_->onEnded = nullptr;
        root_->addSubview(first_);
        first_->setHidden(false);
        first_->setEnabled(true);
        platform_.display();
    }
}

TEST_F(TextFields, TheWindowMayGoWhileItsFieldIsAskedOrTold) {
    for (const bool asked : {true, false}) {
        begin();
        auto& moment = asked ? life_->onMayEnd : life_->onEnded;
        moment = [&] {
            window_->close();
            window_ = nullptr;
        };
        user_->keyDown(kKeyCodeTab, "\t");
        EXPECT_EQ(window_, nullptr);
        EXPECT_TRUE(platform_.windows().empty());
        moment = nullptr;
        first_->removeFromSuperview();
        second_->removeFromSuperview();
        SetUp();
    }
}

TEST_F(TextFields, AFieldThatBecomesReadOnlyWhileItIsEditedStillEnds) {
    begin();
    first_->setEditable(false);
    window_->makeFirstResponder(nullptr);
    EXPECT_THAT(life_->taken(), ElementsAre("may end", "ended"));
    EXPECT_FALSE(first_->isEditing());
}

TEST_F(TextFields, AFieldThatIsRemovedEndsWhateverItsDelegateSays) {
    begin();
    life_->ends = false;
    first_->removeFromSuperview();
    EXPECT_THAT(life_->taken(), ElementsAre("may end", "ended"));
    EXPECT_FALSE(first_->isEditing());
    EXPECT_EQ(window_->firstResponder(), window_.get());
    root_->addSubview(first_);
    platform_.display();
    user_->mouseDown({50, 70});
    user_->type("y");
    EXPECT_THAT(life_->taken(), ElementsAre("began", "changed"));
}

TEST_F(TextFields, AViewThatLeftWhileTheFieldWasAskedDoesNotBecomeFirstResponder) {
    begin();
    life_->onMayEnd = [&] { second_->removeFromSuperview(); };
    EXPECT_TRUE(window_->makeFirstResponder(second_.get()));
    EXPECT_EQ(window_->firstResponder(), window_.get());
}

TEST_F(TextFields, ATextSetWhenTheEditingBeganIsTheText) {
    user_->mouseDown({50, 70});
    life_->onBegan = [&] { first_->setStringValue("set"); };
    user_->type("x");
    EXPECT_EQ(first_->stringValue(), "set");
    EXPECT_EQ(user_->labelText("first"), "set");
    EXPECT_THAT(life_->taken(), ElementsAre("began"));
}

TEST_F(TextFields, TabFollowsTheLinksOverViewsThatCannotTakeTheKeyboard) {
    // first -> ten that are switched off -> last; second stands between them in the order of the subviews.
    const auto last = make<NSTextField>(NSMakeRect(10, 0, 50, 18));
    root_->addSubview(last);
    std::shared_ptr<NSView> end = first_;
    for (int i = 0; i < 10; ++i) {
        const auto off = make<NSTextField>(NSMakeRect(120, 0, 10, 10));
        off->setEnabled(false);
        root_->addSubview(off);
        end->setNextKeyView(off);
        end = off;
    }
    end->setNextKeyView(last);
    last->setNextKeyView(first_);
    platform_.display();
    user_->mouseDown({50, 70});
    user_->keyDown(kKeyCodeTab, "\t");
    EXPECT_EQ(window_->firstResponder(), last.get());
    user_->keyDown(kKeyCodeTab, "\t");
    EXPECT_EQ(window_->firstResponder(), first_.get());
    user_->keyDown(kKeyCodeTab, "\t", NSEventModifierFlagShift);
    EXPECT_EQ(window_->firstResponder(), last.get());
    user_->keyDown(kKeyCodeTab, "\t", NSEventModifierFlagShift);
    EXPECT_EQ(window_->firstResponder(), first_.get()) << "all the way back";
}

TEST_F(TextFields, TabInTheOnlyFieldEndsAndTheFieldGoesOn) {
    second_->setHidden(true);
    begin();
    user_->keyDown(kKeyCodeTab, "\t");
    EXPECT_THAT(life_->taken(), ElementsAre("may end", "ended"));
    EXPECT_EQ(window_->firstResponder(), first_.get());
    EXPECT_FALSE(first_->isEditing());
    user_->type("y");
    EXPECT_THAT(life_->taken(), ElementsAre("began", "changed"));
    EXPECT_EQ(first_->stringValue(), "y") << "all of it was selected";
    life_->ends = false;
    user_->keyDown(kKeyCodeTab, "\t", NSEventModifierFlagShift);
    EXPECT_THAT(life_->taken(), ElementsAre("may end"));
    EXPECT_TRUE(first_->isEditing());
}

TEST_F(TextFields, TheInitialFirstResponderHasTheKeyboardWhenTheWindowIsShown) {
    const auto content = probe("content", NSMakeRect(0, 0, 200, 100));
    const auto field = make<NSTextField>(NSMakeRect(0, 0, 100, 24)),
               other = make<NSTextField>(NSMakeRect(0, 30, 100, 24));
    content->addSubview(other);
    content->addSubview(field);
    const auto window = makeWindow(content);
    window->setInitialFirstResponder(field);
    EXPECT_EQ(window->initialFirstResponder(), field.get());
    EXPECT_EQ(window->firstResponder(), window.get());
    window->makeKeyAndOrderFront(nullptr);
    EXPECT_EQ(window->firstResponder(), field.get());
    platform_.windows().back()->type("typed");
    EXPECT_EQ(field->stringValue(), "typed");
    window->makeFirstResponder(other.get());
    window->orderOut(nullptr);
    window->makeKeyAndOrderFront(nullptr);
    EXPECT_EQ(window->firstResponder(), other.get()) << "only the first time";
}

TEST_F(TextFields, WithoutAnInitialFirstResponderTheFirstFieldHasTheKeyboard) {
    const auto content = probe("content", NSMakeRect(0, 0, 200, 100));
    const auto button = NSButton::buttonWithTitle_target_action("Button", nullptr, "performClose:");
    const auto label = make<NSTextField>(NSMakeRect(0, 60, 100, 24)),
               hidden = make<NSTextField>(NSMakeRect(0, 0, 100, 24)),
               field = make<NSTextField>(NSMakeRect(0, 30, 100, 24));
    label->setEditable(false);
    label->setSelectable(true);
    hidden->setHidden(true);
    content->addSubview(button);
    for (const auto& each : {label, hidden, field}) content->addSubview(each);
    const auto window = makeWindow(content);
    window->makeKeyAndOrderFront(nullptr);
    EXPECT_EQ(window->firstResponder(), field.get());
    platform_.windows().back()->type("typed");
    EXPECT_EQ(field->stringValue(), "typed");

    const auto without = makeWindow(probe("other", NSMakeRect(0, 0, 200, 100)));
    without->contentView()->addSubview(
        NSButton::buttonWithTitle_target_action("Button", nullptr, "performClose:"));
    without->makeKeyAndOrderFront(nullptr);
    EXPECT_EQ(without->firstResponder(), without.get()) << "a button does not need it";
}

TEST_F(TextFields, ARefusedEndSelectsTheText) {
    begin();
    life_->ends = false;
    user_->keyDown(kKeyCodeTab, "\t");
    EXPECT_THAT(user_->traits("first"), testing::Contains("all selected"));
}

TEST_F(TextFields, AClickOnAButtonEndsTheEditingFirstAndARefusalStopsTheClick) {
    const auto button = NSButton::buttonWithTitle_target_action("Close", window_, "performClose:");
    button->setFrame(NSMakeRect(120, 20, 70, 30));
    root_->addSubview(button);
    platform_.display();
    begin();
    life_->ends = false;
    user_->mouseDown({150, 35});
    user_->mouseUp({150, 35});
    EXPECT_THAT(life_->taken(), ElementsAre("may end"));
    EXPECT_TRUE(window_->isVisible());
    life_->ends = true;
    user_->mouseDown({150, 35});
    user_->mouseUp({150, 35});
    EXPECT_THAT(life_->taken(), ElementsAre("may end", "ended"));
    EXPECT_FALSE(window_->isVisible());
}

} // namespace zr
