// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Compiler.h>
#include <ZRUIKit/BaseSliderView.h>

namespace zr {

// The slider that shows where playback is. The knob is the current value, and the selection a bar from the
// value 0 to it. A press on the track seeks there, and the knob follows the pointer until the button is let go:
// the whole drag happens inside mouseDown, which pulls the window's events.
//
// The bar follows setDCurValue and the drag; seekToValue and the release leave it where it was. Its length is
// the value itself, also where the range does not begin at 0. A slider from an interface file shows no bar
// until the first setDCurValue or press.
class ZR_EXPORT ProgressSliderView : public BaseSliderView {
public:
    ZR_CLASS(ProgressSliderView, BaseSliderView)

    bool initWithFrame(const NSRect& frame) override;

    // The way for the host to move the position: the bar and the knob.
    void setDCurValue(double value) override;
    // Makes the range as long as the bar, and the bar start at 0; asks for drawing. The argument is not used.
    void splitAtPoint(double point);

    // Returns at the release, or when no further event is to be expected. A slider that is switched off follows
    // the pointer, too, without moving.
    void mouseDown(const NSEvent& event) override;

    // Kept for symmetry with the split slider.
    bool bDraggingLeftClip() const { return bDraggingLeftClip_; }
    bool bDraggingRightClip() const { return bDraggingRightClip_; }
    const NSRect& rcClipLeft() const { return rcClipLeft_; }
    const NSRect& rcClipRight() const { return rcClipRight_; }
    double dDragXoffset() const { return dDragXoffset_; }

protected:
    bool bDraggingLeftClip_ = false;
    bool bDraggingRightClip_ = false;
    NSRect rcClipLeft_;
    NSRect rcClipRight_;
    double dDragXoffset_ = 0;

private:
    void showBarToCurValue();
};

} // namespace zr
