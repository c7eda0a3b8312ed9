// SPDX-License-Identifier: MIT
#include "ObjectClasses.h"

#include <Foundation/NSNull.h>
#include <Foundation/NSRunLoop.h>

#include <array>

namespace zr {

std::span<const ClassTable* const> objectClasses() {
    static const std::array tables = {
        &NSObject::classTable(),
        &NSNull::classTable(),
        &NSPort::classTable(),
        &NSRunLoop::classTable(),
    };
    return tables;
}

} // namespace zr
