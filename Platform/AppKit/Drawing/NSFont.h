// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Compiler.h>
#include <Base/Font.h>

namespace zr {

// A font. A value; sizes in points, 0 means the standard size.
class ZR_EXPORT NSFont {
public:
    explicit NSFont(FontDescription description) : description_(std::move(description)) {}

    static constexpr double systemFontSize() { return 13; }
    static constexpr double smallSystemFontSize() { return 11; }

    static NSFont systemFontOfSize(double size);
    static NSFont boldSystemFontOfSize(double size);
    // Digits of equal width, for numbers that change in place.
    static NSFont monospacedDigitSystemFontOfSize(double size);

    double pointSize() const { return description_.size; }
    const FontDescription& description() const { return description_; }
    bool operator==(const NSFont&) const = default;

private:
    FontDescription description_;
};

} // namespace zr
