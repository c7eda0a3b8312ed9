// SPDX-License-Identifier: MIT
#include "InstalledSystem.h"
#include "NSWindowClient.h"
#include "WindowBarsHolder.h"
#include "WindowSheet.h"

#include <Foundation/NSCoder.h>
#include <Foundation/ValueGuard.h>

#include <utility>

namespace zr {

ZR_CLASS_TABLE(NSWindow, .actions = {actionNamed<&NSWindow::performClose>("performClose:")},
               .outlets = {outletNamed<&NSWindow::setDelegate>("delegate"),
                           outletNamed<&NSWindow::setInitialFirstResponder>("initialFirstResponder")})

NSWindow::NSWindow()
    : client_(std::make_unique<Client>(*this))
    , frame_(std::make_unique<WindowFrame>(*client_))
    , focus_(std::make_unique<WindowFocus>(*client_))
    , mouse_(std::make_unique<WindowMouse>(*focus_))
    , sheet_(std::make_unique<WindowSheet>())
    , bars_(std::make_unique<WindowBarsHolder>()) {}
NSWindow::~NSWindow() = default;

bool NSWindow::initWithContentRect_styleMask_backing_defer(const NSRect& contentRect, unsigned styleMask,
                                                           NSBackingStoreType, bool) {
    styleMask_ = styleMask;
    frame_->begin(contentRect);
    setContentView(nullptr);
    return true;
}

bool NSWindow::initWithCoder(NSCoder& coder) {
    const auto mask = static_cast<unsigned>(coder.decodeDoubleForKey("NSWindowStyleMask").value_or(0));
    if (!initWithContentRect_styleMask_backing_defer(
            coder.decodeRectForKey("NSWindowRect").value_or(NSZeroRect), mask, NSBackingStoreBuffered, false))
        return false;
    title_ = coder.decodeStringForKey("NSWindowTitle").value_or("");
    frame_->setContentLimits(coder.decodeSizeForKey("NSWindowContentMinSize").value_or(contentMinSize()),
                             coder.decodeSizeForKey("NSWindowContentMaxSize").value_or(contentMaxSize()));
    return true;
}

bool NSWindow::initWithForeignPeer(const PeerMaker& makePeer, const std::shared_ptr<NSView>& content,
                                   const NSSize& contentSize, const std::string& title) {
    if (!installedSystem()) return false;
    foreign_ = true;
    title_ = title;
    frame_->begin(contentSize);
    setContentView(content);
    peer_ = makePeer(*client_);
    frame_->beginAtPeer();
    contentView_->realiseAsContent(installedSystem()->windowSystem, *peer_);
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
    const auto held = retained(this);
    const auto old = contentView_;
    if ((view && view == old) || (foreign_ && old)) return;
    const auto next = view ? view : make<NSView>(NSRect{});
    if (!next->leavePlace()) return;
    if (old) client_->viewWillLeave(*old);
    // Where whoever heard of that has put it somewhere, or something else here, that holds.
    if (next->superview() || contentView_ != old) return;
    contentView_ = next;
    if (old) {
        old->unrealise();
        old->setNextResponder(nullptr);
        old->moveToWindow(nullptr);
    }
    if (contentView_ != next) return;
    next->setNextResponder(this);
    next->setFrame({NSZeroPoint, contentSize()});
    next->moveToWindow(client_.get());
    if (contentView_ != next) return;
    if (peer_ && !next->peer_) next->realiseAsContent(installedSystem()->windowSystem, *peer_);
    next->setNeedsLayout(true);
    next->setNeedsDisplay(true);
}

// Place and size

const NSSize& NSWindow::contentSize() const { return frame_->contentSize(); }
const NSSize& NSWindow::contentMinSize() const { return frame_->contentMinSize(); }
const NSSize& NSWindow::contentMaxSize() const { return frame_->contentMaxSize(); }

void NSWindow::setContentSize(const NSSize& size) {
    const auto held = retained(this);
    frame_->setContentSize(size);
}

void NSWindow::setContentMinSize(const NSSize& size) { frame_->setContentLimits(size, contentMaxSize()); }
void NSWindow::setContentMaxSize(const NSSize& size) { frame_->setContentLimits(contentMinSize(), size); }

void NSWindow::didResize() {
    const auto content = contentView_;
    content->setFrame({NSZeroPoint, contentSize()});
    update();
    tell(&NSWindowDelegate::windowDidResize, NSWindowDidResizeNotification);
}

void NSWindow::didMove() { tell(&NSWindowDelegate::windowDidMove, NSWindowDidMoveNotification); }

void NSWindow::tell(void (NSWindowDelegate::*message)(NSWindow&), const NSNotificationName& name) {
    if (const auto delegate = this->delegate()) (delegate.get()->*message)(*this);
    NSNotificationCenter::defaultCenter().postNotificationName_object(name, this);
}

double NSWindow::usualInset() const {
    return bars_->usualInset(has(NSWindowStyleMaskTitled), mayHaveMenuBar());
}

NSRect NSWindow::frame() const { return frame_->rect(); }
NSRect NSWindow::frameRectForContentRect(const NSRect& content) const { return frame_->aroundContent(content); }

void NSWindow::setFrame_display_animate(const NSRect& frame, bool, bool) {
    const auto held = retained(this);
    frame_->setRect(frame);
}

void NSWindow::setFrameTopLeftPoint(const NSPoint& point) {
    const auto held = retained(this);
    frame_->setTopLeft(point);
}

NSRect NSWindow::convertRectToScreen(const NSRect& rect) const {
    const NSPoint corner = frame_->contentOnScreen().origin;
    return NSOffsetRect(rect, corner.x, corner.y);
}

double NSWindow::backingScaleFactor() const { return peer_ ? peer_->backingScale() : 1; }

// Bars

const std::shared_ptr<NSToolbar>& NSWindow::toolbar() const { return bars_->toolbar(); }
void NSWindow::setToolbar(const std::shared_ptr<NSToolbar>& toolbar) { bars_->setToolbar(toolbar); }

bool NSWindow::mayHaveMenuBar() const {
    return !foreign_ && !auxiliary_ && has(NSWindowStyleMaskTitled) && has(NSWindowStyleMaskMiniaturizable) &&
           WindowBarsHolder::mainMenuStandsInWindows();
}

void NSWindow::setMenuBar(bool shown) { bars_->showMainMenu(shown && mayHaveMenuBar(), retained(this)); }

void NSWindow::mainMenuChanged() {
    const auto held = retained(this);
    const bool shown = visible_ && !isSheet() && NSApplication::sharedApplication().modalWindow() != this;
    setMenuBar(false);
    setMenuBar(shown);
}

// Coming and going

void NSWindow::realise(bool withMenuBar) {
    if (peer_) return setMenuBar(withMenuBar);
    auto& system = installedSystem()->windowSystem;
    peer_ = system.makeWindow(*client_, contentSize(),
                              {has(NSWindowStyleMaskTitled), has(NSWindowStyleMaskClosable),
                               has(NSWindowStyleMaskMiniaturizable), has(NSWindowStyleMaskResizable)});
    peer_->setTitle(title_);
    peer_->setContentLimits(contentMinSize(), contentMaxSize());
    contentView_->realiseAsContent(system, *peer_);
    bars_->setBars(peer_->bars());
    setMenuBar(withMenuBar);
    frame_->place();
    focus_->show();
}

void NSWindow::unrealise() {
    if (!peer_) return;
    contentView_->unrealise();
    bars_->setBars(nullptr);
    sheet_->hidden();
    peer_.reset();
    updateScheduled_ = false;
}

void NSWindow::show(bool activate) {
    const char* const method = activate ? "-[NSWindow makeKeyAndOrderFront:]" : "-[NSWindow orderFront:]";
    if (!systemFor(method) || (foreign_ && !peer_)) return;
    const auto held = retained(this);
    wasShown();
    realise(true);
    if (!foreign_ && has(NSWindowStyleMaskTitled)) frame_->keepWithinReach();
    if (peer_) peer_->show(activate);
}

std::unique_ptr<port::TrackingLoop> NSWindow::showModal() {
    if (!installedSystem()) return nullptr;
    wasShown();
    realise(false);
    return peer_ ? installedSystem()->windowSystem.beginModal(*peer_) : nullptr;
}

void NSWindow::showAsSheet(NSWindow* parent) {
    if (!systemFor("-[NSApplication beginSheet:modalForWindow:…]")) return;
    const auto held = retained(this);
    // A second sheet stands over the first.
    while (parent && parent != this && parent->attachedSheet()) parent = parent->attachedSheet();
    if (parent == this) return; // where it stands already
    // No window stands over itself, by way of others.
    for (auto below = retained(parent); below; below = below->sheet_->parent())
        if (below.get() == this) {
            NSLog("-[NSApplication beginSheet:modalForWindow:…]: %@ is to be a sheet over itself", this);
            return;
        }
    const auto heldParent = retained(parent);
    endSheet();
    wasShown();
    realise(false);
    if (!peer_) return; // closed by whoever heard of it
    sheet_->begin(retained(this), retained(parent), parent ? parent->sheet_.get() : nullptr);
    sheet_->show(installedSystem()->windowSystem, *peer_, parent ? parent->peer_.get() : nullptr);
}

void NSWindow::endSheet() {
    if (!isSheet()) return;
    const auto held = retained(this);
    const auto parent = sheet_->parent();
    const auto above = sheet_->attached();
    sheet_->end(peer_.get(), parent ? parent->sheet_.get() : nullptr);
    // A sheet over this one goes on, over the parent.
    if (parent && above && !parent->attachedSheet()) above->showAsSheet(parent.get());
}

bool NSWindow::isSheet() const { return sheet_->isSheet(); }
NSWindow* NSWindow::attachedSheet() const { return sheet_->attached().get(); }

void NSWindow::wasShown() {
    NSApplication::sharedApplication().windowWasShown(*this);
    // Lay out first, realise late: no view is ever seen at a wrong place.
    contentView_->layoutSubtreeIfNeeded();
    open_ = true;
    visible_ = true;
    if (!std::exchange(wasEverShown_, true)) focus_->begin();
}

void NSWindow::orderOut(NSObject*) {
    const auto held = retained(this);
    endSheet();
    visible_ = false;
    cancelTracking();
    if (peer_) peer_->hide();
}

void NSWindow::performClose(NSObject*) {
    // A sheet and its window are one to the user.
    if (const auto parent = sheet_->parent())
        parent->performClose(this);
    else if ((foreign_ || has(NSWindowStyleMaskClosable)) && shouldClose())
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
    {
        const ValueGuard closing(closing_, true);
        cancelTracking();
        if (const auto delegate = this->delegate()) delegate->windowWillClose(*this);
        visible_ = false;
        if (const auto sheet = sheet_->attached()) sheet->close();
        endSheet();
        keyChanged(false);
        if (!foreign_) unrealise();
        open_ = false;
    }
    if (installedSystem()) NSApplication::sharedApplication().windowWasClosed(*this);
}

void NSWindow::wasHidden() {
    visible_ = false;
    cancelTracking();
    keyChanged(false);
}

// Keyboard and pointer

NSResponder* NSWindow::firstResponder() const { return &focus_->first(); }

bool NSWindow::makeFirstResponder(NSResponder* responder) {
    const auto held = retained(this);
    return focus_->makeFirst(responder);
}

NSView* NSWindow::initialFirstResponder() const { return focus_->initial(); }
void NSWindow::setInitialFirstResponder(const Unretained<NSView>& view) {
    focus_->setInitial(view.givenTo("-[NSWindow setInitialFirstResponder:]"));
}

void NSWindow::endEditingFor(NSObject*) {
    const auto held = retained(this);
    focus_->endEditing();
}

bool NSWindow::selectKeyView(NSView* from, bool backwards) {
    const auto held = retained(this);
    return focus_->selectKeyView(from, backwards);
}

void NSWindow::recalculateKeyViewLoop() { focus_->recalculateKeyViewLoop(); }

bool NSWindow::performKeyEquivalentOf(const char* characters) {
    return focus_->performKeyEquivalentOf(characters);
}

void NSWindow::keyDown(const NSEvent& event) {
    const auto held = retained(this);
    if (!focus_->handleUntaken(event)) NSResponder::keyDown(event);
}

void NSWindow::sendEvent(const NSEvent& event) {
    const auto held = retained(this);
    if (event.type() == NSEventTypeKeyDown || event.type() == NSEventTypeKeyUp)
        focus_->handle(event);
    else
        mouse_->handle(event, *contentView_);
}

std::optional<NSEvent> NSWindow::nextEventMatchingMask(NSEventMask mask) {
    if (!installedSystem() || mouse_->pressWasEnded()) return std::nullopt;
    return NSApplication::sharedApplication().nextEvent(*this, mask);
}

void NSWindow::cancelTracking() {
    ++cancellations_;
    mouse_->endPress();
    if (!installedSystem()) return;
    NSApplication::sharedApplication().wakeTracking();
    NSApplication::sharedApplication().wakeModal();
}

// A view that is pressed gets its release now, unless it, or another, is handling an event: then none.
void NSWindow::pressesEnd() {
    const auto held = retained(this);
    const auto pressed = mouse_->endPresses();
    cancelTracking();
    if (pressed && NSApplication::sharedApplication().eventsInHand_ == 0) mouse_->release(*pressed);
}

void NSWindow::scheduleUpdate() {
    if (peer_ && !std::exchange(updateScheduled_, true)) peer_->scheduleUpdate();
}

void NSWindow::update() {
    updateScheduled_ = false;
    const auto content = contentView_;
    content->layoutSubtreeIfNeeded();
}

void NSWindow::keyChanged(bool key) {
    if (key == key_) return;
    key_ = key;
    if (key)
        tell(&NSWindowDelegate::windowDidBecomeKey, NSWindowDidBecomeKeyNotification);
    else if (const auto delegate = this->delegate())
        delegate->windowDidResignKey(*this);
}

void NSWindow::appearanceChanged() {
    const auto content = contentView_;
    content->appearanceChanged();
    bars_->tellToolbar(); // its pictures
}

} // namespace zr
