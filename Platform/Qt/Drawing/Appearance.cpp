// SPDX-License-Identifier: MIT
#include "Appearance.h"

namespace zr::qt {

Appearance appearanceOf(const QPalette& palette) {
    // Asked for each paint, and nearly always of the same palette.
    static qint64 lastKey = 0;
    static auto last = Appearance::light;
    if (palette.cacheKey() == lastKey) return last;
    const bool dark =
        palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
    lastKey = palette.cacheKey();
    last = dark ? Appearance::dark : Appearance::light;
    return last;
}

} // namespace zr::qt
