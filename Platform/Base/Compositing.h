#pragma once

namespace zr {

enum NSCompositingOperation {
    NSCompositingOperationClear = 0,
    NSCompositingOperationCopy = 1,
    NSCompositingOperationSourceOver = 2,
};

} // namespace zr
