#include "Headless.h"
#include "HeadlessQueues.h"

#include <WindowSystem/Controls.h>
#include <WindowSystem/Panels.h>
#include <WindowSystem/Tables.h>
#include <WindowSystem/Windows.h>
#include <ZRUIKitHeadless/RecordingCanvas.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <deque>
#include <functional>
#include <set>
#include <stdexcept>
#include <utility>

namespace zr::headless {

namespace {

constexpr double kNanoseconds = 1e9;

bool isMouseEvent(NSEventType type) {
    return type == NSEventTypeLeftMouseDown || type == NSEventTypeLeftMouseUp ||
           type == NSEventTypeLeftMouseDragged || type == NSEventTypeRightMouseDown ||
           type == NSEventTypeRightMouseUp || type == NSEventTypeRightMouseDragged ||
           type == NSEventTypeScrollWheel;
}

} // namespace

class WindowImplementation;

// One view, whatever its kind; peers refer to it.
class View {
public:
    View(WindowImplementation& window, View* parent, port::ViewClient& client);
    ~View();
    View(const View&) = delete;
    View& operator=(const View&) = delete;

    CGPoint originInContent() const {
        return parent ? CGPoint{parent->originInContent().x + frame.origin.x,
                                parent->originInContent().y + frame.origin.y}
                      : frame.origin;
    }
    bool isShown() const { return !hidden && (!parent || parent->isShown()); }
    View* at(CGPoint point); // in the parent's coordinates
    // Visits may take views away, this one included.
    void walk(const std::function<void(View&)>& visit) {
        const std::weak_ptr<bool> here = alive;
        visit(*this);
        if (here.expired()) return;
        std::vector<std::pair<View*, std::weak_ptr<bool>>> copy;
        for (View* child : children) copy.emplace_back(child, child->alive);
        for (const auto& [child, there] : copy)
            if (!there.expired()) child->walk(visit);
    }

    WindowImplementation* window; // null once the window is gone
    View* parent;
    port::ViewClient* client;
    std::vector<View*> children;
    std::shared_ptr<bool> alive = std::make_shared<bool>(true);
    CGRect frame;
    bool hidden = false;
    bool dirty = true;
    std::string name;
    std::vector<std::string> lines;
    int drawCount = 0;
    // Of labels and buttons.
    std::string text;
    bool enabled = true;
    port::ButtonClient* button = nullptr;
    // Of fields.
    port::TextFieldClient* field = nullptr;
    port::TextFieldLook look;
    bool editable = false;
    bool selectable = false;
    bool allSelected = false;
    bool isDefault = false;
    port::Progress progress;
    bool scrolls = false;
    // Of tables and their headers.
    port::TableClient* table = nullptr;
    port::TableHeaderClient* header = nullptr;
    std::vector<port::TableColumn> columns;
    std::size_t rowCount = 0;
    std::set<std::size_t> selectedRows;
    CGPoint offset; // as far as it is scrolled
    void scrollTo(CGPoint wanted);
};

struct OpenPanelPeer;

class System final : public port::WindowSystem {
public:
    explicit System(Options options);

    std::shared_ptr<port::Bitmap> loadBitmap(const std::string& path) override { return readBitmap(path); }
    TextSize measure(std::string_view line, const FontDescription& font) override;
    std::unique_ptr<port::WindowPeer> makeWindow(port::WindowClient& client, CGSize contentSize,
                                                 port::WindowStyle style) override;
    std::unique_ptr<port::ViewPeer> makeContentView(port::WindowPeer& window,
                                                    port::ViewClient& client) override;
    std::unique_ptr<port::ViewPeer> makeView(port::ViewPeer& parent, port::ViewClient& client) override;
    std::unique_ptr<port::LabelPeer> makeLabel(port::ViewPeer& parent, port::ViewClient& client) override;
    std::unique_ptr<port::LabelPeer> makeScrollingText(port::ViewPeer& parent,
                                                       port::ViewClient& client) override;
    std::unique_ptr<port::ProgressPeer> makeProgress(port::ViewPeer& parent, port::ViewClient& client,
                                                     bool spinning) override;
    std::unique_ptr<port::TextFieldPeer> makeTextField(port::ViewPeer& parent, port::ViewClient& client,
                                                       port::TextFieldClient& field) override;
    std::unique_ptr<port::ButtonPeer> makeButton(port::ViewPeer& parent, port::ViewClient& client,
                                                 port::ButtonClient& button) override;
    std::unique_ptr<port::TablePeer> makeTable(port::ViewPeer& parent, port::ViewClient& client,
                                               port::TableClient& table) override;
    std::unique_ptr<port::TableHeaderPeer> makeTableHeader(port::ViewPeer& parent, port::ViewClient& client,
                                                           port::TableHeaderClient& header) override;
    Appearance appearance() const override { return ownAppearance.value_or(options.appearance); }
    void setAppearance(std::optional<Appearance> appearance) override;
    std::shared_ptr<port::Bitmap> makeBitmap(CGSize size, double scale,
                                             const port::OperationList& operations) override {
        return drawnBitmap(size, scale, appearance(), operations);
    }
    std::vector<port::Screen> screens() const override {
        const CGRect whole{NSZeroPoint, options.screenSize};
        return {{whole, whole}};
    }
    double screenScale() const override { return options.scale; }
    void run() override;
    void stop() override { stopped = true; }
    std::unique_ptr<port::TrackingLoop> beginTracking() override;
    std::unique_ptr<port::OpenPanelPeer> showOpenPanel(const port::OpenPanel& panel, port::WindowPeer* over,
                                                       port::OpenPanelClient& client) override;

