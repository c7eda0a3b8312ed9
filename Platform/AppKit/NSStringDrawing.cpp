#include "Installation.h"

#include <AppKit/NSGraphicsContext.h>
#include <AppKit/NSStringDrawing.h>

namespace zr {

void drawAtPoint_withAttributes(std::string_view text, const NSPoint& point, const TextAttributes& attributes) {
    auto* context = NSGraphicsContext::currentContext();
    if (!context || text.empty()) return;
    context->canvas().text(text, attributes.font.description(), attributes.foregroundColor.colour(), point);
}

NSSize sizeWithAttributes(std::string_view text, const TextAttributes& attributes) {
    auto* installed = installation();
    if (!installed) return NSZeroSize;
    const auto size = installed->windowSystem.measure(text, attributes.font.description());
    return {size.width, size.ascent + size.descent};
}

} // namespace zr
