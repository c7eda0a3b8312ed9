// SPDX-License-Identifier: MIT
#include <AppKit/NSFont.h>

namespace zr {

namespace {
FontDescription system(double size) {
    FontDescription description;
    description.size = size > 0 ? size : NSFont::systemFontSize();
    return description;
}
} // namespace

NSFont NSFont::systemFontOfSize(double size) { return NSFont(system(size)); }

NSFont NSFont::boldSystemFontOfSize(double size) {
    auto description = system(size);
    description.bold = true;
    return NSFont(description);
}

NSFont NSFont::monospacedDigitSystemFontOfSize(double size) {
    auto description = system(size);
    description.monospacedDigits = true;
    return NSFont(description);
}

} // namespace zr
