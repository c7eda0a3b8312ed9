#pragma once

#include <Base/Colour.h>
#include <Base/Event.h>
#include <Base/Font.h>
#include <Base/Geometry.h>
#include <WindowSystem/Canvas.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

// The port is y-down: origins are at the top left, lengths in points. Everything happens on the main thread.
// A peer is owned by its client and tells it when the window system took the real thing away (peerGone); after
// that the peer does nothing any more. A client may destroy its peer in the middle of a call from it.
namespace zr::port {

class Canvas;

class ViewClient {
public:
    virtual ~ViewClient() = default;
    // Draw into the canvas, whose coordinates are the view's own. `dirty` is y-down, within the view.
    virtual void peerDraw(Canvas& canvas, const CGRect& dirty) = 0;
    // Whether the canvas of this view is to run its y axis upwards.
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

class LabelPeer : public virtual ViewPeer {
public:
    virtual void setText(const std::string& text) = 0;
    virtual void setWraps(bool wraps) = 0; // lines at the width, instead of shortening the one there is
    virtual void setAppearance(const FontDescription& font, const Colour& colour,
                               NSTextAlignment alignment) = 0;
};

struct TextFieldLook {
    FontDescription font{};
    Colour colour{};
    NSTextAlignment alignment = NSTextAlignmentLeft;
    Colour background{};
    bool drawsBackground = true;
    bool bezeled = true;
    bool showsFocus = true; // by a ring or the like
    bool operator==(const TextFieldLook&) const = default;
};

// What the user does in a field. The peer has changed its text already.
class TextFieldClient {
public:
    virtual ~TextFieldClient() = default;
    virtual void peerTextEdited(const std::string& text) = 0;
    virtual void peerReturn() = 0;
    virtual bool peerEscape() = 0; // false: the key is for somebody else
    virtual void peerTab(bool backwards) = 0;
};

class TextFieldPeer : public virtual ViewPeer {
public:
    virtual void setText(const std::string& text) = 0;
    virtual void setLook(const TextFieldLook& look) = 0;
    virtual void setEditing(bool editable, bool selectable) = 0;
    virtual void setEnabled(bool enabled) = 0;
    virtual void selectText() = 0; // all of it
};

class ButtonClient {
public:
    virtual ~ButtonClient() = default;
    virtual void peerPressed() = 0; // clicked, or pressed by the keyboard
};

class ButtonPeer : public virtual ViewPeer {
public:
    virtual void setTitle(const std::string& title) = 0;
    virtual void setEnabled(bool enabled) = 0;
    virtual void setDefault(bool isDefault) = 0; // the look of the button that Return presses
    virtual CGSize naturalSize() const = 0;
};

struct Progress {
    double fraction = 0; // 0 to 1
    bool indeterminate = false;
    bool running = false; // moves, where it is indeterminate
    bool visible = true;
    bool operator==(const Progress&) const = default;
};

class ProgressPeer : public virtual ViewPeer {
public:
    virtual void setProgress(const Progress& progress) = 0;
};

struct TableColumn {
    std::string title{};
    double width = 0;
    bool operator==(const TableColumn&) const = default;
};

class TableClient {
public:
    virtual ~TableClient() = default;
    virtual std::string peerText(std::size_t row, std::size_t column) = 0; // of a cell that is to be shown
    // What is seen of the rows: from the upper left corner of the first one.
    virtual void peerScrolled(const CGRect& visible) = 0;
};

// Shows rows of texts, all of the same height, and scrolls them. What the user does besides comes to the window
// as events.
class TablePeer : public virtual ViewPeer {
public:
    virtual void setColumns(const std::vector<TableColumn>& columns) = 0; // the titles are the header's
    virtual void reload(std::size_t rowCount) = 0; // the texts are asked for again, when they are shown
    virtual void setSelection(const std::set<std::size_t>& rows) = 0;
    virtual void setEnabled(bool enabled) = 0;
    virtual void scrollToRow(std::size_t row) = 0; // no further than it takes
    virtual double rowHeight() const = 0;
};

class TableHeaderClient {
public:
    virtual ~TableHeaderClient() = default;
    virtual void peerColumnResized(std::size_t column, double width) = 0; // by the user
};

// The titles above a table.
class TableHeaderPeer : public virtual ViewPeer {
public:
    virtual void setColumns(const std::vector<TableColumn>& columns) = 0;
    virtual void setOffset(double x) = 0; // as far as the table is scrolled
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

} // namespace zr::port
