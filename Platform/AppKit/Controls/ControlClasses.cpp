// SPDX-License-Identifier: MIT
#include "ControlClasses.h"

#include <AppKit/NSButton.h>
#include <AppKit/NSControl.h>
#include <AppKit/NSImageView.h>
#include <AppKit/NSProgressIndicator.h>
#include <AppKit/NSTextField.h>

#include <array>

namespace zr {

std::span<const ClassTable* const> controlClasses() {
    static const std::array tables = {
        &NSButton::classTable(),            //
        &NSControl::classTable(),           //
        &NSImageView::classTable(),         //
        &NSProgressIndicator::classTable(), //
        &NSTextField::classTable(),         //
    };
    return tables;
}

} // namespace zr
