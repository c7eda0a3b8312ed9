#pragma once

#include <Base/Compositing.h>
#include <Base/Geometry.h>
#include <Foundation/NSObject.h>

#include <string>
#include <vector>

namespace zr {

namespace port {
struct ImageRepresentation;
}

// A picture with representations for scales and appearances, of which the one that suits is taken when it is
// drawn. Size in points, coordinates from the lower left. Main thread only.
class NSImage : public NSObject {
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
    // The size is that of the first one added, unless it was set.
    void addRepresentation(const port::ImageRepresentation& representation);

    // Draws into the current context. An empty source is the whole image; one that reaches outside is cut, its
    // destination likewise. The picture is scaled to the destination; `fraction` multiplies its alpha, at
    // most 1.
    void drawInRect_fromRect_operation_fraction(const NSRect& destination, const NSRect& source,
                                                NSCompositingOperation operation, double fraction) const;

private:
    NSSize size_;
    std::vector<port::ImageRepresentation> representations_;
};

} // namespace zr
