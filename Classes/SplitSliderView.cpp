// SPDX-License-Identifier: MIT
#include <AppKit/NSImage.h>
#include <ZRUIKit/KitFoundation.h>
#include <ZRUIKit/SplitSliderView.h>

#include <algorithm>
#include <cmath>

namespace zr {

ZR_CLASS_TABLE(SplitSliderView,
               .attributes = {attributeNamed<&SplitSliderView::setShouldDrawKnob>("shouldDrawKnob")})

namespace {

constexpr double kShortestClip = 5.0; // value units
constexpr double kSplitMargin = 2.0;  // value units

} // namespace

bool SplitSliderView::initWithFrame(const NSRect& frame) {
    if (!BaseSliderView::initWithFrame(frame)) return false;
    commonInitSub();
    return true;
}

bool SplitSliderView::initWithCoder(NSCoder& coder) {
    if (!BaseSliderView::initWithCoder(coder)) return false;
    commonInitSub();
    return true;
}

void SplitSliderView::commonInitSub() {
    bDraggingLeftClip_ = false;
    bDraggingRightClip_ = false;
    itemSelection_->setDLength(dLength_);
    setTrimLeftImg(KitImage("SliderTrimLeft"));
    setTrimRightImg(KitImage("SliderTrimRight"));
}

void SplitSliderView::setShouldDrawKnob(bool flag) {
    shouldDrawKnob_ = flag;
    setNeedsDisplay(true);
}

bool SplitSliderView::canBeSplited() const {
    const double start = itemSelection_->dStart();
    return start < dCurValue_ - kSplitMargin && dCurValue_ + kSplitMargin < start + itemSelection_->dLength();
}

void SplitSliderView::splitAtCurPoint() {
    const double start = itemSelection_->dStart();
    const double length = itemSelection_->dLength();
    if (length == 0.0) return;
    if (!(start < dCurValue_ && dCurValue_ < start + length)) return;
    const double kept = dCurValue_ - start;
    setDLength(kept);
    itemSelection_->setDLength(kept);
    dCurValue_ = 0.0;
}

void SplitSliderView::splitAtPoint(double) {
    setDLength(itemSelection_->dLength());
    itemSelection_->setDStart(0.0);
    setNeedsDisplay(true);
}

// NSControl's drawRect is left out on purpose.
void SplitSliderView::drawRect(const NSRect&) {
    draw();
    draw2Clips();
}

void SplitSliderView::drawKnob() {
    if (shouldDrawKnob_) BaseSliderView::drawKnob();
}

void SplitSliderView::draw2Clips() {
    const auto drawHandle = [](const std::shared_ptr<NSImage>& image, const NSRect& rect) {
        if (image)
            image->drawInRect_fromRect_operation_fraction(rect, NSZeroRect, NSCompositingOperationSourceOver,
                                                          1.0);
    };
    const double start = itemSelection_->dStart();
    const double top = rcSlider_.origin.y + rcSlider_.size.height;

    rcClipLeft_.size = trimLeftImg_ ? trimLeftImg_->size() : NSZeroSize;
    rcClipLeft_.origin = {curXValueWithProgress(start) - rcClipLeft_.size.width, top};
    drawHandle(trimLeftImg_, rcClipLeft_);

    // The right handle has the left picture's size, too.
    rcClipRight_ = {{curXValueWithProgress(start + itemSelection_->dLength()), top}, rcClipLeft_.size};
    drawHandle(trimRightImg_, rcClipRight_);
}

// The end of the clip stays where it is; the start follows, as far as the shortest clip allows.
void SplitSliderView::moveLeftEndTo(double x) {
    const double start = itemSelection_->dStart();
    const double length = itemSelection_->dLength();
    const double distance = curProgressWithXValue(x) - start;
    const double newLength = length - distance;
    if (kShortestClip > newLength) {
        itemSelection_->setDStart(start + length - kShortestClip);
        itemSelection_->setDLength(kShortestClip);
    } else {
        itemSelection_->setDStart(start + distance);
        itemSelection_->setDLength(newLength);
    }
}

void SplitSliderView::moveRightEndTo(double x) {
    itemSelection_->setDLength(std::max(kShortestClip, curProgressWithXValue(x) - itemSelection_->dStart()));
}

void SplitSliderView::tell(void (SliderViewDelegate::*message)(SplitSliderView&, bool), bool leftClip) {
    if (const auto delegate = this->delegate()) (delegate.get()->*message)(*this, leftClip);
}

void SplitSliderView::mouseDown(const NSEvent& event) {
    if (!isEnabled()) return;
    const NSPoint point = convertPoint_fromView(event.locationInWindow(), nullptr);
    mouseDownAt(point);
    bDraggingLeftClip_ = false;
    bDraggingRightClip_ = false;
    // Added to the pointer's position, the offset gives the handle's inner edge: a press alone moves nothing.
    if (NSPointInRect(point, rcClipLeft_)) {
        bDraggingLeftClip_ = true;
        dDragXoffset_ = std::abs(rcClipLeft_.origin.x + rcClipLeft_.size.width - point.x);
        moveLeftEndTo(point.x + dDragXoffset_);
        tell(&SliderViewDelegate::splitSliderViewBeginDragClip_bLeftClip, true);
    } else if (NSPointInRect(point, rcClipRight_)) {
        bDraggingRightClip_ = true;
        dDragXoffset_ = std::abs(point.x - rcClipRight_.origin.x);
        moveRightEndTo(point.x - dDragXoffset_);
        tell(&SliderViewDelegate::splitSliderViewBeginDragClip_bLeftClip, false);
    }
    setNeedsDisplay(true);
}

void SplitSliderView::mouseDragged(const NSEvent& event) {
    if (!isEnabled()) return;
    const NSPoint point = convertPoint_fromView(event.locationInWindow(), nullptr);
    if (bDraggingLeftClip_) {
        moveLeftEndTo(point.x + dDragXoffset_);
        tell(&SliderViewDelegate::splitSliderViewDragClipTo_bLeftClip, true);
    } else if (bDraggingRightClip_) {
        moveRightEndTo(point.x - dDragXoffset_);
        tell(&SliderViewDelegate::splitSliderViewDragClipTo_bLeftClip, false);
    } else if (bDraggingKnob_) {
        mouseDraggedTo(point);
    }
    setNeedsDisplay(true);
}

void SplitSliderView::mouseUp(const NSEvent& event) {
    if (!isEnabled()) return;
    mouseUpAt(convertPoint_fromView(event.locationInWindow(), nullptr));
    if (bDraggingLeftClip_)
        tell(&SliderViewDelegate::splitSliderViewEndDragClip_bLeftClip, true);
    else if (bDraggingRightClip_)
        tell(&SliderViewDelegate::splitSliderViewEndDragClip_bLeftClip, false);
    bDraggingLeftClip_ = false;
    bDraggingRightClip_ = false;
}

} // namespace zr
