// SPDX-License-Identifier: MIT
#include "WindowClasses.h"

#include <AppKit/NSApplication.h>
#include <AppKit/NSMenu.h>
#include <AppKit/NSResponder.h>
#include <AppKit/NSToolbar.h>
#include <AppKit/NSView.h>
#include <AppKit/NSWindow.h>

#include <array>

namespace zr {

std::span<const ClassTable* const> windowClasses() {
    static const std::array tables = {
        &NSApplication::classTable(), //
        &NSMenu::classTable(),        //
        &NSMenuItem::classTable(),    //
        &NSResponder::classTable(),   //
        &NSToolbar::classTable(),     //
        &NSToolbarItem::classTable(), //
        &NSView::classTable(),        //
        &NSWindow::classTable(),      //
    };
    return tables;
}

} // namespace zr
