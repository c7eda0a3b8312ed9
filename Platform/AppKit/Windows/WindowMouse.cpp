// SPDX-License-Identifier: MIT
#include "WindowMouse.h"

#include <utility>

namespace zr {

namespace {

enum class Phase { press, drag, release };

struct MouseMessage {
    Phase phase;
    void (NSResponder::*message)(const NSEvent&);
};

MouseMessage mouseMessage(NSEventType type) {
    switch (type) {
    case NSEventTypeLeftMouseDown:
        return {Phase::press, &NSResponder::mouseDown};
    case NSEventTypeLeftMouseDragged:
        return {Phase::drag, &NSResponder::mouseDragged};
    case NSEventTypeLeftMouseUp:
        return {Phase::release, &NSResponder::mouseUp};
    case NSEventTypeRightMouseDown:
        return {Phase::press, &NSResponder::rightMouseDown};
    case NSEventTypeRightMouseDragged:
        return {Phase::drag, &NSResponder::rightMouseDragged};
    case NSEventTypeRightMouseUp:
        return {Phase::release, &NSResponder::rightMouseUp};
    case NSEventTypeOtherMouseDown:
        return {Phase::press, &NSResponder::otherMouseDown};
    case NSEventTypeOtherMouseDragged:
        return {Phase::drag, &NSResponder::otherMouseDragged};
    default:
        return {Phase::release, &NSResponder::otherMouseUp};
    }
}

} // namespace

void WindowMouse::handle(const NSEvent& event, NSView& content) {
    switch (event.type()) {
    case NSEventTypeLeftMouseDown:
    case NSEventTypeLeftMouseDragged:
    case NSEventTypeLeftMouseUp:
        send(event, left, content);
        break;
    case NSEventTypeRightMouseDown:
    case NSEventTypeRightMouseDragged:
    case NSEventTypeRightMouseUp:
        send(event, right, content);
        break;
    case NSEventTypeOtherMouseDown:
    case NSEventTypeOtherMouseDragged:
    case NSEventTypeOtherMouseUp:
        send(event, other, content);
        break;
    case NSEventTypeScrollWheel:
        if (const auto view = retained(content.hitTest(event.locationInWindow()))) view->scrollWheel(event);
        break;
    default:
        break;
    }
}

void WindowMouse::send(const NSEvent& event, Button button, NSView& content) {
    const auto [phase, message] = mouseMessage(event.type());
    auto& pressed = pressed_[button];
    if (phase == Phase::press) {
        pressed = retained(content.hitTest(event.locationInWindow()));
        pressLives_ = true;
        pressWasEnded_ = false;
    }
    if (button == left) lastPress_ = event.locationInWindow();
    const auto view = pressed.lock();
    if (phase == Phase::release) {
        pressed.reset();
        pressLives_ = false;
    }
    if (!view) return;
    const bool takesFocus = event.type() == NSEventTypeLeftMouseDown && view->acceptsFirstResponder();
    if (takesFocus && view.get() != &focus_.first() && !focus_.makeFirst(view.get())) {
        pressed.reset();
        return;
    }
    (view.get()->*message)(event);
}

std::shared_ptr<NSView> WindowMouse::endPresses() {
    auto view = pressed_[left].lock();
    endPress();
    for (auto& pressed : pressed_) pressed.reset();
    return view;
}

void WindowMouse::wasReleased() {
    pressLives_ = false;
    pressed_[left].reset();
}

void WindowMouse::endPress() {
    if (std::exchange(pressLives_, false)) pressWasEnded_ = true;
}

void WindowMouse::release(NSView& view) const {
    InputEvent release;
    release.type = NSEventTypeLeftMouseUp;
    release.location = lastPress_;
    view.mouseUp(NSEvent(release));
}

bool WindowMouse::viewLeaves(NSView& view) {
    bool any = false;
    for (auto& pressed : pressed_) {
        const auto pressedView = pressed.lock();
        if (!pressedView || !pressedView->isDescendantOf(view)) continue;
        pressed.reset();
        any = true;
    }
    return any;
}

} // namespace zr
