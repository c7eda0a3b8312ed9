// SPDX-License-Identifier: MIT
#include "InterfaceFileClasses.h"

#include <AppKit/NSNib.h>
#include <AppKit/NSViewController.h>
#include <AppKit/NSWindowController.h>

#include <array>

namespace zr {

std::span<const ClassTable* const> interfaceFileClasses() {
    static const std::array tables = {
        &NSNib::classTable(),              //
        &NSViewController::classTable(),   //
        &NSWindowController::classTable(), //
    };
    return tables;
}

} // namespace zr
