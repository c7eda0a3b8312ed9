// SPDX-License-Identifier: MIT
#include "Support/LoggedTexts.h"

#include <AppKit/NSApplication.h>
#include <AppKit/NSButton.h>
#include <AppKit/NSMenu.h>
#include <AppKit/NSTableView.h>
#include <AppKit/NSTextField.h>
#include <AppKit/NSToolbar.h>
#include <AppKit/NSWindow.h>
#include <ZRUIKit/SWTimeEditView.h>
#include <ZRUIKit/SplitSliderView.h>
#include <ZRUIKitHeadless/Headless.h>

#include <gmock/gmock.h>

#include <functional>
#include <type_traits>

namespace zr {

namespace {

using test::logged;
using testing::ElementsAre;
using testing::IsEmpty;

struct Judge : SWTimeEditViewDelegate {
    bool SWTimeEditView_isValid(SWTimeEditView&, double) override { return true; }
    void SWTimeEditView_didChangeValue(SWTimeEditView&, double) override {}
};

struct Rows : NSTableViewDataSource {
    long numberOfRowsInTableView(NSTableView&) override { return 0; }
    std::string tableView_objectValueForTableColumn_row(NSTableView&, NSTableColumn&, long) override {
        return "";
    }
};

template <class T>
std::shared_ptr<T> made() {
    if constexpr (std::is_base_of_v<NSObject, T>)
        return make<T>();
    else
        return std::make_shared<T>();
}

template <class T>
T* raw(const std::shared_ptr<T>& object) {
    return object.get();
}
template <class T>
T* raw(T* object) {
    return object;
}

// Every way to give an object to a setter, and what it is then.
template <class Object, class Receiver, class Class, class T, class Getter>
void expectTaken(const std::string& name, const std::shared_ptr<Receiver>& receiver,
                 void (Class::*setter)(const Unretained<T>&), Getter getter) {
    SCOPED_TRACE(name);
    const std::string line = name + ": nobody holds the object that is given, and it is gone at once";
    const auto give = [&](auto&& object) {
        return logged([&] { (receiver.get()->*setter)(std::forward<decltype(object)>(object)); });
    };
    const auto now = [&] { return raw(std::invoke(getter, *receiver)); };
    auto held = made<Object>();
    const std::weak_ptr<Object> weak = held;

    EXPECT_THAT(give(held), IsEmpty());
    EXPECT_EQ(now(), held.get());
    EXPECT_EQ(held.use_count(), 1) << "it is retained";
    EXPECT_THAT(give(nullptr), IsEmpty());
    EXPECT_EQ(now(), nullptr);
    EXPECT_THAT(give(weak), IsEmpty());
    EXPECT_EQ(now(), held.get());
    EXPECT_THAT(give(std::shared_ptr<Object>()), IsEmpty());
    EXPECT_EQ(now(), nullptr);
    EXPECT_THAT(give(std::shared_ptr<Object>(held)), IsEmpty()) << "a copy";
    EXPECT_EQ(now(), held.get());
    EXPECT_THAT(give(std::weak_ptr<Object>()), IsEmpty());
    EXPECT_EQ(now(), nullptr);

    EXPECT_THAT(give(made<Object>()), ElementsAre(line));
    EXPECT_EQ(now(), nullptr);
    EXPECT_THAT(give(std::move(held)), ElementsAre(line));
    held.reset();
    EXPECT_EQ(now(), nullptr);
    EXPECT_THAT(give(weak), ElementsAre(line)) << "gone before";
    EXPECT_EQ(now(), nullptr);
}

} // namespace

TEST(Delegates, AreGivenToEverySetterInTheSameWaysAndNamedWhereNobodyHoldsThem) {
    const headless::Platform platform;
    const auto application = retained(&NSApplication::sharedApplication());
    const auto window = make<NSWindow>();
    const auto toolbar = make<NSToolbar>();
    const auto table = make<NSTableView>();
    expectTaken<NSApplicationDelegate>("-[NSApplication setDelegate:]", application,
                                       &NSApplication::setDelegate, &NSApplication::delegate);
    expectTaken<NSWindowDelegate>("-[NSWindow setDelegate:]", window, &NSWindow::setDelegate,
                                  &NSWindow::delegate);
    expectTaken<NSToolbarDelegate>("-[NSToolbar setDelegate:]", toolbar, &NSToolbar::setDelegate,
                                   &NSToolbar::delegate);
    expectTaken<NSTableViewDelegate>("-[NSTableView setDelegate:]", table, &NSTableView::setDelegate,
                                     &NSTableView::delegate);
    expectTaken<Rows>("-[NSTableView setDataSource:]", table, &NSTableView::setDataSource,
                      &NSTableView::dataSource);
    expectTaken<NSTextFieldDelegate>("-[NSTextField setDelegate:]", make<NSTextField>(),
                                     &NSTextField::setDelegate, &NSTextField::delegate);
    expectTaken<SliderViewDelegate>("-[BaseSliderView setDelegate:]", make<SplitSliderView>(),
                                    &BaseSliderView::setDelegate, &BaseSliderView::delegate);
    expectTaken<Judge>("-[SWTimeEditView setDelegate:]", make<SWTimeEditView>(), &SWTimeEditView::setDelegate,
                       &SWTimeEditView::delegate);
}

TEST(Delegates, TargetsAndViewsThatAreNotRetainedAreGivenInTheSameWays) {
    const headless::Platform platform;
    expectTaken<NSView>("-[NSControl setTarget:]", make<NSButton>(), &NSControl::setTarget, &NSControl::target);
    expectTaken<NSView>("-[NSMenuItem setTarget:]", make<NSMenuItem>(), &NSMenuItem::setTarget,
                        &NSMenuItem::target);
    expectTaken<NSView>("-[NSToolbarItem setTarget:]", make<NSToolbarItem>(), &NSToolbarItem::setTarget,
                        &NSToolbarItem::target);
    expectTaken<NSButton>("-[NSWindow setInitialFirstResponder:]", make<NSWindow>(),
                          &NSWindow::setInitialFirstResponder, &NSWindow::initialFirstResponder);
    expectTaken<NSButton>("-[NSView setNextKeyView:]", make<NSView>(), &NSView::setNextKeyView,
                          &NSView::nextKeyView);
}

TEST(Delegates, AButtonsTargetIsGivenWithItInTheSameWay) {
    const headless::Platform platform;
    const auto target = make<NSView>();
    const auto with = [](const Unretained<NSObject>& given) {
        return logged([&] { NSButton::buttonWithTitle_target_action("Save", given, "save:"); });
    };
    EXPECT_THAT(with(target), IsEmpty());
    EXPECT_THAT(with(nullptr), IsEmpty());
    EXPECT_THAT(with(make<NSView>()),
                ElementsAre(testing::StartsWith("-[NSControl setTarget:]: nobody holds")));
}

TEST(Delegates, AnObjectThatHoldsItselfMayGiveItself) {
    const headless::Platform platform;
    struct Own : NSObject, NSWindowDelegate {};
    const auto own = make<Own>();
    const auto window = make<NSWindow>();
    EXPECT_THAT(logged([&] { window->setDelegate(retained(own.get())); }), IsEmpty());
    EXPECT_EQ(window->delegate(), own);
}

TEST(Delegates, WhatIsHeldByNothingButARawPointerIsNobodys) {
    NSWindowDelegate delegate;
    const auto window = make<NSWindow>();
    const std::shared_ptr<NSWindowDelegate> unowned(std::shared_ptr<void>(), &delegate);
    EXPECT_THAT(logged([&] { window->setDelegate(unowned); }), testing::SizeIs(1));
    EXPECT_EQ(window->delegate(), nullptr);
}

TEST(Delegates, OfATimeFieldMayLetGoOfItselfInAMessage) {
    struct Leaver : Judge {
        bool SWTimeEditView_isValid(SWTimeEditView&, double) override {
            holder->reset();
            return mayEnd; // still there
        }
        std::shared_ptr<Leaver>* holder = nullptr;
        bool mayEnd = true;
    };
    auto leaver = std::make_shared<Leaver>();
    leaver->holder = &leaver;
    const auto field = make<SWTimeEditView>(NSMakeRect(0, 0, 190, 24));
    field->awakeFromNib();
    field->setDelegate(leaver);
    EXPECT_EQ(field->control_textShouldEndEditing(*field->lblHour(), *field->lblHour()), true);
    EXPECT_EQ(leaver, nullptr);
    EXPECT_EQ(field->delegate(), nullptr);
}

} // namespace zr
