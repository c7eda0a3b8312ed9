// SPDX-License-Identifier: MIT
#include "TableClasses.h"

#include <AppKit/NSScrollView.h>
#include <AppKit/NSTableColumn.h>
#include <AppKit/NSTableHeaderView.h>
#include <AppKit/NSTableView.h>

#include <array>

namespace zr {

std::span<const ClassTable* const> tableClasses() {
    static const std::array tables = {
        &NSClipView::classTable(),        //
        &NSScrollView::classTable(),      //
        &NSTableColumn::classTable(),     //
        &NSTableHeaderView::classTable(), //
        &NSTableView::classTable(),       //
    };
    return tables;
}

} // namespace zr
