#include "Installation.h"

#include <AppKit/NSScreen.h>

namespace zr {

NSScreen NSScreen::mainScreen() {
    const auto all = screens();
    return all.empty() ? NSScreen() : all.front();
}

std::vector<NSScreen> NSScreen::screens() {
    std::vector<NSScreen> result;
    if (!installation()) return result;
    const auto found = installation()->windowSystem.screens();
    result.reserve(found.size());
    for (const auto& [frame, visibleFrame] : found) {
        const auto upwards = [bottom = found.front().frame.size.height](const CGRect& rect) {
            return NSRect{{rect.origin.x, bottom - NSMaxY(rect)}, rect.size};
        };
        NSScreen screen;
        screen.frame_ = upwards(frame);
        screen.visibleFrame_ = upwards(visibleFrame);
        result.push_back(screen);
    }
    return result;
}

} // namespace zr
