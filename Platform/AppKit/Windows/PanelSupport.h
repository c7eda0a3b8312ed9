// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <string_view>

namespace zr {

class NSWindow;

namespace port {
class TrackingLoop;
class WindowPeer;
class WindowSystem;
} // namespace port

// What dialogs that the window system shows by itself need of windows and the application.
struct PanelSupport {
    static port::WindowSystem* windowSystem();         // null while none is installed
    static bool hasSystemFor(std::string_view method); // else the log names the method
    static port::WindowPeer* peerOf(NSWindow& window); // null while it is not realised
    static void endPresses(NSWindow& window);          // a view that is pressed gets its release now
    // Waits, with all windows blocked, as long as the panel that `begin` shows is there, or the application
    // ends.
    static void runModal(const std::function<std::unique_ptr<port::TrackingLoop>()>& begin,
                         const std::function<bool()>& isShown);
    static void wakeModal(); // a wait looks whether its panel is still there
};

} // namespace zr
