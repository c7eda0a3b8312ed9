#include "Installation.h"

#include <AppKit/NSApplication.h>
#include <AppKit/NSWindow.h>

#include <algorithm>
#include <stdexcept>

namespace zr {

ZR_CLASS_TABLE(NSApplication, .actions = {actionNamed<&NSApplication::terminate>("terminate:")})

NSApplication& NSApplication::sharedApplication() {
    auto* installed = installation();
    if (!installed) throw std::logic_error("no window system is installed");
    return *installed->application;
}

void NSApplication::run() {
    terminating_ = false;
    installation()->windowSystem.run();
}

void NSApplication::terminate(NSObject*) {
    if (terminating_) return;
    terminating_ = true;
    if (const auto delegate = delegate_.lock()) delegate->applicationWillTerminate(*this);
    installation()->windowSystem.stop();
}

void NSApplication::setAppearance(std::optional<Appearance> appearance) {
    installation()->windowSystem.setAppearance(appearance);
}

Appearance NSApplication::effectiveAppearance() const { return installation()->windowSystem.appearance(); }

NSWindow* NSApplication::keyWindow() const {
    const auto found = std::ranges::find_if(windows_, [](const auto& window) { return window->isKeyWindow(); });
    return found == windows_.end() ? nullptr : found->get();
}

bool NSApplication::sendAction_to_from(const SEL& action, NSObject* target, NSObject* sender) {
    const auto heldTarget = retained(target);
    if (target) return target->performSelector_withObject(action, sender);
    if (const auto window = retained(keyWindow())) {
        const auto first = retained(window->firstResponder());
        if (first && first->tryToPerform_with(action, sender)) return true;
    }
    return tryToPerform_with(action, sender);
}

void NSApplication::windowWasShown(NSWindow& window) {
    const auto held = retained(&window);
    if (std::ranges::find(windows_, held) == windows_.end()) windows_.push_back(held);
}

void NSApplication::windowWasClosed(NSWindow& window) {
    const auto held = retained(&window);
    if (std::erase(windows_, held) == 0 || !windows_.empty() || terminating_) return;
    const auto delegate = delegate_.lock();
    if (delegate && delegate->applicationShouldTerminateAfterLastWindowClosed(*this).value_or(false))
        terminate(this);
}

void NSApplication::closeAllWindows() {
    terminating_ = true;
    while (!windows_.empty()) {
        const auto window = windows_.back();
        window->close();
    }
}

} // namespace zr
