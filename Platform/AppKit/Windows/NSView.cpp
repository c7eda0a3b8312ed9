// SPDX-License-Identifier: MIT
#include "HeldClient.h"
#include "InstalledSystem.h"
#include "ViewHost.h"

#include <AppKit/NSGraphicsContext.h>
#include <AppKit/NSView.h>
#include <Foundation/NSCoder.h>
#include <Foundation/NSLog.h>

#include <algorithm>

namespace zr {

ZR_CLASS_TABLE(NSView, .outlets = {outletNamed<&NSView::setNextKeyView>("nextKeyView")})

struct NSView::Client final : HeldClient<NSView, port::ViewClient> {
    using HeldClient::HeldClient;

    void peerDraw(port::OperationList& list, const CGRect& dirty) override {
        entered([&] {
            NSRect own = dirty;
            if (!self.isFlipped()) own.origin.y = self.frame_.size.height - NSMaxY(dirty);
            self.displayInCanvas(list, NSIntersectionRect(own, self.bounds()));
        });
    }
    bool peerDrawsUpwards() const override { return !self.isFlipped(); }
    bool peerTakesFocusByPress() const override { return self.acceptsFirstResponder(); }
    bool peerMayTakeFocus() override {
        return entered([&] { return self.host_ && self.host_->mayTakeFocus(self); });
    }
    void peerFocusChanged(bool focused) override {
        entered([&] {
            if (focused && self.host_) self.host_->focusConfirmed(self);
        });
    }
    void peerGone() override { entered(&NSView::unrealise); }
};

NSView::NSView() = default;
NSView::~NSView() {
    for (const auto& subview : subviews_) {
        subview->superview_ = nullptr;
        subview->moveToWindow(nullptr);
    }
}

bool NSView::initWithFrame(const NSRect& frame) {
    if (!NSResponder::init()) return false;
    frame_ = frame;
    return true;
}

bool NSView::initWithCoder(NSCoder& coder) {
    frame_ = coder.decodeRectForKey("NSFrame").value_or(NSZeroRect);
    autoresizingMask_ =
        static_cast<unsigned>(coder.decodeDoubleForKey("NSAutoresizingMask").value_or(NSViewNotSizable));
    hidden_ = coder.decodeBoolForKey("NSHidden").value_or(false);
    identifier_ = coder.decodeStringForKey("NSIdentifier").value_or("");
    return true;
}

void NSView::setFrame(const NSRect& frame) {
    const auto held = retained(this);
    const NSSize oldSize = frame_.size;
    if (frame == frame_) return;
    frame_ = frame;
    placePeer();
    if (frame.size == oldSize) return;
    // Peers hang from the top: those of an unflipped view move with its height although no frame changed.
    if (!isFlipped() && frame.size.height != oldSize.height) placeSubviewsPeers();
    resizeSubviewsWithOldSize(oldSize);
    setNeedsLayout(true);
    setNeedsDisplay(true);
}

void NSView::setBoundsOrigin(const NSPoint& origin) {
    if (origin == boundsOrigin_) return;
    boundsOrigin_ = origin;
    placeSubviewsPeers();
}

NSWindow* NSView::window() const { return host_ ? &host_->window() : nullptr; }

void NSView::addSubview(const std::shared_ptr<NSView>& given) {
    const auto held = retained(this);
    const auto view = retained(given.get()); // whoever is called may reset where it came from
    if (!view || isDescendantOf(*view)) {
        NSLog("-[NSView addSubview:]: %@", view ? "the view would contain itself" : "the view is null");
        return;
    }
    if (view->superview_ == this) {
        const auto found = std::ranges::find(subviews_, view);
        std::rotate(found, found + 1, subviews_.end());
        if (view->peer_) view->peer_->raise();
        return;
    }
    // Where whoever heard of that has put it somewhere, or this into it, that holds.
    if (!view->leavePlace() || isDescendantOf(*view)) return;
    subviews_.push_back(view);
    view->superview_ = this;
    view->setNextResponder(this);
    view->moveToWindow(host_);
    if (view->superview_ != this) return;
    if (peer_ && !view->peer_) view->realise(installedSystem()->windowSystem, *peer_);
    setNeedsLayout(true);
    view->setNeedsLayout(view->needsLayout_);
    view->setNeedsDisplay(true);
}

void NSView::removeFromSuperview() {
    if (!superview_) return;
    const auto held = retained(this);
    NSView* const superview = superview_;
    const auto heldSuperview = retained(superview);
    if (host_) host_->viewWillLeave(*this);
    if (superview_ != superview) return; // whoever heard of it has taken it away
    unrealise();
    superview_ = nullptr;
    setNextResponder(nullptr);
    std::erase_if(superview->subviews_, [&](const auto& subview) { return subview.get() == this; });
    moveToWindow(nullptr);
    superview->setNeedsDisplay(true);
}

bool NSView::leavePlace() {
    removeFromSuperview();
    if (!superview_ && host_) {
        host_->contentLeaves();
        NSLog("A view is put elsewhere while it is the content of a window, which %@",
              host_ ? "is the host's and keeps it" : "gets an empty one");
    }
    return !superview_ && !host_;
}

void NSView::moveToWindow(ViewHost* host) {
    if (host == host_) return;
    const auto held = retained(this);
    host_ = host;
    viewDidMoveToWindow();
    const auto subviews = subviews_;
    for (const auto& subview : subviews)
        if (host_ == host && subview->superview_ == this) subview->moveToWindow(host);
}

bool NSView::isDescendantOf(const NSView& view) const {
    for (const NSView* current = this; current; current = current->superview_)
        if (current == &view) return true;
    return false;
}

void NSView::setHidden(bool hidden) {
    if (hidden == hidden_) return;
    const auto held = retained(this);
    hidden_ = hidden;
    if (hidden && host_) host_->viewWillLeave(*this);
    if (hidden_ != hidden) return;
    if (peer_) peer_->setHidden(hidden);
    if (!hidden) setNeedsDisplay(true);
}

bool NSView::isHiddenOrHasHiddenAncestor() const {
    for (const NSView* current = this; current; current = current->superview_)
        if (current->hidden_) return true;
    return false;
}

void NSView::resizeSubviewsWithOldSize(const NSSize& oldSize) {
    const auto subviews = subviews_;
    for (const auto& subview : subviews) subview->resizeWithOldSuperviewSize(oldSize);
}

namespace {

// The change along one axis is shared by the flexible parts in proportion to their sizes.
void resizeAxis(double& origin, double& size, double oldWhole, double newWhole, bool minFlexible,
                bool sizeFlexible, bool maxFlexible) {
    const double change = newWhole - oldWhole;
    const double maxMargin = oldWhole - (origin + size);
    double flexible = (minFlexible ? origin : 0) + (sizeFlexible ? size : 0) + (maxFlexible ? maxMargin : 0);
    const int parts = int{minFlexible} + int{sizeFlexible} + int{maxFlexible};
    if (parts == 0) return;
    // Parts of no size share evenly, else the change would be lost.
    const auto share = [&](double part) { return flexible != 0 ? change * part / flexible : change / parts; };
    const double newOrigin = minFlexible ? origin + share(origin) : origin;
    const double newSize = sizeFlexible ? size + share(size) : size;
    origin = newOrigin;
    size = newSize;
}

} // namespace

void NSView::resizeWithOldSuperviewSize(const NSSize& oldSize) {
    if (!superview_) return;
    const NSSize newSize = superview_->frame_.size;
    const auto has = [this](unsigned bit) { return (autoresizingMask_ & bit) != 0; };
    NSRect frame = frame_;
    resizeAxis(frame.origin.x, frame.size.width, oldSize.width, newSize.width, has(NSViewMinXMargin),
               has(NSViewWidthSizable), has(NSViewMaxXMargin));
    resizeAxis(frame.origin.y, frame.size.height, oldSize.height, newSize.height, has(NSViewMinYMargin),
               has(NSViewHeightSizable), has(NSViewMaxYMargin));
    setFrame(frame);
}

NSPoint NSView::pointToWindow(NSPoint point) const {
    for (const NSView* view = this; view; view = view->superview_) {
        point.x -= view->boundsOrigin_.x;
        point.y -= view->boundsOrigin_.y;
        if (view->isFlipped() != view->superviewIsFlipped()) point.y = view->frame_.size.height - point.y;
        point.x += view->frame_.origin.x;
        point.y += view->frame_.origin.y;
    }
    return point;
}

NSPoint NSView::pointFromWindow(NSPoint point) const {
    if (superview_) point = superview_->pointFromWindow(point);
    point.x -= frame_.origin.x;
    point.y -= frame_.origin.y;
    if (isFlipped() != superviewIsFlipped()) point.y = frame_.size.height - point.y;
    return {point.x + boundsOrigin_.x, point.y + boundsOrigin_.y};
}

NSPoint NSView::convertPoint_fromView(const NSPoint& point, const NSView* view) const {
    return pointFromWindow(view ? view->pointToWindow(point) : point);
}

NSPoint NSView::convertPoint_toView(const NSPoint& point, const NSView* view) const {
    const NSPoint inWindow = pointToWindow(point);
    return view ? view->pointFromWindow(inWindow) : inWindow;
}

namespace {
NSRect rectAround(const NSPoint& a, const NSPoint& b) {
    return {{std::min(a.x, b.x), std::min(a.y, b.y)},
            {std::max(a.x, b.x) - std::min(a.x, b.x), std::max(a.y, b.y) - std::min(a.y, b.y)}};
}
} // namespace

NSRect NSView::convertRect_fromView(const NSRect& rect, const NSView* view) const {
    return rectAround(convertPoint_fromView(rect.origin, view),
                      convertPoint_fromView({NSMaxX(rect), NSMaxY(rect)}, view));
}

NSRect NSView::convertRect_toView(const NSRect& rect, const NSView* view) const {
    return rectAround(convertPoint_toView(rect.origin, view),
                      convertPoint_toView({NSMaxX(rect), NSMaxY(rect)}, view));
}

NSView* NSView::hitTest(const NSPoint& point) {
    if (hidden_) return nullptr;
    NSPoint own = {point.x - frame_.origin.x, point.y - frame_.origin.y};
    if (isFlipped() != superviewIsFlipped()) own.y = frame_.size.height - own.y;
    own = {own.x + boundsOrigin_.x, own.y + boundsOrigin_.y};
    if (!NSMouseInRect(own, bounds(), isFlipped())) return nullptr;
    for (std::size_t i = subviews_.size(); i-- > 0;)
        if (NSView* const hit = subviews_[i]->hitTest(own)) return hit;
    return this;
}

void NSView::setNeedsDisplay(bool flag) {
    needsDisplay_ = flag;
    if (flag && peer_) peer_->invalidate();
}

void NSView::drawRect(const NSRect&) {}

void NSView::displayInCanvas(port::OperationList& list, const NSRect& dirty) {
    const auto held = retained(this);
    needsDisplay_ = false;
    NSGraphicsContext context(list);
    drawRect(dirty);
}

void NSView::setNeedsLayout(bool flag) {
    needsLayout_ = flag;
    if (flag && host_) host_->scheduleUpdate();
}

void NSView::layoutSubtreeIfNeeded() {
    const auto held = retained(this);
    if (needsLayout_) {
        needsLayout_ = false;
        layout();
    }
    const auto subviews = subviews_;
    for (const auto& subview : subviews) subview->layoutSubtreeIfNeeded();
}

bool NSView::performKeyEquivalent(const NSEvent& event) {
    const auto held = retained(this);
    const auto subviews = subviews_;
    return std::ranges::any_of(subviews, [&](const auto& subview) {
        return !subview->hidden_ && subview->performKeyEquivalent(event);
    });
}

void NSView::setIdentifier(const std::string& identifier) {
    identifier_ = identifier;
    if (peer_) peer_->setName(identifier);
}

std::unique_ptr<port::ViewPeer> NSView::makePeer(port::PeerFactory& factory, port::ViewPeer& parent,
                                                 port::ViewClient& client) {
    return factory.makeView(parent, client);
}

void NSView::realise(port::PeerFactory& factory, port::ViewPeer& parent) {
    if (!client_) client_ = std::make_unique<Client>(*this);
    adoptPeer(factory, makePeer(factory, parent, *client_));
}

void NSView::realiseAsContent(port::PeerFactory& factory, port::WindowPeer& window) {
    if (!client_) client_ = std::make_unique<Client>(*this);
    adoptPeer(factory, factory.makeContentView(window, *client_));
}

void NSView::adoptPeer(port::PeerFactory& factory, std::unique_ptr<port::ViewPeer> peer) {
    peer_ = std::move(peer);
    if (!identifier_.empty()) peer_->setName(identifier_);
    placePeer();
    if (hidden_) peer_->setHidden(true);
    const auto subviews = subviews_;
    for (const auto& subview : subviews)
        if (peer_ && subview->superview_ == this && !subview->peer_) subview->realise(factory, *peer_);
}

void NSView::unrealise() {
    if (!peer_) return;
    const auto subviews = subviews_;
    for (const auto& subview : subviews) subview->unrealise();
    peerWillGo();
    peer_.reset();
}

void NSView::placeSubviewsPeers() {
    const auto subviews = subviews_;
    for (const auto& subview : subviews) subview->placePeer();
}

// Where y is turned over for frames.
void NSView::placePeer() {
    if (!peer_ || !superview_) return;
    NSRect frame = NSOffsetRect(frame_, -superview_->boundsOrigin_.x, -superview_->boundsOrigin_.y);
    if (!superview_->isFlipped()) frame.origin.y = superview_->frame_.size.height - NSMaxY(frame);
    peer_->setFrame(frame);
}

void NSView::appearanceChanged() {
    const auto held = retained(this);
    viewDidChangeEffectiveAppearance();
    setNeedsDisplay(true);
    const auto subviews = subviews_;
    for (const auto& subview : subviews) subview->appearanceChanged();
}

} // namespace zr
