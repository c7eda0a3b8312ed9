#include <AppKit/NSGraphicsContext.h>
#include <WindowSystem/Canvas.h>

namespace zr {

namespace {
NSGraphicsContext* current = nullptr; // main thread only, like all drawing
}

NSGraphicsContext::NSGraphicsContext(port::Canvas& canvas) : canvas_(canvas), outer_(current), states_(1) {
    current = this;
}

NSGraphicsContext::~NSGraphicsContext() {
    while (states_.size() > 1) restoreGraphicsState();
    current = outer_;
}

NSGraphicsContext* NSGraphicsContext::currentContext() { return current; }

void NSGraphicsContext::saveGraphicsState() {
    states_.push_back(states_.back());
    canvas_.save();
}

void NSGraphicsContext::restoreGraphicsState() {
    if (states_.size() == 1) return;
    states_.pop_back();
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
