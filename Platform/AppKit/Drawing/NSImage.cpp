// SPDX-License-Identifier: MIT
#include "DrawingSystem.h"

#include <AppKit/NSGraphicsContext.h>
#include <AppKit/NSImage.h>
#include <Foundation/NSBundle.h>

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <utility>

namespace zr {

ZR_CLASS_TABLE(NSImage)

struct NSImage::Focus {
    Focus(const NSSize& ofSize, double ofScale) : size(ofSize), scale(ofScale), context(list) {}

    NSSize size;
    double scale;
    port::OperationList list;
    std::optional<NSGraphicsContext> context; // its end brings back what was saved
};

NSImage::NSImage() = default;
NSImage::~NSImage() = default;

bool NSImage::initWithSize(const NSSize& size) {
    size_ = size;
    return true;
}

bool NSImage::initWithContentsOfFile(const std::string& path) {
    auto* const system = drawingSystem();
    if (!system) return false;
    const auto bitmap = system->graphics.loadBitmap(path);
    if (!bitmap) return false;
    addRepresentation({bitmap, 1, Appearance::light});
    return true;
}

void NSImage::addRepresentation(const port::ImageRepresentation& representation) {
    if (size_ == NSZeroSize) {
        const auto pixels = representation.bitmap->pixelSize();
        size_ = {pixels.width / representation.scale, pixels.height / representation.scale};
    }
    auto all = representations_ ? *representations_ : std::vector<port::ImageRepresentation>{};
    all.push_back(representation);
    representations_ = std::make_shared<const std::vector<port::ImageRepresentation>>(std::move(all));
}

void NSImage::lockFocus() {
    auto* const system = drawingSystem();
    if (!system) throw std::logic_error("lockFocus: no window system is installed");
    if (focus_) throw std::logic_error("lockFocus: the image is being drawn already");
    if (NSIsEmptyRect({NSZeroPoint, size_})) throw std::logic_error("lockFocus: the image has no size");
    focus_ = std::make_unique<Focus>(size_, system->graphics.screenScale());
    drawInRect_fromRect_operation_fraction({NSZeroPoint, size_}, NSZeroRect, NSCompositingOperationCopy, 1);
}

void NSImage::unlockFocus() {
    const auto focus = std::exchange(focus_, nullptr);
    if (!focus) return;
    focus->context.reset();
    auto* const system = drawingSystem();
    if (!system) return;
    auto bitmap = system->graphics.makeBitmap(focus->size, focus->scale, focus->list);
    representations_ = std::make_shared<const std::vector<port::ImageRepresentation>>(
        1, port::ImageRepresentation{std::move(bitmap), focus->scale, Appearance::light});
}

void NSImage::drawInRect_fromRect_operation_fraction(const NSRect& destination, const NSRect& source,
                                                     NSCompositingOperation operation, double fraction) const {
    auto* context = NSGraphicsContext::currentContext();
    if (!context || !representations_ || NSIsEmptyRect(destination)) return;
    const NSRect whole = {NSZeroPoint, size_};
    const NSRect wanted = NSIsEmptyRect(source) ? whole : source;
    const NSRect part = NSIntersectionRect(wanted, whole);
    if (NSIsEmptyRect(part)) return;
    NSRect target = destination;
    if (part != wanted) {
        const double sx = destination.size.width / wanted.size.width;
        const double sy = destination.size.height / wanted.size.height;
        target = {{destination.origin.x + (part.origin.x - wanted.origin.x) * sx,
                   destination.origin.y + (part.origin.y - wanted.origin.y) * sy},
                  {part.size.width * sx, part.size.height * sy}};
    }
    context->list().add(port::Image{representations_, size_, target, part, operation, std::min(fraction, 1.0)});
}

// Belongs to NSBundle and is here because it makes images.
std::shared_ptr<NSImage> NSBundle::imageForResource(std::string_view name) const {
    auto* const system = drawingSystem();
    if (!system) return nullptr;
    const std::filesystem::path file(name);
    const std::string extension = file.has_extension() ? file.extension().string() : ".png";
    const std::string stem = file.has_extension() ? file.stem().string() : std::string(name);
    auto& shared = system->images[{this, stem + extension}];
    if (auto image = shared.lock()) return image;

    auto image = make<NSImage>();
    bool found = false;
    for (const auto appearance : {Appearance::light, Appearance::dark}) {
        for (const double scale : {1.0, 2.0}) {
            std::string variant = stem;
            if (appearance == Appearance::dark) variant += "~dark";
            if (scale == 2) variant += "@2x";
            variant += extension;
            const auto path = bundlePath() / variant;
            std::error_code error;
            if (!std::filesystem::is_regular_file(path, error)) continue;
            const auto bitmap = system->graphics.loadBitmap(path.string());
            if (!bitmap) continue;
            image->addRepresentation({bitmap, scale, appearance});
            found = true;
        }
    }
    if (!found) return nullptr;
    shared = image;
    return image;
}

} // namespace zr
