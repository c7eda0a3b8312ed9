// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSResponder.h>
#include <Base/Colour.h>
#include <Base/Compiler.h>
#include <Foundation/Unretained.h>

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace zr {

class NSApplication;
class NSMenu;
class NSWindow;

namespace port {
class TrackingLoop;
} // namespace port

enum NSModalResponse : int { NSModalResponseStop = -1000, NSModalResponseAbort = -1001 };

enum NSApplicationTerminateReply : unsigned { NSTerminateCancel = 0, NSTerminateNow = 1 };

class NSApplicationDelegate {
public:
    virtual ~NSApplicationDelegate() = default;
    virtual std::optional<bool> applicationShouldTerminateAfterLastWindowClosed(NSApplication&) {
        return std::nullopt;
    }
    // Nothing: it may. Not asked again while it is being answered.
    virtual std::optional<NSApplicationTerminateReply> applicationShouldTerminate(NSApplication&) {
        return std::nullopt;
    }
    virtual void applicationWillTerminate(NSApplication&) {}
};

// The application object of the installed window system: its windows, its event loop, its appearance. Main
// thread only.
class ZR_EXPORT NSApplication : public NSResponder {
public:
    ZR_CLASS(NSApplication, NSResponder)
    NSApplication();
    ~NSApplication() override;

    // Throws std::logic_error while there is no platform. Of one that is kept longer than its platform nothing
    // comes: the log says so.
    static NSApplication& sharedApplication();

    std::shared_ptr<NSApplicationDelegate> delegate() const { return delegate_.lock(); }
    void setDelegate(const Unretained<NSApplicationDelegate>& delegate) {
        delegate_ = delegate.givenTo("-[NSApplication setDelegate:]");
    }

    void run();                       // until terminate
    void terminate(NSObject* sender); // asks the delegate; an action too: "terminate:"

    // Nothing: follow the desktop. Views are redrawn and told at once.
    void setAppearance(std::optional<Appearance> appearance);
    Appearance effectiveAppearance() const;

    // Shows the window, in front of all others, which get no input, until one of the next three: answers the
    // code then given. Timers and queues go on. Sessions nest and end in reverse order. NSModalResponseAbort
    // when the window closes or the application ends meanwhile.
    int runModalForWindow(NSWindow& window);
    void stopModalWithCode(int code);
    void stopModal() { stopModalWithCode(NSModalResponseStop); }
    void abortModal() { stopModalWithCode(NSModalResponseAbort); }

    // Shows the sheet over the window, which gets no input until endSheet, and returns at once. Other windows
    // can be used. Without a window it is modal to all. There is neither delegate nor end selector here: they
    // are not used.
    void beginSheet_modalForWindow_modalDelegate_didEndSelector_contextInfo(NSWindow& sheet, NSWindow* window,
                                                                            NSObject* modalDelegate,
                                                                            const SEL& didEndSelector,
                                                                            void* contextInfo);
    // The window gets input again; the sheet stays until it is ordered out. Does nothing to other windows.
    void endSheet(NSWindow& sheet);

    // Windows that were shown and not closed, in the order in which they were first shown.
    std::vector<std::shared_ptr<NSWindow>> windows() const { return windows_; }
    NSWindow* keyWindow() const;
    NSWindow* modalWindow() const; // of the innermost modal session

    // Its key equivalents act wherever the keyboard is, but not in modal sessions. Windows that have a menu bar
    // show the menus that are in it when it is set or the window is shown; see NSWindow.
    const std::shared_ptr<NSMenu>& mainMenu() const { return mainMenu_; }
    void setMainMenu(const std::shared_ptr<NSMenu>& menu);

    // To the target or, without one, along the responder chain of the key window and then here. False when
    // nobody took it.
    bool sendAction_to_from(const SEL& action, NSObject* target, NSObject* sender);

private:
    friend class NSWindow;
    friend struct PanelSupport;
    friend struct ApplicationLife;
    struct Link;
    void windowWasShown(NSWindow& window);
    void windowWasClosed(NSWindow& window);
    void closeAllWindows();
    // The target or, without one, the first along the responder chain of the window, and then this, that has
    // the action; null for none.
    std::shared_ptr<NSObject> takerOf(const SEL& action, NSObject* target, NSWindow* window);

    // A pull for events is under way from the first one until the event that is being handled has been handled.
    struct Waiting {
        std::weak_ptr<NSWindow> window;
        NSEvent event;
    };
    struct Tracking {
        std::unique_ptr<port::TrackingLoop> loop;
        std::deque<Waiting> events;
        int pulls = 0; // that wait
    };
    // Hands the event to its window, or keeps it while a pull is under way. Answers whether it was taken.
    bool deliver(NSWindow& window, const NSEvent& event);
    std::optional<NSEvent> nextEvent(NSWindow& window, NSEventMask mask);
    std::optional<NSEvent> takeEvent(NSEventMask mask);
    bool anotherPressComesFirst(NSEventMask mask) const;
    // A session for a window, or for none of ours, from when `begin` shows it and as long as it is shown.
    int runModal(const std::shared_ptr<NSWindow>& window,
                 const std::function<std::unique_ptr<port::TrackingLoop>()>& begin,
                 const std::function<bool()>& isShown);
    void wakeTracking();
    void wakeModal();
    void endTracking();

    std::unique_ptr<Link> link_; // to those below
    std::weak_ptr<NSApplicationDelegate> delegate_;
    std::vector<std::shared_ptr<NSWindow>> windows_;
    std::unique_ptr<Tracking> tracking_;
    struct Modal {
        std::weak_ptr<NSWindow> window;
        std::unique_ptr<port::TrackingLoop> loop;
        std::optional<int> code;
    };
    std::vector<std::shared_ptr<Modal>> modals_; // the innermost last
    std::deque<Waiting>
        leftOver_; // events of a pull that has ended; a pull that begins meanwhile takes them first
    bool deliversLeftOver_ = false;
    int eventsInHand_ = 0;
    std::shared_ptr<NSMenu> mainMenu_;
    bool terminating_ = false;
    bool asksToTerminate_ = false;
};

} // namespace zr