    void display();
    void cancelPanelsOver(const WindowImplementation& window);
    void tellAppearance(Appearance before);
    bool has(const WindowImplementation* window) const {
        return std::ranges::find(windows, window) != windows.end();
    }
    void giveKeyBack(); // to the window shown last

    Options options;
    std::shared_ptr<Queues> queues;
    port::ApplicationClient* application = nullptr;
    std::vector<WindowImplementation*> windows;
    std::vector<OpenPanelPeer*> openPanels;
    std::optional<Appearance> ownAppearance;
    std::deque<std::function<void()>> script;
    bool starved = false;
    bool stopped = false;
    int modalWindows = 0;
};

class WindowImplementation final : public Window {
public:
    WindowImplementation(System& platform, port::WindowClient& owner, CGSize size, port::WindowStyle frameStyle)
        : system(platform), client(&owner), contentSize_(size), style(frameStyle) {}
    ~WindowImplementation() override {
        if (root) root->walk([](View& view) { view.window = nullptr; });
    }

    const std::string& title() const override { return title_; }
    CGSize contentSize() const override { return contentSize_; }
    bool isVisible() const override { return visible; }
    bool send(InputEvent event) override;
    void resizeByUser(CGSize size) override;
    void moveByUser(CGPoint origin) override;
    bool closeByUser() override;
    void setKey(bool key) override;
    void blockByModalDialog() override { client->peerBlocked(); }
    void destroy() override;
    const std::vector<std::string>& drawing(std::string_view viewName) const override {
        return named(viewName).lines;
    }
    int drawCount(std::string_view viewName) const override { return named(viewName).drawCount; }
    std::optional<CGRect> frameInContent(std::string_view viewName) const override;
    std::string labelText(std::string_view viewName) const override { return named(viewName).text; }
    std::vector<std::string> traits(std::string_view viewName) const override;
    double shownProgress(std::string_view viewName) const override {
        const auto& progress = named(viewName).progress;
        return progress.indeterminate ? -1 : progress.fraction;
    }
    std::vector<std::vector<std::string>> visibleRows(std::string_view viewName) const override;
    std::vector<std::size_t> selectedRows(std::string_view viewName) const override {
        const auto& rows = named(viewName).selectedRows;
        return {rows.begin(), rows.end()};
    }
    bool clickRow(std::string_view viewName, std::size_t row, std::uint32_t modifierFlags) override;
    std::vector<std::string> columnTitles(std::string_view viewName) const override;
    std::vector<double> columnWidths(std::string_view viewName) const override;
    void resizeColumn(std::string_view viewName, std::size_t column, double width) override;
    bool isSheet() const override { return sheetParent != nullptr; }
    std::vector<std::string> toolbarItems() const override;
    bool clickToolbarItem(std::string_view label) override;
    std::string selectedToolbarItem() const override;
    std::vector<std::string> menuItems(const std::vector<std::string>& menu) const override;
    bool clickMenuItem(const std::vector<std::string>& titles) override;
    std::vector<std::string> viewNames() const override;

    bool isBlocked() const; // by a modal window or a sheet
    bool isBlockedByModalWindow() const;
    void display();
    void setContentSize(CGSize size);
    void focus(View* view);
    bool typed(const InputEvent& event);
    View& named(std::string_view name) const;

    System& system;
    port::WindowClient* client;
    std::string title_;
    CGSize contentSize_;
    CGSize minimum;
    CGSize maximum{16777215, 16777215};
    CGPoint origin{100, 100};
    port::WindowStyle style;
    bool visible = false;
    bool key = false;
    bool updateScheduled = false;
    int modal = 0; // 0: not; else counts up with each
    WindowImplementation* sheetParent = nullptr;
    std::vector<port::MenuItem> menuBar;
    std::vector<port::ToolbarItem> toolbar;
    port::ToolbarClient* toolbarClient = nullptr;
    std::optional<std::size_t> selectedToolbarItem_;
    View* root = nullptr;
    View* focused = nullptr;
    View* pressedButton = nullptr;
};

struct OpenPanelPeer final : port::OpenPanelPeer, OpenPanel {
    OpenPanelPeer(System& owner, port::OpenPanel given, WindowImplementation* over, port::OpenPanelClient& user)
        : system(owner), panel(std::move(given)), parent(over), client(user), modal(++owner.modalWindows) {
        system.openPanels.push_back(this);
    }
    ~OpenPanelPeer() override { std::erase(system.openPanels, this); }

    const std::string& prompt() const override { return panel.prompt; }
    const std::string& folder() const override { return panel.folder; }
    bool choosesFiles() const override { return panel.files; }
    bool choosesFolders() const override { return panel.folders; }
    bool choosesSeveral() const override { return panel.several; }
    Window* window() const override { return parent; }
    void choose(const std::vector<std::string>& paths) override {
        if (paths.empty() || (paths.size() > 1 && !panel.several))
            throw std::logic_error("not what this panel chooses");
        answer(paths);
    }
    void cancel() override { answer({}); }

