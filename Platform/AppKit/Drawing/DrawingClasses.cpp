// SPDX-License-Identifier: MIT
#include "DrawingClasses.h"

#include <AppKit/NSImage.h>

#include <array>

namespace zr {

std::span<const ClassTable* const> drawingClasses() {
    static const std::array tables = {
        &NSImage::classTable(), //
    };
    return tables;
}

} // namespace zr
