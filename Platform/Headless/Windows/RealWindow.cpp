// SPDX-License-Identifier: MIT
#include "Menus.h"
#include "RealWindow.h"
#include "System.h"

#include <algorithm>
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

RealWindow::RealWindow(System& platform, port::WindowClient& owner, Size size, port::WindowStyle frameStyle)
    : system(platform), client(&owner), contentSize_(size), style_(frameStyle) {
    system.windows.push_back(this);
}

RealWindow::~RealWindow() {
    std::erase(system.windows, this);
    system.windowLeaves(*this);
    if (key_) system.giveKeyBack();
    if (root) root->walk([](View& view) { view.window = nullptr; });
}

bool RealWindow::isBlocked() const {
    return isBlockedByModalWindow() ||
           std::ranges::any_of(
               system.windows,
               [this](const auto* other) { return other->visible && other->sheetParent == this; }) ||
           std::ranges::any_of(system.blockers, [this](const auto* blocker) { return blocker->isOver(*this); });
}

bool RealWindow::isBlockedByModalWindow() const {
    return std::ranges::any_of(system.windows,
                               [this](const auto* other) { return other->visible && other->modal > modal; }) ||
           std::ranges::any_of(system.blockers,
                               [this](const auto* blocker) { return blocker->modal() > modal; });
}

// Input

bool RealWindow::send(InputEvent event) {
    if (isBlocked()) return false;
    auto& platform = system; // this window may be gone by then
    event.location.y = contentSize_.height - event.location.y;
    event.timestamp = static_cast<double>(platform.queues->now()) / kNanoseconds;
    const bool taken = handle(event);
    platform.display();
    return taken;
}

// The window system's own controls take what is theirs.
bool RealWindow::handle(const InputEvent& event) {
    View* const hit = root && isMouseEvent(event.type) ? root->at(event.location) : nullptr;
    if (event.type == NSEventTypeLeftMouseDown && hit) {
        const std::weak_ptr<bool> here = alive, there = hit->alive;
        const auto press = hit->press();
        if (press == View::Press::notOwn) return client->peerEvent(event);
        if (!here.expired()) pressed = press == View::Press::untilRelease && !there.expired() ? hit : nullptr;
        return true;
    }
    if (pressed && event.type == NSEventTypeLeftMouseUp) {
        if (std::exchange(pressed, nullptr) == hit) hit->release();
        return true;
    }
    if (pressed && event.type == NSEventTypeLeftMouseDragged) return true;
    if (event.type == NSEventTypeScrollWheel && hit && hit->wheel(event)) return true;
    if (event.type == NSEventTypeKeyDown && focused && focused->key(event)) return true;
    return client->peerEvent(event);
}

void RealWindow::focus(View* view) {
    if (view == focused) return;
    if (View* const old = std::exchange(focused, view)) old->client->peerFocusChanged(false);
    if (focused == view) view->client->peerFocusChanged(true);
}

void RealWindow::setKey(bool nowKey) {
    if (nowKey == key_) return;
    const std::weak_ptr<bool> here = alive;
    auto& platform = system; // whoever loses the keyboard may take this window away
    if (nowKey)
        for (auto* other : std::vector(platform.windows))
            if (other != this && platform.has(other)) other->setKey(false);
    if (here.expired()) return;
    key_ = nowKey;
    client->peerKeyChanged(key_);
}

// Coming and going

void RealWindow::show(bool activate) {
    visible = true;
    if (activate) setKey(true);
}

void RealWindow::showAsSheet(port::WindowPeer& parent) {
    sheetParent = &dynamic_cast<RealWindow&>(parent);
    show(true);
}

void RealWindow::endSheet() {
    RealWindow* const parent = std::exchange(sheetParent, nullptr);
    if (parent && key_) parent->setKey(true);
}

void RealWindow::hide() {
    visible = false;
    modal = 0;
    sheetParent = nullptr;
    const bool wasKey = key_;
    auto& platform = system;
    setKey(false);
    if (platform.has(this)) platform.windowLeaves(*this);
    if (wasKey) platform.giveKeyBack();
}