    void answer(const std::vector<std::string>& paths) {
        auto& platform = system;
        client.peerChose(paths);
        platform.display();
    }

    System& system;
    port::OpenPanel panel;
    WindowImplementation* parent; // null: all
    port::OpenPanelClient& client;
    int modal; // counts up with each modal window and panel
};

View::View(WindowImplementation& owner, View* superview, port::ViewClient& viewClient)
    : window(&owner), parent(superview), client(&viewClient) {
    if (parent)
        parent->children.push_back(this);
    else
        window->root = this;
}

View::~View() {
    if (parent) std::erase(parent->children, this);
    for (View* child : children) child->parent = nullptr;
    if (!window) return;
    if (window->root == this) window->root = nullptr;
    if (window->focused == this) window->focused = nullptr;
    if (window->pressedButton == this) window->pressedButton = nullptr;
}

View* View::at(CGPoint point) {
    if (hidden || !NSPointInRect(point, frame)) return nullptr;
    const CGPoint own = {point.x - frame.origin.x, point.y - frame.origin.y};
    for (std::size_t i = children.size(); i-- > 0;)
        if (View* const hit = children[i]->at(own)) return hit;
    return this;
}

namespace {

// The way from any peer of this adaptor to its view.
struct HasView {
    virtual ~HasView() = default;
    std::unique_ptr<View> view;
};

// The shared body of all view peers.
template <class Interface>
struct PeerOf : Interface, HasView {
    void setFrame(const CGRect& frame) override {
        view->dirty = view->dirty || frame.size != view->frame.size;
        view->frame = frame;
    }
    void setHidden(bool hidden) override {
        view->hidden = hidden;
        if (!hidden) view->walk([](View& shown) { shown.dirty = true; });
    }
    void raise() override {
        auto& siblings = view->parent->children;
        std::erase(siblings, view.get());
        siblings.push_back(view.get());
    }
    void invalidate() override { view->dirty = true; }
    void focus() override {
        if (view->window) view->window->focus(view.get());
    }
    void setName(const std::string& name) override { view->name = name; }
};

struct PlainPeer final : PeerOf<port::ViewPeer> {};

struct LabelPeer final : PeerOf<port::LabelPeer> {
    void setText(const std::string& text) override { view->text = text; }
    void setWraps(bool) override { view->dirty = true; }
    void setAppearance(const FontDescription&, const Colour&, NSTextAlignment) override { view->dirty = true; }
};

struct ProgressPeer final : PeerOf<port::ProgressPeer> {
    void setProgress(const port::Progress& progress) override {
        view->progress = progress;
        view->dirty = true;
    }
};

constexpr double kRowHeight = 19;

struct TablePeer final : PeerOf<port::TablePeer> {
    void setFrame(const CGRect& frame) override {
        PeerOf::setFrame(frame);
        view->scrollTo(view->offset);
    }
    void setColumns(const std::vector<port::TableColumn>& columns) override { view->columns = columns; }
    void reload(std::size_t rowCount) override {
        view->rowCount = rowCount;
        std::erase_if(view->selectedRows, [&](std::size_t row) { return row >= rowCount; });
        view->scrollTo(view->offset);
    }
    void setSelection(const std::set<std::size_t>& rows) override { view->selectedRows = rows; }
    void setEnabled(bool enabled) override { view->enabled = enabled; }
    void scrollToRow(std::size_t row) override {
        const double top = static_cast<double>(row) * kRowHeight, height = view->frame.size.height;
        CGPoint offset = view->offset;
        if (top + kRowHeight > offset.y + height) offset.y = top + kRowHeight - height;
        if (top < offset.y) offset.y = top;
        view->scrollTo(offset);
    }
    double rowHeight() const override { return kRowHeight; }
};

struct TableHeaderPeer final : PeerOf<port::TableHeaderPeer> {
    void setColumns(const std::vector<port::TableColumn>& columns) override { view->columns = columns; }
    void setOffset(double x) override { view->offset.x = x; }
};

struct TextFieldPeer final : PeerOf<port::TextFieldPeer> {
    void setText(const std::string& text) override { view->text = text; }
    void setLook(const port::TextFieldLook& look) override {
        view->look = look;
        view->dirty = true;
    }
    void setEditing(bool editable, bool selectable) override {
        view->editable = editable;
        view->selectable = selectable;
    }
    void setEnabled(bool enabled) override { view->enabled = enabled; }
    void selectText() override { view->allSelected = true; }
};

constexpr double kButtonPaddingX = 32, kButtonPaddingY = 14;
constexpr double kTitleBarHeight = 22, kMenuBarHeight = 24, kToolbarHeight = 56;

struct ButtonPeer final : PeerOf<port::ButtonPeer> {
    explicit ButtonPeer(port::Graphics& system) : graphics(system) {}
    void setTitle(const std::string& title) override { view->text = title; }
    void setEnabled(bool enabled) override { view->enabled = enabled; }
    void setDefault(bool isDefault) override { view->isDefault = isDefault; }
    CGSize naturalSize() const override {
        const auto text = graphics.measure(view->text, {});
        return {text.width + kButtonPaddingX, text.ascent + text.descent + kButtonPaddingY};
    }
    port::Graphics& graphics;
};

struct WindowPeer final : port::WindowPeer {
    explicit WindowPeer(std::unique_ptr<WindowImplementation> implementation)
        : window(std::move(implementation)) {
        window->system.windows.push_back(window.get());
    }
    ~WindowPeer() override {
        auto& platform = window->system;
        std::erase(platform.windows, window.get());
        platform.cancelPanelsOver(*window);
        if (window->key) platform.giveKeyBack();
    }

