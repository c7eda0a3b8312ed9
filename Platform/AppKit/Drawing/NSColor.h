// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Colour.h>
#include <Base/Compiler.h>

namespace zr {

// A colour. A value; nil is an empty optional. System colours follow the appearance: they get their components
// when they are painted.
class ZR_EXPORT NSColor {
public:
    explicit NSColor(const Colour& colour) : colour_(colour) {}

    // Components between 0 and 1; those outside are limited.
    static NSColor colorWithDeviceRed_green_blue_alpha(double red, double green, double blue, double alpha);
    static NSColor clearColor() { return NSColor({SystemColour::none, 0, 0, 0, 0}); }
    static NSColor labelColor() { return NSColor({SystemColour::label}); }
    static NSColor secondaryLabelColor() { return NSColor({SystemColour::secondaryLabel}); }
    static NSColor tertiaryLabelColor() { return NSColor({SystemColour::tertiaryLabel}); }
    static NSColor controlBackgroundColor() { return NSColor({SystemColour::controlBackground}); }
    static NSColor windowBackgroundColor() { return NSColor({SystemColour::windowBackground}); }
    static NSColor separatorColor() { return NSColor({SystemColour::separator}); }
    static NSColor systemRedColor() { return NSColor({SystemColour::systemRed}); }

    // Makes it the colour of the current context, for filling and stroking. Without a context it does nothing.
    void set() const;

    const Colour& colour() const { return colour_; }
    bool operator==(const NSColor&) const = default;

private:
    Colour colour_;
};

} // namespace zr
