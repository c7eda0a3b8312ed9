// SPDX-License-Identifier: MIT
#pragma once

#include "WindowFocus.h"

#include <array>
#include <memory>

namespace zr {

// Which views got the presses, and so get what follows until the release. Whoever calls holds the window.
class WindowMouse {
public:
    explicit WindowMouse(WindowFocus& focus) : focus_(focus) {}

    // A press goes to the view under the pointer, and what follows to the same view. Others: the wheel.
    void handle(const NSEvent& event, NSView& content);
    // All presses end by something else than the release. Answers the view that had the left button.
    std::shared_ptr<NSView> endPresses();
    // Whether one of the views that are pressed was this one or below it: they are pressed no more.
    bool viewLeaves(NSView& view);

    // As where the left button was last seen down.
    void release(NSView& view) const;
    // A press lives until its release, be that handled here or pulled.
    void wasReleased();
    void endPress();                                      // otherwise; views still get its release
    bool pressWasEnded() const { return pressWasEnded_; } // so, until the next press

private:
    enum Button : std::size_t { left, right, other };
    void send(const NSEvent& event, Button button, NSView& content);

    WindowFocus& focus_;
    std::array<std::weak_ptr<NSView>, 3> pressed_; // by button
    NSPoint lastPress_;                            // where the left button was last seen down
    bool pressLives_ = false;
    bool pressWasEnded_ = false;
};

} // namespace zr
