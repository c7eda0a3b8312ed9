#pragma once

#include <Base/Colour.h>
#include <Base/Event.h>
#include <Base/Geometry.h>
#include <WindowSystem/Drawing.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

// The port is y-down: origins are at the top left, lengths in points. Everything happens on the main thread.
// A peer is owned by its client and tells it when the window system took the real thing away (peerGone); after
// that the peer does nothing any more. A client may destroy its peer in the middle of a call from it.
namespace zr::port {

class ButtonClient;
class ButtonPeer;
class LabelPeer;
class OpenPanelClient;
class OpenPanelPeer;
class ProgressPeer;
class TableClient;
class TableHeaderClient;
class TableHeaderPeer;
class TablePeer;
class TextFieldClient;
class TextFieldPeer;
struct OpenPanel;

class ViewClient {
public:
    virtual ~ViewClient() = default;
    // Add to the list, in the view's own coordinates. `dirty` is y-down, within the view.
    virtual void peerDraw(OperationList& list, const CGRect& dirty) = 0;
    // Whether y runs upwards in the coordinates of this view.
    virtual bool peerDrawsUpwards() const = 0;
    virtual void peerFocusChanged(bool focused) = 0;
    virtual void peerGone() = 0;
};

class ViewPeer {
public:
    virtual ~ViewPeer() = default;
    virtual void
    setFrame(const CGRect& frameInParent) = 0; // exact; the adaptor rounds where its widgets need it
    virtual void setHidden(bool hidden) = 0;
    virtual void raise() = 0;      // in front of its siblings
    virtual void invalidate() = 0; // the whole view is drawn again at the end of the current event
    virtual void focus() = 0;      // takes the keyboard
    virtual void setName(const std::string& name) = 0; // for tests and accessibility
};

struct ToolbarItem {
    std::string label;
    ImageRepresentations image; // null for none
    CGSize imageSize;
    enum class Kind { button, space, flexibleSpace } kind = Kind::button;
};

class ToolbarClient {
public:
    virtual ~ToolbarClient() = default;
    virtual void peerClicked(std::size_t index) = 0; // the selection is not changed yet
};

struct MenuItem {
    std::string title{};
    std::string key{};               // that is as good as choosing the item; only shown here, empty for none
    std::uint32_t modifierFlags = 0; // of the key
    bool enabled = true;
    bool separator = false;
    // Of an item with a menu of its own: what is in it. Asked each time that menu is to be shown.
    std::function<std::vector<MenuItem>()> submenu{};
    std::function<void()> choose{}; // may take the window away
};

class WindowClient {
public:
    virtual ~WindowClient() = default;
    // Location: from the top left of the content. Answers whether the responder chain took the event; what it
    // did not take belongs to whoever hosts the content.
    virtual bool peerEvent(const InputEvent& event) = 0;
    virtual void peerContentResized(CGSize size) = 0;
    virtual void peerUpdate() = 0; // what scheduleUpdate asked for; comes before the next drawing
    virtual bool peerShouldClose() = 0;
    virtual void peerClosed() = 0; // by the user or by close()
    virtual void peerKeyChanged(bool key) = 0;
    virtual void peerMoved() = 0; // on the screen, or to a screen of another scale
    virtual void
    peerBlocked() = 0; // by a modal dialog: no input comes any more, a release that is due included
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
    // In front of all other windows, in the middle of the one that was in front; they get no input until this
    // one is hidden or closed.
    virtual void showModal() = 0;
    // Over the parent's upper edge, in the middle of it, and moving with it; the parent gets no input until
    // this one is hidden or closed. Other windows do.
    virtual void showAsSheet(WindowPeer& parent) = 0;
    virtual void endSheet() = 0; // stays visible, and blocks nothing any more
    virtual void hide() = 0;
    virtual void close() = 0; // without asking the client; a host may decline
    virtual void setTitle(const std::string& title) = 0;
    virtual CGSize setContentSize(CGSize size) = 0; // answers what it became
    virtual void setContentLimits(CGSize minimum, CGSize maximum) = 0;
    virtual void scheduleUpdate() = 0;                 // asks for one peerUpdate
    virtual CGPoint contentOriginOnScreen() const = 0; // from the top left of the primary screen
    // Of the whole window, with title bar, menu bar and toolbar; from the top left of the primary screen. Not
    // every window system lets programs place windows, or tells where they are.
    virtual CGPoint frameTopLeft() const = 0;
    virtual void setFrameTopLeft(CGPoint topLeft) = 0;
    virtual double topInset() const = 0; // from the frame's top to the content's, as far as it is known
    // Above the content, which keeps its size; no items take it away. The client outlives it.
    virtual void setToolbar(const std::vector<ToolbarItem>& items, ToolbarClient* client) = 0;
    virtual void selectToolbarItem(std::optional<std::size_t> index) = 0;
    // Above the toolbar, where menus stand in windows; the content keeps its size. No items take it away.
    virtual void setMenuBar(const std::vector<MenuItem>& items) = 0;
    virtual double backingScale() const = 0; // device pixels for a point
};

// Points, from the top left of the primary screen.
struct Screen {
    CGRect frame;
    CGRect visibleFrame; // without the desktop's own bars
};

// Makes peers. A view's peer is made as a child of its superview's.
class PeerFactory {
public:
    virtual ~PeerFactory() = default;
    virtual std::unique_ptr<WindowPeer> makeWindow(WindowClient& client, CGSize contentSize,
                                                   WindowStyle style) = 0;
    virtual std::unique_ptr<ViewPeer> makeContentView(WindowPeer& window, ViewClient& client) = 0;
    virtual std::unique_ptr<ViewPeer> makeView(ViewPeer& parent, ViewClient& client) = 0;
    virtual std::unique_ptr<LabelPeer> makeLabel(ViewPeer& parent, ViewClient& client) = 0;
    // Of many lines, with a bar to scroll it.
    virtual std::unique_ptr<LabelPeer> makeScrollingText(ViewPeer& parent, ViewClient& client) = 0;
    // A bar, or something round.
    virtual std::unique_ptr<ProgressPeer> makeProgress(ViewPeer& parent, ViewClient& client, bool spinning) = 0;
    virtual std::unique_ptr<TextFieldPeer> makeTextField(ViewPeer& parent, ViewClient& client,
                                                         TextFieldClient& field) = 0;
    virtual std::unique_ptr<ButtonPeer> makeButton(ViewPeer& parent, ViewClient& client,
                                                   ButtonClient& button) = 0;
    virtual std::unique_ptr<TablePeer> makeTable(ViewPeer& parent, ViewClient& client, TableClient& table) = 0;
    virtual std::unique_ptr<TableHeaderPeer> makeTableHeader(ViewPeer& parent, ViewClient& client,
                                                             TableHeaderClient& header) = 0;
};

// While it lives, the program waits for input in the middle of handling an event. Input for our views comes to
// the window's client as always; what is meant for anything else is held back, and handed out when the loop is
// destroyed.
class TrackingLoop {
public:
    virtual ~TrackingLoop() = default;
    // Runs the window system, with timers, queues and drawing, until wake(). False when it ended for another
    // reason, and nothing more is to come. May be nested.
    virtual bool wait() = 0;
    virtual void wake() = 0; // every wait that is under way
    // Whether input for others is held back, as it is at first.
    virtual void holdBack(bool holds) = 0;
};

class WindowSystem : public Graphics, public PeerFactory {
public:
    virtual Appearance appearance() const = 0;
    virtual void setAppearance(std::optional<Appearance> appearance) = 0; // nothing: follow the desktop
    virtual std::vector<Screen> screens() const = 0;                      // the primary one first; may be none
    virtual void run() = 0;                                               // until stop()
    virtual void stop() = 0;
    virtual std::unique_ptr<TrackingLoop> beginTracking() = 0;
    // In front of the window, which gets no input meanwhile, or of all windows. Returns at once.
    virtual std::unique_ptr<OpenPanelPeer> showOpenPanel(const OpenPanel& panel, WindowPeer* over,
                                                         OpenPanelClient& client) = 0;
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
ApplicationClient& install(WindowSystem& windowSystem);
void uninstall();

} // namespace zr::port
