// SPDX-License-Identifier: MIT
#include "PanelClasses.h"

#include <AppKit/NSAlert.h>
#include <AppKit/NSOpenPanel.h>

#include <array>

namespace zr {

std::span<const ClassTable* const> panelClasses() {
    static const std::array tables = {
        &NSAlert::classTable(),     //
        &NSOpenPanel::classTable(), //
    };
    return tables;
}

} // namespace zr