    void show(bool activate) override {
        window->visible = true;
        if (activate) window->setKey(true);
    }
    void showModal() override {
        window->modal = ++window->system.modalWindows;
        show(true);
    }
    void showAsSheet(port::WindowPeer& parent) override {
        window->sheetParent = dynamic_cast<WindowPeer&>(parent).window.get();
        show(true);
    }
    void endSheet() override { window->sheetParent = nullptr; }
    void hide() override {
        window->visible = false;
        window->modal = 0;
        window->sheetParent = nullptr;
        const bool wasKey = window->key;
        auto& platform = window->system;
        window->setKey(false);
        platform.cancelPanelsOver(*window);
        if (wasKey) platform.giveKeyBack();
    }
    void close() override { window->client->peerClosed(); }
    void setTitle(const std::string& title) override { window->title_ = title; }
    CGSize setContentSize(CGSize size) override {
        window->setContentSize(size);
        return size;
    }
    void setContentLimits(CGSize minimum, CGSize maximum) override {
        window->minimum = minimum;
        window->maximum = maximum;
    }
    void scheduleUpdate() override { window->updateScheduled = true; }
    CGPoint contentOriginOnScreen() const override { return window->origin; }
    CGPoint frameTopLeft() const override { return {window->origin.x, window->origin.y - topInset()}; }
    void setFrameTopLeft(CGPoint topLeft) override {
        window->origin = {topLeft.x, topLeft.y + topInset()};
        window->client->peerMoved();
    }
    double topInset() const override {
        return kTitleBarHeight + (window->menuBar.empty() ? 0 : kMenuBarHeight) +
               (window->toolbar.empty() ? 0 : kToolbarHeight);
    }
    void setToolbar(const std::vector<port::ToolbarItem>& items, port::ToolbarClient* client) override {
        window->toolbar = items;
        window->toolbarClient = client;
        window->selectedToolbarItem_.reset();
    }
    void selectToolbarItem(std::optional<std::size_t> index) override { window->selectedToolbarItem_ = index; }
    void setMenuBar(const std::vector<port::MenuItem>& items) override { window->menuBar = items; }
    double backingScale() const override { return window->system.options.scale; }

