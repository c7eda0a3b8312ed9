#pragma once

#include <AppKit/NSResponder.h>
#include <Base/Colour.h>

#include <memory>
#include <optional>
#include <vector>

namespace zr {

class NSApplication;
class NSWindow;

class NSApplicationDelegate {
public:
    virtual ~NSApplicationDelegate() = default;
    virtual std::optional<bool> applicationShouldTerminateAfterLastWindowClosed(NSApplication&) {
        return std::nullopt;
    }
    virtual void applicationWillTerminate(NSApplication&) {}
};

// The application object of the installed window system: its windows, its event loop, its appearance. Main
// thread only.
class NSApplication : public NSResponder {
public:
    ZR_CLASS(NSApplication, NSResponder)

    // Throws std::logic_error while no window system is installed.
    static NSApplication& sharedApplication();

    std::shared_ptr<NSApplicationDelegate> delegate() const { return delegate_.lock(); }
    void setDelegate(std::weak_ptr<NSApplicationDelegate> delegate) { delegate_ = std::move(delegate); }

    void run();                       // until terminate
    void terminate(NSObject* sender); // an action too: "terminate:"

    // Nothing: follow the desktop. Views are redrawn and told at once.
    void setAppearance(std::optional<Appearance> appearance);
    Appearance effectiveAppearance() const;

    // Windows that were shown and not closed, in the order in which they were first shown.
    std::vector<std::shared_ptr<NSWindow>> windows() const { return windows_; }
    NSWindow* keyWindow() const;

    // To the target or, without one, along the responder chain of the key window and then here. False when
    // nobody took it.
    bool sendAction_to_from(const SEL& action, NSObject* target, NSObject* sender);

private:
    friend class NSWindow;
    friend struct Installation;
    void windowWasShown(NSWindow& window);
    void windowWasClosed(NSWindow& window);
    void closeAllWindows();

    std::weak_ptr<NSApplicationDelegate> delegate_;
    std::vector<std::shared_ptr<NSWindow>> windows_;
    bool terminating_ = false;
};

} // namespace zr
