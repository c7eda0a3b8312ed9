// SPDX-License-Identifier: MIT
#include "InstalledSystem.h"

#include <AppKit/NSScreen.h>

namespace zr {

NSScreen NSScreen::mainScreen() {
    const auto all = screens();
    return all.empty() ? NSScreen() : all.front();
}

std::vector<NSScreen> NSScreen::screens() {
    std::vector<NSScreen> result;
    if (!installedSystem()) return result;
    for (const auto& [frame, visibleFrame] : installedSystem()->windowSystem.screens()) {
        NSScreen screen;
        screen.frame_ = turnedOver(frame);
        screen.visibleFrame_ = turnedOver(visibleFrame);
        result.push_back(screen);
    }
    return result;
}

NSRect NSScreen::turnedOver(const NSRect& rect) {
    const auto all =
        installedSystem() ? installedSystem()->windowSystem.screens() : std::vector<port::Screen>();
    const double height = all.empty() ? 0 : all.front().frame.size.height;
    return {{rect.origin.x, height - NSMaxY(rect)}, rect.size};
}

} // namespace zr