bool RealWindow::closeByUser() {
    if (sheetParent) return sheetParent->closeByUser(); // a sheet and its window are one to the user
    auto& platform = system;
    if (!style_.closable || isBlockedByModalWindow() || !client->peerShouldClose()) return false;
    if (platform.has(this)) client->peerClosed();
    platform.display();
    return true;
}

// Place and size

void RealWindow::resizeByUser(Size size) {
    if (!style_.resizable) return;
    auto& platform = system;
    setContentSize({std::min(maximum_.width, std::max(minimum_.width, size.width)),
                    std::min(maximum_.height, std::max(minimum_.height, size.height))});
    platform.display();
}

Size RealWindow::setContentSize(Size size) {
    contentSize_ = size;
    if (root) {
        root->frame = {NSZeroPoint, size};
        root->dirty = true;
    }
    client->peerContentResized(size);
    return size;
}

void RealWindow::setContentLimits(Size minimum, Size maximum) {
    minimum_ = minimum;
    maximum_ = maximum;
}

void RealWindow::moveByUser(Point contentOrigin) {
    origin_ = contentOrigin;
    client->peerMoved();
}

void RealWindow::setFrameTopLeft(Point topLeft) {
    origin_ = {topLeft.x, topLeft.y + topInset()};
    client->peerMoved();
}

double RealWindow::topInset() const {
    const auto insets = system.usualInsets();
    return insets.titleBar + (menuBar_.empty() ? 0 : insets.menuBar) + (toolbar_.empty() ? 0 : insets.toolbar);
}

double RealWindow::backingScale() const { return system.options.scale; }

// Bars

void RealWindow::setToolbar(const std::vector<port::ToolbarItem>& items, port::ToolbarClient* toolbarClient) {
    toolbar_ = items;
    toolbarClient_ = toolbarClient;
    selectedToolbarItem_.reset();
}

std::vector<std::string> RealWindow::toolbarItems() const {
    std::vector<std::string> labels;
    for (const auto& item : toolbar_)
        labels.push_back(item.kind == port::ToolbarItem::Kind::button  ? item.label
                         : item.kind == port::ToolbarItem::Kind::space ? "<space>"
                                                                       : "<flexible space>");
    return labels;
}

bool RealWindow::clickToolbarItem(std::string_view label) {
    const auto found = std::ranges::find_if(toolbar_, [&](const auto& item) {
        return item.kind == port::ToolbarItem::Kind::button && item.label == label;
    });
    if (found == toolbar_.end() || isBlocked()) return false;
    auto& platform = system;
    toolbarClient_->peerClicked(static_cast<std::size_t>(found - toolbar_.begin()));
    platform.display();
    return true;
}

std::string RealWindow::selectedToolbarItem() const {
    return selectedToolbarItem_ ? toolbar_.at(*selectedToolbarItem_).label : "";
}

std::vector<std::string> RealWindow::menuItems(const std::vector<std::string>& menu) const {
    return describedMenu(menuBar_, menu);
}

bool RealWindow::clickMenuItem(const std::vector<std::string>& titles) {
    auto& platform = system;
    const auto bar = menuBar_; // choosing may take the window away
    if (isBlocked() || !chooseItem(bar, titles)) return false;
    platform.display();
    return true;
}

// Drawing

void RealWindow::display() {
    auto& platform = system; // layout and drawing may take the window away
    if (std::exchange(updateScheduled, false)) client->peerUpdate();
    if (!platform.has(this) || !visible || !root) return;
    root->walk([&platform](View& view) {
        if (!view.dirty || !view.isShown() || NSIsEmptyRect(view.frame)) return;
        view.dirty = false;
        RecordingCanvas canvas(platform.options.scale, platform.appearance());
        const std::weak_ptr<bool> there = view.alive;
        view.client->peerDraw(canvas, {NSZeroPoint, view.frame.size});
        if (there.expired()) return;
        view.lines = canvas.lines();
        ++view.drawCount;
    });
}

} // namespace zr::headless
