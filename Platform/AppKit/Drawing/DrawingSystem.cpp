// SPDX-License-Identifier: MIT
#include "DrawingSystem.h"

namespace zr {

namespace {
std::unique_ptr<DrawingSystem>& slot() {
    static std::unique_ptr<DrawingSystem> installed;
    return installed;
}
} // namespace

DrawingSystem* drawingSystem() { return slot().get(); }

void installDrawing(port::Graphics* graphics) {
    slot() = graphics ? std::make_unique<DrawingSystem>(DrawingSystem{*graphics}) : nullptr;
}

} // namespace zr
