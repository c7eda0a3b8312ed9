// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Colour.h>
#include <Base/Compiler.h>
#include <Base/Event.h>
#include <Base/Geometry.h>
#include <WindowSystem/Drawing.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

// What a window system must offer. The port is y-down: origins are at the top left, lengths in points.
// Everything happens on the main thread. A peer is owned by its client and tells it when the window system took
// the real thing away (peerGone); after that the peer does nothing any more. A client may destroy its peer in
// the middle of a call from it.
namespace zr::port {

class ViewClient {
public:
    virtual ~ViewClient() = default;
    // Add to the list, in the view's own coordinates. `dirty` is y-down, within the view. Comes only after
    // invalidate(), and when the view is first seen or has another size: what was drawn is kept by the adaptor.
    virtual void peerDraw(OperationList& list, const Rect& dirty) = 0;
    // Whether y runs upwards in the coordinates of this view.
    virtual bool peerDrawsUpwards() const = 0;
    // Whether a press on the window system's own control gives it the keyboard.
    virtual bool peerTakesFocusByPress() const = 0;
    // Asked before the user's doing moves the keyboard here. Whoever has it is asked to let it go, with
    // everything that may follow from that; where it did, the client has called focus() already. False: it
    // stays where it is, and a press that would have moved it does nothing.
    virtual bool peerMayTakeFocus() = 0;
    virtual void peerFocusChanged(bool focused) = 0; // only confirms where the keyboard is
    virtual void peerGone() = 0;
};

// Its parent's peer was made before it. A peer stands where it was placed: no window system resizes or moves it
// by itself when its parent changes. The frame comes before the first drawing.
class ViewPeer {
public:
    virtual ~ViewPeer() = default;
    virtual void setFrame(const Rect& frameInParent) = 0; // exact; the adaptor rounds where its widgets need it
    virtual void setHidden(bool hidden) = 0;
    virtual void raise() = 0;      // in front of its siblings
    virtual void invalidate() = 0; // the whole view is drawn again at the end of the current event
    virtual void focus() = 0;      // takes the keyboard, and asks nobody
    virtual void setName(const std::string& name) = 0; // for tests and accessibility
};

struct ToolbarItem {
    std::string label;
    ImageRepresentations image; // null for none
    Size imageSize;
    enum class Kind { button, space, flexibleSpace } kind = Kind::button;
};

class ToolbarClient {
public:
    virtual ~ToolbarClient() = default;
    virtual void peerClicked(std::size_t index) = 0; // the selection is not changed yet
};

struct MenuItem {
    std::string title{};
    // A key that is as good as choosing the item; empty for none. The window system shows it, and may act on it
    // by itself: then it asks for the menus that lead to the item and chooses it, and the window does not get
    // the key.
    std::string key{};
    std::uint32_t modifierFlags = 0; // of the key
    bool enabled = true;
    bool separator = false;
    // Of an item with a menu of its own: what is in it. Asked each time that menu is about to be shown, and not
    // before.
    std::function<std::vector<MenuItem>()> submenu{};
    std::function<void()> choose{}; // may take the window away
};

// What stands above the content of a window, which keeps its size: the menu bar, and below it the toolbar.
class WindowBars {
public:
    virtual ~WindowBars() = default;
    virtual void setMenuBar(const std::vector<MenuItem>& items) = 0; // none: takes it away
    virtual void setToolbar(const std::vector<ToolbarItem>& items,
                            ToolbarClient* client) = 0; // which outlives it
    virtual void selectToolbarItem(std::optional<std::size_t> index) = 0;
};

class WindowClient {
public:
    virtual ~WindowClient() = default;
    // Location: from the top left of the content. Answers whether the responder chain took the event; what it
    // did not take belongs to whoever hosts the content.
    virtual bool peerEvent(const InputEvent& event) = 0;
    virtual void peerContentResized(Size size) = 0;
    virtual void peerUpdate() = 0; // what scheduleUpdate asked for; comes before the next drawing
    virtual bool peerShouldClose() = 0;
    virtual void peerClosed() = 0; // by the user or by close()
    virtual void peerKeyChanged(bool key) = 0;
    virtual void peerMoved() = 0; // on the screen, or to a screen of another scale
    // By a dialog that is none of our windows: no input comes any more, a release that is due included.
    virtual void peerBlocked() = 0;
    virtual void peerGone() = 0;