    std::unique_ptr<WindowImplementation> window;
};

View& viewOf(port::ViewPeer& peer) { return *dynamic_cast<HasView&>(peer).view; }

template <class Peer>
std::unique_ptr<Peer> attach(std::unique_ptr<Peer> peer, port::ViewPeer& parent, port::ViewClient& client) {
    View& superview = viewOf(parent);
    peer->view = std::make_unique<View>(*superview.window, &superview, client);
    return peer;
}

} // namespace

// As far as there is anything to see.
void View::scrollTo(CGPoint wanted) {
    double width = 0;
    for (const auto& column : columns) width += column.width;
    const double right = width - frame.size.width;
    const double bottom = static_cast<double>(rowCount) * kRowHeight - frame.size.height;
    offset = {std::max(0.0, std::min(wanted.x, right)), std::max(0.0, std::min(wanted.y, bottom))};
    table->peerScrolled({offset, frame.size});
}

// Window

bool Window::mouseDown(CGPoint point, std::uint32_t modifierFlags, int clickCount) {
    return send({.type = NSEventTypeLeftMouseDown,
                 .location = point,
                 .modifierFlags = modifierFlags,
                 .clickCount = clickCount});
}
bool Window::mouseDragged(CGPoint point, std::uint32_t modifierFlags) {
    return send({.type = NSEventTypeLeftMouseDragged, .location = point, .modifierFlags = modifierFlags});
}
bool Window::mouseUp(CGPoint point, std::uint32_t modifierFlags, int clickCount) {
    return send({.type = NSEventTypeLeftMouseUp,
                 .location = point,
                 .modifierFlags = modifierFlags,
                 .clickCount = clickCount});
}
bool Window::scrollWheel(CGPoint point, double deltaX, double deltaY) {
    return send({.type = NSEventTypeScrollWheel,
                 .location = point,
                 .scrollingDeltaX = deltaX,
                 .scrollingDeltaY = deltaY});
}
bool Window::keyDown(std::uint16_t keyCode, const std::string& characters, std::uint32_t modifierFlags) {
    return send({.type = NSEventTypeKeyDown,
                 .modifierFlags = modifierFlags,
                 .keyCode = keyCode,
                 .characters = characters,
                 .charactersIgnoringModifiers = characters});
}
void Window::type(std::string_view text) {
    while (!text.empty()) {
        std::size_t length = 1;
        while (length < text.size() && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80) ++length;
        keyDown(kKeyCodeUnknown, std::string(text.substr(0, length)));
        text.remove_prefix(length);
    }
}
bool Window::keyUp(std::uint16_t keyCode, const std::string& characters, std::uint32_t modifierFlags) {
    return send({.type = NSEventTypeKeyUp,
                 .modifierFlags = modifierFlags,
                 .keyCode = keyCode,
                 .characters = characters,
                 .charactersIgnoringModifiers = characters});
}

bool WindowImplementation::isBlocked() const {
    const auto isSheetHere = [this](const auto* other) { return other->visible && other->sheetParent == this; };
    const auto isPanelHere = [this](const auto* panel) { return panel->parent == this; };
    return isBlockedByModalWindow() || std::ranges::any_of(system.windows, isSheetHere) ||
           std::ranges::any_of(system.openPanels, isPanelHere);
}

bool WindowImplementation::isBlockedByModalWindow() const {
    return std::ranges::any_of(system.windows,
                               [this](const auto* other) { return other->visible && other->modal > modal; }) ||
           std::ranges::any_of(system.openPanels,
                               [this](const auto* panel) { return !panel->parent && panel->modal > modal; });
}

bool WindowImplementation::send(InputEvent event) {
    if (isBlocked()) return false;
    auto& platform = system;
    event.location.y = contentSize_.height - event.location.y;
    event.timestamp = static_cast<double>(platform.queues->now()) / kNanoseconds;
    // The window system's own controls take the mouse themselves.
    View* const hit = root && isMouseEvent(event.type) ? root->at(event.location) : nullptr;
    bool taken = true;
    if (event.type == NSEventTypeLeftMouseDown && hit && hit->button) {
        if (hit->enabled) focus(hit);
        if (!platform.has(this)) return true;
        pressedButton = hit->enabled && focused == hit ? hit : nullptr;
    } else if (pressedButton && event.type == NSEventTypeLeftMouseUp) {
        View* const button = std::exchange(pressedButton, nullptr);
        if (hit == button && button->enabled) button->button->peerPressed();
    } else if (focused && focused->button && event.type == NSEventTypeKeyDown &&
               event.keyCode == kKeyCodeSpace) {
        if (focused->enabled) focused->button->peerPressed();
    } else if (event.type == NSEventTypeScrollWheel && hit && hit->table) {
        hit->scrollTo({hit->offset.x - event.scrollingDeltaX * kRowHeight,
                       hit->offset.y - event.scrollingDeltaY * kRowHeight});
    } else if (event.type == NSEventTypeLeftMouseDown && hit && hit->field) {
        if (hit->enabled && hit->selectable) focus(hit);
        if (!platform.has(this)) return true;
        if (focused == hit) hit->allSelected = false; // the caret goes to where the press was
    } else {
        const bool holdsButton = pressedButton && event.type == NSEventTypeLeftMouseDragged;
        const bool isTyped =
            !holdsButton && focused && focused->field && event.type == NSEventTypeKeyDown && typed(event);
        if (!holdsButton && !isTyped) taken = client->peerEvent(event);
    }
    platform.display(); // this window may be gone by now
    return taken;
}

// A key for the field that has the keyboard. False when it is for somebody else.
bool WindowImplementation::typed(const InputEvent& event) {
    constexpr auto kShortcutFlags =
        NSEventModifierFlagCommand | NSEventModifierFlagOption | NSEventModifierFlagControl;
    View& view = *focused;
    auto& field = *view.field;
    switch (event.keyCode) {
    case kKeyCodeReturn:
    case kKeyCodeKeypadEnter:
        field.peerReturn();
        return true;
    case kKeyCodeTab:
        field.peerTab((event.modifierFlags & NSEventModifierFlagShift) != 0);
        return true;
    case kKeyCodeEscape:
        return field.peerEscape();
    default:
        break;
    }
    if ((event.modifierFlags & kShortcutFlags) != 0) return false;
    if (!view.editable) return true;
    std::string text = std::exchange(view.allSelected, false) ? std::string() : view.text;
    if (event.keyCode == kKeyCodeDelete) {
        // The last character goes, with all its bytes; or what was selected has gone already.
        const bool selected = text.empty() && !view.text.empty();
        while (!selected && !text.empty()) {
            const auto byte = static_cast<unsigned char>(text.back());
            text.pop_back();
            if ((byte & 0xC0) != 0x80) break;
        }
    } else {
        text += event.characters;
    }
    if (text == view.text) return true;
    view.text = text;
    field.peerTextEdited(text);
    return true;
}

void WindowImplementation::resizeByUser(CGSize size) {
    if (!style.resizable) return;
    auto& platform = system;
    setContentSize({std::min(maximum.width, std::max(minimum.width, size.width)),
                    std::min(maximum.height, std::max(minimum.height, size.height))});
    platform.display();
}

void WindowImplementation::setContentSize(CGSize size) {
    contentSize_ = size;
    if (root) {
        root->frame = {NSZeroPoint, size};
        root->dirty = true;
    }
    client->peerContentResized(size);
}

void WindowImplementation::moveByUser(CGPoint contentOrigin) {
    origin = contentOrigin;
    client->peerMoved();
}

bool WindowImplementation::closeByUser() {
    if (sheetParent) return sheetParent->closeByUser(); // a sheet and its window are one to the user
    auto& platform = system;
    if (!style.closable || isBlockedByModalWindow() || !client->peerShouldClose()) return false;
    if (platform.has(this)) client->peerClosed();
    platform.display();
    return true;
}

std::vector<std::string> WindowImplementation::toolbarItems() const {
    std::vector<std::string> labels;
    for (const auto& item : toolbar)
        labels.push_back(item.kind == port::ToolbarItem::Kind::button  ? item.label
                         : item.kind == port::ToolbarItem::Kind::space ? "<space>"
                                                                       : "<flexible space>");
    return labels;
}

bool WindowImplementation::clickToolbarItem(std::string_view label) {
    const auto found = std::ranges::find_if(toolbar, [&](const auto& item) {
        return item.kind == port::ToolbarItem::Kind::button && item.label == label;
    });
    if (found == toolbar.end() || isBlocked()) return false;
    auto& platform = system;
    toolbarClient->peerClicked(static_cast<std::size_t>(found - toolbar.begin()));
    platform.display();
    return true;
}

std::string WindowImplementation::selectedToolbarItem() const {
    return selectedToolbarItem_ ? toolbar.at(*selectedToolbarItem_).label : "";
}

namespace {

const port::MenuItem* itemOf(const std::vector<port::MenuItem>& items, const std::string& title) {
    const auto found =
        std::ranges::find_if(items, [&](const auto& item) { return !item.separator && item.title == title; });
    return found == items.end() ? nullptr : &*found;
}

// Opens one menu after the other. Nothing where there is none.
std::vector<port::MenuItem> opened(std::vector<port::MenuItem> items, const std::vector<std::string>& titles) {
    for (const auto& title : titles) {
        const auto* const item = itemOf(items, title);
        items = item && item->enabled && item->submenu ? item->submenu() : std::vector<port::MenuItem>();
    }
    return items;
}

std::string described(const port::MenuItem& item) {
    constexpr std::array<std::pair<NSEventModifierFlags, const char*>, 4> kModifiers = {
        {{NSEventModifierFlagControl, "Control-"},
         {NSEventModifierFlagOption, "Option-"},
         {NSEventModifierFlagShift, "Shift-"},
         {NSEventModifierFlagCommand, "Command-"}}};
    if (item.separator) return "<separator>";
    std::string text = item.title;
    if (item.submenu) text += " >";
    if (!item.key.empty()) {
        text += " [";
        for (const auto& [flag, name] : kModifiers)
            if ((item.modifierFlags & flag) != 0) text += name;
        text += item.key;
        text += "]";
    }
    if (!item.enabled) text += " (disabled)";
    return text;
}

} // namespace

std::vector<std::string> WindowImplementation::menuItems(const std::vector<std::string>& menu) const {
    std::vector<std::string> lines;
    for (const auto& item : opened(menuBar, menu)) lines.push_back(described(item));
    return lines;
}

bool WindowImplementation::clickMenuItem(const std::vector<std::string>& titles) {
    if (titles.empty() || isBlocked()) return false;
    const auto items = opened(menuBar, {titles.begin(), titles.end() - 1});
    const auto* const item = itemOf(items, titles.back());
    if (!item || !item->enabled || !item->choose) return false;
    auto& platform = system;
    item->choose();
    platform.display();
    return true;
}

void WindowImplementation::setKey(bool nowKey) {
    if (nowKey == key) return;
    if (nowKey)
        for (auto* other : std::vector(system.windows))
            if (other != this && system.has(other)) other->setKey(false);
    key = nowKey;
    client->peerKeyChanged(key);
}

void WindowImplementation::destroy() { client->peerGone(); }

std::optional<CGRect> WindowImplementation::frameInContent(std::string_view viewName) const {
    const View& view = named(viewName);
    if (!view.isShown()) return std::nullopt;
    return CGRect{view.originInContent(), view.frame.size};
}

std::vector<std::string> WindowImplementation::traits(std::string_view viewName) const {
    const View& view = named(viewName);
    const std::array<std::pair<bool, const char*>, 9> all = {{
        {view.editable, "editable"},
        {view.selectable, "selectable"},
        {view.field && view.look.bezeled, "bezel"},
        {view.field && view.look.drawsBackground, "background"},
        {view.field && view.look.showsFocus, "ring"},
        {view.allSelected, "all selected"},
        {view.isDefault, "default"},
        {view.scrolls, "scrolls"},
        {view.progress.running, "running"},
    }};
    std::vector<std::string> names;
    for (const auto& [holds, name] : all)
        if (holds) names.emplace_back(name);
    return names;
}

std::vector<std::vector<std::string>> WindowImplementation::visibleRows(std::string_view viewName) const {
    const View& view = named(viewName);
    const auto first = static_cast<std::size_t>(view.offset.y / kRowHeight);
    std::vector<std::vector<std::string>> rows;
    for (std::size_t row = first;
         row < view.rowCount && static_cast<double>(row) * kRowHeight < view.offset.y + view.frame.size.height;
         ++row) {
        rows.emplace_back();
        for (std::size_t column = 0; column < view.columns.size(); ++column)
            rows.back().push_back(view.table->peerText(row, column));
    }
    return rows;
}

bool WindowImplementation::clickRow(std::string_view viewName, std::size_t row, std::uint32_t modifierFlags) {
    const View& view = named(viewName);
    const double middle = (static_cast<double>(row) + 0.5) * kRowHeight - view.offset.y;
    if (row >= view.rowCount || middle < 0 || middle >= view.frame.size.height || !view.isShown()) return false;
    const CGPoint corner = view.originInContent();
    const CGPoint point = {corner.x + 1, contentSize_.height - (corner.y + middle)};
    return mouseDown(point, modifierFlags) && mouseUp(point, modifierFlags);
}

std::vector<std::string> WindowImplementation::columnTitles(std::string_view viewName) const {
    std::vector<std::string> titles;
    for (const auto& column : named(viewName).columns) titles.push_back(column.title);
    return titles;
}

std::vector<double> WindowImplementation::columnWidths(std::string_view viewName) const {
    std::vector<double> widths;
    for (const auto& column : named(viewName).columns) widths.push_back(column.width);
    return widths;
}

void WindowImplementation::resizeColumn(std::string_view viewName, std::size_t column, double width) {
    auto& platform = system;
    named(viewName).header->peerColumnResized(column, width);
    platform.display();
}

std::vector<std::string> WindowImplementation::viewNames() const {
    std::vector<std::string> names;
    if (root) root->walk([&](View& view) { names.push_back(view.name); });
    return names;
}

View& WindowImplementation::named(std::string_view name) const {
    View* found = nullptr;
    if (root)
        root->walk([&](View& view) {
            if (!found && view.name == name) found = &view;
        });
    if (!found) throw std::out_of_range("no view of that name");
    return *found;
}

void WindowImplementation::focus(View* view) {
    if (view == focused) return;
    if (View* const old = std::exchange(focused, view)) old->client->peerFocusChanged(false);
    if (focused == view) view->client->peerFocusChanged(true);
}

void WindowImplementation::display() {
    auto& platform = system; // layout and drawing may take the window away
    if (std::exchange(updateScheduled, false)) client->peerUpdate();
    if (!platform.has(this) || !visible || !root) return;
    root->walk([&platform](View& view) {
        if (!view.dirty || !view.isShown() || NSIsEmptyRect(view.frame)) return;
        view.dirty = false;
        RecordingCanvas canvas(platform.options.scale, platform.appearance());
        const std::weak_ptr<bool> alive = view.alive;
        view.client->peerDraw(canvas, {NSZeroPoint, view.frame.size});
        if (alive.expired()) return;
        view.lines = canvas.lines();
        ++view.drawCount;
    });
}

// System

System::System(Options given)
    : options(std::move(given)), queues(std::make_shared<Queues>(options.workerThread)) {}

TextSize System::measure(std::string_view line, const FontDescription& font) {
    // Every character is half as wide as the font is high; those beyond the alphabets are as wide as high.
    double width = 0;
    for (const char c : line) {
        const auto byte = static_cast<unsigned char>(c);
        if ((byte & 0xC0) != 0x80) width += byte >= 0xE2 ? font.size : font.size * 0.5;
    }
    return {width, font.size * 0.75, font.size * 0.25};
}

std::unique_ptr<port::WindowPeer> System::makeWindow(port::WindowClient& client, CGSize contentSize,
                                                     port::WindowStyle style) {
    return std::make_unique<WindowPeer>(
        std::make_unique<WindowImplementation>(*this, client, contentSize, style));
}

std::unique_ptr<port::ViewPeer> System::makeContentView(port::WindowPeer& window, port::ViewClient& client) {
    auto& implementation = *dynamic_cast<WindowPeer&>(window).window;
    auto peer = std::make_unique<PlainPeer>();
    peer->view = std::make_unique<View>(implementation, nullptr, client);
    peer->view->frame = {NSZeroPoint, implementation.contentSize_};
    return peer;
}

std::unique_ptr<port::ViewPeer> System::makeView(port::ViewPeer& parent, port::ViewClient& client) {
    return attach(std::make_unique<PlainPeer>(), parent, client);
}

std::unique_ptr<port::LabelPeer> System::makeLabel(port::ViewPeer& parent, port::ViewClient& client) {
    return attach(std::make_unique<LabelPeer>(), parent, client);
}

std::unique_ptr<port::LabelPeer> System::makeScrollingText(port::ViewPeer& parent, port::ViewClient& client) {
    auto peer = attach(std::make_unique<LabelPeer>(), parent, client);
    peer->view->scrolls = true;
    return peer;
}

std::unique_ptr<port::ProgressPeer> System::makeProgress(port::ViewPeer& parent, port::ViewClient& client,
                                                         bool) {
    return attach(std::make_unique<ProgressPeer>(), parent, client);
}

std::unique_ptr<port::TextFieldPeer> System::makeTextField(port::ViewPeer& parent, port::ViewClient& client,
                                                           port::TextFieldClient& field) {
    auto peer = attach(std::make_unique<TextFieldPeer>(), parent, client);
    peer->view->field = &field;
    return peer;
}

std::unique_ptr<port::ButtonPeer> System::makeButton(port::ViewPeer& parent, port::ViewClient& client,
                                                     port::ButtonClient& button) {
    auto peer = attach(std::make_unique<ButtonPeer>(*this), parent, client);
    peer->view->button = &button;
    return peer;
}

std::unique_ptr<port::TablePeer> System::makeTable(port::ViewPeer& parent, port::ViewClient& client,
                                                   port::TableClient& table) {
    auto peer = attach(std::make_unique<TablePeer>(), parent, client);
    peer->view->table = &table;
    return peer;
}

std::unique_ptr<port::TableHeaderPeer> System::makeTableHeader(port::ViewPeer& parent, port::ViewClient& client,
                                                               port::TableHeaderClient& header) {
    auto peer = attach(std::make_unique<TableHeaderPeer>(), parent, client);
    peer->view->header = &header;
    return peer;
}

void System::setAppearance(std::optional<Appearance> appearance) {
    const auto before = this->appearance();
    ownAppearance = appearance;
    tellAppearance(before);
}

void System::tellAppearance(Appearance before) {
    if (before != appearance()) application->appearanceChanged();
}

void System::run() {
    stopped = false;
    while (!stopped) {
        const auto ran = queues->runMain(queues->now()) + queues->runGlobal();
        display();
        if (ran > 0 || stopped) continue;
        const auto next = queues->nextOnMain();
        if (!next) return;
        queues->runMain(*next);
    }
}

namespace {

// Waits by playing the script.
struct TrackingLoop final : port::TrackingLoop {
    explicit TrackingLoop(System& owner) : system(owner) {}

