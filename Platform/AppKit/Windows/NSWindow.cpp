#include "Installation.h"

#include <AppKit/NSApplication.h>
#include <AppKit/NSMenu.h>
#include <AppKit/NSScreen.h>
#include <AppKit/NSToolbar.h>
#include <AppKit/NSView.h>
#include <AppKit/NSWindow.h>
#include <Foundation/NSCoder.h>

#include <algorithm>
#include <set>
#include <utility>

namespace zr {

ZR_CLASS_TABLE(NSWindow, .actions = {actionNamed<&NSWindow::performClose>("performClose:")},
               .outlets = {outletNamed<&NSWindow::setDelegate>("delegate"),
                           outletNamed<&NSWindow::setInitialFirstResponder>("initialFirstResponder")})

struct NSWindow::Client final : port::WindowClient {
    explicit Client(NSWindow& owner) : window(owner) {}

    bool peerEvent(const InputEvent& event) override {
        return NSApplication::sharedApplication().deliver(window, NSEvent(event, window.contentSize_.height));
    }
    void peerContentResized(CGSize size) override {
        const auto held = retained(&window);
        window.contentResized(size);
    }
    void peerUpdate() override {
        const auto held = retained(&window);
        window.update();
    }
    bool peerShouldClose() override {
        const auto held = retained(&window);
        return window.shouldClose();
    }
    void peerClosed() override {
        const auto held = retained(&window);
        window.wasClosed();
    }
    void peerKeyChanged(bool key) override {
        const auto held = retained(&window);
        window.keyChanged(key);
    }
    void peerMoved() override {
        const auto held = retained(&window);
        window.peerMoved();
    }
    void peerBlocked() override { window.cancelTracking(); }
    void peerGone() override {
        const auto held = retained(&window);
        window.wentAway();
    }
    void peerShown() override {
        const auto held = retained(&window);
        window.wasShown();
    }
    void peerHidden() override {
        const auto held = retained(&window);
        window.wasHidden();
    }
    void peerRetitled(const std::string& title) override { window.title_ = title; }
    void peerFocusLeft() override {
        const auto held = retained(&window);
        window.focusLeft();
    }

