// SPDX-License-Identifier: MIT
#include <AppKit/NSBezierPath.h>
#include <AppKit/NSGraphicsContext.h>
#include <WindowSystem/Drawing.h>

#include <algorithm>
#include <stdexcept>

namespace zr {

NSBezierPath NSBezierPath::bezierPathWithRect(const NSRect& rect) {
    NSBezierPath result;
    result.path_.shape = PathShape::rectangle;
    result.path_.bounds = rect;
    return result;
}

NSBezierPath NSBezierPath::bezierPathWithOvalInRect(const NSRect& rect) {
    NSBezierPath result;
    result.path_.shape = PathShape::oval;
    result.path_.bounds = rect;
    return result;
}

NSBezierPath NSBezierPath::bezierPathWithRoundedRect_xRadius_yRadius(const NSRect& rect, double xRadius,
                                                                     double yRadius) {
    NSBezierPath result;
    result.path_.shape = PathShape::roundedRectangle;
    result.path_.bounds = rect;
    result.path_.xRadius = std::min(xRadius, rect.size.width / 2);
    result.path_.yRadius = std::min(yRadius, rect.size.height / 2);
    return result;
}

void NSBezierPath::becomeElements() {
    if (path_.shape == PathShape::elements) return;
    Path elements;
    elements.elements = elementsOf(path_);
    path_ = std::move(elements);
}

void NSBezierPath::moveToPoint(const NSPoint& point) {
    becomeElements();
    path_.elements.push_back({PathElement::Kind::move, {{point}}});
}

void NSBezierPath::lineToPoint(const NSPoint& point) {
    becomeElements();
    if (path_.elements.empty()) throw std::logic_error("lineToPoint: the path has no current point");
    path_.elements.push_back({PathElement::Kind::line, {{point}}});
}

void NSBezierPath::closePath() {
    becomeElements();
    if (path_.elements.empty()) throw std::logic_error("closePath: the path has no current point");
    path_.elements.push_back({PathElement::Kind::close, {}});
}

void NSBezierPath::fill() const {
    if (auto* context = NSGraphicsContext::currentContext())
        context->list().add(port::Fill{path_, context->colour()});
}

void NSBezierPath::stroke() const {
    if (auto* context = NSGraphicsContext::currentContext())
        context->list().add(port::Stroke{path_, context->colour(), {.lineWidth = lineWidth_}});
}

void NSBezierPath::addClip() const {
    if (auto* context = NSGraphicsContext::currentContext()) context->list().add(port::Clip{path_});
}

void NSBezierPath::fillRect(const NSRect& rect) {
    NSRectFillUsingOperation(rect, NSCompositingOperationSourceOver);
}

} // namespace zr
