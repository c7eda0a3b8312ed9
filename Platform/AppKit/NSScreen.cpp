#include "Installation.h"

#include <AppKit/NSScreen.h>

namespace zr {

NSScreen NSScreen::mainScreen() {
    NSScreen screen;
    if (auto* installed = installation()) screen.frame_.size = installed->windowSystem.screenSize();
    return screen;
}

} // namespace zr
