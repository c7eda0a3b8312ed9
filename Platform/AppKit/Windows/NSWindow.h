// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSResponder.h>
#include <Base/Compiler.h>
#include <Base/Geometry.h>
#include <Foundation/NSNotification.h>
#include <Foundation/Unretained.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace zr {

class NSToolbar;
class NSView;
class NSWindow;
class WindowBarsHolder;
class WindowFocus;
class WindowFrame;
class WindowMouse;
class WindowSheet;

namespace port {
class TrackingLoop;
class WindowClient;
class WindowPeer;
} // namespace port

// What the frame shows, and so lets the user do. Without Titled there is no frame.
enum NSWindowStyleMask : unsigned {
    NSWindowStyleMaskTitled = 1,
    NSWindowStyleMaskClosable = 2,
    NSWindowStyleMaskMiniaturizable = 4,
    NSWindowStyleMaskResizable = 8,
};

enum NSBackingStoreType { NSBackingStoreBuffered = 2 };

// Posted by windows, about themselves.
inline const NSNotificationName NSWindowDidMoveNotification = "NSWindowDidMoveNotification";
inline const NSNotificationName NSWindowDidResizeNotification = "NSWindowDidResizeNotification";
inline const NSNotificationName NSWindowDidBecomeKeyNotification = "NSWindowDidBecomeKeyNotification";

class NSWindowDelegate {
public:
    virtual ~NSWindowDelegate() = default;
    virtual std::optional<bool> windowShouldClose(NSWindow&) { return std::nullopt; } // nothing: it may
    virtual void windowWillClose(NSWindow&) {}
    virtual void windowDidResize(NSWindow&) {}
    virtual void windowDidMove(NSWindow&) {}
    virtual void windowDidBecomeKey(NSWindow&) {}
    virtual void windowDidResignKey(NSWindow&) {}
};

// A window. Its content fills it; window coordinates have their origin at the lower left of the content. A
// window that was shown is held by the application until it closes. It is realised, with all its views, when it
// is first shown, and comes to be without a real window again when it closes. Main thread only.
class ZR_EXPORT NSWindow : public NSResponder {
public:
    ZR_CLASS(NSWindow, NSResponder)
    NSWindow();
    ~NSWindow() override;

    // The content's place and size. Until a frame is set, where the window stands when it is shown is up to the
    // window system. `backing` and `defer` have no effect.
    bool initWithContentRect_styleMask_backing_defer(const NSRect& contentRect, unsigned styleMask,
                                                     NSBackingStoreType backing, bool defer);
    // Content rectangle, style mask, title and limits of the content's size.
    bool initWithCoder(NSCoder& coder) override;
    // An empty window without a frame.
    bool init() override {
        return initWithContentRect_styleMask_backing_defer(NSZeroRect, 0, NSBackingStoreBuffered, false);
    }
    void dealloc() override;

    unsigned styleMask() const { return styleMask_; }
    const std::string& title() const { return title_; }
    void setTitle(const std::string& title);
    NSView* contentView() const { return contentView_.get(); }
    // Takes the content's size; nil: an empty view. The content of a host's window stays, here and there.
    void setContentView(const std::shared_ptr<NSView>& view);
    std::shared_ptr<NSWindowDelegate> delegate() const { return delegate_.lock(); }
    void setDelegate(const Unretained<NSWindowDelegate>& delegate) {
        delegate_ = delegate.givenTo("-[NSWindow setDelegate:]");
    }

    // The whole window with its title bar, menu bar and toolbar; borders beside and below the content do not
    // count. Screen coordinates: points, y up, origin at the lower left of the primary screen. How high a title
    // bar is is known for certain only of a window that was shown.
    NSRect frame() const;
    // The frame of a window like this one with such a content: as much higher.
    NSRect frameRectForContentRect(const NSRect& content) const;
    // Not held to the limits of the content's size by itself; window systems may. `display` has no effect;
    // nothing is animated. Tells the delegate, and posts, what it changed: a resize whenever the content's size
    // is another, a move when the upper left corner is.
    void setFrame_display_animate(const NSRect& frame, bool display, bool animate);
    // Some window systems place windows as they like. One with a title of which no screen would show the
    // title bar comes onto the primary screen when it is shown.
    void setFrameTopLeftPoint(const NSPoint& point);
    bool showsResizeIndicator() const { return showsResizeIndicator_; } // true at first; nothing shows it
    void setShowsResizeIndicator(bool shows) { showsResizeIndicator_ = shows; }

    const std::shared_ptr<NSToolbar>& toolbar() const;          // none at first
    void setToolbar(const std::shared_ptr<NSToolbar>& toolbar); // above the content, which keeps its size

    // One that stands beside the windows in which people work, such as a palette or the preferences: it is no
    // reason for the program to go on, and has no menu bar. To be set before it is shown; false at first.
    //
    // Where menus stand in windows, the application's main menu stands above the toolbar and the content of
    // every other window that has a title and can be minimised, while it is neither a sheet nor modal.
    bool isAuxiliary() const { return auxiliary_; }
    void setAuxiliary(bool auxiliary) { auxiliary_ = auxiliary; }

