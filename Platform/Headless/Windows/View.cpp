// SPDX-License-Identifier: MIT
#include "RealWindow.h"
#include "View.h"

#include <utility>

namespace zr::headless {

View::View(RealWindow& ofWindow, View* superview, port::ViewClient& viewClient)
    : window(&ofWindow), parent(superview), client(&viewClient) {
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
    if (window->pressed == this) window->pressed = nullptr;
}

Point View::originInContent() const {
    if (!parent) return frame.origin;
    const Point corner = parent->originInContent();
    return {corner.x + frame.origin.x, corner.y + frame.origin.y};
}

View* View::at(Point point) {
    if (hidden || !NSPointInRect(point, frame)) return nullptr;
    const Point own = {point.x - frame.origin.x, point.y - frame.origin.y};
    for (std::size_t i = children.size(); i-- > 0;)
        if (View* const hit = children[i]->at(own)) return hit;
    return this;
}

void View::walk(const std::function<void(View&)>& visit) {
    const std::weak_ptr<bool> here = alive;
    visit(*this);
    if (here.expired()) return;
    std::vector<std::pair<View*, std::weak_ptr<bool>>> copy;
    for (View* child : children) copy.emplace_back(child, child->alive);
    for (const auto& [child, there] : copy)
        if (!there.expired()) child->walk(visit);
}

void View::placeAt(const Rect& newFrame) {
    dirty = dirty || newFrame.size != frame.size;
    frame = newFrame;
}

void View::show(bool shown) {
    hidden = !shown;
    if (shown) walk([](View& view) { view.dirty = true; });
}

void View::raiseAboveSiblings() {
    auto& siblings = parent->children;
    std::erase(siblings, this);
    siblings.push_back(this);
}

void View::takeKeyboard() {
    if (window) window->focus(this);
}

bool View::pressMayGoOn() {
    if (!client->peerTakesFocusByPress()) return true;
    const std::weak_ptr<bool> here = alive;
    return client->peerMayTakeFocus() && !here.expired() && window && window->focused == this;
}

} // namespace zr::headless