    bool wait() override {
        woken = false;
        while (!woken && !system.stopped) {
            if (!system.script.empty()) {
                const auto step = std::move(system.script.front());
                system.script.pop_front();
                step();
            } else if (system.queues->runMain(system.queues->now()) + system.queues->runGlobal() > 0) {
                system.display();
            } else if (const auto next = system.queues->nextOnMain()) {
                system.queues->runMain(*next);
                system.display();
            } else {
                system.starved = true;
                return false;
            }
        }
        return woken;
    }
    void wake() override { woken = true; }
    void holdBack(bool) override {} // input comes to our windows only

    System& system;
    bool woken = false;
};

} // namespace

std::unique_ptr<port::TrackingLoop> System::beginTracking() {
    stopped = false;
    return std::make_unique<TrackingLoop>(*this);
}

std::unique_ptr<port::OpenPanelPeer> System::showOpenPanel(const port::OpenPanel& panel, port::WindowPeer* over,
                                                           port::OpenPanelClient& client) {
    auto* const parent = over ? dynamic_cast<WindowPeer&>(*over).window.get() : nullptr;
    return std::make_unique<OpenPanelPeer>(*this, panel, parent, client);
}

void System::cancelPanelsOver(const WindowImplementation& window) {
    for (auto* const panel : std::vector(openPanels))
        if (std::ranges::find(openPanels, panel) != openPanels.end() && panel->parent == &window)
            panel->cancel();
}

void System::giveKeyBack() {
    for (auto window = windows.rbegin(); window != windows.rend(); ++window)
        if ((*window)->visible) return (*window)->setKey(true);
}

void System::display() {
    const auto copy = windows;
    for (auto* window : copy)
        if (std::ranges::find(windows, window) != windows.end()) window->display();
}

// Platform

Platform::Platform(Options options) : system_(std::make_unique<System>(std::move(options))) {
    backend::install({.queues = system_->queues,
                      .mainBundle = system_->options.mainBundle,
                      .preferredLanguages = system_->options.preferredLanguages,
                      .userDefaults = system_->options.userDefaults});
    system_->application = &port::install(*system_);
}

Platform::~Platform() {
    system_->queues->dropAll(); // no block runs any more
    port::uninstall();
    backend::uninstall();
}

std::vector<Window*> Platform::windows() const { return {system_->windows.begin(), system_->windows.end()}; }

std::vector<OpenPanel*> Platform::openPanels() const {
    return {system_->openPanels.begin(), system_->openPanels.end()};
}

double Platform::now() const { return static_cast<double>(system_->queues->now()) / kNanoseconds; }

void Platform::advance(double seconds) {
    const auto nanoseconds = static_cast<std::uint64_t>(std::llround(seconds * kNanoseconds));
    system_->queues->runMain(system_->queues->now() + nanoseconds);
    display();
}

std::size_t Platform::runMainQueue() {
    const auto count = system_->queues->runMain(system_->queues->now());
    display();
    return count;
}

std::size_t Platform::runGlobalQueue() { return system_->queues->runGlobal(); }

void Platform::runUntilIdle() {
    while (runGlobalQueue() + runMainQueue() > 0) {
    }
}

std::size_t Platform::waitingForGlobalQueue() const { return system_->queues->waitingForGlobal(); }

void Platform::script(std::function<void()> step) { system_->script.push_back(std::move(step)); }

bool Platform::starved() { return std::exchange(system_->starved, false); }

void Platform::display() { system_->display(); }

void Platform::setDesktopAppearance(Appearance appearance) {
    const auto before = system_->appearance();
    system_->options.appearance = appearance;
    system_->tellAppearance(before);
    display();
}

} // namespace zr::headless
