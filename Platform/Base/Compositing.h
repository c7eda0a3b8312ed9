// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace zr {

enum NSCompositingOperation : std::uint8_t {
    NSCompositingOperationClear = 0,
    NSCompositingOperationCopy = 1,
    NSCompositingOperationSourceOver = 2,
};

} // namespace zr
