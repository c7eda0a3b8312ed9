// SPDX-License-Identifier: MIT
#include "FileClasses.h"

#include <Foundation/NSBundle.h>

#include <array>

namespace zr {

std::span<const ClassTable* const> fileClasses() {
    static const std::array tables = {
        &NSBundle::classTable(),
    };
    return tables;
}

} // namespace zr
