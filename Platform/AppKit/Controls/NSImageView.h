// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSControl.h>
#include <Base/Compiler.h>

#include <memory>

namespace zr {

class NSImage;

enum NSImageScaling : unsigned {
    NSImageScaleProportionallyDown = 0, // smaller where it does not fit, never larger
    NSImageScaleAxesIndependently = 1,
    NSImageScaleNone = 2,
    NSImageScaleProportionallyUpOrDown = 3,
};

// A picture in the middle of its frame. It has no frame line and cannot be edited. From an interface file, the
// picture is looked up by its name in the main bundle, then in the kit's. Main thread only.
class ZR_EXPORT NSImageView : public NSControl {
public:
    ZR_CLASS(NSImageView, NSControl)

    bool initWithFrame(const NSRect& frame) override { return NSControl::initWithFrame(frame); }
    bool initWithCoder(NSCoder& coder) override;
    void drawRect(const NSRect& dirtyRect) override;

    const std::shared_ptr<NSImage>& image() const { return image_; } // none at first
    void setImage(const std::shared_ptr<NSImage>& image);
    NSImageScaling imageScaling() const { return imageScaling_; } // proportionally down at first
    void setImageScaling(NSImageScaling scaling);

private:
    std::shared_ptr<NSImage> image_;
    NSImageScaling imageScaling_ = NSImageScaleProportionallyDown;
};

} // namespace zr
