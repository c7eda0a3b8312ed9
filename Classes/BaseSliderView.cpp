// SPDX-License-Identifier: MIT
#include <AppKit/NSBezierPath.h>
#include <AppKit/NSColor.h>
#include <ZRUIKit/BaseSliderView.h>

#include <algorithm>

namespace zr {

ZR_CLASS_TABLE(BaseSliderView, .outlets = {outletNamed<&BaseSliderView::setDelegate>("delegate")},
               .attributes = {attributeNamed<&BaseSliderView::setDLength>("dLength"),
                              attributeNamed<&BaseSliderView::setDMinValue>("dMinValue"),
                              attributeNamed<&BaseSliderView::setDCurValue>("dCurValue"),
                              attributeNamed<&BaseSliderView::setSliderXOffset>("sliderXOffset"),
                              attributeNamed<&BaseSliderView::setSliderYOffset>("sliderYOffset"),
                              attributeNamed<&BaseSliderView::setKnobYOffset>("knobYOffset")})

namespace {

constexpr double kTrackHeight = 3.0;
constexpr double kKnobSize = 12.0;
constexpr double kTrackMargin = 5.0; // around the track, where a press still counts

// Single precision on purpose: the threshold is a little more than a thousandth.
constexpr double kShortestDrawn = static_cast<double>(0.001f);

NSColor progressColour() { return NSColor::colorWithDeviceRed_green_blue_alpha(0.118, 0.663, 0.337, 1.0); }

void fillBar(const NSRect& bar, double radius) {
    NSBezierPath::bezierPathWithRoundedRect_xRadius_yRadius(bar, radius, radius).fill();
}

} // namespace

bool BaseSliderView::initWithFrame(const NSRect& frame) {
    if (!NSControl::initWithFrame(frame)) return false;
    commonInit();
    return true;
}

bool BaseSliderView::initWithCoder(NSCoder& coder) {
    if (!NSControl::initWithCoder(coder)) return false;
    commonInit();
    return true;
}

void BaseSliderView::commonInit() {
    sliderXOffset_ = 10.0;
    sliderYOffset_ = 10.0;
    knobYOffset_ = 7.0;
    dMinValue_ = 0.0;
    dLength_ = 1000.0;
    dCurValue_ = 0.0;
    eumCurSliderState_ = 0;
    bDraggingKnob_ = false;
    rcSlider_ = NSZeroRect;
    rcKnob_ = NSZeroRect;
    itemSelection_ = make<SliderSelectionItem>();
    itemSelection_->setDStart(dMinValue_);
    itemSelection_->setDLength(-1.0);
}

void BaseSliderView::setDCurValue(double value) {
    dCurValue_ = value;
    setNeedsDisplay(true);
}

void BaseSliderView::setSelection_length(double start, double length) {
    itemSelection_->setDStart(start);
    itemSelection_->setDLength(length);
    setNeedsDisplay(true);
}

void BaseSliderView::seekToValue(double value) {
    dCurValue_ = value;
    setNeedsDisplay(true);
    didChangeValue(value);
}

double BaseSliderView::curProgressWithXValue(double x) const {
    double position = x;
    if (sliderXOffset_ > x) {
        position = sliderXOffset_;
    } else {
        const double right = rcSlider_.origin.x + rcSlider_.size.width;
        if (x > right) position = right;
    }
    return (position - sliderXOffset_) / rcSlider_.size.width * dLength_ + dMinValue_;
}

double BaseSliderView::curXValueWithProgress(double value) const {
    const double clamped = std::min(dMinValue_ + dLength_, std::max(dMinValue_, value));
    return (clamped - dMinValue_) / dLength_ * rcSlider_.size.width + sliderXOffset_;
}

void BaseSliderView::mouseDownAt(const NSPoint& point) {
    if (!isEnabled()) return;
    bDraggingKnob_ = false;
    if (!NSPointInRect(point, NSInsetRect(rcSlider_, -kTrackMargin, -kTrackMargin))) return;
    bDraggingKnob_ = true;
    const double value = curProgressWithXValue(point.x);
    dCurValue_ = value;
    beginDragAt(value);
}

void BaseSliderView::mouseDraggedTo(const NSPoint& point) {
    if (!isEnabled() || !bDraggingKnob_) return;
    const double value = curProgressWithXValue(point.x);
    dCurValue_ = value;
    didChangeValue(value);
}

void BaseSliderView::mouseUpAt(const NSPoint& point) {
    if (!isEnabled() || !bDraggingKnob_) return;
    bDraggingKnob_ = false;
    const double value = curProgressWithXValue(point.x);
    dCurValue_ = value;
    endDragAt(value);
}

void BaseSliderView::beginDragAt(double value) {
    if (const auto delegate = this->delegate()) delegate->sliderView_beginDragAt(*this, value);
}

void BaseSliderView::didChangeValue(double value) {
    if (const auto delegate = this->delegate()) delegate->sliderView_didChangeValue(*this, value);
}

void BaseSliderView::endDragAt(double value) {
    if (const auto delegate = this->delegate()) delegate->sliderView_endDragAt(*this, value);
}

void BaseSliderView::drawRect(const NSRect& dirty) {
    NSControl::drawRect(dirty);
    draw();
}

void BaseSliderView::draw() {
    drawSlider();
    drawSelections();
    drawKnob();
}

void BaseSliderView::drawSlider() {
    const NSRect area = bounds();
    rcSlider_ = {{sliderXOffset_, (area.size.height - kTrackHeight) * 0.5},
                 {area.size.width - 2 * sliderXOffset_, kTrackHeight}};
    NSColor::tertiaryLabelColor().set();
    fillBar(rcSlider_, 0.5 * kTrackHeight);
}

void BaseSliderView::drawSelections() {
    const double start = itemSelection_->dStart();
    const double length = itemSelection_->dLength();
    if (length < kShortestDrawn || dLength_ < kShortestDrawn) return;
    const double width = rcSlider_.size.width;
    const NSRect bar = {{(start - dMinValue_) / dLength_ * width + sliderXOffset_, rcSlider_.origin.y},
                        {length / dLength_ * width, rcSlider_.size.height}};
    progressColour().set();
    fillBar(bar, 0.5 * rcSlider_.size.height);
}

void BaseSliderView::drawKnob() {
    if (dLength_ < kShortestDrawn) return;
    const double fraction = (dCurValue_ - dMinValue_) / dLength_;
    rcKnob_ = {{(rcSlider_.size.width - kKnobSize) * fraction + sliderXOffset_,
                (bounds().size.height - kKnobSize) * 0.5},
               {kKnobSize, kKnobSize}};
    progressColour().set();
    NSBezierPath::bezierPathWithOvalInRect(rcKnob_).fill();
}

} // namespace zr
