// SPDX-License-Identifier: MIT
#include <AppKit/NSImage.h>
#include <AppKit/NSImageView.h>
#include <Foundation/NSBundle.h>
#include <Foundation/NSCoder.h>
#include <Foundation/NSLog.h>

#include <algorithm>

namespace zr {

ZR_CLASS_TABLE(NSImageView)

namespace {

NSSize scaled(NSSize size, NSSize room, NSImageScaling scaling) {
    if (scaling == NSImageScaleNone) return size;
    if (scaling == NSImageScaleAxesIndependently) return room;
    double factor = std::min(room.width / size.width, room.height / size.height);
    if (scaling == NSImageScaleProportionallyDown) factor = std::min(factor, 1.0);
    return {size.width * factor, size.height * factor};
}

} // namespace

bool NSImageView::initWithCoder(NSCoder& coder) {
    if (!NSControl::initWithCoder(coder)) return false;
    imageScaling_ = static_cast<NSImageScaling>(
        coder.decodeDoubleForKey("NSImageScaling").value_or(NSImageScaleProportionallyDown));
    const auto name = coder.decodeStringForKey("NSImageName");
    if (!name) return true;
    image_ = NSBundle::mainBundle().imageForResource(*name);
    if (!image_) image_ = NSBundle::bundleForClass(classTable()).imageForResource(*name);
    if (!image_) NSLog("There is no picture %@ in any bundle", *name);
    return true;
}

void NSImageView::setImage(const std::shared_ptr<NSImage>& image) {
    image_ = image;
    setNeedsDisplay(true);
}

void NSImageView::setImageScaling(NSImageScaling scaling) {
    imageScaling_ = scaling;
    setNeedsDisplay(true);
}

void NSImageView::drawRect(const NSRect&) {
    const NSSize room = bounds().size;
    if (!image_ || image_->size().width <= 0 || image_->size().height <= 0) return;
    const NSSize size = scaled(image_->size(), room, imageScaling_);
    image_->drawInRect_fromRect_operation_fraction(
        {{(room.width - size.width) / 2, (room.height - size.height) / 2}, size}, NSZeroRect,
        NSCompositingOperationSourceOver, 1);
}

} // namespace zr
