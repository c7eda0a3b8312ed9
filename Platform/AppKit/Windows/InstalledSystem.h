// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/ClassTable.h>
#include <WindowSystem/Windows.h>

#include <memory>
#include <string_view>

namespace zr {

class NSApplication;
class NSEvent;
class NSMenu;
class NSWindow;

// The application as those below it see it: menus and toolbars find with it who takes an action.
class ActionRouter {
public:
    virtual ~ActionRouter() = default;
    // The target or, without one, the first along the responder chain of the window, and then of the
    // application, that has the action; null for none.
    virtual std::shared_ptr<NSObject> takerOf(const SEL& action, NSObject* target, NSWindow* window) = 0;
    virtual std::shared_ptr<NSWindow> keyWindow() const = 0;     // null for none
    virtual bool isModal() const = 0;                            // a session for a window is under way
    virtual bool performKeyOfMainMenu(const NSEvent& event) = 0; // where it acts now
    virtual std::shared_ptr<NSMenu> mainMenu() const = 0;        // null for none
};

// The window system in use, and what belongs to it.
struct InstalledSystem {
    port::WindowSystem& windowSystem;
    std::shared_ptr<NSApplication> application{};
    ActionRouter* router = nullptr; // the application's
    bool eventWasTaken = true;      // false once an event came to the end of its responder chain
};

// Null while none is installed.
InstalledSystem* installedSystem();
// The same for a method, "-[Class method:]", that does nothing without one: the log then says so in one line.
InstalledSystem* systemFor(std::string_view method);
void setInstalledSystem(std::unique_ptr<InstalledSystem> system);

} // namespace zr
