// SPDX-License-Identifier: MIT
#include <Foundation/NSNull.h>

namespace zr {

ZR_CLASS_TABLE(NSNull)

const std::shared_ptr<NSObject>& NSNull::null() {
    static const auto* const only = new std::shared_ptr<NSObject>(make<NSNull>());
    return *only;
}

} // namespace zr
