// SPDX-License-Identifier: MIT
#pragma once

#include <WindowSystem/Windows.h>

#include <memory>

namespace zr {

class NSWindow;

// How a window stands to others as a sheet: over which one, and which one is over it.
class WindowSheet {
public:
    bool isSheet() const { return isSheet_; }
    std::shared_ptr<NSWindow> attached() const { return attached_.lock(); }
    std::shared_ptr<NSWindow> parent() const { return parent_.lock(); }

    // `ofParent` is null for a sheet that blocks all windows.
    void begin(const std::shared_ptr<NSWindow>& own, const std::shared_ptr<NSWindow>& parent,
               WindowSheet* ofParent);
    // On the screen: over the parent's peer or, without one, over all windows, until end().
    void show(port::WindowSystem& system, port::WindowPeer& own, port::WindowPeer* parent);
    void end(port::WindowPeer* own, WindowSheet* ofParent);
    void hidden() { blocking_.reset(); } // it blocks nobody any more

private:
    std::weak_ptr<NSWindow> attached_, parent_;
    std::unique_ptr<port::TrackingLoop> blocking_; // of one that blocks all windows; nobody waits for it
    bool isSheet_ = false;
};

} // namespace zr