    const NSSize& contentSize() const;
    void setContentSize(const NSSize& size);
    // For resizing by the user.
    const NSSize& contentMinSize() const;
    const NSSize& contentMaxSize() const;
    void setContentMinSize(const NSSize& size);
    void setContentMaxSize(const NSSize& size);

    void makeKeyAndOrderFront(NSObject* /*sender*/) { show(true); }
    void orderFront(NSObject* /*sender*/) { show(false); }
    void orderOut(NSObject* sender);
    // As the user closes it: asks the delegate; nothing if the style has no Closable. An action too:
    // "performClose:".
    void performClose(NSObject* sender);
    void close(); // does not ask
    bool isVisible() const { return visible_; }
    bool isKeyWindow() const { return key_; }
    // Over another window, which gets no input meanwhile; and that window's, null without one.
    bool isSheet() const;
    NSWindow* attachedSheet() const;

    // The window itself at first. Answers false only where the one before did not resign.
    NSResponder* firstResponder() const;
    bool makeFirstResponder(NSResponder* responder);

    // Becomes first responder when the window is first shown, unless another view is already. Without one the
    // first view of the content does that needs the keyboard, as fields and lists do.
    NSView* initialFirstResponder() const;
    void setInitialFirstResponder(const Unretained<NSView>& view);

    // Ends the editing of a field of this window without asking its delegate, and makes the window first
    // responder.
    void endEditingFor(NSObject* object);

    // The next or previous view that takes the keyboard becomes first responder, where there is one: by the
    // views' nextKeyView, else in the order of the subviews, round and round. Tab and Shift-Tab do that.
    void selectKeyViewFollowingView(NSView* view) { selectKeyView(view, false); }
    void selectKeyViewPrecedingView(NSView* view) { selectKeyView(view, true); }
    bool selectKeyView(NSView* from, bool backwards); // false: there is no other
    // As the key that types these characters would act, whatever has the keyboard.
    bool performKeyEquivalentOf(const char* characters);

    // Links all views anew, by their place: from left to right and then downwards, the content first.
    void recalculateKeyViewLoop();

    void sendEvent(const NSEvent& event);
    // What no view took: key equivalents, then Tab.
    void keyDown(const NSEvent& event) override;
    // Waits for the next event of a type in the mask, and takes it: for a view that follows the pointer from a
    // press to the release in one go. Timers, queues and drawing go on meanwhile; other events wait and are
    // delivered when the event that is being handled has been. Steps of a drag that come faster than they are
    // taken become one. Nothing comes back when the window closes, is hidden or blocked by a modal dialog, when
    // the view that got the press leaves it, or when the application ends: then no further event is to be
    // expected.
    std::optional<NSEvent> nextEventMatchingMask(NSEventMask mask);

    // Screen coordinates: points, y up, origin at the lower left of the primary screen. Zero origin while not
    // realised.
    NSRect convertRectToScreen(const NSRect& rect) const;
    double backingScaleFactor() const; // device pixels for a point

protected:
    // For a window that is somebody else's, and was there before: realised at once, for as long as the peer
    // does not go. Its owner drives the frame of the content, which stays the same view; closing it is up to
    // its owner, too. False while no window system is installed.
    using PeerMaker = std::function<std::unique_ptr<port::WindowPeer>(port::WindowClient& client)>;
    bool initWithForeignPeer(const PeerMaker& makePeer, const std::shared_ptr<NSView>& content,
                             const NSSize& contentSize, const std::string& title);

private:
    friend class NSApplication;
    friend struct PanelSupport;
    struct Client;

    void realise(bool withMenuBar);
    void unrealise();
    void show(bool activate);
    std::unique_ptr<port::TrackingLoop> showModal();
    void showAsSheet(NSWindow* parent);
    void endSheet();
    void wasShown();
    void wasHidden();
    void wasClosed();
    void wentAway() {
        wasClosed();
        unrealise();
    }
    bool shouldClose();
    bool has(NSWindowStyleMask style) const { return (styleMask_ & style) != 0; }
    double usualInset() const;
    void didResize();
    void didMove();
    void tell(void (NSWindowDelegate::*message)(NSWindow&), const NSNotificationName& name);
    bool mayHaveMenuBar() const;
    void setMenuBar(bool shown);
    void mainMenuChanged();
    void scheduleUpdate();
    void update();
    void pressesEnd();
    void cancelTracking();
    void keyChanged(bool key);
    void appearanceChanged();

    std::unique_ptr<Client> client_;
    std::unique_ptr<WindowFrame> frame_;
    std::unique_ptr<WindowFocus> focus_;
    std::unique_ptr<WindowMouse> mouse_;
    std::unique_ptr<WindowSheet> sheet_;
    std::unique_ptr<WindowBarsHolder> bars_;
    std::string title_;
    std::shared_ptr<NSView> contentView_;
    std::weak_ptr<NSWindowDelegate> delegate_;
    std::unique_ptr<port::WindowPeer> peer_;
    unsigned styleMask_ = 0;
    bool wasEverShown_ = false;
    bool showsResizeIndicator_ = true;
    bool foreign_ = false;
    bool visible_ = false;
    bool open_ = false; // shown, and not closed since
    bool closing_ = false;
    bool key_ = false;
    bool auxiliary_ = false;
    bool updateScheduled_ = false;
    unsigned cancellations_ = 0; // of pulls for events: one that sees the number change gives up
};

} // namespace zr
