// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Compiler.h>
#include <ZRUIKit/BaseSliderView.h>

#include <memory>

namespace zr {

class NSImage;

// The slider with which the user keeps one clip of a track. The selection is the clip, at first the whole
// range; a handle stands on the track at each of its ends and can be dragged. Dragging a handle never leaves
// less than 5 value units of clip. The current value (the knob) is drawn only on request; a press within 5
// points of the track moves it, also where the press takes a handle. Messages go to the delegate of the base
// class.
class ZR_EXPORT SplitSliderView : public BaseSliderView {
public:
    ZR_CLASS(SplitSliderView, BaseSliderView)

    bool initWithFrame(const NSRect& frame) override;
    bool initWithCoder(NSCoder& coder) override;

    // The live selection, not a copy.
    const std::shared_ptr<SliderSelectionItem>& selectionItem() const { return itemSelection_; }

    // Off at first. Setting it asks for drawing.
    bool shouldDrawKnob() const { return shouldDrawKnob_; }
    void setShouldDrawKnob(bool flag);

    // The handles' pictures; setting one does not draw. Both are drawn, and hit, at the left one's size. The
    // left handle ends at the clip's start, the right one begins at its end. Without a picture a handle is
    // neither seen nor hit.
    const std::shared_ptr<NSImage>& trimLeftImg() const { return trimLeftImg_; }
    virtual void setTrimLeftImg(const std::shared_ptr<NSImage>& image) { trimLeftImg_ = image; }
    const std::shared_ptr<NSImage>& trimRightImg() const { return trimRightImg_; }
    virtual void setTrimRightImg(const std::shared_ptr<NSImage>& image) { trimRightImg_ = image; }

    // Whether the current value lies more than 2 value units inside the clip, at both ends.
    bool canBeSplited() const;
    // Keeps the part of the clip before the current value, where that lies inside the clip: range and clip
    // become that long and the current value 0, while the starts of both stay. It neither draws nor sends
    // anything.
    void splitAtCurPoint();
    // Makes the range as long as the clip, and the clip start at 0; asks for drawing. The argument is not used.
    void splitAtPoint(double point);

    void drawRect(const NSRect& dirty) override; // as the base class draws, then the handles
    void drawKnob() override;
    virtual void draw2Clips();

    void mouseDown(const NSEvent& event) override;
    void mouseDragged(const NSEvent& event) override;
    void mouseUp(const NSEvent& event) override;

    // State, as subclasses and tests see it. The rectangles are results of drawing, and zero before it.
    bool bDraggingLeftClip() const { return bDraggingLeftClip_; }
    bool bDraggingRightClip() const { return bDraggingRightClip_; }
    const NSRect& rcClipLeft() const { return rcClipLeft_; }
    const NSRect& rcClipRight() const { return rcClipRight_; }
    double dDragXoffset() const { return dDragXoffset_; }

protected:
    void commonInitSub();

    bool bDraggingLeftClip_ = false;
    bool bDraggingRightClip_ = false;
    NSRect rcClipLeft_;
    NSRect rcClipRight_;
    double dDragXoffset_ = 0; // points between the press and the handle's inner edge, for the whole drag
    bool shouldDrawKnob_ = false;
    std::shared_ptr<NSImage> trimLeftImg_;
    std::shared_ptr<NSImage> trimRightImg_;

private:
    void moveLeftEndTo(double x);
    void moveRightEndTo(double x);
    void tell(void (SliderViewDelegate::*message)(SplitSliderView&, bool), bool leftClip);
};

} // namespace zr
