// SPDX-License-Identifier: MIT
#include "InstalledSystem.h"
#include "WindowFocus.h"

#include <Foundation/NSLog.h>

#include <algorithm>
#include <set>

namespace zr {

NSResponder& WindowFocus::first() const {
    const auto first = first_.lock();
    return first ? *first : owner_.asResponder();
}

bool WindowFocus::makeFirst(NSResponder* responder) {
    const auto held = retained(responder);
    const auto old = retained(&first());
    NSResponder* const window = &owner_.asResponder();
    NSResponder* wanted = responder ? responder : window;
    if (wanted == old.get()) return true;
    const auto* const view = dynamic_cast<NSView*>(responder);
    if (view && !owner_.isHere(*view)) NSLog("-[NSWindow makeFirstResponder:]: %@ is not in the window", view);
    if (old && old.get() != window && !old->resignFirstResponder()) return false;
    first_.reset();
    // It may have left while the other one was asked.
    if (view && !owner_.isHere(*view)) wanted = window;
    const bool taken = wanted != window && wanted->becomeFirstResponder();
    first_ = taken ? retained(wanted) : nullptr;
    show();
    return true;
}

// The content has the keyboard where the window itself is first responder.
bool WindowFocus::belongsTo(const NSView& view) const {
    const auto* const responder = &first();
    return responder == &view || (responder == &owner_.asResponder() && &view == &owner_.content());
}

bool WindowFocus::take(NSView& view) {
    return belongsTo(view) || (view.acceptsFirstResponder() && makeFirst(&view) && &first() == &view);
}

void WindowFocus::confirm(const NSView& view) {
    if (view.acceptsFirstResponder() && !belongsTo(view)) show();
}

void WindowFocus::show() {
    auto* const view = dynamic_cast<NSView*>(&first());
    owner_.giveKeyboard(view ? *view : owner_.content());
}

// The keyboard is where its owner wants it: it is not moved here.
void WindowFocus::left() {
    const auto first = first_.lock();
    first_.reset();
    auto* const view = dynamic_cast<NSView*>(first.get());
    const bool ended = view && view->endEditingUnasked(false);
    if (first && !ended) first->resignFirstResponder();
}

void WindowFocus::endEditing() {
    const auto view = retained(dynamic_cast<NSView*>(&first()));
    if (!view || !view->usesFieldEditor()) return;
    first_.reset();
    view->endEditingUnasked(false);
    show();
}

void WindowFocus::viewLeaves(NSView& view) {
    const auto first = retained(dynamic_cast<NSView*>(&this->first()));
    // Whatever it says, it leaves.
    if (!first || !first->isDescendantOf(view) || makeFirst(nullptr)) return;
    first_.reset();
    first->endEditingUnasked(true);
    show();
}

void WindowFocus::begin() {
    if (!first_.expired()) return;
    if (auto* const view = initial()) {
        makeFirst(view);
        return;
    }
    const auto views = keyViews();
    const auto typed =
        std::ranges::find_if(views, [](const auto& view) { return view->needsPanelToBecomeKey(); });
    if (typed != views.end()) makeFirst(typed->get());
}

bool WindowFocus::performKeyEquivalent(const NSEvent& event) {
    const auto content = retained(&owner_.content());
    if (content->performKeyEquivalent(event)) return true;
    auto* const installed = installedSystem();
    return installed && installed->router->performKeyOfMainMenu(event);
}

bool WindowFocus::performKeyEquivalentOf(const char* characters) {
    InputEvent event;
    event.type = NSEventTypeKeyDown;
    event.characters = event.charactersIgnoringModifiers = characters;
    const auto content = retained(&owner_.content());
    event.location = {0, content->frame().size.height};
    return content->performKeyEquivalent(NSEvent(event));
}

void WindowFocus::handle(const NSEvent& event) {
    const bool isDown = event.type() == NSEventTypeKeyDown;
    if (isDown && (event.modifierFlags() & NSEventModifierFlagCommand) != 0 && performKeyEquivalent(event))
        return;
    const auto first = retained(&this->first());
    if (!first) return;
    if (isDown)
        first->keyDown(event);
    else
        first->keyUp(event);
}

bool WindowFocus::handleUntaken(const NSEvent& event) {
    constexpr unsigned kShortcutFlags =
        NSEventModifierFlagCommand | NSEventModifierFlagOption | NSEventModifierFlagControl;
    if (performKeyEquivalent(event)) return true;
    if (event.keyCode() != kKeyCodeTab || (event.modifierFlags() & kShortcutFlags) != 0) return false;
    selectKeyView(dynamic_cast<NSView*>(&first()), (event.modifierFlags() & NSEventModifierFlagShift) != 0);
    return true;
}

void WindowFocus::recalculateKeyViewLoop() {
    struct Place {
        std::shared_ptr<NSView> view;
        NSPoint topLeft;
    };
    std::vector<Place> places;
    const auto collect = [&](const auto& self, NSView& view) -> void {
        const NSRect frame = view.convertRect_toView(view.bounds(), nullptr);
        places.push_back({retained(&view), {frame.origin.x, NSMaxY(frame)}});
        for (const auto& subview : view.subviews()) self(self, *subview);
    };
    collect(collect, owner_.content());
    std::ranges::stable_sort(places, [](const Place& a, const Place& b) {
        return a.topLeft.y != b.topLeft.y ? a.topLeft.y > b.topLeft.y : a.topLeft.x < b.topLeft.x;
    });
    for (std::size_t i = 0; i < places.size(); ++i)
        places[i].view->setNextKeyView(places[(i + 1) % places.size()].view);
}

std::vector<std::shared_ptr<NSView>> WindowFocus::keyViews() const {
    std::vector<std::shared_ptr<NSView>> views;
    const auto collect = [&](const auto& self, NSView& view) -> void {
        if (view.canBecomeKeyView()) views.push_back(retained(&view));
        for (const auto& subview : view.subviews()) self(self, *subview);
    };
    collect(collect, owner_.content());
    return views;
}

// Along the links that were made, over views that cannot take the keyboard.
NSView* WindowFocus::linkedFrom(const NSView& view) const {
    std::set<const NSView*> seen;
    for (NSView* linked = view.nextKeyView(); linked && seen.insert(linked).second;
         linked = linked->nextKeyView())
        if (owner_.isHere(*linked) && linked->canBecomeKeyView()) return linked;
    return nullptr;
}

std::shared_ptr<NSView> WindowFocus::linked(NSView& from, bool backwards) const {
    if (!backwards) return retained(linkedFrom(from));
    std::shared_ptr<NSView> last;
    for (const auto& view : keyViews())
        if (linkedFrom(*view) == &from) last = view;
    return last;
}

bool WindowFocus::selectKeyView(NSView* from, bool backwards) {
    const auto views = keyViews();
    if (views.empty()) return false;
    auto next = from ? linked(*from, backwards) : nullptr;
    if (!next) {
        const auto found = std::ranges::find_if(views, [&](const auto& view) { return view.get() == from; });
        const auto count = views.size();
        const auto index = static_cast<std::size_t>(found - views.begin());
        if (found == views.end())
            next = backwards ? views.back() : views.front();
        else
            next = views[backwards ? (index + count - 1) % count : (index + 1) % count];
    }
    if (next.get() == from) return false;
    makeFirst(next.get());
    return true;
}

} // namespace zr
