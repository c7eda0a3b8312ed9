// SPDX-License-Identifier: MIT
#include "InstalledSystem.h"
#include "WindowBarsHolder.h"

#include <AppKit/NSMenu.h>
#include <AppKit/NSToolbar.h>

#include <utility>

namespace zr {

bool WindowBarsHolder::mainMenuStandsInWindows() {
    const auto* const system = installedSystem();
    return system && system->router && system->router->mainMenu() && system->windowSystem.menusStandInWindows();
}

double WindowBarsHolder::usualInset(bool titled, bool withMenuBar) const {
    if (!installedSystem()) return 0;
    const auto usual = installedSystem()->windowSystem.usualInsets();
    return (titled ? usual.titleBar : 0) + (withMenuBar ? usual.menuBar : 0) + (toolbar_ ? usual.toolbar : 0);
}

void WindowBarsHolder::setToolbar(const std::shared_ptr<NSToolbar>& toolbar) {
    if (toolbar == toolbar_) return;
    if (toolbar_) toolbar_->barsChanged(false, nullptr);
    toolbar_ = toolbar;
    if (toolbar)
        tellToolbar();
    else if (bars_)
        bars_->setToolbar({}, nullptr);
}

void WindowBarsHolder::tellToolbar() {
    const auto toolbar = toolbar_;
    if (toolbar) toolbar->barsChanged(true, bars_);
}

void WindowBarsHolder::setBars(port::WindowBars* bars) {
    bars_ = bars;
    showsMenu_ = false;
    if (bars)
        tellToolbar();
    else if (toolbar_)
        toolbar_->barsLeft();
}

void WindowBarsHolder::showMainMenu(bool shown, const std::shared_ptr<NSWindow>& window) {
    if (!bars_ || shown == std::exchange(showsMenu_, shown)) return;
    const auto menu = installedSystem()->router->mainMenu();
    bars_->setMenuBar(shown && menu ? menu->shownIn(window) : std::vector<port::MenuItem>());
}

} // namespace zr