    NSWindow& window;
};

NSWindow::NSWindow() = default;
NSWindow::~NSWindow() = default;

bool NSWindow::initWithContentRect_styleMask_backing_defer(const NSRect& contentRect, unsigned styleMask,
                                                           NSBackingStoreType, bool) {
    contentSize_ = contentRect.size;
    styleMask_ = styleMask;
    topLeft_ = {contentRect.origin.x, NSMaxY(contentRect) + topInset()};
    setContentView(nullptr);
    return true;
}

bool NSWindow::initWithCoder(NSCoder& coder) {
    const auto mask = static_cast<unsigned>(coder.decodeDoubleForKey("NSWindowStyleMask").value_or(0));
    if (!initWithContentRect_styleMask_backing_defer(
            coder.decodeRectForKey("NSWindowRect").value_or(NSZeroRect), mask, NSBackingStoreBuffered, false))
        return false;
    title_ = coder.decodeStringForKey("NSWindowTitle").value_or("");
    contentMinSize_ = coder.decodeSizeForKey("NSWindowContentMinSize").value_or(contentMinSize_);
    contentMaxSize_ = coder.decodeSizeForKey("NSWindowContentMaxSize").value_or(contentMaxSize_);
    return true;
}

bool NSWindow::init() {
    return initWithContentRect_styleMask_backing_defer(NSZeroRect, 0, NSBackingStoreBuffered, false);
}

bool NSWindow::initWithForeignPeer(const PeerMaker& makePeer, const std::shared_ptr<NSView>& content,
                                   const NSSize& contentSize, const std::string& title) {
    if (!installation()) return false;
    foreign_ = true;
    title_ = title;
    contentSize_ = contentSize;
    setContentView(content);
    client_ = std::make_unique<Client>(*this);
    peer_ = makePeer(*client_);
    const CGPoint topLeft = peer_->frameTopLeft();
    topLeft_ = {topLeft.x, NSScreen::mainScreen().frame().size.height - topLeft.y};
    contentView_->realiseAsContent(installation()->windowSystem, *peer_);
    return true;
}

void NSWindow::dealloc() {
    unrealise();
    setToolbar(nullptr);
    if (contentView_) contentView_->moveToWindow(nullptr);
    NSResponder::dealloc();
}

void NSWindow::setTitle(const std::string& title) {
    title_ = title;
    if (peer_) peer_->setTitle(title);
}

void NSWindow::setContentView(const std::shared_ptr<NSView>& view) {
    const auto old = contentView_;
    if ((view && view == old) || (foreign_ && old)) return;
    const auto next = view ? view : make<NSView>(NSRect{});
    next->removeFromSuperview();
    if (old) {
        viewWillLeave(*old);
        old->unrealise();
        old->setNextResponder(nullptr);
        old->moveToWindow(nullptr);
    }
    contentView_ = next;
    next->setNextResponder(this);
    next->setFrame({NSZeroPoint, contentSize_});
    next->moveToWindow(this);
    if (peer_) next->realiseAsContent(installation()->windowSystem, *peer_);
    next->setNeedsLayout(true);
    next->setNeedsDisplay(true);
}

void NSWindow::setContentSize(const NSSize& size) {
    const auto held = retained(this);
    const NSSize limited = {std::min(std::max(size.width, contentMinSize_.width), contentMaxSize_.width),
                            std::min(std::max(size.height, contentMinSize_.height), contentMaxSize_.height)};
    contentResized(peer_ ? peer_->setContentSize(limited) : limited);
}

void NSWindow::setContentMinSize(const NSSize& size) {
    contentMinSize_ = size;
    if (peer_) peer_->setContentLimits(contentMinSize_, contentMaxSize_);
}

void NSWindow::setContentMaxSize(const NSSize& size) {
    contentMaxSize_ = size;
    if (peer_) peer_->setContentLimits(contentMinSize_, contentMaxSize_);
}

void NSWindow::contentResized(const NSSize& size) {
    if (size == contentSize_) return;
    contentSize_ = size;
    const auto content = contentView_;
    content->setFrame({NSZeroPoint, size});
    update();
    didResize();
}

void NSWindow::didResize() {
    if (const auto delegate = this->delegate()) delegate->windowDidResize(*this);
    NSNotificationCenter::defaultCenter().postNotificationName_object(NSWindowDidResizeNotification, this);
}

void NSWindow::didMove() {
    if (const auto delegate = this->delegate()) delegate->windowDidMove(*this);
    NSNotificationCenter::defaultCenter().postNotificationName_object(NSWindowDidMoveNotification, this);
}

void NSWindow::peerMoved() {
    const NSPoint topLeft = peer_->frameTopLeft();
    topLeft_ = {topLeft.x, NSScreen::mainScreen().frame().size.height - topLeft.y};
    didMove();
}

double NSWindow::topInset() const {
    if (peer_) return peer_->topInset();
    constexpr double kUsualTitleBar = 22, kUsualMenuBar = 24, kUsualToolbar = 56;
    return ((styleMask_ & NSWindowStyleMaskTitled) != 0 ? kUsualTitleBar : 0) +
           (mayHaveMenuBar() ? kUsualMenuBar : 0) + (toolbar_ ? kUsualToolbar : 0);
}

bool NSWindow::mayHaveMenuBar() const {
    constexpr unsigned kNeeded = NSWindowStyleMaskTitled | NSWindowStyleMaskMiniaturizable;
    return !foreign_ && !auxiliary_ && (styleMask_ & kNeeded) == kNeeded && installation() &&
           NSApplication::sharedApplication().mainMenu();
}

void NSWindow::setMenuBar(bool shown) {
    shown = shown && mayHaveMenuBar();
    if (!peer_ || shown == std::exchange(hasMenuBar_, shown)) return;
    const auto menu = NSApplication::sharedApplication().mainMenu();
    peer_->setMenuBar(shown ? menu->shownIn(retained(this)) : std::vector<port::MenuItem>());
}

void NSWindow::mainMenuChanged() {
    const auto held = retained(this);
    const bool shown = visible_ && !isSheet_ && NSApplication::sharedApplication().modalWindow() != this;
    setMenuBar(false);
    setMenuBar(shown);
}

NSRect NSWindow::frame() const {
    return frameRectForContentRect({{topLeft_.x, topLeft_.y - topInset() - contentSize_.height}, contentSize_});
}

NSRect NSWindow::frameRectForContentRect(const NSRect& content) const {
    return {content.origin, {content.size.width, content.size.height + topInset()}};
}

void NSWindow::placePeer() {
    if (peer_ && placed_)
        peer_->setFrameTopLeft({topLeft_.x, NSScreen::mainScreen().frame().size.height - topLeft_.y});
}

// As much of the title bar is on a screen as a hand can take hold of.
void NSWindow::keepWithinReach() {
    if (!placed_ || foreign_ || (styleMask_ & NSWindowStyleMaskTitled) == 0) return;
    constexpr double kHeight = 22, kWidth = 60;
    const NSRect frame = this->frame();
    const double width = std::min(kWidth, frame.size.width), top = NSMaxY(frame);
    const auto screens = NSScreen::screens();
    for (const auto& screen : screens) {
        const NSRect visible = screen.visibleFrame();
        if (top <= NSMaxY(visible) && top - kHeight >= NSMinY(visible) &&
            NSMaxX(frame) - width >= NSMinX(visible) && NSMinX(frame) + width <= NSMaxX(visible))
            return;
    }
    if (screens.empty()) return;
    const NSRect visible = screens.front().visibleFrame();
    setFrameTopLeftPoint(
        {std::max(NSMinX(visible), std::min(NSMinX(frame), NSMaxX(visible) - frame.size.width)),
         std::min(NSMaxY(visible), std::max(top, NSMinY(visible) + frame.size.height))});
}

void NSWindow::setFrame_display_animate(const NSRect& frame, bool, bool) {
    const auto held = retained(this);
    setFrameTopLeftPoint({frame.origin.x, NSMaxY(frame)});
    const NSSize size = {frame.size.width, std::max(0.0, frame.size.height - topInset())};
    contentResized(peer_ ? peer_->setContentSize(size) : size);
}

void NSWindow::setFrameTopLeftPoint(const NSPoint& point) {
    const auto held = retained(this);
    placed_ = true;
    // Window systems are off by their borders now and then: what stays is left alone.
    if (point == topLeft_) return;
    topLeft_ = point;
    placePeer();
    if (!peer_) didMove();
}

void NSWindow::setToolbar(const std::shared_ptr<NSToolbar>& toolbar) {
    if (toolbar == toolbar_) return;
    if (toolbar_) toolbar_->windowChanged(nullptr);
    toolbar_ = toolbar;
    if (toolbar)
        toolbar->windowChanged(this);
    else if (peer_)
        peer_->setToolbar({}, nullptr);
}

void NSWindow::realise(bool withMenuBar) {
    if (peer_) {
        setMenuBar(withMenuBar);
        return;
    }
    auto& system = installation()->windowSystem;
    client_ = std::make_unique<Client>(*this);
    const auto has = [this](NSWindowStyleMask bit) { return (styleMask_ & bit) != 0; };
    peer_ = system.makeWindow(*client_, contentSize_,
                              {has(NSWindowStyleMaskTitled), has(NSWindowStyleMaskClosable),
                               has(NSWindowStyleMaskMiniaturizable), has(NSWindowStyleMaskResizable)});
    peer_->setTitle(title_);
    peer_->setContentLimits(contentMinSize_, contentMaxSize_);
    contentView_->realiseAsContent(system, *peer_);
    if (toolbar_) toolbar_->windowChanged(this);
    setMenuBar(withMenuBar);
    placePeer();
    focusFirstResponder();
}

void NSWindow::unrealise() {
    if (!peer_) return;
    contentView_->unrealise();
    peer_.reset();
    hasMenuBar_ = false;
    updateScheduled_ = false;
}

void NSWindow::show(bool activate) {
    if (!installation() || (foreign_ && !peer_)) return;
    const auto held = retained(this);
    wasShown();
    realise(true);
    keepWithinReach();
    if (peer_) peer_->show(activate);
}

void NSWindow::showModal() {
    if (!installation()) return;
    wasShown();
    realise(false);
    peer_->showModal();
}

void NSWindow::showAsSheet(NSWindow* parent) {
    if (!installation()) return;
    // A second sheet stands over the first.
    while (parent && parent->attachedSheet()) parent = parent->attachedSheet();
    if (parent == this) return;
    wasShown();
    realise(false);
    isSheet_ = true;
    sheetParent_ = retained(parent);
    if (parent) parent->attachedSheet_ = retained(this);
    if (parent && parent->peer_)
        peer_->showAsSheet(*parent->peer_);
    else
        peer_->showModal();
}

void NSWindow::endSheet() {
    if (!isSheet_) return;
    isSheet_ = false;
    if (const auto parent = sheetParent_.lock()) parent->attachedSheet_.reset();
    sheetParent_.reset();
    if (peer_) peer_->endSheet();
}

// A view that is pressed gets its release now, unless it, or another, is handling an event: then none.
void NSWindow::pressesEnd() {
    const auto held = retained(this);
    const auto left = leftPressed_.lock();
    if (left) pressWasEnded_ = true;
    for (auto* pressed : {&leftPressed_, &rightPressed_, &otherPressed_}) pressed->reset();
    cancelTracking();
    if (!left || NSApplication::sharedApplication().eventsInHand_ != 0) return;
    InputEvent release;
    release.type = NSEventTypeLeftMouseUp;
    release.location = {lastPress_.x, contentSize_.height - lastPress_.y};
    left->mouseUp(NSEvent(release, contentSize_.height));
}

void NSWindow::wasShown() {
    NSApplication::sharedApplication().windowWasShown(*this);
    // Lay out first, realise late: no view is ever seen at a wrong place.
    contentView_->layoutSubtreeIfNeeded();
    open_ = true;
    visible_ = true;
    if (std::exchange(wasEverShown_, true) || firstResponder() != this) return;
    if (auto* const view = initialFirstResponder()) {
        makeFirstResponder(view);
        return;
    }
    const auto views = keyViews();
    const auto first =
        std::ranges::find_if(views, [](const auto& view) { return view->needsPanelToBecomeKey(); });
    if (first != views.end()) makeFirstResponder(first->get());
}

void NSWindow::makeKeyAndOrderFront(NSObject*) { show(true); }
void NSWindow::orderFront(NSObject*) { show(false); }

void NSWindow::orderOut(NSObject*) {
    endSheet();
    visible_ = false;
    cancelTracking();
    if (peer_) peer_->hide();
}

void NSWindow::performClose(NSObject*) {
    // A sheet and its window are one to the user.
    if (const auto parent = sheetParent_.lock())
        parent->performClose(this);
    else if ((foreign_ || (styleMask_ & NSWindowStyleMaskClosable) != 0) && shouldClose())
        close();
}

bool NSWindow::shouldClose() {
    const auto held = retained(this);
    const auto delegate = this->delegate();
    return !delegate || delegate->windowShouldClose(*this).value_or(true);
}

void NSWindow::close() {
    if (!foreign_)
        wasClosed();
    else if (peer_)
        peer_->close();
}

void NSWindow::wasClosed() {
    if (closing_ || !open_) return;
    const auto held = retained(this);
    closing_ = true;
    cancelTracking();
    if (const auto delegate = this->delegate()) delegate->windowWillClose(*this);
    visible_ = false;
    if (const auto sheet = attachedSheet_.lock()) sheet->close();
    endSheet();
    keyChanged(false);
    if (!foreign_) unrealise();
    open_ = false;
    closing_ = false;
    if (installation()) NSApplication::sharedApplication().windowWasClosed(*this);
}

void NSWindow::wasHidden() {
    visible_ = false;
    cancelTracking();
    keyChanged(false);
}

void NSWindow::wentAway() {
    wasClosed();
    unrealise();
}

NSResponder* NSWindow::firstResponder() const {
    const auto first = firstResponder_.lock();
    return first ? first.get() : const_cast<NSWindow*>(this);
}

bool NSWindow::makeFirstResponder(NSResponder* responder) {
    const auto self = retained(this);
    const auto held = retained(responder);
    const auto old = retained(firstResponder());
    NSResponder* wanted = responder ? responder : this;
    if (wanted == old.get()) return true;
    if (old && old.get() != this && !old->resignFirstResponder()) return false;
    firstResponder_.reset();
    // It may have left while the other one was asked.
    if (const auto* view = dynamic_cast<NSView*>(wanted); view && view->window() != this) wanted = this;
    const bool taken = wanted != this && wanted->becomeFirstResponder();
    firstResponder_ = taken ? retained(wanted) : nullptr;
    focusFirstResponder();
    return true;
}

// The window system's focus follows: with the content where the window itself is first responder.
void NSWindow::focusFirstResponder() {
    auto* const first = dynamic_cast<NSView*>(firstResponder());
    NSView* const view = first ? first : contentView_.get();
    if (view->peer_) view->peer_->focus();
}

void NSWindow::peerFocused(NSView& view) {
    const auto self = retained(this);
    if (closing_ || firstResponder() == &view) return;
    if (!makeFirstResponder(&view)) focusFirstResponder();
}

// The focus is where its owner wants it: nothing is to be focused here, and nobody is asked.
void NSWindow::focusLeft() {
    const auto self = retained(this);
    const auto first = firstResponder_.lock();
    firstResponder_.reset();
    auto* const view = dynamic_cast<NSView*>(first.get());
    const bool ended = view && view->endEditingUnasked(false);
    if (first && !ended) first->resignFirstResponder();
}

void NSWindow::recalculateKeyViewLoop() {
    struct Place {
        std::shared_ptr<NSView> view;
        NSPoint topLeft;
    };
    std::vector<Place> places;
    const auto collect = [&](const auto& self, NSView& view) -> void {
        const NSRect frame = view.convertRect_toView(view.bounds(), nullptr);
        places.push_back(
            {std::static_pointer_cast<NSView>(view.shared_from_this()), {frame.origin.x, NSMaxY(frame)}});
        for (const auto& subview : view.subviews()) self(self, *subview);
    };
    collect(collect, *contentView_);
    std::ranges::stable_sort(places, [](const Place& a, const Place& b) {
        return a.topLeft.y != b.topLeft.y ? a.topLeft.y > b.topLeft.y : a.topLeft.x < b.topLeft.x;
    });
    for (std::size_t i = 0; i < places.size(); ++i)
        places[i].view->setNextKeyView(places[(i + 1) % places.size()].view);
}

void NSWindow::endEditingFor(NSObject*) {
    const auto self = retained(this);
    const auto view = retained(dynamic_cast<NSView*>(firstResponder()));
    if (!view || !view->usesFieldEditor()) return;
    firstResponder_.reset();
    view->endEditingUnasked(false);
    focusFirstResponder();
}

std::vector<std::shared_ptr<NSView>> NSWindow::keyViews() const {
    std::vector<std::shared_ptr<NSView>> views;
    const auto collect = [&](const auto& self, NSView& view) -> void {
        if (view.canBecomeKeyView()) views.push_back(std::static_pointer_cast<NSView>(view.shared_from_this()));
        for (const auto& subview : view.subviews()) self(self, *subview);
    };
    collect(collect, *contentView_);
    return views;
}

bool NSWindow::selectKeyView(NSView* from, bool backwards) {
    const auto views = keyViews();
    if (views.empty()) return false;
    std::shared_ptr<NSView> next;
    // Along the links that were made, over views that cannot take the keyboard.
    const auto linkedFrom = [this](const NSView& view) -> NSView* {
        std::set<const NSView*> seen;
        for (NSView* linked = view.nextKeyView(); linked && seen.insert(linked).second;
             linked = linked->nextKeyView())
            if (linked->window() == this && linked->canBecomeKeyView()) return linked;
        return nullptr;
    };
    if (from && !backwards) next = retained(linkedFrom(*from));
    if (from && backwards)
        for (const auto& view : views)
            if (linkedFrom(*view) == from) next = view;
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
    makeFirstResponder(next.get());
    return true;
}

// Of one that acts now.
static bool isKeyOfMainMenu(const NSEvent& event) {
    auto& application = NSApplication::sharedApplication();
    const auto menu = application.modalWindow() ? nullptr : application.mainMenu();
    return menu && menu->performKeyEquivalent(event);
}

bool NSWindow::performKeyEquivalentOf(const char* characters) {
    InputEvent event;
    event.type = NSEventTypeKeyDown;
    event.characters = event.charactersIgnoringModifiers = characters;
    const auto content = contentView_;
    return content->performKeyEquivalent(NSEvent(event, contentSize_.height));
}

void NSWindow::keyDown(const NSEvent& event) {
    const auto held = retained(this);
    const auto content = contentView_;
    if (content->performKeyEquivalent(event) || isKeyOfMainMenu(event)) return;
    const bool plain = (event.modifierFlags() & (NSEventModifierFlagCommand | NSEventModifierFlagOption |
                                                 NSEventModifierFlagControl)) == 0;
    if (event.keyCode() == kKeyCodeTab && plain) {
        selectKeyView(dynamic_cast<NSView*>(firstResponder()),
                      (event.modifierFlags() & NSEventModifierFlagShift) != 0);
        return;
    }
    NSResponder::keyDown(event);
}

void NSWindow::viewWillLeave(NSView& view) {
    const auto self = retained(this);
    const auto first = retained(dynamic_cast<NSView*>(firstResponder()));
    if (first && first->isDescendantOf(view)) {
        // Whatever it says, it leaves.
        if (!makeFirstResponder(nullptr)) {
            firstResponder_.reset();
            first->endEditingUnasked(true);
            focusFirstResponder();
        }
    }
    for (auto* pressed : {&leftPressed_, &rightPressed_, &otherPressed_}) {
        const auto pressedView = pressed->lock();
        if (!pressedView || !pressedView->isDescendantOf(view)) continue;
        pressed->reset();
        cancelTracking();
    }
}

void NSWindow::cancelTracking() {
    ++cancellations_;
    if (!installation()) return;
    NSApplication::sharedApplication().wakeTracking();
    NSApplication::sharedApplication().wakeModal();
}

std::optional<NSEvent> NSWindow::nextEventMatchingMask(NSEventMask mask) {
    if (!installation() || pressWasEnded_) return std::nullopt;
    return NSApplication::sharedApplication().nextEvent(*this, mask);
}

NSView* NSWindow::viewAt(const NSPoint& point) const { return contentView_->hitTest(point); }

namespace {

enum class Phase { press, drag, release };

struct MouseMessage {
    Phase phase;
    void (NSResponder::*message)(const NSEvent&);
};

MouseMessage mouseMessage(NSEventType type) {
    switch (type) {
    case NSEventTypeLeftMouseDown:
        return {Phase::press, &NSResponder::mouseDown};
    case NSEventTypeLeftMouseDragged:
        return {Phase::drag, &NSResponder::mouseDragged};
    case NSEventTypeLeftMouseUp:
        return {Phase::release, &NSResponder::mouseUp};
    case NSEventTypeRightMouseDown:
        return {Phase::press, &NSResponder::rightMouseDown};
    case NSEventTypeRightMouseDragged:
        return {Phase::drag, &NSResponder::rightMouseDragged};
    case NSEventTypeRightMouseUp:
        return {Phase::release, &NSResponder::rightMouseUp};
    case NSEventTypeOtherMouseDown:
        return {Phase::press, &NSResponder::otherMouseDown};
    case NSEventTypeOtherMouseDragged:
        return {Phase::drag, &NSResponder::otherMouseDragged};
    default:
        return {Phase::release, &NSResponder::otherMouseUp};
    }
}

} // namespace

// A press goes to the view under the pointer, and what follows to the same view.
void NSWindow::mouseEvent(const NSEvent& event, std::weak_ptr<NSView>& pressed) {
    const auto [phase, message] = mouseMessage(event.type());
    if (phase == Phase::press) {
        pressed = retained(viewAt(event.locationInWindow()));
        pressWasEnded_ = false;
    }
    if (&pressed == &leftPressed_) lastPress_ = event.locationInWindow();
    const auto view = pressed.lock();
    if (phase == Phase::release) pressed.reset();
    if (!view) return;
    const bool takesFocus = event.type() == NSEventTypeLeftMouseDown && view->acceptsFirstResponder();
    if (takesFocus && view.get() != firstResponder() && !makeFirstResponder(view.get())) {
        pressed.reset();
        return;
    }
    (view.get()->*message)(event);
}

void NSWindow::sendEvent(const NSEvent& event) {
    switch (event.type()) {
    case NSEventTypeLeftMouseDown:
    case NSEventTypeLeftMouseDragged:
    case NSEventTypeLeftMouseUp:
        mouseEvent(event, leftPressed_);
        break;
    case NSEventTypeRightMouseDown:
    case NSEventTypeRightMouseDragged:
    case NSEventTypeRightMouseUp:
        mouseEvent(event, rightPressed_);
        break;
    case NSEventTypeOtherMouseDown:
    case NSEventTypeOtherMouseDragged:
    case NSEventTypeOtherMouseUp:
        mouseEvent(event, otherPressed_);
        break;
    case NSEventTypeScrollWheel:
        if (const auto view = retained(viewAt(event.locationInWindow()))) view->scrollWheel(event);
        break;
    case NSEventTypeKeyDown:
        if ((event.modifierFlags() & NSEventModifierFlagCommand) != 0) {
            const auto content = contentView_;
            if (content->performKeyEquivalent(event)) break;
            if (isKeyOfMainMenu(event)) break;
        }
        if (const auto first = retained(firstResponder())) first->keyDown(event);
        break;
    case NSEventTypeKeyUp:
        if (const auto first = retained(firstResponder())) first->keyUp(event);
        break;
    case NSEventTypeMouseMoved:
        break;
    }
}

void NSWindow::scheduleUpdate() {
    if (updateScheduled_ || !peer_) return;
    updateScheduled_ = true;
    peer_->scheduleUpdate();
}

void NSWindow::update() {
    updateScheduled_ = false;
    const auto content = contentView_;
    content->layoutSubtreeIfNeeded();
}

void NSWindow::keyChanged(bool key) {
    if (key == key_) return;
    key_ = key;
    const auto delegate = this->delegate();
    if (delegate && !key) delegate->windowDidResignKey(*this);
    if (!key) return;
    if (delegate) delegate->windowDidBecomeKey(*this);
    NSNotificationCenter::defaultCenter().postNotificationName_object(NSWindowDidBecomeKeyNotification, this);
}

void NSWindow::appearanceChanged() {
    const auto content = contentView_;
    content->appearanceChanged();
    if (toolbar_) toolbar_->windowChanged(this); // its pictures
}

NSRect NSWindow::convertRectToScreen(const NSRect& rect) const {
    if (!peer_) return rect;
    const NSPoint origin = peer_->contentOriginOnScreen();
    const double bottom = NSScreen::mainScreen().frame().size.height - (origin.y + contentSize_.height);
    return NSOffsetRect(rect, origin.x, bottom);
}

double NSWindow::backingScaleFactor() const { return peer_ ? peer_->backingScale() : 1; }

} // namespace zr
