// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSControl.h>
#include <Base/Compiler.h>
#include <Foundation/Unretained.h>
#include <ZRUIKit/SliderSelectionItem.h>

#include <cstdint>
#include <memory>

namespace zr {

class BaseSliderView;
class SplitSliderView;

// What sliders tell. Values are in the slider's value units; every message comes on the main thread, while the
// event is being handled.
class SliderViewDelegate {
public:
    virtual ~SliderViewDelegate() = default;

    // A press landed on the track; the value jumped there.
    virtual void sliderView_beginDragAt(BaseSliderView&, double /*value*/) {}
    // Every step of a drag of the knob, and every seekToValue.
    virtual void sliderView_didChangeValue(BaseSliderView&, double /*value*/) {}
    // The release that ends a drag of the knob.
    virtual void sliderView_endDragAt(BaseSliderView&, double /*value*/) {}

    // Sent by SplitSliderView: a press on a handle, each step of its drag once the clip has changed, and the
    // release. The clip is read from the slider's selectionItem.
    virtual void splitSliderViewBeginDragClip_bLeftClip(SplitSliderView&, bool /*leftClip*/) {}
    virtual void splitSliderViewDragClipTo_bLeftClip(SplitSliderView&, bool /*leftClip*/) {}
    virtual void splitSliderViewEndDragClip_bLeftClip(SplitSliderView&, bool /*leftClip*/) {}
};

// The base of the timeline sliders: a track for a range of values, a round knob for the current value and one
// highlighted selection. It turns presses, drags and releases into messages to its delegate, but takes no
// events itself: subclasses convert them and call mouseDownAt, mouseDraggedTo and mouseUpAt. Used directly it
// draws and does not react.
//
// Values are in whatever unit the host uses throughout; positions are points in the view's coordinates, which
// are not flipped. Nothing is limited or checked unless it says so. Main thread only.
class ZR_EXPORT BaseSliderView : public NSControl {
public:
    ZR_CLASS(BaseSliderView, NSControl)

    bool initWithFrame(const NSRect& frame) override;
    bool initWithCoder(NSCoder& coder) override;
    static void initialize() {} // there is nothing to set up for the class

    // Not retained; null once the delegate is gone.
    std::shared_ptr<SliderViewDelegate> delegate() const { return delegate_.lock(); }
    void setDelegate(const Unretained<SliderViewDelegate>& delegate) {
        delegate_ = delegate.givenTo("-[BaseSliderView setDelegate:]");
    }

    // The range is [dMinValue, dMinValue + dLength], at first 0 to 1000. Setting them does not draw.
    double dMinValue() const { return dMinValue_; }
    void setDMinValue(double value) { dMinValue_ = value; }
    double dLength() const { return dLength_; }
    void setDLength(double length) { dLength_ = length; }

    // The knob's value, at first 0. Setting it asks for drawing and sends nothing.
    double dCurValue() const { return dCurValue_; }
    virtual void setDCurValue(double value);

    // Points between the view's sides and the track, 10 at first. Setting it does not draw.
    double sliderXOffset() const { return sliderXOffset_; }
    void setSliderXOffset(double offset) { sliderXOffset_ = offset; }
    // Kept for the host, 10 and 7 at first; the kit reads neither.
    double sliderYOffset() const { return sliderYOffset_; }
    void setSliderYOffset(double offset) { sliderYOffset_ = offset; }
    double knobYOffset() const { return knobYOffset_; }
    void setKnobYOffset(double offset) { knobYOffset_ = offset; }
    // A number kept for the host, 0 at first; the kit never reads it.
    std::int32_t curRecSliderState() const { return eumCurSliderState_; }
    void setCurRecSliderState(std::int32_t state) { eumCurSliderState_ = state; }

    // Stores the selection as it is given and asks for drawing.
    void setSelection_length(double start, double length);
    // Stores the value, asks for drawing and sends sliderView_didChangeValue. Overrides of setDCurValue do not
    // run.
    void seekToValue(double value);

    // The value at the position x, limited to the range. Needs a drawing pass before, which places the track:
    // until then, and with a track without width, the result is not finite.
    double curProgressWithXValue(double x) const;
    // The position of the value, which is limited to the range.
    double curXValueWithProgress(double value) const;

    // For subclasses. Points are in the view's coordinates. A press within 5 points of the track drags the knob
    // from then on and sets the value. None of the three asks for drawing; while the control is switched off
    // none does anything.
    virtual void mouseDownAt(const NSPoint& point);
    virtual void mouseDraggedTo(const NSPoint& point);
    virtual void mouseUpAt(const NSPoint& point);

    // Tell the delegate.
    virtual void beginDragAt(double value);
    virtual void didChangeValue(double value);
    virtual void endDragAt(double value);

    void drawRect(const NSRect& dirty) override;
    virtual void draw(); // the track, the selection, the knob
    virtual void drawSlider();
    virtual void drawSelections();
    virtual void drawKnob();

    // State, as subclasses and tests see it. Both rectangles are results of drawing, and zero before it.
    std::int32_t eumCurSliderState() const { return eumCurSliderState_; }
    const std::shared_ptr<SliderSelectionItem>& itemSelection() const { return itemSelection_; }
    const NSRect& rcSlider() const { return rcSlider_; }
    const NSRect& rcKnob() const { return rcKnob_; }
    bool bDraggingKnob() const { return bDraggingKnob_; }

protected:
    void commonInit();

    std::int32_t eumCurSliderState_ = 0;
    double dLength_ = 0;
    double dMinValue_ = 0;
    double dCurValue_ = 0;
    std::shared_ptr<SliderSelectionItem> itemSelection_;
    double sliderXOffset_ = 0;
    double sliderYOffset_ = 0;
    double knobYOffset_ = 0;
    NSRect rcSlider_;
    NSRect rcKnob_;
    bool bDraggingKnob_ = false;

private:
    std::weak_ptr<SliderViewDelegate> delegate_;
};

} // namespace zr
