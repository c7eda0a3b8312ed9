// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

namespace zr {

class NSToolbar;
class NSWindow;

namespace port {
class WindowBars;
}

// What stands above a window's content: whose menus, which toolbar.
class WindowBarsHolder {
public:
    const std::shared_ptr<NSToolbar>& toolbar() const { return toolbar_; }
    void setToolbar(const std::shared_ptr<NSToolbar>& toolbar);
    void tellToolbar(); // that its window shows it, or how its pictures look

    static bool mainMenuStandsInWindows(); // and is there
    // How high what stands above a content usually is.
    double usualInset(bool titled, bool withMenuBar) const;
    // The real ones; null while the window has none.
    void setBars(port::WindowBars* bars);
    // The application's main menu, or none; it acts in the window.
    void showMainMenu(bool shown, const std::shared_ptr<NSWindow>& window);

private:
    std::shared_ptr<NSToolbar> toolbar_;
    port::WindowBars* bars_ = nullptr;
    bool showsMenu_ = false;
};

} // namespace zr
