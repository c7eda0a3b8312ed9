// SPDX-License-Identifier: MIT
#include <AppKit/NSColor.h>
#include <AppKit/NSGraphicsContext.h>

#include <algorithm>

namespace zr {

NSColor NSColor::colorWithDeviceRed_green_blue_alpha(double red, double green, double blue, double alpha) {
    const auto limited = [](double component) { return std::clamp(component, 0.0, 1.0); };
    return NSColor({SystemColour::none, limited(red), limited(green), limited(blue), limited(alpha)});
}

void NSColor::set() const {
    if (auto* context = NSGraphicsContext::currentContext()) context->setColour(colour_);
}

} // namespace zr
