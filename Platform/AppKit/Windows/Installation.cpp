#include "Installation.h"

#include <AppKit/DrawingSystem.h>
#include <AppKit/NSApplication.h>
#include <AppKit/NSWindow.h>

#include <stdexcept>

namespace zr {

namespace {
std::unique_ptr<Installation>& slot() {
    static std::unique_ptr<Installation> installed;
    return installed;
}
} // namespace

Installation* installation() { return slot().get(); }

void Installation::appearanceChanged() {
    const auto held = application;
    for (const auto& window : held->windows()) window->appearanceChanged();
}

void Installation::willEnd() {
    const auto held = application;
    held->closeAllWindows();
}

namespace port {

ApplicationClient& install(WindowSystem& windowSystem) {
    if (slot()) throw std::logic_error("a window system is installed already");
    slot() = std::make_unique<Installation>(windowSystem);
    installDrawing(&windowSystem);
    slot()->application = make<NSApplication>();
    return *slot();
}

void uninstall() {
    if (!slot()) return;
    slot()->willEnd();
    slot().reset();
    installDrawing(nullptr);
}

} // namespace port

} // namespace zr
