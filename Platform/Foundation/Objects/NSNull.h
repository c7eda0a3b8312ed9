// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Compiler.h>
#include <Foundation/NSObject.h>

namespace zr {

// Stands for nothing in lists that hold objects. There is one of it.
class ZR_EXPORT NSNull : public NSObject {
public:
    ZR_CLASS(NSNull, NSObject)
    static const std::shared_ptr<NSObject>& null();
};

} // namespace zr
