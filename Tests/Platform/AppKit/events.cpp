// SPDX-License-Identifier: MIT
#include "WindowTest.h"

#include <AppKit/NSButton.h>
#include <AppKit/NSTextField.h>

namespace zr {

using testing::ElementsAre;
using testing::IsEmpty;

class Events : public test::WindowTest {
protected:
    void SetUp() override {
        root_ = probe("root", {{0, 0}, {200, 100}});
        child_ = probe("child", {{50, 20}, {100, 60}});
        root_->addSubview(child_);
        show(root_);
        root_->taken();
        child_->taken();
    }
    std::shared_ptr<test::Probe> root_, child_;
};

TEST_F(Events, DragAndReleaseGoToTheViewThatGotThePress) {
    EXPECT_TRUE(user_->mouseDown({60, 30}));
    EXPECT_TRUE(user_->mouseDragged({5, 5}));
    EXPECT_TRUE(user_->mouseUp({-100, 400}));
    EXPECT_THAT(child_->taken(), ElementsAre("down 10 10", "drag -45 -15", "up -150 380"));
    EXPECT_THAT(root_->taken(), IsEmpty());
    user_->mouseDragged({60, 30}); // belongs to nobody
    EXPECT_THAT(child_->taken(), IsEmpty());
}

TEST_F(Events, WhatAViewDoesNotTakeGoesAlongTheChainAndThenToTheHost) {
    child_->passesOn = true;
    EXPECT_TRUE(user_->mouseDown({60, 30}));
    EXPECT_THAT(root_->taken(), ElementsAre("down 60 30"));
    root_->passesOn = true;
    EXPECT_FALSE(user_->mouseDown({60, 30}));
    EXPECT_FALSE(user_->scrollWheel({60, 30}, 0, 1));
    root_->passesOn = false;
    EXPECT_TRUE(user_->scrollWheel({60, 30}, 0, 1));
}

TEST_F(Events, APressMakesAViewThatWantsItFirstResponder) {
    EXPECT_EQ(window_->firstResponder(), window_.get());
    child_->acceptsFocus = true;
    user_->mouseDown({60, 30});
    EXPECT_EQ(window_->firstResponder(), child_.get());
    EXPECT_THAT(child_->taken(), ElementsAre("become", "down 10 10"));
    user_->keyDown(kKeyCodeLeft);
    EXPECT_THAT(child_->taken(), ElementsAre("key -50 -20"));
}

TEST_F(Events, AFirstResponderThatDoesNotResignKeepsThePress) {
    child_->acceptsFocus = root_->acceptsFocus = true;
    window_->makeFirstResponder(root_.get());
    root_->resigns = false;
    user_->mouseDown({60, 30});
    EXPECT_EQ(window_->firstResponder(), root_.get());
    EXPECT_THAT(child_->taken(), IsEmpty());
}

TEST_F(Events, MakingAFirstResponderFollowsThePlatformsSteps) {
    EXPECT_TRUE(window_->makeFirstResponder(child_.get()));
    EXPECT_THAT(child_->taken(), ElementsAre("become"));
    EXPECT_TRUE(window_->makeFirstResponder(child_.get())); // it is already
    EXPECT_THAT(child_->taken(), IsEmpty());
    child_->resigns = false;
    EXPECT_FALSE(window_->makeFirstResponder(root_.get()));
    EXPECT_EQ(window_->firstResponder(), child_.get());
    child_->resigns = true;
    root_->becomes = false;
    EXPECT_TRUE(window_->makeFirstResponder(root_.get())); // the window takes it
    EXPECT_EQ(window_->firstResponder(), window_.get());
    window_->makeFirstResponder(child_.get());
    EXPECT_TRUE(window_->makeFirstResponder(nullptr));
    EXPECT_EQ(window_->firstResponder(), window_.get());
}

TEST_F(Events, AViewThatIsRefusedThePressGetsNothingOfIt) {
    child_->acceptsFocus = true;
    window_->makeFirstResponder(root_.get());
    root_->resigns = false;
    root_->taken();
    user_->mouseDown({60, 30});
    user_->mouseDragged({70, 30});
    user_->mouseUp({70, 30});
    EXPECT_THAT(child_->taken(), IsEmpty());
}

TEST_F(Events, ARemovedViewIsNoFirstResponderWhateverItSays) {
    window_->makeFirstResponder(child_.get());
    child_->resigns = false;
    child_->removeFromSuperview();
    EXPECT_EQ(window_->firstResponder(), window_.get());
}

TEST_F(Events, AButtonThatIsSwitchedOffIsNoFirstResponder) {
    const auto button = NSButton::buttonWithTitle_target_action("Save", nullptr, "save:");
    root_->addSubview(button);
    window_->makeFirstResponder(button.get());
    button->setEnabled(false);
    EXPECT_EQ(window_->firstResponder(), window_.get());
}

TEST_F(Events, AFirstResponderThatLeavesOrIsHiddenResigns) {
    window_->makeFirstResponder(child_.get());
    child_->taken();
    child_->setHidden(true);
    EXPECT_THAT(child_->taken(), ElementsAre("resign"));
    EXPECT_EQ(window_->firstResponder(), window_.get());
    child_->setHidden(false);
    window_->makeFirstResponder(child_.get());
    child_->taken();
    child_->removeFromSuperview();
    EXPECT_THAT(child_->taken(), ElementsAre("resign", "no window"));
    EXPECT_EQ(window_->firstResponder(), window_.get());
}

TEST_F(Events, AViewRemovedInItsPressGetsNoMore) {
    child_->onMouseDown = [this] { child_->removeFromSuperview(); };
    user_->mouseDown({60, 30});
    child_->taken();
    user_->mouseDragged({70, 30});
    user_->mouseUp({70, 30});
    EXPECT_THAT(child_->taken(), IsEmpty());
    EXPECT_THAT(root_->taken(), IsEmpty());
}

TEST_F(Events, TheWindowMayCloseInAnEvent) {
    child_->onMouseDown = [this] { window_->close(); };
    EXPECT_TRUE(user_->mouseDown({60, 30}));
    EXPECT_FALSE(window_->isVisible());
    EXPECT_TRUE(platform_.windows().empty());
}

TEST_F(Events, EventsTellWhatTheyAre) {
    const NSEvent event({.type = NSEventTypeKeyDown,
                         .location = {3, 4},
                         .modifierFlags = NSEventModifierFlagShift,
                         .keyCode = 51,
                         .isARepeat = true,
                         .clickCount = 2,
                         .scrollingDeltaX = 1,
                         .scrollingDeltaY = 2,
                         .timestamp = 5,
                         .characters = "A",
                         .charactersIgnoringModifiers = "a"},
                        100);
    EXPECT_EQ(event.type(), NSEventTypeKeyDown);
    EXPECT_EQ(event.locationInWindow(), NSMakePoint(3, 96));
    EXPECT_EQ(event.modifierFlags(), std::uint32_t(NSEventModifierFlagShift));
    EXPECT_EQ(event.keyCode(), 51);
    EXPECT_TRUE(event.isARepeat());
    EXPECT_EQ(event.clickCount(), 2);
    EXPECT_EQ(event.scrollingDeltaX(), 1.0);
    EXPECT_EQ(event.scrollingDeltaY(), 2.0);
    EXPECT_EQ(event.timestamp(), 5.0);
    EXPECT_EQ(event.characters(), "A");
    EXPECT_EQ(event.charactersIgnoringModifiers(), "a");
}

namespace {

class Target : public NSResponder {
public:
    ZR_CLASS(Target, NSResponder)
    void save(NSObject* sender) { senders.push_back(sender); }
    std::vector<NSObject*> senders;
};
ZR_CLASS_TABLE(Target, .actions = {actionNamed<&Target::save>("save:")})

} // namespace

TEST_F(Events, AButtonSendsItsActionToItsTarget) {
    const auto target = make<Target>();
    const auto button = NSButton::buttonWithTitle_target_action("Save", target, "save:");
    button->setIdentifier("button");
    root_->addSubview(button);
    platform_.display();
    EXPECT_EQ(button->frame().size, NSMakeSize(26 + 32, 13 + 14));
    user_->mouseDown({5, 5});
    EXPECT_THAT(target->senders, IsEmpty());
    user_->mouseUp({5, 5});
    EXPECT_THAT(target->senders, ElementsAre(button.get()));
    user_->mouseDown({5, 5});
    user_->mouseUp({150, 90}); // let go elsewhere
    EXPECT_EQ(target->senders.size(), 1u);
    button->setEnabled(false);
    user_->mouseDown({5, 5});
    user_->mouseUp({5, 5});
    button->performClick(nullptr);
    EXPECT_EQ(target->senders.size(), 1u);
}

TEST_F(Events, WithoutATargetAnActionTravelsTheResponderChain) {
    const auto target = make<Target>();
    const auto button = NSButton::buttonWithTitle_target_action("Save", nullptr, "save:");
    root_->addSubview(button);
    button->performClick(nullptr);
    EXPECT_THAT(target->senders, IsEmpty());
    child_->setNextResponder(target.get());
    target->setNextResponder(root_.get());
    window_->makeFirstResponder(child_.get());
    button->performClick(nullptr);
    EXPECT_THAT(target->senders, ElementsAre(button.get()));
    // At the end of the chain: the window, and the application.
    button->setAction("performClose:");
    button->performClick(nullptr);
    EXPECT_FALSE(window_->isVisible());
}

TEST_F(Events, ATargetThatIsGoneGetsNothingAndNobodyElseDoes) {
    auto target = make<Target>();
    const auto button = NSButton::buttonWithTitle_target_action("Close", target, "performClose:");
    root_->addSubview(button);
    target.reset();
    button->performClick(nullptr);
    EXPECT_TRUE(window_->isVisible());
    button->setAction("");
    button->setTarget(nullptr);
    button->performClick(nullptr);
    EXPECT_TRUE(window_->isVisible());
}

TEST_F(Events, ALabelIsNotHitByItsTextAndFitsIt) {
    const auto label = NSTextField::labelWithString("abcd");
    label->setIdentifier("label");
    EXPECT_EQ(label->frame().size, NSMakeSize(26 + 4, 13));
    root_->addSubview(label);
    EXPECT_EQ(user_->labelText("label"), "abcd");
    label->setStringValue("next");
    EXPECT_EQ(user_->labelText("label"), "next");
    EXPECT_EQ(label->stringValue(), "next");
}

} // namespace zr
