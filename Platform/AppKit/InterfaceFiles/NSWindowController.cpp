// SPDX-License-Identifier: MIT
#include <AppKit/NSNib.h>
#include <AppKit/NSWindow.h>
#include <AppKit/NSWindowController.h>
#include <Foundation/NSBundle.h>
#include <Foundation/NSLog.h>

#include <utility>

namespace zr {

ZR_CLASS_TABLE(NSWindowController, .actions = {actionNamed<&NSWindowController::showWindow>("showWindow:")},
               .outlets = {outletNamed<&NSWindowController::setWindow>("window")})

bool NSWindowController::initWithWindow(const std::shared_ptr<NSWindow>& window) {
    if (!NSResponder::init()) return false;
    setWindow(window);
    return true;
}

bool NSWindowController::initWithWindowNibName(const std::string& name) {
    return initWithWindowNibName_owner(name, retained(this));
}

bool NSWindowController::initWithWindowNibName_owner(const std::string& name,
                                                     const std::shared_ptr<NSObject>& owner) {
    if (!initWithWindow(nullptr)) return false;
    windowNibName_ = name;
    owner_ = owner;
    return true;
}

std::shared_ptr<NSWindow> NSWindowController::window() {
    if (window_ || windowNibName_.empty() || std::exchange(loadTried_, true)) return window_;
    const auto held = retained(this);
    windowWillLoad();
    loadWindow();
    if (window_) windowDidLoad();
    return window_;
}

void NSWindowController::setWindow(const std::shared_ptr<NSWindow>& window) {
    if (window == window_) return;
    if (window_ && window_->nextResponder() == this) window_->setNextResponder(nullptr);
    window_ = window;
    if (window_) window_->setNextResponder(this);
}

void NSWindowController::loadWindow() {
    const auto owner = this->owner();
    const auto* const bundle = owner ? &NSBundle::bundleForClass(owner->class_()) : nullptr;
    const auto nib = make<NSNib>(&NSNib::initWithNibNamed_bundle, windowNibName_, bundle);
    if (!nib || !nib->instantiateWithOwner_topLevelObjects(owner, &topLevelObjects_)) return;
    if (owner.get() != this)
        for (const auto& object : topLevelObjects_)
            if (!window_) setWindow(std::dynamic_pointer_cast<NSWindow>(object));
    if (!window_) NSLog("The interface file %@.xib connects no window", windowNibName_);
}

void NSWindowController::showWindow(NSObject* sender) {
    if (const auto window = this->window())
        window->makeKeyAndOrderFront(sender);
    else if (windowNibName_.empty())
        NSLog("-[NSWindowController showWindow:]: %@ has no window", this);
}

void NSWindowController::close() {
    if (const auto window = window_) window->close();
}

} // namespace zr
