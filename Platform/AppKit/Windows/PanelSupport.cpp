// SPDX-License-Identifier: MIT
#include "InstalledSystem.h"
#include "PanelSupport.h"

#include <AppKit/NSApplication.h>
#include <AppKit/NSWindow.h>

namespace zr {

port::WindowSystem* PanelSupport::windowSystem() {
    return installedSystem() ? &installedSystem()->windowSystem : nullptr;
}

bool PanelSupport::hasSystemFor(std::string_view method) { return systemFor(method) != nullptr; }

port::WindowPeer* PanelSupport::peerOf(NSWindow& window) { return window.peer_.get(); }

void PanelSupport::endPresses(NSWindow& window) { window.pressesEnd(); }

void PanelSupport::runModal(const std::function<std::unique_ptr<port::TrackingLoop>()>& begin,
                            const std::function<bool()>& isShown) {
    NSApplication::sharedApplication().runModal(nullptr, begin, isShown);
}

void PanelSupport::wakeModal() { NSApplication::sharedApplication().wakeModal(); }

} // namespace zr
