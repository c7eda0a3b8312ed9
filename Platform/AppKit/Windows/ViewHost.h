// SPDX-License-Identifier: MIT
#pragma once

namespace zr {

class NSView;
class NSWindow;

// The window, as its views see it.
class ViewHost {
public:
    virtual ~ViewHost() = default;
    virtual NSWindow& window() = 0;
    virtual void scheduleUpdate() = 0; // layout, before the next drawing
    virtual void contentLeaves() = 0;  // for another place, where the window is not a host's
    virtual void
    viewWillLeave(NSView& view) = 0; // or be hidden: it, and all below it, lose keyboard and pointer
    virtual bool mayTakeFocus(NSView& view) = 0;   // asks whoever has the keyboard, and moves it
    virtual void focusConfirmed(NSView& view) = 0; // by the window system
};

} // namespace zr
