// SPDX-License-Identifier: MIT
#include "Adaptor.h"

#include <AppKit/NSButton.h>
#include <AppKit/NSTextField.h>

namespace zr::conformance {

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// Counts how often it is asked whether an editing may end.
class Asked : public NSTextFieldDelegate {
public:
    std::optional<bool> control_textShouldEndEditing(NSControl&, NSTextField&) override {
        ++count;
        if (onAsked) onAsked();
        return lets;
    }
    int count = 0;
    bool lets = false;
    std::function<void()> onAsked;
};

class Presses : public NSObject {
public:
    ZR_CLASS(Presses, NSObject)
    void pressed(NSObject*) { ++count; }
    int count = 0;
};

ZR_CLASS_TABLE(Presses, .actions = {actionNamed<&Presses::pressed>("pressed:")})

} // namespace

class ConformanceFocus : public Conformance {
protected:
    void SetUp() override {
        content_->addSubview(field_);
        content_->addSubview(other_);
        content_->addSubview(button_);
        content_->addSubview(view_);
        button_->setTitle("OK");
        button_->setTarget(presses_);
        button_->setAction("pressed:");
        view_->acceptsFocus = true;
        field_->setDelegate(asked_);
        show(content_);
        window_->makeFirstResponder(field_.get());
        adaptor_->settle();
        taken();
    }
    void click(const NSView& view) {
        const NSPoint middle =
            view.convertPoint_toView({NSMidX(view.bounds()), NSMidY(view.bounds())}, nullptr);
        adaptor_->press(*window_, middle);
        adaptor_->settle();
        adaptor_->release(*window_, middle);
        adaptor_->settle();
    }

    std::shared_ptr<NSView> content_ = make<NSView>(NSMakeRect(0, 0, 200, 100));
    std::shared_ptr<NSTextField> field_ = make<NSTextField>(NSMakeRect(5, 70, 80, 24));
    std::shared_ptr<NSTextField> other_ = make<NSTextField>(NSMakeRect(100, 70, 80, 24));
    std::shared_ptr<NSButton> button_ = make<NSButton>(NSMakeRect(5, 10, 80, 30));
    std::shared_ptr<Probe> view_ = probe("view", NSMakeRect(100, 10, 80, 30));
    std::shared_ptr<Asked> asked_ = std::make_shared<Asked>();
    std::shared_ptr<Presses> presses_ = make<Presses>();
};

TEST_F(ConformanceFocus, WhoDoesNotLetTheKeyboardGoIsAskedOnceByEachPress) {
    click(*other_);
    EXPECT_EQ(asked_->count, 1);
    EXPECT_EQ(window_->firstResponder(), field_.get());
    click(*view_);
    EXPECT_EQ(asked_->count, 2);
    EXPECT_EQ(window_->firstResponder(), field_.get());
    EXPECT_THAT(taken(), IsEmpty()) << "the press is over";
}

TEST_F(ConformanceFocus, AButtonThatMayNotHaveTheKeyboardIsNotPressed) {
    click(*button_);
    EXPECT_EQ(asked_->count, 1);
    EXPECT_EQ(presses_->count, 0);
    asked_->lets = true;
    click(*button_);
    EXPECT_EQ(asked_->count, 2);
    EXPECT_EQ(presses_->count, 1);
    EXPECT_EQ(window_->firstResponder(), button_.get());
    click(*button_);
    EXPECT_EQ(asked_->count, 2) << "it has the keyboard already";
    EXPECT_EQ(presses_->count, 2);
}

TEST_F(ConformanceFocus, TheKeyboardMovesOnlyAfterTheAnswer) {
    const NSResponder* whileAsked = nullptr;
    asked_->lets = true;
    asked_->onAsked = [&] { whileAsked = window_->firstResponder(); };
    click(*other_);
    EXPECT_EQ(whileAsked, field_.get());
    EXPECT_EQ(window_->firstResponder(), other_.get());
    click(*view_);
    EXPECT_EQ(window_->firstResponder(), view_.get());
    EXPECT_THAT(taken(), ElementsAre("view become", "view down 40 15", "view up 40 15"));
}

TEST_F(ConformanceFocus, AControlThatDoesNotWantTheKeyboardIsPressedWithoutAsking) {
    button_->setEnabled(false);
    click(*button_);
    EXPECT_EQ(asked_->count, 0);
    EXPECT_EQ(presses_->count, 0);
    EXPECT_EQ(window_->firstResponder(), field_.get());
}

TEST_F(ConformanceFocus, TheWindowMayCloseInTheAnswer) {
    asked_->onAsked = [this] { window_->close(); };
    const NSPoint middle = {140, 82};
    adaptor_->press(*window_, middle);
    adaptor_->settle();
    EXPECT_FALSE(window_->isVisible());
}

TEST_F(ConformanceFocus, ThePressedControlMayLeaveInTheAnswer) {
    asked_->lets = true;
    asked_->onAsked = [this] { button_->removeFromSuperview(); };
    click(*button_);
    EXPECT_EQ(presses_->count, 0);
    EXPECT_NE(window_->firstResponder(), button_.get());
}

} // namespace zr::conformance
