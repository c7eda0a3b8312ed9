#include <AppKit/NSGraphicsContext.h>
#include <WindowSystem/Drawing.h>

namespace zr {

namespace {
NSGraphicsContext* current = nullptr; // main thread only, like all drawing
}

NSGraphicsContext::NSGraphicsContext(port::Canvas& canvas) : canvas_(canvas), outer_(current) {
    current = this;
}

NSGraphicsContext::~NSGraphicsContext() {
    while (!saved_.empty()) restoreGraphicsState();
    current = outer_;
}

NSGraphicsContext* NSGraphicsContext::currentContext() { return current; }

void NSGraphicsContext::saveGraphicsState() {
    saved_.push_back(colour_);
    canvas_.save();
}

void NSGraphicsContext::restoreGraphicsState() {
    if (saved_.empty()) return;
    colour_ = saved_.back();
    saved_.pop_back();
    canvas_.restore();
}

void NSGraphicsContext::saveGraphicsState_() {
    if (current) current->saveGraphicsState();
}

void NSGraphicsContext::restoreGraphicsState_() {
    if (current) current->restoreGraphicsState();
}

void NSRectFill(const NSRect& rect) { NSRectFillUsingOperation(rect, NSCompositingOperationCopy); }

void NSRectFillUsingOperation(const NSRect& rect, NSCompositingOperation operation) {
    if (!current || NSIsEmptyRect(rect)) return;
    Path path;
    path.shape = PathShape::rectangle;
    path.bounds = rect;
    current->canvas().fill(path, current->colour(), operation);
}

} // namespace zr
