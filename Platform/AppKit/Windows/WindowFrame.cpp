// SPDX-License-Identifier: MIT
#include "WindowFrame.h"

#include <AppKit/NSScreen.h>
#include <WindowSystem/Windows.h>

#include <algorithm>

namespace zr {

void WindowFrame::begin(const NSRect& content) {
    contentSize_ = content.size;
    topLeft_ = {content.origin.x, NSMaxY(content) + inset()};
}

void WindowFrame::beginAtPeer() { topLeft_ = NSScreen::turnedOverPoint(owner_.peer()->frameTopLeft()); }

double WindowFrame::inset() const {
    const auto* const peer = owner_.peer();
    return peer ? peer->topInset() : owner_.usualInset();
}

NSRect WindowFrame::aroundContent(const NSRect& content) const {
    return {content.origin, {content.size.width, content.size.height + inset()}};
}

NSRect WindowFrame::rect() const {
    return aroundContent({{topLeft_.x, topLeft_.y - inset() - contentSize_.height}, contentSize_});
}

NSRect WindowFrame::contentOnScreen() const {
    const auto* const peer = owner_.peer();
    return peer ? NSScreen::turnedOver({peer->contentOriginOnScreen(), contentSize_})
                : NSRect{NSZeroPoint, contentSize_};
}

void WindowFrame::setRect(const NSRect& rect) {
    setTopLeft({rect.origin.x, NSMaxY(rect)});
    const NSSize size = {rect.size.width, std::max(0.0, rect.size.height - inset())};
    auto* const peer = owner_.peer();
    resized(peer ? peer->setContentSize(size) : size);
}

void WindowFrame::setTopLeft(const NSPoint& point) {
    placed_ = true;
    // Window systems are off by their borders now and then: what stays is left alone.
    if (point == topLeft_) return;
    topLeft_ = point;
    place();
    if (!owner_.peer()) owner_.frameMoved();
}

void WindowFrame::setContentSize(const NSSize& size) {
    const NSSize limited = {std::min(std::max(size.width, contentMinSize_.width), contentMaxSize_.width),
                            std::min(std::max(size.height, contentMinSize_.height), contentMaxSize_.height)};
    auto* const peer = owner_.peer();
    resized(peer ? peer->setContentSize(limited) : limited);
}

void WindowFrame::setContentLimits(const NSSize& minimum, const NSSize& maximum) {
    contentMinSize_ = minimum;
    contentMaxSize_ = maximum;
    if (auto* const peer = owner_.peer()) peer->setContentLimits(minimum, maximum);
}

void WindowFrame::place() {
    auto* const peer = owner_.peer();
    if (peer && placed_) peer->setFrameTopLeft(NSScreen::turnedOverPoint(topLeft_));
}

void WindowFrame::keepWithinReach() {
    if (!placed_) return;
    constexpr double kHandleHeight = 22, kHandleWidth = 60; // of the title bar, what a hand needs
    const NSRect frame = rect();
    const double width = std::min(kHandleWidth, frame.size.width), top = NSMaxY(frame);
    const auto screens = NSScreen::screens();
    for (const auto& screen : screens) {
        const NSRect visible = screen.visibleFrame();
        if (top <= NSMaxY(visible) && top - kHandleHeight >= NSMinY(visible) &&
            NSMaxX(frame) - width >= NSMinX(visible) && NSMinX(frame) + width <= NSMaxX(visible))
            return;
    }
    if (screens.empty()) return;
    const NSRect visible = screens.front().visibleFrame();
    setTopLeft({std::max(NSMinX(visible), std::min(NSMinX(frame), NSMaxX(visible) - frame.size.width)),
                std::min(NSMaxY(visible), std::max(top, NSMinY(visible) + frame.size.height))});
}

void WindowFrame::moved() {
    topLeft_ = NSScreen::turnedOverPoint(owner_.peer()->frameTopLeft());
    owner_.frameMoved();
}

void WindowFrame::resized(const NSSize& contentSize) {
    if (contentSize == contentSize_) return;
    contentSize_ = contentSize;
    owner_.contentResized();
}

} // namespace zr
