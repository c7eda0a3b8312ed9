// SPDX-License-Identifier: MIT
#include <AppKit/NSWindow.h>
#include <ZRUIKit/ProgressSliderView.h>

namespace zr {

ZR_CLASS_TABLE(ProgressSliderView)

bool ProgressSliderView::initWithFrame(const NSRect& frame) {
    if (!BaseSliderView::initWithFrame(frame)) return false;
    bDraggingLeftClip_ = false;
    bDraggingRightClip_ = false;
    itemSelection_->setDStart(0.0);
    itemSelection_->setDLength(0.0);
    return true;
}

void ProgressSliderView::setDCurValue(double value) {
    itemSelection_->setDLength(value);
    BaseSliderView::setDCurValue(value);
}

void ProgressSliderView::splitAtPoint(double) {
    setDLength(itemSelection_->dLength());
    itemSelection_->setDStart(0.0);
    setNeedsDisplay(true);
}

void ProgressSliderView::showBarToCurValue() {
    itemSelection_->setDLength(dCurValue_);
    setNeedsDisplay(true);
}

void ProgressSliderView::mouseDown(const NSEvent& press) {
    constexpr NSEventMask kDragOrRelease = NSEventMaskLeftMouseUp | NSEventMaskLeftMouseDragged;
    // The delegate may take the view out of its window, or let go of it, at any step.
    const auto held = retained(this);
    // In another window there is no such press.
    const auto window = retained(this->window());
    const auto nextEvent = [&]() -> std::optional<NSEvent> {
        return window && this->window() == window.get() ? window->nextEventMatchingMask(kDragOrRelease)
                                                        : std::nullopt;
    };
    mouseDownAt(convertPoint_fromView(press.locationInWindow(), nullptr));
    bDraggingLeftClip_ = false;
    bDraggingRightClip_ = false;
    showBarToCurValue();
    for (auto event = nextEvent(); event; event = nextEvent()) {
        const NSPoint point = convertPoint_fromView(event->locationInWindow(), nullptr);
        if (event->type() == NSEventTypeLeftMouseDragged) {
            mouseDraggedTo(point);
            showBarToCurValue();
            BaseSliderView::mouseDragged(*event);
        } else if (event->type() == NSEventTypeLeftMouseUp) {
            // The bar is left where the last step put it, on purpose.
            mouseUpAt(point);
            bDraggingLeftClip_ = false;
            bDraggingRightClip_ = false;
            BaseSliderView::mouseUp(*event);
            return;
        }
    }
}

} // namespace zr
