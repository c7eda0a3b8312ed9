// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Compiler.h>
#include <Base/Compositing.h>
#include <Base/Geometry.h>
#include <Foundation/NSObject.h>

#include <memory>
#include <string>
#include <vector>

namespace zr {

namespace port {
struct ImageRepresentation;
}

// A picture with representations for scales and appearances, of which the one that suits is taken when it is
// drawn. Size in points, coordinates from the lower left. Main thread only.
class ZR_EXPORT NSImage : public NSObject {
public:
    ZR_CLASS(NSImage, NSObject)
    NSImage();
    ~NSImage() override;

    // Without representations: transparent.
    bool initWithSize(const NSSize& size);
    // Nil when the file cannot be read or no window system is installed.
    bool initWithContentsOfFile(const std::string& path);

    const NSSize& size() const { return size_; }
    void setSize(const NSSize& size) { size_ = size; }
    const std::shared_ptr<const std::vector<port::ImageRepresentation>>& representations() const {
        return representations_; // null for none
    }
    // The size is that of the first one added, unless it was set.
    void addRepresentation(const port::ImageRepresentation& representation);

    // Between the two, what is drawn goes into the image instead: coordinates from its lower left, unflipped,
    // the colour black at first, over what the image showed before. The result has the scale of the screen with
    // the most pixels. Calls for several images nest; unlockFocus alone is ignored. Throws std::logic_error for
    // an image of no size, one that is being drawn already, and while no window system is installed.
    void lockFocus();
    void unlockFocus();

    // Draws into the current context. An empty source is the whole image; one that reaches outside is cut, its
    // destination likewise. The picture is scaled to the destination; `fraction` multiplies its alpha, at
    // most 1.
    void drawInRect_fromRect_operation_fraction(const NSRect& destination, const NSRect& source,
                                                NSCompositingOperation operation, double fraction) const;

private:
    struct Focus;

    NSSize size_;
    std::shared_ptr<const std::vector<port::ImageRepresentation>> representations_; // null for none
    std::unique_ptr<Focus> focus_;                                                  // while it is being drawn
};

} // namespace zr
