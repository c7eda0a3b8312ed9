// SPDX-License-Identifier: MIT
#include <Foundation/NSLog.h>
#include <Foundation/Unretained.h>

namespace zr::detail {

void logHeldByNobody(std::string_view setter) {
    NSLog("%@: nobody holds the object that is given, and it is gone at once", setter);
}

} // namespace zr::detail