    // Of a window that belongs to a host, what the host does by itself. It is closed with peerClosed.
    virtual void peerShown() = 0;
    virtual void peerHidden() = 0;
    virtual void peerRetitled(const std::string& title) = 0;
    virtual void peerFocusLeft() = 0; // the keyboard went to what is none of our views
};

// What the frame of a window lets the user do. A window without a title has no frame.
struct WindowStyle {
    bool titled, closable, miniaturizable, resizable;
};

class WindowPeer {
public:
    virtual ~WindowPeer() = default;
    virtual void show(bool activate) = 0;
    // Over the parent's upper edge, in the middle of it, and moving with it; the parent gets no input until
    // this one is hidden or closed. Other windows do, unless the window system knows only dialogs that block
    // all of them.
    virtual void showAsSheet(WindowPeer& parent) = 0;
    virtual void endSheet() = 0; // stays visible, and blocks nothing any more
    virtual void hide() = 0;
    virtual void close() = 0; // without asking the client; a host may decline
    virtual void setTitle(const std::string& title) = 0;
    virtual Size setContentSize(Size size) = 0; // answers what it became
    virtual void setContentLimits(Size minimum, Size maximum) = 0;
    virtual void scheduleUpdate() = 0;               // asks for one peerUpdate
    virtual Point contentOriginOnScreen() const = 0; // from the top left of the primary screen
    // Of the whole window, with title bar, menu bar and toolbar; from the top left of the primary screen. Not
    // every window system lets programs place windows, or tells where they are.
    virtual Point frameTopLeft() const = 0;
    virtual void setFrameTopLeft(Point topLeft) = 0;
    virtual double topInset() const = 0;     // from the frame's top to the content's, as far as it is known
    virtual WindowBars* bars() = 0;          // null for a window whose bars are its host's
    virtual double backingScale() const = 0; // device pixels for a point
};

// While it lives, the program waits for input in the middle of handling an event. Input for our views comes to
// the window's client as always.
class TrackingLoop {
public:
    virtual ~TrackingLoop() = default;
    // Runs the window system, with timers, queues and drawing, until wake(). False when it ended for another
    // reason, and nothing more is to come. May be nested.
    virtual bool wait() = 0;
    virtual void wake() = 0; // every wait that is under way
};

// Points, from the top left of the primary screen.
struct Screen {
    Rect frame;
    Rect visibleFrame; // without the desktop's own bars
};

// Heights of what may stand above a window's content.
struct WindowInsets {
    double titleBar = 0;
    double menuBar = 0;
    double toolbar = 0;
};

// Makes peers of one kind, as children of their superview's peer. `Parts` is what such a peer needs beside a
// view's.
template <class Peer>
class Maker {
public:
    virtual ~Maker() = default;
    virtual std::unique_ptr<Peer> make(ViewPeer& parent, ViewClient& client,
                                       const typename Peer::Parts& parts) = 0;
};

// The kinds of peers of one wing.
template <class... Peers>
class Makers : public Maker<Peers>... {
public:
    using Maker<Peers>::make...;
};

// An adaptor's way to offer all kinds of a wing: by the list of its own classes. Each names the interface that
// it implements as Interface, and is made of parent, client and parts.
template <class Kinds, class Peer, class... Others>
class MakersBy : public MakersBy<Kinds, Others...> {
public:
    using MakersBy<Kinds, Others...>::make;
    std::unique_ptr<typename Peer::Interface> make(ViewPeer& parent, ViewClient& client,
                                                   const typename Peer::Interface::Parts& parts) override {
        return std::make_unique<Peer>(parent, client, parts);
    }
};
template <class Kinds, class Peer>
class MakersBy<Kinds, Peer> : public Kinds {
public:
    using Kinds::make;
    std::unique_ptr<typename Peer::Interface> make(ViewPeer& parent, ViewClient& client,
                                                   const typename Peer::Interface::Parts& parts) override {
        return std::make_unique<Peer>(parent, client, parts);
    }
};

// What a view asks for its peer. A window system is a Maker of every kind of each wing as well.
class PeerFactory {
public:
    virtual ~PeerFactory() = default;
    virtual std::unique_ptr<WindowPeer> makeWindow(WindowClient& client, Size contentSize,
                                                   WindowStyle style) = 0;
    virtual std::unique_ptr<ViewPeer> makeContentView(WindowPeer& window, ViewClient& client) = 0;
    virtual std::unique_ptr<ViewPeer> makeView(ViewPeer& parent, ViewClient& client) = 0;

    template <class Peer>
    std::unique_ptr<Peer> make(ViewPeer& parent, ViewClient& client, const typename Peer::Parts& parts = {}) {
        return dynamic_cast<Maker<Peer>&>(*this).make(parent, client, parts);
    }
};

class WindowSystem : public Graphics, public PeerFactory {
public:
    virtual Appearance appearance() const = 0;
    virtual void setAppearance(std::optional<Appearance> appearance) = 0; // nothing: follow the desktop
    virtual std::vector<Screen> screens() const = 0;                      // the primary one first; may be none
    // As high as they are expected to be before there is a window.
    virtual WindowInsets usualInsets() const = 0;
    // Whether each window has its menu bar, or there is one for all of them.
    virtual bool menusStandInWindows() const { return true; }
    virtual void setMainMenu(const std::vector<MenuItem>&) {} // where there is one for all
    virtual void run() = 0;                                   // until stop()
    virtual void stop() = 0;
    // For a view that follows the pointer: what is meant for anything else than our views is held back, and
    // handed out when the loop is destroyed. It comes through while a modal loop lives that began later.
    virtual std::unique_ptr<TrackingLoop> beginTracking() = 0;
    // Shows the window in front of all others, in the middle of the one that was in front. They get no input
    // until the loop is destroyed, or the window hidden or closed; the client knows, and is not told so.
    virtual std::unique_ptr<TrackingLoop> beginModal(WindowPeer& window) = 0;
};

// The portable side, as adaptors see it.
class ApplicationClient {
public:
    virtual ~ApplicationClient() = default;
    virtual void appearanceChanged() = 0;
    // Closes all windows and forgets them, while the toolkit still lives.
    virtual void willEnd() = 0;
};

// Makes the window system the one that views, windows and the application object of this process use, with a
// new application object. Ends with uninstall(). At most one at a time.
ZR_EXPORT ApplicationClient& install(WindowSystem& windowSystem);
ZR_EXPORT void uninstall();

} // namespace zr::port
