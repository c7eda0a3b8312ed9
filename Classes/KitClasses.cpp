// SPDX-License-Identifier: MIT
#include "ComponentClasses.h"

#include <AppKit/ControlClasses.h>
#include <AppKit/DrawingClasses.h>
#include <AppKit/InterfaceFileClasses.h>
#include <AppKit/PanelClasses.h>
#include <AppKit/TableClasses.h>
#include <AppKit/WindowClasses.h>
#include <Foundation/FileClasses.h>
#include <Foundation/ObjectClasses.h>

#include <vector>

namespace zr {

namespace {
std::vector<const ClassTable*> joined() {
    std::vector<const ClassTable*> all;
    for (const auto room : {objectClasses(), fileClasses(), drawingClasses(), windowClasses(), controlClasses(),
                            tableClasses(), panelClasses(), interfaceFileClasses(), componentClasses()})
        all.insert(all.end(), room.begin(), room.end());
    return all;
}
} // namespace

std::span<const ClassTable* const> kitClassTables() {
    // Leaked on purpose: background threads may ask until the process is gone.
    static const auto* const tables = new auto(joined());
    return *tables;
}

} // namespace zr
