// SPDX-License-Identifier: MIT
#include <AppKit/NSGraphicsContext.h>
#include <WindowSystem/Drawing.h>

namespace zr {

namespace {
NSGraphicsContext* current = nullptr; // main thread only, like all drawing
}

NSGraphicsContext::NSGraphicsContext(port::OperationList& list) : list_(list), outer_(current) {
    current = this;
}

NSGraphicsContext::~NSGraphicsContext() {
    while (!saved_.empty()) restoreGraphicsState();
    current = outer_;
}

NSGraphicsContext* NSGraphicsContext::currentContext() { return current; }

void NSGraphicsContext::saveGraphicsState() {
    saved_.push_back(colour_);
    list_.add(port::Save{});
}

void NSGraphicsContext::restoreGraphicsState() {
    if (saved_.empty()) return;
    colour_ = saved_.back();
    saved_.pop_back();
    list_.add(port::Restore{});
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
    current->list().add(
        port::Fill{{.shape = PathShape::rectangle, .bounds = rect}, current->colour(), operation});
}

} // namespace zr
